// scanctl queue work: takes entries one at a time and runs a program for
// each, with the entry in its environment. The lease is renewed while the
// program runs, so a short lease only has to cover the time between two
// renewals: when this worker dies, its entry is free again soon after.
#include <QProcess>
#include <QProcessEnvironment>
#include <QTextStream>

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>

#include "tools/scanctl/open_database.h"
#include "tools/scanctl/queue_entry_text.h"
#include "tools/scanctl/queue_work.h"

namespace {

constexpr const char *kGroup = "queue work";
constexpr int kMaxLeaseSeconds = 7 * 24 * 3600;

enum class Outcome { Done, Failed, LeaseLost };

QProcessEnvironment entry_environment(SqlDbAccess &db, const dba_queueEntry_struct &e) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SCAN_QUEUE_ID"), QString::number(e.id));
    env.insert(QStringLiteral("SCAN_JOB"), e.jobName);
    env.insert(QStringLiteral("SCAN_SCENE"), e.sceneName);
    env.insert(QStringLiteral("SCAN_ELEMENT"), e.elementName);
    env.insert(QStringLiteral("SCAN_DRAWING"), e.drawing);
    env.insert(QStringLiteral("SCAN_PROCESS"), queue_process_word(e.process));
    env.insert(QStringLiteral("SCAN_OPTIONS"), e.options);
    ProductionPath p;
    QString error;
    if (find_production(db, {e.jobName, e.sceneName, e.elementName}, p, error))
        env.insert(QStringLiteral("SCAN_ELEMENT_DIR"), element_folder(*p.scene, *p.element));
    return env;
}

// Runs the program for the entry while renewing the lease; `message` says
// why it failed.
Outcome run_for_entry(SqlDbAccess &db, const dba_queueEntry_struct &e, const QueueWorkerSettings &s,
                      const QStringList &command, QString &message) {
    QProcess p;
    p.setProcessEnvironment(entry_environment(db, e));
    p.setProcessChannelMode(QProcess::ForwardedOutputChannel);
    // The program must not outlive a worker that was killed: its entry goes
    // to another worker once the lease runs out.
    p.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    p.start(command[0], command.mid(1));
    if (!p.waitForStarted()) {
        message = QStringLiteral("can't start %1: %2").arg(command[0], p.errorString());
        return Outcome::Failed;
    }
    const int renewEveryMs = std::max(200, s.leaseSeconds * 1000 / 3);
    while (!p.waitForFinished(renewEveryMs) && p.state() != QProcess::NotRunning) {
        if (db.renewQueueLease(e.id, s.worker, s.leaseSeconds) != 0) {
            p.kill();
            p.waitForFinished();
            message = QStringLiteral("lost the lease on entry %1").arg(e.id);
            return Outcome::LeaseLost;
        }
    }
    const QStringList errors =
        QString::fromLocal8Bit(p.readAllStandardError()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0) return Outcome::Done;
    message = p.exitStatus() == QProcess::NormalExit ? QStringLiteral("%1 exited with status %2").arg(command[0]).arg(p.exitCode())
                                                     : QStringLiteral("%1 crashed").arg(command[0]);
    if (!errors.isEmpty()) message += QStringLiteral(": ") + errors.last();
    return Outcome::Failed;
}

}  // namespace

std::optional<QueueWorkerSettings> queue_worker_settings(const CommandWords &w, QString &error) {
    QueueWorkerSettings s;
    s.worker = w.value(QStringLiteral("--worker"));
    if (s.worker.isEmpty()) {
        error = QStringLiteral("--worker NAME is required");
        return std::nullopt;
    }
    if (w.values.contains(QStringLiteral("--lease"))) {
        const std::optional<int> lease = int_in_range(w.value(QStringLiteral("--lease")), 1, kMaxLeaseSeconds);
        if (!lease) {
            error = QStringLiteral("--lease: '%1' is not a number of seconds").arg(w.value(QStringLiteral("--lease")));
            return std::nullopt;
        }
        s.leaseSeconds = *lease;
    }
    s.untilEmpty = w.flags.contains(QStringLiteral("--until-empty"));
    return s;
}

int run_queue_work(SqlDbAccess &db, const CommandWords &w) {
    QString error;
    const std::optional<QueueWorkerSettings> s = queue_worker_settings(w, error);
    if (!s) return report_failure(kGroup, error, kDbStatusUsage);
    if (w.rest.isEmpty()) return report_failure(kGroup, QStringLiteral("no program after --"), kDbStatusUsage);

    QTextStream out(stdout);
    int taken = 0, unfinished = 0;
    do {
        const std::optional<dba_queueEntry_struct> e = db.takeQueueEntry(s->worker, s->leaseSeconds);
        if (!e) {
            // An empty queue leaves no error behind; a failed take does.
            if (!db.lastError().isEmpty())
                return report_failure(kGroup, QStringLiteral("can't take an entry: %1").arg(db.lastError()),
                                      kDbStatusRefused);
            break;
        }
        ++taken;
        out << "taken: " << queue_entry_line(*e) << "\n";
        out.flush();
        QString message;
        const Outcome outcome = run_for_entry(db, *e, *s, w.rest, message);
        if (outcome == Outcome::Done && db.finishQueueEntry(e->id, s->worker) == 0) {
            out << "done: " << e->id << "\n";
        } else {
            if (outcome == Outcome::Failed) db.failQueueEntry(e->id, message, s->worker);
            else if (outcome == Outcome::Done) message = QStringLiteral("entry %1 was no longer ours").arg(e->id);
            out << "failed: " << e->id << ": " << message << "\n";
            ++unfinished;
        }
        out.flush();
    } while (s->untilEmpty);
    if (taken == 0) return report_failure(kGroup, QStringLiteral("nothing to take"), kDbStatusQueueEmpty);
    return unfinished == 0 ? kDbStatusOk : kDbStatusRefused;
}
