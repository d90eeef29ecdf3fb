#include <gtest/gtest.h>

#include "sweep_fixture.h"

namespace tidewick {
namespace {

using test::hostPath;
using test::SweepFixture;

QStringList strings(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts) {
        list.append(hostPath(text));
    }
    return list;
}

QStringList sorted(QStringList list) {
    list.sort();
    return list;
}

class UnusedFiles : public SweepFixture {};

// The folder of mix.ses: a.wav is used, a.pk is its peak file, b.wav and b.pk are not used.
struct KeepPeaksCase {
    const char* name;
    bool keep;
    QStringList lines;  // in list order: a folder's peak files come after its other files
};

class KeepPeaks : public UnusedFiles, public ::testing::WithParamInterface<KeepPeaksCase> {};

TEST_P(KeepPeaks, HoldsBackThePeakFileOfUsedMediaOnlyWhileTheBoxIsChecked) {
    for (const char* name : {"mix.ses", "a.wav", "a.pk", "b.wav", "b.pk"}) {
        touch(QString::fromLatin1(name));
    }
    open(SessionKindId::Ses);
    select(QStringLiteral("mix.ses"));
    form.UsedFiles.addItem(folder() + QStringLiteral("a.wav"), true);
    setQuietly(form.KeepPKCheck, GetParam().keep);

    form.UpdateUnusedFileSpec();
    EXPECT_EQ(unusedLines(), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Ses, KeepPeaks,
                         ::testing::Values(KeepPeaksCase{"Checked", true, {"b.wav", "b.pk"}},
                                           KeepPeaksCase{
                                               "Cleared", false, {"b.wav", "a.pk", "b.pk"}}),
                         [](const auto& info) { return std::string(info.param.name); });

// Which used media hold a peak file back, per kind: one extension taken off for the Audition
// kinds and only a wav owns it; two for REAPER and Vegas, with any of seven media extensions.
struct PeakOwnerCase {
    const char* name;
    SessionKindId kind;
    const char* session;
    const char* used;  // the used line; a relative one lies in the session folder
    const char* peak;
    bool heldBack;
};

class PeakOwner : public UnusedFiles, public ::testing::WithParamInterface<PeakOwnerCase> {};

TEST_P(PeakOwner, DecidesWhetherThePeakFileIsListed) {
    const PeakOwnerCase& c = GetParam();
    touch(QString::fromLatin1(c.session));
    touch(QString::fromLatin1(c.peak));
    open(c.kind);
    select(QString::fromLatin1(c.session));
    const QString used = QString::fromLatin1(c.used);
    form.UsedFiles.addItem(used.startsWith(u'C') ? used : folder() + hostPath(c.used));
    setQuietly(form.KeepPKCheck, true);

    form.UpdateUnusedFileSpec();
    EXPECT_EQ(unusedLines(), c.heldBack ? QStringList() : QStringList{QString::fromLatin1(c.peak)});
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PeakOwner,
    ::testing::Values(
        PeakOwnerCase{"SesWavOwnsPk", SessionKindId::Ses, "mix.ses", "a.wav", "a.pk", true},
        PeakOwnerCase{"SesMp3DoesNotOwnPk", SessionKindId::Ses, "mix.ses", "a.mp3", "a.pk", false},
        PeakOwnerCase{"SesCaseIgnored", SessionKindId::Ses, "mix.ses", "A.WAV", "a.PK", true},
        PeakOwnerCase{"XmlTakesOffOneExtension", SessionKindId::Xml, "mix.xml", "a.wav", "a.wav.pk",
                      false},
        PeakOwnerCase{"SesxPkf", SessionKindId::Sesx, "mix.sesx", "Rec\\a.wav", "a.pkf", true},
        PeakOwnerCase{"RppFlacOwnsItsPeaks", SessionKindId::Rpp, "song.rpp",
                      "C:\\proj\\Audio\\vox.flac", "vox.flac.reapeaks", true},
        PeakOwnerCase{"RppFlacOwnsTheWavPeaks", SessionKindId::Rpp, "song.rpp",
                      "C:\\proj\\Audio\\vox.flac", "vox.wav.reapeaks", true},
        PeakOwnerCase{"RppMidiOwnsNothing", SessionKindId::Rpp, "song.rpp", "vox.mid",
                      "vox.wav.reapeaks", false},
        PeakOwnerCase{"VegMp3OwnsSfk", SessionKindId::Veg, "cut.veg", "a.mp3", "a.mp3.sfk", true}),
    [](const auto& info) { return std::string(info.param.name); });

// The media type chooses the files; only "All Files" lets peak files in.
struct MediaTypeCase {
    const char* name;
    int type;
    QStringList lines;
};

class MediaType : public UnusedFiles, public ::testing::WithParamInterface<MediaTypeCase> {};

TEST_P(MediaType, ListsTheFilesOfEveryPatternOfTheType) {
    for (const char* name : {"mix.ses", "a.wav", "a.pk", "b.BWF", "c.mp3", "README", ".hidden"}) {
        touch(QString::fromLatin1(name));
    }
    open(SessionKindId::Ses);
    form.FileTypesCombo.setListIndex(GetParam().type);  // no session selected yet: no list
    EXPECT_TRUE(unusedLines().isEmpty());
    select(QStringLiteral("mix.ses"));
    form.FileTypesCombo_Click();
    EXPECT_EQ(sorted(unusedLines()), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Types, MediaType,
    ::testing::Values(
        // "*.*" also takes the name without a dot; hidden files are never offered.
        MediaTypeCase{"AllFiles", 0, {"README", "a.pk", "a.wav", "b.BWF", "c.mp3"}},
        MediaTypeCase{"WaveFormHasNoPeakFiles", 1, {"a.wav"}}, MediaTypeCase{"Mp3", 2, {"c.mp3"}},
        MediaTypeCase{"TwoPatternsInAnyCase", 19, {"a.wav", "b.BWF"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(UnusedFiles, WaveFormDisablesKeepPeaksAndThePeakPass) {
    touch(QStringLiteral("mix.ses"));
    touch(QStringLiteral("a.pk"));
    open(SessionKindId::Ses);
    select(QStringLiteral("mix.ses"));
    setQuietly(form.KeepPKCheck, false);
    form.FileTypesCombo.setListIndex(1);
    EXPECT_FALSE(form.KeepPKCheck.enabled());
    form.KeepPKCheck.setChecked(true);  // its click rebuilds the list
    EXPECT_TRUE(unusedLines().isEmpty());
    form.FileTypesCombo.setListIndex(0);
    EXPECT_EQ(unusedLines(), QStringList{QStringLiteral("a.pk")});
}

// Session files of the folder: the selected one alone, or with every session scanned, all
// whose names match the kind's pattern in any letter case.
struct SessionExclusionCase {
    const char* name;
    bool allFiles;
    QStringList lines;
};

class SessionExclusion : public UnusedFiles,
                         public ::testing::WithParamInterface<SessionExclusionCase> {};

TEST_P(SessionExclusion, LeavesOutTheScannedSessionFiles) {
    for (const char* name : {"mix.ses", "OLD.SES", "other.Ses", "take.wav", "mix.ses.bak"}) {
        touch(QString::fromLatin1(name));
    }
    open(SessionKindId::Ses);
    select(QStringLiteral("mix.ses"), GetParam().allFiles);
    form.UpdateUnusedFileSpec();
    EXPECT_EQ(sorted(unusedLines()), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, SessionExclusion,
    ::testing::Values(SessionExclusionCase{"WholeFolder", true, {"mix.ses.bak", "take.wav"}},
                      SessionExclusionCase{"SelectedOnly",
                                           false,
                                           {"OLD.SES", "mix.ses.bak", "other.Ses", "take.wav"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(UnusedFiles, GathersEachScannedSessionsRecordingsFolder) {
    touch(QStringLiteral("mix.ses"));
    touch(QStringLiteral("old.ses"));
    touch(QStringLiteral("mix_Recorded/take1.wav"));
    touch(QStringLiteral("mix_Recorded/take2.wav"));
    touch(QStringLiteral("old_Recorded/take3.wav"));
    touch(QStringLiteral("Other/take4.wav"));
    open(SessionKindId::Ses);
    form.UsedFiles.addItem(folder() + hostPath("mix_Recorded\\take1.wav"), true);

    select(QStringLiteral("mix.ses"));
    form.UpdateUnusedFileSpec();
    EXPECT_EQ(unusedLines(), strings({"old.ses", "mix_Recorded\\take2.wav"}));

    select(QStringLiteral("mix.ses"), true);
    form.UpdateUnusedFileSpec();
    EXPECT_EQ(unusedLines(), strings({"mix_Recorded\\take2.wav", "old_Recorded\\take3.wav"}));
}

// The used test ignores letter case, and a used line without a folder is compared with the
// candidate shortened by TrimFolders: a bare name is the file of the session folder.
struct UsedTestCase {
    const char* name;
    SessionKindId kind;
    const char* session;
    bool upperCaseWholePath;  // the used line is the file's full path, upper-cased
    const char* used;         // otherwise this line as it is
};

class UsedTest : public UnusedFiles, public ::testing::WithParamInterface<UsedTestCase> {};

TEST_P(UsedTest, CountsTheFileAsUsed) {
    const UsedTestCase& c = GetParam();
    touch(QString::fromLatin1(c.session));
    touch(QStringLiteral("Take.wav"));
    touch(QStringLiteral("spare.wav"));
    open(c.kind);
    form.state.RecordFolder = QStringLiteral("_Recorded");
    select(QString::fromLatin1(c.session));
    form.UsedFiles.addItem(c.upperCaseWholePath ? (folder() + QStringLiteral("Take.wav")).toUpper()
                                                : QString::fromLatin1(c.used));
    form.UpdateUnusedFileSpec();
    EXPECT_EQ(unusedLines(), QStringList{QStringLiteral("spare.wav")});
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, UsedTest,
    ::testing::Values(UsedTestCase{"SesUpperCase", SessionKindId::Ses, "mix.ses", true, ""},
                      UsedTestCase{"XmlUpperCase", SessionKindId::Xml, "mix.xml", true, ""},
                      UsedTestCase{"VegUpperCase", SessionKindId::Veg, "cut.veg", true, ""},
                      UsedTestCase{"RppUpperCase", SessionKindId::Rpp, "song.rpp", true, ""},
                      UsedTestCase{"SesBareName", SessionKindId::Ses, "mix.ses", false, "Take.wav"},
                      UsedTestCase{"XmlBareName", SessionKindId::Xml, "mix.xml", false, "take.WAV"},
                      UsedTestCase{"VegBareName", SessionKindId::Veg, "cut.veg", false, "TAKE.wav"},
                      UsedTestCase{"RppBareName", SessionKindId::Rpp, "song.rpp", false,
                                   "take.WAV"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(UnusedFiles, BareUsedNameHoldsBackOnlyTheSessionFolderFile) {
    touch("mix.ses");
    touch("take.wav");
    touch("mix_Recorded/take.wav");
    open(SessionKindId::Ses);
    select("mix.ses");
    form.UsedFiles.addItem("take.wav");
    form.UpdateUnusedFileSpec();
    EXPECT_EQ(unusedLines(), QStringList{QString("mix_Recorded") + hostSeparator() + "take.wav"});
}

class ReaperSubFolder : public UnusedFiles {
protected:
    void SetUp() override {
        UnusedFiles::SetUp();
        ASSERT_TRUE(records.isValid());
        touch(QStringLiteral("song.rpp"));
        touch(QStringLiteral("mixdown.wav"));
        touchIn(records.path(), QStringLiteral("take.wav"));
        touchIn(records.path(), QStringLiteral("other.wav"));
        open(SessionKindId::Rpp);
        select(QStringLiteral("song.rpp"));
        form.state.RecordFolder = QStringLiteral("\" ") + records.path() + QStringLiteral(" \"");
        setQuietly(form.SubFolderCheck, true);
        form.UsedFiles.addItem((records.path() + QStringLiteral("/TAKE.wav")));
    }

    QString recordsLine(const char* name) const {
        QString path = records.path();
        return AddBackslash(path) + QString::fromLatin1(name);
    }

    QTemporaryDir records;
};

TEST_F(ReaperSubFolder, ListsTheAbsoluteFolderWithItsPathInFront) {
    QString mpath = folder();
    QString sFolder = records.path();
    QString extn = QStringLiteral("*.*");
    QString ignore = QStringLiteral("song.rpp");
    form.FillUnused(mpath, sFolder, extn, ignore);

    EXPECT_EQ(unusedLines(), QStringList{recordsLine("other.wav")});
    EXPECT_EQ(sFolder, recordsLine(""));
    EXPECT_EQ(form.state.RecordFolder, QStringLiteral(" ") + records.path() + QStringLiteral(" "));
}

TEST_F(ReaperSubFolder, GathersTheSessionFolderAndTheSubFolderOnceEach) {
    form.SubFolderName.setText(records.path());
    form.UpdateUnusedFileSpec();  // lists the sub-folder twice: by the REAPER step and the row's
    EXPECT_EQ(unusedLines(),
              (QStringList{QStringLiteral("mixdown.wav"), recordsLine("other.wav")}));
}

TEST_F(UnusedFiles, ShowsTheBusyPointerOnlyWhenAFolderIsListed) {
    touch(QStringLiteral("mix.ses"));
    open(SessionKindId::Ses);
    ui.pointerChanges.clear();
    QString mpath = folder();
    QString missing = QStringLiteral("mix_Recorded") + hostSeparator();
    QString extn = QStringLiteral("*.*");
    QString ignore;
    form.FillUnused(mpath, missing, extn, ignore);
    EXPECT_TRUE(ui.pointerChanges.isEmpty());
    EXPECT_TRUE(unusedLines().isEmpty());

    QString here;
    form.FillUnused(mpath, here, extn, ignore);
    form.FillUnused(mpath, here, extn, ignore);  // the same folder again adds nothing
    EXPECT_EQ(ui.pointerChanges, (QList<bool>{true, false, true, false}));
    EXPECT_EQ(unusedLines(), QStringList{QStringLiteral("mix.ses")});
}

}  // namespace
}  // namespace tidewick
