#pragma once

#include <QHash>
#include <QIcon>
#include <QMainWindow>
#include <memory>

#include "sweep/main_form.h"

class QComboBox;
class QListView;
class QTabBar;
class QTreeView;

// The main window: one widget per control of the MainForm, placed at the control's twips,
// showing its data and forwarding the user's actions to its handlers.
namespace tidewick {

class FolderTreeModel;

class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(MainForm& form, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Runs the form's load, at whose end the window shows itself.
    void load();

    /// The widget or action that stands for control `name`.
    QObject* controlObject(const QString& name) const { return objects_.value(name); }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

private:
    MainForm& form_;
    QHash<QString, QObject*> objects_;
    FolderTreeModel* folders_ = nullptr;
    QStyle* frameStyle_ = nullptr;
    QIcon folderIcon_;

    void createControls();
    QWidget* createWidget(Control& control, QWidget* container);
    void bindList(Control& control, QWidget* view);
    QTreeView* createFolderTree(QWidget* container);
    QTabBar* createTabStrip(Control& control, QWidget* container);
    QComboBox* createChoiceList(Control& control, QWidget* container);
    QListView* createFileList(Control& control, QWidget* container);
    void sync(Control& control);
    /// Shows what is particular to the control's kind: caption, state, lines.
    void syncContent(Control& control, QWidget* widget);
    void syncFileList(Control& control, QWidget* widget);
    void syncTabStrip(Control& control, QWidget* widget);
    /// Shows the folders of `place` at the top of the folder tree.
    void rootTreeAt(QTreeView* tree, const QString& place);
    void syncWindow();
    void showAbout();
};

}  // namespace tidewick
