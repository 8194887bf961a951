// scanctl info: reads scan files the way the station loads them and tells
// what each holds: size, pixel kind, file format and scan information.
#include <QFileInfo>
#include <QTextStream>

#include <cstdio>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "suite/cel/celio_manager.h"
#include "tools/scanctl/command.h"
#include "tools/scanctl/message_collector.h"

namespace {

constexpr const char *kUsage =
    "usage: scanctl info FILE...\n"
    "  Reads each FILE as the station loads a scan and shows its size, pixel kind,\n"
    "  file format and scan information. A file that can't be read is reported on\n"
    "  standard error and the exit status is 2 (1 for a usage error).\n";

const char *kind_name(int32_t kind) {
    switch (kind) {
    case PIXMAP_RGBA8: return "RGBA8";
    case PIXMAP_RGBA16: return "RGBA16";
    case PIXMAP_MATTE8: return "Matte8";
    case PIXMAP_MATTE16: return "Matte16";
    default: return "none";
    }
}

QString format_text(const CELIO_FileInfo &info) {
    QStringList parts{info.container};
    if (!info.compression.isEmpty()) parts << info.compression;
    const auto count = [](int n, const char *unit) {
        return QStringLiteral("%1 %2%3").arg(QString::number(n), QLatin1String(unit), n == 1 ? QString() : QStringLiteral("s"));
    };
    parts << count(info.bitsPerSample, "bit") + QStringLiteral(" x ") + count(info.samplesPerPixel, "sample");
    if (!info.photometric.isEmpty()) parts << info.photometric;
    if (info.hasAlpha) parts << QStringLiteral("alpha");
    return parts.join(QStringLiteral(", "));
}

const char *pegged_text(int32_t pegged) {
    if (pegged < 0) return "not known";
    return pegged ? "yes" : "no";
}

void print_scaninfo_fields(QTextStream &out, const LMV_scaninfo &s) {
    const char *side = peg_side_name(s.peg_side);
    out << "    version:           " << s.version << "\n"
        << "    scan host:         " << QString::fromStdString(s.scan_host) << "\n"
        << "    scanner name:      " << QString::fromStdString(s.scanner_name) << "\n"
        << "    threshold:         " << s.threshold << "\n"
        << "    black point:       " << s.black_point << "\n"
        << "    white point:       " << s.white_point << "\n"
        << "    gamma:             " << s.gamma << "\n"
        << "    speed:             " << s.speed << "\n"
        << "    peg side:          " << (*side ? side : "none") << "\n"
        << "    pegged:            " << pegged_text(s.pegged) << "\n"
        << "    paper size:        " << s.paper_size << "\n"
        << "    pages:             " << s.pages << "\n"
        << "    dpi:               " << s.dpi << "\n"
        << "    rotation angle:    " << s.rotation_angle << " rad\n"
        << "    rotation centre:   " << s.rotation_center_x << ", " << s.rotation_center_y << "\n";
}

// Describes one file; false, with the reason on standard error, when it can't
// be read.
bool describe(const QString &path, QTextStream &out, MessageCollector &messages) {
    QString text;
    CELIO_FileInfo info;
    Drawing *d = load_Drawing(path, text, &info);
    if (!d) {
        const QString reason = load_failure_reason(messages);
        std::fprintf(stderr, "scanctl info: %s: %s\n", path.toLocal8Bit().constData(), reason.toLocal8Bit().constData());
        return false;
    }
    const LMV_pixmap *pixmap = pixmap_of_Drawing(d);
    out << path << "\n"
        << "  size:    " << width_of_pixmap(pixmap) << " x " << height_of_pixmap(pixmap) << " pixels, "
        << QFileInfo(path).size() << " bytes on disk\n"
        << "  pixels:  " << kind_name(type_of_pixmap(pixmap)) << "\n"
        << "  format:  " << format_text(info) << "\n";
    if (text.isEmpty()) {
        out << "  scan information: none\n";
    } else {
        out << "  scan information: " << text << "\n";
        LMV_scaninfo *s = scaninfo_of_Drawing(d);
        const bool parsed = LMV_scaninfo_from_str(s, text.toUtf8().constData()) == 0;
        if (!parsed) {
            const QStringList why = messages.take();
            out << "  scan information does not parse"
                << (why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why.join(QStringLiteral("; "))));
            // Without a version nothing was read: the fields would only show their blanks.
            out << (s->version < 0 ? "\n" : "; the fields read before the error:\n");
        }
        if (parsed || s->version >= 0) print_scaninfo_fields(out, *s);
    }
    messages.take();
    destroy_Drawing(&d);
    return true;
}

}  // namespace

int run_info_command(const QStringList &args) {
    if (args.isEmpty() || args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
        std::fputs(kUsage, args.isEmpty() ? stderr : stdout);
        return args.isEmpty() ? 1 : 0;
    }
    QTextStream out(stdout);
    MessageCollector messages;
    bool allRead = true;
    for (const QString &path : args) {
        allRead = describe(path, out, messages) && allRead;
        out.flush();
    }
    return allRead ? 0 : 2;
}
