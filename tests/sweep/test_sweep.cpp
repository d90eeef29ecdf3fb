#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "forms/captions.h"
#include "forms/core_messages.h"
#include "forms/kind_texts.h"
#include "support/session_files.h"
#include "sweep/sweep.h"
#include "text/path_text.h"

namespace tidewick {
namespace {

using enum SessionKindId;

QString ext(SessionKindId id) {
    return sessionKind(id).sessionPattern.section(u';', 0, 0).mid(1);  // ".aup" of "*.aup;*.aup3"
}

// A session folder on disk and the request the window would make for it.
class SweepTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    QString folder() const { return dir.path() + hostSeparator(); }

    // (Sparse) files of `size` bytes, relative to the session folder or absolute.
    void touch(const QStringList& paths, qint64 size = 0) const {
        for (const QString& path : paths) {
            QFile file(QDir(dir.path()).filePath(path));
            QDir().mkpath(QFileInfo(file).absolutePath());
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(size)) << qPrintable(path);
        }
    }
    void writeSession(const QString& name, SessionKindId kind, const QStringList& paths) const {
        ASSERT_TRUE(test::writeFile(dir.filePath(name), test::sessionBytes(kind, paths)));
    }

    // The request for `session` (or the whole folder) as the tab switch leaves the options.
    SweepRequest request(SessionKindId id, const QString& session, bool whole = false) const {
        SweepRequest r;
        r.kind = &sessionKind(id);
        r.folder = dir.path();
        r.sessions = sessionFiles(fs, dir.path(), r.kind->sessionPattern);
        r.selected = int(r.sessions.indexOf(session));
        r.wholeFolder = whole;
        r.recordFolder = id == Rpp || id == Veg ? dir.path() : "_Recorded";
        return r;
    }

    // The used lines as "[x] text" and "[ ] text", and what the user was told.
    QStringList used(const SweepRequest& r) {
        SweepEvents events;
        events.tell = [this](const ReadProblem& problem) {
            const MessageBoxRequest m = readProblemMessage(problem);
            told.append(m.title + ": " + m.text);
        };
        media = readUsedMedia(r, fs, events);
        QStringList lines;
        for (const UsedLine& line : shownUsedLines(media)) {
            lines.append((line.exists ? "[x] " : "[ ] ") + line.text);
        }
        return lines;
    }
    QStringList others(const SweepRequest& r, const QStringList& usedLines) const {
        QList<UsedLine> lines;
        for (const QString& text : usedLines) {
            lines.append({text, false, {}, {}, {}});
        }
        const UsedIndex used(lines, r.folder, r.trimFolders, fs);
        QStringList texts;
        for (const OtherFile& file : listOtherFiles(r, used, r.recordFolder, fs)) {
            texts.append(file.text);
        }
        return texts;
    }

    QTemporaryDir dir;
    FileSystem fs;
    UsedMedia media;
    QStringList told;
};

// Each saved path and the line it gives, checked when the file exists. {S} is the session
// folder, {X} a folder elsewhere and {C} the current folder, each with its separator. A drive
// letter or a leading "\" names a root this machine lacks: never looked for.
TEST_F(SweepTest, ResolvesEachPathAgainstTheSessionFolderAndTheDisk) {
    QTemporaryDir elsewhere, current;
    const QString previousCurrent = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(current.path()));
    const auto expand = [&](QString text) {
        return text.replace("{S}", folder())
            .replace("{X}", elsewhere.path() + hostSeparator())
            .replace("{C}", current.path() + hostSeparator());
    };
    const struct {
        SessionKindId kind;
        bool trim;
        const char *saved, *line;
        QStringList files;  // on disk before the load
    } rows[] = {
        {Xml, false, "a.wav", "[x] a.wav", {"{S}a.wav"}},
        {Rpp, false, "gone.wav", "[ ] gone.wav", {}},
        {Sesx, false, "Audio\\a.wav", "[x] {S}Audio/a.wav", {"{S}Audio/a.wav"}},
        {Veg, false, "{X}b.wav", "[x] {X}b.wav", {"{X}b.wav"}},
        {Rpp, false, "C:\\M\\a.wav", "[ ] C:/M/a.wav", {"{C}C:/M/a.wav", "{S}C:/M/a.wav"}},
        {Xml, false, "\\Audio\\a.wav", "[ ] /Audio/a.wav", {}},
        {Ses, false, "{X}b.wav", "[x] {X}b.wav", {"{X}b.wav"}},
        {Ses, false, "a.wav", "[ ] a.wav", {"{S}a.wav", "{C}a.wav"}},
        {Ses, true, "E:\\o\\X_Recorded\\t", "[x] X_Recorded/t", {"{S}X_Recorded/t"}},
        {Ses, true, "/o/x_RECORDED/t", "[ ] x_RECORDED/t", {}},  // the record folder in any case
        {Xml, true, "C:\\M\\a.wav", "[x] a.wav", {"{S}a.wav"}},
        {Sesx, true, "{X}R/t.wav", "[ ] t.wav", {"{X}R/t.wav"}},
    };
    for (const auto& row : rows) {
        for (const QString& file : row.files) {
            ASSERT_TRUE(test::writeFile(expand(file), "RIFF"));
        }
        writeSession("s" + ext(row.kind), row.kind, {expand(row.saved)});
        SweepRequest r = request(row.kind, "s" + ext(row.kind));
        r.trimFolders = row.trim;
        EXPECT_EQ(used(r), QStringList{expand(row.line)}) << row.saved;
        for (const QString& file : row.files) {
            QFile::remove(expand(file));
        }
    }
    EXPECT_TRUE(told.isEmpty());
    QDir::setCurrent(previousCurrent);
}

TEST_F(SweepTest, EachExactTextIsListedOnceInFirstSeenOrder) {
    // Letter case makes another line; "\\" and "/" make the same one.
    const QStringList saved = {"Audio\\a.wav", "Audio/a.wav", "AUDIO/a.wav", "a.wav",
                               folder() + "a.wav"};
    writeSession("s.xml", Xml, saved);
    EXPECT_EQ(used(request(Xml, "s.xml")),
              QStringList({"[ ] " + folder() + "Audio/a.wav", "[ ] " + folder() + "AUDIO/a.wav",
                           "[ ] a.wav", "[ ] " + folder() + "a.wav"}));
}

// An empty session adds no no-media line.
TEST_F(SweepTest, WholeFolderModeMergesEverySessionSilently) {
    for (const SessionKind& kind : sessionKinds()) {
        SCOPED_TRACE(kind.idText.toStdString());
        const QString e = ext(kind.id);
        writeSession("a" + e, kind.id, {});
        writeSession("b" + e, kind.id, {"C:\\m\\1.wav", "C:\\m\\2.wav"});
        writeSession("c" + e, kind.id, {"C:\\m\\2.wav", "C:\\m\\3.wav"});
        EXPECT_EQ(used(request(kind.id, "c" + e, true)),
                  QStringList({"[ ] C:/m/1.wav", "[ ] C:/m/2.wav", "[ ] C:/m/3.wav"}));
        EXPECT_EQ(media.version, QString());
    }
    EXPECT_TRUE(told.isEmpty());
}

// A text session with a longer extension than its kind's is not read, and no other files show.
TEST_F(SweepTest, ASingleSessionThatIsNotOneOrHoldsNoMedia) {
    struct Case {
        SessionKindId kind;
        const char* file;
        QByteArray bytes;
        QStringList lines;
        const char *version, *told = nullptr;
    };
    const QString noMedia = "[ ] <no media files found>";
    const char* invalid = "SES File Error: \"s.ses\" does not appear to be a valid session file.";
    touch({"x.wav"});
    for (const Case& c :
         {Case{Ses, "s.ses", "RIFF....WAVE", {}, "", invalid},
          Case{Ses, "s.ses", test::sessionBytes(Ses, {}), {noMedia}, "Audition 3.0"},
          Case{Xml, "s.xml", test::sessionBytes(Xml, {}), {noMedia}, ""},
          Case{Xml, "s.xmlx", test::sessionBytes(Xml, {"a.wav"}), {}, ""},
          Case{Sesx, "s.sesxx", test::sessionBytes(Sesx, {"a.wav"}), {}, ""}}) {
        SCOPED_TRACE(c.file);
        ASSERT_TRUE(test::writeFile(dir.filePath(c.file), c.bytes));
        told.clear();
        SweepRequest r = request(c.kind, c.file);
        r.sessions = {c.file};
        r.selected = 0;
        EXPECT_EQ(used(r), c.lines);
        EXPECT_EQ(media.version, c.version);
        EXPECT_EQ(media.noMedia, !c.lines.isEmpty());
        EXPECT_EQ(told, c.told ? QStringList{c.told} : QStringList());
        if (c.kind != Ses) {
            EXPECT_EQ(sweepFolder(r, fs).others.isEmpty(), c.lines.isEmpty());
        }
    }
}

// A session that cannot be read, or not as one of its kind, ends the load, keeping what was
// listed and listing no other files: they could be the media it uses.
TEST_F(SweepTest, AnUnreadableOrForeignSessionStopsTheLoad) {
    for (const SessionKind& kind : sessionKinds()) {
        SCOPED_TRACE(kind.idText.toStdString());
        told.clear();
        const QString e = ext(kind.id);
        writeSession("a" + e, kind.id, {"C:\\1.wav"});
        ASSERT_TRUE(QDir(dir.path()).mkdir("b" + e));  // a folder cannot be read
        writeSession("c" + e, kind.id, {"C:\\2.wav"});
        SweepRequest r = request(kind.id, "a" + e, true);
        r.sessions = {"a" + e, "b" + e, "c" + e};
        EXPECT_EQ(used(r), QStringList({"[ ] C:/1.wav"}));
        ASSERT_EQ(told.size(), kind.id == Ses ? 2 : 1);  // and "does not appear to be valid"
        EXPECT_TRUE(told[0].startsWith("File Error: An error occurred accessing the selected " +
                                       kindTexts(kind.id).tabCaption + " file.  \"b" + e + "\": "));
        EXPECT_TRUE(media.stopped);
        EXPECT_TRUE(sweepFolder(r, fs).others.isEmpty());
        // A file that is no session of the kind, even an empty one, stops it alike.
        ASSERT_TRUE(QDir(dir.path()).rmdir("b" + e) && test::writeFile(dir.filePath("b" + e)));
        told.clear();
        EXPECT_EQ(used(r), QStringList({"[ ] C:/1.wav"}));
        EXPECT_TRUE(media.stopped && !told.isEmpty());
    }
}

TEST_F(SweepTest, APeakFileIsHeldBackOnlyByUsedMediaItBelongsTo) {
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
    for (const auto& [kind, session, usedFile, peak, heldBack] : rows) {
        touch({session, peak});
        SweepRequest r = request(kind, session);
        const QString usedLine = folder() + QString(usedFile).replace(u'/', hostSeparator());
        r.keepPeaks = true;
        EXPECT_EQ(others(r, {usedLine}).contains(peak), !heldBack) << usedFile << " / " << peak;
        r.keepPeaks = false;
        EXPECT_TRUE(others(r, {usedLine}).contains(peak)) << usedFile << " / " << peak;
        QFile::remove(dir.filePath(peak));
    }
}

TEST_F(SweepTest, TheMediaTypeChoosesTheFilesAndOnlyAllFilesLetsPeakFilesIn) {
    touch({"mix.ses", "a.wav", "a.pk", "b.BWF", "c.mp3", "README", ".hidden"});
    struct Case {
        const char* pattern;
        bool peaksListed;
        QStringList lines;
    };
    for (const Case& c : {
             Case{"*.*", true, {"a.wav", "b.BWF", "c.mp3", "README", "a.pk"}},  // hidden never
             Case{"*.wav", false, {"a.wav"}},
             Case{"*.bwf; *.WAV", false, {"a.wav", "b.BWF"}},
         }) {
        SweepRequest r = request(Ses, "mix.ses");
        r.typePattern = c.pattern;
        r.peaksListed = c.peaksListed;
        EXPECT_EQ(others(r, {}), c.lines) << c.pattern;
    }
}

// Whole folder, sessions listed, the one selected; the first and last session read.
TEST(ScanRange, FollowsTheSelectionOrTheWholeListHoweverLongTheListIs) {
    const int cases[][5] = {
        {0, 3, 1, 1, 1}, {0, 3, -1, 0, -1}, {1, 3, 1, 0, 2}, {0, 40000, 32768, 32768, 32768}};
    for (const auto& [whole, files, selected, first, last] : cases) {
        SweepRequest r;
        r.sessions = QStringList(files, "s.ses");
        r.selected = selected;
        r.wholeFolder = whole;
        EXPECT_EQ(std::pair(scanRange(r).first, scanRange(r).last), std::pair(first, last));
    }
}

// The selected session, or every scanned one, is left out in any letter case, and each scanned
// session's recordings folder is gathered (mix_Recorded for mix.ses).
TEST_F(SweepTest, LeavesOutTheSessionsAndGathersTheirRecordingsFolders) {
    touch({"mix.ses", "OLD.SES", "mix.ses.bak", "mix_Recorded/take1.wav", "mix_Recorded/take2.wav",
           "OLD_Recorded/take3.wav", "Other/take4.wav"});
    const QString mix = QString("mix_Recorded") + hostSeparator();
    const QStringList usedLines = {folder() + mix + "take1.wav"};
    EXPECT_EQ(others(request(Ses, "mix.ses"), usedLines),
              QStringList({"mix.ses.bak", "OLD.SES", mix + "take2.wav"}));
    EXPECT_EQ(others(request(Ses, "mix.ses", true), usedLines),
              QStringList({"mix.ses.bak", mix + "take2.wav",
                           QString("OLD_Recorded") + hostSeparator() + "take3.wav"}));
}

TEST_F(SweepTest, ALetterCaseMatchOrABareNameCountsAsUsedForEveryKind) {
    // A null used line stands for the file's whole path upper-cased.
    const std::tuple<SessionKindId, const char*, const char*> rows[] = {
        {Ses, "mix.ses", nullptr},    {Xml, "mix.xml", nullptr},     {Veg, "cut.veg", nullptr},
        {Rpp, "song.rpp", nullptr},   {Ses, "mix.ses", "Take.wav"},  {Xml, "mix.xml", "take.WAV"},
        {Veg, "cut.veg", "TAKE.wav"}, {Rpp, "song.rpp", "take.WAV"},
    };
    touch({"Take.wav", "spare.wav", "mix_Recorded/Take.wav"});
    for (const auto& [kind, session, usedLine] : rows) {
        touch({session});
        const SweepRequest r = request(kind, session);  // the tab's own record folder
        const QStringList lines =
            others(r, {usedLine ? QString(usedLine) : (folder() + "Take.wav").toUpper()});
        EXPECT_TRUE(lines.contains("spare.wav") && !lines.contains("Take.wav"))
            << session << " / " << (usedLine ? usedLine : "whole path");
        // A bare name holds back only the session folder's file.
        EXPECT_EQ(lines.contains(QString("mix_Recorded") + hostSeparator() + "Take.wav"),
                  kind == Ses || kind == Xml)
            << session;
        QFile::remove(dir.filePath(session));
    }
}

// A session written on macOS names "café" with a separate accent; the disk may hold the one
// character, or the other way round. Shortened lines still know the file they came from.
TEST_F(SweepTest, UnicodeFormsAndShortenedLinesNameTheSameFile) {
    const QString composed = QString::fromUtf8("caf\xc3\xa9.wav");
    const QString decomposed = QString::fromUtf8("cafe\xcc\x81.wav");
    touch({composed, "mix.ses", "song.rpp"});
    EXPECT_EQ(others(request(Ses, "mix.ses"), {folder() + decomposed}), QStringList{"song.rpp"});
    SweepRequest r = request(Rpp, "song.rpp");
    QTemporaryDir records;
    touch({records.path() + "/take.wav"});
    r.trimFolders = true;
    r.subFolderOn = true;
    r.subFolder = r.recordFolder = records.path();
    // As the load shortens a path in REAPER's record folder: that folder's name stays.
    const QString take = trimFolders(records.path() + "/take.wav", r.recordFolder);
    EXPECT_EQ(others(r, {take, composed}), QStringList{"mix.ses"});
}

// Each line from the sub-folder row leads back to its file: a relative folder lies in the
// session folder, any other stands as it is, and a folder listed already adds nothing. A REAPER
// load gathers its record folder ({R} an absolute one); with "Check All" the first project's.
TEST_F(SweepTest, TheSubFolderRowListsEachFileOnceByAPathThatLeadsToIt) {
    QTemporaryDir records;
    touch({"mix.wav", "Media/take.wav", "Media/used.wav", records.path() + "/r.wav"});
    const QString r = withSeparator(records.path()), media = folder() + "Media/";
    const struct {
        SessionKindId kind;
        QString row;
        QStringList recordPaths;  // one project each
        QStringList lines;
    } rows[] = {
        {Veg, " Media ", {""}, {"mix.wav", "Media/take.wav"}},
        {Veg, r, {""}, {"mix.wav", r + "r.wav"}},
        {Veg, folder() + "./", {""}, {"mix.wav"}},
        {Rpp, "", {"Media"}, {"mix.wav", media + "take.wav"}},
        {Rpp, "", {records.path()}, {"mix.wav", r + "r.wav"}},
        {Rpp, "", {"Gone"}, {"mix.wav"}},
        {Rpp, "", {"Gone", "Media"}, {"mix.wav", media + "take.wav"}},
        {Rpp, "", {records.path(), "Media"}, {"mix.wav", media + "take.wav"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.recordPaths.join(',').toStdString() + row.row.toStdString());
        for (int i = 0; i < row.recordPaths.size(); ++i) {
            const QByteArray project =
                "<REAPER_PROJECT\r\n\r\nRECORD_PATH \"" + row.recordPaths[i].toUtf8() +
                "\" \"\"\r\n<SOURCE WAVE\r\nFILE \"x/../Media/used.wav\"\r\n>\r\n>\r\n";
            ASSERT_TRUE(test::writeFile(
                dir.filePath(QString("p%1").arg(i) + ext(row.kind)),
                row.kind == Rpp ? project : test::sessionBytes(Veg, {"Media/used.wav"})));
        }
        SweepRequest req = request(row.kind, "p0" + ext(row.kind), row.recordPaths.size() > 1);
        req.subFolderOn = true;
        req.subFolder = row.row;
        QStringList lines;
        for (const OtherFile& file : sweepFolder(req, fs).others) {
            lines.append(file.text);
            EXPECT_TRUE(QFileInfo(otherFilePath(folder(), file.text)).isFile())
                << qPrintable(file.text);
        }
        EXPECT_EQ(lines, row.lines);
        QFile::remove(dir.filePath("p0" + ext(row.kind)));
        QFile::remove(dir.filePath("p1" + ext(row.kind)));
    }
}

#ifdef Q_OS_UNIX
// A path names up to three files of the session folder, each once: as written (a relative one
// there), from its last folder there (kept when it is named after the recordings), by its name.
TEST(FilesNamedBy, AsWrittenFromItsLastFolderAndByItsName) {
    const QStringList before = {"/s/take.wav"};  // a call adds to the list, judging its own
    for (const auto& [written, files] : std::initializer_list<std::pair<QString, QStringList>>{
             {"take.wav", {"/s/take.wav"}},
             {"/s/take.wav", {"/s/take.wav"}},
             {"Audio/take.wav", {"/s/Audio/take.wav", "/s/take.wav"}},
             {"D:\\Old\\Audio\\take.wav", {"D:/Old/Audio/take.wav", "/s/take.wav"}},
             {"/x/Song_Recorded/take.wav",
              {"/x/Song_Recorded/take.wav", "/s/Song_Recorded/take.wav", "/s/take.wav"}}}) {
        SCOPED_TRACE(written.toStdString());
        QStringList named = before;
        appendFilesNamedBy(written, "/s/", "_Recorded", named);
        EXPECT_EQ(named, before + files);
    }
}

// A pipe would block a read and /dev/zero would never end one: neither is listed as a session,
// and one named outright is refused, by name, before it is opened.
TEST_F(SweepTest, OnlyOrdinaryFilesAreSessions) {
    writeSession("a.xml", Xml, {"a.wav"});
    ASSERT_EQ(::mkfifo(QFile::encodeName(dir.filePath("pipe.xml")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link("/dev/zero", dir.filePath("zero.xml")));
    ASSERT_TRUE(QFile::link(dir.filePath("gone"), dir.filePath("broken.xml")));
    EXPECT_EQ(sessionFiles(fs, dir.path(), "*.xml"), QStringList{"a.xml"});
    for (const char* name : {"pipe.xml", "zero.xml", "broken.xml"}) {
        const SessionRead read = readSessionFile(sessionKind(Xml), dir.filePath(name), {});
        EXPECT_EQ(read.outcome, ReaderOutcome::Failed) << name;
        EXPECT_TRUE(read.problem &&
                    readProblemText(*read.problem).contains(QString("\"%1\": ").arg(name)))
            << name;
    }
    EXPECT_TRUE(others(request(Xml, "a.xml"), {}).isEmpty());
}

// A name is bytes: one that is no UTF-8 is read, listed and leads back to its file.
TEST_F(SweepTest, NamesThatAreNoUtf8LeadBackToTheirFiles) {
    const auto create = [this](const QByteArray& name, const QByteArray& bytes) {
        QFile file;
        const int fd = ::open((QFile::encodeName(dir.path()) + '/' + name).constData(),
                              O_WRONLY | O_CREAT, 0600);
        ASSERT_TRUE(fd >= 0 && file.open(fd, QIODevice::WriteOnly, QFile::AutoCloseHandle));
        file.write(bytes);
    };
    create("mix\xff.xml", test::sessionBytes(Xml, {"used.wav"}));
    create("used.wav", "RIFF");
    create("take\xfe.wav", "RIFF");
    const SweepRequest r = request(Xml, {}, true);
    ASSERT_EQ(r.sessions.size(), 1);
    const Sweep sweep = sweepFolder(r, fs);
    EXPECT_EQ(used(r), QStringList{"[x] used.wav"});
    ASSERT_EQ(sweep.others.size(), 1);
    EXPECT_EQ(visibleText(sweep.others[0].text), "take\\xFE.wav");
    EXPECT_EQ(fs.fileSize(folder() + sweep.others[0].text), 4);
    // QTemporaryDir cannot remove names it cannot spell: they go by their bytes.
    for (const char* name : {"mix\xff.xml", "take\xfe.wav"}) {
        ::unlink((QFile::encodeName(dir.path()) + '/' + name).constData());
    }
}

// However a used file is reached, it is not offered: through a folder that is a link (either
// way round), through a link the session names, by its name where the session's Windows path
// finds nothing. {S} is the session folder as the request names it, {R} the real folder; the
// session lives in {R}, and "link" is a link to it.
TEST_F(SweepTest, AUsedFileIsRecognisedHoweverItIsReached) {
    touch({"real/used.wav", "real/other.wav", "real/take1.wav", "real/s_Recorded/t.wav",
           "real/Audio/a.wav"});
    ASSERT_TRUE(QFile::link("real", dir.filePath("link")));
    ASSERT_TRUE(QFile::link("used.wav", dir.filePath("real/alias.wav")));
    ASSERT_TRUE(QFile::link("Audio", dir.filePath("real/Media")));
    const struct {
        const char* name;
        SessionKindId kind;
        const char* scanned;  // the session folder as the request names it
        QStringList saved;
        QStringList others, kept;
        bool subFolder;
    } rows[] = {
        {"scanned through a link",
         Sesx,
         "link",
         {"{R}used.wav"},
         {"alias.wav", "other.wav", "take1.wav", "s_Recorded/t.wav"},
         {},
         false},
        {"named through a link",
         Sesx,
         "real",
         {"{L}used.wav"},
         {"alias.wav", "other.wav", "take1.wav", "s_Recorded/t.wav"},
         {},
         false},
        {"a used link keeps its target",
         Xml,
         "real",
         {"alias.wav"},
         {"other.wav", "take1.wav", "s_Recorded/t.wav"},
         {},
         false},
        {"a Windows path keeps the name beside the session",
         Xml,
         "real",
         {"D:\\Music\\Song\\take1.wav"},
         {"alias.wav", "other.wav", "used.wav", "s_Recorded/t.wav"},
         {"take1.wav <- s.xml"},
         false},
        {"and in the recordings folder",
         Ses,
         "real",
         {"D:\\Old\\s_Recorded\\t.wav"},
         {"alias.wav", "other.wav", "take1.wav", "used.wav"},
         {"s_Recorded/t.wav <- s.ses"},
         false},
        {"a sub-folder reached through a link",
         Veg,
         "real",
         {"Media/a.wav"},
         {"alias.wav", "other.wav", "take1.wav", "used.wav"},
         {},
         true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QStringList saved;
        for (QString path : row.saved) {
            saved
                << path.replace("{R}", dir.filePath("real/")).replace("{L}", dir.filePath("link/"));
        }
        const QString session = dir.filePath("real/s" + ext(row.kind));
        ASSERT_TRUE(test::writeFile(session, test::sessionBytes(row.kind, saved)));
        SweepRequest r = request(row.kind, "s" + ext(row.kind));
        r.folder = dir.filePath(row.scanned);
        r.sessions = sessionFiles(fs, r.folder, r.kind->sessionPattern);
        r.selected = 0;
        r.recordFolder = row.kind == Veg ? r.folder : "_Recorded";
        r.subFolderOn = row.subFolder;
        r.subFolder = "Audio";
        const Sweep sweep = sweepFolder(r, fs);
        QStringList others, kept;
        for (const OtherFile& file : sweep.others) {
            others << file.text;
        }
        for (const KeptFile& file : sweep.kept) {
            kept << file.text + " <- " + file.usedBy.join(',');
        }
        EXPECT_EQ(others, row.others);
        EXPECT_EQ(kept, row.kept);
        QFile::remove(session);
    }
}

#endif

}  // namespace
}  // namespace tidewick
