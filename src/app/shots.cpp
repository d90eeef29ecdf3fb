#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QPainter>
#include <QProgressDialog>
#include <QTimer>
#include <QToolTip>
#include <cstdio>
#include <functional>

#include "app/option_value.h"
#include "forms/main_form.h"
#include "platform/process_setup.h"
#include "settings/settings_store.h"
#include "ui/main_window.h"
#include "ui/qt_interaction.h"

// tidewick-shots: pictures of Tidewick's dialogs for the README, taken of the real windows over
// the folder and settings of the user running it (scripts/screenshots gives it a demo studio).
// It plays the user: every question is answered "Yes", the folder picker picks the folder given
// with --to, and the file manager is never started.
//
//   tidewick-shots results|exclusion|copy|kept|restore|audit FILE [--select NAME] [--to FOLDER]
//                  [--sub-folder]
namespace {

using namespace tidewick;

bool save(const QPixmap& picture, const QString& file) {
    const bool saved = picture.save(file);
    std::fprintf(stderr, "%s %s\n", saved ? "wrote" : "cannot write", qUtf8Printable(file));
    return saved;
}

// The window with `dialog` in its middle, as the user sees the two.
QPixmap over(QWidget& window, QWidget* dialog) {
    QPixmap picture = window.grab();
    const QPixmap top = dialog->grab();
    QPainter painter(&picture);
    const QRect place(QPoint(), top.deviceIndependentSize().toSize());
    const QRect centred = place.translated(window.rect().center() - place.center());
    painter.fillRect(centred.adjusted(-1, -1, 1, 1), Qt::darkGray);  // the dialog's frame
    painter.drawPixmap(centred.topLeft(), top);
    return picture;
}

// The window with the tooltip of its control `name` shown where the pointer would rest on it.
QPixmap withTooltip(MainWindow& window, const QString& name) {
    for (int settle = 0; settle < 20; ++settle) {  // the window lays itself out and paints
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    auto* control = window.findChild<QWidget*>(name);
    const QPoint at(16, 110);
    QToolTip::showText(control->mapToGlobal(at), control->toolTip(), control);
    QApplication::processEvents();
    QPixmap picture = window.grab();
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QTipLabel") && widget->isVisible()) {
            QPainter painter(&picture);
            painter.drawPixmap(control->mapTo(&window, at), widget->grab());
        }
    }
    return picture;
}

class ShotUser : public QtInteraction {
public:
    QString folder;
    /// Called as a copy goes on, with the fraction done.
    std::function<void(double done)> progressed;

    MessageAnswer showMessage(const MessageBoxRequest& request) override {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(request.title),
                     qUtf8Printable(request.text));
        const bool hasYes = request.buttons == MessageButtons::YesNo ||
                            request.buttons == MessageButtons::YesNoCancel;
        return hasYes ? MessageAnswer::Yes : request.defaultButton;
    }
    QString browseForFolder(const QString&, const QString&) override { return folder; }
    std::optional<OverwriteAnswer> askOverwrite(const QString&, OverwriteAnswer) override {
        return OverwriteAnswer::YesToAll;
    }
    bool openFolder(const QString&) override { return true; }
    void showProgress(const QString& title, const QString& item, qint64 done,
                      qint64 total) override {
        QtInteraction::showProgress(title, item, done, total);
        if (progressed && total > 0) {
            progressed(double(done) / double(total));
        }
    }
};

// Calls `found` with the dialog called `name` once it is open and `ready` says so.
void whenOpen(const QString& name, std::function<bool(QDialog*)> ready,
              std::function<void(QDialog*)> found) {
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<QDialog*>(widget);
            if (dialog != nullptr && dialog->objectName() == name && dialog->isVisible() &&
                ready(dialog)) {
                timer->deleteLater();
                found(dialog);
                return;
            }
        }
    });
    timer->start(100);
}

// Whether the dialog's button called `name` can be pressed: its run is over.
std::function<bool(QDialog*)> buttonEnabled(const char* name) {
    return [name](QDialog* dialog) {
        auto* button = dialog->findChild<QAbstractButton*>(QString::fromLatin1(name));
        return button != nullptr && button->isEnabled();
    };
}

// Takes the picture of `window` with the dialog called `name` over it once it opens, then
// closes the dialog as Escape would.
void overWhenOpen(QWidget& window, const QString& name, const QString& file, bool& saved) {
    whenOpen(
        name, [](QDialog*) { return true; },
        [&window, file, &saved](QDialog* dialog) {
            saved = save(over(window, dialog), file);
            dialog->reject();
        });
}

}  // namespace

int main(int argc, char* argv[]) {
    tidewick::prepareProcess();
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr,
                     "usage: tidewick-shots results|exclusion|copy|kept|restore|audit FILE "
                     "[--select NAME] [--to FOLDER] [--sub-folder]\n");
        return 1;
    }
    const QString shot = arguments[1], file = arguments[2];
    QSettingsStore store;
    ShotUser ui;
    ui.folder = optionValue(arguments, QStringLiteral("--to"));
    MainForm form(ui);
    MainWindow window(form, &store);
    ui.setOwner(&window);
    window.load();
    if (arguments.contains(QStringLiteral("--sub-folder"))) {
        form.control(u"SubFolderCheck").setChecked(true);  // the sub-folder row on, as its box does
    }
    const QString selected = optionValue(arguments, QStringLiteral("--select"));
    if (!selected.isEmpty()) {
        form.control(u"SESFile")
            .setListIndex(int(form.control(u"SESFile").items().indexOf(selected)));
    }

    bool saved = false;
    if (shot == QLatin1String("results")) {
        // Every file to be moved goes to the folder given.
        for (int row = 0; row < form.lists().unusedFiles().count(); ++row) {
            form.lists().unusedFiles().setChecked(row, true);
        }
        form.control(u"TargetFolderName").setText(ui.folder);
        whenOpen(QStringLiteral("MoveForm"), buttonEnabled("CloseButton"), [&](QDialog* dialog) {
            saved = save(dialog->grab(), file);
            dialog->findChild<QAbstractButton*>(QStringLiteral("CloseButton"))->click();
        });
        form.MoveButton_Click();
    } else if (shot == QLatin1String("exclusion")) {
        overWhenOpen(window, QStringLiteral("Exclusion"), file, saved);
        form.control(u"ExcludedCheck").setChecked(false);
        form.control(u"ExcludedCheck").setChecked(true);
    } else if (shot == QLatin1String("restore")) {
        overWhenOpen(window, QStringLiteral("Restore"), file, saved);
        form.mnuFileRestore_Click();
    } else if (shot == QLatin1String("audit")) {
        // The library under the folder given, once its table is there.
        whenOpen(QStringLiteral("Audit"), buttonEnabled("OpenButton"), [&](QDialog* dialog) {
            saved = save(over(window, dialog), file);
            dialog->reject();
        });
        form.mnuFileAudit_Click();
    } else if (shot == QLatin1String("kept")) {
        saved = save(withTooltip(window, QStringLiteral("UnusedFrame")), file);
    } else if (shot == QLatin1String("copy")) {
        // The picture is taken halfway, however quickly the copy goes.
        ui.progressed = [&](double done) {
            auto* dialog = window.findChild<QProgressDialog*>(QStringLiteral("CopyProgress"));
            if (!saved && done >= 0.5 && dialog != nullptr) {
                dialog->show();
                QApplication::processEvents();
                saved = save(over(window, dialog), file);
            }
        };
        form.usedCopy().CopyFilesButton_Click();
    }
    window.close();
    return saved ? 0 : 1;
}
