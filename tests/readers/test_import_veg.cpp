#include <gtest/gtest.h>

#include <QtEndian>

#include "readers/import_veg.h"
#include "support/reader_fixture.h"

namespace tidewick {
namespace {

using test::kByName;
using test::texts;

const QByteArray kRun("\xFF\xFF\xFF\xFF", 4);
// Three runs, each followed by a byte that is no mark; the next run is the fourth.
const QByteArray kThreeRuns = kRun + "." + kRun + "." + kRun + ".";

// A path as Vegas stores it: UTF-16LE and two zero bytes.
QByteArray utf16(const char* text) {
    QByteArray bytes;
    for (const QChar c : QString::fromUtf8(text)) {
        bytes += char(c.unicode() & 0xFF) + QByteArray(1, char(c.unicode() >> 8));
    }
    return bytes + QByteArray(2, '\0');
}

// What follows a run: 4 ignored bytes, the type value, 36 more bytes, then `path`.
QByteArray record(qint32 type, const QByteArray& path) {
    QByteArray value(4, '\0');
    qToLittleEndian(type, value.data());
    return "iiii" + value + QByteArray(36, 'x') + path;
}

QByteArray media(const char* path) {
    return kRun + record(1, utf16(path));
}

QStringList scan(const QByteArray& bytes) {
    const SessionRead r = readVegSession(bytes, {});
    EXPECT_EQ(r.outcome, ReaderOutcome::Read);
    EXPECT_FALSE(r.message);
    return r.paths;
}

struct ScanCase {
    const char* name;
    QByteArray bytes;
    const char* expected;
};

class VegScan : public ::testing::TestWithParam<ScanCase> {};

TEST_P(VegScan, FindsTheRecordedPaths) {
    EXPECT_EQ(scan(GetParam().bytes), texts(GetParam().expected));
}

const QByteArray kNoA("\0b\0\0\0", 5);

INSTANTIATE_TEST_SUITE_P(
    Table, VegScan,
    ::testing::Values(
        ScanCase{"PathAfterTheFourthRun",
                 kThreeRuns + kRun + record(1, QByteArray("C\0:\0\\\0a\0\0\0", 10)), "C:\\a"},
        ScanCase{"OnlyTypesOneAndTwo",
                 kThreeRuns + kRun + record(0, utf16("0")) + kRun + record(2, utf16("2")) + kRun +
                     record(3, utf16("3")) + kRun + record(-2, utf16("m")),
                 "2"},
        ScanCase{"NoRecordBeforeTheFourthRun",
                 kRun + record(1, utf16("1")) + kRun + record(1, utf16("2")) + kRun +
                     record(1, utf16("3")) + kRun + record(1, utf16("4")),
                 "4"},
        // After a type value of no use the scan goes on at its first byte, where a run may begin.
        ScanCase{"TypeValueThatIsARun", kThreeRuns + kRun + "iiii" + kRun + record(1, utf16("r")),
                 "r"},
        ScanCase{"LonelyFFBytesAreNoRun",
                 kThreeRuns + "\xFF\xFF\xFF." + record(1, utf16("no")) + "\xFF" +
                     record(2, utf16("no2")),
                 ""},
        // Five 0xFF bytes make one run from the first; the fifth is part of the record.
        ScanCase{"FiveFFBytes", kThreeRuns + "\xFF" + kRun + record(1, utf16("five")).mid(1),
                 "five"},
        ScanCase{"ListBeforeTheFourthRunIsPassedOver",
                 kRun + "list" + kRun + "list" + kRun + "list" + media("after"), "after"},
        ScanCase{"ListAfterTheFourthRunEndsTheScan",
                 kThreeRuns + media("a") + "..list" + media("b"), "a"},
        ScanCase{"OtherTagsGoOn", kThreeRuns + media("a") + "lisTLIST" + media("b"), "a|b"},
        // A tag test takes four bytes, so the "list" that starts inside one is not seen.
        ScanCase{"TagInsideATagTest", kThreeRuns + media("a") + "llist" + media("b"), "a|b"},
        ScanCase{"DuplicatesOnceLetterCaseCounts",
                 kThreeRuns + media("a") + media("a") + media("A"), "a|A"},
        // The previous path ended on a zero, so a path that begins with one is empty...
        ScanCase{"LastZeroCarriesOver", kThreeRuns + media("a") + kRun + record(1, kNoA), "a"},
        // ...unless a tag test in between left four characters as the last text.
        ScanCase{"TagTestResetsTheLastZero",
                 kThreeRuns + media("a") + "lisx" + kRun + record(1, kNoA), "a|b"},
        ScanCase{"NonAsciiPath", kThreeRuns + media("C:\\Apresentação1.mp4"),
                 "C:\\Apresentação1.mp4"}),
    kByName);

TEST(VegScanLimits, EveryTruncationEndsCleanly) {
    const QByteArray full = kThreeRuns + media("C:\\a.wav") + media("C:\\b.wav");
    const qsizetype firstEnd = full.indexOf(utf16("C:\\a.wav")) + utf16("C:\\a.wav").size() - 1;
    const qsizetype secondEnd = full.size() - 1;  // the stopping zero; the last byte stays unread
    for (qsizetype length = 0; length <= full.size(); ++length) {
        const char* expected = length >= secondEnd  ? "C:\\a.wav|C:\\b.wav"
                               : length >= firstEnd ? "C:\\a.wav"
                                                    : "";
        EXPECT_EQ(scan(full.left(length)), texts(expected)) << "length " << length;
    }
}

struct TextCase {
    const char* name;
    QByteArray raw;  // as the scan hands it on: zero bytes kept, the stopping zero left out
    const char* expected;
};

class VegPathText : public ::testing::TestWithParam<TextCase> {};

TEST_P(VegPathText, ReadsUtf16AndElseSessionText) {
    EXPECT_EQ(vegPathText(GetParam().raw), QString::fromUtf8(GetParam().expected));
}

// UTF-16LE without the stopping zero: the second zero in a row and what follows are left out.
QByteArray rawUtf16(const char* text) {
    const QByteArray bytes = utf16(text);
    for (qsizetype i = 1; i < bytes.size(); ++i) {
        if (bytes[i] == 0 && bytes[i - 1] == 0) {
            return bytes.left(i);
        }
    }
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Table, VegPathText,
    ::testing::Values(
        TextCase{"Portuguese", rawUtf16("C:\\Apresentação1.mp4"), "C:\\Apresentação1.mp4"},
        // The last character's high byte is not zero, so the end mark's first zero comes along.
        TextCase{"EndsWithNonAsciiCharacter", rawUtf16("D:\\Папка"), "D:\\Папка"},
        // Dropping the zeros would leave bytes that read as UTF-8 "é".
        TextCase{"LatinThatLooksLikeUtf8", rawUtf16("C:\\Ã©.wav"), "C:\\Ã©.wav"},
        TextCase{"SurrogatePair", rawUtf16("C:\\🎵.wav"), "C:\\🎵.wav"},
        // Not UTF-16: the zero bytes are dropped and the rest is session text.
        TextCase{"LoneSurrogate", QByteArray("C\0:\0\x00\xD8x\0", 8), "C:\xC3\x98x"},
        TextCase{"Windows1252EvenLength", QByteArray("C:\\Caf\xE9.wav\0", 12), "C:\\Café.wav"},
        TextCase{"Utf8", QByteArray("C:\\\xD0\x92.wav\0", 10), "C:\\В.wav"},
        TextCase{"MisalignedUtf16", QByteArray("\0C\0:\0\\\0a\0", 9), "C:\\a"}),
    kByName);

}  // namespace
}  // namespace tidewick
