#pragma once
// A production database in memory for the station's side: one environment,
// job, scene and element, which records the cel marks and the queue traffic
// and can be told to fail opening the queue or adding to it.
#include <QtCore>

#include <vector>

#include "suite/db/tudbaccess.h"

class FakeDbAccess : public TUDbAccess {
public:
    struct ProcessedCall {
        const dba_scene_struct *scene;
        QString elementName;
        qint64 elementId;
        QStringList cels;
        int stage, status;
    };

    QString environment = QStringLiteral("Studio");
    dba_job_struct job{.id = 7, .environment = environment, .name = "Job", .pixelShape = 3};
    dba_scene_struct scene{.id = 31, .jobId = 7, .jobName = "Job", .name = "S1", .path = {}, .version = 5};
    LMV_element_data element{.id = 4001, .sceneId = 31, .name = "E", .path = "E", .scanType = LMV_SCAN_COLOUR,
                             .needsVectorization = LMV_VECTORIZE, .usesPixmap = false, .pf = 4, .fieldChart = 16};
    bool failOpen = false;
    bool failAdd = false;

    std::vector<ProcessedCall> processed;
    QStringList opened;  // the environment of each open
    int closes = 0;
    std::vector<dba_queueEntry_struct> added;  // each entry as it was handed over
    std::vector<const dba_queue_struct *> addedTo;

    int dba_Initialize2dSystem(const QString &) override { return 0; }
    int dba_Open2dDatabaseSession() override { return 0; }
    void dba_startKeepAlivePulse() override {}
    int dba_read_config_file() override { return 0; }
    QString lastError() const override { return {}; }
    bool ownsFile(const QString &) const override { return false; }
    QString userName() const override { return QStringLiteral("op"); }
    QString envName() const override { return environment; }
    QString jobName() const override { return job.name; }
    QString sceneName() const override { return scene.name; }
    const dba_scene_struct *openScene() const override { return &scene; }
    qint64 selectedElementId() const override { return element.id; }
    const dba_job_struct *openJob() const override { return &job; }
    std::optional<LMV_element_data> DBA_elementFromID(qint64 id) override {
        return id == element.id ? std::optional(element) : std::nullopt;
    }
    QString DBA_elementNameFromID(qint64 id) override { return id == element.id ? element.name : QString(); }
    QString DBA_elementPathFromID(qint64 id) override { return id == element.id ? element.path : QString(); }
    QStringList dba_ExposedDrawings(const dba_scene_struct *, qint64) override { return {}; }
    int dba_ProcessedCels(const dba_scene_struct *s, const QString &name, qint64 id, const QStringList &cels,
                          int stage, int status) override {
        processed.push_back({s, name, id, cels, stage, status});
        return 0;
    }
    int dba_LockCelsDatabase(const dba_scene_struct *) override { return 0; }
    int dba_UnlockCelsDatabase(const dba_scene_struct *) override { return 0; }
    qint64 dba_GetElementCels(dba_celTable_struct *, qint64) override { return 0; }
    qint64 dba_GetNextElementCel(dba_celTable_struct *, qint64) override { return 0; }
    std::optional<dba_cel_struct> dba_GetCelInfo(const dba_scene_struct *, qint64, int) override { return {}; }
    int dba_OpenQueue(int, const QString &env, std::unique_ptr<dba_queue_struct> *queue) override {
        opened << env;
        if (failOpen) return -1;
        *queue = std::make_unique<dba_queue_struct>();
        (*queue)->environment = env;
        return 0;
    }
    void dba_CloseQueue(std::unique_ptr<dba_queue_struct> *queue) override {
        ++closes;
        queue->reset();
    }
    int dba_AddQueueEntry(dba_queue_struct *queue, dba_queueEntry_struct *entry) override {
        if (failAdd) return -1;
        addedTo.push_back(queue);
        added.push_back(*entry);
        entry->id = static_cast<qint64>(added.size());
        return 0;
    }
};
