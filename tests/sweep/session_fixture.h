#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <functional>
#include <utility>

#include "platform/path_text.h"
#include "platform/recording_interaction.h"
#include "readers/session_kinds.h"
#include "support/session_files.h"
#include "sweep/main_form.h"

namespace tidewick::test {

/// A user who may do one more thing while Tidewick is busy: `whileBusy` runs once, the next time
/// the busy pointer is shown (a load shows it while it reads).
class BusyUser : public RecordingInteraction {
public:
    void setBusyPointer(bool busy) override {
        RecordingInteraction::setBusyPointer(busy);
        if (busy && whileBusy) {
            const auto action = std::exchange(whileBusy, nullptr);
            action();
        }
    }
    std::function<void()> whileBusy;
};

/// The main window's logic pointed at a fresh session folder, with a scripted user.
class SessionFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        form.Form_Load();
        form.pointBrowserAt(dir.path());
    }

    /// The session folder with a trailing separator.
    QString folder() const { return dir.path() + hostSeparator(); }

    void useKind(SessionKindId id) {
        ASSERT_TRUE(form.selectTabByKey(sessionKind(id).tabKey) || id == SessionKindId::Ses);
        if (id == SessionKindId::Ses) {
            form.FileTypeTab_Click();  // the first tab is chosen from the start
        }
    }

    /// Writes a session of `kind` naming `paths` into the session folder.
    void writeSession(const QString& name, SessionKindId kind, const QStringList& paths) {
        ASSERT_TRUE(writeFile(dir.filePath(name), sessionBytes(kind, paths)));
    }

    /// Creates media files, given relative to the session folder.
    void touch(const QStringList& files) {
        for (const QString& file : files) {
            ASSERT_TRUE(writeFile(dir.filePath(file), "RIFF"));
        }
    }

    /// Lists the folder again and selects `name`, which loads it.
    void select(const QString& name) {
        form.refreshSessionFiles();
        const int index = static_cast<int>(form.SESFile.items().indexOf(name));
        ASSERT_GE(index, 0) << name.toStdString();
        form.SESFile.setListIndex(index);
    }

    QList<CheckItem> usedLines() const {
        QList<CheckItem> lines;
        for (int row = 0; row < form.UsedFiles.count(); ++row) {
            lines.append(form.UsedFiles.item(row));
        }
        return lines;
    }

    QTemporaryDir dir;
    BusyUser ui;
    MainForm form{ui};
};

}  // namespace tidewick::test

namespace tidewick {
inline void PrintTo(const CheckItem& item, std::ostream* out) {
    *out << (item.checked ? "[x] " : "[ ] ") << item.text.toStdString();
}
inline void PrintTo(const MessageBoxRequest& box, std::ostream* out) {
    *out << "{" << box.title.toStdString() << ": " << box.text.toStdString() << "}";
}
}  // namespace tidewick

// Failures show texts as text rather than as code units.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
