#include <gtest/gtest.h>

#include <tuple>

#include "readers/import_flp.h"
#include "readers/session_bytes.h"
#include "support/reader_fixture.h"
#include "support/ses_writer.h"

namespace tidewick {
namespace {

using Base = FileReference::Base;
using test::SesWriter;

qsizetype libraryCount(const SessionRead& read) {
    return std::count_if(read.references.cbegin(), read.references.cend(),
                         [](const FileReference& r) { return r.base == Base::Library; });
}

// FL 8's 8-bit install paths, FL 12's UTF-16LE drive and macro paths, FL 20's macOS paths.
TEST(FlpReader, ReadsTheSamplesOfRealProjects) {
    if (!test::haveCorpus()) {
        GTEST_SKIP() << "no corpus";
    }
    const std::tuple<const char*, qsizetype, qsizetype, const char*> cases[] = {
        {"LeftofZen__Chrono Trigger Music.flp", 6, 6,
         "\\Projects\\Templates\\Minimal\\Basic\\CB_Kick.wav"},
        {"LeftofZen__Assassination Classroom Beats.flp", 8, 3,
         "%FLStudioData%\\Patches\\Packs\\Legacy\\Drums\\Dance\\CB_Hat.wav"},
        {"dawtool__complex.flp", 10, 0,
         "/Users/mark/Music/recording/samples/_drumkits/"
         "ａｌｕｃａｒｄ＇ｓ　ｉｃｅ　ｃａｓｔｌｅ　ｄｒｕｍ　ｋｉｔ/_ｓｆｘ_/random fx I mostly "
         "use/coin.wav"},
        {"letsbefriendzz-ChristmasTape__2022-12-13-maybemaybemaybe.flp", 2, 1,
         "C:\\Users\\Ryan\\Desktop\\ChristmasTape\\ChristmasTape\\samples\\Cold wind sound "
         "effect.mp3"},
    };
    for (const auto& [name, count, library, sample] : cases) {
        const SessionRead read = readFlpSession(
            test::readFile(test::corpusPath(QStringLiteral("flp/") + QLatin1String(name))), {});
        ASSERT_EQ(read.outcome, ReaderOutcome::Read) << name;
        EXPECT_EQ(read.references.size(), count) << name;
        EXPECT_EQ(libraryCount(read), library) << name;
        EXPECT_TRUE(read.paths.toList().contains(QString::fromUtf8(sample))) << name;
    }
}

// Plugin state names files in an attribute or after a length of 8, 4 or 1 bytes, in either
// text; a plugin's own module is no media, and a length that runs past the state names nothing.
TEST(FlpReader, FindsThePathsInPluginState) {
    const QByteArray state = "\x05\x00\x00\x00xx" + SesWriter::i32(14) + SesWriter::i32(0) +
                             "D:\\loops\\a.wav" + "<p FilePath=\"C:\\Temp\\{7F}.wav\"/>" +
                             SesWriter::i32(8) + test::utf16("E:\\b.aif").chopped(2) + '\x10' +
                             "H:\\VST\\synth.dll" + SesWriter::i32(900) + "C:\\runs\\on.wav";
    EXPECT_EQ(pathsInPluginState(state), QStringList({"C:\\Temp\\{7F}.wav", "D:\\loops\\a.wav",
                                                      "H:\\VST\\synth.dll", "E:\\b.aif"}));
    const QByteArray project = test::flpProject(
        {{199, "11.1.0"}, {196, "Samples\\kick.wav"}, {213, state}, {64, "\x01\x02"}});
    EXPECT_EQ(
        readFlpSession(project, {}).paths,
        QStringList({"Samples\\kick.wav", "C:\\Temp\\{7F}.wav", "D:\\loops\\a.wav", "E:\\b.aif"}));
}

// However the lengths lie, the walk stays inside the file and the project reads as damaged.
TEST(FlpReader, NeverReadsPastTheEndHoweverTheLengthsLie) {
    const QByteArray project = test::flpProject({{199, "20.0.0"}, {196, test::utf16("/a.wav")}});
    const auto withEvents = [&project](const QByteArray& events) {
        return project.left(18) + SesWriter::i32(events.size()) + events;
    };
    const std::tuple<const char*, QByteArray> lies[] = {
        {"header longer than the file", QByteArray(project).replace(4, 4, SesWriter::i32(-1))},
        {"data longer than the file", QByteArray(project).replace(18, 4, SesWriter::i32(1 << 30))},
        {"length of many bytes", withEvents("\xC4\xFF\xFF\xFF\xFF\xFF\x01")},
        {"event longer than the data", withEvents("\xC4\x7F/a.wav")},
    };
    for (const auto& [name, bytes] : lies) {
        const SessionRead read = readFlpSession(bytes, {});
        ASSERT_TRUE(read.problem) << name;
        EXPECT_EQ(read.problem->failure, ReadFailure::Damaged) << name;
    }
    for (qsizetype size = 0; size < project.size(); ++size) {
        EXPECT_NE(readFlpSession(project.left(size), {}).outcome, ReaderOutcome::Read) << size;
    }
    EXPECT_EQ(readFlpSession("RIFF....", {}).outcome, ReaderOutcome::Rejected);
}

}  // namespace
}  // namespace tidewick
