#include "tools/scanctl/scan_arguments.h"

#include <map>

#include "scan/scanner_device.h"
#include "scan/scanner_list.h"
#include "workflow/config.h"

const char *const kScanUsage =
    "usage: scanctl scan [--conf FILE] [--scanner NAME] [--depth bw|grey|colour] [--dpi N]\n"
    "                    [--field 12|16] [--peg left|top|right|bottom]\n"
    "                    [--feed autofeed|autofeed-one|pegged|pegged-many|page|pancel]\n"
    "                    [--optical | --no-optical] [--flip] [--scaninfo-files]\n"
    "                    --path DIR --prefix P --list \"1:10 12 7b\"\n"
    "                    [--on-misfeed retry|stop] [--on-register-failure retry|skip|stop]\n"
    "  Scans a list of drawings as the station does, without a window. Each row of\n"
    "  the list is shown on standard error as it changes, then a summary. Settings\n"
    "  left out are the scanner's defaults; the feed mode sets optical registration\n"
    "  as the feed menu does, and --optical or --no-optical then override it.\n"
    "  The operator's answers come from the two --on- policies (default: stop).\n"
    "  With --job, --scene and --element the drawings of that element of the\n"
    "  production database are scanned into the element's folder, their cels are\n"
    "  marked and, when the element wants it, they go on the vectorize queue.\n"
    "  --drawings names them as --list does; --unscanned takes those the scene\n"
    "  exposes that were never scanned. The element's scan type gives the depth and\n"
    "  its field chart the field. The database is --db (a SQLite file or a\n"
    "  postgresql:// address), else $SCAN_DB, else the embedded default.\n"
    "  Exit status: 0 every drawing scanned, 1 usage error, 2 the list ended early\n"
    "  or was refused.\n";

namespace {

template <typename T>
std::optional<T> lookup(const std::map<QString, T> &table, const QString &word) {
    const auto it = table.find(word);
    if (it == table.end()) return std::nullopt;
    return it->second;
}

// What is wrong with the words of a scan into the database; empty when nothing.
QString check_database_words(const ScanArguments &a, bool listGiven, bool drawingsGiven, bool folderGiven) {
    if (a.job.isEmpty() || a.scene.isEmpty() || a.element.isEmpty())
        return QStringLiteral("--job, --scene and --element go together");
    if (drawingsGiven == a.unscanned) return QStringLiteral("give either --drawings or --unscanned");
    if (listGiven) return QStringLiteral("--list is for a folder; name the element's drawings with --drawings");
    if (folderGiven) return QStringLiteral("the element's folder holds its drawings: --path and --prefix do not apply");
    if (a.field) return QStringLiteral("the element's field chart gives the field: --field does not apply");
    return QString();
}

}  // namespace

std::optional<int> peg_side_of_word(const QString &word) {
    static const std::map<QString, int> pegs = {
        {"left", PEG_LEFT}, {"top", PEG_TOP}, {"right", PEG_RIGHT}, {"bottom", PEG_BOTTOM}};
    return lookup(pegs, word);
}

std::optional<ScanArguments> parse_scan_arguments(const QStringList &args, QString &error) {
    static const std::map<QString, int> depths = {
        {"bw", DEPTH_BW}, {"grey", DEPTH_GREY}, {"gray", DEPTH_GREY}, {"colour", DEPTH_COLOUR}, {"color", DEPTH_COLOUR}};
    static const std::map<QString, int> feeds = {
        {"autofeed", FEED_AUTOFEED}, {"autofeed-one", FEED_AUTOFEED_ONE}, {"pegged", FEED_PEGGED},
        {"pegged-many", FEED_PEGGED_MANY}, {"page", FEED_PAGE}, {"pancel", FEED_PANCEL}};
    static const std::map<QString, AutofeedAnswer> misfeeds = {{"retry", AutofeedAnswer::Retry},
                                                               {"stop", AutofeedAnswer::StopScanning}};
    static const std::map<QString, RegistrationAnswer> failures = {{"retry", RegistrationAnswer::Retry},
                                                                   {"skip", RegistrationAnswer::SkipDrawing},
                                                                   {"stop", RegistrationAnswer::StopScanning}};
    ScanArguments a;
    bool listGiven = false, drawingsGiven = false, pathGiven = false, prefixGiven = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &word = args[i];
        const auto value = [&]() -> std::optional<QString> {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(word);
                return std::nullopt;
            }
            return args[++i];
        };
        const auto bad = [&](const QString &v) {
            error = QStringLiteral("%1: '%2' is not a valid value").arg(word, v);
            return std::nullopt;
        };
        if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
            a.help = true;
        } else if (word == QLatin1String("--flip")) {
            a.flip = true;
        } else if (word == QLatin1String("--scaninfo-files")) {
            a.scaninfoFiles = true;
        } else if (word == QLatin1String("--unscanned")) {
            a.unscanned = true;
        } else if (word == QLatin1String("--optical") || word == QLatin1String("--no-optical")) {
            a.optical = word == QLatin1String("--optical");
        } else {
            const std::optional<QString> v = word.startsWith(QLatin1String("--")) ? value() : std::nullopt;
            if (!v) {
                if (error.isEmpty()) error = QStringLiteral("unknown argument '%1'").arg(word);
                return std::nullopt;
            }
            if (word == QLatin1String("--conf")) {
                a.conf = *v;
            } else if (word == QLatin1String("--scanner")) {
                a.scanner = *v;
            } else if (word == QLatin1String("--depth")) {
                if (!(a.depth = lookup(depths, *v))) return bad(*v);
            } else if (word == QLatin1String("--dpi")) {
                bool ok = false;
                a.dpi = v->toInt(&ok);
                if (!ok || resolution_step_index(*a.dpi) < 0) return bad(*v);
            } else if (word == QLatin1String("--field")) {
                if (*v != QLatin1String("12") && *v != QLatin1String("16")) return bad(*v);
                a.field = v->toDouble();
            } else if (word == QLatin1String("--peg")) {
                if (!(a.peg = peg_side_of_word(*v))) return bad(*v);
            } else if (word == QLatin1String("--feed")) {
                if (!(a.feed = lookup(feeds, *v))) return bad(*v);
            } else if (word == QLatin1String("--path")) {
                a.path = *v;
                pathGiven = true;
            } else if (word == QLatin1String("--prefix")) {
                a.prefix = *v;
                prefixGiven = true;
            } else if (word == QLatin1String("--list")) {
                a.list = *v;
                listGiven = true;
            } else if (word == QLatin1String("--db")) {
                a.db = *v;
            } else if (word == QLatin1String("--job")) {
                a.job = *v;
            } else if (word == QLatin1String("--scene")) {
                a.scene = *v;
            } else if (word == QLatin1String("--element")) {
                a.element = *v;
            } else if (word == QLatin1String("--drawings")) {
                a.drawings = *v;
                drawingsGiven = true;
            } else if (word == QLatin1String("--on-misfeed")) {
                const auto answer = lookup(misfeeds, *v);
                if (!answer) return bad(*v);
                a.onMisfeed = *answer;
            } else if (word == QLatin1String("--on-register-failure")) {
                const auto answer = lookup(failures, *v);
                if (!answer) return bad(*v);
                a.onRegisterFailure = *answer;
            } else {
                error = QStringLiteral("unknown argument '%1'").arg(word);
                return std::nullopt;
            }
        }
    }
    if (a.help) return a;
    if (!a.job.isEmpty() || !a.scene.isEmpty() || !a.element.isEmpty()) {
        error = check_database_words(a, listGiven, drawingsGiven, pathGiven || prefixGiven);
    } else if (drawingsGiven || a.unscanned || !a.db.isEmpty()) {
        error = QStringLiteral("--drawings, --unscanned and --db need --job, --scene and --element");
    } else if (!listGiven) {
        error = QStringLiteral("--list is required");
    } else if (!pathGiven || !prefixGiven) {
        // The files are named DIR/P-<drawing>: neither part is guessed.
        error = QStringLiteral("--path and --prefix are required");
    }
    if (!error.isEmpty()) return std::nullopt;
    return a;
}
