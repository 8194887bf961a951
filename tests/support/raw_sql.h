#pragma once
// Runs one statement on a production database over a connection of its own,
// behind the back of the sessions under test: to damage or hide what they read.
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <gtest/gtest.h>

#include "suite/db/db_connection.h"

// `connection` as scanctl takes it: a SQLite file or a postgresql:// address.
inline bool raw_sql(const QString &connection, const QString &statement) {
    DbConnectionSettings settings;
    if (!DbConnectionSettings::parse(connection, settings)) return false;
    const QString name = QStringLiteral("test_raw_sql");
    bool ok = false;
    {
        const bool sqlite = settings.kind == DbConnectionSettings::Kind::SQLite;
        QSqlDatabase db = QSqlDatabase::addDatabase(sqlite ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL"), name);
        db.setDatabaseName(sqlite ? settings.sqlitePath : settings.database);
        db.setHostName(settings.host);
        db.setUserName(settings.user);
        if (db.open()) {
            QSqlQuery q(db);
            ok = q.exec(statement);
            EXPECT_TRUE(ok) << statement.toStdString() << ": " << q.lastError().text().toStdString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return ok;
}
