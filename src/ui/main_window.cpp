#include "ui/main_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>

#include "platform/path_text.h"
#include "platform/places.h"
#include "readers/session_kinds.h"
#include "sweep/exclusion_form.h"
#include "ui/about_dialog.h"
#include "ui/combo_drop_width.h"
#include "ui/drawn_icons.h"
#include "ui/exclusion_window.h"
#include "ui/folder_tree_model.h"
#include "ui/frame_style.h"
#include "ui/move_window.h"
#include "ui/twips.h"

namespace tidewick {

namespace {

void setItemsIfChanged(QComboBox* combo, const QStringList& items) {
    QStringList shown;
    for (int index = 0; index < combo->count(); ++index) {
        shown.append(combo->itemText(index));
    }
    if (shown != items) {
        combo->clear();
        combo->addItems(items);
    }
}

// The page of the tab strip: a panel below the tabs, on which the session-file list lies.
constexpr auto kTabPage = "FileTypeTabPage";

// A check-box list gives every line the size of one (which keeps a list of many thousand lines
// quick); that one is its widest line, so the list scrolls sideways to the end of every line.
class WidestLineDelegate : public QStyledItemDelegate {
public:
    explicit WidestLineDelegate(QListView* view) : QStyledItemDelegate(view), view_(view) {
        const QAbstractItemModel* model = view->model();
        connect(model, &QAbstractItemModel::modelReset, this, [this] { widest_ = {-1, 0}; });
        connect(model, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex&, int first, int last) { measure(first, last); });
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QModelIndex widest = index.siblingAtRow(widest_.row);
        return QStyledItemDelegate::sizeHint(option, widest.isValid() ? widest : index);
    }

private:
    // Runs after the view has heard of the new lines and before it lays them out.
    void measure(int first, int last) {
        if (widest_.row >= first) {
            widest_.row += last - first + 1;
        }
        const QFontMetrics metrics = view_->fontMetrics();
        const QAbstractItemModel* model = view_->model();
        for (int row = first; row <= last; ++row) {
            const int width = metrics.horizontalAdvance(model->index(row, 0).data().toString());
            if (width > widest_.width) {
                widest_ = {row, width};
            }
        }
    }

    QListView* view_;
    struct {
        int row = -1;
        int width = 0;
    } widest_;
};

}  // namespace

MainWindow::MainWindow(MainForm& form, QWidget* parent) : QMainWindow(parent), form_(form) {
    setObjectName(QStringLiteral("Main"));
    objects_.insert(QStringLiteral("Main"), this);

    // The client area below the menu bar is fixed; the window takes its size from it.
    auto* client = new QWidget(this);
    client->setObjectName(QStringLiteral("MainClient"));
    client->setFixedSize(twipsToPixels(MainForm::ClientWidth),
                         twipsToPixels(MainForm::ClientHeight));
    setCentralWidget(client);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    useLayoutFont(client);
    folderIcon_ = drawnFolderIcon();
    frameStyle_ = new FrameStyle;
    frameStyle_->setParent(this);

    createControls();

    connect(&form_, &MainForm::showRequested, this, [this] {
        show();
        // The tree can bring its current folder into view only once it has its size.
        if (auto* tree = qobject_cast<QTreeView*>(objects_.value(QStringLiteral("SESDir")))) {
            tree->scrollTo(tree->currentIndex(), QAbstractItemView::PositionAtCenter);
        }
    });
    connect(&form_, &MainForm::closeRequested, this, &QWidget::close);
    connect(&form_, &MainForm::focusRequested, this, [this](const QString& controlName) {
        if (auto* widget = qobject_cast<QWidget*>(objects_.value(controlName))) {
            widget->setFocus();
        }
    });
    connect(&form_, &MainForm::textSelectionRequested, this, [this](const QString& controlName) {
        // After the click that brought the focus has placed the cursor.
        if (auto* edit = qobject_cast<QLineEdit*>(objects_.value(controlName))) {
            QMetaObject::invokeMethod(edit, &QLineEdit::selectAll, Qt::QueuedConnection);
        }
    });
    connect(&form_, &MainForm::aboutRequested, this, &MainWindow::showAbout);
    form_.showExclusionForm = [this](ExclusionForm& exclusion) {
        ExclusionWindow editor(exclusion, this);
        editor.exec();
    };
    form_.showMoveForm = [this](MoveForm& move) {
        MoveWindow results(move, this);
        results.exec();
    };
    connect(&form_, &MainForm::webPageRequested, this,
            [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); });
    // Escape closes the window from whichever control has the focus.
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this,
            [this] { form_.Form_KeyDown(MainForm::EscapeKey, 0); });
    if (QObject* subFolderName = objects_.value(QStringLiteral("SubFolderName"))) {
        subFolderName->installEventFilter(this);
    }
}

MainWindow::~MainWindow() {
    form_.showMoveForm = nullptr;
    form_.showExclusionForm = nullptr;
}

void MainWindow::load() {
    if (const QScreen* screen = this->screen()) {
        form_.screenSize = screen->geometry().size() * TwipsPerPixel;
    }
    form_.Form_Load();
}

void MainWindow::createControls() {
    for (const auto& owned : form_.controls()) {
        Control& control = *owned;
        switch (control.kind()) {
            case ControlKind::Window:
                connect(&control, &Control::changed, this, &MainWindow::syncWindow);
                syncWindow();
                continue;
            case ControlKind::Menu: {
                QMenu* menu = menuBar()->addMenu(control.text());
                menu->setObjectName(control.name());
                objects_.insert(control.name(), menu);
                break;
            }
            case ControlKind::MenuItem: {
                auto* menu = qobject_cast<QMenu*>(objects_.value(control.container()));
                QAction* action = menu->addAction(control.text());
                action->setObjectName(control.name());
                objects_.insert(control.name(), action);
                connect(action, &QAction::triggered, &control, &Control::click);
                break;
            }
            default: {
                auto* container = control.container().isEmpty()
                                      ? centralWidget()
                                      : qobject_cast<QWidget*>(objects_.value(control.container()));
                QWidget* widget = createWidget(control, container);
                widget->setObjectName(control.name());
                objects_.insert(control.name(), widget);
                break;
            }
        }
        connect(&control, &Control::changed, this, [this, &control] { sync(control); });
        sync(control);
    }
}

QTreeView* MainWindow::createFolderTree(QWidget* container) {
    auto* tree = new QTreeView(container);
    folders_ = new FolderTreeModel(form_.FSO, this);
    tree->setModel(folders_);
    tree->setHeaderHidden(true);
    connect(tree, &QTreeView::clicked, this,
            [this](const QModelIndex& index) { form_.SESDir_Click(folders_->filePath(index)); });
    return tree;
}

QTabBar* MainWindow::createTabStrip(Control& control, QWidget* container) {
    auto* page = new QFrame(container);
    page->setObjectName(QLatin1String(kTabPage));
    page->setFrameShape(QFrame::StyledPanel);
    objects_.insert(QLatin1String(kTabPage), page);
    auto* tabs = new QTabBar(container);
    tabs->setExpanding(false);
    tabs->setDrawBase(false);
    for (const SessionKind& kind : sessionKinds()) {
        const int index = tabs->addTab(kind.tabCaption);
        tabs->setTabData(index, kind.tabKey);
        tabs->setTabToolTip(index, kind.tabTooltip);
    }
    connect(tabs, &QTabBar::currentChanged, &control, &Control::setListIndex);
    return tabs;
}

QComboBox* MainWindow::createChoiceList(Control& control, QWidget* container) {
    QComboBox* combo = control.kind() == ControlKind::ComboBox ? new FileTypesComboBox(container)
                                                               : new QComboBox(container);
    connect(combo, &QComboBox::activated, &control, [&control](int index) {
        if (control.kind() == ControlKind::DriveList) {
            control.setText(control.items().value(index));
        } else if (index == control.listIndex()) {
            control.click();  // choosing the chosen entry again still counts as a click
        } else {
            control.setListIndex(index);
        }
    });
    return combo;
}

QListView* MainWindow::createFileList(Control& control, QWidget* container) {
    auto* view = new QListView(container);
    view->setModel(new QStringListModel(view));
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setUniformItemSizes(true);
    connect(view->selectionModel(), &QItemSelectionModel::currentRowChanged, &control,
            [&control](const QModelIndex& current) {
                control.setListIndex(current.isValid() ? current.row() : -1);
            });
    return view;
}

QWidget* MainWindow::createWidget(Control& control, QWidget* container) {
    switch (control.kind()) {
        case ControlKind::Frame: {
            auto* frame = new QGroupBox(container);
            frame->setStyle(frameStyle_);
            return frame;
        }
        case ControlKind::Label:
            return new QLabel(container);
        case ControlKind::CheckBox: {
            auto* box = new QCheckBox(container);
            // A check box that lies over another control hides it, as ScanAll hides the
            // version label.
            box->setAutoFillBackground(true);
            connect(box, &QCheckBox::clicked, &control, &Control::setChecked);
            return box;
        }
        case ControlKind::Button: {
            auto* button = new QPushButton(container);
            button->setAutoDefault(false);
            connect(button, &QPushButton::clicked, &control, &Control::click);
            return button;
        }
        case ControlKind::PictureButton: {
            auto* button = new QToolButton(container);
            button->setIcon(folderIcon_);
            button->setIconSize(QSize(16, 16));
            connect(button, &QToolButton::clicked, &control, &Control::click);
            return button;
        }
        case ControlKind::TextBox: {
            auto* edit = new QLineEdit(container);
            connect(edit, &QLineEdit::textEdited, &control, &Control::setText);
            return edit;
        }
        case ControlKind::ComboBox:
        case ControlKind::DriveList:
            return createChoiceList(control, container);
        case ControlKind::CheckList: {
            auto* view = new QListView(container);
            bindList(control, view);
            return view;
        }
        case ControlKind::FolderTree:
            return createFolderTree(container);
        case ControlKind::FileList:
            return createFileList(control, container);
        case ControlKind::TabStrip:
            return createTabStrip(control, container);
        case ControlKind::Window:
        case ControlKind::Menu:
        case ControlKind::MenuItem:
            break;
    }
    return new QWidget(container);
}

void MainWindow::bindList(Control& control, QWidget* widget) {
    auto* view = static_cast<QListView*>(widget);
    const bool used = control.name() == QLatin1String("UsedFiles");
    view->setModel(used ? &form_.UsedFiles : &form_.UnusedFiles);
    view->setUniformItemSizes(true);  // keeps a list of many thousand lines quick
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    view->setItemDelegate(new WidestLineDelegate(view));
    view->viewport()->setMouseTracking(true);
    connect(view->selectionModel(), &QItemSelectionModel::currentRowChanged, &control,
            [&control](const QModelIndex& current) {
                control.setListIndex(current.isValid() ? current.row() : -1);
            });
    if (!used) {
        connect(view, &QListView::clicked, &form_, &MainForm::UnusedFiles_Click);
        connect(view, &QListView::doubleClicked, &form_, &MainForm::UnusedFiles_DblClick);
    }
}

void MainWindow::sync(Control& control) {
    QObject* object = objects_.value(control.name());
    if (auto* action = qobject_cast<QAction*>(object)) {
        action->setText(control.text());
        action->setEnabled(control.enabled());
        action->setVisible(control.visible());
        return;
    }
    if (auto* menu = qobject_cast<QMenu*>(object)) {
        menu->setTitle(control.text());
        menu->setEnabled(control.enabled());
        menu->menuAction()->setVisible(control.visible());
        return;
    }
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget) {
        return;
    }
    const QSignalBlocker blocker(widget);
    placeAt(widget, control.geometry());
    widget->setToolTip(control.tooltip());
    widget->setEnabled(control.enabled());
    if (widget->isHidden() == control.visible()) {
        widget->setVisible(control.visible());
    }

    syncContent(control, widget);
}

void MainWindow::syncFileList(Control& control, QWidget* widget) {
    auto* view = static_cast<QListView*>(widget);
    auto* files = static_cast<QStringListModel*>(view->model());
    QStringList shown;
    shown.reserve(control.items().size());
    for (const QString& name : control.items()) {
        shown.append(visibleText(name));  // a byte of a name that was no UTF-8 shows as \xFF
    }
    if (files->stringList() != shown) {
        files->setStringList(shown);
    }
    const QSignalBlocker selection(view->selectionModel());
    view->setCurrentIndex(files->index(control.listIndex()));
}

void MainWindow::syncTabStrip(Control& control, QWidget* widget) {
    static_cast<QTabBar*>(widget)->setCurrentIndex(control.listIndex());
    // The page lies below the tabs, within the strip's rectangle.
    if (auto* page = qobject_cast<QWidget*>(objects_.value(QLatin1String(kTabPage)))) {
        const QRect strip = widget->geometry();
        const int tabHeight = widget->sizeHint().height();
        page->setGeometry(strip.adjusted(0, tabHeight - 1, 0, 0));
        page->setVisible(control.visible());
    }
}

void MainWindow::syncContent(Control& control, QWidget* widget) {
    switch (control.kind()) {
        case ControlKind::Frame:
            static_cast<QGroupBox*>(widget)->setTitle(control.text());
            break;
        case ControlKind::Label:
            static_cast<QLabel*>(widget)->setText(control.text());
            break;
        case ControlKind::CheckBox: {
            auto* box = static_cast<QCheckBox*>(widget);
            box->setText(control.text());
            box->setChecked(control.checked());
            fitCaption(box);
            break;
        }
        case ControlKind::Button:
            static_cast<QPushButton*>(widget)->setText(control.text());
            fitCaption(widget);
            break;
        case ControlKind::TextBox: {
            auto* edit = static_cast<QLineEdit*>(widget);
            if (edit->text() != control.text()) {
                edit->setText(control.text());
            }
            break;
        }
        case ControlKind::ComboBox: {
            auto* combo = static_cast<QComboBox*>(widget);
            setItemsIfChanged(combo, control.items());
            combo->setCurrentIndex(control.listIndex());
            break;
        }
        case ControlKind::DriveList: {
            auto* combo = static_cast<QComboBox*>(widget);
            setItemsIfChanged(combo, control.items());
            combo->setCurrentIndex(static_cast<int>(control.items().indexOf(control.text())));
            break;
        }
        case ControlKind::FolderTree:
            if (folders_ && !control.text().isEmpty()) {
                auto* tree = static_cast<QTreeView*>(widget);
                rootTreeAt(tree, placeHolds(form_.SESDrive.text(), control.text())
                                     ? form_.SESDrive.text()
                                     : QDir::rootPath());
                const QModelIndex folder = folders_->index(control.text());
                tree->setCurrentIndex(folder);
                tree->scrollTo(folder);
            }
            break;
        case ControlKind::FileList:
            syncFileList(control, widget);
            break;
        case ControlKind::TabStrip:
            syncTabStrip(control, widget);
            break;
        case ControlKind::CheckList: {
            auto* view = static_cast<QListView*>(widget);
            if (control.listIndex() < 0) {
                const QSignalBlocker selection(view->selectionModel());
                view->selectionModel()->clearCurrentIndex();
                view->viewport()->update();
            }
            break;
        }
        case ControlKind::PictureButton:
        case ControlKind::Window:
        case ControlKind::Menu:
        case ControlKind::MenuItem:
            break;
    }
}

void MainWindow::rootTreeAt(QTreeView* tree, const QString& place) {
    // The tree shows what lies in the chosen place, not the place itself.
    if (folders_->rootPath() != place) {
        folders_->setRootPath(place);
        tree->setRootIndex(folders_->index(place));
    }
}

void MainWindow::syncWindow() {
    setWindowTitle(form_.Main.text());
    const QRect place = twipsToPixels(form_.Main.geometry());
    if (pos() != place.topLeft()) {
        move(place.topLeft());
    }
}

bool MainWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        // Folders may have been made or removed meanwhile, by this program or another.
        if (folders_ != nullptr) {
            folders_->refresh();
        }
        form_.Form_Activate();
    }
    return QMainWindow::event(event);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn &&
        watched == objects_.value(QStringLiteral("SubFolderName"))) {
        form_.SubFolderName_GotFocus();
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    form_.Form_Unload();
    event->accept();
}

void MainWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    const QRect window = form_.Main.geometry();
    const QPoint twips = pos() * TwipsPerPixel;
    // Only a real move is taken back: a position that rounds to the same pixel stays as stored.
    if (twipsToPixels(window).topLeft() != pos()) {
        form_.Main.setGeometry(QRect(twips, window.size()));
    }
}

void MainWindow::showAbout() {
    AboutDialog about(form_.Main.text(), form_.WebPage, this);
    about.exec();
}

}  // namespace tidewick
