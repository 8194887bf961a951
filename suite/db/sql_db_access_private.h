#pragma once
// The state behind SqlDbAccess, shared by its session, production and queue
// units.
#include <QSqlQuery>
#include <QTimer>
#include <QVariantList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "suite/db/db_session.h"
#include "suite/db/sql_db_access.h"

struct SqlDbAccess::Private {
    QString connection;
    std::unique_ptr<DbSession> session;
    QString programName;
    QString error;
    int lockWaitMs = 0;  // 0: the session's default
    std::function<qint64()> clock;
    std::unique_ptr<QTimer> keepAlive;
    bool celsLocked = false;

    // The selection.
    QString user;
    QString env;
    qint64 envId = 0;
    std::optional<dba_job_struct> job;
    std::optional<dba_scene_struct> scene;
    qint64 elementId = 0;

    // What kind the failure in `error` is, as far as known when it happened;
    // a lost connection is told only afterwards (see lastFailure).
    bool fromSession = false;
    bool busy = false;
    bool notHeld = false;

    bool fail(const QString &text) {
        error = text;
        fromSession = busy = notHeld = false;
        return false;
    }
    bool failSession() {
        fail(session->lastError());
        fromSession = true;
        busy = session->lastFailureBusy();
        return false;
    }
    // Every call starts here: it forgets the failure of the call before, so
    // that an empty answer with no error is a true answer.
    bool ready() {
        fail(QString());
        if (session && session->isOpen()) return true;
        fail(QStringLiteral("no open database session"));
        fromSession = true;
        return false;
    }
    QSqlQuery query() const { return session->query(); }
    bool exec(QSqlQuery &q, const QString &sql, const QVariantList &values = {}) {
        return session->exec(q, sql, values) || failSession();
    }
    // After q.next() answered no: the end of the rows, or (false) a failure.
    bool rowsEnded(const QSqlQuery &q) { return session->rowsEnded(q) || failSession(); }
    // The first row of a query that was run: true with a row, false without;
    // nothing on a failure.
    std::optional<bool> firstRow(QSqlQuery &q) {
        if (q.next()) return true;
        if (!rowsEnded(q)) return std::nullopt;
        return false;
    }
    // Runs an INSERT ... RETURNING id.
    std::optional<qint64> insert(const QString &sql, const QVariantList &values) {
        QSqlQuery q = query();
        if (!exec(q, sql, values)) return std::nullopt;
        const std::optional<bool> row = firstRow(q);
        if (!row) return std::nullopt;
        if (!*row) return fail(QStringLiteral("the database returned no id")), std::nullopt;
        return q.value(0).toLongLong();
    }
    // Every row, or nothing on a failure.
    template <class T>
    std::optional<std::vector<T>> selectAll(const QString &sql, const QVariantList &values,
                                            T (*read)(const QSqlQuery &)) {
        if (!ready()) return std::nullopt;
        std::vector<T> rows;
        QSqlQuery q = query();
        if (!exec(q, sql, values)) return std::nullopt;
        while (q.next()) rows.push_back(read(q));
        if (!rowsEnded(q)) return std::nullopt;
        return rows;
    }
    // The first row into `row` (left empty when there is none); false on a failure.
    template <class T>
    bool selectOne(const QString &sql, const QVariantList &values, T (*read)(const QSqlQuery &), std::optional<T> &row) {
        std::optional<std::vector<T>> rows = selectAll(sql, values, read);
        row.reset();
        if (!rows) return false;
        if (!rows->empty()) row = rows->front();
        return true;
    }
    // The answer of a listing: the rows, or none with the error kept.
    template <class T>
    std::vector<T> listing(const QString &sql, const QVariantList &values, T (*read)(const QSqlQuery &)) {
        return selectAll(sql, values, read).value_or(std::vector<T>());
    }
    // The answer of a lookup: the row, or none (with the error kept on a failure).
    template <class T>
    std::optional<T> lookup(const QString &sql, const QVariantList &values, T (*read)(const QSqlQuery &)) {
        std::optional<T> row;
        selectOne(sql, values, read, row);
        return row;
    }

    // Milliseconds since the epoch: the test clock, else the server's clock
    // for PostgreSQL (one clock for every station of a studio), else this
    // machine's, which every process that shares a SQLite file shares too.
    // Nothing when the server can't be asked.
    std::optional<qint64> now();
    // The id of the environment, made when `create` and missing; 0 on failure.
    qint64 environmentId(const QString &name, bool create);
    // The record of the selected scene again, after its version changed.
    void refreshScene();
};

// The text of a statement that names its columns in a constant.
inline QString sql(const char *select, const char *rest = "") {
    return QString::fromLatin1(select) + QLatin1Char(' ') + QString::fromLatin1(rest);
}
