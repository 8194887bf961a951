// scanctl register: finds the peg holes of a scan file as the station's
// optical registration does and prints where the centre peg is and how far
// the sheet is turned.
#include <QTextStream>

#include <cstdio>
#include <numbers>
#include <optional>

#include "scan/drawing.h"
#include "scan/optical_registration.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "tools/scanctl/command.h"
#include "tools/scanctl/message_collector.h"
#include "tools/scanctl/scan_arguments.h"

namespace {

constexpr const char *kUsage =
    "usage: scanctl register FILE [--side left|top|right|bottom] [--dpi N] [--threshold T]\n"
    "                        [--round-holes] [--rdebug]\n"
    "  Runs optical registration on a scan file as the station does after a scan and\n"
    "  prints the centre peg (pixels, rows counted down) and the angle of the peg bar.\n"
    "  The peg side, dpi and threshold (a level 1 to 255; 0 means half way) come from\n"
    "  the file's scan information unless given. --round-holes searches for three round\n"
    "  holes; --rdebug prints the traces of the search.\n"
    "  Exit status: 0 registered, 1 usage error, 2 no registration found or a file\n"
    "  that can't be read.\n";

struct RegisterArguments {
    QString file;
    std::optional<int> side;  // peg side
    std::optional<int> dpi;
    std::optional<int> threshold;
    bool roundHoles = false;
    bool rdebug = false;
    bool help = false;
};

std::optional<RegisterArguments> parse(const QStringList &args, QString &error) {
    RegisterArguments a;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &word = args[i];
        if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
            a.help = true;
        } else if (word == QLatin1String("--round-holes")) {
            a.roundHoles = true;
        } else if (word == QLatin1String("--rdebug")) {
            a.rdebug = true;
        } else if (word == QLatin1String("--side") || word == QLatin1String("--dpi") ||
                   word == QLatin1String("--threshold")) {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(word);
                return std::nullopt;
            }
            const QString &v = args[++i];
            bool ok = true;
            if (word == QLatin1String("--side"))
                ok = (a.side = peg_side_of_word(v)).has_value();
            else if (word == QLatin1String("--dpi"))
                ok = (a.dpi = v.toInt(&ok)) > 0 && ok;
            else
                ok = (a.threshold = v.toInt(&ok)) >= 0 && ok && *a.threshold <= 255;
            if (!ok) {
                error = QStringLiteral("%1: '%2' is not a valid value").arg(word, v);
                return std::nullopt;
            }
        } else if (word.startsWith(QLatin1String("--")) || !a.file.isEmpty()) {
            error = QStringLiteral("unknown argument '%1'").arg(word);
            return std::nullopt;
        } else {
            a.file = word;
        }
    }
    if (!a.help && a.file.isEmpty()) {
        error = QStringLiteral("a scan file is required");
        return std::nullopt;
    }
    return a;
}

// The scan's own settings, as its scan information records them.
LMV_scaninfo scaninfo_of_text(const QString &text) {
    LMV_scaninfo info;
    if (!text.isEmpty()) LMV_scaninfo_from_str(&info, text.toUtf8().constData());
    return info;
}

int registered(const RegisterArguments &a, Drawing *drawing, const LMV_scaninfo &info) {
    const int peg_side = a.side.value_or(info.peg_side);
    // Truncated, as the station turns a drawing's dpi into the search's.
    const int dpi = a.dpi.value_or(static_cast<int>(info.dpi));
    if (dpi <= 0) {
        std::fprintf(stderr, "scanctl register: %s has no dpi in its scan information; give --dpi\n",
                     a.file.toLocal8Bit().constData());
        return 1;
    }
    const int level = a.threshold.value_or(info.threshold);
    PegRegistrationOptions options;
    options.threshr = level >= 1 ? level / 255.0 : 0.5;
    options.dpi = dpi;
    options.side = registration_side_of_peg_side(peg_side);
    options.strict = 1;
    options.centerPegHoles = a.roundHoles;
    options.rdebug = a.rdebug;

    float x = 0.0f, y = 0.0f, angle = 0.0f;
    const bool found = optical_registration(best_of_pixmap(pixmap_of_Drawing(drawing)), options, &x, &y, &angle);
    std::fflush(stdout);
    QTextStream out(stdout);
    const char *side = peg_side_name(peg_side);
    out << a.file << ": peg side " << (*side ? side : "none (searched as bottom)") << ", " << dpi << " dpi\n";
    if (!found) {
        out << "  no registration found\n";
        return 2;
    }
    out << "  x: " << x << "\n  y: " << y << "\n  angle: " << angle << " rad ("
        << angle * 180.0 / std::numbers::pi << " degrees)\n";
    return 0;
}

}  // namespace

int run_register_command(const QStringList &args) {
    QString error;
    const std::optional<RegisterArguments> a = parse(args, error);
    if (!a || a->help) {
        if (!a) std::fprintf(stderr, "scanctl register: %s\n", error.toLocal8Bit().constData());
        std::fputs(kUsage, a ? stdout : stderr);
        return a ? 0 : 1;
    }
    MessageCollector messages;
    QString text;
    Drawing *drawing = load_Drawing(a->file, text, nullptr);
    if (!drawing) {
        std::fprintf(stderr, "scanctl register: %s: %s\n", a->file.toLocal8Bit().constData(),
                     load_failure_reason(messages).toLocal8Bit().constData());
        return 2;
    }
    const int status = registered(*a, drawing, scaninfo_of_text(text));
    destroy_Drawing(&drawing);
    return status;
}
