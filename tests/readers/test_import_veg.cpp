#include <gtest/gtest.h>

#include <QFile>
#include <QtEndian>
#include <tuple>

#include "readers/import_veg.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::vegRecord;

const QByteArray kRun("\xFF\xFF\xFF\xFF", 4);
// Three runs, each followed by a byte that is no mark; the next run is the fourth.
const QByteArray kThreeRuns = kRun + "." + kRun + "." + kRun + ".";

// A path as Vegas stores it: UTF-16LE and two zero bytes.
QByteArray utf16(const char* text) {
    const QString path = QString::fromUtf8(text);
    return QByteArray(reinterpret_cast<const char*>(path.utf16()), path.size() * 2) +
           QByteArray(2, '\0');
}

QByteArray media(const char* path) {
    return kRun + vegRecord(1, utf16(path));
}

TEST(VegReader, ScanFindsTheRecordedPaths) {
    const QByteArray noA("\0b\0\0\0", 5);
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        {"types 1 and 2 only",
         kThreeRuns + kRun + vegRecord(0, utf16("0")) + kRun + vegRecord(2, utf16("2")) + kRun +
             vegRecord(3, utf16("3")) + kRun + vegRecord(-2, utf16("m")),
         "2"},
        {"no record before the fourth run",
         kRun + vegRecord(1, utf16("1")) + kRun + vegRecord(1, utf16("2")) + kRun +
             vegRecord(1, utf16("3")) + kRun + vegRecord(1, utf16("4")),
         "4"},
        {"list before the fourth run is passed over",
         kRun + "list" + kRun + "list" + kRun + "list" + media("after"), "after"},
        {"list after the fourth run ends the scan", kThreeRuns + media("a") + "..list" + media("b"),
         "a"},
        // The previous path ended on a zero, so a path that begins with one is empty...
        {"last zero carries over", kThreeRuns + media("a") + kRun + vegRecord(1, noA), "a"},
        // ...unless a tag test in between left four characters as the last text.
        {"tag test resets the last zero",
         kThreeRuns + media("a") + "lisx" + kRun + vegRecord(1, noA), "a|b"}};
    for (const auto& [name, bytes, paths] : cases) {
        EXPECT_EQ(test::pathsRead(SessionKindId::Veg, bytes), paths) << name;
    }
}

// A real project is read only when its chunk tree checks out to the end of the file: one cut
// short or with a chunk that runs past its parent is refused as incomplete, never read as a
// project without media. Each row changes the first of the corpus projects.
struct ChunkTreeCase {
    const char* name;
    QByteArray (*change)(QByteArray);
    ReaderOutcome outcome;
};

void PrintTo(const ChunkTreeCase& c, std::ostream* os) {
    *os << c.name;
}

class ChunkTree : public ::testing::TestWithParam<ChunkTreeCase> {};

TEST_P(ChunkTree, AProjectIsReadOnlyWhenItsTreeChecksOutToTheEnd) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no session corpus";
    }
    QFile file(test::corpusPath("veg/mb2014_Untitled.veg"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = GetParam().change(file.readAll());
    const SessionRead read = sessionKind(SessionKindId::Veg).reader(bytes, {});
    EXPECT_EQ(read.outcome, GetParam().outcome);
    if (read.outcome == ReaderOutcome::Failed) {
        ASSERT_TRUE(read.problem);
        EXPECT_EQ(read.problem->failure, ReadFailure::CutShort);
    }
}

INSTANTIATE_TEST_SUITE_P(
    VegReader, ChunkTree,
    ::testing::Values(ChunkTreeCase{"AsSaved", [](QByteArray b) { return b; }, ReaderOutcome::Read},
                      ChunkTreeCase{"CutInHalf", [](QByteArray b) { return b.left(b.size() / 2); },
                                    ReaderOutcome::Failed},
                      ChunkTreeCase{"CutByOneByte", [](QByteArray b) { return b.chopped(1); },
                                    ReaderOutcome::Failed},
                      ChunkTreeCase{"CutWithTheRootsSizeMended",
                                    [](QByteArray b) {
                                        b.chop(b.size() / 3);
                                        qToLittleEndian<quint64>(quint64(b.size()), b.data() + 16);
                                        return b;
                                    },
                                    ReaderOutcome::Failed},
                      ChunkTreeCase{"AChildRunningPastItsParent",
                                    [](QByteArray b) {
                                        qToLittleEndian<quint64>(quint64(b.size()),
                                                                 b.data() + 40 + 16);
                                        return b;
                                    },
                                    ReaderOutcome::Failed}),
    [](const auto& info) { return std::string(info.param.name); });

// UTF-16LE bytes read as UTF-16 text; any other bytes lose their zeros and read as session text.
TEST(VegReader, PathTextIsUtf16WhenItReadsAsSuch) {
    const std::pair<QByteArray, const char*> cases[] = {
        // The last character's high byte is not zero, so the end mark's first zero comes along.
        {utf16("D:\\Папка").chopped(1), "D:\\Папка"},
        // Dropping the zeros would leave bytes that read as UTF-8 "é".
        {utf16("C:\\Ã©.wav").chopped(2), "C:\\Ã©.wav"},
        {utf16("C:\\🎵.wav").chopped(2), "C:\\🎵.wav"},
        {QByteArray("C\0:\0\x00\xD8x\0", 8), "C:\xC3\x98x"},  // a lone surrogate
        // Without an ASCII character before the last, bytes of even length are no UTF-16.
        {QByteArray("C:\\Caf\xE9.wav\0", 12), "C:\\Café.wav"}};
    for (const auto& [raw, text] : cases) {
        EXPECT_EQ(vegPathText(raw), QString::fromUtf8(text)) << text;
    }
}

}  // namespace
}  // namespace tidewick
