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

    bool fail(const QString &text) {
        error = text;
        return false;
    }
    bool ready() { return session && session->isOpen() ? true : fail(QStringLiteral("no open database session")); }
    QSqlQuery query() const { return session->query(); }
    bool exec(QSqlQuery &q, const QString &sql, const QVariantList &values = {}) {
        return session->exec(q, sql, values) ? true : fail(session->lastError());
    }
    // Runs an INSERT ... RETURNING id.
    std::optional<qint64> insert(const QString &sql, const QVariantList &values) {
        QSqlQuery q = query();
        if (!exec(q, sql, values)) return std::nullopt;
        if (!q.next()) {
            fail(QStringLiteral("the database returned no id"));
            return std::nullopt;
        }
        return q.value(0).toLongLong();
    }
    template <class T>
    std::vector<T> selectAll(const QString &sql, const QVariantList &values, T (*read)(const QSqlQuery &)) {
        std::vector<T> rows;
        if (!ready()) return rows;
        QSqlQuery q = query();
        if (!exec(q, sql, values)) return rows;
        while (q.next()) rows.push_back(read(q));
        return rows;
    }
    template <class T>
    std::optional<T> selectOne(const QString &sql, const QVariantList &values, T (*read)(const QSqlQuery &)) {
        std::vector<T> rows = selectAll(sql, values, read);
        if (rows.empty()) return std::nullopt;
        return rows.front();
    }

    // Milliseconds since the epoch: the test clock, else the server's clock
    // for PostgreSQL (one clock for every station of a studio), else this machine's.
    qint64 now();
    // The id of the environment, made when `create` and missing; 0 on failure.
    qint64 environmentId(const QString &name, bool create);
    // The record of the selected scene again, after its version changed.
    void refreshScene();
};

// The text of a statement that names its columns in a constant.
inline QString sql(const char *select, const char *rest = "") {
    return QString::fromLatin1(select) + QLatin1Char(' ') + QString::fromLatin1(rest);
}
