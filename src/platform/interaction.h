#pragma once

#include <QString>

// Everything the user is asked or told goes through UserInteraction, so the logic runs the same
// behind the Qt window, behind the command line and behind a scripted stand-in in tests.
namespace tidewick {

enum class MessageIcon { None, Information, Exclamation, Question, Critical };
enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel, AbortRetryIgnore };
enum class MessageAnswer { Ok, Cancel, Yes, No, Abort, Retry, Ignore };

/// One message box: its text (CR LF between lines), title, icon, buttons and default button.
struct MessageBoxRequest {
    QString text;
    QString title;
    MessageIcon icon = MessageIcon::Information;
    MessageButtons buttons = MessageButtons::Ok;
    MessageAnswer defaultButton = MessageAnswer::Ok;

    bool operator==(const MessageBoxRequest&) const = default;
};

/// The user as the logic sees them.
class UserInteraction {
public:
    virtual ~UserInteraction() = default;

    /// Shows a modal message box and returns the button the user chose.
    virtual MessageAnswer showMessage(const MessageBoxRequest& request) = 0;

    /// Shows the busy (hourglass) pointer, or the default pointer again.
    virtual void setBusyPointer(bool busy) = 0;

    /// Opens the file `path` in the desktop's program for it; false when that cannot be done.
    /// Without a desktop nothing opens.
    virtual bool openFile(const QString& path) {
        Q_UNUSED(path);
        return false;
    }

    /// Lets pending window events run, at the points where a long operation allows it.
    virtual void processEvents() {}

    /// Lets the user pick a folder: shows `prompt`, opens on `startFolder` (or the picker's own
    /// default place when that folder does not exist) and returns the chosen folder's full path,
    /// or the empty text when the user cancels. Without a picker every answer is a cancel.
    virtual QString browseForFolder(const QString& prompt, const QString& startFolder) {
        Q_UNUSED(prompt);
        Q_UNUSED(startFolder);
        return {};
    }
};

/// Shorthand for the common OK box.
MessageAnswer showOk(UserInteraction& ui, const QString& text, const QString& title,
                     MessageIcon icon);

}  // namespace tidewick
