#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "session_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using test::SessionFolderTest;
using test::writeFile;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const auto kByName = [](const auto& info) { return std::string(info.param.name); };

QString kindName(SessionKindId id) {
    return sessionKind(id).tabCaption;
}

QString ext(SessionKindId id) {
    return sessionKind(id).sessionPattern.mid(1);  // ".ses"
}

// --- Resolving each path ---------------------------------------------------------------------

// A saved path and what the list shows for it. In texts, {S} is the session folder, {X} a
// folder elsewhere and {C} the current folder, each with its trailing separator.
struct ResolveCase {
    const char* name;
    const char* saved;
    const char* line;
    bool checked;
    QStringList files = {};  // media files on disk
};

class Resolution : public SessionFolderTest {
protected:
    void SetUp() override {
        SessionFolderTest::SetUp();
        previousCurrent = QDir::currentPath();
        ASSERT_TRUE(QDir::setCurrent(current.path()));
    }
    void TearDown() override { QDir::setCurrent(previousCurrent); }

    QString expand(const char* text) const {
        return QString::fromUtf8(text)
            .replace(QStringLiteral("{S}"), folder())
            .replace(QStringLiteral("{X}"), elsewhere.path() + hostSeparator())
            .replace(QStringLiteral("{C}"), current.path() + hostSeparator());
    }

    // Loads one session naming `c.saved` and returns its lines.
    QList<CheckItem> load(SessionKindId kind, const ResolveCase& c) {
        for (const QString& file : c.files) {
            EXPECT_TRUE(writeFile(expand(file.toUtf8().constData()), "RIFF"));
        }
        useKind(kind);
        writeSession(QStringLiteral("song") + ext(kind), kind, {expand(c.saved)});
        select(QStringLiteral("song") + ext(kind));
        return usedLines();
    }

    QTemporaryDir elsewhere;
    QTemporaryDir current;
    QString previousCurrent;
};

class TextKindPaths : public Resolution,
                      public ::testing::WithParamInterface<std::tuple<SessionKindId, ResolveCase>> {
};

TEST_P(TextKindPaths, ListsTheResolvedPathCheckedWhenItExists) {
    const auto& [kind, c] = GetParam();
    EXPECT_THAT(load(kind, c), ElementsAreArray({CheckItem{expand(c.line), c.checked}}));
    EXPECT_THAT(ui.messages, IsEmpty());
}

// Sessions saved on Windows and opened here: "\" separates folders, and a drive letter or a
// leading "\" names a root this machine does not have, so such a path is never looked for, even
// where the current folder would hold a file of its name.
INSTANTIATE_TEST_SUITE_P(
    Table, TextKindPaths,
    ::testing::Combine(
        ::testing::Values(SessionKindId::Xml, SessionKindId::Sesx, SessionKindId::Rpp,
                          SessionKindId::Veg),
        ::testing::Values(
            ResolveCase{"BareNameInTheSessionFolder", "a.wav", "a.wav", true, {"{S}a.wav"}},
            ResolveCase{"BareNameMissing", "gone.wav", "gone.wav", false},
            ResolveCase{
                "RelativeWindowsPath", "Audio\\a.wav", "{S}Audio/a.wav", true, {"{S}Audio/a.wav"}},
            ResolveCase{
                "RelativeHostPath", "Audio/a.wav", "{S}Audio/a.wav", true, {"{S}Audio/a.wav"}},
            ResolveCase{"AbsolutePath", "{X}b.wav", "{X}b.wav", true, {"{X}b.wav"}},
            ResolveCase{"AbsolutePathMissing", "{X}gone.wav", "{X}gone.wav", false},
            ResolveCase{"WindowsDrivePathIsNotLookedFor",
                        "C:\\Media\\a.wav",
                        "C:/Media/a.wav",
                        false,
                        {"{C}C:/Media/a.wav", "{S}C:/Media/a.wav"}},
            ResolveCase{"RootedWindowsPath", "\\Audio\\a.wav", "/Audio/a.wav", false},
            ResolveCase{"NetworkPath", "\\\\server\\share\\a.wav", "//server/share/a.wav", false})),
    [](const auto& info) {
        return kindName(std::get<0>(info.param)).toStdString() + "_" + std::get<1>(info.param).name;
    });

// With "Ignore Leading Folder names" a path keeps its file name, or the recordings folder and
// its file name, and is looked for in the session folder.
class TrimmedPaths : public Resolution,
                     public ::testing::WithParamInterface<std::tuple<SessionKindId, ResolveCase>> {
};

TEST_P(TrimmedPaths, ListsThePathShortenedAndLooksInTheSessionFolder) {
    const auto& [kind, c] = GetParam();
    form.IgnoreFoldersCheck.setChecked(true);
    EXPECT_THAT(load(kind, c), ElementsAreArray({CheckItem{expand(c.line), c.checked}}));
}

INSTANTIATE_TEST_SUITE_P(
    Table, TrimmedPaths,
    ::testing::Combine(
        ::testing::Values(SessionKindId::Ses, SessionKindId::Xml, SessionKindId::Sesx),
        ::testing::Values(ResolveCase{"KeepsTheRecordingsFolder",
                                      "E:\\Old\\Song_Recorded\\t.wav",
                                      "Song_Recorded/t.wav",
                                      true,
                                      {"{S}Song_Recorded/t.wav"}},
                          ResolveCase{"WindowsPathFoundInTheSessionFolder",
                                      "C:\\Media\\a.wav",
                                      "a.wav",
                                      true,
                                      {"{S}a.wav"}},
                          ResolveCase{"AbsolutePathMissingHere",
                                      "{X}Song_Recorded/t.wav",
                                      "Song_Recorded/t.wav",
                                      false,
                                      {"{X}Song_Recorded/t.wav"}},
                          ResolveCase{"BareName", "a.wav", "a.wav", true, {"{S}a.wav"}})),
    [](const auto& info) {
        return kindName(std::get<0>(info.param)).toStdString() + "_" + std::get<1>(info.param).name;
    });

// A binary session's paths are taken as they stand: only a path that names an existing root
// is looked for.
class SesPaths : public Resolution, public ::testing::WithParamInterface<ResolveCase> {};

TEST_P(SesPaths, AreTakenAsTheyStand) {
    const ResolveCase& c = GetParam();
    EXPECT_THAT(load(SessionKindId::Ses, c),
                ElementsAreArray({CheckItem{expand(c.line), c.checked}}));
}

INSTANTIATE_TEST_SUITE_P(
    Table, SesPaths,
    ::testing::Values(
        ResolveCase{"AbsolutePath", "{X}b.wav", "{X}b.wav", true, {"{X}b.wav"}},
        ResolveCase{
            "WindowsDrivePath", "C:\\Media\\a.wav", "C:/Media/a.wav", false, {"{C}C:/Media/a.wav"}},
        ResolveCase{"BareNameHasNoRoot", "a.wav", "a.wav", false, {"{S}a.wav", "{C}a.wav"}}),
    kByName);

TEST(TrimFolders, ShortensToTheFileNameOrTheRecordingsFolder) {
    test::BusyUser ui;
    MainForm form{ui};
    struct Case {
        const char* record;
        const char* path;
        const char* trimmed;
    };
    for (const Case& c : {
             Case{"_Recorded", "D:/Audio/Song_Recorded/Take 1.wav", "Song_Recorded/Take 1.wav"},
             Case{"_Recorded", "C:/Take 1.wav", "Take 1.wav"},
             Case{"_Recorded", "D:\\Audio\\song_RECORDED\\t.wav", "song_RECORDED\\t.wav"},
             Case{"_Recorded", "/Take 1.wav", "Take 1.wav"},
             Case{"", "/home/u/Audio/t.wav", "Audio/t.wav"},
             Case{"/home/u/Proj", "/home/u/Proj/t.wav", "Proj/t.wav"},
         }) {
        form.state.RecordFolder = QString::fromUtf8(c.record);
        EXPECT_EQ(form.TrimFolders(QString::fromUtf8(c.path)), QString::fromUtf8(c.trimmed))
            << c.path << " with " << c.record;
    }
}

// --- Duplicates and letter case --------------------------------------------------------------

struct DuplicateCase {
    const char* name;
    SessionKindId kind;
    QStringList saved;
    QStringList lines;  // {S} is the session folder
};

class Duplicates : public SessionFolderTest, public ::testing::WithParamInterface<DuplicateCase> {};

TEST_P(Duplicates, KeepOneLinePerExactText) {
    const DuplicateCase& c = GetParam();
    useKind(c.kind);
    writeSession(QStringLiteral("s") + ext(c.kind), c.kind,
                 QStringList(c.saved).replaceInStrings(QStringLiteral("{S}"), folder()));
    select(QStringLiteral("s") + ext(c.kind));
    QStringList lines;
    for (const CheckItem& line : usedLines()) {
        lines.append(line.text);
    }
    EXPECT_EQ(lines, QStringList(c.lines).replaceInStrings(QStringLiteral("{S}"), folder()));
}

INSTANTIATE_TEST_SUITE_P(Table, Duplicates,
                         ::testing::Values(DuplicateCase{"BinarySessionNamingAFileTwice",
                                                         SessionKindId::Ses,
                                                         {"C:\\Media\\a.wav", "C:\\Media\\b.wav",
                                                          "C:\\Media\\a.wav"},
                                                         {"C:/Media/a.wav", "C:/Media/b.wav"}},
                                           DuplicateCase{"LetterCaseCounts",
                                                         SessionKindId::Ses,
                                                         {"C:\\Media\\a.wav", "c:\\media\\A.WAV"},
                                                         {"C:/Media/a.wav", "c:/media/A.WAV"}},
                                           DuplicateCase{"BothSeparatorsMeetInOneLine",
                                                         SessionKindId::Xml,
                                                         {"Audio\\a.wav", "Audio/a.wav"},
                                                         {"{S}Audio/a.wav"}},
                                           DuplicateCase{"BareNameAndFullPathAreTwoTexts",
                                                         SessionKindId::Rpp,
                                                         {"a.wav", "{S}a.wav"},
                                                         {"a.wav", "{S}a.wav"}}),
                         kByName);

// --- Whole-folder mode -----------------------------------------------------------------------

class WholeFolder : public SessionFolderTest,
                    public ::testing::WithParamInterface<SessionKindId> {};

TEST_P(WholeFolder, MergesEverySessionIntoOneListInFirstSeenOrder) {
    const SessionKindId kind = GetParam();
    useKind(kind);
    const QString e = ext(kind);
    writeSession(QStringLiteral("a") + e, kind,
                 {QStringLiteral("C:\\m\\1.wav"), QStringLiteral("C:\\m\\2.wav")});
    writeSession(QStringLiteral("b") + e, kind, {});
    writeSession(QStringLiteral("c") + e, kind,
                 {QStringLiteral("C:\\m\\2.wav"), QStringLiteral("C:\\m\\3.wav")});
    form.ScanAll.setChecked(true);  // nothing selected yet: nothing loads
    EXPECT_THAT(usedLines(), IsEmpty());

    select(QStringLiteral("c") + e);
    EXPECT_EQ(form.state.ScanFirst, 0);
    EXPECT_EQ(form.state.ScanLast, 2);
    EXPECT_THAT(usedLines(), ElementsAreArray({CheckItem{QStringLiteral("C:/m/1.wav")},
                                               CheckItem{QStringLiteral("C:/m/2.wav")},
                                               CheckItem{QStringLiteral("C:/m/3.wav")}}));
    EXPECT_EQ(form.SESVersionLabel.text(), QString());
    EXPECT_THAT(ui.messages, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Kinds, WholeFolder,
                         ::testing::Values(SessionKindId::Ses, SessionKindId::Sesx,
                                           SessionKindId::Xml, SessionKindId::Rpp,
                                           SessionKindId::Veg),
                         [](const auto& info) { return kindName(info.param).toStdString(); });

TEST_F(SessionFolderTest, WholeFolderModeSkipsABinarySessionWithoutItsSignatureSilently) {
    writeSession(QStringLiteral("a.ses"), SessionKindId::Ses, {QStringLiteral("C:\\1.wav")});
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("b.ses")), "NOT A SESSION"));
    writeSession(QStringLiteral("c.ses"), SessionKindId::Ses, {QStringLiteral("C:\\2.wav")});
    form.ScanAll.setChecked(true);
    select(QStringLiteral("b.ses"));
    EXPECT_THAT(usedLines(), ElementsAreArray({CheckItem{QStringLiteral("C:/1.wav")},
                                               CheckItem{QStringLiteral("C:/2.wav")}}));
    EXPECT_THAT(ui.messages, IsEmpty());
}

// --- Invalid, empty and unreadable sessions --------------------------------------------------

struct SingleCase {
    const char* name;
    SessionKindId kind;
    QByteArray bytes;
    QList<MessageBoxRequest> messages;
    QStringList lines;
    const char* frameCaption;  // null: the counters' caption, not looked at here
    const char* version;
};

const char* const kNoMediaCaption =
    "0 Media File(s) Used  (NB: Files with a check mark exist on Disk)";

class SingleSession : public SessionFolderTest, public ::testing::WithParamInterface<SingleCase> {};

TEST_P(SingleSession, ShowsWhatTheSessionHolds) {
    const SingleCase& c = GetParam();
    useKind(c.kind);
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("s") + ext(c.kind)), c.bytes));
    select(QStringLiteral("s") + ext(c.kind));
    QStringList lines;
    for (const CheckItem& line : usedLines()) {
        EXPECT_FALSE(line.checked);
        lines.append(line.text);
    }
    EXPECT_EQ(lines, c.lines);
    EXPECT_EQ(ui.messages, c.messages);
    if (c.frameCaption) {
        EXPECT_EQ(form.UsedFrame.text(), QString::fromUtf8(c.frameCaption));
    }
    EXPECT_EQ(form.SESVersionLabel.text(), QString::fromUtf8(c.version));
}

INSTANTIATE_TEST_SUITE_P(
    Table, SingleSession,
    ::testing::Values(
        SingleCase{"SesWithoutSignature",
                   SessionKindId::Ses,
                   "RIFF....WAVE",
                   {{QStringLiteral("\"s.ses\" does not appear to be a valid session file."),
                     QStringLiteral("SES File Error"), MessageIcon::Critical}},
                   {},
                   nullptr,
                   ""},
        SingleCase{"SesWithoutMedia",
                   SessionKindId::Ses,
                   test::sessionBytes(SessionKindId::Ses, {}),
                   {},
                   {"<no media files found>"},
                   kNoMediaCaption,
                   "Audition 3.0"},
        SingleCase{"SesShowsItsVersion",
                   SessionKindId::Ses,
                   test::sessionBytes(SessionKindId::Ses, {"C:\\a.wav"}),
                   {},
                   {"C:/a.wav"},
                   nullptr,
                   "Audition 3.0"},
        SingleCase{"XmlWithoutMedia",
                   SessionKindId::Xml,
                   test::sessionBytes(SessionKindId::Xml, {}),
                   {},
                   {"<no media files found>"},
                   kNoMediaCaption,
                   ""},
        SingleCase{"SesxWithoutMedia",
                   SessionKindId::Sesx,
                   "",
                   {},
                   {"<no media files found>"},
                   kNoMediaCaption,
                   ""},
        SingleCase{"RppWithoutMedia",
                   SessionKindId::Rpp,
                   test::sessionBytes(SessionKindId::Rpp, {}),
                   {},
                   {"<no media files found>"},
                   kNoMediaCaption,
                   ""},
        SingleCase{"VegWithoutMedia",
                   SessionKindId::Veg,
                   "no marks",
                   {},
                   {"<no media files found>"},
                   kNoMediaCaption,
                   ""}),
    kByName);

// A session whose extension is longer than its kind's (which a wide pattern match can list) is
// not read, and no no-media line stands in for it.
TEST_F(SessionFolderTest, ASessionWithALongerExtensionIsNotRead) {
    for (const auto& [kind, name] :
         {std::pair{SessionKindId::Xml, "s.xmlx"}, std::pair{SessionKindId::Sesx, "s.sesxx"}}) {
        useKind(kind);
        const QString file = QString::fromLatin1(name);
        ASSERT_TRUE(writeFile(dir.filePath(file), test::sessionBytes(kind, {"a.wav"})));
        form.SESFile.setItems({file});
        form.SESFile.setListIndex(0);
        EXPECT_THAT(usedLines(), IsEmpty()) << name;
        EXPECT_THAT(form.UnusedFiles.count(), 0) << name;
    }
    EXPECT_THAT(ui.messages, IsEmpty());
}

// A session file that cannot be read is reported, and the load ends there: the sessions after
// it are not read and the other files are not computed. A binary session is probed first, and a
// file that fails the probe is skipped like any file that is not a session.
class Unreadable : public SessionFolderTest, public ::testing::WithParamInterface<SessionKindId> {};

TEST_P(Unreadable, SessionIsReportedAndEndsTheLoad) {
    const SessionKindId kind = GetParam();
    useKind(kind);
    const QString e = ext(kind);
    writeSession(QStringLiteral("a") + e, kind, {QStringLiteral("C:\\1.wav")});
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("b") + e));  // a folder cannot be read
    writeSession(QStringLiteral("c") + e, kind, {QStringLiteral("C:\\2.wav")});
    form.ScanAll.setChecked(true);
    form.SESFile.setItems(
        {QStringLiteral("a") + e, QStringLiteral("b") + e, QStringLiteral("c") + e});
    const QString caption = form.Main.text();
    form.SESFile.setListIndex(0);

    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].title, QStringLiteral("File Error"));
    EXPECT_EQ(ui.messages[0].icon, MessageIcon::Critical);
    EXPECT_TRUE(
        ui.messages[0].text.startsWith(QStringLiteral("An error occurred accessing the selected ") +
                                       kindName(kind) + QStringLiteral(" file.  ")));
    QStringList expected{QStringLiteral("C:/1.wav")};
    if (kind == SessionKindId::Ses) {
        expected.append(QStringLiteral("C:/2.wav"));
    }
    QStringList lines;
    for (const CheckItem& line : usedLines()) {
        lines.append(line.text);
    }
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(form.Main.text(), caption);
    EXPECT_FALSE(ui.busyPointer);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Unreadable,
                         ::testing::Values(SessionKindId::Ses, SessionKindId::Sesx,
                                           SessionKindId::Xml, SessionKindId::Rpp,
                                           SessionKindId::Veg),
                         [](const auto& info) { return kindName(info.param).toStdString(); });

// --- The window during and after a load ------------------------------------------------------

class LoadEnd : public SessionFolderTest, public ::testing::WithParamInterface<SessionKindId> {};

TEST_P(LoadEnd, NamesTheFileWhileReadingAndRestoresTheWindowAfter) {
    const SessionKindId kind = GetParam();
    useKind(kind);
    const QString name = QStringLiteral("take") + ext(kind);
    writeSession(name, kind, {QStringLiteral("a.wav")});
    const QString caption = form.Main.text();
    QStringList captions;
    QObject::connect(&form.Main, &Control::textChanged, [&] { captions.append(form.Main.text()); });
    form.UsedFilesBox.setItems({QStringLiteral("x")});
    form.UsedFilesBox.setListIndex(0);

    select(name);
    EXPECT_EQ(captions, QStringList({QStringLiteral("Reading ") + folder() + name +
                                         QStringLiteral("...Please Wait"),
                                     caption}));
    EXPECT_EQ(form.UsedFilesBox.listIndex(), -1);
    EXPECT_FALSE(ui.busyPointer);
    EXPECT_TRUE(ui.pointerChanges.contains(true));
}

// The binary reader leaves the pointer to the load; the text readers show it themselves.
INSTANTIATE_TEST_SUITE_P(Kinds, LoadEnd, ::testing::Values(SessionKindId::Ses, SessionKindId::Xml),
                         [](const auto& info) { return kindName(info.param).toStdString(); });

// --- A selection made while a load runs ------------------------------------------------------

TEST_F(SessionFolderTest, ASelectionDuringALoadIsLoadedAfterIt) {
    useKind(SessionKindId::Xml);
    writeSession(QStringLiteral("a.xml"), SessionKindId::Xml, {QStringLiteral("a.wav")});
    writeSession(QStringLiteral("b.xml"), SessionKindId::Xml, {QStringLiteral("b.wav")});
    const QString caption = form.Main.text();
    QStringList captions;
    QObject::connect(&form.Main, &Control::textChanged, [&] { captions.append(form.Main.text()); });
    ui.whileBusy = [&] {
        EXPECT_TRUE(form.sessionLoadRunning());
        form.SESFile.setListIndex(1);
    };

    select(QStringLiteral("a.xml"));
    const auto reading = [&](const char* name) {
        return QStringLiteral("Reading ") + folder() + QString::fromLatin1(name) +
               QStringLiteral("...Please Wait");
    };
    EXPECT_EQ(captions, QStringList({reading("a.xml"), caption, reading("b.xml"), caption}));
    EXPECT_THAT(usedLines(), ElementsAreArray({CheckItem{QStringLiteral("b.wav")}}));
    EXPECT_FALSE(form.sessionLoadRunning());
}

TEST_F(SessionFolderTest, ATabSwitchDuringALoadLeavesBothListsEmpty) {
    useKind(SessionKindId::Xml);
    writeSession(QStringLiteral("a.xml"), SessionKindId::Xml, {QStringLiteral("a.wav")});
    ui.whileBusy = [&] { form.selectTabByKey(QStringLiteral("SESXFiles")); };
    select(QStringLiteral("a.xml"));
    EXPECT_THAT(usedLines(), IsEmpty());
    EXPECT_EQ(form.UnusedFiles.count(), 0);
    EXPECT_EQ(form.sessionFilePattern(), QStringLiteral("*.sesx"));
}

}  // namespace
}  // namespace tidewick
