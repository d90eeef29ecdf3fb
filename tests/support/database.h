#pragma once

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

namespace tidewick::test {

/// Writes an SQLite database with `statements` to `path` (an Audacity 3 project, or another
/// program's database).
inline void writeDatabase(const QString& path, const QStringList& statements) {
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "write");
        db.setDatabaseName(path);
        ASSERT_TRUE(db.open());
        for (const QString& statement : statements) {
            ASSERT_TRUE(QSqlQuery(db).exec(statement)) << statement.toStdString();
        }
    }
    QSqlDatabase::removeDatabase("write");
}

}  // namespace tidewick::test
