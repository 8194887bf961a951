#pragma once
// The production database over QtSql, for an embedded SQLite file and for a
// studio's PostgreSQL server alike. One instance holds one connection and
// belongs to the thread that made it; several processes may share one
// database (SQLite runs in WAL mode, writers taking turns at its write lock).
#include <functional>
#include <memory>

#include "suite/db/db_connection.h"
#include "suite/db/tudbaccess.h"
#include "suite/db/tudbadmin.h"

class SqlDbAccess : public TUDbAccess, public TUDbAdmin {
public:
    // `connection` as for DbConnectionSettings::choose.
    explicit SqlDbAccess(const QString &connection = QString());
    ~SqlDbAccess() override;
    SqlDbAccess(const SqlDbAccess &) = delete;
    SqlDbAccess &operator=(const SqlDbAccess &) = delete;

    // The connection string in use, and whether a session is open.
    QString connectionString() const;
    bool isOpen() const;
    // The database for messages: the SQLite file or the server's address
    // (without a password).
    QString description() const;
    // The schema version of the open database; -1 when it can't be read.
    int schemaVersion();
    // Tests set the clock of leases and times (milliseconds since the epoch).
    void setClock(std::function<qint64()> clock);
    // The longest a call waits for a lock another session holds before it
    // fails as Busy (30 s unless set); kept across reconnect().
    void setLockWait(int ms);

    // Why the last call failed, for those that try again.
    enum class Failure {
        None,            // it did not fail
        Busy,            // another session held a lock longer than the lock wait
        ConnectionLost,  // the server (or the file) can't be reached; reconnect()
        NotHeld,         // the worker does not hold the queue entry (any more)
        Other,           // the database refused or could not be read
    };
    Failure lastFailure();
    // Opens the connection again after it was lost, keeping the selection.
    int reconnect();

    // TUDbAccess
    int dba_Initialize2dSystem(const QString &programName) override;
    int dba_Open2dDatabaseSession() override;
    void dba_startKeepAlivePulse() override;
    int dba_read_config_file() override;
    QString lastError() const override;
    bool ownsFile(const QString &path) const override;
    QString userName() const override;
    QString envName() const override;
    QString jobName() const override;
    QString sceneName() const override;
    const dba_scene_struct *openScene() const override;
    qint64 selectedElementId() const override;
    const dba_job_struct *openJob() const override;
    std::optional<LMV_element_data> DBA_elementFromID(qint64 elementId) override;
    QString DBA_elementNameFromID(qint64 elementId) override;
    QString DBA_elementPathFromID(qint64 elementId) override;
    QStringList dba_ExposedDrawings(const dba_scene_struct *scene, qint64 elementId) override;
    int dba_ProcessedCels(const dba_scene_struct *scene, const QString &elementName, qint64 elementId,
                          const QStringList &cels, int stage, int status) override;
    int dba_LockCelsDatabase(const dba_scene_struct *scene) override;
    int dba_UnlockCelsDatabase(const dba_scene_struct *scene) override;
    qint64 dba_GetElementCels(dba_celTable_struct *table, qint64 elementId) override;
    qint64 dba_GetNextElementCel(dba_celTable_struct *table, qint64 elementId) override;
    std::optional<dba_cel_struct> dba_GetCelInfo(const dba_scene_struct *scene, qint64 celId, int flags) override;
    int dba_OpenQueue(int flags, const QString &environment, std::unique_ptr<dba_queue_struct> *queue) override;
    void dba_CloseQueue(std::unique_ptr<dba_queue_struct> *queue) override;
    int dba_AddQueueEntry(dba_queue_struct *queue, dba_queueEntry_struct *entry) override;

    // TUDbAdmin
    int setUser(const QString &name, int type = DBA_USER_SCANNER_OPERATOR) override;
    int setEnvironment(const QString &name) override;
    int selectJob(const QString &name) override;
    int selectScene(const QString &name) override;
    int selectElement(const QString &name) override;
    std::optional<dba_job_struct> createJob(const QString &name, int pixelShape = 1) override;
    std::optional<dba_scene_struct> createScene(qint64 jobId, const QString &name, const QString &path) override;
    std::optional<LMV_element_data> createElement(qint32 sceneId, const LMV_element_data &element) override;
    int exposeDrawings(qint64 elementId, const QStringList &drawings) override;
    std::optional<dba_cel_struct> createCel(qint64 elementId, const QString &name, const QString &suffix,
                                            int versionCount) override;
    int markCelStage(qint64 elementId, const QString &drawing, int stage, int status) override;
    std::vector<dba_job_struct> jobs() override;
    std::vector<dba_scene_struct> scenes(qint64 jobId) override;
    std::vector<LMV_element_data> elements(qint32 sceneId) override;
    std::vector<dba_cel_struct> cels(qint64 elementId) override;
    std::optional<dba_job_struct> findJob(const QString &name) override;
    std::optional<dba_scene_struct> findScene(qint64 jobId, const QString &name) override;
    std::optional<LMV_element_data> findElement(qint32 sceneId, const QString &name) override;
    std::vector<dba_queueEntry_struct> queueEntries(std::optional<dba_queueState> state = {}) override;
    std::optional<dba_queueEntry_struct> queueEntry(qint64 id) override;
    std::optional<dba_queueEntry_struct> takeQueueEntry(const QString &worker, int leaseSeconds) override;
    int renewQueueLease(qint64 id, const QString &worker, int leaseSeconds) override;
    int finishQueueEntry(qint64 id, const QString &worker = QString()) override;
    int failQueueEntry(qint64 id, const QString &message, const QString &worker = QString()) override;

    // The library's own state; its units share it, nothing outside sees inside.
    struct Private;

private:
    std::unique_ptr<Private> d;
};
