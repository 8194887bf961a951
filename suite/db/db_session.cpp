#include "suite/db/db_session.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlDriver>
#include <QSqlError>

#include <chrono>
#include <thread>

#include <sqlite3.h>

namespace {
QString uniqueConnectionName() {
    static QAtomicInteger<quint64> counter;
    return QStringLiteral("scan_db_%1").arg(counter.fetchAndAddRelaxed(1));
}

// Long enough for a busy studio; a writer waits this long for the lock
// unless its owner asks for less.
constexpr int kDefaultLockWaitMs = 30000;

qint64 monotonicMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

bool isBusyCode(const QString &code, bool postgres) {
    // SQLite: SQLITE_BUSY, SQLITE_LOCKED. PostgreSQL: lock_not_available
    // (lock_timeout), query_canceled (statement_timeout).
    return postgres ? code == QLatin1String("55P03") || code == QLatin1String("57014")
                    : code == QLatin1String("5") || code == QLatin1String("6");
}
}  // namespace

DbSession::DbSession(const DbConnectionSettings &settings)
    : settings_(settings), name_(uniqueConnectionName()), lockWaitMs_(kDefaultLockWaitMs) {}

DbSession::~DbSession() {
    close();
    QSqlDatabase::removeDatabase(name_);
}

// SQLite's own busy handler naps longer and longer, up to 100 ms, so a waiter
// rarely finds the lock free between the transactions of busy writers and
// can wait far beyond its turn. Short, uneven naps give each its chance.
int DbSession::sqliteBusy(void *session, int count) {
    auto *self = static_cast<DbSession *>(session);
    const qint64 now = monotonicMs();
    if (count == 0) self->busySince_ = now;
    if (now - self->busySince_ >= self->lockWaitMs_) return 0;
    std::this_thread::sleep_for(std::chrono::microseconds(100 + QRandomGenerator::global()->bounded(900)));
    return 1;
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
    }
    if (!db.isValid()) {
        error_ = QStringLiteral("the Qt SQL driver for %1 is missing").arg(isPostgres() ? "PostgreSQL" : "SQLite");
        return false;
    }
    if (!db.open()) {
        error_ = QStringLiteral("cannot open %1: %2").arg(settings_.describe(), db.lastError().text());
        return false;
    }
    bool ok;
    if (isPostgres()) {
        // "relation exists, skipping" and the like are no news to anyone.
        ok = run(QStringLiteral("SET client_min_messages TO WARNING")) && applyLockWait();
    } else {
        const QVariant handle = db.driver()->handle();
        if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
            sqlite3_busy_handler(*static_cast<sqlite3 *const *>(handle.constData()), &DbSession::sqliteBusy, this);
        // WAL lets readers go on while one process writes; FULL keeps each
        // commit on disk before it returns.
        ok = run(QStringLiteral("PRAGMA journal_mode=WAL")) && run(QStringLiteral("PRAGMA synchronous=FULL")) &&
             run(QStringLiteral("PRAGMA foreign_keys=ON"));
    }
    if (!ok) close();
    return ok;
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

void DbSession::setLockWait(int ms) {
    lockWaitMs_ = ms;
    if (isOpen()) applyLockWait();
}

bool DbSession::applyLockWait() {
    // SQLite's busy handler reads the wait at each lock; PostgreSQL needs telling.
    return !isPostgres() || run(QStringLiteral("SET lock_timeout = %1").arg(lockWaitMs_));
}

QSqlQuery DbSession::query() const { return QSqlQuery(QSqlDatabase::database(name_, false)); }

bool DbSession::failed(const QSqlError &error, const QString &context) {
    busy_ = isBusyCode(error.nativeErrorCode(), isPostgres());
    error_ = context.isEmpty() ? error.text() : QStringLiteral("%1: %2").arg(context, error.text());
    return false;
}

bool DbSession::exec(QSqlQuery &query, const QString &sql, const QVariantList &values) {
    // PostgreSQL prepares no DDL: statements without values run directly.
    if (values.isEmpty()) return query.exec(sql) || failed(query.lastError());
    if (!query.prepare(sql)) return failed(query.lastError());
    for (const QVariant &value : values) query.addBindValue(value);
    return query.exec() || failed(query.lastError());
}

bool DbSession::rowsEnded(const QSqlQuery &query) {
    return query.lastError().type() == QSqlError::NoError || failed(query.lastError());
}

bool DbSession::run(const QString &statement) {
    QSqlQuery q = query();
    return q.exec(statement) || failed(q.lastError(), statement);
}

bool DbSession::ping() { return isOpen() && run(QStringLiteral("SELECT 1")); }

bool DbSession::begin(bool write) {
    if (inTransaction_) {
        error_ = QStringLiteral("a transaction is already running on this connection");
        busy_ = false;
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
    const bool keepBusy = busy_;
    run(QStringLiteral("ROLLBACK"));
    error_ = keep;
    busy_ = keepBusy;
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
