#pragma once
// One QtSql connection with its own unique name, and the little the library
// needs on top: statements with values bound in order, write and read
// transactions that behave alike on SQLite and PostgreSQL, a bounded wait for
// the locks of other connections, and failures told apart (a lock that was
// not had in time, a connection that is gone, anything else).
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

    // SQLite: makes the file's folder, WAL mode, the lock wait, foreign keys.
    bool open();
    void close();
    bool isOpen() const;
    bool isPostgres() const { return settings_.kind == DbConnectionSettings::Kind::PostgreSQL; }
    const DbConnectionSettings &settings() const { return settings_; }

    // The longest a statement waits for a lock another connection holds
    // (SQLite's write lock, a PostgreSQL row lock) before it fails as busy.
    void setLockWait(int ms);
    int lockWait() const { return lockWaitMs_; }

    // Prepares `sql` on `query`, binds `values` in order and runs it.
    bool exec(QSqlQuery &query, const QString &sql, const QVariantList &values = {});
    // After query.next() answered no: true at the end of the rows, false when
    // reading failed (SQLite reads row by row, so a damaged page shows here).
    bool rowsEnded(const QSqlQuery &query);
    // A fresh query on this connection.
    QSqlQuery query() const;
    // A cheap statement that fails when the connection is gone.
    bool ping();

    // BEGIN for writing takes the write lock at once on SQLite (so two
    // writers queue on the lock wait instead of failing at the commit).
    bool begin(bool write);
    bool commit();
    void rollback();
    bool inTransaction() const { return inTransaction_; }

    QString lastError() const { return error_; }
    // Whether the last failure was a lock not had within the lock wait.
    bool lastFailureBusy() const { return busy_; }

private:
    bool run(const QString &statement);
    bool failed(const QSqlError &error, const QString &context = QString());
    bool applyLockWait();
    static int sqliteBusy(void *session, int count);

    DbConnectionSettings settings_;
    QString name_;
    QString error_;
    bool busy_ = false;
    bool inTransaction_ = false;
    int lockWaitMs_;
    qint64 busySince_ = 0;  // monotonic ms: when the current wait for a lock began
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
