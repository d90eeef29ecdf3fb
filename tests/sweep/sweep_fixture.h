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

/// A main window over a temporary session folder, with the used-media list filled by hand, so
/// that the other-files list and the counters can be tested apart from the session readers.
class SweepFixture : public ::testing::Test {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        ASSERT_TRUE(dir.isValid());
        form.Form_Load();
    }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    /// The folder with the host's separator at its end.
    QString folder() const {
        QString path = dir.path();
        return AddBackslash(path);
    }

    /// A file `relative` to the session folder (sub-folders made as needed) of `size` bytes.
    QString touch(const QString& relative, qint64 size = 0) const {
        return touchIn(dir.path(), relative, size);
    }
    static QString touchIn(const QString& base, const QString& relative, qint64 size = 0) {
        const QString path = QDir(base).filePath(relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        EXPECT_TRUE(file.resize(size));  // sparse where the file system allows it
        return path;
    }

    /// Shows the session folder on the tab of `kind`, as the tab switch leaves it.
    void open(SessionKindId id) {
        const SessionKind& kind = sessionKind(id);
        form.selectTabByKey(kind.tabKey);
        form.setSessionFilePattern(kind.sessionPattern);
        form.state.RecordFolder = id == SessionKindId::Rpp || id == SessionKindId::Veg
                                      ? dir.path()
                                      : QStringLiteral("_Recorded");
        form.pointBrowserAt(dir.path());
        form.UsedFiles.clear();
        form.UnusedFiles.clear();
    }

    /// Selects `session` without loading it, with the scan range a load would set.
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

    /// Sets a check box without running its click handler.
    static void setQuietly(Control& control, bool checked) {
        const QSignalBlocker blocker(control);
        control.setChecked(checked);
    }

    /// The lines of the other-files list, in list order.
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

/// `relative` with the host's separators, as the lists show it.
inline QString hostPath(const char* relative) {
    QString path = QString::fromUtf8(relative);
    path.replace(u'\\', hostSeparator());
    return path;
}

}  // namespace tidewick::test
