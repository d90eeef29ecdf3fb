#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <functional>
#include <utility>

#include "platform/path_text.h"
#include "readers/session_kinds.h"
#include "support/recording_interaction.h"
#include "support/session_files.h"
#include "sweep/main_form.h"

namespace tidewick::test {

/// A user who does one more thing, `whileBusy`, the next time the busy pointer is shown.
class BusyUser : public RecordingInteraction {
public:
    void setBusyPointer(bool busy) override {
        RecordingInteraction::setBusyPointer(busy);
        if (busy && whileBusy) {
            std::exchange(whileBusy, nullptr)();
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

    static QString ext(SessionKindId id) { return sessionKind(id).sessionPattern.mid(1); }

    void useKind(SessionKindId id) {
        form.selectTabByKey(sessionKind(id).tabKey);
        form.FileTypeTab_Click();  // also when the tab was already chosen
    }

    void writeSession(const QString& name, SessionKindId kind, const QStringList& paths) {
        ASSERT_TRUE(writeFile(dir.filePath(name), sessionBytes(kind, paths)));
    }

    /// Lists the folder again and selects `name`, which loads it.
    void select(const QString& name) {
        form.refreshSessionFiles();
        const auto index = form.SESFile.items().indexOf(name);
        ASSERT_GE(index, 0) << name.toStdString();
        form.SESFile.setListIndex(static_cast<int>(index));
    }

    /// The used list's lines, "[x] " before a checked one and "[ ] " before the others.
    QStringList usedLines() const {
        QStringList lines;
        for (int row = 0; row < form.UsedFiles.count(); ++row) {
            lines.append((form.UsedFiles.isChecked(row) ? "[x] " : "[ ] ") +
                         form.UsedFiles.text(row));
        }
        return lines;
    }

    QTemporaryDir dir;
    BusyUser ui;
    MainForm form{ui};
};

}  // namespace tidewick::test

namespace tidewick {
inline void PrintTo(const MessageBoxRequest& box, std::ostream* out) {
    *out << "{" << box.title.toStdString() << ": " << box.text.toStdString() << "}";
}
}  // namespace tidewick
