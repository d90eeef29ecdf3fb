#include <QLocale>

#include "platform/path_text.h"
#include "sweep/main_form.h"
#include "sweep/sweep_index.h"

// The counts in the list frames' captions and the sizes on the information line.
namespace tidewick {

namespace {

// Numbers follow the user's locale: QLocale() is the system locale unless QLocale::setDefault
// has fixed another, as the tests do. Digits are always grouped, also in locales such as "C"
// that leave the separator out by default.
QLocale numberLocale() {
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale;
}

constexpr double kBytesPerMegabyte = 1048576.0;

// "3,145,728 bytes (3.00Mb)"
QString bytesAndMegabytes(const QLocale& locale, qint64 bytes) {
    return locale.toString(bytes) + QStringLiteral(" bytes (") +
           locale.toString(double(bytes) / kBytesPerMegabyte, 'f', 2) + QStringLiteral("Mb)");
}

}  // namespace

void MainForm::UpdateSelCounter() {
    ui().setBusyPointer(true);

    QString usedCaption;
    if (UsedFiles.count() == 0) {
        usedCaption = UsedFrameCaption;
    } else if (UsedFiles.text(0) == NoMediaText) {
        usedCaption = QStringLiteral("0 ") + UsedFrameCaption;
    } else if (state.CheckAllFiles) {
        // Names SES files whatever the session kind.
        usedCaption = QStringLiteral(" Multiple SES files: ") + QString::number(UsedFiles.count()) +
                      QLatin1Char(' ') + UsedFrameCaption;
    } else {
        usedCaption = SESFile.items().value(SESFile.listIndex()) + QStringLiteral(": ") +
                      QString::number(UsedFiles.count()) + QLatin1Char(' ') + UsedFrameCaption;
    }
    UsedFrame.setText(usedCaption);

    if (UnusedFiles.count() > 0) {
        int checked = 0;
        for (int row = 0; row < UnusedFiles.count(); ++row) {
            checked += UnusedFiles.isChecked(row) ? 1 : 0;
        }
        UnusedFrame.setText(UnusedFrameCaption + QStringLiteral(" - [") + QString::number(checked) +
                            QLatin1Char('/') + QString::number(UnusedFiles.count()) +
                            QLatin1Char(']'));
    } else {
        UnusedFrame.setText(UnusedFrameCaption);
    }

    UpdateSizes();
    ui().setBusyPointer(false);
}

void MainForm::UpdateSizes() {
    // Each line's size comes from the listing that added it (or from the disk, once, for a line
    // added otherwise), so a change of check mark adds up cached numbers instead of asking the
    // disk about every listed file; UnusedFiles_ItemCheck reads the changed file again.
    QString sessionFolder = SESDir.text();
    AddBackslash(sessionFolder);
    const SweepIndex::Totals totals = sweepIndex_->totals(sessionFolder);
    const QLocale locale = numberLocale();
    InfoLabel.setText(
        QStringLiteral("Listed Other Files: ") + bytesAndMegabytes(locale, totals.listed) +
        QStringLiteral(" - Selected Other Files: ") + bytesAndMegabytes(locale, totals.checked));
}

void MainForm::UnusedFiles_Click() {
    UpdateSelCounter();
}

void MainForm::UnusedFiles_ItemCheck(int item) {
    // The file whose mark changed is looked at again: one that has vanished since the list was
    // filled counts 0 from now on.
    sweepIndex_->forgetSize(item);
    UpdateSizes();
}

}  // namespace tidewick
