#include <gtest/gtest.h>

#include <tuple>

#include "sweep_fixture.h"

namespace tidewick {
namespace {

using enum SessionKindId;

QStringList sorted(QStringList list) {
    list.sort();
    return list;
}

class UnusedFiles : public test::SweepFixture {
protected:
    // Makes the files `names`, shows the tab of `kind` and selects the first name.
    void scene(SessionKindId kind, std::initializer_list<const char*> names, bool all = false) {
        for (const char* name : names) {
            touch(name);
        }
        open(kind);
        select(*names.begin(), all);
    }
    QStringList rebuilt() {
        form.UpdateUnusedFileSpec();
        return unusedLines();
    }
};

TEST_F(UnusedFiles, KeepPeaksHoldsBackThePeakFileOfUsedMediaOnlyWhileChecked) {
    scene(Ses, {"mix.ses", "a.wav", "a.pk", "b.wav", "b.pk"});
    form.UsedFiles.addItem(folder() + "a.wav", true);
    setQuietly(form.KeepPKCheck, true);
    EXPECT_EQ(rebuilt(), (QStringList{"b.wav", "b.pk"}));  // peak files after the others
    setQuietly(form.KeepPKCheck, false);
    EXPECT_EQ(rebuilt(), (QStringList{"b.wav", "a.pk", "b.pk"}));
}

TEST_F(UnusedFiles, APeakFileIsHeldBackOnlyByUsedMediaItBelongsTo) {
    // Audition kinds take one extension off and only a wav owns the peak file; REAPER and Vegas
    // take two, and any media extension but MIDI owns it.
    const std::tuple<SessionKindId, const char*, const char*, const char*, bool> rows[] = {
        {Ses, "mix.ses", "a.wav", "a.pk", true},
        {Ses, "mix.ses", "a.mp3", "a.pk", false},
        {Ses, "mix.ses", "A.WAV", "a.PK", true},
        {Xml, "mix.xml", "a.wav", "a.wav.pk", false},
        {Sesx, "mix.sesx", "Rec/a.wav", "a.pkf", true},
        {Rpp, "song.rpp", "Audio/vox.flac", "vox.flac.reapeaks", true},
        {Rpp, "song.rpp", "Audio/vox.flac", "vox.wav.reapeaks", true},
        {Rpp, "song.rpp", "vox.mid", "vox.wav.reapeaks", false},
        {Veg, "cut.veg", "a.mp3", "a.mp3.sfk", true},
    };
    for (const auto& [kind, session, used, peak, heldBack] : rows) {
        scene(kind, {session, peak});
        form.UsedFiles.addItem(folder() + QString(used).replace(u'/', hostSeparator()));
        setQuietly(form.KeepPKCheck, true);
        EXPECT_EQ(rebuilt().contains(peak), !heldBack) << used << " / " << peak;
    }
}

TEST_F(UnusedFiles, TheMediaTypeChoosesTheFilesAndOnlyAllFilesLetsPeakFilesIn) {
    scene(Ses, {"mix.ses", "a.wav", "a.pk", "b.BWF", "c.mp3", "README", ".hidden"});
    const std::pair<int, QStringList> types[] = {
        {0, {"README", "a.pk", "a.wav", "b.BWF", "c.mp3"}},  // hidden files never
        {1, {"a.wav"}},                                      // Wave Form: no peak files
        {2, {"c.mp3"}},
        {19, {"a.wav", "b.BWF"}},
    };
    for (const auto& [type, lines] : types) {
        form.FileTypesCombo.setListIndex(type);
        form.FileTypesCombo_Click();
        EXPECT_EQ(sorted(unusedLines()), lines) << type;
        EXPECT_EQ(form.KeepPKCheck.enabled(), type == 0) << type;
    }
}

TEST_F(UnusedFiles, LeavesOutTheSelectedSessionOrAllScannedOnesInAnyCase) {
    scene(Ses, {"mix.ses", "OLD.SES", "other.Ses", "take.wav", "mix.ses.bak"});
    EXPECT_EQ(sorted(rebuilt()), (QStringList{"OLD.SES", "mix.ses.bak", "other.Ses", "take.wav"}));
    select("mix.ses", true);
    EXPECT_EQ(sorted(rebuilt()), (QStringList{"mix.ses.bak", "take.wav"}));
}

TEST_F(UnusedFiles, GathersEachScannedSessionsRecordingsFolder) {
    scene(Ses, {"mix.ses", "old.ses", "mix_Recorded/take1.wav", "mix_Recorded/take2.wav",
                "old_Recorded/take3.wav", "Other/take4.wav"});
    const QString mix = QString("mix_Recorded") + hostSeparator();
    const QString old = QString("old_Recorded") + hostSeparator();
    form.UsedFiles.addItem(folder() + mix + "take1.wav", true);
    EXPECT_EQ(rebuilt(), (QStringList{"old.ses", mix + "take2.wav"}));
    select("mix.ses", true);
    EXPECT_EQ(rebuilt(), (QStringList{mix + "take2.wav", old + "take3.wav"}));
}

TEST_F(UnusedFiles, ALetterCaseMatchOrABareNameCountsAsUsedForEveryKind) {
    // A null used line stands for the file's whole path upper-cased.
    const std::tuple<SessionKindId, const char*, const char*> rows[] = {
        {Ses, "mix.ses", nullptr},    {Xml, "mix.xml", nullptr},     {Veg, "cut.veg", nullptr},
        {Rpp, "song.rpp", nullptr},   {Ses, "mix.ses", "Take.wav"},  {Xml, "mix.xml", "take.WAV"},
        {Veg, "cut.veg", "TAKE.wav"}, {Rpp, "song.rpp", "take.WAV"},
    };
    for (const auto& [kind, session, used] : rows) {
        scene(kind, {session, "Take.wav", "spare.wav"});
        form.state.RecordFolder = "_Recorded";
        form.UsedFiles.addItem(used ? QString(used) : (folder() + "Take.wav").toUpper());
        const QStringList lines = rebuilt();
        EXPECT_TRUE(lines.contains("spare.wav") && !lines.contains("Take.wav"))
            << session << " / " << (used ? used : "whole path");
    }
}

TEST_F(UnusedFiles, BareUsedNameHoldsBackOnlyTheSessionFolderFile) {
    scene(Ses, {"mix.ses", "take.wav", "mix_Recorded/take.wav"});
    form.UsedFiles.addItem("take.wav");
    EXPECT_EQ(rebuilt(), QStringList{QString("mix_Recorded") + hostSeparator() + "take.wav"});
}

TEST_F(UnusedFiles, ReaperSubFolderIsListedOnceWithItsPathInFront) {
    QTemporaryDir records;
    scene(Rpp, {"song.rpp", "mixdown.wav"});
    touch(records.path() + "/take.wav");
    touch(records.path() + "/other.wav");
    form.state.RecordFolder = "\" " + records.path() + " \"";
    form.SubFolderName.setText(records.path());
    setQuietly(form.SubFolderCheck, true);
    form.UsedFiles.addItem(records.path() + "/TAKE.wav");
    QString recordsFolder = records.path();
    AddBackslash(recordsFolder);
    // Listed twice: by the REAPER step and by the sub-folder row.
    EXPECT_EQ(rebuilt(), (QStringList{"mixdown.wav", recordsFolder + "other.wav"}));
    EXPECT_EQ(form.state.RecordFolder, " " + records.path() + " ");
}

TEST_F(UnusedFiles, ShowsTheBusyPointerOnlyWhenAFolderIsListed) {
    scene(Ses, {"mix.ses"});
    ui.pointerChanges.clear();
    QString mpath = folder();
    QString missing = QString("mix_Recorded") + hostSeparator();
    QString here;
    QString extn = "*.*";
    QString ignore;
    form.FillUnused(mpath, missing, extn, ignore);
    EXPECT_TRUE(ui.pointerChanges.isEmpty());
    form.FillUnused(mpath, here, extn, ignore);
    form.FillUnused(mpath, here, extn, ignore);  // the same folder again adds nothing
    EXPECT_EQ(ui.pointerChanges, (QList<bool>{true, false, true, false}));
    EXPECT_EQ(unusedLines(), QStringList{"mix.ses"});
}

}  // namespace
}  // namespace tidewick
