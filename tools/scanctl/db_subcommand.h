#pragma once
// The second word of `scanctl db` and `scanctl queue`: each names a
// subcommand with its own arguments; all of them open the database first.
#include <QStringList>

#include <span>

#include "tools/queue_worker/command_words.h"

class SqlDbAccess;

struct DbSubcommand {
    const char *name;
    int minArgs;  // positional arguments
    int maxArgs;  // -1: any number
    QStringList valueOptions;  // besides --db and --env
    QStringList flags;
    int (*run)(SqlDbAccess &db, const CommandWords &words);
};

// Finds the subcommand named by args[0], checks its words and runs it on the
// open database. Usage errors give 1 with `usage` on standard error; --help
// prints `usage` and gives 0.
int run_db_subcommand(const char *group, const char *usage, std::span<const DbSubcommand> subcommands,
                      const QStringList &args);
