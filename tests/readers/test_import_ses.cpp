#include <gtest/gtest.h>

#include <limits>

#include "readers/import_ses.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using test::ReaderFixture;
using test::SesWriter;

const QByteArray kA3 = "Audition 3.0";
const QString kReadError = "An error occurred accessing the selected SES file.  ";

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
        version = "caller's text";
        return ImportSesBytes(bytes, version, versionOnly, f.context);
    }

    ReaderFixture f;
    QString version;
};

TEST_F(SesReader, OnlyTheExactMagicMakesASession) {
    const QByteArray body = SesWriter().version(kA3).bytes().mid(8);
    for (const QByteArray& bytes :
         {QByteArray("COOLNESs") + body, QByteArray("coolness") + body,
          QByteArray("COOLNES\0", 8) + body, QByteArray(), QByteArray("COOL")}) {
        EXPECT_EQ(read(bytes), SesReadResult::NotASession) << bytes.left(8).constData();
    }
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_TRUE(f.ui.pointerChanges.isEmpty());
    EXPECT_EQ(version, "caller's text");
}

TEST(SesVersion, IsAPrefixTestFromTheFirstCharacter) {
    for (const char* text :
         {"Audition 3.0.1 build 8347", "Audition 1.0", "Cool Edit Pro 2.00 rev B",
          "Cool Edit Pro 2.1", "Cool Edit Pro 1.2a", "Cool Edit Pro 1.0"}) {
        EXPECT_TRUE(isSupportedSesVersion(QString::fromLatin1(text))) << text;
    }
    for (const char* text :
         {"Cool Edit Pro 2.0", "Audition 4.0", " Audition 3.0", "audition 3.0", ""}) {
        EXPECT_FALSE(isSupportedSesVersion(QString::fromLatin1(text))) << text;
    }
}

TEST_F(SesReader, VersionTextDropsZeroBytes) {
    const QByteArray spread(
        "A\0u\0d\0i\0t\0i\0o\0n\0 \0"
        "3\0.\0"
        "0\0\0\0",
        26);
    EXPECT_EQ(read(SesWriter().chunk("vers", spread).bytes()), SesReadResult::Complete);
    EXPECT_EQ(version, "Audition 3.0");
    EXPECT_EQ(f.state.SesVersion, "Audition 3.0");
}

TEST_F(SesReader, UnsupportedVersionIsSaidAndReadsNothing) {
    SesWriter w;
    w.chunk("hdr ", QByteArray(20, '\0')).version("Cool Edit Pro 2.0").list({{"C:\\a.wav"}}, kA3);
    EXPECT_EQ(read(w.bytes()), SesReadResult::UnsupportedVersion);
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages[0],
              (MessageBoxRequest{"Cool Edit Pro 2.0 is not currently supported",
                                 "Importing Audition Session file", MessageIcon::Information,
                                 MessageButtons::Ok, MessageAnswer::Ok}));
    EXPECT_TRUE(f.state.SesMediaRecords.isEmpty());
    EXPECT_EQ(f.ui.pointerChanges, QList<bool>{false});
}

TEST_F(SesReader, ProbeStopsSilentlyAtTheFirstVersion) {
    SesWriter w;
    w.version("Cool Edit Pro 2.0").version(kA3).list({{"C:\\a.wav"}}, kA3);
    EXPECT_EQ(read(w.bytes(), /*versionOnly=*/true), SesReadResult::VersionFound);
    EXPECT_EQ(version, "Cool Edit Pro 2.0");
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_TRUE(f.ui.pointerChanges.isEmpty());
    EXPECT_TRUE(f.state.SesMediaRecords.isEmpty());
}

TEST_F(SesReader, ReadsEntriesOfBothLayoutsInFileOrderKeepingDuplicates) {
    for (const QByteArray& v : {QByteArray("Cool Edit Pro 1.2a"), kA3}) {
        SesWriter w;
        w.chunk("hdr ", QByteArray(16, '\1')).version(v);
        w.list({{"C:\\Takes\\take 1.wav", 7, "FILE"},
                {"D:\\drums.wav", -3, "WAVE"},
                {"C:\\Takes\\take 1.wav", 9}},
               v);
        w.chunk("WLST", "xyz").list({{"E:\\second list.wav"}}, v);
        ASSERT_EQ(read(w.bytes()), SesReadResult::Complete) << v.constData();
        EXPECT_EQ(fileNames(f.state),
                  (QStringList{"C:\\Takes\\take 1.wav", "D:\\drums.wav", "C:\\Takes\\take 1.wav",
                               "E:\\second list.wav"}));
        EXPECT_EQ(f.state.SesMediaRecords[1],
                  (SesMediaRecord{-3, "D:\\drums.wav", FourCC::from("WAVE")}));
        EXPECT_EQ(f.ui.pointerChanges, QList<bool>{false});
        f.ui.pointerChanges.clear();
    }
}

// The next entry starts right after the name and its zero (8 bytes later in the new layout),
// whatever the entry length says.
TEST_F(SesReader, NextEntryFollowsTheName) {
    for (const int step : {33, 25}) {
        const bool old = step == 25;
        const QByteArray first = "FILE" + SesWriter::i32(old ? 17 : 24) + SesWriter::i32(1) +
                                 SesWriter::i32(0) + "12345678" +
                                 (old ? QByteArray(1, '\0') : QByteArray(9, '\xaa'));
        ASSERT_EQ(first.size(), step);
        const QByteArray entries = first + SesWriter::entryBytes({"C:\\second.wav"}, old);
        const QByteArray version = old ? "Cool Edit Pro 1.2" : kA3;
        ASSERT_EQ(read(SesWriter()
                           .version(version)
                           .chunk("LIST", SesWriter::i32(entries.size()) + entries)
                           .bytes()),
                  SesReadResult::Complete);
        EXPECT_EQ(fileNames(f.state), (QStringList{"12345678", "C:\\second.wav"}));
    }
}

TEST_F(SesReader, NameIsEveryNonZeroByteOfTheBufferDecoded) {
    const std::pair<QByteArray, QString> cases[] = {
        {QByteArray("C:\\a.wav\0\0\0", 11), "C:\\a.wav"},
        {QByteArray("ab\0cd\0", 6), "abcd"},
        {QByteArray("Caf\xe9.wav\0", 9), "Caf\u00e9.wav"},       // Windows-1252
        {QByteArray("Caf\xc3\xa9.wav\0", 10), "Caf\u00e9.wav"},  // UTF-8
    };
    for (const auto& [bytes, name] : cases) {
        const int chars = int(bytes.size() - bytes.count('\0'));
        QByteArray buffer = bytes + QByteArray(qMax<qsizetype>(0, 9 + chars - bytes.size()), '\0');
        const QByteArray entry = "FILE" + SesWriter::i32(16 + buffer.size()) + SesWriter::i32(0) +
                                 SesWriter::i32(0) + buffer;
        const QByteArray data = SesWriter::i32(25 + chars) + entry + QByteArray(8, '\0');
        ASSERT_EQ(read(SesWriter().version(kA3).chunk("LIST", data).bytes()),
                  SesReadResult::Complete);
        EXPECT_EQ(fileNames(f.state), QStringList{name});
    }
}

TEST_F(SesReader, LongNamesAreCutAt255Characters) {
    const QByteArray longName = "C:\\" + QByteArray(300, 'n') + ".wav";
    ASSERT_EQ(read(SesWriter().version(kA3).list({{longName}, {"C:\\next.wav"}}, kA3).bytes()),
              SesReadResult::Complete);
    EXPECT_EQ(fileNames(f.state),
              (QStringList{QString::fromLatin1(longName.left(255)), "C:\\next.wav"}));
}

TEST_F(SesReader, ListFileMarkEndsTheEntries) {
    const QByteArray entries =
        SesWriter::entryBytes({"C:\\one.wav"}, false) + "LISTFILE" + QByteArray(40, 'z');
    const QByteArray data = SesWriter::i32(entries.size()) + entries;
    ASSERT_EQ(read(SesWriter().version(kA3).chunk("LIST", data).bytes()), SesReadResult::Complete);
    EXPECT_EQ(fileNames(f.state), QStringList{"C:\\one.wav"});
}

TEST_F(SesReader, EmptyOrNegativeListMovesOn28Bytes) {
    for (const qint64 length : {qint64(0), qint64(-5)}) {
        SesWriter w;
        w.version(kA3).chunk("LIST", QByteArray(28, '\xee'), length).list({{"C:\\found.wav"}}, kA3);
        ASSERT_EQ(read(w.bytes()), SesReadResult::Complete) << length;
        EXPECT_EQ(fileNames(f.state), QStringList{"C:\\found.wav"});
    }
}

// After a list of size S the walk goes on at the list data + S + a trailer that depends on the
// version; a second list placed there is found.
TEST_F(SesReader, ListTrailerDependsOnTheVersion) {
    const std::pair<QByteArray, int> cases[] = {{kA3, 104},
                                                {"Audition 2.0", 104},
                                                {"Cool Edit Pro 1.0", 104},
                                                {"Audition 1.0", 116},
                                                {"Cool Edit Pro 2.1", 116},
                                                {"Cool Edit Pro 2.00", 128}};
    for (const auto& [version, offset] : cases) {
        const bool old = SesWriter::isOldLayout(version);
        const QByteArray name(old ? 83 : 75, 'x');  // one entry whose step is exactly S = 100
        QByteArray data = SesWriter::i32(100) + SesWriter::entryBytes({name}, old);
        data.append(QByteArray(offset - data.size(), '\0'));
        SesWriter w;
        w.version(version).chunk("LIST", data).list({{"C:\\marker.wav"}}, version);
        ASSERT_EQ(read(w.bytes()), SesReadResult::Complete) << version.constData();
        EXPECT_EQ(fileNames(f.state), (QStringList{QString::fromLatin1(name), "C:\\marker.wav"}))
            << version.constData();
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

TEST(SesCorruptFile, EndsAsAReadError) {
    const QByteArray good =
        SesWriter().version(kA3).list({{"C:\\a.wav"}, {"C:\\b.wav"}}, kA3).bytes();
    const qint32 maxI32 = std::numeric_limits<qint32>::max();
    const QByteArray entry = SesWriter::entryBytes({"C:\\a.wav"}, false);
    auto withList = [](const QByteArray& data) {
        return SesWriter().version(kA3).chunk("LIST", data).bytes();
    };
    const std::pair<const char*, QByteArray> cases[] = {
        {"magic only", "COOLNESS"},
        {"cut inside the version", good.left(20)},
        {"cut inside the entries", good.left(good.size() - 20)},
        {"stored length past the end", SesWriter().version(kA3).bytes(1000)},
        {"version over 32767 bytes", SesWriter().chunk("vers", QByteArray(40000, 'A')).bytes()},
        {"negative chunk length", SesWriter().version(kA3).chunk("hdr ", "", -8).bytes()},
        {"chunk length overflow", SesWriter().version(kA3).chunk("WLST", "", maxI32).bytes(maxI32)},
        {"list before the version", SesWriter().list({{"C:\\a.wav"}}, kA3).version(kA3).bytes()},
        {"list size past the end", withList(SesWriter::i32(100000) + entry)},
        {"list size overflow", withList(SesWriter::i32(maxI32 - 2) + entry)},
        {"list size backwards", withList(SesWriter::i32(-200) + entry)},
        {"entry length of 16",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(16) + QByteArray(60, 'a'))},
        {"name buffer past the end",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(900) + QByteArray(60, 'a'))},
    };
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        ReaderFixture f;
        QString version = "caller's text";
        EXPECT_EQ(ImportSesBytes(bytes, version, false, f.context), SesReadResult::ReadError);
        EXPECT_TRUE(version.isEmpty());
        ASSERT_EQ(f.ui.messages.size(), 1);
        const MessageBoxRequest& message = f.ui.messages[0];
        EXPECT_TRUE(message.text.startsWith(kReadError));
        EXPECT_GT(message.text.size(), kReadError.size()) << "a description follows";
        EXPECT_EQ(message.title, "File Error");
        EXPECT_EQ(message.icon, MessageIcon::Critical);
        EXPECT_EQ(f.ui.pointerChanges, QList<bool>{false});
    }
}

TEST_F(SesReader, RecordsBeforeAReadErrorStay) {
    const QByteArray bytes =
        SesWriter().version(kA3).list({{"C:\\kept.wav"}}, kA3).chunk("LIST", "", 4000).bytes();
    EXPECT_EQ(read(bytes), SesReadResult::ReadError);
    EXPECT_EQ(fileNames(f.state), QStringList{"C:\\kept.wav"});
}

TEST(ImportSesFile, TrueOnlyForNoSessionAndForErrors) {
    ReaderFixture f;
    QString version;
    const QByteArray good = SesWriter().version(kA3).list({{"C:\\a.wav"}}, kA3).bytes();
    EXPECT_FALSE(ImportSesFile(f.write("good.ses", good), version, false, f.context));
    EXPECT_EQ(f.state.SesMediaRecords.size(), 1);
    EXPECT_TRUE(ImportSesFile(f.write("w.ses", "RIFF0000WAVE"), version, true, f.context));
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_TRUE(ImportSesFile(f.dir.filePath("gone.ses"), version, false, f.context));
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages[0].title, "File Error");

    const std::pair<QByteArray, ReaderOutcome> outcomes[] = {
        {good, ReaderOutcome::Read},
        {"not a session", ReaderOutcome::Rejected},
        {SesWriter().version("Audition 9").bytes(), ReaderOutcome::Rejected},
        {"COOLNESS", ReaderOutcome::Failed}};
    for (const auto& [bytes, outcome] : outcomes) {
        EXPECT_EQ(ImportSesSession(f.write("s.ses", bytes), f.context), outcome);
    }
}

}  // namespace
}  // namespace tidewick
