#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSignalBlocker>
#include <QTemporaryDir>

#include "platform/path_text.h"
#include "platform/recording_interaction.h"
#include "readers/session_kinds.h"
#include "sweep/main_form.h"

namespace tidewick::test {

// A main window over a temporary session folder; tests fill the used-media list by hand.
class SweepFixture : public ::testing::Test {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_TRUE(dir.isValid());
        form.Form_Load();
    }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    QString folder() const {
        QString path = dir.path();
        return AddBackslash(path);
    }

    // A (sparse) file of `size` bytes at `path`, relative to the session folder or absolute.
    QString touch(const QString& path, qint64 size = 0) const {
        QFile file(QDir(dir.path()).filePath(path));
        QDir().mkpath(QFileInfo(file).absolutePath());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(size)) << path.toStdString();
        return file.fileName();
    }

    // The session folder on the tab of `id`, as the tab switch leaves it.
    void open(SessionKindId id) {
        const SessionKind& kind = sessionKind(id);
        form.selectTabByKey(kind.tabKey);
        form.setSessionFilePattern(kind.sessionPattern);
        form.state.RecordFolder =
            id == SessionKindId::Rpp || id == SessionKindId::Veg ? dir.path() : "_Recorded";
        form.pointBrowserAt(dir.path());
        form.UsedFiles.clear();
        form.UnusedFiles.clear();
    }

    // Selects `session` without loading it, with the scan range a load would set.
    void select(const QString& session, bool allFiles = false) {
        const int index = static_cast<int>(form.SESFile.items().indexOf(session));
        ASSERT_GE(index, 0) << session.toStdString();
        const QSignalBlocker blocker(form.SESFile);
        form.SESFile.setListIndex(index);
        form.state.CheckAllFiles = allFiles;
        form.state.ScanFirst = static_cast<qint16>(allFiles ? 0 : index);
        form.state.ScanLast =
            static_cast<qint16>(allFiles ? form.SESFile.items().size() - 1 : index);
    }

    static void setQuietly(Control& control, bool checked) {
        const QSignalBlocker blocker(control);
        control.setChecked(checked);
    }

    QStringList unusedLines() const {
        QStringList lines;
        for (int row = 0; row < form.UnusedFiles.count(); ++row) {
            lines.append(form.UnusedFiles.text(row));
        }
        return lines;
    }

    QTemporaryDir dir;
    RecordingInteraction ui;
    MainForm form{ui};
};

}  // namespace tidewick::test
