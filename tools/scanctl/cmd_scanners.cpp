// scanctl scanners: reads a Scan.conf as the station does and shows, for each
// scanner of a host, what the station will offer the operator.
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <cstdio>
#include <optional>
#include <type_traits>

#include "scan/scanner_list.h"
#include "suite/base/osw_util.h"
#include "suite/base/tumessage.h"
#include "tools/scanctl/command.h"

namespace {

constexpr const char *kUsage =
    "usage: scanctl scanners [--host NAME] [--all-hosts] [FILE]\n"
    "  Reads FILE (default: the station's Scan.conf) as the station does and shows\n"
    "  each scanner of this machine. The reader's messages go to standard error.\n"
    "  --host NAME   read the blocks of another machine\n"
    "  --all-hosts   read the blocks of every host of the file, one after the other\n"
    "  Exit status: 0 done, 1 usage error, 2 the file could not be read.\n";

// The reader's messages, worded as the operator would see them, on standard error.
class StderrMessages {
public:
    StderrMessages() {
        TUMessage *m = TUMessage::instance();
        m->setSilent(true);
        id_ = m->attachView([](char type, const QString &text, const QString &) {
            if (type != 'E' && type != 'W' && type != 'F' && type != 'I') return;
            QString t = text;
            if (t.endsWith(QLatin1Char('\n'))) t.chop(1);
            std::fprintf(stderr, "%s\n", t.toLocal8Bit().constData());
        });
    }
    ~StderrMessages() {
        TUMessage::instance()->detachView(id_);
        TUMessage::instance()->setSilent(false);
    }

private:
    int id_ = 0;
};

const char *yes_no(bool b) { return b ? "yes" : "no"; }

QString peg_side_name(int32_t side) {
    switch (side) {
    case PEG_LEFT: return QStringLiteral("Left");
    case PEG_TOP: return QStringLiteral("Top");
    case PEG_RIGHT: return QStringLiteral("Right");
    case PEG_BOTTOM: return QStringLiteral("Bottom");
    default: return QStringLiteral("none");
    }
}

QString depth_name(int32_t depth) {
    switch (depth) {
    case DEPTH_BW: return QStringLiteral("black and white");
    case DEPTH_GREY: return QStringLiteral("grey");
    case DEPTH_COLOUR: return QStringLiteral("colour");
    default: return QStringLiteral("unknown (%1)").arg(depth);
    }
}

void print_parameters(QTextStream &out, const Standard_parameters &p) {
    bool any = false;
    if (p.has_threshold) {
        out << "    threshold " << p.threshold_min << ".." << p.threshold_max << ", default " << p.threshold_default
            << "\n";
        any = true;
    }
    if (p.has_black_point) {
        out << "    black point " << p.black_point_min << ".." << p.black_point_max << ", default "
            << p.black_point_default << "\n";
        any = true;
    }
    if (p.has_white_point) {
        out << "    white point " << p.white_point_min << ".." << p.white_point_max << ", default "
            << p.white_point_default << "\n";
        any = true;
    }
    if (p.has_gamma) {
        out << "    gamma " << p.gamma_min << ".." << p.gamma_max << ", default " << p.gamma_default << "\n";
        any = true;
    }
    if (p.has_speed) {
        out << "    speed " << p.speed_min << ".." << p.speed_max << " " << p.speed_label << ", default "
            << p.speed_default << "; presets:";
        if (p.has_normal) out << " normal " << p.normal;
        if (p.has_fast) out << " fast " << p.fast;
        if (p.has_custom) out << " custom";
        out << "\n";
        any = true;
    }
    if (p.has_rgbDrop) {
        out << "    drop colours:";
        for (const QString &c : p.rgbDrop_list) out << " [" << c << "]";
        out << "\n";
        any = true;
    }
    if (!any) out << "    (nothing to adjust)\n";
}

// What a slot of the table holds, compared with the record's generic and
// do-nothing operations.
template <typename Op>
const char *kind(Op op, Op generic) {
    if (!op) return "none";
    if (generic && op == generic) return "generic";
    if constexpr (std::is_same_v<Op, ScanDeviceOp>) {
        if (op == nop_of_ScanDeviceInfo) return "nop";
    } else if constexpr (std::is_same_v<Op, ScanDrawingOp>) {
        if (op == nop_drawing_of_ScanDeviceInfo) return "nop";
    } else {
        if (op == may_stop_true_of_ScanDeviceInfo) return "generic";
    }
    return "own";
}

void print_operations(QTextStream &out, const ScannerOps &ops) {
    const ScanDeviceOp none = nullptr;
    const ScanDrawingOp noneDrawing = nullptr;
    out << "  operations:\n";
    auto line = [&](const char *name, const char *k) { out << "    " << qSetFieldWidth(11) << Qt::left << name
                                                           << qSetFieldWidth(0) << k << "\n"; };
    line("reserve", kind(ops.reserve, &generic_reserve_of_ScanDeviceInfo));
    line("ready", kind(ops.ready, &generic_ready_of_ScanDeviceInfo));
    line("inquire", kind(ops.inquire, &generic_inquire_of_ScanDeviceInfo));
    line("setup1", kind(ops.setup1, noneDrawing));
    line("set_window", kind(ops.set_window, noneDrawing));
    line("setup2", kind(ops.setup2, noneDrawing));
    line("autoload", kind(ops.autoload, none));
    line("unload", kind(ops.unload, none));
    line("eject", kind(ops.eject, none));
    line("initiate", kind(ops.initiate, none));
    line("read", kind(ops.read, noneDrawing));
    line("release", kind(ops.release, &generic_release_of_ScanDeviceInfo));
    line("spare", kind(ops.spare, none));
    line("may_stop", kind(ops.may_stop, ScanMayStopOp{nullptr}));
    line("poll", kind(ops.poll, none));
    line("abort", kind(ops.abort, none));
}

void print_entry(QTextStream &out, ScannerEntry *e) {
    out << information_of_ScannerEntry(e) << "\n";
    const ScanDeviceInfo *dev = device_of_ScannerEntry(e);
    out << "  depths:\n";
    for (int32_t depth : {DEPTH_BW, DEPTH_GREY, DEPTH_COLOUR})
        out << "    " << qSetFieldWidth(16) << Qt::left << depth_name(depth) << qSetFieldWidth(0)
            << "supported " << yes_no(supported_of_ScanDeviceInfo(dev, depth)) << ", feeder "
            << yes_no(feeder_of_ScanDeviceInfo(dev, depth)) << "\n";
    out << "  default depth: " << depth_name(dev->default_depth) << "\n";
    out << "  resolutions:";
    for (std::size_t i = 0; i < kResolutionSteps.size(); ++i)
        if (dev->resolution_steps[i]) out << " " << kResolutionSteps[i];
    out << " (lowest " << dev->min_resolution << ", highest " << dev->max_resolution << ", optical limit "
        << dev->optical_dpi_limit << ")\n";
    out << "  default resolution: " << defaultResolution_of_ScannerEntry(e) << "\n";
    out << "  default peg side: " << peg_side_name(defaultPegSide_of_ScannerEntry(e)) << "\n";
    const Standard_parameters *sets[] = {&dev->bw_parameters, &dev->grey_parameters, &dev->colour_parameters};
    for (int32_t depth : {DEPTH_BW, DEPTH_GREY, DEPTH_COLOUR}) {
        out << "  parameters, " << depth_name(depth) << ":\n";
        print_parameters(out, *sets[depth]);
    }
    print_operations(out, dev->ops);
}

void print_list(QTextStream &out, const ScannerList *list) {
    const int32_t n = count_of_ScannerList(list);
    out << n << (n == 1 ? " scanner" : " scanners") << " for host '" << host_of_ScannerList(list) << "'\n";
    for (int32_t i = 0; i < n; ++i) {
        out << "\n";
        print_entry(out, entry_of_ScannerList(list, i));
    }
    out.flush();
}

// The distinct host: values of a file, in the order of their first block.
QStringList hosts_of_file(const QString &path) {
    QStringList hosts;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return hosts;
    static const QRegularExpression separators(QStringLiteral("[ \r\t\n]+"));
    while (!f.atEnd()) {
        const QByteArray line = f.readLine();
        if (line.startsWith('#')) continue;
        const QStringList words = QString::fromUtf8(line).split(separators, Qt::SkipEmptyParts);
        if (words.size() < 2 || words[0] != QLatin1String("host:")) continue;
        bool seen = false;
        for (const QString &h : hosts) seen = seen || oswUtil::isSameMachineName(h, words[1]);
        if (!seen) hosts << words[1];
    }
    return hosts;
}

}  // namespace

int run_scanners_command(const QStringList &args) {
    std::optional<QString> host;
    bool allHosts = false;
    QString path;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (a == QLatin1String("--host") && i + 1 < args.size()) {
            host = args[++i];
        } else if (a == QLatin1String("--all-hosts")) {
            allHosts = true;
        } else if (!a.startsWith(QLatin1Char('-')) && path.isEmpty()) {
            path = a;
        } else {
            std::fprintf(stderr, "scanctl scanners: unexpected argument '%s'\n%s", a.toLocal8Bit().constData(), kUsage);
            return 1;
        }
    }
    if (path.isEmpty()) path = oswRemapPath::RemapPath2(oswUtil::LMVEtc() + QStringLiteral("/Scan.conf"));

    StderrMessages messages;
    // The reader never fails: it says itself what it could not read, and the
    // command fails after it.
    QFile probe(path);
    if (!QFileInfo(path).isFile() || !probe.open(QIODevice::ReadOnly)) {
        read_ScannerList(path, true, host);
        return 2;
    }
    probe.close();

    QTextStream out(stdout);
    if (!allHosts) {
        print_list(out, read_ScannerList(path, true, host).get());
        return 0;
    }
    const QStringList hosts = hosts_of_file(path);
    for (qsizetype i = 0; i < hosts.size(); ++i) {
        out << (i ? "\n" : "") << "=== host " << hosts[i] << " ===\n";
        out.flush();
        print_list(out, read_ScannerList(path, true, hosts[i]).get());
    }
    if (hosts.isEmpty()) out << "no host: lines in " << path << "\n";
    return 0;
}
