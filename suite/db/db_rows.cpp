#include "suite/db/db_rows.h"

#include <QVariant>

const char *const kJobSelect =
    "SELECT j.id, en.name, j.name, j.pixel_shape FROM jobs j JOIN environments en ON en.id = j.environment_id";
const char *const kSceneSelect =
    "SELECT s.id, s.job_id, j.name, s.name, s.path, s.version FROM scenes s JOIN jobs j ON j.id = s.job_id";
const char *const kElementSelect =
    "SELECT id, scene_id, name, path, scan_type, needs_vectorization, uses_pixmap, pf, field_chart, pixel_shape "
    "FROM elements";
const char *const kCelSelect =
    "SELECT id, element_id, name, suffix, version_count, scan_count, processed_stage, processed_status FROM cels";
const char *const kQueueSelect =
    "SELECT q.id, en.name, q.active, q.job_name, q.scene_name, q.element_name, q.element_id, q.drawing, "
    "q.options, q.scene_id, q.process, q.scene_version, q.state, q.created_at, q.taken_at, q.finished_at, "
    "q.worker, q.lease_expires, q.message FROM queue_entries q JOIN environments en ON en.id = q.environment_id";

dba_job_struct readJob(const QSqlQuery &q) {
    dba_job_struct job;
    job.id = q.value(0).toLongLong();
    job.environment = q.value(1).toString();
    job.name = q.value(2).toString();
    job.pixelShape = q.value(3).toInt();
    return job;
}

dba_scene_struct readScene(const QSqlQuery &q) {
    dba_scene_struct scene;
    scene.id = q.value(0).toInt();
    scene.jobId = q.value(1).toLongLong();
    scene.jobName = q.value(2).toString();
    scene.name = q.value(3).toString();
    scene.path = q.value(4).toString();
    scene.version = q.value(5).toLongLong();
    return scene;
}

LMV_element_data readElement(const QSqlQuery &q) {
    LMV_element_data e;
    e.id = q.value(0).toLongLong();
    e.sceneId = q.value(1).toInt();
    e.name = q.value(2).toString();
    e.path = q.value(3).toString();
    e.scanType = q.value(4).toInt();
    e.needsVectorization = q.value(5).toInt();
    e.usesPixmap = q.value(6).toInt() != 0;
    e.pf = q.value(7).toInt();
    e.fieldChart = q.value(8).toDouble();
    e.pixelShape = q.value(9).toInt();
    return e;
}

dba_cel_struct readCel(const QSqlQuery &q) {
    dba_cel_struct cel;
    cel.id = q.value(0).toLongLong();
    cel.elementId = q.value(1).toLongLong();
    cel.name = q.value(2).toString();
    cel.suffix = q.value(3).toString();
    cel.versionCount = q.value(4).toInt();
    cel.scanCount = q.value(5).toInt();
    cel.processedStage = q.value(6).toInt();
    cel.processedStatus = q.value(7).toInt();
    return cel;
}

dba_queueEntry_struct readQueueEntry(const QSqlQuery &q) {
    dba_queueEntry_struct e;
    e.id = q.value(0).toLongLong();
    e.environment = q.value(1).toString();
    e.active = q.value(2).toInt();
    e.jobName = q.value(3).toString();
    e.sceneName = q.value(4).toString();
    e.elementName = q.value(5).toString();
    e.elementId = q.value(6).toLongLong();
    e.drawing = q.value(7).toString();
    e.options = q.value(8).toString();
    e.sceneId = q.value(9).toInt();
    e.process = q.value(10).toInt();
    e.sceneVersion = q.value(11).toLongLong();
    dba_queueStateFromName(q.value(12).toString(), e.state);
    e.createdAt = q.value(13).toLongLong();
    e.takenAt = q.value(14).toLongLong();
    e.finishedAt = q.value(15).toLongLong();
    e.worker = q.value(16).toString();
    e.leaseExpires = q.value(17).toLongLong();
    e.message = q.value(18).toString();
    return e;
}
