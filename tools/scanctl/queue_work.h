#pragma once
// A worker of the vectorize queue on the command line: who it is, how long
// it may hold an entry, and `scanctl queue work`, which runs a program for
// each entry it takes.
#include <QString>

#include <optional>

#include "tools/scanctl/command_words.h"

class SqlDbAccess;

struct QueueWorkerSettings {
    QString worker;
    int leaseSeconds = 300;
    bool untilEmpty = false;
};

// --worker NAME (required), --lease SECONDS, --until-empty.
std::optional<QueueWorkerSettings> queue_worker_settings(const CommandWords &words, QString &error);

int run_queue_work(SqlDbAccess &db, const CommandWords &words);
