#pragma once
// How scanctl prints vectorize queue entries: one line each in lists, and
// every field for one entry.
#include <QString>

#include "suite/db/dba_queue.h"

// "ID  STATE  JOB/SCENE/ELEMENT  DRAWING  PROCESS", then the worker when
// the entry has one.
QString queue_entry_line(const dba_queueEntry_struct &entry);

// Every field, one per line.
QString queue_entry_details(const dba_queueEntry_struct &entry);

// "vectorize" for process 2, "pix2vec" for 4.
QString queue_process_word(int process);
