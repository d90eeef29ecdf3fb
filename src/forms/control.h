#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <QStringList>
#include <memory>
#include <span>
#include <vector>

// One control of a window as the logic sees it: the properties the handlers read and set, with
// positions in twips. The Qt window mirrors each Control in a widget of the same name.
namespace tidewick {

/// What kind of widget stands for a control.
enum class ControlKind {
    Frame,          ///< a captioned group of controls
    Label,          ///< a line of text
    CheckBox,       ///< a check box; `checked` is its state
    Button,         ///< a push button with a caption
    PictureButton,  ///< a small button showing a folder picture
    ToolButton,     ///< a button with a picture above its caption
    TextBox,        ///< a one-line text box; `text` is its content
    ComboBox,       ///< a drop-down list; `items` and `listIndex`
    CheckList,      ///< a list of check-box lines, served by a CheckListModel
    ListBox,        ///< a list of texts of which several can be selected
    TextArea,       ///< a box of many lines to read, such as a log
    Table,          ///< rows under column headings, sorted by a click on one; `items` are those
    ProgressBar,    ///< a bar that fills as a long piece of work goes on
    Divider,        ///< a sunken line between parts of a dialog
    DriveList,      ///< the mounted drives; `items`, and `text` is the current drive
    FolderTree,     ///< a folder tree; `text` is its path
    FileList,       ///< the files of the folder `text`; `items` and `listIndex`
    TabStrip,       ///< a strip of tabs; `listIndex` is the selected tab
    Menu,           ///< a menu of the menu bar
    MenuItem,       ///< a command in a menu
    Window,         ///< the window itself; `text` is its caption
};

/// One control: its place, text, tooltip, state and events.
///
/// Setting `checked` or `listIndex` to a new value raises clicked(), and setting `text` to a new
/// value raises textChanged(), just as when the user makes the change; every change of any
/// property raises changed(), which the window uses to redraw the control.
class Control : public QObject {
    Q_OBJECT

public:
    Control(QString name, ControlKind kind, QString container, QRect twips, QString text = {},
            QString tooltip = {});

    const QString& name() const { return name_; }
    ControlKind kind() const { return kind_; }
    /// The control that holds this one: a frame, a menu, or empty for the window itself.
    const QString& container() const { return container_; }

    /// Left, top, width and height in twips, relative to the container.
    QRect geometry() const { return geometry_; }
    void setGeometry(const QRect& twips);

    /// The caption of a frame, label, check box, button or menu item, or the content of a text
    /// box, the current drive of a drive list and the path of a folder tree or file list.
    const QString& text() const { return text_; }
    void setText(const QString& text);

    const QString& tooltip() const { return tooltip_; }
    void setTooltip(const QString& tooltip);

    bool enabled() const { return enabled_; }
    void setEnabled(bool enabled);

    bool visible() const { return visible_; }
    void setVisible(bool visible);

    bool checked() const { return checked_; }
    void setChecked(bool checked);

    /// The lines of a combo box, drive list or file list.
    const QStringList& items() const { return items_; }
    void setItems(const QStringList& items);

    /// The current line or tab, −1 for none.
    int listIndex() const { return listIndex_; }
    void setListIndex(int index);

    /// A click on a button or menu item.
    void click() { Q_EMIT clicked(); }

Q_SIGNALS:
    void changed();
    void clicked();
    void textChanged();

private:
    QString name_;
    ControlKind kind_;
    QString container_;
    QRect geometry_;
    QString text_;
    QString tooltip_;
    bool enabled_ = true;
    bool visible_ = true;
    bool checked_ = false;
    QStringList items_;
    int listIndex_ = -1;
};

/// One line of a window's layout table: a control's name, kind, container (empty for the
/// window's client area), place in twips relative to the container, caption and tooltip. Every
/// window's table lives with its logic, and the Qt windows are made from it alike.
struct ControlPlace {
    const char* name;
    ControlKind kind;
    const char* container;
    int left, top, width, height;
    const char* text;
    const char* tooltip;
};

/// The controls of `layout`, in its order (a later one lies above an earlier one).
std::vector<std::unique_ptr<Control>> createControls(std::span<const ControlPlace> layout);

/// The control called `name` among `controls`, or nullptr.
Control* findControl(const std::vector<std::unique_ptr<Control>>& controls, QStringView name);

}  // namespace tidewick
