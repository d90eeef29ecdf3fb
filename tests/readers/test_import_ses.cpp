#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "readers/import_ses.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using test::SesWriter;
using test::texts;

const QByteArray kA3 = "Audition 3.0";
const qint32 kMaxI32 = std::numeric_limits<qint32>::max();

SessionRead read(QByteArrayView bytes) {
    return readSesSession(bytes, {});
}

// An Audition 3.0 session with one LIST chunk of the given size S and entry bytes.
QByteArray withList(qint64 size, const QByteArray& entries) {
    return SesWriter().version(kA3).chunk("LIST", SesWriter::i32(size) + entries).bytes();
}

// A first list whose walk resumes `trailer` bytes past its size, then a second list: both
// entries are read only when the walk skips the trailer `version` calls for.
QByteArray afterTrailer(const QByteArray& version, int trailer) {
    const QByteArray entry =
        SesWriter::entryBytes({"first.wav"}, version.startsWith("Cool Edit Pro 1."));
    const QByteArray data = SesWriter::i32(entry.size()) + entry + QByteArray(trailer - 4, '\0');
    return SesWriter().version(version).chunk("LIST", data).list({{"second.wav"}}, version).bytes();
}

// Both layouts give every entry its value, name and identifier in file order, across lists and
// other chunks; a path is the name without its blanks (tabs stay), and repeats stay.
TEST(SesReader, ReadsTheRecordsOfBothLayouts) {
    for (const QByteArray& v : {QByteArray("Cool Edit Pro 1.2a"), kA3 + ".1 build 8347"}) {
        const SessionRead r = read(SesWriter()
                                       .chunk("hdr ", QByteArray(16, '\1'))
                                       .version(v)
                                       .list({{" C:\\a b.wav  ", 7}, {"D:\\d.wav", -3, "WAVE"}}, v)
                                       .chunk("WLST", "xyz")
                                       .list({{"C:\\a b.wav"}, {"\tE:\\e.wav"}}, v)
                                       .bytes());
        ASSERT_EQ(r.outcome, ReaderOutcome::Read) << v.constData();
        ASSERT_TRUE(r.ses);
        EXPECT_EQ(r.ses->version, QString::fromLatin1(v));
        EXPECT_EQ(r.ses->records.value(0), (SesMediaRecord{7, FourCC::from("FILE")}));
        EXPECT_EQ(r.ses->records.value(1), (SesMediaRecord{-3, FourCC::from("WAVE")}));
        EXPECT_EQ(r.paths, texts("C:\\a b.wav|D:\\d.wav|C:\\a b.wav|\tE:\\e.wav"));
    }
}

TEST(SesReader, RejectsWhatItCannotRead) {
    const QByteArray good = SesWriter().version(kA3).list({{"a"}}, kA3).bytes();
    for (const QByteArray& notSession : {"COOLNESs" + good.mid(8), QByteArray("COOL")}) {
        const SessionRead r = read(notSession);
        EXPECT_EQ(r.outcome, ReaderOutcome::Rejected);
        EXPECT_FALSE(r.problem || r.ses);
    }
    // A version that cannot be read drops the records listed before it.
    const SessionRead r =
        read(SesWriter().version(kA3).list({{"a"}}, kA3).version("Cool Edit Pro 2.0").bytes());
    EXPECT_EQ(r.outcome, ReaderOutcome::Rejected);
    EXPECT_TRUE(versionFound(r) && r.ses->records.isEmpty() && r.paths.isEmpty());
    EXPECT_EQ(r.problem, (ReadProblem{ReadFailure::UnsupportedVersion,
                                      SessionKindId::Ses,
                                      ReadSeverity::Notice,
                                      "Cool Edit Pro 2.0",
                                      {}}));
}

TEST(SesReader, WalkFindsTheEntries) {
    const QByteArray entry = SesWriter::entryBytes({"C:\\a"}, false);
    // The name runs 8 bytes and the entry length covers it alone; the next entry lies 9 on.
    const QByteArray shortLength = "FILE" + SesWriter::i32(24) + SesWriter::i32(1) +
                                   SesWriter::i32(0) + "12345678" + QByteArray(9, '\xaa');
    const QByteArray longName(300, 'n');
    const QByteArray cutName = QByteArray(255, 'n') + "|next";
    auto emptyList = [](qint64 length) {
        return SesWriter()
            .version(kA3)
            .chunk("LIST", QByteArray(28, '\xee'), length)
            .list({{"x"}}, kA3)
            .bytes();
    };
    SesWriter beyond;
    const qint64 end = beyond.version(kA3).bytes().size();
    beyond.list({{"beyond"}}, kA3);
    const std::tuple<const char*, QByteArray, QString> cases[] = {
        {"version loses its zero bytes",
         SesWriter().chunk("vers", QByteArray("A\0udition 3.0\0", 14)).bytes(), ""},
        {"Audition 3.0 trailer", afterTrailer(kA3, 4), "first.wav|second.wav"},
        {"Audition 1.0 trailer", afterTrailer("Audition 1.0", 16), "first.wav|second.wav"},
        {"Cool Edit Pro 2.00 trailer", afterTrailer("Cool Edit Pro 2.00", 28),
         "first.wav|second.wav"},
        {"next entry follows the name",
         withList(59, shortLength + SesWriter::entryBytes({"b"}, false)), "12345678|b"},
        {"name is the non-zero bytes",
         withList(29, SesWriter::entryBytes({QByteArray("ab\0cd", 5)}, false)), "abcd"},
        {"name cut at 255 characters",
         SesWriter().version(kA3).list({{longName}, {"next"}}, kA3).bytes(), cutName},
        {"Windows-1252 name cut at 255 characters",
         SesWriter().version(kA3).list({{QByteArray(300, '\xe9')}, {"next"}}, kA3).bytes(),
         QString(255, u'\xe9') + "|next"},
        {"LISTFILE ends the entries", withList(100, entry + "LISTFILE" + QByteArray(80, 'z')),
         "C:\\a"},
        {"empty list moves on 28 bytes", emptyList(0), "x"},
        {"header at L - 1 is not read", beyond.bytes(end + 1), ""},
        {"header before L - 1 is read", beyond.bytes(end + 2), "beyond"},
    };
    for (const auto& [name, bytes, paths] : cases) {
        const SessionRead r = read(bytes);
        EXPECT_TRUE(r.outcome == ReaderOutcome::Read && !r.problem) << name;
        EXPECT_EQ(r.paths.toList().join(u'|'), paths) << name;
    }
}

// Every read error fails with the reason after the "File Error" text, keeps the records read
// before it, and tells whether the version had been read.
TEST(SesReader, HostileFileFailsWithTheReason) {
    const QByteArray good = SesWriter().version(kA3).list({{"C:\\a"}, {"C:\\b"}}, kA3).bytes();
    const QByteArray entry = SesWriter::entryBytes({"C:\\a"}, false);
    const char* const pastEnd = "Input past end of file";
    // what the file holds, whether the version was read, the paths kept, the reason given
    const std::tuple<QByteArray, bool, const char*, const char*> cases[] = {
        {"COOLNESS", false, "", pastEnd},
        {good.left(20), false, "", pastEnd},
        {SesWriter().chunk("vers", QByteArray(40000, 'A')).bytes(), false, "", "longer than 32767"},
        {SesWriter().list({{"a"}}, kA3).version(kA3).bytes(), false, "",
         "before naming its version"},
        {good.left(good.size() - 10), true, "C:\\a", pastEnd},
        {SesWriter().version(kA3).chunk("hdr ", "", -4).bytes(), true, "", "negative length"},
        {SesWriter().version(kA3).chunk("W", "", kMaxI32).bytes(kMaxI32), true, "", "Overflow"},
        {withList(kMaxI32 - 2, entry), true, "C:\\a", pastEnd},
        {withList(-200, entry), true, "C:\\a", "points backwards"},
        {withList(50, "FILE" + SesWriter::i32(16) + QByteArray(60, 'a')), true, "", "too short"}};
    for (const auto& [bytes, versionFound, paths, reason] : cases) {
        const SessionRead r = read(bytes);
        EXPECT_EQ(r.outcome, ReaderOutcome::Failed) << reason;
        EXPECT_EQ(tidewick::versionFound(r), versionFound) << reason;
        EXPECT_EQ(r.paths.toList().join(u'|'), paths) << reason;
        ASSERT_TRUE(r.problem) << reason;
        EXPECT_EQ(r.problem->failure, ReadFailure::Damaged);
        EXPECT_TRUE(r.problem->detail.contains(reason)) << r.problem->detail.toStdString();
    }
}

}  // namespace
}  // namespace tidewick
