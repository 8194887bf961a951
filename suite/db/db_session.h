#pragma once
// One QtSql connection with its own unique name, and the little the library
// needs on top: statements with values bound in order, write and read
// transactions that behave alike on SQLite and PostgreSQL.
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>

#include "suite/db/db_connection.h"

class DbSession {
public:
    explicit DbSession(const DbConnectionSettings &settings);
    ~DbSession();
    DbSession(const DbSession &) = delete;
    DbSession &operator=(const DbSession &) = delete;

    // SQLite: makes the file's folder, WAL mode, busy timeout, foreign keys.
    bool open();
    void close();
    bool isOpen() const;
    bool isPostgres() const { return settings_.kind == DbConnectionSettings::Kind::PostgreSQL; }

    // Prepares `sql` on `query`, binds `values` in order and runs it.
    bool exec(QSqlQuery &query, const QString &sql, const QVariantList &values = {});
    // A fresh query on this connection.
    QSqlQuery query() const;
    // A cheap statement that fails when the connection is gone.
    bool ping();

    // BEGIN for writing takes the write lock at once on SQLite (so two
    // writers queue on the busy timeout instead of failing at the commit).
    bool begin(bool write);
    bool commit();
    void rollback();
    bool inTransaction() const { return inTransaction_; }

    QString lastError() const { return error_; }

private:
    bool run(const QString &statement);

    DbConnectionSettings settings_;
    QString name_;
    QString error_;
    bool inTransaction_ = false;
};

// A write (or read) transaction that rolls back unless committed.
class DbTransaction {
public:
    explicit DbTransaction(DbSession &session, bool write = true);
    ~DbTransaction();
    DbTransaction(const DbTransaction &) = delete;
    DbTransaction &operator=(const DbTransaction &) = delete;

    bool ok() const { return ok_; }
    bool commit();

private:
    DbSession &session_;
    bool ok_ = false;
    bool done_ = false;
};
