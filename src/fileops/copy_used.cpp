#include "fileops/copy_used.h"

#include "platform/path_text.h"

namespace tidewick {

CopyOutcome copyUsedFiles(const QList<CopyItem>& items, const QString& folder, FileOperations& disk,
                          const CopyEvents& events) {
    qint64 total = 0;
    for (const CopyItem& item : items) {
        FileError ignored;
        total += disk.entrySize(item.source, &ignored).value_or(0);
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
        const qint64 before = done;
        for (;;) {
            if (events.starting) {
                events.starting(outcome.copied + 1, int(items.size()), item);
            }
            const FileResult error =
                disk.copyFile(item.source, folder + GetFileName(item.text), progress);
            if (!error) {
                ++outcome.copied;
                break;
            }
            done = before;  // a copy tried again counts its bytes again
            const CopyFailureAnswer answer =
                events.failed ? events.failed(item, *error) : CopyFailureAnswer::Ignore;
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

QString copyFailureText(const FileError& error, const QString& text) {
    return QStringLiteral("Error ") + errorText(error) +
           QStringLiteral(" has occurreed while attempting to copy ") + GetFileName(text) +
           QLatin1Char('.');
}

QString copiedFilesLine(int count, const QString& folder) {
    return QString::number(count) + QStringLiteral(" File(s) successfully copied to ") + folder +
           QLatin1Char('.');
}

}  // namespace tidewick
