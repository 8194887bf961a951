// Making and listing jobs, scenes, elements, exposures and cels.
#include <QSet>

#include "suite/db/db_rows.h"
#include "suite/db/sql_db_access.h"
#include "suite/db/sql_db_access_private.h"

namespace {
// Runs `insert` (an INSERT ... RETURNING id) in its own transaction and reads
// the new row back with `reread`.
template <class T>
std::optional<T> insertAndRead(SqlDbAccess::Private &d, const QString &insert, const QVariantList &values,
                               const std::function<std::optional<T>(qint64)> &reread) {
    if (!d.ready()) return std::nullopt;
    std::optional<qint64> id;
    {
        DbTransaction tx(*d.session);
        if (!tx.ok()) return d.failSession(), std::nullopt;
        id = d.insert(insert, values);
        if (!id) return std::nullopt;
        if (!tx.commit()) return d.failSession(), std::nullopt;
    }
    std::optional<T> row = reread(*id);
    if (!row && d.error.isEmpty()) d.fail(QStringLiteral("the new row %1 can't be read back").arg(*id));
    return row;
}

bool requireName(SqlDbAccess::Private &d, const QString &what, const QString &name) {
    return name.trimmed().isEmpty() ? d.fail(QStringLiteral("a %1 needs a name").arg(what)) : true;
}
}  // namespace

std::optional<dba_job_struct> SqlDbAccess::createJob(const QString &name, int pixelShape) {
    if (!requireName(*d, QStringLiteral("job"), name)) return std::nullopt;
    if (findJob(name)) return d->fail(QStringLiteral("job %1 exists already").arg(name)), std::nullopt;
    if (!d->error.isEmpty()) return std::nullopt;
    return insertAndRead<dba_job_struct>(
        *d, QStringLiteral("INSERT INTO jobs (environment_id, name, pixel_shape) VALUES (?, ?, ?) RETURNING id"),
        {d->envId, name, pixelShape}, [this](qint64 id) {
            return d->lookup<dba_job_struct>(sql(kJobSelect, "WHERE j.id = ?"), {id}, readJob);
        });
}

std::optional<dba_scene_struct> SqlDbAccess::createScene(qint64 jobId, const QString &name, const QString &path) {
    if (!requireName(*d, QStringLiteral("scene"), name)) return std::nullopt;
    if (findScene(jobId, name)) return d->fail(QStringLiteral("scene %1 exists already").arg(name)), std::nullopt;
    if (!d->error.isEmpty()) return std::nullopt;
    return insertAndRead<dba_scene_struct>(
        *d, QStringLiteral("INSERT INTO scenes (job_id, name, path, version) VALUES (?, ?, ?, 1) RETURNING id"),
        {jobId, name, sqlText(path)}, [this](qint64 id) {
            return d->lookup<dba_scene_struct>(sql(kSceneSelect, "WHERE s.id = ?"), {id}, readScene);
        });
}

std::optional<LMV_element_data> SqlDbAccess::createElement(qint32 sceneId, const LMV_element_data &e) {
    if (!requireName(*d, QStringLiteral("element"), e.name)) return std::nullopt;
    if (findElement(sceneId, e.name))
        return d->fail(QStringLiteral("element %1 exists already").arg(e.name)), std::nullopt;
    if (!d->error.isEmpty()) return std::nullopt;
    if (e.scanType < LMV_SCAN_COLOUR || e.scanType > LMV_SCAN_NONE)
        return d->fail(QStringLiteral("unknown scan type %1").arg(e.scanType)), std::nullopt;
    return insertAndRead<LMV_element_data>(
        *d,
        QStringLiteral("INSERT INTO elements (scene_id, name, path, scan_type, needs_vectorization, uses_pixmap, pf, "
                       "field_chart, pixel_shape) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id"),
        {sceneId, e.name, sqlText(e.path), e.scanType, e.needsVectorization, e.usesPixmap ? 1 : 0, e.pf, e.fieldChart,
         e.pixelShape},
        [this](qint64 id) { return DBA_elementFromID(id); });
}

int SqlDbAccess::exposeDrawings(qint64 elementId, const QStringList &drawings) {
    if (!DBA_elementFromID(elementId))
        return d->error.isEmpty() ? (d->fail(QStringLiteral("no element with id %1").arg(elementId)), -1) : -1;
    DbTransaction tx(*d->session);
    if (!tx.ok()) return d->failSession(), -1;
    QSet<QString> exposed;
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("SELECT drawing FROM exposures WHERE element_id = ?"), {elementId})) return -1;
    while (q.next()) exposed.insert(q.value(0).toString());
    if (!d->rowsEnded(q)) return -1;
    QSet<QString> withCel;
    if (!d->exec(q, sql(kCelSelect, "WHERE element_id = ?"), {elementId})) return -1;
    while (q.next()) withCel.insert(readCel(q).drawingName());
    if (!d->rowsEnded(q)) return -1;

    int added = 0;
    for (const QString &name : drawings) {
        if (name.isEmpty() || exposed.contains(name)) continue;
        if (!d->exec(q, QStringLiteral("INSERT INTO exposures (element_id, drawing) VALUES (?, ?)"), {elementId, name}))
            return -1;
        exposed.insert(name);
        ++added;
        if (withCel.contains(name)) continue;
        if (!d->exec(q, QStringLiteral("INSERT INTO cels (element_id, name, suffix) VALUES (?, ?, '')"),
                     {elementId, name}))
            return -1;
        withCel.insert(name);
    }
    q.finish();
    return tx.commit() ? added : (d->failSession(), -1);
}

std::optional<dba_cel_struct> SqlDbAccess::createCel(qint64 elementId, const QString &name, const QString &suffix,
                                                     int versionCount) {
    if (!requireName(*d, QStringLiteral("cel"), name)) return std::nullopt;
    return insertAndRead<dba_cel_struct>(
        *d,
        QStringLiteral("INSERT INTO cels (element_id, name, suffix, version_count) VALUES (?, ?, ?, ?) RETURNING id"),
        {elementId, name, sqlText(suffix), versionCount}, [this](qint64 id) {
            return d->lookup<dba_cel_struct>(sql(kCelSelect, "WHERE id = ?"), {id}, readCel);
        });
}

int SqlDbAccess::markCelStage(qint64 elementId, const QString &drawing, int stage, int status) {
    if (!d->ready()) return -1;
    DbTransaction tx(*d->session);
    if (!tx.ok()) return d->failSession(), -1;
    QSqlQuery q = d->query();
    if (!d->exec(q, QStringLiteral("SELECT scene_id FROM elements WHERE id = ?"), {elementId})) return -1;
    const std::optional<bool> found = d->firstRow(q);
    if (!found) return -1;
    if (!*found) return d->fail(QStringLiteral("no element with id %1").arg(elementId)), -1;
    const qint64 sceneId = q.value(0).toLongLong();
    std::optional<qint64> celId;
    if (!d->exec(q, sql(kCelSelect, "WHERE element_id = ? ORDER BY id"), {elementId})) return -1;
    while (!celId && q.next())
        if (const dba_cel_struct cel = readCel(q); cel.drawingName() == drawing) celId = cel.id;
    if (!celId && !d->rowsEnded(q)) return -1;
    const bool ok =
        celId ? d->exec(q, QStringLiteral("UPDATE cels SET processed_stage = ?, processed_status = ? WHERE id = ?"),
                        {stage, status, *celId})
              : d->exec(q,
                        QStringLiteral("INSERT INTO cels (element_id, name, suffix, processed_stage, processed_status) "
                                       "VALUES (?, ?, '', ?, ?)"),
                        {elementId, drawing, stage, status});
    // The drawing selectors of other sessions read the scene again.
    if (!ok || !d->exec(q, QStringLiteral("UPDATE scenes SET version = version + 1 WHERE id = ?"), {sceneId})) return -1;
    q.finish();
    if (!tx.commit()) return d->failSession(), -1;
    if (d->scene && d->scene->id == sceneId) d->refreshScene();
    return 0;
}

std::vector<dba_job_struct> SqlDbAccess::jobs() {
    return d->listing<dba_job_struct>(sql(kJobSelect, "WHERE j.environment_id = ? ORDER BY j.name"), {d->envId},
                                      readJob);
}

std::vector<dba_scene_struct> SqlDbAccess::scenes(qint64 jobId) {
    return d->listing<dba_scene_struct>(sql(kSceneSelect, "WHERE s.job_id = ? ORDER BY s.name"), {jobId}, readScene);
}

std::vector<LMV_element_data> SqlDbAccess::elements(qint32 sceneId) {
    return d->listing<LMV_element_data>(sql(kElementSelect, "WHERE scene_id = ? ORDER BY name"), {sceneId},
                                        readElement);
}

std::vector<dba_cel_struct> SqlDbAccess::cels(qint64 elementId) {
    return d->listing<dba_cel_struct>(sql(kCelSelect, "WHERE element_id = ? ORDER BY id"), {elementId}, readCel);
}

std::optional<dba_job_struct> SqlDbAccess::findJob(const QString &name) {
    return d->lookup<dba_job_struct>(sql(kJobSelect, "WHERE j.environment_id = ? AND j.name = ?"), {d->envId, name},
                                     readJob);
}

std::optional<dba_scene_struct> SqlDbAccess::findScene(qint64 jobId, const QString &name) {
    return d->lookup<dba_scene_struct>(sql(kSceneSelect, "WHERE s.job_id = ? AND s.name = ?"), {jobId, name},
                                       readScene);
}

std::optional<LMV_element_data> SqlDbAccess::findElement(qint32 sceneId, const QString &name) {
    return d->lookup<LMV_element_data>(sql(kElementSelect, "WHERE scene_id = ? AND name = ?"), {sceneId, name},
                                       readElement);
}
