#pragma once
// A worker of the vectorize queue on the command line: who it is, how long
// it may hold an entry, and the loop that takes entries one at a time and
// runs a program for each, with the entry in its environment. scanctl queue
// work runs any program; pix2vec --worker runs pix2vec itself.
#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <optional>

#include "suite/db/dba_queue.h"
#include "tools/queue_worker/command_words.h"

class SqlDbAccess;

struct QueueWorkerSettings {
    QString worker;
    int leaseSeconds = 300;
    bool untilEmpty = false;
};

// --worker NAME (required), --lease SECONDS, --until-empty.
std::optional<QueueWorkerSettings> queue_worker_settings(const CommandWords &words, QString &error);

// The program a worker runs for each entry and how the worker tells of its
// entries. As it stands it is scanctl queue work's: the program's output is
// the worker's, and the worker prints "taken: ", "done: ID" and
// "failed: ID: MESSAGE" lines.
class QueueEntryProgram {
public:
    // `group` signs the worker's messages on standard error, after the
    // program's own name.
    QueueEntryProgram(const char *group, QStringList command) : group_(group), command_(std::move(command)) {}
    virtual ~QueueEntryProgram() = default;

    const char *group() const { return group_; }
    const QStringList &command() const { return command_; }
    // False keeps the program's standard output for finished().
    virtual bool forwardsOutput() const { return true; }

    virtual void taken(QTextStream &out, const dba_queueEntry_struct &e);
    // Why the entry failed, for a program that did not exit with 0.
    // `lastError` is the last line of its standard error, if any.
    virtual QString failure(QProcess::ExitStatus status, int exitCode, const QString &lastError) const;
    // What the database records for a done entry before the entry is marked
    // done, with the worker's session: true when the database answered
    // (SqlDbAccess::lastFailure says why not). Nothing here.
    virtual bool recordDone(SqlDbAccess &db, const dba_queueEntry_struct &e);
    // The entry's outcome has been recorded: done when `message` is empty.
    // `output` is the program's standard output unless it was forwarded.
    virtual void finished(QTextStream &out, const dba_queueEntry_struct &e, const QString &message,
                          const QByteArray &output);

private:
    const char *group_;
    QStringList command_;
};

// Takes entries and runs `program` for each until the queue is empty (with
// --until-empty) or after one. The exit status: 0 all done, 2 one failed or
// the database failed the worker, 3 nothing to take.
int run_queue_worker(SqlDbAccess &db, const QueueWorkerSettings &settings, QueueEntryProgram &program);
