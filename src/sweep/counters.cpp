#include "platform/number_text.h"
#include "platform/path_text.h"
#include "sweep/main_form.h"
#include "sweep/size_cache.h"
#include "sweep/sweep.h"

// The counts in the list frames' captions and the sizes on the information line.
namespace tidewick {

namespace {

// "3,145,728 bytes (3.00Mb)"
QString bytesAndMegabytes(qint64 bytes) {
    return groupedNumber(bytes) + QStringLiteral(" bytes (") + megabyteText(bytes) +
           QStringLiteral("Mb)");
}

}  // namespace

QString usedFrameText(qsizetype lineCount, bool noMedia, bool wholeFolder,
                      const QString& sessionName, bool stopped) {
    if (stopped) {
        // The other files of a session read only in part are not listed; the caption says why.
        return QStringLiteral("Reading stopped: ") +
               usedFrameText(lineCount, noMedia, wholeFolder, sessionName);
    }
    if (lineCount == 0) {
        return kUsedFrameCaption;
    }
    if (noMedia) {
        return QStringLiteral("0 ") + kUsedFrameCaption;
    }
    const QString counted = QString::number(lineCount) + QLatin1Char(' ') + kUsedFrameCaption;
    if (wholeFolder) {
        // Names SES files whatever the session kind.
        return QStringLiteral(" Multiple SES files: ") + counted;
    }
    return sessionName + QStringLiteral(": ") + counted;
}

QString unusedFrameText(qsizetype checked, qsizetype listed) {
    if (listed == 0) {
        return kUnusedFrameCaption;
    }
    return kUnusedFrameCaption + QStringLiteral(" - [") + QString::number(checked) +
           QLatin1Char('/') + QString::number(listed) + QLatin1Char(']');
}

QString sizesText(qint64 listed, qint64 checked) {
    return QStringLiteral("Listed Other Files: ") + bytesAndMegabytes(listed) +
           QStringLiteral(" - Selected Other Files: ") + bytesAndMegabytes(checked);
}

QString stoppedText(const UsedMedia& used, qsizetype scanned) {
    QString text = QStringLiteral("Reading stopped at \"") + used.stoppedAt + u'"';
    if (scanned > 1) {
        text += QStringLiteral(" (%1 of %2 sessions not read)").arg(used.unread).arg(scanned);
    }
    return text + QStringLiteral(": no other files are listed");
}

void MainForm::UpdateSelCounter() {
    ui().setBusyPointer(true);
    const bool noMedia = UsedFiles.count() > 0 && UsedFiles.text(0) == NoMediaText;
    UsedFrame.setText(usedFrameText(UsedFiles.count(), noMedia, CheckAllFiles,
                                    SESFile.items().value(SESFile.listIndex()), loadStopped_));
    int checked = 0;
    for (int row = 0; row < UnusedFiles.count(); ++row) {
        checked += UnusedFiles.isChecked(row) ? 1 : 0;
    }
    UnusedFrame.setText(unusedFrameText(checked, UnusedFiles.count()));
    UpdateSizes();
    ui().setBusyPointer(false);
}

void MainForm::UpdateSizes() {
    // Each line's size comes from the listing that added it (or from the disk, once, for a line
    // added otherwise), so a change of check mark adds up cached numbers instead of asking the
    // disk about every listed file; UnusedFiles_ItemCheck reads the changed file again.
    if (loadStopped_) {
        InfoLabel.setText(stopNote_);  // nothing is listed, and the line says why
        return;
    }
    const SizeCache::Totals totals = sizeCache_->totals(withSeparator(SESDir.text()));
    InfoLabel.setText(sizesText(totals.listed, totals.checked));
}

void MainForm::UnusedFiles_Click() {
    UpdateSelCounter();
}

void MainForm::UnusedFiles_ItemCheck(int item) {
    // The file whose mark changed is looked at again: one that has vanished since the list was
    // filled counts 0 from now on. The mark may have changed by mouse or by keyboard: the
    // counter follows either way.
    sizeCache_->forgetSize(item);
    UpdateSelCounter();
}

void MainForm::Form_Activate() {
    remeasureOtherFiles();
}

void MainForm::remeasureOtherFiles() {
    // The sizes are kept between check marks for speed; files may have been changed or deleted
    // behind the program's back while the user was elsewhere.
    sizeCache_->forgetAll();
    UpdateSizes();
}

}  // namespace tidewick
