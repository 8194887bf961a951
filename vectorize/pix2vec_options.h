#pragma once
// The one record that steers the vectorizer. It is filled from an argument
// vector or from one option line and written back in the same line form, which
// is what the queue, the style files and the edit dialog exchange.
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <cstdint>

#include "scan/registration_options.h"
#include "suite/cel/cel_representation.h"
#include "vectorize/four_colour_options.h"

class VectorizePixelPalettizer;
class VectorizeImageTransformProvider;

// Help sections, as bits of the mask of helpText and printUsage.
enum Pix2vecHelpSection : int {
    HELP_IO = 1,
    HELP_COLOR = 2,
    HELP_REGISTER = 4,
    HELP_FILTER = 8,
    HELP_BUBBLE = 16,
    HELP_RGB = 32,
    HELP_4COLOURS = 64,
    HELP_ALL = 127,
};

// The section bits that a help topic word names ("all", "io", ...); 0 for any other word.
int pix2vecHelpSectionMask(const QString &word);

// The registration members (dpi, side, strict, looseness, rmargin, threshr,
// pegpitch, centerPegHoles, rdebug, calibX, calibY) come from the base, so that
// the peg hole search reads this record directly.
class TUPix2vecOptions : public PegRegistrationOptions {
public:
    static constexpr const char *kContext = "TUPix2vecOptions";

    TUPix2vecOptions();
    virtual ~TUPix2vecOptions();
    TUPix2vecOptions(const TUPix2vecOptions &) = default;
    TUPix2vecOptions &operator=(const TUPix2vecOptions &) = default;

    // Every option back to its default; the penstyle group and the last error
    // text are kept.
    void resetDefaults();

    // Reads argv[1..argc). The caller tests `errors` and `help` afterwards.
    void parseArguments(int argc, const QStringList &argv, bool usageWhenEmpty, bool allowStrokeThickness);
    // Reads one option line. True when it read without error.
    bool parseOptionLine(const QString &line, bool allowStrokeThickness);

    // The options that differ from their defaults, as an option line.
    QString optionLine(bool withThresh, bool withRegister, bool withGap, bool withSmoothL, bool withFirstSmoothL,
                       bool withMatte, bool withPegDistance, bool withFieldSize, bool withStrokeThickness) const;
    // Every filter value and then the whole option line: what a style stores.
    QString styleLine(bool allowStrokeThickness) const;
    void styleLine(QTextStream &out, bool allowStrokeThickness) const;
    bool writeStyleFile(const QString &path, bool allowStrokeThickness) const;

    QString helpText(int sectionMask) const;
    void printUsage(int argc, const QStringList &argv, bool helpWanted, int sectionMask) const;

    // --- bookkeeping ---
    int errors = 0;
    int help = 0;
    bool usage = true;
    QString lastError;

    // --- -vectorization_color_id ---
    std::uint64_t vectorizationColorId = 3;
    unsigned char colorR = 0, colorG = 0, colorB = 0, colorA = 255;
    QString colorName = QStringLiteral("Vectorized Line");

    // Added as a translation to all coordinates of a drawing.
    int pixelOffsetX = 0, pixelOffsetY = 0;
    VectorizePixelPalettizer *palettizer = nullptr;
    VectorizeImageTransformProvider *imageTransformProvider = nullptr;
    bool registrationFailed = false;
    bool force_unamed_palette_for_texture = false;

    // The options' defaults live in the option table, which resetDefaults and
    // the help text both read.

    // --- file and input ---
    QString file, file2, pressure_map_file, outfile, informat, airbrushl, airbrushc;
    int debug{};
    bool force{};
    bool copyright{};
    int output_version{};
    bool analyze{};
    bool noughts{};
    QString noughtsfile;

    // --- registration (the rest is in the base) ---
    bool register_{};
    double peg_distance_from_center{};
    int out_peg_position{};
    bool ssi{};
    bool output_peg_matrix{};

    // --- filtering ---
    QString pixel;
    double gap{}, end{};
    bool pencil{}, vectorize_alpha{}, keep_dirt{};
    double thresh{}, threshl{}, threshc{};
    double rmv_hairs{};
    int rmv_hairs_passes{};
    double rmv_holes{}, rmv_dirt{}, rmv_holesl{}, rmv_dirtl{}, rmv_holesc{}, rmv_dirtc{};
    double rmv_triangles{};
    bool texture{}, texture_optimization{}, color_as_texture{};
    bool close_gap{}, break_strokes{}, color_art{}, frame{}, normalize{};
    double frame_fields{}, field_size{};
    int jag_filterl{}, jag_filterc{}, expand_bitmapl{}, expand_bitmapc{};
    double fit_errorl{}, fit_errorc{};
    int fit_degreel{}, fit_degreec{};
    int smoothl{}, smoothc{}, first_smoothl{}, first_smoothc{};
    bool two_pass{}, support_thin_lines{};
    double top_margin{}, bottom_margin{}, left_margin{}, right_margin{};
    int top_pixel_margin{}, bottom_pixel_margin{}, left_pixel_margin{}, right_pixel_margin{};
    bool keep_peg_bars{};
    double peg_bar_size{};
    bool asBitmap{};
    double pixelPerModelUnit{};
    bool pixelPerModelUnitGiven{};
    int premultiply{};  // 0 straight, 1 white, 2 black
    int downscale_input{}, downscale_texture{};
    bool buildmatte{};
    int matteTarget{};  // 1: the colour art
    bool copystrokes{};
    QString layer;
    bool quadtree{};
    int stroke_thickness{};  // no default: the edit dialog's preview owns it

    // --- RGB keying ---
    bool rgb{}, rgb_separate{}, no_red{}, no_green{}, no_blue{};
    bool flatten{}, rgb_alpha_texture{};
    double rgb_alpha{};
    double threshs{}, threshv{};
    double threshrgb{};
    int expand_bitmap_rgb{};
    double rmv_rgb_dirt{};

    // --- colour vectorization ---
    bool color_vectorize{}, quantize_color{};
    double color_rmv_holesl{}, color_fill_holesl{};
    int color_contour_smooth_passes{};
    double blur_radius{}, aspect_ratio{};

    // --- penstyle: set by the constructor only ---
    bool penstyle{};
    float penstyle_center_alpha{}, penstyle_edge_alpha{}, penstyle_gamma{};
    float penstyle_center_pressure{}, penstyle_edge_pressure{}, penstyle_noise_scaling{};
    QString penstyle_noise_file;
    CEL_RepresentationPtr penstyle_noise;  // empty when the file did not load

    // --- pressure variation ---
    int pressure_variation{};  // strategy 0, 1 or 2
    float pressure_min{}, pressure_max{}, pressure_max_variation{};

    // --- bubbles ---
    bool create_bubbles{}, uniform_gap{}, uniform_height{};
    int bubble_gap{}, bubble_length{};
    double min_radius{}, max_radius{};

    // --- four colour mode ---
    bool fourColours{};
    FourColourOptions fourColourOptions;
};

// The record in force for this process; never null.
TUPix2vecOptions *&currentVectorizeOptions();

// The style file read at start: the application's shared folder + "/default.vof".
QString defaultStylePath();
