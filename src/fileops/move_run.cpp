#include "fileops/move_run.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>

#include "platform/number_text.h"
#include "platform/path_text.h"
#include "platform/wildcard.h"

namespace tidewick {

namespace {

const QString kDashes = QString(50, QLatin1Char('-'));

// The file an item stands for. On the REAPER tab an item may be a file of the record folder
// given by its whole path; any other item lies in the session folder. Only a whole path counts
// as one: a bare name is never looked for in the program's current directory.
QString sourcePath(const MoveRequest& request, const QString& item, const FileSystem& disk) {
    if (request.itemsMayBePaths && QDir::isAbsolutePath(item) && disk.FileExists(item)) {
        return item;
    }
    return withSeparator(request.sessionFolder) + item;
}

// One run: the per-item state and the bytes done.
class MoveRun {
public:
    MoveRun(const MoveRequest& request, FileOperations& disk, const MoveEvents& events)
        : request_(request), disk_(disk), events_(events) {
        outcome_.moved.resize(request.items.size());
        outcome_.results.resize(request.items.size());
        plans_.resize(request.items.size());
        sizes_.resize(request.items.size());
        for (qsizetype index = 0; index < request.items.size(); ++index) {
            FileError ignored;
            if (request.items[index].checked) {
                plans_[index] = planMove(request, request.items[index].text, disk);
                sizes_[index] = disk.entrySize(plans_[index].source, &ignored).value_or(0);
                total_ += sizes_[index];
            }
        }
    }

    MoveOutcome run();

private:
    const MoveRequest& request_;
    FileOperations& disk_;
    const MoveEvents& events_;
    MoveOutcome outcome_;
    QList<PlannedMove> plans_;  // of the checked files, as the run begins
    QList<qint64> sizes_;
    qint64 total_ = 0;
    qint64 done_ = 0;

    void log(const QString& text) const {
        if (events_.log) {
            events_.log(text);
        }
    }
    void progress(qint64 bytes) {
        done_ += bytes;
        if (events_.progress) {
            events_.progress(done_, total_);
        }
    }
    OverwriteAnswer ask(const QString& destination) const {
        return events_.askOverwrite ? events_.askOverwrite(overwriteQuestion(destination))
                                    : OverwriteAnswer::Cancel;
    }
    void moveFile(qsizetype index);
    void copyFailed(qsizetype index, const FileError& error) {
        outcome_.results[index] = QStringLiteral("...Error ") + errorText(error);
        outcome_.failed = true;
    }
};

MoveOutcome MoveRun::run() {
    const QString sourceFolder = withSeparator(request_.sessionFolder);
    log(QStringLiteral("Moving selected files to...") + moveDestination(request_) + kLogLineEnd);
    log(QStringLiteral("Commenced ") + logTimestamp() + kLogLineEnd + kDashes + kLogLineEnd);
    bool yesToAll = false;
    qsizetype index = 0;
    for (; index < request_.items.size(); ++index) {
        const MoveItem& item = request_.items[index];
        if (!item.checked) {
            continue;
        }
        const qint64 doneBefore = done_;
        bool proceed = true;
        const QString& destination = plans_[index].destination;
        if (!yesToAll && disk_.FileExists(destination)) {
            const OverwriteAnswer answer = ask(destination);
            if (answer == OverwriteAnswer::Cancel) {
                outcome_.cancelled = true;
                break;
            }
            yesToAll = answer == OverwriteAnswer::YesToAll;
            proceed = answer != OverwriteAnswer::No;
            if (!proceed) {
                log(QStringLiteral("Moving...") + sourceFolder + item.text +
                    QStringLiteral("Skipped") + kLogLineEnd);
            }
        }
        if (proceed) {
            moveFile(index);
            log(QStringLiteral("Moving...") + sourceFolder + item.text + outcome_.results[index] +
                kLogLineEnd);
        }
        outcome_.filesMoved += outcome_.moved[index] ? 1 : 0;
        // Whatever became of the file, its bytes are behind the run now.
        progress(std::max<qint64>(doneBefore + sizes_[index] - done_, 0));
    }
    if (outcome_.cancelled) {
        log(QStringLiteral("Moving...") + sourceFolder + request_.items[index].text +
            QStringLiteral("Operation cancelled.") + kLogLineEnd);
    }
    log(kLogLineEnd + moveTotalsLine(outcome_.filesMoved, outcome_.bytesMoved) + kLogLineEnd);
    log(kDashes + kLogLineEnd + QStringLiteral("Finished ") + logTimestamp());
    return outcome_;
}

void MoveRun::moveFile(qsizetype index) {
    const PlannedMove& planned = plans_[index];
    const QString& sourceFile = planned.source;
    const QString& destination = planned.destination;
    if (planned.excluded) {
        outcome_.results[index] = QStringLiteral("...File Excluded");
        return;
    }
    FileError error;
    const std::optional<qint64> size = disk_.entrySize(sourceFile, &error);
    if (!size) {
        copyFailed(index, error);
        return;
    }
    const QString folder = moveDestination(request_);
    if (!disk_.FolderExists(folder)) {
        if (const FileResult failed = disk_.createFolder(folder)) {
            copyFailed(index, *failed);
            return;
        }
    }
    if (const FileResult failed =
            disk_.copyFile(sourceFile, destination, [this](qint64 bytes) { progress(bytes); })) {
        copyFailed(index, *failed);
        return;
    }
    outcome_.bytesMoved += *size;
    // The copy is whole under its final name. When the trash will not take the source, the copy
    // is written through to the disk before the source is deleted for good.
    FileResult removal = disk_.moveToTrash(sourceFile);
    if (removal) {
        removal = disk_.flushToDisk(destination);
        if (!removal) {
            removal = disk_.removeFile(sourceFile);
        }
    }
    if (removal) {
        outcome_.results[index] =
            QStringLiteral("...File copied.  Cannot remove source file.  Error ") +
            errorText(*removal);
        outcome_.failed = true;
        return;
    }
    outcome_.moved[index] = true;
    outcome_.results[index] =
        QStringLiteral("...OK - ") + groupedNumber(*size) + QStringLiteral(" bytes moved.");
}

}  // namespace

QString moveDestination(const MoveRequest& request) {
    if (request.storeInSubFolder) {
        return withSeparator(request.targetText) + trimBlanks(GetBaseName(request.sessionFile));
    }
    return request.targetText;
}

PlannedMove planMove(const MoveRequest& request, const QString& item, const FileSystem& disk) {
    return {sourcePath(request, item, disk),
            withSeparator(moveDestination(request)) + GetFileName(item),
            request.excludeOn && wildcardMatchesAny(item, request.excluded)};
}

MoveOutcome runMove(const MoveRequest& request, FileOperations& disk, const MoveEvents& events) {
    return MoveRun(request, disk, events).run();
}

QString overwriteQuestion(const QString& destination) {
    return QStringLiteral("File '") + destination +
           QStringLiteral("' Already Exists.  Overwrite Existing File?");
}

QString moveTotalsLine(qint64 filesMoved, qint64 bytesMoved) {
    return QStringLiteral("Files Moved: ") + groupedNumber(filesMoved) +
           QStringLiteral(" - Bytes Moved:  ") + groupedNumber(bytesMoved) + QStringLiteral(" (") +
           megabyteText(bytesMoved) + QStringLiteral("Mb)");
}

QString logTimestamp() {
    // The locale's short date and its time with seconds, as a general date-and-time.
    const QLocale locale;
    QString time = locale.timeFormat(QLocale::LongFormat);
    time.remove(QLatin1Char('t'));
    return locale.toString(QDateTime::currentDateTime(), locale.dateFormat(QLocale::ShortFormat) +
                                                             QLatin1Char(' ') + time.trimmed());
}

}  // namespace tidewick
