#include <gtest/gtest.h>

#include <QtEndian>

#include "readers/import_veg.h"
#include "support/reader_fixture.h"

// Failures show paths as text rather than as code units.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace tidewick {
namespace {

using test::ReaderFixture;

const QByteArray kRun("\xFF\xFF\xFF\xFF", 4);
// Three runs, each followed by a byte that is no mark; the next run is the fourth.
const QByteArray kThreeRuns = kRun + "." + kRun + "." + kRun + ".";

QByteArray le32(qint32 value) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// A path as Vegas stores it: UTF-16LE and two zero bytes.
QByteArray utf16(const QString& text) {
    QByteArray bytes;
    for (const QChar c : text) {
        bytes += char(c.unicode() & 0xFF);
        bytes += char(c.unicode() >> 8);
    }
    return bytes + QByteArray(2, '\0');
}

QByteArray utf16(const char* text) {
    return utf16(QString::fromUtf8(text));
}

// What follows a run: 4 ignored bytes, the type value, 36 more bytes, then `path`.
QByteArray record(qint32 type, const QByteArray& path) {
    return QByteArray("iiii") + le32(type) + QByteArray(36, 'x') + path;
}

// A run and a record of type 1 with the path.
QByteArray media(const char* path) {
    return kRun + record(1, utf16(path));
}

QStringList texts(std::initializer_list<const char*> list) {
    QStringList out;
    for (const char* text : list) {
        out.append(QString::fromUtf8(text));
    }
    return out;
}

QStringList scan(const QByteArray& bytes) {
    ReaderFixture f;
    EXPECT_EQ(ImportVegBytes(bytes, f.context), ReaderOutcome::Read);
    EXPECT_TRUE(f.ui.messages.isEmpty());
    EXPECT_EQ(f.ui.pointerChanges, QList<bool>{true}) << "the caller restores the pointer";
    return f.state.MediaPaths.paths();
}

// --- The scan --------------------------------------------------------------------------------

struct ScanCase {
    const char* name;
    QByteArray bytes;
    QStringList expected;
};

class VegScan : public ::testing::TestWithParam<ScanCase> {};

TEST_P(VegScan, FindsTheRecordedPaths) {
    EXPECT_EQ(scan(GetParam().bytes), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VegScan,
    ::testing::Values(
        ScanCase{"PathAfterTheFourthRun",
                 kThreeRuns + kRun +
                     record(1, QByteArray("\x43\x00\x3A\x00\x5C\x00\x61\x00\x00\x00", 10)),
                 texts({"C:\\a"})},
        ScanCase{"TypeTwo", kThreeRuns + kRun + record(2, utf16("b.wav")), texts({"b.wav"})},
        ScanCase{"OtherTypesReadNoPath",
                 kThreeRuns + kRun + record(0, utf16("0.wav")) + kRun + record(3, utf16("3.wav")) +
                     kRun + record(-2, utf16("m.wav")),
                 {}},
        ScanCase{"NoRecordBeforeTheFourthRun",
                 kRun + record(1, utf16("1.wav")) + kRun + record(1, utf16("2.wav")) + kRun +
                     record(1, utf16("3.wav")) + kRun + record(1, utf16("4.wav")),
                 texts({"4.wav"})},
        // After a type value of no use the scan goes on at its first byte, where a run may begin.
        ScanCase{"TypeValueThatIsARun",
                 kThreeRuns + kRun + "iiii" + kRun + record(1, utf16("r.wav")), texts({"r.wav"})},
        ScanCase{"LonelyFFBytesAreNoRun",
                 kThreeRuns + "\xFF\xFF\xFF." + record(1, utf16("no.wav")) + "\xFF" +
                     record(2, utf16("no2.wav")),
                 {}},
        // Five 0xFF bytes make one run from the first; the fifth is part of the record.
        ScanCase{"FiveFFBytes", kThreeRuns + "\xFF" + kRun + record(1, utf16("five.wav")).mid(1),
                 texts({"five.wav"})},
        ScanCase{"ListBeforeTheFourthRunIsPassedOver",
                 kRun + "list" + kRun + "list" + kRun + "list" + media("after.wav"),
                 texts({"after.wav"})},
        ScanCase{"ListAfterTheFourthRunEndsTheScan",
                 kThreeRuns + media("a.wav") + "..list" + media("b.wav"), texts({"a.wav"})},
        ScanCase{"OtherTagsGoOn", kThreeRuns + media("a.wav") + "lisTLIST" + media("b.wav"),
                 texts({"a.wav", "b.wav"})},
        // A tag test takes four bytes, so the "list" that starts inside one is not seen.
        ScanCase{"TagInsideATagTest", kThreeRuns + media("a.wav") + "llist" + media("b.wav"),
                 texts({"a.wav", "b.wav"})},
        ScanCase{"DuplicatesOnceLetterCaseCounts",
                 kThreeRuns + media("a.wav") + media("a.wav") + media("A.wav"),
                 texts({"a.wav", "A.wav"})},
        // The previous path ended on a zero, so a path that begins with one is empty.
        ScanCase{"LastZeroCarriesOver",
                 kThreeRuns + media("a.wav") + kRun + record(1, QByteArray("\0b\0\0\0", 5)),
                 texts({"a.wav"})},
        // A tag test in between leaves four characters as the last text.
        ScanCase{
            "TagTestResetsTheLastZero",
            kThreeRuns + media("a.wav") + "lisx" + kRun + record(1, QByteArray("\0b\0\0\0", 5)),
            texts({"a.wav", "b"})},
        ScanCase{"NoMarksAtAll", QByteArray(1000, 'l') + QByteArray(1000, '\0'), {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(VegScanLimits, EveryTruncationEndsCleanly) {
    const QByteArray full = kThreeRuns + media("C:\\a.wav") + media("C:\\b.wav");
    const qsizetype firstEnd = full.indexOf(utf16("C:\\a.wav")) + utf16("C:\\a.wav").size() - 1;
    const qsizetype secondEnd = full.size() - 1;  // the stopping zero; the last byte stays unread
    for (qsizetype length = 0; length <= full.size(); ++length) {
        QStringList expected;
        if (length >= firstEnd) {
            expected.append(QStringLiteral("C:\\a.wav"));
        }
        if (length >= secondEnd) {
            expected.append(QStringLiteral("C:\\b.wav"));
        }
        EXPECT_EQ(scan(full.left(length)), expected) << "length " << length;
    }
}

// --- Path text -------------------------------------------------------------------------------

struct TextCase {
    const char* name;
    QByteArray raw;  // as read: zero bytes kept, the stopping zero left out
    QString expected;
};

// The bytes of a UTF-16LE path as the scan hands them on: up to the second zero in a row, which
// is left out.
QByteArray rawUtf16(const QString& text) {
    const QByteArray bytes = utf16(text);
    for (qsizetype i = 1; i < bytes.size(); ++i) {
        if (bytes[i] == 0 && bytes[i - 1] == 0) {
            return bytes.left(i);
        }
    }
    return bytes;
}

class VegPathText : public ::testing::TestWithParam<TextCase> {};

TEST_P(VegPathText, ReadsUtf16AndElseSessionText) {
    EXPECT_EQ(vegPathText(GetParam().raw), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VegPathText,
    ::testing::Values(
        TextCase{"Ascii", rawUtf16(QStringLiteral("C:\\a")), QStringLiteral("C:\\a")},
        TextCase{"Portuguese", rawUtf16(QStringLiteral("C:\\trabalho\\Apresentação1.mp4")),
                 QStringLiteral("C:\\trabalho\\Apresentação1.mp4")},
        TextCase{"Cyrillic", rawUtf16(QStringLiteral("D:\\В ночь.mp3")),
                 QStringLiteral("D:\\В ночь.mp3")},
        // The character's high byte is not zero, so the first zero of the end mark comes along.
        TextCase{"EndsWithNonAsciiCharacter", rawUtf16(QStringLiteral("D:\\Папка")),
                 QStringLiteral("D:\\Папка")},
        TextCase{"EuroSign", rawUtf16(QStringLiteral("E:\\5€.wav")), QStringLiteral("E:\\5€.wav")},
        // Dropping the zeros would leave bytes that read as UTF-8 "é".
        TextCase{"LatinThatLooksLikeUtf8", rawUtf16(QStringLiteral("C:\\Ã©.wav")),
                 QStringLiteral("C:\\Ã©.wav")},
        TextCase{"SurrogatePair", rawUtf16(QStringLiteral("C:\\🎵.wav")),
                 QStringLiteral("C:\\🎵.wav")},
        // Not UTF-16: the zero bytes are dropped and the rest is session text.
        TextCase{"LoneSurrogate", QByteArray("C\0:\0\x00\xD8x\0", 8), QStringLiteral("C:\xD8x")},
        TextCase{"Windows1252OddLength", QByteArray("Caf\xE9.wav\0", 9),
                 QStringLiteral("Café.wav")},
        TextCase{"Windows1252EvenLength", QByteArray("C:\\Caf\xE9.wav\0", 12),
                 QStringLiteral("C:\\Café.wav")},
        TextCase{"Utf8", QByteArray("C:\\\xD0\x92.wav\0", 10), QStringLiteral("C:\\В.wav")},
        TextCase{"MisalignedUtf16", QByteArray("\0C\0:\0\\\0a\0", 9), QStringLiteral("C:\\a")},
        TextCase{"Empty", QByteArray(), QString()}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(VegScanText, NonAsciiPathThroughTheWholeScan) {
    EXPECT_EQ(scan(kThreeRuns + media("C:\\Users\\franc\\Apresentação1.mp4")),
              texts({"C:\\Users\\franc\\Apresentação1.mp4"}));
}

// --- Files on disk ---------------------------------------------------------------------------

TEST(VegFile, FileThatCannotBeOpenedIsReported) {
    ReaderFixture f;
    EXPECT_EQ(ImportVegFile(f.dir.filePath(QStringLiteral("missing.veg")), f.context),
              ReaderOutcome::Failed);
    ASSERT_EQ(f.ui.messages.size(), 1);
    EXPECT_EQ(f.ui.messages.front().title, QStringLiteral("File Error"));
    EXPECT_TRUE(f.ui.messages.front().text.startsWith(
        QStringLiteral("An error occurred accessing the selected VEG file.  ")));
}

struct CorpusCase {
    const char* file;
    qsizetype count;
    const char* sample;
};

class VegCorpus : public ::testing::TestWithParam<CorpusCase> {};

// The corpus notes count every media path the project stores. The scan finds the records laid
// out as older Vegas versions write them: from Vegas Pro 17 on, the media records after a run
// hold a zero where the scan looks for the type value, so those projects yield nothing.
TEST_P(VegCorpus, YieldsTheRecordedMedia) {
    ReaderFixture f;
    const CorpusCase& c = GetParam();
    ASSERT_EQ(ImportVegFile(test::corpusPath(QStringLiteral("veg/") + QLatin1StringView(c.file)),
                            f.context),
              ReaderOutcome::Read);
    const QStringList& paths = f.state.MediaPaths.paths();
    EXPECT_EQ(paths.size(), c.count) << paths.join(u'\n').toStdString();
    if (c.sample != nullptr) {
        EXPECT_TRUE(paths.contains(QString::fromUtf8(c.sample)));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, VegCorpus,
    ::testing::Values(CorpusCase{"mb2014_Untitled.veg", 1,
                                 "C:\\Users\\Vedolin\\Downloads\\15240.wav"},
                      // 11 media paths; 12.MP4 and 13.MP4 sit in records of the newer layout.
                      CorpusCase{"lumanation_home-page-montage.veg", 9,
                                 "E:\\Desktop\\Projects\\lumanationcommercial.com\\_\\site-5.mp4"},
                      CorpusCase{"fhzhugz1_Videos_intro.veg", 0, nullptr},
                      CorpusCase{"kittybot_project.veg", 0, nullptr},
                      CorpusCase{"cartoon_i_like_you_Untitled.veg", 0, nullptr}),
    [](const auto& info) {
        std::string name = info.param.file;
        for (char& ch : name) {
            if (!std::isalnum(static_cast<unsigned char>(ch))) {
                ch = '_';
            }
        }
        return name;
    });

}  // namespace
}  // namespace tidewick
