#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "forms/audit_form.h"
#include "forms/kind_texts.h"
#include "forms/main_form.h"
#include "readers/session_kinds.h"
#include "support/recording_interaction.h"
#include "support/session_files.h"

namespace tidewick::test {
namespace {

// The unused list's texts.
QStringList unusedTexts(const MainForm& form) {
    QStringList texts;
    for (int row = 0; row < form.lists().unusedFiles().count(); ++row) {
        texts << form.lists().unusedFiles().text(row);
    }
    return texts;
}

// "Audit a Library" from the window: its rows, largest reclaimable first; "Go to Folder" shows
// the folder on its session's tab. A load there afterwards keeps the file that a session of
// another folder uses, which only the index of the audit knows, and names that session.
TEST(AuditFromTheWindow, GoesToAFolderWhoseLoadThenKeepsWhatAnotherFolderUses) {
    QTemporaryDir home;
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toUtf8());
    const QString root = home.filePath("Library");
    const QString band = root + "/Band/", podcast = root + "/Podcast/";
    for (const QString& file :
         {band + "drums.wav", band + "shared loop.wav", band + "old.wav", podcast + "voice.wav",
          podcast + "take 1.wav", podcast + "take 2.wav"}) {
        ASSERT_TRUE(writeFile(file, QByteArray(100, 'x')));
    }
    ASSERT_TRUE(writeFile(band + "song.rpp", sessionBytes(SessionKindId::Rpp, {"drums.wav"})));
    ASSERT_TRUE(writeFile(
        podcast + "show.sesx",
        sessionBytes(SessionKindId::Sesx, {podcast + "voice.wav", band + "shared loop.wav"})));

    RecordingInteraction ui;
    MainForm form(ui);
    form.Form_Load();
    const auto loadBand = [&form, &band] {
        form.goToSessionFolder(band, SessionKindId::Rpp);
        form.control(u"SESFile").setListIndex(-1);
        form.control(u"SESFile")
            .setListIndex(int(form.control(u"SESFile").items().indexOf("song.rpp")));
        return unusedTexts(form);
    };
    EXPECT_TRUE(loadBand().contains("shared loop.wav"));  // no audit yet: nothing knows

    AuditForm audit(ui, form.disk(), root, home.filePath("cache/Tidewick/index.sqlite"));
    audit.runToEnd();
    ASSERT_EQ(audit.rows().size(), 2);
    EXPECT_EQ(audit.rows()[0].folder, root + "/Podcast");  // 2 takes before 1 old file
    EXPECT_EQ(audit.rows()[1].sessions, "RPP 1");
    EXPECT_EQ(audit.rows()[1].reclaimable, "1 file 100 bytes (0.00Mb)");
    audit.CurrentRow = 1;
    audit.OpenButton_Click();
    ASSERT_TRUE(audit.chosen());
    form.goToSessionFolder(audit.chosen()->folder, audit.chosen()->kind);
    EXPECT_EQ(form.browser().selectedTabKey(), kindTexts(SessionKindId::Rpp).tabKey);
    EXPECT_EQ(form.control(u"SESFile").text(), root + "/Band");

    const QStringList offered = loadBand();
    EXPECT_EQ(offered, QStringList{"old.wav"});
    EXPECT_TRUE(form.control(u"UnusedFrame").tooltip().contains(podcast + "show.sesx"))
        << form.control(u"UnusedFrame").tooltip().toStdString();

    // The podcast's session changed since the audit: it is read again, in this form and in
    // the next, which learns it from the index.
    ASSERT_TRUE(
        writeFile(podcast + "show.sesx",
                  sessionBytes(SessionKindId::Sesx, {band + "shared loop.wav", band + "old.wav"})));
    EXPECT_EQ(loadBand(), QStringList());
    MainForm next(ui);
    next.Form_Load();
    next.goToSessionFolder(band, SessionKindId::Rpp);
    next.control(u"SESFile").setListIndex(int(next.browser().sessions().indexOf("song.rpp")));
    EXPECT_EQ(unusedTexts(next), QStringList());
    qunsetenv("XDG_CACHE_HOME");
}

}  // namespace
}  // namespace tidewick::test
