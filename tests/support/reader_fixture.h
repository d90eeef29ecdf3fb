#pragma once

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <ostream>

#include "platform/file_system.h"
#include "support/session_files.h"

// Failures show texts as text rather than as code units.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << '[' << texts.join(QStringLiteral("|")).toStdString() << ']';
}

namespace tidewick::test {

/// A temporary folder for session files written by a test, on the real disk.
struct ReaderFixture {
    FileSystem fs;
    QTemporaryDir dir;

    /// The temporary folder as the place of a session that lives in it.
    SessionPlace place() const { return {dir.path(), &fs}; }

    /// Writes `bytes` to `name` inside the temporary folder and returns the full path.
    QString write(const QString& name, const QByteArray& bytes) const {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(writeFile(path, bytes)) << path.toStdString();
        return path;
    }
};

/// Texts written as one, split at "|" ("a|b" for {"a", "b"}, "" for none).
inline QStringList texts(const char* list) {
    return QString::fromUtf8(list).split(u'|', Qt::SkipEmptyParts);
}

/// The paths the reader of `kind` finds in `bytes`, joined with "|".
inline QString pathsRead(SessionKindId kind, QByteArrayView bytes) {
    return sessionKind(kind).reader(bytes, {}).paths.toList().join(u'|');
}

/// A file of the real session files kept beside the project (shared/corpus); a clone without
/// that folder skips the tests that read it.
inline QString corpusPath(const QString& relative) {
    return QStringLiteral(TIDEWICK_CORPUS "/") + relative;
}
inline bool haveCorpus() {
    return QFileInfo(QStringLiteral(TIDEWICK_CORPUS)).isDir();
}

}  // namespace tidewick::test
