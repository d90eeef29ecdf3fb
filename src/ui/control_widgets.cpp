#include "ui/control_widgets.h"

#include <QCheckBox>
#include <QFrame>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>

#include "ui/twips.h"

namespace tidewick {

namespace {

// The height of one line of text in twips, with its margins.
constexpr int kOneLine = 300;

QWidget* createFrame(ControlKind kind, QWidget* container, const ControlLook& look) {
    if (kind == ControlKind::Divider) {
        auto* line = new QFrame(container);
        line->setFrameShape(QFrame::HLine);
        line->setFrameShadow(QFrame::Sunken);
        return line;
    }
    auto* frame = new QGroupBox(container);
    frame->setStyle(look.frameStyle);
    return frame;
}

QWidget* createButton(Control& control, QWidget* container, const ControlLook& look) {
    if (control.kind() == ControlKind::Button) {
        auto* button = new QPushButton(container);
        button->setAutoDefault(false);
        QObject::connect(button, &QPushButton::clicked, &control, &Control::click);
        return button;
    }
    auto* button = new QToolButton(container);
    button->setIconSize(QSize(16, 16));
    if (control.kind() == ControlKind::PictureButton) {
        button->setIcon(look.folderIcon);
    } else {
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setFocusPolicy(Qt::StrongFocus);
    }
    QObject::connect(button, &QToolButton::clicked, &control, &Control::click);
    return button;
}

// A table of whole rows, one chosen at a time, sorted by a click on a heading.
QTableWidget* createTable(QWidget* container) {
    auto* table = new QTableWidget(container);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setSortingEnabled(true);
    return table;
}

QWidget* createCommonWidget(Control& control, QWidget* container, const ControlLook& look) {
    switch (control.kind()) {
        case ControlKind::Frame:
        case ControlKind::Divider:
            return createFrame(control.kind(), container, look);
        case ControlKind::Label: {
            auto* label = new QLabel(container);
            // A label with room for more than one line wraps its text from the top.
            if (control.geometry().height() > kOneLine) {
                label->setWordWrap(true);
                label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
            }
            return label;
        }
        case ControlKind::CheckBox: {
            auto* box = new QCheckBox(container);
            // A check box that lies over another control hides it, as ScanAll hides the
            // version label.
            box->setAutoFillBackground(true);
            QObject::connect(box, &QCheckBox::clicked, &control, &Control::setChecked);
            return box;
        }
        case ControlKind::Button:
        case ControlKind::PictureButton:
        case ControlKind::ToolButton:
            return createButton(control, container, look);
        case ControlKind::TextBox: {
            auto* edit = new QLineEdit(container);
            QObject::connect(edit, &QLineEdit::textEdited, &control, &Control::setText);
            return edit;
        }
        case ControlKind::ListBox: {
            auto* list = new QListWidget(container);
            list->setSelectionMode(QAbstractItemView::ExtendedSelection);
            return list;
        }
        case ControlKind::TextArea: {
            auto* text = new QPlainTextEdit(container);
            text->setReadOnly(true);
            text->setLineWrapMode(QPlainTextEdit::NoWrap);
            return text;
        }
        case ControlKind::Table:
            return createTable(container);
        case ControlKind::ProgressBar: {
            auto* bar = new QProgressBar(container);
            bar->setTextVisible(false);
            return bar;
        }
        default:
            return nullptr;
    }
}

// Shows the caption or state of a control of a common kind.
void syncCommonContent(Control& control, QWidget* widget) {
    switch (control.kind()) {
        case ControlKind::Frame:
            static_cast<QGroupBox*>(widget)->setTitle(control.text());
            break;
        case ControlKind::Label:
            static_cast<QLabel*>(widget)->setText(control.text());
            if (static_cast<QLabel*>(widget)->wordWrap()) {
                fitCaption(widget);
            }
            break;
        case ControlKind::CheckBox: {
            auto* box = static_cast<QCheckBox*>(widget);
            box->setText(control.text());
            box->setChecked(control.checked());
            fitCaption(box);
            break;
        }
        case ControlKind::Button:
        case ControlKind::ToolButton:
            static_cast<QAbstractButton*>(widget)->setText(control.text());
            fitCaption(widget);
            break;
        case ControlKind::Table: {
            auto* table = static_cast<QTableWidget*>(widget);
            table->setColumnCount(int(control.items().size()));
            table->setHorizontalHeaderLabels(control.items());
            break;
        }
        case ControlKind::TextBox: {
            auto* edit = static_cast<QLineEdit*>(widget);
            if (edit->text() != control.text()) {
                edit->setText(control.text());
            }
            break;
        }
        default:
            break;
    }
}

void syncControl(Control& control, QObject* object, const SyncControl& sync) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget != nullptr && control.kind() != ControlKind::Menu) {
        const QSignalBlocker blocker(widget);
        placeAt(widget, control.geometry());
        widget->setToolTip(control.tooltip());
        widget->setEnabled(control.enabled());
        if (widget->isHidden() == control.visible()) {
            widget->setVisible(control.visible());
        }
        syncCommonContent(control, widget);
    }
    if (sync) {
        sync(control, object);
    }
}

}  // namespace

QHash<QString, QObject*> makeControlWidgets(QWidget* client,
                                            const std::vector<std::unique_ptr<Control>>& controls,
                                            const ControlLook& look, const MakeControl& make,
                                            const SyncControl& sync) {
    QHash<QString, QObject*> objects;
    for (const auto& owned : controls) {
        Control& control = *owned;
        auto* container = control.container().isEmpty()
                              ? client
                              : qobject_cast<QWidget*>(objects.value(control.container()));
        QObject* object = make ? make(control, container) : nullptr;
        if (object == nullptr) {
            object = createCommonWidget(control, container, look);
        }
        if (object == nullptr) {
            continue;  // the window itself
        }
        object->setObjectName(control.name());
        objects.insert(control.name(), object);
        QObject::connect(&control, &Control::changed, object,
                         [&control, object, sync] { syncControl(control, object, sync); });
        syncControl(control, object, sync);
    }
    return objects;
}

}  // namespace tidewick
