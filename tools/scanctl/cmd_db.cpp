// scanctl db: makes and shows the production in the database: jobs, their
// scenes, the scenes' elements and the drawings each element exposes.
#include <QDir>
#include <QHash>
#include <QTextStream>

#include <array>
#include <cstdio>
#include <optional>

#include "suite/db/dba_path.h"
#include "tools/scanctl/command.h"
#include "tools/scanctl/db_subcommand.h"
#include "tools/queue_worker/open_database.h"
#include "workflow/manual_list_syntax.h"

namespace {

constexpr const char *kUsage =
    "usage: scanctl db init\n"
    "       scanctl db create-job JOB\n"
    "       scanctl db create-scene JOB SCENE --path DIR\n"
    "       scanctl db create-element JOB SCENE ELEMENT --scan-type colour|grey|bw\n"
    "                 --vectorize none|vectorize|pix2vec --field 12|16 [--pf N] [--pixel-shape 0|1|3]\n"
    "       scanctl db expose JOB SCENE ELEMENT LIST\n"
    "       scanctl db show [JOB [SCENE [ELEMENT]]]\n"
    "  Every subcommand also takes --db URL (a SQLite file or a postgresql:// address;\n"
    "  default $SCAN_DB, else the station's embedded database) and --env NAME.\n"
    "  A scene's folder (DIR) and an element's folder (the element's name inside the\n"
    "  scene's folder) are made when missing. LIST is written as in the manual list:\n"
    "  \"1:10 12 7b\". Exit status: 0 done, 1 usage error, 2 refused by the database\n"
    "  (unknown or duplicate names, a database that can't be opened or read).\n";

constexpr const char *kGroup = "db";

int refused(const QString &text) { return report_failure(kGroup, text, kDbStatusRefused); }
int bad_value(const QString &text) { return report_failure(kGroup, text, kDbStatusUsage); }

// The word of a value, or nothing when `word` is none of them.
std::optional<int> value_of_word(const QString &word, const QStringList &words) {
    const qsizetype i = words.indexOf(word);
    return i < 0 ? std::nullopt : std::optional<int>(int(i));
}

// Indexed by value: LMV_element_scan_type, LMV_vectorize_kind.
const QStringList kScanTypeWords{QStringLiteral("colour"), QStringLiteral("grey"), QStringLiteral("bw")};
const QStringList kVectorizeWords{QStringLiteral("none"), QStringLiteral("vectorize"), QStringLiteral("pix2vec")};

QString scan_type_word(int type) {
    return type >= 0 && type < kScanTypeWords.size() ? kScanTypeWords[type] : QStringLiteral("none");
}
QString vectorize_word(int kind) {
    return kVectorizeWords[kind == LMV_VECTORIZE_NONE ? 0 : kind == LMV_VECTORIZE ? 1 : 2];
}

// A name that makes a folder of its own.
bool fit_for_folder(const QString &name) {
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/'));
}

bool make_folder(const QString &path, QString &error) {
    if (QDir().mkpath(path)) return true;
    error = QStringLiteral("can't make the folder %1").arg(path);
    return false;
}

int init(SqlDbAccess &db, const CommandWords &) {
    const int version = db.schemaVersion();
    if (version < 0) return refused(read_failure(db, QStringLiteral("the schema version")));
    QTextStream(stdout) << "database: " << db.description() << "\n"
                        << "schema version: " << version << "\n"
                        << "environment: " << db.envName() << "\n";
    return kDbStatusOk;
}

// Refuses a name that a lookup found, or that could not be looked up.
std::optional<int> refuse_existing(SqlDbAccess &db, bool found, const QString &what, const QString &where) {
    if (found) return refused(QStringLiteral("%1 already exists%2").arg(what, where));
    if (!db.lastError().isEmpty()) return refused(read_failure(db, what));
    return std::nullopt;
}

int create_job(SqlDbAccess &db, const CommandWords &w) {
    const QString &name = w.positional[0];
    if (name.isEmpty()) return bad_value(QStringLiteral("a job needs a name"));
    if (const auto r = refuse_existing(db, db.findJob(name).has_value(), QStringLiteral("job '%1'").arg(name), {}))
        return *r;
    const std::optional<dba_job_struct> job = db.createJob(name);
    if (!job) return refused(QStringLiteral("can't make job '%1': %2").arg(name, db.lastError()));
    QTextStream(stdout) << "job " << job->name << " made in environment " << job->environment << "\n";
    return kDbStatusOk;
}

int create_scene(SqlDbAccess &db, const CommandWords &w) {
    if (!w.values.contains(QStringLiteral("--path"))) return bad_value(QStringLiteral("create-scene needs --path DIR"));
    const QString &name = w.positional[1];
    if (!fit_for_folder(name)) return bad_value(QStringLiteral("'%1' is not a scene name").arg(name));
    ProductionPath p;
    QString error;
    if (find_production(db, w.positional.mid(0, 1), p, error) != Lookup::Found) return refused(error);
    if (const auto r = refuse_existing(db, db.findScene(p.job->id, name).has_value(),
                                       QStringLiteral("scene '%1'").arg(name), QStringLiteral(" in job '%1'").arg(p.job->name)))
        return *r;
    const QString folder = QDir(w.value(QStringLiteral("--path"))).absolutePath();
    if (!make_folder(folder, error)) return refused(error);
    const std::optional<dba_scene_struct> scene = db.createScene(p.job->id, name, folder);
    if (!scene) return refused(QStringLiteral("can't make scene '%1': %2").arg(name, db.lastError()));
    QTextStream(stdout) << "scene " << scene->name << " of job " << p.job->name << " made in " << folder << "\n";
    return kDbStatusOk;
}

// The element's settings from its options; nothing, with `error`, on a bad value.
std::optional<LMV_element_data> element_settings(const CommandWords &w, int pixelShape, QString &error) {
    LMV_element_data e;
    e.name = w.positional[2];
    e.path = e.name;
    const auto required = [&](const char *option, const QStringList &words) -> std::optional<int> {
        const QString o = QLatin1String(option);
        if (!w.values.contains(o)) {
            error = QStringLiteral("create-element needs %1").arg(o);
            return std::nullopt;
        }
        const std::optional<int> v = value_of_word(w.value(o), words);
        if (!v) error = QStringLiteral("%1: '%2' is not one of %3").arg(o, w.value(o), words.join(QLatin1Char('|')));
        return v;
    };
    const std::optional<int> scanType = required("--scan-type", kScanTypeWords);
    if (!scanType) return std::nullopt;
    const std::optional<int> vectorize = required("--vectorize", kVectorizeWords);
    if (!vectorize) return std::nullopt;
    const std::optional<int> field = required("--field", {QStringLiteral("12"), QStringLiteral("16")});
    if (!field) return std::nullopt;
    e.scanType = *scanType;
    e.needsVectorization = *vectorize;
    e.fieldChart = *field == 0 ? 12 : 16;

    const std::optional<int> pf = int_in_range(w.value(QStringLiteral("--pf"), QStringLiteral("24")), 0, 255);
    if (!pf) {
        error = QStringLiteral("--pf: '%1' is not a file kind (0 to 255)").arg(w.value(QStringLiteral("--pf")));
        return std::nullopt;
    }
    e.pf = *pf;
    const QString shape = w.value(QStringLiteral("--pixel-shape"), QString::number(pixelShape));
    const std::optional<int> s = int_in_range(shape, 0, 3);
    if (!s || *s == 2) {
        error = QStringLiteral("--pixel-shape: '%1' is not 0 (narrow), 1 (square) or 3 (wide)").arg(shape);
        return std::nullopt;
    }
    e.pixelShape = *s;
    if (!fit_for_folder(e.name)) {
        error = QStringLiteral("'%1' is not an element name").arg(e.name);
        return std::nullopt;
    }
    return e;
}

int create_element(SqlDbAccess &db, const CommandWords &w) {
    ProductionPath p;
    QString error;
    if (find_production(db, w.positional.mid(0, 2), p, error) != Lookup::Found) return refused(error);
    const std::optional<LMV_element_data> settings = element_settings(w, p.job->pixelShape, error);
    if (!settings) return bad_value(error);
    if (const auto r = refuse_existing(db, db.findElement(p.scene->id, settings->name).has_value(),
                                       QStringLiteral("element '%1'").arg(settings->name),
                                       QStringLiteral(" in scene '%1'").arg(p.scene->name)))
        return *r;
    const QString folder = element_folder(*p.scene, *settings);
    if (!make_folder(folder, error)) return refused(error);
    const std::optional<LMV_element_data> e = db.createElement(p.scene->id, *settings);
    if (!e) return refused(QStringLiteral("can't make element '%1': %2").arg(settings->name, db.lastError()));
    QTextStream(stdout) << "element " << e->name << " of scene " << p.scene->name << " made in " << folder << "\n";
    return kDbStatusOk;
}

int expose(SqlDbAccess &db, const CommandWords &w) {
    // The list may come as one word or as several.
    const ManualListParse list = parse_manual_list(w.positional.mid(3).join(QLatin1Char(' ')));
    if (!list.ok) return bad_value(list.error);
    QStringList names;
    for (const QString &name : list.names)
        if (!name.isEmpty()) names << name;
    if (names.isEmpty()) return bad_value(QStringLiteral("the list names no drawing"));
    ProductionPath p;
    QString error;
    if (find_production(db, w.positional.mid(0, 3), p, error) != Lookup::Found) return refused(error);
    const int added = db.exposeDrawings(p.element->id, names);
    if (added < 0)
        return refused(QStringLiteral("can't expose the drawings in %1: %2").arg(db.description(), db.lastError()));
    const qsizetype total = db.dba_ExposedDrawings(&*p.scene, p.element->id).size();
    if (!db.lastError().isEmpty())
        return refused(read_failure(db, QStringLiteral("the drawings of element %1").arg(p.element->name)));
    QTextStream(stdout) << added << " drawings newly exposed; element " << p.element->name << " exposes " << total
                        << "\n";
    return kDbStatusOk;
}

QString element_summary(const LMV_element_data &e) {
    return QStringLiteral("%1, %2, field %3, pf %4, pixel shape %5")
        .arg(scan_type_word(e.scanType), vectorize_word(e.needsVectorization), QString::number(e.fieldChart),
             QString::number(e.pf), QString::number(e.pixelShape));
}

// Each show_ writes its part to `out`; false, with `error`, when a read failed.
bool show_scene(SqlDbAccess &db, const dba_scene_struct &scene, QTextStream &out, QString &error) {
    const auto elements = checked(db, db.elements(scene.id), QStringLiteral("the elements of scene %1").arg(scene.name), error);
    if (!elements) return false;
    out << "  scene " << scene.name << "  " << DBA_Path::getScenePath(scene.path) << "\n";
    for (const LMV_element_data &e : *elements) out << "    element " << e.name << "  " << element_summary(e) << "\n";
    return true;
}

bool show_job(SqlDbAccess &db, const dba_job_struct &job, QTextStream &out, QString &error) {
    const auto scenes = checked(db, db.scenes(job.id), QStringLiteral("the scenes of job %1").arg(job.name), error);
    if (!scenes) return false;
    out << "job " << job.name << "\n";
    for (const dba_scene_struct &scene : *scenes)
        if (!show_scene(db, scene, out, error)) return false;
    return true;
}

// The element, then each drawing it exposes with the number of scans of its cel.
bool show_element(SqlDbAccess &db, const ProductionPath &p, QTextStream &out, QString &error) {
    const LMV_element_data &e = *p.element;
    const auto cels = checked(db, db.cels(e.id), QStringLiteral("the cels of element %1").arg(e.name), error);
    if (!cels) return false;
    QHash<QString, int> scans;
    for (const dba_cel_struct &cel : *cels) scans.insert(cel.drawingName(), cel.scanCount);
    const auto drawings = checked(db, db.dba_ExposedDrawings(&*p.scene, e.id),
                                  QStringLiteral("the drawings of element %1").arg(e.name), error);
    if (!drawings) return false;
    qsizetype scanned = 0;
    for (const QString &d : *drawings) scanned += scans.value(d) > 0;
    out << "element " << e.name << " of job " << p.job->name << ", scene " << p.scene->name << "\n"
        << "  " << element_summary(e) << "\n"
        << "  folder: " << element_folder(*p.scene, e) << "\n"
        << "  drawings: " << drawings->size() << " exposed, " << scanned << " scanned\n";
    for (const QString &d : *drawings) out << "    " << d.leftJustified(10) << " " << scans.value(d) << " scans\n";
    return true;
}

int show(SqlDbAccess &db, const CommandWords &w) {
    ProductionPath p;
    QString error;
    if (find_production(db, w.positional, p, error) != Lookup::Found) return refused(error);
    // Printed once all is read: a failure part way prints nothing but the reason.
    QString text;
    QTextStream out(&text);
    bool ok = true;
    if (p.element) {
        ok = show_element(db, p, out, error);
    } else if (p.scene) {
        out << "job " << p.job->name << "\n";
        ok = show_scene(db, *p.scene, out, error);
    } else if (p.job) {
        ok = show_job(db, *p.job, out, error);
    } else {
        out << "environment " << db.envName() << "\n";
        const auto jobs = checked(db, db.jobs(), QStringLiteral("the jobs of environment %1").arg(db.envName()), error);
        ok = jobs.has_value();
        for (const dba_job_struct &job : jobs.value_or(std::vector<dba_job_struct>()))
            if (ok) ok = show_job(db, job, out, error);
    }
    if (!ok) return refused(error);
    out.flush();
    std::fputs(text.toLocal8Bit().constData(), stdout);
    return kDbStatusOk;
}

const QStringList kNoOptions;
const QStringList kElementOptions{QStringLiteral("--scan-type"), QStringLiteral("--vectorize"),
                                  QStringLiteral("--field"), QStringLiteral("--pf"), QStringLiteral("--pixel-shape")};

}  // namespace

int run_db_command(const QStringList &args) {
    static const std::array<DbSubcommand, 6> subcommands = {{
        {"init", 0, 0, kNoOptions, kNoOptions, init},
        {"create-job", 1, 1, kNoOptions, kNoOptions, create_job},
        {"create-scene", 2, 2, {QStringLiteral("--path")}, kNoOptions, create_scene},
        {"create-element", 3, 3, kElementOptions, kNoOptions, create_element},
        {"expose", 4, -1, kNoOptions, kNoOptions, expose},
        {"show", 0, 3, kNoOptions, kNoOptions, show},
    }};
    return run_db_subcommand(kGroup, kUsage, subcommands, args);
}
