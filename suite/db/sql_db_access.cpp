// The session, the selection, elements and cels.
#include "suite/db/sql_db_access.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>
#include <QSettings>

#include "suite/base/assertion.h"
#include "suite/base/osw_util.h"
#include "suite/db/db_rows.h"
#include "suite/db/db_schema.h"
#include "suite/db/dba_path.h"
#include "suite/db/sql_db_access_private.h"

namespace {
// How often the keep-alive pulse checks the connection.
constexpr int kKeepAliveMs = 60000;
}  // namespace

std::optional<qint64> SqlDbAccess::Private::now() {
    if (clock) return clock();
    if (!session->isPostgres()) return QDateTime::currentMSecsSinceEpoch();
    QSqlQuery q = query();
    if (!exec(q, QStringLiteral("SELECT CAST(EXTRACT(EPOCH FROM clock_timestamp()) * 1000 AS BIGINT)"))) return {};
    const std::optional<bool> row = firstRow(q);
    if (!row) return {};
    if (!*row) return fail(QStringLiteral("the server did not tell its time")), std::nullopt;
    return q.value(0).toLongLong();
}

qint64 SqlDbAccess::Private::environmentId(const QString &name, bool create) {
    if (!ready()) return 0;
    if (name.isEmpty()) return fail(QStringLiteral("no environment name")), 0;
    const QString lookup = QStringLiteral("SELECT id FROM environments WHERE name = ?");
    QSqlQuery q = query();
    if (!exec(q, lookup, {name})) return 0;
    std::optional<bool> row = firstRow(q);
    if (!row) return 0;
    if (*row) return q.value(0).toLongLong();
    if (!create) return fail(QStringLiteral("no environment %1").arg(name)), 0;
    DbTransaction tx(*session);
    if (!tx.ok()) return failSession(), 0;
    if (!exec(q, QStringLiteral("INSERT INTO environments (name) VALUES (?) ON CONFLICT (name) DO NOTHING"), {name}) ||
        !exec(q, lookup, {name}) || !(row = firstRow(q)))
        return 0;
    if (!*row) return fail(QStringLiteral("environment %1 was not made").arg(name)), 0;
    const qint64 id = q.value(0).toLongLong();
    q.finish();
    return tx.commit() ? id : (failSession(), 0);
}

void SqlDbAccess::Private::refreshScene() {
    if (!scene) return;
    if (auto fresh = lookup<dba_scene_struct>(sql(kSceneSelect, "WHERE s.id = ?"), {scene->id}, readScene)) scene = *fresh;
}

SqlDbAccess::SqlDbAccess(const QString &connection) : d(std::make_unique<Private>()) {
    d->connection = DbConnectionSettings::choose(connection);
    d->user = oswUtil::getUserName();
    d->env = QStringLiteral("default");
}

SqlDbAccess::~SqlDbAccess() = default;

QString SqlDbAccess::connectionString() const { return d->connection; }
bool SqlDbAccess::isOpen() const { return d->session && d->session->isOpen(); }
void SqlDbAccess::setClock(std::function<qint64()> clock) { d->clock = std::move(clock); }
QString SqlDbAccess::lastError() const { return d->error; }

void SqlDbAccess::setLockWait(int ms) {
    d->lockWaitMs = ms;
    if (d->session) d->session->setLockWait(ms);
}

SqlDbAccess::Failure SqlDbAccess::lastFailure() {
    if (d->error.isEmpty()) return Failure::None;
    if (d->busy) return Failure::Busy;
    if (d->notHeld) return Failure::NotHeld;
    // Asked now, outside the failed call's transaction, which is rolled back.
    if (d->fromSession && !(d->session && d->session->ping())) return Failure::ConnectionLost;
    return Failure::Other;
}

int SqlDbAccess::reconnect() {
    if (!d->session) return dba_Open2dDatabaseSession();
    d->fail(QString());
    d->celsLocked = false;
    if (!d->session->open()) return d->failSession(), -1;
    return 0;
}

bool SqlDbAccess::ownsFile(const QString &path) const {
    DbConnectionSettings settings;
    if (!DbConnectionSettings::parse(d->connection, settings) || settings.kind != DbConnectionSettings::Kind::SQLite)
        return false;
    // Two names of one file compare equal once links are resolved; a file
    // that does not exist yet compares by its absolute name.
    const auto same = [](const QString &a, const QString &b) {
        const QFileInfo fa(a), fb(b);
        const QString ca = fa.canonicalFilePath(), cb = fb.canonicalFilePath();
        return !ca.isEmpty() && !cb.isEmpty() ? ca == cb : fa.absoluteFilePath() == fb.absoluteFilePath();
    };
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        if (same(path, settings.sqlitePath + QLatin1String(suffix))) return true;
    return false;
}

int SqlDbAccess::schemaVersion() {
    if (!d->ready()) return -1;
    const int version = dbSchemaVersion(*d->session);
    if (version < 0) d->failSession();
    return version;
}

QString SqlDbAccess::description() const {
    DbConnectionSettings settings;
    return DbConnectionSettings::parse(d->connection, settings) ? settings.describe() : d->connection;
}

int SqlDbAccess::dba_Initialize2dSystem(const QString &programName) {
    d->programName = programName;
    return 0;
}

int SqlDbAccess::dba_Open2dDatabaseSession() {
    DbConnectionSettings settings;
    QString error;
    if (!DbConnectionSettings::parse(d->connection, settings, &error)) return d->fail(error), -1;
    d->keepAlive.reset();
    d->session = std::make_unique<DbSession>(settings);
    if (d->lockWaitMs > 0) d->session->setLockWait(d->lockWaitMs);
    if (!d->session->open()) {
        d->fail(d->session->lastError());
        d->session.reset();
        return -1;
    }
    if (!dbMigrateSchema(*d->session, &error)) {
        d->fail(error);
        d->session.reset();
        return -1;
    }
    DBA_Path::setRoot(settings.kind == DbConnectionSettings::Kind::SQLite
                          ? QFileInfo(settings.sqlitePath).absolutePath()
                          : qEnvironmentVariable("SCAN_DB_ROOT"));
    if (setUser(d->user) != 0 || setEnvironment(d->env) != 0) {
        d->session.reset();
        return -1;
    }
    return 0;
}

void SqlDbAccess::dba_startKeepAlivePulse() {
    if (d->keepAlive) return;
    d->keepAlive = std::make_unique<QTimer>();
    d->keepAlive->setInterval(kKeepAliveMs);
    QObject::connect(d->keepAlive.get(), &QTimer::timeout, [this] {
        // The server went away: open again, keeping the selection.
        if (d->session && !d->session->ping()) reconnect();
    });
    d->keepAlive->start();
}

int SqlDbAccess::dba_read_config_file() {
    const QString path = oswUtil::LMVEtc() + QStringLiteral("/database.conf");
    if (!QFileInfo::exists(path)) return 0;
    QSettings settings(path, QSettings::IniFormat);
    if (settings.status() != QSettings::NoError) return d->fail(QStringLiteral("cannot read %1").arg(path)), -1;
    const QString user = settings.value(QStringLiteral("user")).toString();
    const QString env = settings.value(QStringLiteral("environment")).toString();
    if (!user.isEmpty()) d->user = user;
    if (!env.isEmpty()) d->env = env;
    if (!isOpen()) return 0;
    return (user.isEmpty() || setUser(user) == 0) && (env.isEmpty() || setEnvironment(env) == 0) ? 0 : -1;
}

// --- Selection ---

QString SqlDbAccess::userName() const { return d->user; }
QString SqlDbAccess::envName() const { return d->env; }
QString SqlDbAccess::jobName() const { return d->job ? d->job->name : QString(); }
QString SqlDbAccess::sceneName() const { return d->scene ? d->scene->name : QString(); }
const dba_scene_struct *SqlDbAccess::openScene() const { return d->scene ? &*d->scene : nullptr; }
const dba_job_struct *SqlDbAccess::openJob() const { return d->job ? &*d->job : nullptr; }
qint64 SqlDbAccess::selectedElementId() const { return d->elementId; }

int SqlDbAccess::setUser(const QString &name, int type) {
    if (!d->ready()) return -1;
    if (name.isEmpty()) return d->fail(QStringLiteral("no user name")), -1;
    DbTransaction tx(*d->session);
    QSqlQuery q = d->query();
    if (!tx.ok() ||
        !d->exec(q, QStringLiteral("INSERT INTO users (name, type) VALUES (?, ?) ON CONFLICT (name) DO NOTHING"),
                 {name, type}) ||
        !tx.commit())
        return d->failSession(), -1;
    d->user = name;
    return 0;
}

int SqlDbAccess::setEnvironment(const QString &name) {
    const qint64 id = d->environmentId(name, true);
    if (id == 0) return -1;
    if (id != d->envId) {
        d->job.reset();
        d->scene.reset();
        d->elementId = 0;
    }
    d->env = name;
    d->envId = id;
    return 0;
}

int SqlDbAccess::selectJob(const QString &name) {
    const std::optional<dba_job_struct> job = findJob(name);
    if (!job && d->error.isEmpty()) d->fail(QStringLiteral("no job %1 in environment %2").arg(name, d->env));
    if (!job) return -1;
    d->job = job;
    d->scene.reset();
    d->elementId = 0;
    return 0;
}

int SqlDbAccess::selectScene(const QString &name) {
    if (!d->job) return d->fail(QStringLiteral("no job is selected")), -1;
    const std::optional<dba_scene_struct> scene = findScene(d->job->id, name);
    if (!scene && d->error.isEmpty()) d->fail(QStringLiteral("no scene %1 in job %2").arg(name, d->job->name));
    if (!scene) return -1;
    d->scene = scene;
    d->elementId = 0;
    return 0;
}

int SqlDbAccess::selectElement(const QString &name) {
    if (!d->scene) return d->fail(QStringLiteral("no scene is selected")), -1;
    const std::optional<LMV_element_data> element = findElement(d->scene->id, name);
    if (!element && d->error.isEmpty()) d->fail(QStringLiteral("no element %1 in scene %2").arg(name, d->scene->name));
    if (!element) return -1;
    d->elementId = element->id;
    return 0;
}

// --- Elements ---

std::optional<LMV_element_data> SqlDbAccess::DBA_elementFromID(qint64 elementId) {
    return d->lookup<LMV_element_data>(sql(kElementSelect, "WHERE id = ?"), {elementId}, readElement);
}

QString SqlDbAccess::DBA_elementNameFromID(qint64 elementId) {
    const auto element = DBA_elementFromID(elementId);
    return element ? element->name : QString();
}

QString SqlDbAccess::DBA_elementPathFromID(qint64 elementId) {
    const auto element = DBA_elementFromID(elementId);
    return element ? element->path : QString();
}

QStringList SqlDbAccess::dba_ExposedDrawings(const dba_scene_struct *scene, qint64 elementId) {
    QStringList names;
    if (!d->ready()) return names;
    LMV_ASSERT_RET(scene, (d->fail(QStringLiteral("no scene")), names));
    QSqlQuery q = d->query();
    if (!d->exec(q,
                 QStringLiteral("SELECT x.drawing FROM exposures x JOIN elements e ON e.id = x.element_id "
                                "WHERE x.element_id = ? AND e.scene_id = ? ORDER BY x.id"),
                 {elementId, scene->id}))
        return names;
    while (q.next()) names << q.value(0).toString();
    return d->rowsEnded(q) ? names : QStringList();
}

// --- Cels ---

int SqlDbAccess::dba_ProcessedCels(const dba_scene_struct *scene, const QString &elementName, qint64 elementId,
                                   const QStringList &cels, int stage, int status) {
    if (!d->ready()) return -1;
    LMV_ASSERT_RET(scene, (d->fail(QStringLiteral("no scene")), -1));
    DbTransaction tx(*d->session);
    if (!tx.ok()) return d->failSession(), -1;
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("SELECT name FROM elements WHERE id = ? AND scene_id = ?"), {elementId, scene->id}))
        return -1;
    const std::optional<bool> found = d->firstRow(q);
    if (!found) return -1;
    if (!*found) return d->fail(QStringLiteral("no element %1 in scene %2").arg(QString::number(elementId), scene->name)), -1;
    if (!elementName.isEmpty() && q.value(0).toString() != elementName)
        return d->fail(QStringLiteral("element %1 is called %2, not %3")
                           .arg(QString::number(elementId), q.value(0).toString(), elementName)),
               -1;

    // The cels by the drawing name they go by.
    QHash<QString, qint64> byDrawing;
    if (!d->exec(q, sql(kCelSelect, "WHERE element_id = ? ORDER BY id"), {elementId})) return -1;
    while (q.next()) {
        const dba_cel_struct cel = readCel(q);
        if (!byDrawing.contains(cel.drawingName())) byDrawing.insert(cel.drawingName(), cel.id);
    }
    if (!d->rowsEnded(q)) return -1;
    for (const QString &drawing : cels) {
        if (drawing.isEmpty()) continue;
        bool ok;
        if (const auto it = byDrawing.constFind(drawing); it != byDrawing.constEnd()) {
            ok = d->exec(q,
                         QStringLiteral("UPDATE cels SET scan_count = scan_count + 1, processed_stage = ?, "
                                        "processed_status = ? WHERE id = ?"),
                         {stage, status, *it});
        } else {
            const auto id = d->insert(QStringLiteral("INSERT INTO cels (element_id, name, suffix, version_count, "
                                                     "scan_count, processed_stage, processed_status) "
                                                     "VALUES (?, ?, '', 0, 1, ?, ?) RETURNING id"),
                                      {elementId, drawing, stage, status});
            ok = id.has_value();
            if (ok) byDrawing.insert(drawing, *id);
        }
        if (!ok) return -1;
    }
    if (!d->exec(q, QStringLiteral("UPDATE scenes SET version = version + 1 WHERE id = ?"), {scene->id})) return -1;
    q.finish();
    if (!tx.commit()) return d->failSession(), -1;
    if (d->scene && d->scene->id == scene->id) d->refreshScene();
    return 0;
}

int SqlDbAccess::dba_LockCelsDatabase(const dba_scene_struct *scene) {
    if (!d->ready()) return -1;
    LMV_ASSERT_RET(scene, (d->fail(QStringLiteral("no scene")), -1));
    if (d->celsLocked) return d->fail(QStringLiteral("the cels are locked already")), -1;
    if (!d->session->begin(false)) return d->failSession(), -1;
    d->celsLocked = true;
    return 0;
}

int SqlDbAccess::dba_UnlockCelsDatabase(const dba_scene_struct *scene) {
    d->fail(QString());
    LMV_ASSERT_RET(scene, (d->fail(QStringLiteral("no scene")), -1));
    if (!d->celsLocked) return d->fail(QStringLiteral("the cels are not locked")), -1;
    d->celsLocked = false;
    if (!d->session || !d->session->commit()) return d->fail(QStringLiteral("the cels could not be unlocked")), -1;
    return 0;
}

qint64 SqlDbAccess::dba_GetElementCels(dba_celTable_struct *table, qint64 elementId) {
    if (!d->ready()) return 0;
    LMV_ASSERT_RET(table, (d->fail(QStringLiteral("no cel table")), 0));
    *table = dba_celTable_struct();
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("SELECT id FROM cels WHERE element_id = ? ORDER BY id"), {elementId})) return 0;
    while (q.next()) table->cels.push_back(q.value(0).toLongLong());
    if (!d->rowsEnded(q)) {
        table->cels.clear();
        return 0;
    }
    return dba_GetNextElementCel(table, elementId);
}

qint64 SqlDbAccess::dba_GetNextElementCel(dba_celTable_struct *table, qint64 elementId) {
    d->fail(QString());
    LMV_ASSERT_RET(table, (d->fail(QStringLiteral("no cel table")), 0));
    if (table->next >= table->cels.size()) return 0;
    return table->cels[table->next++];
}

std::optional<dba_cel_struct> SqlDbAccess::dba_GetCelInfo(const dba_scene_struct *scene, qint64 celId, int flags) {
    if (!d->ready()) return std::nullopt;
    LMV_ASSERT_RET(scene, (d->fail(QStringLiteral("no scene")), std::nullopt));
    return d->lookup<dba_cel_struct>(sql(kCelSelect, "WHERE id = ?"), {celId}, readCel);
}
