#include <QComboBox>
#include <QDir>
#include <QListView>
#include <QMenuBar>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTreeView>

#include "forms/kind_texts.h"
#include "platform/places.h"
#include "readers/session_kinds.h"
#include "text/path_text.h"
#include "ui/combo_drop_width.h"
#include "ui/folder_tree_model.h"
#include "ui/main_window.h"

// The main window's own kinds of control: the session browser's drive list, folder tree, tab
// strip and file list, the media type list, the two check-box lists and the menus.
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

QObject* MainWindow::createSpecial(Control& control, QWidget* container) {
    switch (control.kind()) {
        case ControlKind::Menu:
            return menuBar()->addMenu(control.text());
        case ControlKind::MenuItem: {
            QAction* action = static_cast<QMenu*>(container)->addAction(control.text());
            connect(action, &QAction::triggered, &control, &Control::click);
            return action;
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
        default:
            return nullptr;
    }
}

void MainWindow::syncSpecial(Control& control, QObject* object) {
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
    auto* widget = static_cast<QWidget*>(object);
    const QSignalBlocker blocker(widget);
    switch (control.kind()) {
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
            syncFolderTree(control, static_cast<QTreeView*>(widget));
            break;
        case ControlKind::FileList:
            syncFileList(control, widget);
            break;
        case ControlKind::TabStrip:
            syncTabStrip(control, widget);
            break;
        case ControlKind::CheckList:
            if (control.listIndex() < 0) {
                auto* view = static_cast<QListView*>(widget);
                const QSignalBlocker selection(view->selectionModel());
                view->selectionModel()->clearCurrentIndex();
                view->viewport()->update();
            }
            break;
        default:
            break;
    }
}

void MainWindow::syncFolderTree(Control& control, QTreeView* tree) {
    if (folders_ && !control.text().isEmpty()) {
        const QString& drive = form_.browser().drive();
        rootTreeAt(tree, placeHolds(drive, control.text()) ? drive : QDir::rootPath());
        const QModelIndex folder = folders_->index(control.text());
        tree->setCurrentIndex(folder);
        tree->scrollTo(folder);
    }
}

QTreeView* MainWindow::createFolderTree(QWidget* container) {
    auto* tree = new QTreeView(container);
    folders_ = new FolderTreeModel(form_.disk(), this);
    tree->setModel(folders_);
    tree->setHeaderHidden(true);
    connect(tree, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        form_.browser().SESDir_Click(folders_->filePath(index));
    });
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
    // Every kind's tab stays in sight: six captions fit the strip with narrower margins, and a
    // longer one is cut short rather than scrolled out of sight.
    tabs->setUsesScrollButtons(false);
    tabs->setElideMode(Qt::ElideRight);
    tabs->setStyleSheet(QStringLiteral("QTabBar::tab { padding: 3px 6px; }"));
    for (const SessionKind* kind : tabKinds()) {
        const KindTexts& texts = kindTexts(kind->id);
        const int index = tabs->addTab(texts.tabCaption);
        tabs->setTabData(index, texts.tabKey);
        tabs->setTabToolTip(index, texts.tabTooltip);
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

void MainWindow::bindList(Control& control, QListView* view) {
    const bool used = control.name() == QLatin1String("UsedFiles");
    view->setModel(used ? &form_.lists().usedFiles() : &form_.lists().unusedFiles());
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
        connect(view, &QListView::clicked, &form_, [this] { form_.lists().UnusedFiles_Click(); });
        connect(view, &QListView::doubleClicked, &form_,
                [this] { form_.lists().UnusedFiles_DblClick(); });
    }
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

void MainWindow::rootTreeAt(QTreeView* tree, const QString& place) {
    // The tree shows what lies in the chosen place, not the place itself.
    if (folders_->rootPath() != place) {
        folders_->setRootPath(place);
        tree->setRootIndex(folders_->index(place));
    }
}

}  // namespace tidewick
