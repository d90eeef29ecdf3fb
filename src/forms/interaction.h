#pragma once

#include <QString>
#include <optional>

#include "fileops/overwrite_answer.h"

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

    /// Asks whether a file already in the target may be overwritten: `message` names it, and the
    /// button `focus` has the keyboard focus ("&Yes", "Yes to &All", "&No", "&Cancel", in the
    /// order of the answers). Nothing when the question was closed without an
    /// answer (by the window frame); without a window there is no answer.
    virtual std::optional<OverwriteAnswer> askOverwrite(const QString& message,
                                                        OverwriteAnswer focus) {
        Q_UNUSED(message);
        Q_UNUSED(focus);
        return std::nullopt;
    }

    /// Shows how far a long piece of work has come: `title`, the item in hand, and `done` of
    /// `total` bytes, in a window that appears once the work lasts longer than a moment. It lets
    /// pending window events run.
    virtual void showProgress(const QString& title, const QString& item, qint64 done,
                              qint64 total) {
        Q_UNUSED(title);
        Q_UNUSED(item);
        Q_UNUSED(done);
        Q_UNUSED(total);
    }

    /// The work is over: its progress window goes.
    virtual void endProgress() {}

    /// Opens `folder` in the desktop's file manager; false when that cannot be done.
    virtual bool openFolder(const QString& folder) {
        Q_UNUSED(folder);
        return false;
    }

    /// Puts `text` on the clipboard; false when the clipboard refuses it.
    virtual bool setClipboardText(const QString& text) {
        Q_UNUSED(text);
        return false;
    }
};

/// The name the program shows in its caption, its messages and its settings.
inline QString programName() {
    return QStringLiteral("Tidewick");
}

/// The command that opens a folder in the desktop's file manager, as messages name it.
QString fileManagerCommand();

/// Shorthand for the common OK box.
MessageAnswer showOk(UserInteraction& ui, const QString& text, const QString& title,
                     MessageIcon icon);

}  // namespace tidewick
