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

qint64 SqlDbAccess::Private::now() {
    if (clock) return clock();
    if (session && session->isPostgres()) {
        QSqlQuery q = query();
        if (session->exec(q, QStringLiteral("SELECT CAST(EXTRACT(EPOCH FROM clock_timestamp()) * 1000 AS BIGINT)")) &&
            q.next())
            return q.value(0).toLongLong();
    }
    return QDateTime::currentMSecsSinceEpoch();
}

qint64 SqlDbAccess::Private::environmentId(const QString &name, bool create) {
    if (!ready()) return 0;
    if (name.isEmpty()) return fail(QStringLiteral("no environment name")), 0;
    const QString lookup = QStringLiteral("SELECT id FROM environments WHERE name = ?");
    QSqlQuery q = query();
    if (!exec(q, lookup, {name})) return 0;
    if (q.next()) return q.value(0).toLongLong();
    if (!create) return fail(QStringLiteral("no environment %1").arg(name)), 0;
    DbTransaction tx(*session);
    if (!tx.ok()) return fail(session->lastError()), 0;
    if (!exec(q, QStringLiteral("INSERT INTO environments (name) VALUES (?) ON CONFLICT (name) DO NOTHING"), {name}) ||
        !exec(q, lookup, {name}) || !q.next())
        return 0;
    const qint64 id = q.value(0).toLongLong();
    q.finish();
    return tx.commit() ? id : (fail(session->lastError()), 0);
}

void SqlDbAccess::Private::refreshScene() {
    if (!scene) return;
    if (auto fresh = selectOne<dba_scene_struct>(sql(kSceneSelect, "WHERE s.id = ?"), {scene->id}, readScene))
        scene = *fresh;
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

int SqlDbAccess::schemaVersion() { return isOpen() ? std::max(0, dbSchemaVersion(*d->session)) : 0; }

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
        if (!d->session || d->session->ping()) return;
        // The server went away: open again, keeping the selection.
        if (d->session->open()) return;
        d->fail(d->session->lastError());
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
        return d->fail(d->session->lastError()), -1;
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
    if (!job) return -1;
    d->job = job;
    d->scene.reset();
    d->elementId = 0;
    return 0;
}

int SqlDbAccess::selectScene(const QString &name) {
    if (!d->job) return d->fail(QStringLiteral("no job is selected")), -1;
    const std::optional<dba_scene_struct> scene = findScene(d->job->id, name);
    if (!scene) return -1;
    d->scene = scene;
    d->elementId = 0;
    return 0;
}

int SqlDbAccess::selectElement(const QString &name) {
    if (!d->scene) return d->fail(QStringLiteral("no scene is selected")), -1;
    const std::optional<LMV_element_data> element = findElement(d->scene->id, name);
    if (!element) return -1;
    d->elementId = element->id;
    return 0;
}

// --- Elements ---

std::optional<LMV_element_data> SqlDbAccess::DBA_elementFromID(qint64 elementId) {
    auto element = d->selectOne<LMV_element_data>(sql(kElementSelect, "WHERE id = ?"), {elementId}, readElement);
    if (!element) d->fail(QStringLiteral("no element with id %1").arg(elementId));
    return element;
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
    LMV_ASSERT_RET(scene, names);
    if (!d->ready()) return names;
    QSqlQuery q = d->query();
    if (!d->exec(q,
                 QStringLiteral("SELECT x.drawing FROM exposures x JOIN elements e ON e.id = x.element_id "
                                "WHERE x.element_id = ? AND e.scene_id = ? ORDER BY x.id"),
                 {elementId, scene->id}))
        return names;
    while (q.next()) names << q.value(0).toString();
    return names;
}

// --- Cels ---

int SqlDbAccess::dba_ProcessedCels(const dba_scene_struct *scene, const QString &elementName, qint64 elementId,
                                   const QStringList &cels, int stage, int status) {
    LMV_ASSERT_RET(scene, -1);
    if (!d->ready()) return -1;
    DbTransaction tx(*d->session);
    if (!tx.ok()) return d->fail(d->session->lastError()), -1;
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("SELECT name FROM elements WHERE id = ? AND scene_id = ?"), {elementId, scene->id}))
        return -1;
    if (!q.next()) return d->fail(QStringLiteral("no element %1 in scene %2").arg(elementId).arg(scene->name)), -1;
    if (!elementName.isEmpty() && q.value(0).toString() != elementName)
        return d->fail(QStringLiteral("element %1 is called %2, not %3").arg(elementId).arg(q.value(0).toString(), elementName)),
               -1;

    // The cels by the drawing name they go by.
    QHash<QString, qint64> byDrawing;
    if (!d->exec(q, sql(kCelSelect, "WHERE element_id = ? ORDER BY id"), {elementId})) return -1;
    while (q.next()) {
        const dba_cel_struct cel = readCel(q);
        if (!byDrawing.contains(cel.drawingName())) byDrawing.insert(cel.drawingName(), cel.id);
    }
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
    if (!tx.commit()) return d->fail(d->session->lastError()), -1;
    if (d->scene && d->scene->id == scene->id) d->refreshScene();
    return 0;
}

int SqlDbAccess::dba_LockCelsDatabase(const dba_scene_struct *scene) {
    LMV_ASSERT_RET(scene, -1);
    if (!d->ready()) return -1;
    if (d->celsLocked) return d->fail(QStringLiteral("the cels are locked already")), -1;
    if (!d->session->begin(false)) return d->fail(d->session->lastError()), -1;
    d->celsLocked = true;
    return 0;
}

int SqlDbAccess::dba_UnlockCelsDatabase(const dba_scene_struct *scene) {
    LMV_ASSERT_RET(scene, -1);
    if (!d->celsLocked) return d->fail(QStringLiteral("the cels are not locked")), -1;
    d->celsLocked = false;
    return d->session && d->session->commit() ? 0 : -1;
}

qint64 SqlDbAccess::dba_GetElementCels(dba_celTable_struct *table, qint64 elementId) {
    LMV_ASSERT_RET(table, 0);
    *table = dba_celTable_struct();
    if (!d->ready()) return 0;
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("SELECT id FROM cels WHERE element_id = ? ORDER BY id"), {elementId})) return 0;
    while (q.next()) table->cels.push_back(q.value(0).toLongLong());
    return dba_GetNextElementCel(table, elementId);
}

qint64 SqlDbAccess::dba_GetNextElementCel(dba_celTable_struct *table, qint64 elementId) {
    LMV_ASSERT_RET(table, 0);
    if (table->next >= table->cels.size()) return 0;
    return table->cels[table->next++];
}

std::optional<dba_cel_struct> SqlDbAccess::dba_GetCelInfo(const dba_scene_struct *scene, qint64 celId, int flags) {
    LMV_ASSERT_RET(scene, std::nullopt);
    auto cel = d->selectOne<dba_cel_struct>(sql(kCelSelect, "WHERE id = ?"), {celId}, readCel);
    if (!cel) d->fail(QStringLiteral("no cel with id %1").arg(celId));
    return cel;
}
