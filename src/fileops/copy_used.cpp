#include "fileops/copy_used.h"

#include <QFileInfo>

#include "text/path_text.h"

#include <cerrno>

namespace tidewick {

namespace {

// Copies the file a used line leads to (through links: the audio, not the link) under its name
// in the folder, replacing a file of that name unless a loaded session uses that one.
Result<void> copyOne(const CopyItem& item, const QString& destination, FileOperations& disk,
                     const FileOperations::Progress& progress, const UsedFileOwners& used) {
    const QString user = usedBy(used, destination);
    if (!user.isEmpty() &&
        QFileInfo(destination).canonicalFilePath() != QFileInfo(item.source).canonicalFilePath()) {
        return Error{EEXIST, QStringLiteral("the file in the target is used by ") + user};
    }
    if (const Result<TrashPlace> copied =
            disk.copyFile(item.source, destination, {true, true}, progress);
        !copied) {
        return copied.error();
    }
    return {};
}

}  // namespace

CopyOutcome copyUsedFiles(const QList<CopyItem>& items, const QString& folder, FileOperations& disk,
                          const CopyEvents& events, const UsedFileOwners& used) {
    disk.removeLeftovers(folder);
    qint64 total = 0;
    for (const CopyItem& item : items) {
        total += disk.entrySize(item.source).valueOr(0);
    }
    CopyOutcome outcome;
    qint64 done = 0;
    const auto progress = [&](qint64 bytes) {
        done += bytes;
        if (events.progress) {
            events.progress(done, total);
        }
    };
    for (const CopyItem& item : items) {
        if (events.stopRequested && events.stopRequested()) {
            outcome.aborted = true;
            return outcome;
        }
        const qint64 before = done;
        const QString destination = folder + hostFileName(item.source);
        if (events.keepExisting && disk.entrySize(destination).ok() &&
            events.keepExisting(item, destination)) {
            ++outcome.skipped;
            progress(disk.entrySize(item.source).valueOr(0));
            if (events.skipped) {
                events.skipped(item, destination);
            }
            continue;
        }
        for (;;) {
            if (events.starting) {
                events.starting(outcome.copied + 1, int(items.size()), item);
            }
            const Result<void> copied = copyOne(item, destination, disk, progress, used);
            if (copied) {
                ++outcome.copied;
                const qint64 size = disk.entrySize(destination).valueOr(done - before);
                outcome.bytes += size;
                if (events.copied) {
                    events.copied(item, destination, size);
                }
                break;
            }
            done = before;  // a copy tried again counts its bytes again
            const CopyFailureAnswer answer =
                events.failed ? events.failed(item, copied.error()) : CopyFailureAnswer::Ignore;
            if (answer == CopyFailureAnswer::Abort) {
                outcome.aborted = true;
                return outcome;
            }
            if (answer == CopyFailureAnswer::Ignore) {
                ++outcome.failed;
                break;
            }
        }
    }
    return outcome;
}

QString copyFailureText(const Error& error, const QString& text) {
    return QStringLiteral("Error ") + errorText(error) +
           QStringLiteral(" has occurreed while attempting to copy ") + GetFileName(text) +
           QLatin1Char('.');
}

QString copiedFilesLine(int count, const QString& folder) {
    return QString::number(count) + QStringLiteral(" File(s) successfully copied to ") + folder +
           QLatin1Char('.');
}

}  // namespace tidewick
