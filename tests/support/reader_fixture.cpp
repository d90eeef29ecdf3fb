#include "support/reader_fixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace tidewick::test {

QString ReaderFixture::write(const QString& name, const QByteArray& bytes) const {
    const QString path = dir.filePath(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
    return path;
}

QString corpusPath(const QString& relative) {
    return QStringLiteral(TIDEWICK_CORPUS "/") + relative;
}

bool haveCorpus() {
    return QFileInfo(QStringLiteral(TIDEWICK_CORPUS)).isDir();
}

}  // namespace tidewick::test
