#include "suite/db/db_session.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFileInfo>
#include <QSqlError>

namespace {
QString uniqueConnectionName() {
    static QAtomicInteger<quint64> counter;
    return QStringLiteral("scan_db_%1").arg(counter.fetchAndAddRelaxed(1));
}

// Long enough for a busy studio; a writer waits this long for the lock.
constexpr int kBusyTimeoutMs = 30000;
}  // namespace

DbSession::DbSession(const DbConnectionSettings &settings) : settings_(settings), name_(uniqueConnectionName()) {}

DbSession::~DbSession() {
    close();
    QSqlDatabase::removeDatabase(name_);
}

bool DbSession::open() {
    close();
    QSqlDatabase db;
    if (isPostgres()) {
        db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name_);
        db.setHostName(settings_.host);
        db.setPort(settings_.port);
        db.setUserName(settings_.user);
        db.setPassword(settings_.password);
        db.setDatabaseName(settings_.database);
        db.setConnectOptions(QStringLiteral("connect_timeout=5"));
    } else {
        const QFileInfo file(settings_.sqlitePath);
        if (!QDir().mkpath(file.absolutePath())) {
            error_ = QStringLiteral("cannot make the folder %1").arg(file.absolutePath());
            return false;
        }
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
        db.setDatabaseName(settings_.sqlitePath);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyTimeoutMs));
    }
    if (!db.isValid()) {
        error_ = QStringLiteral("the Qt SQL driver for %1 is missing").arg(isPostgres() ? "PostgreSQL" : "SQLite");
        return false;
    }
    if (!db.open()) {
        error_ = QStringLiteral("cannot open %1: %2").arg(settings_.describe(), db.lastError().text());
        return false;
    }
    if (isPostgres()) {
        // "relation exists, skipping" and the like are no news to anyone.
        if (!run(QStringLiteral("SET client_min_messages TO WARNING"))) {
            close();
            return false;
        }
    } else {
        // WAL lets readers go on while one process writes; FULL keeps each
        // commit on disk before it returns.
        if (!run(QStringLiteral("PRAGMA journal_mode=WAL")) || !run(QStringLiteral("PRAGMA synchronous=FULL")) ||
            !run(QStringLiteral("PRAGMA foreign_keys=ON")) ||
            !run(QStringLiteral("PRAGMA busy_timeout=%1").arg(kBusyTimeoutMs))) {
            close();
            return false;
        }
    }
    return true;
}

void DbSession::close() {
    inTransaction_ = false;
    if (!QSqlDatabase::contains(name_)) return;
    QSqlDatabase db = QSqlDatabase::database(name_, false);
    if (db.isOpen()) db.close();
}

bool DbSession::isOpen() const {
    return QSqlDatabase::contains(name_) && QSqlDatabase::database(name_, false).isOpen();
}

QSqlQuery DbSession::query() const { return QSqlQuery(QSqlDatabase::database(name_, false)); }

bool DbSession::exec(QSqlQuery &query, const QString &sql, const QVariantList &values) {
    // PostgreSQL prepares no DDL: statements without values run directly.
    if (values.isEmpty()) {
        if (query.exec(sql)) return true;
        error_ = query.lastError().text();
        return false;
    }
    if (!query.prepare(sql)) {
        error_ = query.lastError().text();
        return false;
    }
    for (const QVariant &value : values) query.addBindValue(value);
    if (!query.exec()) {
        error_ = query.lastError().text();
        return false;
    }
    return true;
}

bool DbSession::run(const QString &statement) {
    QSqlQuery q = query();
    if (!q.exec(statement)) {
        error_ = QStringLiteral("%1: %2").arg(statement, q.lastError().text());
        return false;
    }
    return true;
}

bool DbSession::ping() { return isOpen() && run(QStringLiteral("SELECT 1")); }

bool DbSession::begin(bool write) {
    if (inTransaction_) {
        error_ = QStringLiteral("a transaction is already running on this connection");
        return false;
    }
    QString statement = QStringLiteral("BEGIN");
    if (!isPostgres() && write) statement = QStringLiteral("BEGIN IMMEDIATE");
    if (isPostgres() && !write) statement = QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ");
    if (!run(statement)) return false;
    inTransaction_ = true;
    return true;
}

bool DbSession::commit() {
    if (!inTransaction_) return false;
    if (!run(QStringLiteral("COMMIT"))) {
        rollback();
        return false;
    }
    inTransaction_ = false;
    return true;
}

void DbSession::rollback() {
    if (!inTransaction_) return;
    const QString keep = error_;
    run(QStringLiteral("ROLLBACK"));
    error_ = keep;
    inTransaction_ = false;
}

DbTransaction::DbTransaction(DbSession &session, bool write) : session_(session), ok_(session.begin(write)) {}

DbTransaction::~DbTransaction() {
    if (ok_ && !done_) session_.rollback();
}

bool DbTransaction::commit() {
    if (!ok_ || done_) return false;
    done_ = true;
    return session_.commit();
}
