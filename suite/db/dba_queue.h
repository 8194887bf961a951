#pragma once
// The vectorize queue: its handle and its entries.
#include <QString>
#include <QtGlobal>

struct dba_scene_struct;

// An open queue: the entries of one environment.
struct dba_queue_struct {
    qint64 environmentId = 0;
    QString environment;
};

// What the worker is to do with the drawing.
enum dba_queueProcess {
    DBA_PROCESS_VECTORIZE = 2,
    DBA_PROCESS_PIX2VEC = 4,
};

enum class dba_queueState { Waiting, Taken, Done, Failed };

QString dba_queueStateName(dba_queueState state);  // "waiting", "taken", "done", "failed"
bool dba_queueStateFromName(const QString &name, dba_queueState &state);

struct dba_queueEntry_struct {
    // Filled by whoever adds the entry.
    dba_queue_struct *queue = nullptr;  // not owned
    int active = 0;
    QString jobName;
    QString sceneName;
    QString elementName;
    qint64 elementId = 0;
    QString drawing;
    QString options;  // the option line of the vectorize command
    qint32 sceneId = 0;
    int process = DBA_PROCESS_VECTORIZE;  // dba_queueProcess
    const dba_scene_struct *scene = nullptr;  // not owned; not stored
    qint64 sceneVersion = 0;

    // Kept by the queue; set when an entry is added or read back.
    qint64 id = 0;
    QString environment;
    dba_queueState state = dba_queueState::Waiting;
    qint64 createdAt = 0;   // milliseconds since the epoch; 0 = not yet
    qint64 takenAt = 0;
    qint64 finishedAt = 0;
    QString worker;         // who holds or held the entry
    qint64 leaseExpires = 0;
    QString message;        // why it failed
};
