#pragma once

#include <QPointer>
#include <QProgressDialog>
#include <QWidget>

#include "forms/interaction.h"

// The user behind the Qt window: message boxes, the busy pointer, the event pump, the folder
// picker, the overwrite question, the file manager and the clipboard.
namespace tidewick {

class QtInteraction : public UserInteraction {
public:
    /// `owner` becomes the parent of the message boxes and the picker; it may be set later.
    explicit QtInteraction(QWidget* owner = nullptr) : owner_(owner) {}
    ~QtInteraction() override;

    void setOwner(QWidget* owner) { owner_ = owner; }
    /// In a run that nobody watches (a screenshot, a timing) a message goes to the error stream
    /// and takes its default answer, so that no box waits for a click that never comes.
    void setUnattended(bool unattended) { unattended_ = unattended; }

    MessageAnswer showMessage(const MessageBoxRequest& request) override;
    void setBusyPointer(bool busy) override;
    void processEvents() override;
    bool openFile(const QString& path) override;
    QString browseForFolder(const QString& prompt, const QString& startFolder) override;
    std::optional<OverwriteAnswer> askOverwrite(const QString& message,
                                                OverwriteAnswer focus) override;
    void showProgress(const QString& title, const QString& item, qint64 done,
                      qint64 total) override;
    void endProgress() override;
    bool openFolder(const QString& folder) override;
    bool setClipboardText(const QString& text) override;

private:
    QPointer<QWidget> owner_;
    QPointer<QProgressDialog> progress_;
    bool busy_ = false;
    bool unattended_ = false;
};

}  // namespace tidewick
