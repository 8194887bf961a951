// scanctl scan: a session without a window. The settings are chosen as the
// operator would choose them in the menus, the list is built as the manual
// list dialog builds it (or, for an element of the production database, as
// the drawing selector and the binding build it), and Scan is pressed until
// the list is done.
#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <cstdio>
#include <functional>

#include "scan/scanner_list.h"
#include "suite/base/osw_util.h"
#include "suite/base/tumessage.h"
#include "suite/db/drawing_selection_data.h"
#include "suite/db/sql_db_access.h"
#include "tools/scanctl/command.h"
#include "tools/queue_worker/open_database.h"
#include "tools/scanctl/scan_arguments.h"
#include "workflow/config.h"
#include "workflow/dbinfo.h"
#include "workflow/drawing_list.h"
#include "workflow/manual_list_syntax.h"
#include "workflow/scan_procs.h"
#include "workflow/scripted_window.h"

namespace {

void say(const QString &text) {
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    std::fflush(stderr);
}

// The scripted window, telling on standard error what it was asked and how
// the policy answered. Nobody is at the station to load the feeder or to
// straighten a sheet, so a retry policy gives up after a few tries on a row.
class CommandLineWindow : public ScriptedScanWindow {
public:
    static constexpr int kMaxTries = 5;

    AutofeedAnswer askAutofeedError() override {
        AutofeedAnswer a = ScriptedScanWindow::askAutofeedError();
        if (a == AutofeedAnswer::Retry && !tryAgain()) a = AutofeedAnswer::StopScanning;
        say(QStringLiteral("Autofeed Error: Drawing misfed or not found. -> %1")
                .arg(a == AutofeedAnswer::Retry ? "Retry" : "Stop Scanning"));
        return a;
    }
    RegistrationAnswer askRegistrationFailure() override {
        RegistrationAnswer a = ScriptedScanWindow::askRegistrationFailure();
        if (a == RegistrationAnswer::Retry && !tryAgain()) a = RegistrationAnswer::StopScanning;
        const char *word = a == RegistrationAnswer::Retry         ? "Retry"
                           : a == RegistrationAnswer::SkipDrawing ? "Skip Drawing"
                                                                  : "Stop Scanning";
        say(QStringLiteral("Optical Registration Failed: Unable to optically register this drawing. -> %1").arg(word));
        return a;
    }

private:
    bool tryAgain() {
        const int row = list.currentRow();
        if (row != row_) {
            row_ = row;
            tries_ = 0;
        }
        if (++tries_ <= kMaxTries) return true;
        say(QStringLiteral("Giving up on this drawing after %1 tries.").arg(kMaxTries));
        return false;
    }
    int row_ = -1;
    int tries_ = 0;
};

int usage_error(const QString &text) {
    std::fprintf(stderr, "scanctl scan: %s\n\n%s", text.toLocal8Bit().constData(), kScanUsage);
    return 1;
}

// The words were right, but this station can't do what they ask.
int refused(const QString &text) {
    say(QStringLiteral("scanctl scan: %1").arg(text));
    return 2;
}

// The scanner the words name, as the scanner menu would select it.
bool choose_scanner(ScanConfig *config, const QString &name, QString &error) {
    if (name.isEmpty()) return true;  // the session selected the first already
    QString wanted = name;
    wanted.replace(QLatin1Char(' '), QLatin1Char('_')).replace(QLatin1Char('\t'), QLatin1Char('_'));
    int32_t index = -1;
    find_by_name_of_ScannerList(scanner_list_of_ScanConfig(config), wanted, &index);
    if (index < 0) {
        error = QStringLiteral("no scanner named '%1' on this station").arg(name);
        return false;
    }
    select_scanner_of_ScanConfig(config, index);
    return true;
}

// Depth, resolution, field, peg side and feed, each checked against what the
// scanner offers, as the menus would only offer it.
bool apply_settings(ScanConfig *config, const ScanArguments &a, QString &error) {
    ScanDeviceInfo *dev = device_of_ScannerEntry(scanner_of_ScanConfig(config));
    const QString scanner = scanner_name_of_ScanConfig(config);
    if (a.depth) {
        if (!supported_of_ScanDeviceInfo(dev, *a.depth)) {
            error = QStringLiteral("scanner '%1' does not scan at that depth").arg(scanner);
            return false;
        }
        set_depth_of_ScanConfig(config, *a.depth);
        // Selected again so that the parameters and the feed follow the depth.
        int32_t index = -1;
        find_by_name_of_ScannerList(scanner_list_of_ScanConfig(config), name_of_ScannerEntry(scanner_of_ScanConfig(config)),
                                    &index);
        select_scanner_of_ScanConfig(config, index);
    }
    if (a.dpi) {
        if (!resolution_step_of_ScanDeviceInfo(dev, resolution_step_index(*a.dpi))) {
            error = QStringLiteral("scanner '%1' does not offer %2 dpi").arg(scanner, QString::number(*a.dpi));
            return false;
        }
        set_dpi_of_ScanConfig(config, static_cast<uint32_t>(*a.dpi));
    }
    if (a.field) set_field_of_ScanConfig(config, *a.field);
    if (a.peg) set_peg_side_of_ScanConfig(config, *a.peg);
    if (a.feed) {
        if (*a.feed == FEED_PAGE) {
            error = QStringLiteral("the page feed is for TWAIN sources; '%1' is not one").arg(scanner);
            return false;
        }
        const bool autofeed = *a.feed == FEED_AUTOFEED || *a.feed == FEED_AUTOFEED_ONE;
        if (autofeed && !feeder_of_ScanDeviceInfo(dev, depth_of_ScanConfig(config))) {
            error = QStringLiteral("scanner '%1' has no feeder at this depth").arg(scanner);
            return false;
        }
        set_feed_of_ScanConfig(config, *a.feed);
    }
    if (a.optical) set_optical_of_ScanConfig(config, *a.optical);
    set_flip_of_ScanConfig(config, a.flip);
    set_create_scaninfo_of_ScanConfig(config, a.scaninfoFiles);
    refresh_of_ScanConfig(config);
    return true;
}

// The names as the manual list dialog takes them: each once, in order.
bool list_names(const QString &text, QStringList &names, QString &error) {
    const ManualListParse parsed = parse_manual_list(text);
    if (!parsed.ok) {
        error = parsed.error;
        return false;
    }
    for (const QString &name : parsed.names)
        if (!name.isEmpty() && !names.contains(name)) names << name;
    if (names.isEmpty()) error = QStringLiteral("the list holds no drawing");
    return !names.isEmpty();
}

// Presses Scan until the list is done: once for the modes that run to the end
// of the list, once per drawing for the others. A pan cel pass is saved as the
// Save button would.
void press_scan_until_done(ScanConfig *config) {
    DrawingList *list = drawing_list_of_ScanConfig(config);
    const int32_t rows = count_of_DrawingList(list);
    for (;;) {
        const int32_t row = current_row_of_DrawingList(list);
        set_trial_of_ScanConfig(config, false);
        ScanDrawingList(config);
        if (pancel_of_ScanConfig(config) && can_save_of_ScanConfig(config) && !finish_of_ScanConfig(config))
            SaveScan(config);
        if (!one_drawing_of_ScanConfig(config) || finish_of_ScanConfig(config)) return;
        if (state_of_DrawingList(list, row) == ROW_NONE) return;  // stopped on this row
        if (row + 1 >= rows) return;
    }
}

// The rows on which the scan loop reported a failure (a save that failed, a
// device that gave up): they were reached, even though the loop leaves their
// text as it was.
class FailedRows {
public:
    explicit FailedRows(const ScriptedListView &list) {
        id_ = TUMessage::instance()->attachView([this, &list](char type, const QString &, const QString &) {
            if (type == 'E' && list.currentRow() >= 0) rows_.insert(list.currentRow());
        });
    }
    ~FailedRows() { TUMessage::instance()->detachView(id_); }
    FailedRows(const FailedRows &) = delete;
    FailedRows &operator=(const FailedRows &) = delete;
    bool contains(int row) const { return rows_.contains(row); }

private:
    int id_ = 0;
    QSet<int> rows_;
};

int summary(ScanConfig *config, const QString &folder, const FailedRows &failed) {
    const DrawingList *list = drawing_list_of_ScanConfig(config);
    int scanned = 0, notScanned = 0;
    for (int32_t row = 0; row < count_of_DrawingList(list); ++row) {
        const int32_t state = state_of_DrawingList(list, row);
        scanned += state == ROW_SCANNED;
        notScanned += state == ROW_NOT_SCANNED || (state != ROW_SCANNED && failed.contains(row));
    }
    const int total = count_of_DrawingList(list);
    say(QStringLiteral("Scanned %1 of %2 drawings into %3 (%4 not scanned, %5 not reached).")
            .arg(QString::number(scanned), QString::number(total),
                 QDir::toNativeSeparators(QFileInfo(folder).absoluteFilePath()), QString::number(notScanned),
                 QString::number(total - scanned - notScanned)));
    return scanned == total ? 0 : 2;
}

// Builds the session's list once scanner and settings are chosen; false
// with `error` when there is nothing to scan.
using ListBuilder = std::function<bool(ScanConfig *config, QString &error)>;

// One session on the command line's window: the scanner, the list, the
// settings, then Scan until the list is done. The exit status.
int run_session(const ScanArguments &a, CommandLineWindow &window, const ListBuilder &build) {
    window.misfeedAnswer = a.onMisfeed;
    window.registrationAnswer = a.onRegisterFailure;
    window.list.onRowText = [](int, const QString &text) { say(text); };

    const QString conf =
        a.conf.isEmpty() ? oswRemapPath::RemapPath2(oswUtil::LMVEtc() + QStringLiteral("/Scan.conf")) : a.conf;
    ScanConfig *config = ScanConfigCreate(conf, &window);
    if (!config) return refused(QStringLiteral("no session on %1").arg(conf));
    struct Destroy {
        ScanConfig *config;
        ~Destroy() { ScanConfigDestroy(config); }
    } destroy{config};
    if (scanner_count_of_ScanConfig(config) == 0)
        return refused(QStringLiteral("%1 gives this station no scanner").arg(conf));
    QString error;
    if (!choose_scanner(config, a.scanner, error) || !build(config, error) || !apply_settings(config, a, error))
        return refused(error);

    const bool intoElement = database_of_ScanConfig(config);
    if (intoElement && !binding_fits_depth(binding_of_ScanConfig(config), depth_of_ScanConfig(config)))
        return refused(QStringLiteral("no scanner of this station scans the drawings of element '%1'").arg(a.element));
    const QString folder = intoElement ? path_of_DatabaseBinding(binding_of_ScanConfig(config)) : a.path;
    say(QStringLiteral("Scanning %1 drawings with %2: %3")
            .arg(QString::number(count_of_DrawingList(drawing_list_of_ScanConfig(config))),
                 scanner_name_of_ScanConfig(config), summary_of_ScanConfig(config)));
    const FailedRows failed(window.list);
    press_scan_until_done(config);
    return summary(config, folder, failed);
}

// Job, scene and element as the database selector chooses them, and the
// drawings to scan: those named, or the ones its scene exposes that were
// never scanned, in the selector's order. False, with `error`, for a name
// the database does not know, nothing to scan, or a database that could
// not be read.
bool choose_element_drawings(SqlDbAccess &db, const ScanArguments &a, QStringList &names, QString &error) {
    ProductionPath p;
    if (find_production(db, {a.job, a.scene, a.element}, p, error) != Lookup::Found) return false;
    if (db.selectJob(a.job) != 0 || db.selectScene(a.scene) != 0 || db.selectElement(a.element) != 0) {
        error = read_failure(db, QStringLiteral("element '%1'").arg(a.element));
        return false;
    }
    if (!a.unscanned) return list_names(a.drawings, names, error);
    QString why;
    const auto rows = drawingSelectorRows(db, db.openScene(), db.selectedElementId(), &why);
    if (!rows) {
        error = read_failure(db, QStringLiteral("the drawings of element '%1'").arg(a.element), why);
        return false;
    }
    for (const DrawingSelectorRow &row : *rows)
        if (!row.scanned) names << row.name;
    if (names.isEmpty()) error = QStringLiteral("element '%1' has no unscanned drawings").arg(a.element);
    return !names.isEmpty();
}

// The element's drawings into its folder, with their cels marked and their
// queue entries added.
int scan_into_element(const ScanArguments &a) {
    SqlDbAccess db(a.db);
    db.dba_Initialize2dSystem(QStringLiteral("Scan"));
    if (db.dba_Open2dDatabaseSession() == -1)
        return refused(QStringLiteral("cannot open the production database %1: %2").arg(db.description(), db.lastError()));
    QStringList names;
    QString error;
    if (!choose_element_drawings(db, a, names, error)) return refused(error);
    CommandLineWindow window;
    window.databaseAccess = &db;
    window.manualList = false;
    return run_session(a, window, [&](ScanConfig *config, QString &error) {
        const ScannerEntry *chosen = scanner_of_ScanConfig(config);
        if (!bind_element_of_ScanConfig(config, db.selectedElementId(), names)) {
            error = QStringLiteral("the folder of element '%1' was not found").arg(a.element);
            return false;
        }
        // Database mode keeps only the scanners that can scan the element.
        if (!a.scanner.isEmpty() && scanner_of_ScanConfig(config) != chosen) {
            error = QStringLiteral("scanner '%1' cannot scan the drawings of element '%2'").arg(a.scanner, a.element);
            return false;
        }
        if (a.depth && !binding_fits_depth(binding_of_ScanConfig(config), *a.depth)) {
            error = QStringLiteral("element '%1' is not scanned at that depth").arg(a.element);
            return false;
        }
        return true;
    });
}

}  // namespace

int run_scan_command(const QStringList &args) {
    QString error;
    const std::optional<ScanArguments> a = parse_scan_arguments(args, error);
    if (!a) return usage_error(error);
    if (a->help) {
        std::fputs(kScanUsage, stdout);
        return 0;
    }
    // A list that does not read is a usage error, found before anything is opened.
    QStringList names;
    if (!a->unscanned && !list_names(a->intoDatabase() ? a->drawings : a->list, names, error))
        return usage_error(error);
    if (a->intoDatabase()) return scan_into_element(*a);

    if (!QFileInfo(a->path).isDir()) return refused(QStringLiteral("Path \"%1\" does not exist.").arg(a->path));
    CommandLineWindow window;
    window.manualPath = a->path;
    window.manualPrefix = a->prefix;
    return run_session(*a, window, [&](ScanConfig *config, QString &) {
        build_manual_list(config, names);
        return true;
    });
}
