#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "session_fixture.h"

namespace tidewick {
namespace {

using test::SessionFolderTest;
using test::writeFile;
using enum SessionKindId;

// A saved path and the line it gives. {S} is the session folder, {X} a folder elsewhere and {C}
// the current folder, each with its separator.
struct PathCase {
    const char* name;
    SessionKindId kind;
    bool trim;
    const char *saved, *line;
    QStringList files = {};  // on disk before the load
};
void PrintTo(const PathCase& c, std::ostream* out) {
    *out << c.name;
}

class Resolution : public SessionFolderTest, public ::testing::WithParamInterface<PathCase> {
protected:
    void SetUp() override {
        SessionFolderTest::SetUp();
        ASSERT_TRUE(QDir::setCurrent(current.path()));
    }
    void TearDown() override { QDir::setCurrent(previousCurrent); }

    QString expand(QString text) const {
        return text.replace("{S}", folder())
            .replace("{X}", elsewhere.path() + hostSeparator())
            .replace("{C}", current.path() + hostSeparator());
    }

    QTemporaryDir elsewhere;
    QTemporaryDir current;
    const QString previousCurrent = QDir::currentPath();
};

TEST_P(Resolution, ListsTheResolvedPathCheckedWhenTheFileExists) {
    const PathCase& c = GetParam();
    for (const QString& file : c.files) {
        ASSERT_TRUE(writeFile(expand(file), "RIFF"));
    }
    useKind(c.kind);
    form.IgnoreFoldersCheck.setChecked(c.trim);
    writeSession("s" + ext(c.kind), c.kind, {expand(c.saved)});
    select("s" + ext(c.kind));
    EXPECT_EQ(usedLines(), QStringList{expand(c.line)});
    EXPECT_TRUE(ui.messages.isEmpty());
}

// A drive letter or a leading "\" names a root this machine lacks: never looked for.
const PathCase kPaths[] = {
    {"BareName", Xml, false, "a.wav", "[x] a.wav", {"{S}a.wav"}},
    {"BareNameMissing", Rpp, false, "gone.wav", "[ ] gone.wav"},
    {"Relative", Sesx, false, "Audio\\a.wav", "[x] {S}Audio/a.wav", {"{S}Audio/a.wav"}},
    {"Absolute", Veg, false, "{X}b.wav", "[x] {X}b.wav", {"{X}b.wav"}},
    {"Drive", Rpp, false, "C:\\M\\a.wav", "[ ] C:/M/a.wav", {"{C}C:/M/a.wav", "{S}C:/M/a.wav"}},
    {"Rooted", Xml, false, "\\Audio\\a.wav", "[ ] /Audio/a.wav"},
    {"SesAbsolute", Ses, false, "{X}b.wav", "[x] {X}b.wav", {"{X}b.wav"}},
    {"SesBareName", Ses, false, "a.wav", "[ ] a.wav", {"{S}a.wav", "{C}a.wav"}},
    {"TrimKeeps", Ses, true, "E:\\o\\X_Recorded\\t", "[x] X_Recorded/t", {"{S}X_Recorded/t"}},
    {"TrimDrive", Xml, true, "C:\\M\\a.wav", "[x] a.wav", {"{S}a.wav"}},
    {"TrimAbsolute", Sesx, true, "{X}R/t.wav", "[ ] t.wav", {"{X}R/t.wav"}},
};
INSTANTIATE_TEST_SUITE_P(Table, Resolution, ::testing::ValuesIn(kPaths),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(TrimFolders, KeepsTheFileNameAndAFolderEndingInTheRecordFolder) {
    test::BusyUser ui;
    MainForm form{ui};
    struct Case {
        const char* record;
        const char* path;
        const char* trimmed;
    };
    for (const Case& c : {
             Case{"_Recorded", "D:\\Audio\\Song_Recorded\\Take 1.wav", "Song_Recorded\\Take 1.wav"},
             Case{"_Recorded", "D:\\Audio\\Take 1.wav", "Take 1.wav"},
             Case{"_Recorded", "Take 1.wav", "Take 1.wav"},
             Case{"_Recorded", "C:\\Take 1.wav", "Take 1.wav"},
             Case{"_Recorded", "/home/u/song_RECORDED/t.wav", "song_RECORDED/t.wav"},
             Case{"", "/home/u/Audio/t.wav", "Audio/t.wav"},
         }) {
        form.state.RecordFolder = c.record;
        EXPECT_EQ(form.TrimFolders(c.path), c.trimmed) << c.path << " with " << c.record;
    }
}

TEST_F(SessionFolderTest, EachExactTextIsListedOnceInFirstSeenOrder) {
    useKind(Ses);
    writeSession("s.ses", Ses,
                 {"C:\\Media\\a.wav", "C:\\Media\\b.wav", "C:\\Media\\a.wav", "c:\\media\\A.WAV"});
    select("s.ses");
    EXPECT_EQ(usedLines(),
              QStringList({"[ ] C:/Media/a.wav", "[ ] C:/Media/b.wav", "[ ] c:/media/A.WAV"}));
    useKind(Xml);
    writeSession("s.xml", Xml, {"Audio\\a.wav", "Audio/a.wav", "a.wav", folder() + "a.wav"});
    select("s.xml");
    EXPECT_EQ(usedLines(), QStringList({"[ ] " + folder() + "Audio/a.wav", "[ ] a.wav",
                                        "[ ] " + folder() + "a.wav"}));
}

// An empty session adds no no-media line, and a binary file without the signature is skipped.
TEST_F(SessionFolderTest, WholeFolderModeMergesEverySessionSilently) {
    for (const SessionKind& kind : sessionKinds()) {
        SCOPED_TRACE(kind.tabCaption.toStdString());
        useKind(kind.id);
        const QString e = ext(kind.id);
        writeSession("a" + e, kind.id, {});
        writeSession("b" + e, kind.id, {"C:\\m\\1.wav", "C:\\m\\2.wav"});
        writeSession("c" + e, kind.id, {"C:\\m\\2.wav", "C:\\m\\3.wav"});
        ASSERT_TRUE(kind.id != Ses || writeFile(dir.filePath("d.ses"), "NOT A SESSION"));
        form.ScanAll.setChecked(true);
        select("c" + e);
        EXPECT_EQ(usedLines(), QStringList({"[ ] C:/m/1.wav", "[ ] C:/m/2.wav", "[ ] C:/m/3.wav"}));
        EXPECT_EQ(form.SESVersionLabel.text(), QString());
    }
    EXPECT_TRUE(ui.messages.isEmpty());
}

// A text session with a longer extension than its kind's is not read, and no other files show.
TEST_F(SessionFolderTest, ASingleSessionThatIsNotOneOrHoldsNoMedia) {
    struct Case {
        SessionKindId kind;
        const char* file;
        QByteArray bytes;
        QStringList lines;
        const char* version;
    };
    const QString noMedia = "[ ] <no media files found>";
    for (const Case& c : {
             Case{Ses, "s.ses", "RIFF....WAVE", {}, ""},
             Case{Ses, "s.ses", test::sessionBytes(Ses, {}), {noMedia}, "Audition 3.0"},
             Case{Xml, "s.xml", test::sessionBytes(Xml, {}), {noMedia}, ""},
             Case{Xml, "s.xmlx", test::sessionBytes(Xml, {"a.wav"}), {}, ""},
             Case{Sesx, "s.sesxx", test::sessionBytes(Sesx, {"a.wav"}), {}, ""},
         }) {
        SCOPED_TRACE(c.file);
        useKind(c.kind);
        ASSERT_TRUE(writeFile(dir.filePath(c.file), c.bytes));
        form.SESFile.setItems({c.file});
        form.SESFile.setListIndex(0);
        EXPECT_EQ(usedLines(), c.lines);
        EXPECT_EQ(form.SESVersionLabel.text(), c.version);
        if (!c.lines.isEmpty()) {
            EXPECT_EQ(form.UsedFrame.text(),
                      "0 Media File(s) Used  (NB: Files with a check mark exist on Disk)");
        } else if (c.kind != Ses) {
            EXPECT_EQ(form.UnusedFiles.count(), 0);
        }
    }
    EXPECT_EQ(ui.messages,
              QList<MessageBoxRequest>({{"\"s.ses\" does not appear to be a valid session file.",
                                         "SES File Error", MessageIcon::Critical}}));
}

// A binary session that cannot be read fails its probe and is passed over; a text one ends the
// load, keeping what was listed.
TEST_F(SessionFolderTest, AnUnreadableSessionIsReported) {
    form.ScanAll.setChecked(true);
    for (const SessionKind& kind : sessionKinds()) {
        SCOPED_TRACE(kind.tabCaption.toStdString());
        useKind(kind.id);
        ui.messages.clear();
        const QString e = ext(kind.id);
        writeSession("a" + e, kind.id, {"C:\\1.wav"});
        ASSERT_TRUE(QDir(dir.path()).mkdir("b" + e));  // a folder cannot be read
        writeSession("c" + e, kind.id, {"C:\\2.wav"});
        form.SESFile.setItems({"a" + e, "b" + e, "c" + e});
        const QString caption = form.Main.text();
        form.SESFile.setListIndex(0);
        ASSERT_EQ(ui.messages.size(), 1);
        EXPECT_EQ(ui.messages[0].title, "File Error");
        EXPECT_EQ(ui.messages[0].icon, MessageIcon::Critical);
        EXPECT_TRUE(ui.messages[0].text.startsWith("An error occurred accessing the selected " +
                                                   kind.tabCaption + " file.  "));
        EXPECT_EQ(usedLines(), kind.id == Ses ? QStringList({"[ ] C:/1.wav", "[ ] C:/2.wav"})
                                              : QStringList({"[ ] C:/1.wav"}));
        EXPECT_EQ(form.Main.text(), caption);
        EXPECT_FALSE(ui.busyPointer);
    }
}

// The binary reader leaves the pointer to the load; the text readers show it themselves.
TEST_F(SessionFolderTest, ALoadNamesTheFileWhileReadingAndRestoresTheWindowAfter) {
    const QString caption = form.Main.text();
    QStringList captions;
    QObject::connect(&form.Main, &Control::textChanged, [&] { captions.append(form.Main.text()); });
    for (const SessionKindId kind : {Ses, Xml}) {
        useKind(kind);
        writeSession("take" + ext(kind), kind, {"a.wav"});
        form.UsedFilesBox.setItems({"x"});
        form.UsedFilesBox.setListIndex(0);
        captions.clear();
        ui.pointerChanges.clear();
        select("take" + ext(kind));
        EXPECT_EQ(
            captions,
            QStringList({"Reading " + folder() + "take" + ext(kind) + "...Please Wait", caption}));
        EXPECT_EQ(form.UsedFilesBox.listIndex(), -1);
        EXPECT_TRUE(ui.pointerChanges.contains(true));
        EXPECT_FALSE(ui.busyPointer);
    }
}

TEST_F(SessionFolderTest, ASelectionDuringALoadIsLoadedAfterIt) {
    useKind(Xml);
    writeSession("a.xml", Xml, {"a.wav"});
    writeSession("b.xml", Xml, {"b.wav"});
    const QString caption = form.Main.text();
    QStringList captions;
    QObject::connect(&form.Main, &Control::textChanged, [&] { captions.append(form.Main.text()); });
    ui.whileBusy = [&] { form.SESFile.setListIndex(1); };
    select("a.xml");
    const QString reading = "Reading " + folder();
    EXPECT_EQ(captions, QStringList({reading + "a.xml...Please Wait", caption,
                                     reading + "b.xml...Please Wait", caption}));
    EXPECT_EQ(usedLines(), QStringList{"[ ] b.wav"});
    EXPECT_FALSE(form.sessionLoadRunning());
}

TEST_F(SessionFolderTest, ATabSwitchDuringALoadLeavesBothListsEmpty) {
    useKind(Xml);
    writeSession("a.xml", Xml, {"a.wav"});
    ui.whileBusy = [&] { form.selectTabByKey("SESXFiles"); };
    select("a.xml");
    EXPECT_EQ(form.UsedFiles.count(), 0);
    EXPECT_EQ(form.UnusedFiles.count(), 0);
    EXPECT_EQ(form.sessionFilePattern(), "*.sesx");
}

}  // namespace
}  // namespace tidewick
