// Writing TUPix2vecOptions back as an option line and as a style line.
#include <QFile>
#include <QTextStream>

#include <cmath>

#include "suite/base/msg_scope.h"
#include "vectorize/option_table.h"

namespace {

struct LineGates {
    bool thresh, reg, gap, smoothL, firstSmoothL, matte, pegDistance, fieldSize, strokeThickness;
};

void put(QString &out, const char *name, const QString &value = QString()) {
    out += QLatin1Char('-') + QLatin1String(name) + QLatin1Char(' ');
    if (!value.isEmpty()) out += value + QLatin1Char(' ');
}

QString num(double v) { return optionNumber(v); }

// An option whose member differs from its default, in its generic form.
void putIfChanged(QString &out, const TUOpts &o, const char *name) {
    const OptionSpec *spec = findPix2vecOption(QLatin1String(name));
    if (!spec) return;
    const double def = spec->defaults[0];
    switch (spec->kind) {
    case OptionKind::SetFlag:
    case OptionKind::ClearFlag:
        if (o.*std::get<bool TUOpts::*>(spec->member) != (def != 0)) put(out, name);
        break;
    case OptionKind::Count:
        for (int i = 0; i < o.*std::get<int TUOpts::*>(spec->member); ++i) put(out, name);
        break;
    case OptionKind::Int:
        if (o.*std::get<int TUOpts::*>(spec->member) != int(def))
            put(out, name, QString::number(o.*std::get<int TUOpts::*>(spec->member)));
        break;
    case OptionKind::Real:
        if (o.*std::get<double TUOpts::*>(spec->member) != def)
            put(out, name, num(o.*std::get<double TUOpts::*>(spec->member)));
        break;
    case OptionKind::Text:
        if (o.*std::get<QString TUOpts::*>(spec->member) != QLatin1String(spec->defaultText))
            put(out, name, o.*std::get<QString TUOpts::*>(spec->member));
        break;
    case OptionKind::Special: break;
    }
}

const char *sideLetter(int side, const char *other) {
    switch (side) {
    case 1: return "T";
    case 2: return "B";
    case 3: return "L";
    case 4: return "R";
    default: return other;
    }
}

const std::array<double, 7> &defaultsOf(const char *name) { return findPix2vecOption(QLatin1String(name))->defaults; }

void putMargins(QString &out, const TUOpts &o) {
    const double def = defaultsOf("margins")[0];
    const double m[] = {o.top_margin, o.bottom_margin, o.left_margin, o.right_margin};
    if (m[0] == m[1] && m[0] == m[2] && m[0] == m[3]) {
        if (m[0] != def) put(out, "margins", num(m[0]));
        return;
    }
    for (const char *name : {"top_margin", "bottom_margin", "left_margin", "right_margin"}) putIfChanged(out, o, name);
}

void putRegister(QString &out, const TUOpts &o) {
    out += QStringLiteral("-register %1 %2 %3 ")
               .arg(num(o.dpi), QLatin1String(sideLetter(o.side, "L")), QLatin1String(o.strict ? "S" : "L"));
}

void putPenstyle(QString &out, const TUOpts &o) {
    const auto &def = defaultsOf("penstyle");
    const float values[] = {o.penstyle_center_alpha,    o.penstyle_edge_alpha,    o.penstyle_gamma,
                            o.penstyle_center_pressure, o.penstyle_edge_pressure, o.penstyle_noise_scaling};
    bool changed = !o.penstyle_noise_file.isEmpty();
    for (int i = 0; i < 6; ++i) changed = changed || values[i] != float(def[i]);
    if (!changed) return;
    QString text;
    for (float v : values) text += num(v) + QLatin1Char(' ');
    put(out, "penstyle", text + o.penstyle_noise_file);
}

void putPressureVariation(QString &out, const TUOpts &o) {
    const auto &def = defaultsOf("pressure_variation");
    if (o.pressure_variation == int(def[0]) && o.pressure_min == float(def[1]) && o.pressure_max == float(def[2]) &&
        o.pressure_max_variation == float(def[3]))
        return;
    put(out, "pressure_variation",
        QStringLiteral("%1 %2 %3 %4")
            .arg(QString::number(o.pressure_variation), num(o.pressure_min), num(o.pressure_max),
                 num(o.pressure_max_variation)));
}

using Step = void (*)(QString &, const TUOpts &, const LineGates &);
struct WriteStep {
    const char *name;  // written generically when `special` is null
    Step special;
};

#define STEP(body) [](QString &out, const TUOpts &o, const LineGates &g) { body; }

// The order in which the options are written.
const WriteStep kOrder[] = {
    {"file", nullptr}, {"file2", nullptr},
    {nullptr, STEP(if (o.force_unamed_palette_for_texture) put(out, "force_unamed_palette_for_texture"))},
    {"pressure_map_file", nullptr}, {"outfile", nullptr}, {"informat", nullptr}, {"airbrushc", nullptr},
    {"airbrushl", nullptr}, {"rgb", nullptr}, {"use_alpha", nullptr}, {"rgb_alpha_texture", nullptr},
    {"rgb_separate", nullptr}, {"no_red", nullptr}, {"no_green", nullptr}, {"no_blue", nullptr},
    {"rgb_alpha", nullptr},
    {nullptr, STEP(if (o.fourColours) put(out, "4colours", o.fourColourOptions.toText()))},
    {nullptr, STEP(if (g.gap) putIfChanged(out, o, "gap"))},
    {nullptr, STEP(const auto &d = defaultsOf("threshsv");
                   if (o.threshs != d[0] || o.threshv != d[1])
                       put(out, "threshsv", num(o.threshs) + QLatin1Char(' ') + num(o.threshv)))},
    {nullptr, STEP(if (g.thresh) putIfChanged(out, o, "thresh"))},
    {"end", nullptr}, {"pixel", nullptr}, {"quadtree", nullptr}, {"output_peg_matrix", nullptr},
    {"no_texture_optimization", nullptr}, {"create_bubbles", nullptr}, {"uniform_gap", nullptr},
    {"uniform_height", nullptr}, {"bubble_gap", nullptr}, {"bubble_length", nullptr}, {"min_radius", nullptr},
    {"max_radius", nullptr}, {"pencil", nullptr}, {"keep_dirt", nullptr}, {"no_normalize", nullptr},
    {"remove_peg_bars", nullptr}, {"no_break", nullptr}, {"flatten", nullptr}, {"analyze", nullptr},
    {nullptr, STEP(if (o.output_version == 1002) put(out, "output_version", QStringLiteral("604")))},
    {"nocopyright", nullptr}, {"debug", nullptr}, {"noforce", nullptr},
    {nullptr, STEP(if (o.noughts) put(out, "noughtsfile", o.noughtsfile))},
    {"noclosegap", nullptr}, {"color_rmv_holesl", nullptr}, {"color_fill_holesl", nullptr},
    {"color_contour_smooth_passes", nullptr},
    {nullptr, STEP(if (g.smoothL) putIfChanged(out, o, "smoothl"))},
    {"smoothc", nullptr},
    {nullptr, STEP(if (g.firstSmoothL) putIfChanged(out, o, "first_smoothl"))},
    {"first_smoothc", nullptr}, {"rmv_rgb_dirt", nullptr}, {"rmv_triangles", nullptr},
    {"expand_bitmap_rgb", nullptr}, {"expand_bitmapc", nullptr}, {"jag_filterc", nullptr},
    {"color_vectorize", nullptr},
    // Written without its dash since the first style files; such a line does not read back.
    {nullptr, STEP(if (o.quantize_color) out += QLatin1String("quantize_color "))},
    {"threshrgb", nullptr}, {"threshr", nullptr}, {"rmv_holesl", nullptr}, {"rmv_holesc", nullptr},
    {"rmv_dirtl", nullptr}, {"rmv_dirtc", nullptr}, {"fit_errorc", nullptr}, {"fit_errorl", nullptr},
    {"fit_degreel", nullptr}, {"fit_degreec", nullptr}, {"noframe", nullptr}, {"frame_fields", nullptr},
    {nullptr, STEP(if (g.fieldSize) putIfChanged(out, o, "field_size"))},
    {"peg_bar_size", nullptr}, {"rmargin", nullptr},
    {nullptr, STEP(if (std::fabs(o.calibX - 1) > 0.00001 || std::fabs(o.calibY - 1) > 0.00001)
                       put(out, "scanner_calibrate", num(o.calibX) + QLatin1Char(' ') + num(o.calibY)))},
    {nullptr, STEP(if (g.matte && o.buildmatte) put(out, o.matteTarget ? "buildmatte_colourart" : "buildmatte");
                   if (g.matte) putIfChanged(out, o, "copystrokes"))},
    {nullptr, STEP(putMargins(out, o))},
    {nullptr, STEP(if (g.pegDistance) putIfChanged(out, o, "peg_distance_from_center"))},
    {"registration_looseness_factor", nullptr},
    {nullptr, STEP(if (g.reg && o.register_) putRegister(out, o))},
    {"register_center_peg_holes", nullptr},
    {nullptr, STEP(if (o.out_peg_position != 0)
                       put(out, "out_peg_position", QLatin1String(sideLetter(o.out_peg_position, "Z"))))},
    {"pegpitch", nullptr}, {"ssi", nullptr}, {"rdebug", nullptr}, {"blur_radius", nullptr},
    {"aspect_ratio", nullptr},
    {nullptr, STEP(putPenstyle(out, o))},
    {nullptr, STEP(putPressureVariation(out, o))},
    {"downscale_input", nullptr}, {"downscale_texture", nullptr},
    {nullptr, STEP(if (g.strokeThickness && o.stroke_thickness >= 2)
                       put(out, "stroke_thickness", QString::number(o.stroke_thickness)))},
};

#undef STEP

}  // namespace

QString TUPix2vecOptions::optionLine(bool withThresh, bool withRegister, bool withGap, bool withSmoothL,
                                     bool withFirstSmoothL, bool withMatte, bool withPegDistance, bool withFieldSize,
                                     bool withStrokeThickness) const {
    const LineGates gates{withThresh,  withRegister,    withGap,       withSmoothL,        withFirstSmoothL,
                          withMatte,   withPegDistance, withFieldSize, withStrokeThickness};
    QString out;
    for (const WriteStep &step : kOrder) {
        if (step.special) step.special(out, *this, gates);
        else putIfChanged(out, *this, step.name);
    }
    return out;
}

QString TUPix2vecOptions::styleLine(bool allowStrokeThickness) const {
    // Every filter value is written, so that a style keeps its look when the
    // defaults change.
    QString out;
    put(out, "threshl", num(threshl));
    put(out, "threshc", num(threshc));
    put(out, "rmv_hairs", num(rmv_hairs) + QLatin1Char(' ') + QString::number(rmv_hairs_passes));
    put(out, "rmv_holes", num(rmv_holes));
    put(out, "rmv_dirt", num(rmv_dirt));
    put(out, "expand_bitmap", QString::number(expand_bitmapl));
    put(out, "jag_filter", QString::number(jag_filterl));
    if (!texture) put(out, "no_texture");
    if (color_as_texture) put(out, "color_as_texture");
    if (!color_art) put(out, "no_color_art");
    if (two_pass) put(out, "2pass");
    if (support_thin_lines) out += QLatin1String("-support_thin_lines  ");
    if (!layer.isEmpty()) put(out, "layer", layer);
    if (asBitmap) put(out, "asBitmap");
    if (pixelPerModelUnitGiven) put(out, "pixelPerModelUnit", num(pixelPerModelUnit));
    return out + optionLine(true, true, true, true, true, true, true, true, allowStrokeThickness);
}

void TUPix2vecOptions::styleLine(QTextStream &out, bool allowStrokeThickness) const {
    out << styleLine(allowStrokeThickness);
}

bool TUPix2vecOptions::writeStyleFile(const QString &path, bool allowStrokeThickness) const {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Truncate)) {
        MSG_Scope(MSG_Text(kContext, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Could not open file %1\n")).arg(path),
                  MSG_ACTION_ERROR);
        return false;
    }
    QTextStream stream(&file);
    stream.setEncoding(QStringConverter::Utf8);
    styleLine(stream, allowStrokeThickness);
    return true;
}
