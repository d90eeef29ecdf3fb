#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "readers/import_ses.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using test::ReaderFixture;
using test::SesEntry;
using test::SesWriter;

const QByteArray kA3 = "Audition 3.0";

QStringList fileNames(const ProgramState& state) {
    QStringList names;
    for (const SesMediaRecord& record : state.SesMediaRecords) {
        names.append(record.FileName);
    }
    return names;
}

class SesReader : public ::testing::Test {
protected:
    SesReadResult read(const QByteArray& bytes, bool versionOnly = false) {
        version = QStringLiteral("caller's text");
        return ImportSesBytes(bytes, version, versionOnly, f.context);
    }

    ReaderFixture f;
    QString version;
};

// --- The magic -------------------------------------------------------------------------------

TEST_F(SesReader, OnlyTheExactMagicMakesASession) {
    const QByteArray body = SesWriter().version(kA3).bytes().mid(8);
    for (const QByteArray& magic : {QByteArray("COOLNESs"), QByteArray("coolness"),
                                    QByteArray("XOOLNESS"), QByteArray("COOLNES\0", 8)}) {
        EXPECT_EQ(read(magic + body), SesReadResult::NotASession) << magic.constData();
    }
    for (const QByteArray& bytes : {QByteArray(), QByteArray("COOL"), QByteArray("RIFF....WAVE")}) {
        EXPECT_EQ(read(bytes), SesReadResult::NotASession);
    }
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_TRUE(f.ui.pointerChanges.isEmpty()) << "a file that is no session leaves the pointer";
    EXPECT_EQ(version, QStringLiteral("caller's text"));
}

// --- The version -------------------------------------------------------------------------------

struct VersionCase {
    const char* text;
    bool supported;
};

class SesVersions : public ::testing::TestWithParam<VersionCase> {};

TEST_P(SesVersions, ArePrefixTestsFromTheFirstCharacter) {
    EXPECT_EQ(isSupportedSesVersion(QString::fromLatin1(GetParam().text)), GetParam().supported);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SesVersions,
    ::testing::Values(
        VersionCase{"Audition 3.0", true}, VersionCase{"Audition 3.0.1 build 8347", true},
        VersionCase{"Audition 2.0", true}, VersionCase{"Audition 1.5", true},
        VersionCase{"Audition 1.0", true}, VersionCase{"Cool Edit Pro 2.00", true},
        VersionCase{"Cool Edit Pro 2.00 rev B", true}, VersionCase{"Cool Edit Pro 2.1", true},
        VersionCase{"Cool Edit Pro 1.2a", true}, VersionCase{"Cool Edit Pro 1.2", true},
        VersionCase{"Cool Edit Pro 1.0", true}, VersionCase{"Cool Edit Pro 2.0", false},
        VersionCase{"Audition 4.0", false}, VersionCase{" Audition 3.0", false},
        VersionCase{"Adobe Audition 3.0", false}, VersionCase{"audition 3.0", false},
        VersionCase{"", false}));

TEST_F(SesReader, VersionTextDropsZeroBytes) {
    const QByteArray spread(
        "A\0u\0d\0i\0t\0i\0o\0n\0 \0"
        "3\0.\0"
        "0\0\0\0",
        26);
    EXPECT_EQ(read(SesWriter().chunk("vers", spread).bytes()), SesReadResult::Complete);
    EXPECT_EQ(version, QStringLiteral("Audition 3.0"));
    EXPECT_EQ(f.state.SesVersion, QStringLiteral("Audition 3.0"));
}

TEST_F(SesReader, UnsupportedVersionIsSaidOnceAndReadsNothing) {
    SesWriter w;
    w.chunk("hdr ", QByteArray(20, '\0')).version("Cool Edit Pro 2.0").list({{"C:\\a.wav"}}, kA3);
    EXPECT_EQ(read(w.bytes()), SesReadResult::UnsupportedVersion);
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages[0],
              (MessageBoxRequest{QStringLiteral("Cool Edit Pro 2.0 is not currently supported"),
                                 QStringLiteral("Importing Audition Session file"),
                                 MessageIcon::Information, MessageButtons::Ok, MessageAnswer::Ok}));
    EXPECT_TRUE(f.state.SesMediaRecords.isEmpty());
    EXPECT_EQ(version, QStringLiteral("Cool Edit Pro 2.0"));
    EXPECT_EQ(f.ui.pointerChanges, QList<bool>{false});
}

TEST_F(SesReader, ProbeStopsAtTheFirstVersionSilently) {
    SesWriter w;
    w.version("Cool Edit Pro 2.0").version(kA3).list({{"C:\\a.wav"}}, kA3);
    EXPECT_EQ(read(w.bytes(), /*versionOnly=*/true), SesReadResult::VersionFound);
    EXPECT_EQ(version, QStringLiteral("Cool Edit Pro 2.0"));
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_TRUE(f.ui.pointerChanges.isEmpty());
    EXPECT_TRUE(f.state.SesMediaRecords.isEmpty());
}

TEST_F(SesReader, AWalkWithoutVersionEndsQuietlyAndKeepsTheCallersText) {
    EXPECT_EQ(read(SesWriter().chunk("hdr ", QByteArray(8, 'x')).bytes(), true),
              SesReadResult::Complete);
    EXPECT_EQ(version, QStringLiteral("caller's text"));
    EXPECT_TRUE(f.ui.messages.isEmpty());
}

// --- File entries ------------------------------------------------------------------------------

TEST_F(SesReader, ReadsEntriesOfBothLayoutsInFileOrderKeepingDuplicates) {
    const QList<SesEntry> entries = {{"C:\\Takes\\vocal take 1.wav", 7, "FILE"},
                                     {"D:\\Loops\\drums.wav", -3, "WAVE"},
                                     {"C:\\Takes\\vocal take 1.wav", 9, "FILE"}};
    for (const QByteArray& v : {QByteArray("Cool Edit Pro 1.0"), QByteArray("Cool Edit Pro 1.2a"),
                                kA3, QByteArray("Audition 1.0"), QByteArray("Cool Edit Pro 2.1"),
                                QByteArray("Cool Edit Pro 2.00")}) {
        SesWriter w;
        w.chunk("hdr ", QByteArray(16, '\1')).version(v).list(entries, v).chunk("WLST", "xyz");
        w.list({{"E:\\after the first list.wav", 1}}, v);
        ASSERT_EQ(read(w.bytes()), SesReadResult::Complete) << v.constData();
        ASSERT_EQ(f.state.SesMediaRecords.size(), 4) << v.constData();
        EXPECT_EQ(f.state.SesMediaRecords[0],
                  (SesMediaRecord{7, QStringLiteral("C:\\Takes\\vocal take 1.wav"),
                                  FourCC::from("FILE")}));
        EXPECT_EQ(
            f.state.SesMediaRecords[1],
            (SesMediaRecord{-3, QStringLiteral("D:\\Loops\\drums.wav"), FourCC::from("WAVE")}));
        EXPECT_EQ(f.state.SesMediaRecords[2].FileName, f.state.SesMediaRecords[0].FileName);
        EXPECT_EQ(f.state.SesMediaRecords[3].FileName,
                  QStringLiteral("E:\\after the first list.wav"));
        EXPECT_TRUE(f.ui.messages.isEmpty());
        EXPECT_EQ(f.ui.pointerChanges.last(), false);
    }
}

// The next entry starts right after the name and its zero (plus 8 bytes in the new layout),
// whatever the entry length says.
TEST_F(SesReader, NextEntryFollowsTheName) {
    struct Case {
        QByteArray version;
        int step;  // from one entry's start to the next for an 8-character name
    };
    for (const Case& c : {Case{kA3, 33}, Case{"Cool Edit Pro 1.2", 25}}) {
        const bool old = c.step == 25;
        // An entry length that ends the name buffer right after the 8 characters; in the new
        // layout 9 bytes outside the buffer follow, which the walk passes over.
        const QByteArray first = "FILE" + SesWriter::i32(old ? 17 : 24) + SesWriter::i32(1) +
                                 SesWriter::i32(0) + "12345678" +
                                 (old ? QByteArray(1, '\0') : QByteArray(9, '\xaa'));
        ASSERT_EQ(first.size(), c.step);
        const QByteArray entries = first + SesWriter::entryBytes({"C:\\second.wav", 2}, old);
        const QByteArray data = SesWriter::i32(entries.size()) + entries;
        ASSERT_EQ(read(SesWriter().version(c.version).chunk("LIST", data).bytes()),
                  SesReadResult::Complete)
            << c.version.constData() << ": " << f.ui.messages.value(0).text.toStdString();
        EXPECT_EQ(fileNames(f.state),
                  (QStringList{QStringLiteral("12345678"), QStringLiteral("C:\\second.wav")}));
    }
}

TEST_F(SesReader, NameIsEveryNonZeroByteOfTheBuffer) {
    struct Case {
        QByteArray buffer;
        QString name;
    };
    const Case cases[] = {
        {QByteArray("C:\\a.wav\0\0\0", 11), QStringLiteral("C:\\a.wav")},
        {QByteArray("ab\0cd\0", 6), QStringLiteral("abcd")},
        {QByteArray("Caf\xe9.wav\0", 9), QStringLiteral("Caf\u00e9.wav")},          // Windows-1252
        {QByteArray("Caf\xc3\xa9.wav\0", 10), QStringLiteral("Caf\u00e9.wav")},     // UTF-8
        {QByteArray("\x93quoted\x94\0", 9), QStringLiteral("\u201cquoted\u201d")},  // 1252 only
    };
    for (const Case& c : cases) {
        const int chars = int(c.buffer.size() - c.buffer.count('\0'));
        // New layout: the entry is 16 bytes of head, the buffer, and the walk resumes at
        // 25 + chars; pad so that the buffer is long enough and the list ends there.
        QByteArray buffer = c.buffer;
        buffer.append(QByteArray(qMax<qsizetype>(0, 9 + chars - buffer.size()), '\0'));
        const QByteArray entry = "FILE" + SesWriter::i32(16 + buffer.size()) + SesWriter::i32(0) +
                                 SesWriter::i32(0) + buffer;
        const QByteArray data = SesWriter::i32(25 + chars) + entry + QByteArray(8, '\0');
        ASSERT_EQ(read(SesWriter().version(kA3).chunk("LIST", data).bytes()),
                  SesReadResult::Complete);
        EXPECT_EQ(fileNames(f.state), QStringList{c.name});
    }
}

TEST_F(SesReader, LongNamesAreCutAt255Characters) {
    const QByteArray longName = "C:\\" + QByteArray(300, 'n') + ".wav";
    SesWriter w;
    w.version(kA3).list({{longName}, {"C:\\next.wav"}}, kA3);
    ASSERT_EQ(read(w.bytes()), SesReadResult::Complete);
    ASSERT_EQ(f.state.SesMediaRecords.size(), 2);
    EXPECT_EQ(f.state.SesMediaRecords[0].FileName, QString::fromLatin1(longName.left(255)));
    EXPECT_EQ(f.state.SesMediaRecords[1].FileName, QStringLiteral("C:\\next.wav"));
}

TEST_F(SesReader, ListFileMarkEndsTheEntries) {
    QByteArray entries =
        SesWriter::entryBytes({"C:\\one.wav"}, false) + "LISTFILE" + QByteArray(40, 'z');
    const QByteArray data = SesWriter::i32(entries.size()) + entries;
    ASSERT_EQ(read(SesWriter().version(kA3).chunk("LIST", data).bytes()), SesReadResult::Complete);
    EXPECT_EQ(fileNames(f.state), QStringList{QStringLiteral("C:\\one.wav")});
}

TEST_F(SesReader, EmptyOrNegativeListMovesOn28Bytes) {
    for (const qint64 length : {qint64(0), qint64(-5)}) {
        SesWriter w;
        w.version(kA3).chunk("LIST", QByteArray(28, '\xee'), length).list({{"C:\\found.wav"}}, kA3);
        ASSERT_EQ(read(w.bytes()), SesReadResult::Complete) << length;
        EXPECT_EQ(fileNames(f.state), QStringList{QStringLiteral("C:\\found.wav")});
    }
}

// After a list of size S the walk goes on at the list data + S + a trailer that depends on the
// version.
TEST_F(SesReader, ListTrailerDependsOnTheVersion) {
    struct Case {
        QByteArray version;
        int offset;
    };
    for (const Case& c : {Case{kA3, 104}, Case{"Audition 2.0", 104}, Case{"Audition 1.5", 104},
                          Case{"Cool Edit Pro 1.2a", 104}, Case{"Cool Edit Pro 1.0", 104},
                          Case{"Audition 1.0", 116}, Case{"Cool Edit Pro 2.1", 116},
                          Case{"Cool Edit Pro 2.00", 128}}) {
        const bool old = SesWriter::isOldLayout(c.version);
        // One entry whose step is exactly S = 100.
        const QByteArray name(old ? 83 : 75, 'x');
        QByteArray data = SesWriter::i32(100) + SesWriter::entryBytes({name}, old);
        data.append(QByteArray(c.offset - data.size(), '\0'));
        SesWriter w;
        w.version(c.version).chunk("LIST", data).list({{"C:\\marker.wav"}}, c.version);
        ASSERT_EQ(read(w.bytes()), SesReadResult::Complete) << c.version.constData();
        EXPECT_EQ(fileNames(f.state),
                  (QStringList{QString::fromLatin1(name), QStringLiteral("C:\\marker.wav")}))
            << c.version.constData();
    }
}

TEST_F(SesReader, StoredLengthEndsTheWalk) {
    SesWriter w;
    w.version(kA3);
    const qint64 end = 12 + w.size();
    w.list({{"C:\\beyond.wav"}}, kA3);
    EXPECT_EQ(read(w.bytes(end + 1)), SesReadResult::Complete);
    EXPECT_TRUE(f.state.SesMediaRecords.isEmpty()) << "a header at L - 1 is not read";
    EXPECT_EQ(read(w.bytes(end + 2)), SesReadResult::Complete);
    EXPECT_EQ(f.state.SesMediaRecords.size(), 1);
}

// --- Hostile files -----------------------------------------------------------------------------

struct CorruptCase {
    const char* name;
    QByteArray bytes;
};

QList<CorruptCase> corruptFiles() {
    const QByteArray good =
        SesWriter().version(kA3).list({{"C:\\a.wav"}, {"C:\\b.wav"}}, kA3).bytes();
    const qint32 maxI32 = std::numeric_limits<qint32>::max();
    auto withList = [](const QByteArray& data, qint64 length = SesWriter::kOwnSize) {
        return SesWriter().version(kA3).chunk("LIST", data, length).bytes();
    };
    return {
        {"magic only", "COOLNESS"},
        {"stored length cut short", "COOLNESS\x10\0"},
        {"cut inside a chunk header", good.left(14)},
        {"cut inside the version", good.left(20)},
        {"cut inside the entries", good.left(good.size() - 20)},
        {"stored length past the end", SesWriter().version(kA3).bytes(1000)},
        {"version longer than 32767 bytes",
         SesWriter().chunk("vers", QByteArray(40000, 'A')).bytes()},
        {"version longer than the file", SesWriter().chunk("vers", "Audition 3.0", 5000).bytes()},
        {"negative chunk length", SesWriter().version(kA3).chunk("hdr ", "", -8).bytes()},
        {"chunk length that overflows",
         SesWriter().version(kA3).chunk("WLST", "", maxI32).bytes(maxI32)},
        {"chunk that points backwards", SesWriter().version(kA3).chunk("junk", "", -100).bytes()},
        {"list before the version", SesWriter().list({{"C:\\a.wav"}}, kA3).version(kA3).bytes()},
        {"list size past the end",
         withList(SesWriter::i32(100000) + SesWriter::entryBytes({"C:\\a.wav"}, false))},
        {"list size that overflows the position",
         withList(SesWriter::i32(maxI32 - 2) + SesWriter::entryBytes({"C:\\a.wav"}, false))},
        {"list size that sends the walk back",
         withList(SesWriter::i32(-200) + SesWriter::entryBytes({"C:\\a.wav"}, false))},
        {"entry length of 16",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(16) + QByteArray(60, 'a'))},
        {"entry length negative",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(-1) + QByteArray(60, 'a'))},
        {"name buffer longer than 32767 bytes",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(40000) + QByteArray(40100, 'a'))},
        {"name buffer past the end",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(900) + QByteArray(60, 'a'))},
        {"list data cut before its size", withList("ab", 10)},
    };
}

class SesCorruptFile : public ::testing::TestWithParam<CorruptCase> {};

TEST_P(SesCorruptFile, EndsAsAReadError) {
    ReaderFixture f;
    QString version = QStringLiteral("caller's text");
    EXPECT_EQ(ImportSesBytes(GetParam().bytes, version, false, f.context),
              SesReadResult::ReadError);
    EXPECT_TRUE(version.isEmpty());
    ASSERT_EQ(f.ui.messages.size(), 1);
    const MessageBoxRequest& message = f.ui.messages[0];
    EXPECT_TRUE(message.text.startsWith(
        QStringLiteral("An error occurred accessing the selected SES file.  ")));
    EXPECT_GT(message.text.size(), 53) << "the description follows the two blanks";
    EXPECT_EQ(message.title, QStringLiteral("File Error"));
    EXPECT_EQ(message.icon, MessageIcon::Critical);
    EXPECT_EQ(message.buttons, MessageButtons::Ok);
    EXPECT_EQ(f.ui.pointerChanges, QList<bool>{false});
}

INSTANTIATE_TEST_SUITE_P(Table, SesCorruptFile, ::testing::ValuesIn(corruptFiles()),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             for (char& c : name) {
                                 if (!std::isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             }
                             return name;
                         });

TEST_F(SesReader, RecordsBeforeAReadErrorStay) {
    const QByteArray bytes =
        SesWriter().version(kA3).list({{"C:\\kept.wav"}}, kA3).chunk("LIST", "", 4000).bytes();
    EXPECT_EQ(read(bytes), SesReadResult::ReadError);
    EXPECT_EQ(fileNames(f.state), QStringList{QStringLiteral("C:\\kept.wav")});
}

// --- The file wrapper ----------------------------------------------------------------------

TEST(ImportSesFile, ReturnsTrueForNoSessionAndForErrorsOnly) {
    ReaderFixture f;
    QString version;
    const QString good = f.write(QStringLiteral("good.ses"),
                                 SesWriter().version(kA3).list({{"C:\\a.wav"}}, kA3).bytes());
    EXPECT_FALSE(ImportSesFile(good, version, true, f.context));
    EXPECT_FALSE(ImportSesFile(good, version, false, f.context));
    EXPECT_EQ(f.state.SesMediaRecords.size(), 1);

    EXPECT_TRUE(ImportSesFile(f.write(QStringLiteral("wave.ses"), "RIFF0000WAVE"), version, true,
                              f.context));
    EXPECT_TRUE(f.ui.messages.isEmpty());

    EXPECT_TRUE(
        ImportSesFile(f.dir.filePath(QStringLiteral("vanished.ses")), version, false, f.context));
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages[0].title, QStringLiteral("File Error"));
    EXPECT_TRUE(f.state.SesMediaRecords.isEmpty());
}

TEST(ImportSesSession, MapsTheReadToAnOutcome) {
    ReaderFixture f;
    EXPECT_EQ(ImportSesSession(f.write(QStringLiteral("a.ses"),
                                       SesWriter().version(kA3).list({{"C:\\a.wav"}}, kA3).bytes()),
                               f.context),
              ReaderOutcome::Read);
    EXPECT_EQ(ImportSesSession(f.write(QStringLiteral("b.ses"), "not a session"), f.context),
              ReaderOutcome::Rejected);
    EXPECT_EQ(
        ImportSesSession(
            f.write(QStringLiteral("c.ses"), SesWriter().version("Audition 9").bytes()), f.context),
        ReaderOutcome::Rejected);
    EXPECT_EQ(ImportSesSession(f.write(QStringLiteral("d.ses"), "COOLNESS"), f.context),
              ReaderOutcome::Failed);
}

}  // namespace
}  // namespace tidewick
