#include "ui/audit_window.h"

#include <QHeaderView>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include "forms/audit_form.h"
#include "text/path_text.h"
#include "ui/control_widgets.h"
#include "ui/twips.h"

namespace tidewick {

namespace {

// A cell that sorts by a number of its own rather than by its text: the bytes of "Reclaimable",
// the count of "Missing", and for every cell the row of the report it shows.
class Cell : public QTableWidgetItem {
public:
    Cell(const QString& text, qint64 key, int row) : QTableWidgetItem(text), key_(key) {
        setData(Qt::UserRole, row);
    }
    bool operator<(const QTableWidgetItem& other) const override {
        const auto* cell = dynamic_cast<const Cell*>(&other);
        return cell != nullptr && key_ >= 0 ? key_ < cell->key_
                                            : QTableWidgetItem::operator<(other);
    }

private:
    qint64 key_;  // −1: by the text
};

}  // namespace

AuditWindow::AuditWindow(AuditForm& form, QWidget* parent) : QDialog(parent), form_(form) {
    setObjectName(QStringLiteral("Audit"));
    setWindowTitle(QStringLiteral("Audit a Library"));
    setFixedSize(twipsToPixels(AuditForm::ClientWidth), twipsToPixels(AuditForm::ClientHeight));
    useLayoutFont(this);
    form.Form_Load();
    const QHash<QString, QObject*> widgets = makeControlWidgets(this, form.controls(), {});
    table_ = qobject_cast<QTableWidget*>(widgets.value(QStringLiteral("FolderTable")));
    auto* progress = qobject_cast<QProgressBar*>(widgets.value(QStringLiteral("AuditProgress")));
    progress->setRange(0, 0);  // the walk's length is not known beforehand
    const auto button = [&widgets](const char* name) {
        auto* found = qobject_cast<QPushButton*>(widgets.value(QString::fromLatin1(name)));
        found->setAutoDefault(true);
        return found;
    };
    connect(button("OpenButton"), &QPushButton::clicked, &form, &AuditForm::OpenButton_Click);
    connect(button("CancelButton"), &QPushButton::clicked, &form, &AuditForm::CancelButton_Click);
    connect(&form, &AuditForm::progressed, progress, [progress](int done, int total) {
        progress->setRange(0, total);
        progress->setValue(done);
    });
    connect(&form, &AuditForm::runFinished, this, &AuditWindow::fillTable);
    connect(table_, &QTableWidget::currentCellChanged, this, [this](int row) {
        const QTableWidgetItem* item = table_->item(row, 0);
        form_.CurrentRow = item != nullptr ? item->data(Qt::UserRole).toInt() : -1;
    });
    connect(table_, &QTableWidget::cellDoubleClicked, &form, &AuditForm::OpenButton_Click);
    connect(&form, &AuditForm::closeRequested, this, &QDialog::accept);
}

void AuditWindow::fillTable() {
    table_->setSortingEnabled(false);  // rows go in as the report has them, then sort
    table_->setRowCount(int(form_.rows().size()));
    for (int row = 0; row < form_.rows().size(); ++row) {
        const AuditForm::Row& line = form_.rows()[row];
        const QList<Cell*> cells = {new Cell(visibleText(line.folder), -1, row),
                                    new Cell(line.sessions, -1, row),
                                    new Cell(line.reclaimable, line.reclaimableBytes + 1, row),
                                    new Cell(QString::number(line.missing), line.missing, row)};
        const QString tip = line.reason.isEmpty() ? visibleText(line.folder)
                                                  : visibleText(line.folder) + u'\n' + line.reason;
        for (int column = 0; column < cells.size(); ++column) {
            cells[column]->setToolTip(tip);
            table_->setItem(row, column, cells[column]);
        }
    }
    table_->setSortingEnabled(true);
    table_->sortByColumn(2, Qt::DescendingOrder);
    // The folder takes the room the other columns leave.
    table_->resizeColumnsToContents();
    table_->horizontalHeader()->setStretchLastSection(false);
    table_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    table_->setCurrentCell(0, 0);
    table_->setFocus();
}

void AuditWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!activated_) {
        activated_ = true;
        QTimer::singleShot(0, &form_, &AuditForm::Form_Activate);
    }
}

void AuditWindow::reject() {
    form_.CancelButton_Click();  // Escape stops the audit, and closes the window once it is over
}

}  // namespace tidewick
