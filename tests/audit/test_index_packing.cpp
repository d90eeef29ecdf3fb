#include <gtest/gtest.h>

#include <QDataStream>
#include <QIODevice>
#include <QRandomGenerator>
#include <functional>

#include "audit/index_packing.h"
#include "support/reader_fixture.h"
#include "text/path_text.h"

// What the index keeps of a session's read and of a folder's report comes back as it went in;
// bytes that are not a whole packing, or that lie, come back as a failure.
namespace tidewick {
namespace {

QString described(const SessionRead& read) {
    QStringList parts = {QString::number(int(read.outcome)), read.paths.toList().join('|')};
    if (read.ses) {
        parts << read.ses->version << (read.ses->versionFound ? "found" : "-");
    }
    for (const RecordPathLine& line :
         read.reaper ? read.reaper->recordPaths : QList<RecordPathLine>()) {
        parts.append(line.hasValue ? '=' + line.value : "-");
    }
    if (const std::optional<ReadProblem>& problem = read.problem) {
        parts << QString::number(int(problem->failure)) << QString::number(int(problem->kind))
              << QString::number(int(problem->severity)) << problem->detail << problem->file;
    }
    return parts.join(" / ");
}

QString described(const FolderReport& report) {
    QStringList parts = {report.folder, QString::number(report.used),
                         QString::number(report.reclaimableBytes), report.stopped ? "stopped" : "-",
                         report.reason};
    for (const auto& [kind, names] : report.sessions) {
        parts.append(QString::number(int(kind)) + ':' + names.join('|'));
    }
    for (const MissingMedia& missing : report.missing) {
        parts.append(missing.text + '>' + missing.path + '<' + missing.sessions.join('|'));
    }
    for (const auto& [path, size] : report.reclaimable) {
        parts.append(path + ':' + QString::number(size));
    }
    return parts.join(" / ");
}

// A read: its paths, version, record path lines ("-" for a line without a value) and problem.
SessionRead readOf(ReaderOutcome outcome, const QStringList& paths, const QString& version,
                   const QStringList& lines, std::optional<ReadProblem> problem = {}) {
    SessionRead read;
    read.outcome = outcome;
    read.paths = paths;
    if (!version.isEmpty()) {
        read.ses = SesFacts{{}, version, true};
    }
    QList<RecordPathLine> recordPaths;
    for (const QString& line : lines) {
        recordPaths.append({line != "-", line == "-" ? QString() : line, false, false, false});
    }
    if (!recordPaths.isEmpty()) {
        read.reaper = ReaperFacts{recordPaths};
    }
    read.problem = std::move(problem);
    return read;
}

const SessionRead kReads[] = {
    {},
    readOf(ReaderOutcome::Read, {"take.wav", "", "C:\\Audio\\vocal é.wav", "../Média/x.wav"},
           "Audition 3.0", {"-", "Media", ""}),
    // A path may hold a line end, a NUL or a byte that is no UTF-8 (decodeFileName).
    readOf(ReaderOutcome::Read,
           {"two\nlines.wav", decodeFileName("take\xff 2.wav"), QString(QChar(0)) + "nul.wav",
            "plain.wav"},
           {}, {}),
    readOf(ReaderOutcome::Rejected, {}, {}, {},
           ReadProblem{ReadFailure::NotThisKind, SessionKindId::Veg, ReadSeverity::Error,
                       "first line", "/s/a.veg"}),
    readOf(ReaderOutcome::Failed, {"a.wav"}, {}, {}, ReadProblem{}),
    // Paths that share their start with the one before, all of it, or none of it.
    readOf(ReaderOutcome::Read,
           {"/a/b/take 1.wav", "/a/b/take 10.wav", "/a/b/take 1.wav", "/a/b/take 1.wav", "/a/b/",
            "/a/b/two\nlines.wav", "/a/b/take 2.wav", "", "/a/b/take 2.wav"},
           {}, {}),
    readOf(ReaderOutcome::Rejected, {}, "Cool Edit Pro 2.0", {},
           ReadProblem{ReadFailure::UnsupportedVersion, SessionKindId::Ses, ReadSeverity::Notice,
                       "Cool Edit Pro 2.0", "/s/a.ses"}),
};

FolderReport report(const QString& folder) {
    FolderReport report;
    report.folder = folder;
    report.sessions = {{SessionKindId::Sesx, {"mix.sesx", "b.sesx"}}, {SessionKindId::Veg, {}}};
    report.used = 7;
    report.missing = {{"Audio\\x.wav", folder + "/Audio/x.wav", {"mix.sesx"}, {}}, {}};
    // A name may hold a line end, and a byte that is no UTF-8 (decodeFileName).
    const QString noUtf8 = decodeFileName("take\xff 2.wav");
    report.reclaimable = {{"take 1.wav", 3},
                          {"Média/é.wav", 1LL << 40},
                          {"sub/dir/a", 0},
                          {"two\nlines.wav", 4},
                          {noUtf8, 6},
                          {"/elsewhere/shared.wav", 5},
                          {"/elsewhere/ñ\nline.wav", 8},
                          {"/elsewhere/" + noUtf8, 9},
                          {"gone.wav", -1}};
    report.reclaimableBytes = 3 + (1LL << 40) + 4 + 6 + 5 + 8 + 9 - 1;
    return report;
}

// The bytes that `write` puts into a stream as the packing writes one.
QByteArray bytesOf(const std::function<void(QDataStream&)>& write) {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    write(out);
    return bytes;
}

TEST(IndexPacking, ReadsAndReportsComeBackAsTheyWentIn) {
    for (const SessionRead& read : kReads) {
        const Result<SessionRead> back = unpackRead(packRead(read));
        ASSERT_TRUE(back.ok()) << described(read).toStdString();
        EXPECT_EQ(described(*back), described(read));
    }
    // Reads as earlier indexes packed them: their paths a list, then whole lines.
    const auto earlierRead = [](QDataStream& out) {
        out << QString() << false << qint32(0) << qint8(0) << quint32(0);
    };
    for (const auto& [packed, paths] :
         {std::pair{bytesOf([&](QDataStream& out) {
                        out << qint32(0) << QStringList{"a.wav", "b\nc.wav"};
                        earlierRead(out);
                    }),
                    QStringList{"a.wav", "b\nc.wav"}},
          std::pair{bytesOf([&](QDataStream& out) {
                        out << qint32(0x100) << QByteArray("/a/a.wav\n/a/b.wav\n");
                        earlierRead(out);
                    }),
                    QStringList{"/a/a.wav", "/a/b.wav"}}}) {
        const Result<SessionRead> earlier = unpackRead(packed);
        ASSERT_TRUE(earlier.ok());
        EXPECT_EQ(earlier->paths.toList(), paths);
    }
    FolderReport stopped;
    stopped.folder = "/music/Song";
    stopped.stopped = true;
    stopped.reason = "Reading stopped at \"mix.ses\"";
    for (const FolderReport& sent :
         {FolderReport(), stopped, report("/music/Song"), report("/"), report("/Ça va")}) {
        const Result<FolderReport> back = unpackReport(packReport(sent));
        ASSERT_TRUE(back.ok()) << described(sent).toStdString();
        EXPECT_EQ(described(*back), described(sent));
    }
}

struct Hostile {
    const char* name;
    bool isReport;
    QByteArray bytes;
};

constexpr quint32 kHuge = 0x7FFFFFF0;  // a count that asks for gigabytes

const Hostile kHostile[] = {
    {"NoBytes", false, {}},
    {"AHugeCountOfPaths", false, bytesOf([](QDataStream& out) { out << qint32(0) << kHuge; })},
    {"AnOutcomeOutOfRange", false, bytesOf([](QDataStream& out) {
         out << qint32(7) << QStringList() << QString() << false << qint32(0) << false;
     })},
    {"AnIconOutOfRange", false, bytesOf([](QDataStream& out) {
         out << qint32(0) << QStringList() << QString() << false << qint32(0) << true << QString()
             << QString() << qint32(99);
     })},
    // A read an earlier index kept with a message: it is made again.
    {"AnEarlierIndexsMessage", false, bytesOf([](QDataStream& out) {
         out << qint32(ReaderOutcome::Rejected) << QStringList() << QString() << false << qint32(0)
             << true << QString("This is not a Vegas project file.")
             << QString("Processing VEG File") << qint32(4);
     })},
    {"AHugeCountOfLines", false, bytesOf([](QDataStream& out) {
         out << qint32(0) << QStringList() << QString() << false << qint32(kHuge);
     })},
    {"AnOddLengthOfText", false, bytesOf([](QDataStream& out) { out << qint32(0) << 1u << 3u; })},
    {"AKindOutOfRange", true,
     bytesOf([](QDataStream& out) { out << QString("/a") << qint32(1) << qint32(9) << 0u; })},
    {"AHugeCountOfNames", true,
     bytesOf([](QDataStream& out) { out << QString("/a") << qint32(1) << qint32(0) << kHuge; })},
    {"AHugeCountOfSizes", true, bytesOf([](QDataStream& out) {
         out << QString("/a") << qint32(0) << qint64(0) << qint32(0) << QByteArray() << kHuge;
     })},
    // Lines that share more bytes with the line before than it holds, or counts of shared
    // bytes left over.
    {"ASharedStartLongerThanTheLineBefore", false, bytesOf([](QDataStream& out) {
         out << qint32(0x300) << QByteArray("a\nb\n") << QByteArray("\x00\x05", 2) << QString()
             << false << qint32(0) << qint8(0) << quint32(0);
     })},
    {"SharedCountsLeftOver", false, bytesOf([](QDataStream& out) {
         out << qint32(0x300) << QByteArray("a\n") << QByteArray(3, '\0') << QString() << false
             << qint32(0) << qint8(0) << quint32(0);
     })},
    {"MoreSizesThanNames", true, bytesOf([](QDataStream& out) {
         out << QString("/a") << qint32(0) << qint64(0) << qint32(0) << QByteArray("x\n")
             << QByteArray(1, '\0') << QByteArray("\x01\x02", 2) << false << QString();
     })},
    {"ASizeOfMoreThanSixtyFourBits", true, bytesOf([](QDataStream& out) {
         out << QString("/a") << qint32(0) << qint64(0) << qint32(0) << QByteArray("x\n")
             << QByteArray(1, '\0') << QByteArray("\xff\xff\xff\xff\xff\xff\xff\xff\xff\x02")
             << false << QString();
     })},
    {"SizesThatAddUpBeyondAnyFolder", true, bytesOf([](QDataStream& out) {
         out << QString("/a") << qint32(0) << qint64(0) << qint32(0) << QByteArray("x\ny\n")
             << QByteArray(2, '\0')
             << QByteArray(
                    "\xfe\xff\xff\xff\xff\xff\xff\xff\xff\x01"
                    "\xfe\xff\xff\xff\xff\xff\xff\xff\xff\x01")
             << false << QString();
     })},
};

bool unpacks(const QByteArray& bytes, bool isReport) {
    return isReport ? unpackReport(bytes).ok() : unpackRead(bytes).ok();
}

TEST(IndexPacking, BytesThatLieOrEndEarlyFail) {
    for (const Hostile& hostile : kHostile) {
        EXPECT_FALSE(unpacks(hostile.bytes, hostile.isReport)) << hostile.name;
    }
    for (const auto& [packed, isReport] : {std::pair{packRead(kReads[1]), false},
                                           std::pair{packReport(report("/music/Song")), true}}) {
        for (qsizetype length = 0; length < packed.size(); ++length) {
            EXPECT_FALSE(unpacks(packed.left(length), isReport)) << length;
        }
    }
    // Noise never takes the unpacking past its bytes (the sanitizer build watches).
    QRandomGenerator random(7);
    for (int round = 0; round < 500; ++round) {
        QByteArray noise(int(random.bounded(200)), '\0');
        random.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        unpacks(noise, round % 2 == 1);
    }
}

}  // namespace
}  // namespace tidewick
