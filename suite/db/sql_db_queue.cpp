// The vectorize queue: adding entries for the station, taking them under a
// lease for the workers.
#include "suite/db/db_rows.h"
#include "suite/db/sql_db_access.h"
#include "suite/db/sql_db_access_private.h"

namespace {
const QString kWaiting = QStringLiteral("waiting");
const QString kTaken = QStringLiteral("taken");
}  // namespace

int SqlDbAccess::dba_OpenQueue(int flags, const QString &environment, std::unique_ptr<dba_queue_struct> *queue) {
    if (!queue) return d->fail(QStringLiteral("no queue handle")), -1;
    const qint64 id = d->environmentId(environment, true);
    if (id == 0) return -1;
    *queue = std::make_unique<dba_queue_struct>();
    (*queue)->environmentId = id;
    (*queue)->environment = environment;
    return 0;
}

void SqlDbAccess::dba_CloseQueue(std::unique_ptr<dba_queue_struct> *queue) {
    if (queue) queue->reset();
}

int SqlDbAccess::dba_AddQueueEntry(dba_queue_struct *queue, dba_queueEntry_struct *entry) {
    if (!d->ready()) return -1;
    if (!queue || !entry) return d->fail(QStringLiteral("no queue or no entry")), -1;
    DbTransaction tx(*d->session);
    if (!tx.ok()) return d->failSession(), -1;
    const std::optional<qint64> now = d->now();
    if (!now) return -1;
    const auto id = d->insert(
        QStringLiteral("INSERT INTO queue_entries (environment_id, active, job_name, scene_name, element_name, "
                       "element_id, drawing, options, scene_id, process, scene_version, state, created_at) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id"),
        {queue->environmentId, entry->active, sqlText(entry->jobName), sqlText(entry->sceneName),
         sqlText(entry->elementName), entry->elementId, sqlText(entry->drawing), sqlText(entry->options),
         entry->sceneId, entry->process, entry->sceneVersion, kWaiting, *now});
    if (!id) return -1;
    if (!tx.commit()) return d->failSession(), -1;
    entry->id = *id;
    entry->environment = queue->environment;
    entry->state = dba_queueState::Waiting;
    entry->createdAt = *now;
    return 0;
}

std::vector<dba_queueEntry_struct> SqlDbAccess::queueEntries(std::optional<dba_queueState> state) {
    if (state)
        return d->listing<dba_queueEntry_struct>(sql(kQueueSelect, "WHERE q.state = ? ORDER BY q.id"),
                                                 {dba_queueStateName(*state)}, readQueueEntry);
    return d->listing<dba_queueEntry_struct>(sql(kQueueSelect, "ORDER BY q.id"), {}, readQueueEntry);
}

std::optional<dba_queueEntry_struct> SqlDbAccess::queueEntry(qint64 id) {
    return d->lookup<dba_queueEntry_struct>(sql(kQueueSelect, "WHERE q.id = ?"), {id}, readQueueEntry);
}

std::optional<dba_queueEntry_struct> SqlDbAccess::takeQueueEntry(const QString &worker, int leaseSeconds) {
    if (!d->ready()) return std::nullopt;
    if (worker.isEmpty()) return d->fail(QStringLiteral("a worker needs a name")), std::nullopt;
    if (leaseSeconds <= 0) return d->fail(QStringLiteral("a lease must last at least a second")), std::nullopt;
    std::optional<qint64> id;
    {
        // On SQLite the write transaction holds the database's one write
        // lock; on PostgreSQL the row lock of the inner select does it, and
        // SKIP LOCKED lets concurrent workers pass over each other's rows.
        DbTransaction tx(*d->session);
        if (!tx.ok()) return d->failSession(), std::nullopt;
        // The time is read once the lock is held, so that a wait for the
        // lock does not eat into the new lease.
        const std::optional<qint64> now = d->now();
        if (!now) return std::nullopt;
        const QString pick = QStringLiteral(
            "SELECT id FROM queue_entries WHERE environment_id = ? "
            "AND (state = 'waiting' OR (state = 'taken' AND lease_expires <= ?)) ORDER BY id LIMIT 1");
        const QString take =
            QStringLiteral("UPDATE queue_entries SET state = 'taken', worker = ?, taken_at = ?, lease_expires = ? "
                           "WHERE id = (%1%2) RETURNING id")
                .arg(pick, d->session->isPostgres() ? QStringLiteral(" FOR UPDATE SKIP LOCKED") : QString());
        QSqlQuery q = d->query();
        if (!d->exec(q, take, {worker, *now, *now + qint64(leaseSeconds) * 1000, d->envId, *now}))
            return std::nullopt;
        const std::optional<bool> row = d->firstRow(q);
        if (!row) return std::nullopt;
        if (*row) id = q.value(0).toLongLong();
        q.finish();
        if (!tx.commit()) return d->failSession(), std::nullopt;
    }
    if (!id) return std::nullopt;  // an empty queue is not a failure
    std::optional<dba_queueEntry_struct> entry = queueEntry(*id);
    if (!entry && d->error.isEmpty()) d->fail(QStringLiteral("queue entry %1 vanished once taken").arg(*id));
    return entry;
}

int SqlDbAccess::renewQueueLease(qint64 id, const QString &worker, int leaseSeconds) {
    if (!d->ready()) return -1;
    DbTransaction tx(*d->session);
    if (!tx.ok()) return d->failSession(), -1;
    // As for a take: the new lease counts from when the lock is held.
    const std::optional<qint64> now = d->now();
    if (!now) return -1;
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("UPDATE queue_entries SET lease_expires = ? WHERE id = ? AND state = ? AND worker = ?"),
                 {*now + qint64(leaseSeconds) * 1000, id, kTaken, worker}))
        return -1;
    const bool held = q.numRowsAffected() == 1;
    q.finish();
    if (!tx.commit()) return d->failSession(), -1;
    if (held) return 0;
    d->fail(QStringLiteral("%1 does not hold queue entry %2").arg(worker, QString::number(id)));
    d->notHeld = true;
    return -1;
}

namespace {
// Moves a taken entry to its final state.
int finishEntry(SqlDbAccess::Private &d, qint64 id, const QString &state, const QString &message,
                const QString &worker) {
    if (!d.ready()) return -1;
    DbTransaction tx(*d.session);
    if (!tx.ok()) return d.failSession(), -1;
    const std::optional<qint64> now = d.now();
    if (!now) return -1;
    QString statement = QStringLiteral(
        "UPDATE queue_entries SET state = ?, finished_at = ?, lease_expires = 0, message = ? WHERE id = ? AND state = ?");
    QVariantList values{state, *now, sqlText(message), id, kTaken};
    if (!worker.isEmpty()) {
        statement += QStringLiteral(" AND worker = ?");
        values << worker;
    }
    QSqlQuery q = d.query();
    if (!d.exec(q, statement, values)) return -1;
    const bool changed = q.numRowsAffected() == 1;
    q.finish();
    if (!tx.commit()) return d.failSession(), -1;
    if (changed) return 0;
    d.fail(worker.isEmpty() ? QStringLiteral("queue entry %1 is not taken").arg(id)
                            : QStringLiteral("%1 does not hold queue entry %2").arg(worker, QString::number(id)));
    d.notHeld = true;
    return -1;
}
}  // namespace

int SqlDbAccess::finishQueueEntry(qint64 id, const QString &worker) {
    return finishEntry(*d, id, dba_queueStateName(dba_queueState::Done), QString(), worker);
}

int SqlDbAccess::failQueueEntry(qint64 id, const QString &message, const QString &worker) {
    return finishEntry(*d, id, dba_queueStateName(dba_queueState::Failed), message, worker);
}
