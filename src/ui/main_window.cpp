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

#include "forms/audit_form.h"
#include "forms/core_messages.h"
#include "forms/exclusion_form.h"
#include "forms/restore_form.h"
#include "ui/about_dialog.h"
#include "ui/audit_window.h"
#include "ui/control_widgets.h"
#include "ui/drawn_icons.h"
#include "ui/exclusion_window.h"
#include "ui/folder_tree_model.h"
#include "ui/frame_style.h"
#include "ui/move_window.h"
#include "ui/restore_window.h"
#include "ui/twips.h"

namespace tidewick {

MainWindow::MainWindow(MainForm& form, SettingsStore* store, QWidget* parent)
    : QMainWindow(parent), form_(form), store_(store) {
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
    showDialogsOfForm();
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

namespace {

// Shows the dialog `Window` of a form, modal over `owner`, until it closes.
template <typename Window, typename Form>
std::function<void(Form&)> modalOver(QWidget* owner) {
    return [owner](Form& form) {
        Window dialog(form, owner);
        dialog.exec();
    };
}

}  // namespace

// The form's dialogs open modal over this window.
void MainWindow::showDialogsOfForm() {
    form_.showExclusionForm = modalOver<ExclusionWindow, ExclusionForm>(this);
    form_.showMoveForm = modalOver<MoveWindow, MoveForm>(this);
    form_.showRestoreForm = modalOver<RestoreWindow, RestoreForm>(this);
    form_.showAuditForm = modalOver<AuditWindow, AuditForm>(this);
}

MainWindow::~MainWindow() {
    form_.showMoveForm = nullptr;
    form_.showExclusionForm = nullptr;
    form_.showRestoreForm = nullptr;
    form_.showAuditForm = nullptr;
}

void MainWindow::load() {
    if (const QScreen* screen = this->screen()) {
        form_.screenSize = screen->geometry().size() * TwipsPerPixel;
    }
    form_.Form_Load(store_ ? loadPreferences(*store_, form_.disk()) : Preferences());
}

void MainWindow::createControls() {
    connect(&form_.control(u"Main"), &Control::changed, this, &MainWindow::syncWindow);
    syncWindow();
    const ControlLook look{frameStyle_, folderIcon_};
    const QHash<QString, QObject*> made = makeControlWidgets(
        centralWidget(), form_.controls(), look,
        [this](Control& control, QWidget* container) { return createSpecial(control, container); },
        [this](Control& control, QObject* object) { syncSpecial(control, object); });
    objects_.insert(made);
}

void MainWindow::syncWindow() {
    setWindowTitle(form_.control(u"Main").text());
    const QRect place = twipsToPixels(form_.control(u"Main").geometry());
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
        form_.lists().SubFolderName_GotFocus();
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (form_.copyRunning()) {
        event->ignore();  // the window closes once the copy is over
        return;
    }
    // A window closed twice (by "E&xit", then by the program's end) unloads once.
    if (!std::exchange(unloaded_, true)) {
        const Preferences preferences = form_.Form_Unload();
        if (store_) {
            if (const Result<void> saved = savePreferences(*store_, preferences); !saved) {
                form_.ui().showMessage(settingsNotSavedMessage(saved.error()));
            }
        }
    }
    event->accept();
}

void MainWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    const QRect window = form_.control(u"Main").geometry();
    const QPoint twips = pos() * TwipsPerPixel;
    // Only a real move is taken back: a position that rounds to the same pixel stays as stored.
    if (twipsToPixels(window).topLeft() != pos()) {
        form_.control(u"Main").setGeometry(QRect(twips, window.size()));
    }
}

void MainWindow::showAbout() {
    AboutDialog about(form_.control(u"Main").text(), form_.webPage(), this);
    about.exec();
}

}  // namespace tidewick
