#pragma once

#include <QHash>
#include <QIcon>
#include <QMainWindow>
#include <memory>

#include "forms/main_form.h"

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
    /// The user's preferences come from `store` at load and go back to it at unload; without a
    /// store the window starts with the defaults and keeps nothing.
    explicit MainWindow(MainForm& form, SettingsStore* store = nullptr, QWidget* parent = nullptr);
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
    SettingsStore* store_;
    bool unloaded_ = false;
    QHash<QString, QObject*> objects_;
    FolderTreeModel* folders_ = nullptr;
    QStyle* frameStyle_ = nullptr;
    QIcon folderIcon_;

    void createControls();
    void showDialogsOfForm();
    /// The widget or action of a control of the main window's own kinds, or nullptr.
    QObject* createSpecial(Control& control, QWidget* container);
    /// Shows what is particular to such a control's kind: its lines, its selection, its path.
    void syncSpecial(Control& control, QObject* object);
    void bindList(Control& control, QListView* view);
    QTreeView* createFolderTree(QWidget* container);
    QTabBar* createTabStrip(Control& control, QWidget* container);
    QComboBox* createChoiceList(Control& control, QWidget* container);
    QListView* createFileList(Control& control, QWidget* container);
    void syncFolderTree(Control& control, QTreeView* tree);
    void syncFileList(Control& control, QWidget* widget);
    void syncTabStrip(Control& control, QWidget* widget);
    /// Shows the folders of `place` at the top of the folder tree.
    void rootTreeAt(QTreeView* tree, const QString& place);
    void syncWindow();
    void showAbout();
};

}  // namespace tidewick
