// scanctl queue: the vectorize queue as an administrator and a worker see it:
// list and show entries, take them under a lease, record their outcome, and
// place drawings on the queue by hand.
#include <QTextStream>

#include <array>
#include <cstdio>
#include <limits>

#include "tools/scanctl/command.h"
#include "tools/scanctl/db_subcommand.h"
#include "tools/queue_worker/open_database.h"
#include "tools/queue_worker/queue_entry_text.h"
#include "tools/queue_worker/queue_worker.h"
#include "workflow/manual_list_syntax.h"

namespace {

constexpr const char *kUsage =
    "usage: scanctl queue list [--state waiting|taken|done|failed]\n"
    "       scanctl queue show ID\n"
    "       scanctl queue take --worker NAME [--lease SECONDS] [--count N | --until-empty]\n"
    "       scanctl queue done ID [--worker NAME]\n"
    "       scanctl queue fail ID MESSAGE [--worker NAME]\n"
    "       scanctl queue add --job JOB --scene SCENE --element ELEMENT --drawings LIST [--options TEXT]\n"
    "       scanctl queue work --worker NAME [--lease SECONDS] [--until-empty] -- PROGRAM [ARGS...]\n"
    "  Every subcommand also takes --db URL and --env NAME, as scanctl db does.\n"
    "  list prints one line per entry of every environment, oldest first: id, state,\n"
    "  job/scene/element, drawing, process and the worker that holds or held it. take\n"
    "  hands the oldest available entries of the environment to NAME for the lease\n"
    "  (default 300 s, at least 2 s) and prints each as list does; an entry whose\n"
    "  lease ran out is available again.\n"
    "  With --worker, done and fail refuse an entry that NAME no longer holds.\n"
    "  add places each drawing of LIST (manual list syntax) on the queue as the station\n"
    "  does after a scan. work takes entries one at a time and runs PROGRAM for each\n"
    "  (see the README for its environment), renewing the lease until the outcome is\n"
    "  recorded: exit 0 marks the entry done, anything else failed. The program and all\n"
    "  it starts end with the worker; a lost server is reconnected to.\n"
    "  Exit status: 0 done, 1 usage error, 2 refused (unknown names or entries, an entry\n"
    "  in the wrong state, a database that can't be opened or read), 3 nothing to take.\n";

constexpr const char *kGroup = "queue";
constexpr int kDefaultLeaseSeconds = 300;

int refused(const QString &text) { return report_failure(kGroup, text, kDbStatusRefused); }
int bad_value(const QString &text) { return report_failure(kGroup, text, kDbStatusUsage); }

int list(SqlDbAccess &db, const CommandWords &w) {
    std::optional<dba_queueState> state;
    if (w.values.contains(QStringLiteral("--state"))) {
        dba_queueState s;
        if (!dba_queueStateFromName(w.value(QStringLiteral("--state")), s))
            return bad_value(QStringLiteral("--state: '%1' is not a state").arg(w.value(QStringLiteral("--state"))));
        state = s;
    }
    QString error;
    const auto entries = checked(db, db.queueEntries(state), QStringLiteral("the vectorize queue"), error);
    if (!entries) return refused(error);
    QTextStream out(stdout);
    for (const dba_queueEntry_struct &e : *entries) out << queue_entry_line(e) << "\n";
    return kDbStatusOk;
}

// The entry named by the first argument; nothing after reporting why.
std::optional<dba_queueEntry_struct> entry_argument(SqlDbAccess &db, const CommandWords &w, int &status) {
    const std::optional<int> id = int_in_range(w.positional[0], 1, std::numeric_limits<int>::max());
    if (!id) {
        status = bad_value(QStringLiteral("'%1' is not an entry id").arg(w.positional[0]));
        return std::nullopt;
    }
    std::optional<dba_queueEntry_struct> e = db.queueEntry(*id);
    if (!e)
        status = refused(db.lastError().isEmpty() ? QStringLiteral("no entry %1").arg(*id)
                                                  : read_failure(db, QStringLiteral("queue entry %1").arg(*id)));
    return e;
}

int show(SqlDbAccess &db, const CommandWords &w) {
    int status = kDbStatusOk;
    const std::optional<dba_queueEntry_struct> e = entry_argument(db, w, status);
    if (e) QTextStream(stdout) << queue_entry_details(*e);
    return status;
}

int take(SqlDbAccess &db, const CommandWords &w) {
    QString error;
    const std::optional<QueueWorkerSettings> settings = queue_worker_settings(w, error);
    if (!settings) return bad_value(error);
    int limit = settings->untilEmpty ? std::numeric_limits<int>::max() : 1;
    if (w.values.contains(QStringLiteral("--count"))) {
        const std::optional<int> n = int_in_range(w.value(QStringLiteral("--count")), 1, 1000000);
        if (!n || settings->untilEmpty)
            return bad_value(QStringLiteral("--count takes a positive number and goes without --until-empty"));
        limit = *n;
    }
    QTextStream out(stdout);
    int taken = 0;
    while (taken < limit) {
        const std::optional<dba_queueEntry_struct> e = db.takeQueueEntry(settings->worker, settings->leaseSeconds);
        if (!e) break;
        out << queue_entry_line(*e) << "\n";
        out.flush();  // a worker's log shows what it holds even if it dies
        ++taken;
    }
    // An empty queue leaves no error behind; a failed take does.
    if (!db.lastError().isEmpty())
        return refused(QStringLiteral("can't take an entry from %1 (%2 taken): %3")
                           .arg(db.description(), QString::number(taken), db.lastError()));
    if (taken > 0) return kDbStatusOk;
    return report_failure(kGroup, QStringLiteral("nothing to take"), kDbStatusQueueEmpty);
}

// done and fail: the outcome of an entry its worker has finished.
int finish(SqlDbAccess &db, const CommandWords &w, bool failed) {
    int status = kDbStatusOk;
    const std::optional<dba_queueEntry_struct> e = entry_argument(db, w, status);
    if (!e) return status;
    const QString worker = w.value(QStringLiteral("--worker"));
    const int r = failed ? db.failQueueEntry(e->id, w.positional[1], worker) : db.finishQueueEntry(e->id, worker);
    if (r != 0) {
        if (db.lastFailure() != SqlDbAccess::Failure::NotHeld)
            return refused(QStringLiteral("can't record the outcome of entry %1 in %2: %3")
                               .arg(QString::number(e->id), db.description(), db.lastError()));
        if (e->state == dba_queueState::Taken && !worker.isEmpty())
            return refused(QStringLiteral("entry %1 is held by %2, not %3").arg(QString::number(e->id), e->worker, worker));
        return refused(QStringLiteral("entry %1 is %2, not taken").arg(QString::number(e->id), dba_queueStateName(e->state)));
    }
    QTextStream(stdout) << "entry " << e->id << (failed ? " failed" : " done") << "\n";
    return kDbStatusOk;
}

int done(SqlDbAccess &db, const CommandWords &w) { return finish(db, w, false); }
int fail(SqlDbAccess &db, const CommandWords &w) { return finish(db, w, true); }

int add(SqlDbAccess &db, const CommandWords &w) {
    for (const char *option : {"--job", "--scene", "--element", "--drawings"})
        if (!w.values.contains(QLatin1String(option)))
            return bad_value(QStringLiteral("add needs %1").arg(QLatin1String(option)));
    const ManualListParse list = parse_manual_list(w.value(QStringLiteral("--drawings")));
    if (!list.ok) return bad_value(list.error);
    ProductionPath p;
    QString error;
    if (find_production(db, {w.value("--job"), w.value("--scene"), w.value("--element")}, p, error) != Lookup::Found)
        return refused(error);
    const LMV_element_data &element = *p.element;
    if (element.needsVectorization == LMV_VECTORIZE_NONE)
        return refused(QStringLiteral("element '%1' needs no vectorization").arg(element.name));

    std::unique_ptr<dba_queue_struct> queue;
    if (db.dba_OpenQueue(0, db.envName(), &queue) != 0)
        return refused(QStringLiteral("can't open the vectorize queue of %1: %2").arg(db.description(), db.lastError()));
    int added = 0;
    for (const QString &drawing : list.names) {
        if (drawing.isEmpty()) continue;
        dba_queueEntry_struct entry;
        entry.queue = queue.get();
        entry.active = 1;
        entry.jobName = p.job->name;
        entry.sceneName = p.scene->name;
        entry.elementName = element.name;
        entry.elementId = element.id;
        entry.drawing = drawing;
        entry.options = w.value(QStringLiteral("--options"));
        entry.sceneId = p.scene->id;
        entry.process = element.needsVectorization == LMV_VECTORIZE ? DBA_PROCESS_VECTORIZE : DBA_PROCESS_PIX2VEC;
        entry.scene = &*p.scene;
        entry.sceneVersion = p.scene->version;
        if (db.dba_AddQueueEntry(queue.get(), &entry) != 0) {
            error = QStringLiteral("can't add drawing %1 to the vectorize queue of %2 (%3 added before it): %4")
                        .arg(drawing, db.description(), QString::number(added), db.lastError());
            db.dba_CloseQueue(&queue);
            return refused(error);
        }
        ++added;
    }
    db.dba_CloseQueue(&queue);
    QTextStream(stdout) << added << " drawings of " << p.job->name << "/" << p.scene->name << "/" << element.name
                        << " placed on the vectorize queue of environment " << db.envName() << "\n";
    return kDbStatusOk;
}

// Runs the program after "--" for each entry.
int work(SqlDbAccess &db, const CommandWords &w) {
    QString error;
    const std::optional<QueueWorkerSettings> s = queue_worker_settings(w, error);
    constexpr const char *kWorkGroup = "queue work";
    if (!s) return report_failure(kWorkGroup, error, kDbStatusUsage);
    if (w.rest.isEmpty()) return report_failure(kWorkGroup, QStringLiteral("no program after --"), kDbStatusUsage);
    QueueEntryProgram program(kWorkGroup, w.rest);
    return run_queue_worker(db, *s, program);
}

const QStringList kNoOptions;
const QStringList kWorkerOptions{QStringLiteral("--worker"), QStringLiteral("--lease")};

}  // namespace

int run_queue_command(const QStringList &args) {
    static const std::array<DbSubcommand, 7> subcommands = {{
        {"list", 0, 0, {QStringLiteral("--state")}, kNoOptions, list},
        {"show", 1, 1, kNoOptions, kNoOptions, show},
        {"take", 0, 0, kWorkerOptions + QStringList{QStringLiteral("--count")}, {QStringLiteral("--until-empty")}, take},
        {"done", 1, 1, {QStringLiteral("--worker")}, kNoOptions, done},
        {"fail", 2, 2, {QStringLiteral("--worker")}, kNoOptions, fail},
        {"add", 0, 0,
         {QStringLiteral("--job"), QStringLiteral("--scene"), QStringLiteral("--element"), QStringLiteral("--drawings"),
          QStringLiteral("--options")},
         kNoOptions, add},
        {"work", 0, 0, kWorkerOptions, {QStringLiteral("--until-empty")}, work},
    }};
    return run_db_subcommand(kGroup, kUsage, subcommands, args);
}
