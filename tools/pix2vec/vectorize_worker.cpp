// pix2vec --worker: the vectorize queue's worker. It runs the queue loop that
// scanctl queue work runs, with pix2vec itself as the program of each entry
// (--queue-entry, reading the entry from the loop's SCAN_* variables), so
// that a drawing that crashes the vectorizer fails its entry and never the
// worker, and the lease is kept while the drawing is vectorized.
#include "tools/pix2vec/vectorize_worker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QSet>
#include <QTextStream>

#include <cstdio>

#include "suite/cel/pixmap_format_list.h"
#include "tools/pix2vec/vectorize_file.h"
#include "tools/queue_worker/open_database.h"
#include "tools/queue_worker/queue_worker.h"
#include "vectorize/pix2vec_options.h"

namespace {

constexpr const char *kGroup = "--worker";
constexpr const char *kUsage =
    "usage: pix2vec --worker NAME [--db URL] [--env NAME] [--lease SECONDS] [--until-empty] [--svg]\n"
    "  Takes entries of the vectorize queue one at a time as NAME and vectorizes each\n"
    "  drawing's scan file ELEMENT-DRAWING.tif in its element's folder with the entry's\n"
    "  option line into ELEMENT-DRAWING.kwg beside it (and ELEMENT-DRAWING.svg with\n"
    "  --svg), marks the cel vectorized and the entry done, or failed with the reason.\n"
    "  Leases and reconnection as for scanctl queue work.\n"
    "  Exit status: 0 done, 1 usage error, 2 an entry failed or the database failed,\n"
    "  3 nothing to take.\n";
// The per-entry mode: the loop's environment names the entry.
constexpr const char *kEntryFlag = "--queue-entry";
constexpr const char *kSvgFlag = "--svg";

QString env(const QProcessEnvironment &e, const char *name) { return e.value(QLatin1String(name)); }

// The scan file of a drawing: ELEMENT-DRAWING with an extension the station
// writes scans with; the first such name when none is there, for the message.
QString scanFileOf(const QString &folder, const QString &element, const QString &drawing) {
    const QString stem = QStringLiteral("%1/%2-%3.").arg(folder, element, drawing);
    QStringList candidates;
    const TUPixmapFormatList formats(7);
    for (const TUPixmapFormat &f : formats.formats())
        if (!candidates.contains(stem + QLatin1String(f.extension))) candidates << stem + QLatin1String(f.extension);
    for (const QString &path : candidates)
        if (QFileInfo(path).isFile()) return path;
    return candidates.value(0, stem + QStringLiteral("tif"));
}

// One entry, run by the worker as a program of its own: on success one line
// on standard output, the strokes, time and files; else the reason on
// standard error and exit 1.
int vectorizeQueueEntry(bool svg) {
    const QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
    QTextStream err(stderr);
    const QString folder = env(e, "SCAN_ELEMENT_DIR"), element = env(e, "SCAN_ELEMENT");
    const QString drawing = env(e, "SCAN_DRAWING");
    if (folder.isEmpty()) {
        err << QStringLiteral("element %1 of scene %2 of job %3 is not in the database")
                   .arg(element, env(e, "SCAN_SCENE"), env(e, "SCAN_JOB"))
            << '\n';
        return 1;
    }
    TUPix2vecOptions options;
    currentVectorizeOptions() = &options;
    // The entry's line carries the station's style whole: this machine's
    // default style has no say. A style may keep a stroke thickness.
    options.resetDefaults();
    if (!options.parseOptionLine(env(e, "SCAN_OPTIONS"), true)) {
        err << options.lastError.trimmed() << '\n';
        return 1;
    }
    const QString input = scanFileOf(folder, element, drawing);
    const QString stem = QStringLiteral("%1/%2-%3.").arg(folder, element, drawing);
    QStringList outputs{stem + QStringLiteral("kwg")};
    if (svg) outputs << stem + QStringLiteral("svg");
    QElapsedTimer clock;
    clock.start();
    const VectorizeFileResult r = vectorizeFile(options, input, outputs);
    if (!r.ok) {
        err << r.message << '\n';
        return 1;
    }
    QTextStream(stdout) << r.strokes << " strokes in " << QString::number(clock.elapsed() / 1000.0, 'f', 1)
                        << " s -> " << outputs.join(QLatin1Char(' ')) << '\n';
    return 0;
}

// The queue loop's program: pix2vec for one entry; the drawing's cel is
// marked vectorized before the entry is marked done.
class VectorizeEntryProgram : public QueueEntryProgram {
public:
    VectorizeEntryProgram(const QString &worker, bool svg)
        : QueueEntryProgram(kGroup, QStringList{QCoreApplication::applicationFilePath(), QStringLiteral("--worker"),
                                                worker, QLatin1String(kEntryFlag)} +
                                        (svg ? QStringList{QLatin1String(kSvgFlag)} : QStringList())) {}

    bool forwardsOutput() const override { return false; }
    // One line per entry, when it is finished.
    void taken(QTextStream &, const dba_queueEntry_struct &) override {}

    QString failure(QProcess::ExitStatus status, int exitCode, const QString &lastError) const override {
        // pix2vec's own message is the reason; anything else is told as it happened.
        if (status == QProcess::NormalExit && exitCode == 1 && !lastError.isEmpty()) return lastError;
        return QueueEntryProgram::failure(status, exitCode, lastError);
    }

    bool recordDone(SqlDbAccess &db, const dba_queueEntry_struct &e) override {
        return db.markCelStage(e.elementId, e.drawing, DBA_CEL_VECTORIZED, 0) == 0;
    }

    void finished(QTextStream &out, const dba_queueEntry_struct &e, const QString &message,
                  const QByteArray &output) override {
        out << (message.isEmpty() ? "done: " : "failed: ") << e.id << ' ' << e.jobName << '/' << e.sceneName << '/'
            << e.elementName << ' ' << e.drawing << ": ";
        if (!message.isEmpty()) {
            out << message << '\n';
            return;
        }
        const QList<QByteArray> lines = output.trimmed().split('\n');
        out << QString::fromLocal8Bit(lines.last()) << '\n';
    }
};

int usageError(const QString &text) {
    std::fprintf(stderr, "pix2vec %s: %s\n\n%s", kGroup, text.toLocal8Bit().constData(), kUsage);
    return kDbStatusUsage;
}

}  // namespace

int runVectorizeWorker(const QStringList &args) {
    QString error;
    const std::optional<CommandWords> words =
        split_command_words(args, database_value_options() + QStringList{QStringLiteral("--worker"), QStringLiteral("--lease")},
                            {QStringLiteral("--until-empty"), QLatin1String(kSvgFlag), QLatin1String(kEntryFlag)}, error);
    if (!words) return usageError(error);
    if (words->help) {
        std::fputs(kUsage, stdout);
        return kDbStatusOk;
    }
    if (!words->positional.isEmpty() || !words->rest.isEmpty())
        return usageError(QStringLiteral("unexpected argument '%1'").arg((words->positional + words->rest).first()));
    const std::optional<QueueWorkerSettings> settings = queue_worker_settings(*words, error);
    if (!settings) return usageError(error);
    const bool svg = words->has(QLatin1String(kSvgFlag));
    if (words->has(QLatin1String(kEntryFlag))) return vectorizeQueueEntry(svg);

    std::unique_ptr<SqlDbAccess> db = open_command_database(*words, error);
    if (!db) return report_failure(kGroup, error, kDbStatusRefused);
    VectorizeEntryProgram program(settings->worker, svg);
    return run_queue_worker(*db, *settings, program);
}
