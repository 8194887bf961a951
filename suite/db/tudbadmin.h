#pragma once
// What the command line and the selection dialogs need beyond the station's
// calls: choosing the selection, making jobs, scenes and elements, listing
// the production, and working the vectorize queue as a worker.
//
// Calls that answer with a number give 0 (or a count) on success and -1 on
// failure, with the reason in TUDbAccess::lastError().
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

#include "suite/db/dba_queue.h"
#include "suite/db/dba_records.h"

class TUDbAdmin {
public:
    virtual ~TUDbAdmin() = default;

    // As TUDbAccess::lastError: empty after a call that did not fail, so an
    // empty listing with no error is a true one.
    virtual QString lastError() const = 0;

    // --- Selection ---
    // Users and environments are made on first use. Selecting a job clears the
    // scene and element; selecting a scene clears the element. Each is looked
    // up below the one above it (a job in the environment, and so on).
    virtual int setUser(const QString &name, int type = DBA_USER_SCANNER_OPERATOR) = 0;
    virtual int setEnvironment(const QString &name) = 0;
    virtual int selectJob(const QString &name) = 0;
    virtual int selectScene(const QString &name) = 0;
    virtual int selectElement(const QString &name) = 0;

    // --- Making the production (in the current environment) ---
    virtual std::optional<dba_job_struct> createJob(const QString &name, int pixelShape = 1) = 0;
    virtual std::optional<dba_scene_struct> createScene(qint64 jobId, const QString &name, const QString &path) = 0;
    // The element's id and scene id are taken from the database; the other
    // fields from `element`.
    virtual std::optional<LMV_element_data> createElement(qint32 sceneId, const LMV_element_data &element) = 0;
    // Adds the names the element does not expose yet, after the others, and
    // gives each a cel when no cel carries that drawing name yet, so that the
    // drawing selector offers it. The number of names added, or -1.
    virtual int exposeDrawings(qint64 elementId, const QStringList &drawings) = 0;
    // Adds a cel by hand (a drawing with versions, or one drawn elsewhere).
    virtual std::optional<dba_cel_struct> createCel(qint64 elementId, const QString &name, const QString &suffix,
                                                    int versionCount) = 0;
    // Records the stage and status (dba_celStage) of the cel that the drawing
    // names, without counting a scan as dba_ProcessedCels does; a drawing with
    // no cel yet gets one.
    virtual int markCelStage(qint64 elementId, const QString &drawing, int stage, int status) = 0;

    // --- Listing ---
    virtual std::vector<dba_job_struct> jobs() = 0;  // of the current environment, by name
    virtual std::vector<dba_scene_struct> scenes(qint64 jobId) = 0;
    virtual std::vector<LMV_element_data> elements(qint32 sceneId) = 0;
    virtual std::vector<dba_cel_struct> cels(qint64 elementId) = 0;  // in the order they were made
    virtual std::optional<dba_job_struct> findJob(const QString &name) = 0;
    virtual std::optional<dba_scene_struct> findScene(qint64 jobId, const QString &name) = 0;
    virtual std::optional<LMV_element_data> findElement(qint32 sceneId, const QString &name) = 0;

    // --- Vectorize queue, as a worker or an administrator ---
    // All entries of every environment, oldest first; only those in `state`
    // when given.
    virtual std::vector<dba_queueEntry_struct> queueEntries(std::optional<dba_queueState> state = {}) = 0;
    virtual std::optional<dba_queueEntry_struct> queueEntry(qint64 id) = 0;
    // Takes the oldest available entry of the current environment for
    // `worker` until the lease runs out: an entry is available when it is
    // waiting, or taken with its lease expired (its worker died). Safe across
    // processes and machines: no entry is handed to two workers at once.
    // Nothing when the queue has no available entry or on failure.
    virtual std::optional<dba_queueEntry_struct> takeQueueEntry(const QString &worker, int leaseSeconds) = 0;
    // Extends the lease of an entry the worker holds. -1 when it holds none.
    virtual int renewQueueLease(qint64 id, const QString &worker, int leaseSeconds) = 0;
    // Records the outcome of a taken entry. -1 when the entry is not taken,
    // or, when `worker` is given, not taken by that worker (its lease ran
    // out and someone else has it now).
    virtual int finishQueueEntry(qint64 id, const QString &worker = QString()) = 0;
    virtual int failQueueEntry(qint64 id, const QString &message, const QString &worker = QString()) = 0;
};
