#pragma once
// The vectorize queue as the station holds it: open for one environment at a
// time and kept open for the life of the process, with one entry record that
// every drawing reuses. Main thread only.
#include <QString>

#include <memory>

#include "suite/db/dba_queue.h"

struct VectorizeQueueState {
    dba_queueEntry_struct entry;
    std::unique_ptr<dba_queue_struct> queue;  // null until opened
    QString environment;  // for which the queue is open; empty at first
};

// The process's queue state, made on first use.
VectorizeQueueState &vectorize_queue_state();
