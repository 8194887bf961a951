#include "vectorize/option_handlers.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <cstdlib>

#include "suite/base/whoami.h"
#include "suite/cel/celio_manager.h"

namespace {

constexpr const char *kCtx = TUPix2vecOptions::kContext;

OptionOutcome missing(const char *source, const QString &name) {
    MSG_Text text(kCtx, source);
    if (QString::fromUtf8(source).contains(QLatin1String("%1"))) text.arg(name);
    return OptionOutcome::fail(text);
}

// First letter of a peg side word: T 1, B 2, L 3, R 4; `other` for the rest.
int sideOfWord(const QString &word, int other) {
    switch (word.isEmpty() ? 0 : word.at(0).toUpper().unicode()) {
    case 'T': return 1;
    case 'B': return 2;
    case 'L': return 3;
    case 'R': return 4;
    default: return other;
    }
}

}  // namespace

namespace pix2vec_handlers {

OptionOutcome parseVersion(OptionCursor &c, const OptionSpec &) {
    whoami::printVersionInfo();
    ++c.options.help;
    return OptionOutcome::stop();
}

OptionOutcome parseHelp(OptionCursor &c, const OptionSpec &) {
    int mask = 0;
    if (const auto section = c.next()) mask = pix2vecHelpSectionMask(*section);
    c.options.printUsage(c.argc, c.argv, true, mask);
    c.options.help = 1;
    return OptionOutcome::stop();
}

OptionOutcome parseOutputVersion(OptionCursor &c, const OptionSpec &spec) {
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    if (*v == QLatin1String("604")) c.options.output_version = 1002;
    return OptionOutcome::ok();
}

OptionOutcome parseRegister(OptionCursor &c, const OptionSpec &) {
    const QString name = QStringLiteral("-register");
    const auto dpi = c.next();
    if (!dpi) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No dpi %1\n"), name);
    c.options.dpi = optionReal(*dpi);
    const auto side = c.next();
    if (!side) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No peg position %1\n"), name);
    c.options.side = sideOfWord(*side, 3);  // left unless the word says otherwise
    const auto strict = c.next();
    if (!strict) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No strictness %1\n"), name);
    c.options.strict = strict->startsWith(QLatin1Char('L'), Qt::CaseInsensitive) ? 0 : 1;
    c.options.register_ = true;
    return OptionOutcome::ok();
}

void resetRegister(TUOpts &o, const OptionSpec &spec) {
    o.register_ = false;
    o.side = int(spec.defaults[1]);
    o.strict = int(spec.defaults[2]);
}

OptionOutcome parseOutPegPosition(OptionCursor &c, const OptionSpec &spec) {
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    c.options.out_peg_position = sideOfWord(*v, 0);
    return OptionOutcome::ok();
}

OptionOutcome parseScannerCalibrate(OptionCursor &c, const OptionSpec &spec) {
    for (double *target : {&c.options.calibX, &c.options.calibY}) {
        const auto v = c.next();
        if (!v) return missing(spec.missing, c.name);
        const double factor = optionReal(*v);
        *target = factor < 0 ? 1.0 : factor;
    }
    return OptionOutcome::ok();
}

void resetScannerCalibrate(TUOpts &o, const OptionSpec &spec) {
    o.calibX = spec.defaults[0];
    o.calibY = spec.defaults[1];
}

OptionOutcome parseMargins(OptionCursor &c, const OptionSpec &spec) {
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    const double m = optionReal(*v);
    c.options.top_margin = c.options.bottom_margin = c.options.left_margin = c.options.right_margin = m;
    return OptionOutcome::ok();
}

OptionOutcome parsePixelMargins(OptionCursor &c, const OptionSpec &spec) {
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    const int m = optionInt(*v);
    TUOpts &o = c.options;
    o.top_pixel_margin = o.bottom_pixel_margin = o.left_pixel_margin = o.right_pixel_margin = m;
    return OptionOutcome::ok();
}

OptionOutcome parseKeepPegBars(OptionCursor &, const OptionSpec &) {
    MSG_Text text(kCtx, QT_TRANSLATE_NOOP("TUPix2vecOptions",
                                          "%1 is deprecated. It is now on by default. Use %2 to remove peg bars.\n"));
    text.arg(QStringLiteral("-keep_peg_bars"), QStringLiteral("-remove_peg_bars"));
    return OptionOutcome::fail(text);
}

OptionOutcome parsePixelPerModelUnit(OptionCursor &c, const OptionSpec &) {
    const auto v = c.next();
    if (!v) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No pixel per model unit provided.\n"), c.name);
    bool ok = false;
    const double value = v->toDouble(&ok);
    if (!ok || !(value > 0))
        return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "Invalid pixel per model unit provided: %1.\n"), *v);
    c.options.pixelPerModelUnit = value;
    c.options.pixelPerModelUnitGiven = true;
    return OptionOutcome::ok();
}

void resetPixelPerModelUnit(TUOpts &o, const OptionSpec &spec) {
    o.pixelPerModelUnit = spec.defaults[0];
    o.pixelPerModelUnitGiven = false;
}

OptionOutcome parsePremultiply(OptionCursor &c, const OptionSpec &spec) {
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    static const char *const kWords[] = {"straight", "white", "black"};
    for (int i = 0; i < 3; ++i)
        if (*v == QLatin1String(kWords[i])) {
            c.options.premultiply = i;
            return OptionOutcome::ok();
        }
    return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions",
                                     "Wrong value specified for -premultiply: (%1).\n Expecting [straight|white|black].\n"),
                   *v);
}

OptionOutcome parseVectorizationColorId(OptionCursor &c, const OptionSpec &spec) {
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    const QStringList parts = v->split(QLatin1Char(','), Qt::SkipEmptyParts);
    TUOpts &o = c.options;
    if (!parts.isEmpty()) {
        const unsigned long long id = std::strtoull(parts.at(0).toLocal8Bit().constData(), nullptr, 16);
        o.vectorizationColorId = id < 5 ? 5 : id;  // ids below 5 belong to the palette's fixed entries
    }
    if (parts.size() >= 2) o.colorName = parts.at(1);
    if (parts.size() >= 5) {
        unsigned char *bytes[] = {&o.colorR, &o.colorG, &o.colorB, &o.colorA};
        for (int i = 2; i < parts.size() && i < 6; ++i) *bytes[i - 2] = static_cast<unsigned char>(optionInt(parts.at(i)));
    }
    return OptionOutcome::ok();
}

void resetVectorizationColorId(TUOpts &o, const OptionSpec &spec) {
    o.vectorizationColorId = static_cast<std::uint64_t>(spec.defaults[0]);
    o.colorR = static_cast<unsigned char>(spec.defaults[1]);
    o.colorG = static_cast<unsigned char>(spec.defaults[2]);
    o.colorB = static_cast<unsigned char>(spec.defaults[3]);
    o.colorA = static_cast<unsigned char>(spec.defaults[4]);
    o.colorName = QString::fromUtf8(spec.defaultText);
}

OptionOutcome parseStrokeThickness(OptionCursor &c, const OptionSpec &spec) {
    if (!c.allowStrokeThickness)
        return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "Incorrect Usage (\"%1\")"), c.argv.at(c.index));
    const auto v = c.next();
    if (!v) return missing(spec.missing, c.name);
    c.options.stroke_thickness = optionInt(*v);
    return OptionOutcome::ok();
}

OptionOutcome parsePenstyle(OptionCursor &c, const OptionSpec &) {
    static const char *const kMissing[] = {
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No center alpha specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No edge alpha specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No gamma specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No center pressure specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No edge pressure specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No noise scaling specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No noise bitmap specified with %1\n"),
    };
    TUOpts &o = c.options;
    float *values[] = {&o.penstyle_center_alpha,    &o.penstyle_edge_alpha,    &o.penstyle_gamma,
                       &o.penstyle_center_pressure, &o.penstyle_edge_pressure, &o.penstyle_noise_scaling};
    const QString name = QStringLiteral("-penstyle");
    for (int i = 0; i < 6; ++i) {
        const auto v = c.nextUndashed();
        if (!v) return missing(kMissing[i], name);
        *values[i] = static_cast<float>(optionReal(*v));
    }
    const auto file = c.nextUndashed();
    if (!file) return missing(kMissing[6], name);
    o.penstyle_noise_file = *file;
    o.penstyle_noise = loadPenstyleNoise(*file);  // a file that does not load is no error
    o.penstyle = true;
    return OptionOutcome::ok();
}

void resetPenstyle(TUOpts &o, const OptionSpec &spec) {
    float *values[] = {&o.penstyle_center_alpha,    &o.penstyle_edge_alpha,    &o.penstyle_gamma,
                       &o.penstyle_center_pressure, &o.penstyle_edge_pressure, &o.penstyle_noise_scaling};
    for (int i = 0; i < 6; ++i) *values[i] = static_cast<float>(spec.defaults[i]);
    o.penstyle = false;
    o.penstyle_noise_file.clear();
    o.penstyle_noise = CEL_RepresentationPtr();
}

OptionOutcome parsePressureVariation(OptionCursor &c, const OptionSpec &) {
    static const char *const kMissing[] = {
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No type specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No min pressure specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No max pressure specified with %1\n"),
        QT_TRANSLATE_NOOP("TUPix2vecOptions", "No max variation specified with %1\n"),
    };
    const QString name = QStringLiteral("-pressure_variation");
    TUOpts &o = c.options;
    const auto strategy = c.nextUndashed();
    if (!strategy) return missing(kMissing[0], name);
    o.pressure_variation = optionInt(*strategy);
    float *values[] = {&o.pressure_min, &o.pressure_max, &o.pressure_max_variation};
    for (int i = 0; i < 3; ++i) {
        const auto v = c.nextUndashed();
        if (!v) return missing(kMissing[i + 1], name);
        *values[i] = static_cast<float>(optionReal(*v));
    }
    return OptionOutcome::ok();
}

void resetPressureVariation(TUOpts &o, const OptionSpec &spec) {
    o.pressure_variation = int(spec.defaults[0]);
    o.pressure_min = float(spec.defaults[1]);
    o.pressure_max = float(spec.defaults[2]);
    o.pressure_max_variation = float(spec.defaults[3]);
}

OptionOutcome parseFourColours(OptionCursor &c, const OptionSpec &) {
    c.options.fourColours = true;
    const int taken = c.options.fourColourOptions.parse(c.argv, c.index, c.argc);
    if (taken < 0) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "Wrong 4 colour options.\n"), c.name);
    c.index += taken;
    return OptionOutcome::ok();
}

void resetFourColours(TUOpts &o, const OptionSpec &) {
    o.fourColours = false;
    o.fourColourOptions = FourColourOptions();
}

OptionOutcome parseThreshSV(OptionCursor &c, const OptionSpec &) {
    const QString name = QStringLiteral("-threshsv");
    const auto s = c.next();
    if (!s) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No saturation threshold specified with %1.\n"), name);
    c.options.threshs = optionReal(*s);
    const auto v = c.next();
    if (!v) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No value threshold specified with %1.\n"), name);
    c.options.threshv = optionReal(*v);
    return OptionOutcome::ok();
}

void resetThreshSV(TUOpts &o, const OptionSpec &spec) {
    o.threshs = spec.defaults[0];
    o.threshv = spec.defaults[1];
}

OptionOutcome parseRemoveHairs(OptionCursor &c, const OptionSpec &) {
    const QString name = QStringLiteral("-rmv_hairs");
    const auto size = c.next();
    if (!size) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "No hair size specified with %1.\n"), name);
    c.options.rmv_hairs = optionReal(*size);
    const auto passes = c.next();
    if (!passes) return missing(QT_TRANSLATE_NOOP("TUPix2vecOptions", "Number of passes not specified with %1.\n"), name);
    c.options.rmv_hairs_passes = optionInt(*passes);
    return OptionOutcome::ok();
}

void resetRemoveHairs(TUOpts &o, const OptionSpec &spec) {
    o.rmv_hairs = spec.defaults[0];
    o.rmv_hairs_passes = int(spec.defaults[1]);
}

}  // namespace pix2vec_handlers

CEL_RepresentationPtr loadPenstyleNoise(const QString &name) {
    QString path = name;
    if (QFileInfo(path).isRelative()) path = QDir::currentPath() + QLatin1Char('/') + name;
    path.truncate(1023);
    QDateTime date;
    QList<CEL_RepresentationPtr> reps;
    if (!CELIO_Manager::getInstance().read(path, date, CEL_Context(), reps, nullptr) || reps.isEmpty())
        return CEL_RepresentationPtr();
    return reps.first();
}
