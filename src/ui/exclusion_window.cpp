#include "ui/exclusion_window.h"

#include <QFrame>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QValidator>

#include "sweep/exclusion_form.h"
#include "ui/drawn_icons.h"
#include "ui/frame_style.h"
#include "ui/twips.h"

namespace tidewick {

namespace {

// Keeps only what can be typed into the box, whether typed or pasted.
class SpecValidator : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString& input, int& position) const override {
        const QString admitted = ExclusionForm::admittedSpecText(input);
        if (admitted != input) {
            position -= int(input.left(position).size() -
                            ExclusionForm::admittedSpecText(input.left(position)).size());
            input = admitted;
        }
        return Acceptable;
    }
};

}  // namespace

ExclusionWindow::ExclusionWindow(ExclusionForm& form, QWidget* parent)
    : QDialog(parent), form_(form) {
    setObjectName(QStringLiteral("Exclusion"));
    setWindowTitle(QStringLiteral("Exclude Files"));
    setFixedSize(twipsToPixels(ClientWidth), twipsToPixels(ClientHeight));
    useLayoutFont(this);

    auto* frame = placed(new QGroupBox(QStringLiteral("Exclude the listed file specifications "
                                                      "from the Move operation"),
                                       this),
                         QStringLiteral("Frame1"), {60, 90, 6615, 3825});
    auto* frameStyle = new FrameStyle;
    frameStyle->setParent(this);
    frame->setStyle(frameStyle);
    auto* intro = placed(
        new QLabel(QStringLiteral(
                       "Enter a file specification you wish to exclude from the Move operation "
                       "into the box below and then click the Add button (or press Enter) to add "
                       "it to the Exclusion List (eg lyrics.doc).  The standard wildcards * and ? "
                       "can also be used (eg *.doc).  To remove items from the list, select the "
                       "item(s) in the Exclusion List and click the Remove button."),
                   frame),
        QStringLiteral("Label1"), {90, 360, 6405, 825});
    intro->setWordWrap(true);
    intro->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    fitCaption(intro);
    auto* divider = placed(new QFrame(frame), QStringLiteral("Frame2"), {60, 1230, 6525, 65});
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Sunken);
    placed(new QLabel(QStringLiteral("File Specification"), frame), QStringLiteral("Label4"),
           {210, 1500, 2385, 225});
    specText_ = placed(new QLineEdit(frame), QStringLiteral("SpecText"), {210, 1740, 2565, 315});
    specText_->setValidator(new SpecValidator(specText_));
    specText_->installEventFilter(this);
    placed(new QLabel(QStringLiteral("Exclusion List"), frame), QStringLiteral("Label3"),
           {3900, 1500, 2655, 225});
    specList_ =
        placed(new QListWidget(frame), QStringLiteral("SpecList"), {3900, 1740, 2655, 2010});
    specList_->setSelectionMode(QAbstractItemView::ExtendedSelection);

    const struct {
        QString caption, tooltip;
        QIcon icon;
        QRect twips;
    } actions[] = {
        {QStringLiteral("&Add"),
         QStringLiteral("Add to the Quarantine list"),
         drawnSignIcon(true),
         {2910, 1770, 885, 615}},
        {QStringLiteral("&Remove"),
         QStringLiteral("Remove selected item from the Quarantine list"),
         drawnSignIcon(false),
         {2910, 2460, 885, 615}},
    };
    // Picture buttons: the sign above the caption. Enter anywhere but on a button adds, as the
    // dialog's default button would (see keyPressEvent).
    for (int index = 0; index < 2; ++index) {
        auto* button = placed(new QToolButton(frame), QStringLiteral("ActionButton%1").arg(index),
                              actions[index].twips);
        button->setText(actions[index].caption);
        button->setIcon(actions[index].icon);
        button->setIconSize(QSize(16, 16));
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setToolTip(actions[index].tooltip);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, &form,
                [&form, index] { form.ActionButton_Click(index); });
    }
    auto* ok = placed(new QPushButton(QStringLiteral("&OK"), this), QStringLiteral("OKButton"),
                      {1980, 4050, 1215, 375});
    auto* cancel = placed(new QPushButton(QStringLiteral("&Cancel"), this),
                          QStringLiteral("CancelButton"), {3540, 4050, 1215, 375});
    for (QPushButton* button : {ok, cancel}) {
        button->setAutoDefault(false);
    }
    connect(ok, &QPushButton::clicked, &form, &ExclusionForm::OKButton_Click);
    connect(cancel, &QPushButton::clicked, &form, &ExclusionForm::CancelButton_Click);

    connect(specText_, &QLineEdit::textChanged, this,
            [this](const QString& text) { form_.SpecText = text; });
    connect(&form, &ExclusionForm::specTextChanged, this, [this] {
        if (specText_->text() != form_.SpecText) {
            specText_->setText(form_.SpecText);
        }
    });
    connect(&form, &ExclusionForm::specTextSelected, this, [this] {
        specText_->setFocus();
        // After a click that brought the focus has placed the cursor.
        QMetaObject::invokeMethod(specText_, &QLineEdit::selectAll, Qt::QueuedConnection);
    });
    connect(&form, &ExclusionForm::listChanged, this, &ExclusionWindow::showList);
    connect(specList_, &QListWidget::itemSelectionChanged, this, [this] {
        if (syncing_) {
            return;
        }
        form_.SelectedEntries.clear();
        for (const QModelIndex& index : specList_->selectionModel()->selectedRows()) {
            form_.SelectedEntries.append(index.row());
        }
    });
    connect(specList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!syncing_) {
            form_.CurrentEntry = row;
        }
    });
    connect(&form, &ExclusionForm::closeRequested, this, &QDialog::accept);
    form.Form_Load();
    specText_->setFocus();
}

void ExclusionWindow::showList() {
    syncing_ = true;
    specList_->clear();
    specList_->addItems(form_.SpecList);
    specList_->setCurrentRow(form_.CurrentEntry, QItemSelectionModel::NoUpdate);
    for (const int row : form_.SelectedEntries) {
        if (QListWidgetItem* item = specList_->item(row)) {
            item->setSelected(true);
        }
    }
    syncing_ = false;
}

void ExclusionWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            // Escape presses "&Cancel", which asks before edits are dropped; closing by the
            // frame drops them without asking.
            form_.CancelButton_Click();
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // Enter presses the button that has the keyboard, and "&Add" from anywhere else.
            if (auto* button = qobject_cast<QAbstractButton*>(focusWidget())) {
                button->click();
            } else {
                form_.ActionButton_Click(0);
            }
            return;
        default:
            QDialog::keyPressEvent(event);
    }
}

bool ExclusionWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == specText_ && event->type() == QEvent::FocusIn) {
        form_.SpecText_GotFocus();
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace tidewick
