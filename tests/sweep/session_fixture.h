#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/path_text.h"
#include "readers/session_kinds.h"
#include "support/reader_fixture.h"  // prints texts in failures
#include "support/recording_interaction.h"
#include "support/session_files.h"
#include "sweep/main_form.h"

namespace tidewick::test {

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

    /// Writes a session of `kind` naming `paths`, and switches to that kind's tab (also when it
    /// is the chosen one already).
    void writeSession(const QString& name, SessionKindId kind, const QStringList& paths) {
        ASSERT_TRUE(writeFile(dir.filePath(name), sessionBytes(kind, paths)));
        form.selectTabByKey(sessionKind(kind).tabKey);
        form.FileTypeTab_Click();
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
            lines << (form.UsedFiles.isChecked(row) ? "[x] " : "[ ] ") + form.UsedFiles.text(row);
        }
        return lines;
    }

    QTemporaryDir dir;
    RecordingInteraction ui;
    MainForm form{ui};
};

}  // namespace tidewick::test
