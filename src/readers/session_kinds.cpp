#include "readers/session_kinds.h"

#include <QScopeGuard>

#include <bitset>
#include <exception>

#include "readers/import_als.h"
#include "readers/import_ardour.h"
#include "readers/import_aup.h"
#include "readers/import_flp.h"
#include "readers/import_mlt.h"
#include "readers/import_rpp.h"
#include "readers/import_ses.h"
#include "readers/import_sesx.h"
#include "readers/import_veg.h"
#include "readers/import_xml.h"
#include "readers/session_bytes.h"
#include "text/letter_case.h"
#include "text/path_text.h"

namespace tidewick {

namespace {

// One kind as the table below writes it.
struct KindRow {
    SessionKindId id;
    const char *idText, *pattern, *peaks;
    SessionReader reader;
    bool subFolderRow;
    const char* recordingsSuffix;
    bool peakNamesWholeMedia, namesRecordFolder;
    const char* backupPattern;
    bool namesWholePaths, versionFirst, exactExtension;
    bool projectScope = false;
    SessionFileReader fileReader = nullptr;
};

// Audition keeps a session's recordings in a folder named after it: mix_Recorded.
constexpr KindRow kKinds[] = {
    {SessionKindId::Ses, "ses", "*.ses", "pk", &readSesSession, false, "_Recorded", false, false,
     "", true, true, false},
    {SessionKindId::Sesx, "sesx", "*.sesx", "pkf", &readSesxSession, false, "_Recorded", false,
     false, "", false, false, true},
    {SessionKindId::Xml, "xml", "*.xml", "pk", &readXmlSession, false, "_Recorded", false, false,
     "", false, false, true},
    {SessionKindId::Rpp, "rpp", "*.rpp", "reapeaks", &readRppSession, true, "", true, true,
     "*.rpp-bak", false, false, true},
    {SessionKindId::Veg, "veg", "*.veg", "sfk", &readVegSession, true, "", true, false, "*.veg.bak",
     false, false, true},
    // Live names its analysis files after the whole media name: "take.wav.asd".
    {SessionKindId::Als, "als", "*.als", "asd", &readAlsSession, false, "", true, false, "", false,
     false, false, true},
    {SessionKindId::Aup, "aup", "*.aup;*.aup3", "", &readAupSession, false, "", false, false, "",
     false, false, false, true, &readAupFile},
    // Ardour names a peak file after its source and channel: "take.wav%A0.peak".
    {SessionKindId::Ardour, "ardour", "*.ardour", "peak", &readArdourSession, false, "", true,
     false, "", false, false, false, true},
    {SessionKindId::Flp, "flp", "*.flp", "", &readFlpSession, false, "", false, false, "", false,
     false, false, true},
    {SessionKindId::Mlt, "mlt", "*.kdenlive;*.mlt", "", &readMltSession, false, "", false, false,
     "", false, false, false, true},
};

// The patterns of a pattern text: "*.aup;*.aup3" holds two.
QStringList patternsOf(const QString& pattern) {
    return pattern.split(u';', Qt::SkipEmptyParts);
}

}  // namespace

const QList<SessionKind>& sessionKinds() {
    static const QList<SessionKind> kinds = [] {
        QList<SessionKind> list;
        for (const KindRow& row : kKinds) {
            const auto text = [](const char* latin1) { return QString::fromLatin1(latin1); };
            list.append({row.id, text(row.idText), text(row.pattern), text(row.peaks), row.reader,
                         row.subFolderRow, text(row.recordingsSuffix), row.peakNamesWholeMedia,
                         row.namesRecordFolder, text(row.backupPattern), row.namesWholePaths,
                         row.versionFirst, row.exactExtension, row.projectScope, row.fileReader});
        }
        return list;
    }();
    return kinds;
}

QString tabSessionPattern(const SessionKind& kind) {
    if (!kind.projectScope) {
        return kind.sessionPattern;
    }
    QStringList patterns;
    for (const SessionKind& each : sessionKinds()) {
        if (each.projectScope) {
            patterns.append(each.sessionPattern);
        }
    }
    return patterns.join(u';');
}

const SessionKind* sessionKindForFile(const QString& fileName) {
    const QString extension = lowerCase(GetExtensionName(fileName));
    for (const SessionKind& kind : sessionKinds()) {
        for (const QString& pattern : patternsOf(kind.sessionPattern)) {
            if (pattern.mid(2) == extension) {
                return &kind;
            }
        }
    }
    return nullptr;
}

namespace {

// One ending a session's name may have (".rpp", ".rpp-bak"), its kind and whether it is a
// backup's.
struct NameEnding {
    QString ending;
    const SessionKind* kind;
    bool backup;
};

// Every kind's endings in the table's order, and the last characters they end in, ASCII
// lower-cased: a name that ends otherwise (most media) is no session, told in one look.
struct NameEndings {
    QList<NameEnding> endings;
    std::bitset<128> lastCharacters;

    NameEndings() {
        for (const SessionKind& kind : sessionKinds()) {
            for (const QString* joined : {&kind.sessionPattern, &kind.backupPattern}) {
                for (const QString& pattern : patternsOf(*joined)) {
                    endings.append({pattern.mid(1), &kind, joined == &kind.backupPattern});
                    lastCharacters.set(lowerCase(endings.last().ending).back().unicode() & 0x7f);
                }
            }
        }
    }
};

}  // namespace

const SessionKind* sessionKindForName(const QString& name, bool* backup) {
    static const NameEndings table;
    if (name.isEmpty()) {
        return nullptr;
    }
    const char16_t last = name.back().unicode();
    const char16_t lowered = last >= u'A' && last <= u'Z' ? char16_t(last + 32) : last;
    if (lowered < 0x80 && !table.lastCharacters.test(lowered)) {
        return nullptr;
    }
    for (const NameEnding& each : table.endings) {
        if (name.size() > each.ending.size() && endsWithIgnoringCase(name, each.ending)) {
            if (backup) {
                *backup = each.backup;
            }
            return each.kind;
        }
    }
    return nullptr;
}

const QStringList& backupFolders() {
    static const QStringList folders = {QStringLiteral("Backups"), QStringLiteral("Backup")};
    return folders;
}

QString sessionKindIdTexts(const QString& separator) {
    QStringList ids;
    for (const SessionKind& kind : sessionKinds()) {
        ids.append(kind.idText);
    }
    if (!separator.isEmpty()) {
        return ids.join(separator);
    }
    const QString last = ids.takeLast();
    return ids.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last;
}

const SessionKind& sessionKind(SessionKindId id) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.id == id) {
            return kind;
        }
    }
    Q_UNREACHABLE();
}

const SessionKind* sessionKindByIdText(const QString& text) {
    for (const SessionKind& kind : sessionKinds()) {
        if (kind.idText.compare(text, Qt::CaseInsensitive) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

SessionRead readSessionFile(const SessionKind& kind, const QString& fileName,
                            const SessionPlace& place) {
    const auto failed = [&](ReadFailure failure, const QString& reason) {
        SessionRead read;
        read.outcome = ReaderOutcome::Failed;
        read.problem = ReadProblem{failure, kind.id, ReadSeverity::Error, reason, fileName};
        return read;
    };
    // A fault while reading, such as a file too large for the memory left, ends this read with
    // a problem, never the program.
    try {
        if (kind.fileReader) {
            if (std::optional<SessionRead> read = kind.fileReader(fileName)) {
                if (read->problem) {
                    read->problem->file = fileName;
                }
                return *read;
            }
        }
        // Each thread reads its sessions into a memory of its own, kept between reads while
        // it is small: a load reads hundreds of sessions, and fresh memory for each of them costs
        // more than the copy of its bytes.
        constexpr qsizetype kKept = 4 << 20;
        thread_local QByteArray bytes;
        const auto dropLarge = qScopeGuard([] {
            if (bytes.capacity() > kKept) {
                bytes = QByteArray();
            }
        });
        if (const QString error = readSessionBytes(fileName, bytes); !error.isEmpty()) {
            return failed(ReadFailure::Unreadable, error);
        }
        SessionRead read = kind.reader(bytes, place);
        if (read.problem) {
            read.problem->file = fileName;
        }
        return read;
    } catch (const std::exception& error) {
        return failed(ReadFailure::Fault, QString::fromLocal8Bit(error.what()));
    } catch (...) {
        return failed(ReadFailure::Fault, QStringLiteral("Unknown error"));
    }
}

}  // namespace tidewick
