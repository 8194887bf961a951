#pragma once
// The production database as the station sees it: the session, the current
// selection, elements and their paths, cels, and the vectorize queue.
//
// Results follow the suite's habit: 0 is success and -1 failure where a call
// answers with a number. Nothing here throws.
//
// Every call that goes to the database forgets the failure of the call
// before. One that answers with nothing (an empty list, no record, an id of
// 0) answers truly only when lastError() is empty afterwards; otherwise the
// database could not be read, and the nothing is no answer.
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

#include "suite/db/dba_queue.h"
#include "suite/db/dba_records.h"

// A walk over the cels of one element, for dba_GetElementCels and
// dba_GetNextElementCel.
struct dba_celTable_struct {
    std::vector<qint64> cels;
    std::size_t next = 0;
};

class TUDbAccess {
public:
    virtual ~TUDbAccess() = default;

    // --- Session ---
    // Names the program that uses the session (for the database's own log).
    virtual int dba_Initialize2dSystem(const QString &programName) = 0;
    // Connects and brings the schema up to date. -1 on failure, else 0.
    virtual int dba_Open2dDatabaseSession() = 0;
    // From now on the connection is checked now and then and reopened when lost
    // (needs a running event loop).
    virtual void dba_startKeepAlivePulse() = 0;
    // Reads the defaults of the selection (user, environment) from the
    // database settings file, when there is one. -1 on a file that can't be read.
    virtual int dba_read_config_file() = 0;
    // Why the last call failed, in plain words; empty when it did not.
    virtual QString lastError() const = 0;
    // Whether `path` is one of the database's own files (for SQLite the file
    // and its -wal, -shm and -journal companions). The station never opens
    // these itself: closing any descriptor of the file would drop the locks
    // that SQLite holds on it for the whole process.
    virtual bool ownsFile(const QString &path) const = 0;

    // --- The current selection ---
    virtual QString userName() const = 0;
    virtual QString envName() const = 0;
    virtual QString jobName() const = 0;
    virtual QString sceneName() const = 0;
    // The open scene; null when none is selected.
    virtual const dba_scene_struct *openScene() const = 0;
    // The selected element's id; 0 when none is selected.
    virtual qint64 selectedElementId() const = 0;
    // The open job; null when none is selected.
    virtual const dba_job_struct *openJob() const = 0;

    // --- Elements ---
    virtual std::optional<LMV_element_data> DBA_elementFromID(qint64 elementId) = 0;
    virtual QString DBA_elementNameFromID(qint64 elementId) = 0;  // empty when unknown
    virtual QString DBA_elementPathFromID(qint64 elementId) = 0;  // relative to the scene
    // The drawing names the scene exposes for the element, in exposure order.
    virtual QStringList dba_ExposedDrawings(const dba_scene_struct *scene, qint64 elementId) = 0;

    // --- Cels ---
    // Marks the named drawings of the element processed with stage and status
    // and counts one more scan for each. A drawing with no cel yet gets one.
    virtual int dba_ProcessedCels(const dba_scene_struct *scene, const QString &elementName, qint64 elementId,
                                  const QStringList &cels, int stage, int status) = 0;
    // Lock, walk, unlock: a consistent read of the element's cels. Locking
    // starts a read transaction on the session's connection; keep it short.
    virtual int dba_LockCelsDatabase(const dba_scene_struct *scene) = 0;
    virtual int dba_UnlockCelsDatabase(const dba_scene_struct *scene) = 0;
    // Fills the table and returns the first cel's id, 0 when there is none.
    virtual qint64 dba_GetElementCels(dba_celTable_struct *table, qint64 elementId) = 0;
    // The next cel's id, 0 at the end.
    virtual qint64 dba_GetNextElementCel(dba_celTable_struct *table, qint64 elementId) = 0;
    virtual std::optional<dba_cel_struct> dba_GetCelInfo(const dba_scene_struct *scene, qint64 celId, int flags) = 0;

    // --- Vectorize queue ---
    // Opens the queue of the environment into *queue. -1 on failure.
    virtual int dba_OpenQueue(int flags, const QString &environment, std::unique_ptr<dba_queue_struct> *queue) = 0;
    // Closes the queue and clears the handle.
    virtual void dba_CloseQueue(std::unique_ptr<dba_queue_struct> *queue) = 0;
    // Stores the entry as waiting; sets its id, environment, state and
    // creation time. 0 on success.
    virtual int dba_AddQueueEntry(dba_queue_struct *queue, dba_queueEntry_struct *entry) = 0;

    // --- Accessors of the element record; each asserts that it is given one ---
    static int needs_vectorization_LMV_element_data(const LMV_element_data *element);
    static bool uses_pixmap_LMV_element_data(const LMV_element_data *element);
    static int pf_of_LMV_element_data(const LMV_element_data *element);
    static qint64 element_id_of_LMV_element_data(const LMV_element_data *element);
    static float field_chart_of_LMV_element_data(const LMV_element_data *element);
    static LMV_element_scan_type scan_type_of_LMV_element_data(const LMV_element_data *element);
};
