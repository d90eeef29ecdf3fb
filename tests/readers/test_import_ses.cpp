#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "readers/import_ses.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using test::SesWriter;

const QByteArray kA3 = "Audition 3.0";

SessionRead read(QByteArrayView bytes) {
    return readSesSession(bytes, {});
}

QStringList fileNames(const SessionRead& read) {
    QStringList names;
    for (const SesMediaRecord& record : read.records) {
        names.append(record.FileName);
    }
    return names;
}

// The names of a read that went through to the end.
QStringList namesRead(QByteArrayView bytes) {
    const SessionRead r = read(bytes);
    EXPECT_EQ(r.outcome, ReaderOutcome::Read);
    EXPECT_FALSE(r.message);
    return fileNames(r);
}

TEST(SesReader, OnlyTheExactMagicMakesASession) {
    const QByteArray body = SesWriter().version(kA3).bytes().mid(8);
    for (const QByteArray& bytes :
         {QByteArray("COOLNESs") + body, QByteArray("coolness") + body,
          QByteArray("COOLNES\0", 8) + body, QByteArray(), QByteArray("COOL")}) {
        const SessionRead r = read(bytes);
        EXPECT_EQ(r.outcome, ReaderOutcome::Rejected) << bytes.left(8).constData();
        EXPECT_FALSE(r.message);
        EXPECT_FALSE(r.versionFound);
    }
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

TEST(SesReader, VersionTextDropsZeroBytes) {
    const QByteArray spread(
        "A\0u\0d\0i\0t\0i\0o\0n\0 \0"
        "3\0.\0"
        "0\0\0\0",
        26);
    const SessionRead r = read(SesWriter().chunk("vers", spread).bytes());
    EXPECT_EQ(r.outcome, ReaderOutcome::Read);
    EXPECT_EQ(r.version, "Audition 3.0");
    EXPECT_TRUE(r.versionFound);
}

// A later version chunk is read too; the first one that cannot be read ends the walk, and the
// records of an earlier list go with it.
TEST(SesReader, UnsupportedVersionIsSaidAndReadsNothing) {
    for (const QByteArray& before :
         {QByteArray(), SesWriter().version(kA3).list({{"C:\\a.wav"}}, kA3).bytes().mid(12)}) {
        SesWriter w;
        w.raw(before).version("Cool Edit Pro 2.0").list({{"C:\\b.wav"}}, kA3);
        const SessionRead r = read(w.bytes());
        EXPECT_EQ(r.outcome, ReaderOutcome::Rejected);
        EXPECT_TRUE(r.versionFound);
        EXPECT_EQ(r.version, "Cool Edit Pro 2.0");
        EXPECT_EQ(r.message,
                  (ReaderMessage{"Cool Edit Pro 2.0 is not currently supported",
                                 "Importing Audition Session file", MessageIcon::Information}));
        EXPECT_TRUE(r.records.isEmpty());
        EXPECT_TRUE(r.paths.isEmpty());
    }
}

TEST(SesReader, ReadsEntriesOfBothLayoutsInFileOrderKeepingDuplicates) {
    for (const QByteArray& v : {QByteArray("Cool Edit Pro 1.2a"), kA3}) {
        SesWriter w;
        w.chunk("hdr ", QByteArray(16, '\1')).version(v);
        w.list({{" C:\\Takes\\take 1.wav  ", 7, "FILE"},
                {"D:\\drums.wav", -3, "WAVE"},
                {"C:\\Takes\\take 1.wav", 9}},
               v);
        w.chunk("WLST", "xyz").list({{"\tE:\\second list.wav"}}, v);
        const SessionRead r = read(w.bytes());
        ASSERT_EQ(r.outcome, ReaderOutcome::Read) << v.constData();
        EXPECT_EQ(r.version, QString::fromLatin1(v));
        EXPECT_EQ(fileNames(r), (QStringList{" C:\\Takes\\take 1.wav  ", "D:\\drums.wav",
                                             "C:\\Takes\\take 1.wav", "\tE:\\second list.wav"}));
        // The paths are the names without their blanks; tabs stay.
        EXPECT_EQ(r.paths, (QStringList{"C:\\Takes\\take 1.wav", "D:\\drums.wav",
                                        "C:\\Takes\\take 1.wav", "\tE:\\second list.wav"}));
        EXPECT_EQ(r.records[1], (SesMediaRecord{-3, "D:\\drums.wav", FourCC::from("WAVE")}));
    }
}

// The next entry starts right after the name and its zero (8 bytes later in the new layout),
// whatever the entry length says.
TEST(SesReader, NextEntryFollowsTheName) {
    for (const int step : {33, 25}) {
        const bool old = step == 25;
        const QByteArray first = "FILE" + SesWriter::i32(old ? 17 : 24) + SesWriter::i32(1) +
                                 SesWriter::i32(0) + "12345678" +
                                 (old ? QByteArray(1, '\0') : QByteArray(9, '\xaa'));
        ASSERT_EQ(first.size(), step);
        const QByteArray entries = first + SesWriter::entryBytes({"C:\\second.wav"}, old);
        const QByteArray version = old ? "Cool Edit Pro 1.2" : kA3;
        EXPECT_EQ(namesRead(SesWriter()
                                .version(version)
                                .chunk("LIST", SesWriter::i32(entries.size()) + entries)
                                .bytes()),
                  (QStringList{"12345678", "C:\\second.wav"}));
    }
}

TEST(SesReader, NameIsEveryNonZeroByteOfTheBufferDecoded) {
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
        EXPECT_EQ(namesRead(SesWriter().version(kA3).chunk("LIST", data).bytes()),
                  QStringList{name});
    }
}

// After a list of size S the walk goes on at the list data + S + a trailer that depends on the
// version; a second list placed there is found.
TEST(SesReader, ListTrailerDependsOnTheVersion) {
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
        EXPECT_EQ(namesRead(w.bytes()), (QStringList{QString::fromLatin1(name), "C:\\marker.wav"}))
            << version.constData();
    }
}

// Where the walk finds entries, and where it stops.
TEST(SesReader, WalkFindsTheEntries) {
    const QByteArray longName = "C:\\" + QByteArray(300, 'n') + ".wav";
    const QByteArray marked =
        SesWriter::entryBytes({"C:\\one.wav"}, false) + "LISTFILE" + QByteArray(40, 'z');
    auto emptyList = [](qint64 length) {
        return SesWriter()
            .version(kA3)
            .chunk("LIST", QByteArray(28, '\xee'), length)
            .list({{"C:\\found.wav"}}, kA3)
            .bytes();
    };
    SesWriter w;
    const qint64 end = 12 + w.version(kA3).size();
    w.list({{"C:\\beyond.wav"}}, kA3);
    const std::tuple<const char*, QByteArray, QStringList> cases[] = {
        {"long names are cut at 255 characters",
         SesWriter().version(kA3).list({{longName}, {"C:\\next.wav"}}, kA3).bytes(),
         {QString::fromLatin1(longName.left(255)), "C:\\next.wav"}},
        {"LISTFILE ends the entries",
         SesWriter().version(kA3).chunk("LIST", SesWriter::i32(marked.size()) + marked).bytes(),
         {"C:\\one.wav"}},
        {"an empty list moves on 28 bytes", emptyList(0), {"C:\\found.wav"}},
        {"a negative list moves on 28 bytes", emptyList(-5), {"C:\\found.wav"}},
        {"a header at L - 1 is not read", w.bytes(end + 1), {}},
        {"a header before L - 1 is read", w.bytes(end + 2), {"C:\\beyond.wav"}}};
    for (const auto& [name, bytes, names] : cases) {
        EXPECT_EQ(namesRead(bytes), names) << name;
    }
}

// Every read error fails with the reason after the "File Error" text, keeps the records read
// before it, and tells whether the version had been read.
TEST(SesCorruptFile, FailsWithTheReason) {
    const QByteArray good =
        SesWriter().version(kA3).list({{"C:\\a.wav"}, {"C:\\b.wav"}}, kA3).bytes();
    const qint32 maxI32 = std::numeric_limits<qint32>::max();
    const QByteArray entry = SesWriter::entryBytes({"C:\\a.wav"}, false);
    auto withList = [](const QByteArray& data) {
        return SesWriter().version(kA3).chunk("LIST", data).bytes();
    };
    const std::tuple<const char*, QByteArray, bool, QStringList> cases[] = {
        {"magic only", "COOLNESS", false, {}},
        {"cut inside the version", good.left(20), false, {}},
        {"version over 32767 bytes",
         SesWriter().chunk("vers", QByteArray(40000, 'A')).bytes(),
         false,
         {}},
        {"list before the version",
         SesWriter().list({{"C:\\a.wav"}}, kA3).version(kA3).bytes(),
         false,
         {}},
        {"cut inside the second entry", good.left(good.size() - 20), true, {"C:\\a.wav"}},
        {"stored length past the end", SesWriter().version(kA3).bytes(1000), true, {}},
        {"negative chunk length", SesWriter().version(kA3).chunk("hdr ", "", -8).bytes(), true, {}},
        {"chunk length overflow",
         SesWriter().version(kA3).chunk("WLST", "", maxI32).bytes(maxI32),
         true,
         {}},
        {"list size past the end", withList(SesWriter::i32(100000) + entry), true, {"C:\\a.wav"}},
        {"list size overflow", withList(SesWriter::i32(maxI32 - 2) + entry), true, {"C:\\a.wav"}},
        {"list size backwards", withList(SesWriter::i32(-200) + entry), true, {"C:\\a.wav"}},
        {"entry length of 16",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(16) + QByteArray(60, 'a')),
         true,
         {}},
        {"name buffer past the end",
         withList(SesWriter::i32(50) + "FILE" + SesWriter::i32(900) + QByteArray(60, 'a')),
         true,
         {}},
    };
    const QString opening = "An error occurred accessing the selected SES file.  ";
    for (const auto& [name, bytes, versionFound, paths] : cases) {
        SCOPED_TRACE(name);
        const SessionRead r = read(bytes);
        EXPECT_EQ(r.outcome, ReaderOutcome::Failed);
        EXPECT_EQ(r.versionFound, versionFound);
        EXPECT_EQ(r.paths, paths);
        ASSERT_TRUE(r.message);
        EXPECT_TRUE(r.message->text.startsWith(opening));
        EXPECT_GT(r.message->text.size(), opening.size()) << "a description follows";
        EXPECT_EQ(r.message->title, "File Error");
        EXPECT_EQ(r.message->icon, MessageIcon::Critical);
    }
}

}  // namespace
}  // namespace tidewick
