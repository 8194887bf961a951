#pragma once
// The column lists the library selects, and the records read from them.
#include <QSqlQuery>

#include "suite/db/dba_queue.h"
#include "suite/db/dba_records.h"

// "SELECT <columns> FROM <from>" for each record; read with the reader below.
extern const char *const kJobSelect;      // ... WHERE/ORDER on j (jobs) and en (environments)
extern const char *const kSceneSelect;    // s (scenes), j (jobs)
extern const char *const kElementSelect;  // elements
extern const char *const kCelSelect;      // cels
extern const char *const kQueueSelect;    // q (queue_entries), en (environments)

dba_job_struct readJob(const QSqlQuery &q);
dba_scene_struct readScene(const QSqlQuery &q);
LMV_element_data readElement(const QSqlQuery &q);
dba_cel_struct readCel(const QSqlQuery &q);
dba_queueEntry_struct readQueueEntry(const QSqlQuery &q);

// Text columns are NOT NULL: a null QString would be bound as NULL.
inline QString sqlText(const QString &text) { return text.isNull() ? QStringLiteral("") : text; }
