#include "vectorize/option_table.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

#include <QtGlobal>

#include "vectorize/option_handlers.h"

using namespace pix2vec_handlers;
using K = OptionKind;

namespace {

double rgbAlpha(double v) {
    if (v < 0) return 0;
    if (v > 255) return 1.0;
    if (v > 1) return v / 255.0;
    return v;
}
double fitDegree(double v) { return (v == 1 || v == 3) ? v : 3; }
double bubbleGap(double v) { return v < 1 ? 7 : v; }
double bubbleLength(double v) { return v < 1 ? 32 : v; }
double minRadius(double v) { return v < 0 ? 2 : v; }
double maxRadius(double v) { return v < 0 ? 4 : v; }

void analyzeToNowhere(TUOpts &o) {
    if (o.outfile.isEmpty()) o.outfile = QStringLiteral("/dev/null");
}
void noughtsOn(TUOpts &o) { o.noughts = true; }
void separateWithoutOptimization(TUOpts &o) { o.texture_optimization = false; }
void matteOfLineArt(TUOpts &o) { o.matteTarget = 0; }
void matteOfColourArt(TUOpts &o) { o.matteTarget = 1; }

constexpr const char *kNoFile = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No filename specified with %1.\n");
constexpr const char *kNoValue = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No value specified with %1.\n");
constexpr const char *kNoThresh = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No threshold specified with %1.\n");
constexpr const char *kNoHole = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No hole size specified with %1.\n");
constexpr const char *kNoDirt = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No dirt size specified with %1.\n");
constexpr const char *kNoPixel = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No pixel size specified with %1\n");
constexpr const char *kNoFitError = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No fit error specified with %1.\n");
constexpr const char *kNoFitDegree = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No fit degree specified with %1.\n");
constexpr const char *kNoMargin = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No margin %1\n");
constexpr const char *kNoPixelMargin = QT_TRANSLATE_NOOP("TUPix2vecOptions", "No pixel margin %1\n");

constexpr std::array<double, 7> d(double a = 0, double b = 0, double c = 0, double e = 0, double f = 0,
                                  double g = 0, double h = 0) {
    return {a, b, c, e, f, g, h};
}
constexpr std::array<const char *, 4> n(const char *a, const char *b = nullptr, const char *c = nullptr,
                                        const char *e = nullptr) {
    return {a, b, c, e};
}

// Sections in the order that the help prints and the parser compares them.
const OptionSpec kTable[] = {
    // --- io ---
    {n("file", "infile"), HELP_IO, K::Text, &TUOpts::file, d(), "", kNoFile, nullptr,
     "-file <filename>  the input drawing"},
    {n("file2", "infile2"), HELP_IO, K::Text, &TUOpts::file2, d(), "", kNoFile, nullptr,
     "-file2 <color art filename>; Specify the color art bitmap"},
    {n("pressure_map_file"), HELP_IO, K::Text, &TUOpts::pressure_map_file, d(), "", kNoFile, nullptr,
     "-pressure_map_file <filename>  image of the pen pressures"},
    {n("outfile"), HELP_IO, K::Text, &TUOpts::outfile, d(), "", kNoFile, nullptr,
     "-outfile <filename>  alternate output file"},
    {n("informat"), HELP_IO, K::Text, &TUOpts::informat, d(), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No format specified with %1.\n"), nullptr,
     "-informat <format>  the input format. Used if reading from stdin"},
    {n("airbrushl"), HELP_IO, K::Text, &TUOpts::airbrushl, d(), "", kNoFile, nullptr,
     "-airbrushl <filename>  airbrush source of the line art"},
    {n("airbrushc"), HELP_IO, K::Text, &TUOpts::airbrushc, d(), "", kNoFile, nullptr,
     "-airbrushc <filename>  airbrush source of the color art"},
    {n("debug"), HELP_IO, K::Count, &TUOpts::debug, d(0), "", nullptr, nullptr,
     "-debug  print traces (repeat for more)"},
    {n("noforce"), HELP_IO, K::ClearFlag, &TUOpts::force, d(1), "", nullptr, nullptr,
     "-noforce  do not overwrite an existing output file"},
    {n("nocopyright"), HELP_IO, K::ClearFlag, &TUOpts::copyright, d(1), "", nullptr, nullptr,
     "-nocopyright  do not print the copyright"},
    {n("output_version"), HELP_IO, K::Special, &TUOpts::output_version, d(0), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No output version specified with %1.\n"), nullptr,
     "-output_version <version>  604 writes the older drawing format", nullptr, nullptr, parseOutputVersion},
    {n("analyze"), HELP_IO, K::SetFlag, &TUOpts::analyze, d(0), "", nullptr, nullptr,
     "-analyze  *Unimplemented*", nullptr, analyzeToNowhere},
    {n("noughtsfile"), HELP_IO, K::Text, &TUOpts::noughtsfile, d(), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No noughts file specified with %1.\n"), nullptr,
     "-noughts <filename> -- export colour art to Noughtville. *Unimplemented*", nullptr, noughtsOn},
    {n("force_unamed_palette_for_texture"), HELP_IO, K::SetFlag, &TUOpts::force_unamed_palette_for_texture, d(),
     "", nullptr, nullptr, "-force_unamed_palette_for_texture  will generate a texture in the drawing's internal palette",
     nullptr, nullptr, nullptr, [](TUOpts &, const OptionSpec &) {}},
    {n("version", "v", "-version"), HELP_IO, K::Special, {}, d(), "", nullptr, nullptr,
     "-v|-version|--version  print version and exit", nullptr, nullptr, parseVersion},
    {n("help", "h", "?", "-help"), HELP_IO, K::Special, {}, d(), "", nullptr, nullptr,
     "-?|-h|-help|--help [section]  this help", nullptr, nullptr, parseHelp},

    // --- register ---
    {n("register"), HELP_REGISTER, K::Special, &TUOpts::register_, d(-1, 2, 0), "", nullptr, nullptr,
     "-register <dpi> <T|B|L|R> <Loose|Strict>  register on the peg holes (default off, dpi %1)", nullptr, nullptr,
     parseRegister, resetRegister},
    {n("dpi"), HELP_REGISTER, K::Real, &TUOpts::dpi, d(-1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No dpi specified with %1\n"), nullptr,
     "-dpi <dpi>  dpi information of input bitmap (default %1)"},
    {n("register_center_peg_holes", "rcph"), HELP_REGISTER, K::SetFlag, &TUOpts::centerPegHoles, d(0), "", nullptr,
     nullptr, "-register_center_peg_holes|-rcph  Will use only round holes in 16 fields page"},
    {n("registration_looseness_factor", "rlf"), HELP_REGISTER, K::Real, &TUOpts::looseness, d(2), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No factor specified with %1\n"), nullptr,
     "-registration_looseness_factor|-rlf <factor>  tolerance factor of a loose search (default %1)"},
    {n("rdebug"), HELP_REGISTER, K::SetFlag, &TUOpts::rdebug, d(0), "", nullptr, nullptr,
     "-rdebug  traces of the peg hole search"},
    {n("pegpitch"), HELP_REGISTER, K::Real, &TUOpts::pegpitch, d(8), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No peg pitch specified with %1.\n"), nullptr,
     "-pegpitch <inch>  distance between the outer pegs (default %1)"},
    {n("threshr"), HELP_REGISTER, K::Real, &TUOpts::threshr, d(0.5), "", kNoThresh, nullptr,
     "-threshr <0.0 to 1.0>  registration threshold (default %1)"},
    {n("rmargin"), HELP_REGISTER, K::Real, &TUOpts::rmargin, d(1), "", kNoMargin, nullptr,
     "-rmargin <inch>  depth of the peg hole search band (default %1)"},
    {n("peg_distance_from_center", "pdfc"), HELP_REGISTER, K::Real, &TUOpts::peg_distance_from_center, d(5.25), "",
     kNoMargin, nullptr, "-peg_distance_from_center|-pdfc <inch>  distance of the peg holes from the centre (default %1)"},
    {n("out_peg_position"), HELP_REGISTER, K::Special, &TUOpts::out_peg_position, d(0), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No peg position %1\n"), nullptr,
     "-out_peg_position <T|B|L|R|same>  peg side of the output drawing", nullptr, nullptr, parseOutPegPosition},
    {n("ssi"), HELP_REGISTER, K::SetFlag, &TUOpts::ssi, d(0), "", nullptr, nullptr, "-ssi  *Unimplemented*"},
    {n("output_peg_matrix"), HELP_REGISTER, K::SetFlag, &TUOpts::output_peg_matrix, d(0), "", nullptr, nullptr,
     "-output_peg_matrix  print the peg matrix"},
    {n("scanner_calibrate"), HELP_REGISTER, K::Special, {}, d(1, 1), "", kNoValue, nullptr,
     "-scanner_calibrate <x> <y>  scanner scale factors (default %1 %2)", nullptr, nullptr, parseScannerCalibrate,
     resetScannerCalibrate},

    // --- filter ---
    {n("pixel"), HELP_FILTER, K::Text, &TUOpts::pixel, d(), "4x3",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No pixel shape specified with %1.\n"), nullptr,
     "-pixel <pixel shape>  the only valid value is 4x3"},
    {n("gap"), HELP_FILTER, K::Real, &TUOpts::gap, d(10), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No gap size specified with %1.\n"), nullptr,
     "-gap <world units>  close gaps up to this big (default %1)"},
    {n("end"), HELP_FILTER, K::Real, &TUOpts::end, d(0.1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No end size specified with %1.\n"), nullptr,
     "-end <inches>  *unimplemented* (default %1)"},
    {n("pencil"), HELP_FILTER, K::SetFlag, &TUOpts::pencil, d(0), "", nullptr, nullptr,
     "-pencil  generate a pencil line for the line art"},
    {n("vectorize_alpha", "use_alpha"), HELP_FILTER, K::SetFlag, &TUOpts::vectorize_alpha, d(0), "", nullptr,
     nullptr, "-vectorize_alpha|-use_alpha  Vectorize the alpha channel"},
    {n("keep_dirt"), HELP_FILTER, K::SetFlag, &TUOpts::keep_dirt, d(0), "", nullptr, nullptr,
     "-keep_dirt  keep small dirt"},
    {n("thresh"), HELP_FILTER, K::Real, &TUOpts::thresh, d(0.2), "", kNoThresh, nullptr,
     "-thresh <0.0 to 1.0>  one pass threshold (default %1)"},
    {n("threshl"), HELP_FILTER, K::Real, &TUOpts::threshl, d(0.5), "", kNoThresh, nullptr,
     "-threshl <0.0 to 1.0>  line art threshold of two passes (default %1)"},
    {n("threshc"), HELP_FILTER, K::Real, &TUOpts::threshc, d(0.5), "", kNoThresh, nullptr,
     "-threshc <0.0 to 1.0>  color art threshold of two passes (default %1)"},
    {n("rmv_hairs"), HELP_FILTER, K::Special, {}, d(1, 1), "", nullptr, nullptr,
     "-rmv_hairs <world units> <passes>  remove hairs (default %1 %2)", nullptr, nullptr, parseRemoveHairs,
     resetRemoveHairs},
    {n("rmv_holes"), HELP_FILTER, K::Real, &TUOpts::rmv_holes, d(7), "", kNoHole, nullptr,
     "-rmv_holes <world units^2>  remove holes (default %1)"},
    {n("rmv_dirt"), HELP_FILTER, K::Real, &TUOpts::rmv_dirt, d(1), "", kNoDirt, nullptr,
     "-rmv_dirt <world units^2>  remove dirt (default %1)"},
    {n("rmv_holesl"), HELP_FILTER, K::Real, &TUOpts::rmv_holesl, d(7), "", kNoHole, nullptr,
     "-rmv_holesl <world units^2>  remove holes of the line art (default %1)"},
    {n("rmv_dirtl"), HELP_FILTER, K::Real, &TUOpts::rmv_dirtl, d(1), "", kNoDirt, nullptr,
     "-rmv_dirtl <world units^2>  remove dirt of the line art (default %1)"},
    {n("rmv_holesc"), HELP_FILTER, K::Real, &TUOpts::rmv_holesc, d(7), "", kNoHole, nullptr,
     "-rmv_holesc <world units^2>  remove holes of the color art (default %1)"},
    {n("rmv_dirtc"), HELP_FILTER, K::Real, &TUOpts::rmv_dirtc, d(1), "", kNoDirt, nullptr,
     "-rmv_dirtc <world units^2>  remove dirt of the color art (default %1)"},
    {n("rmv_triangles"), HELP_FILTER, K::Real, &TUOpts::rmv_triangles, d(30), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No maximum distance (in pixels) specified with %1.\n"), nullptr,
     "-rmv_triangles <world units>  remove thin triangles (default %1)"},
    {n("no_texture"), HELP_FILTER, K::ClearFlag, &TUOpts::texture, d(1), "", nullptr, nullptr,
     "-no_texture  no texture in the color art"},
    {n("no_texture_optimization"), HELP_FILTER, K::ClearFlag, &TUOpts::texture_optimization, d(1), "", nullptr,
     nullptr, "-no_texture_optimization  keep textures as they are"},
    {n("color_as_texture"), HELP_FILTER, K::SetFlag, &TUOpts::color_as_texture, d(0), "", nullptr, nullptr,
     "-color_as_texture  the color art becomes a texture"},
    {n("noclosegap"), HELP_FILTER, K::ClearFlag, &TUOpts::close_gap, d(1), "", nullptr, nullptr,
     "-noclosegap  do not close gaps"},
    {n("no_break"), HELP_FILTER, K::ClearFlag, &TUOpts::break_strokes, d(1), "", nullptr, nullptr,
     "-no_break  do not break strokes"},
    {n("no_color_art"), HELP_FILTER, K::ClearFlag, &TUOpts::color_art, d(1), "", nullptr, nullptr,
     "-no_color_art  line art only"},
    {n("noframe"), HELP_FILTER, K::ClearFlag, &TUOpts::frame, d(1), "", nullptr, nullptr,
     "-noframe  no frame around the drawing"},
    {n("frame_fields"), HELP_FILTER, K::Real, &TUOpts::frame_fields, d(-1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No field size -frame_fields\n"), nullptr,
     "-frame_fields <fields>  size of the frame (default %1: no override)"},
    {n("field_size", "fs"), HELP_FILTER, K::Real, &TUOpts::field_size, d(-1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No field size %1\n"), nullptr,
     "-field_size|-fs <fields>  default 12 or use value in scan file"},
    {n("no_normalize"), HELP_FILTER, K::ClearFlag, &TUOpts::normalize, d(1), "", nullptr, nullptr,
     "-no_normalize  do not normalize the image"},
    {n("jag_filter", "jag_filterl"), HELP_FILTER, K::Int, &TUOpts::jag_filterl, d(0), "", kNoPixel, nullptr,
     "-jag_filter|-jag_filterl <pixels>  jag filter of the line art (default %1)"},
    {n("jag_filterc"), HELP_FILTER, K::Int, &TUOpts::jag_filterc, d(0), "", kNoPixel, nullptr,
     "-jag_filterc <pixels>  jag filter of the color art (default %1)"},
    {n("expand_bitmap", "expand_bitmapl"), HELP_FILTER, K::Int, &TUOpts::expand_bitmapl, d(0), "", kNoPixel, nullptr,
     "-expand_bitmap|-expand_bitmapl <pixels>  grow the line art (default %1)"},
    {n("expand_bitmapc"), HELP_FILTER, K::Int, &TUOpts::expand_bitmapc, d(0), "", kNoPixel, nullptr,
     "-expand_bitmapc <pixels>  grow the color art (default %1)"},
    {n("fit_errorl"), HELP_FILTER, K::Real, &TUOpts::fit_errorl, d(1), "", kNoFitError, nullptr,
     "-fit_errorl <error>  curve fit error of the line art (default %1)"},
    {n("fit_errorc"), HELP_FILTER, K::Real, &TUOpts::fit_errorc, d(1), "", kNoFitError, nullptr,
     "-fit_errorc <error>  curve fit error of the color art (default %1)"},
    {n("fit_degreel"), HELP_FILTER, K::Int, &TUOpts::fit_degreel, d(3), "", kNoFitDegree, nullptr,
     "-fit_degreel <1|3>  curve degree of the line art (default %1)", fitDegree},
    {n("fit_degreec"), HELP_FILTER, K::Int, &TUOpts::fit_degreec, d(3), "", kNoFitDegree, nullptr,
     "-fit_degreec <1|3>  curve degree of the color art (default %1)", fitDegree},
    {n("smoothl"), HELP_FILTER, K::Int, &TUOpts::smoothl, d(1), "", kNoValue, nullptr,
     "-smoothl <passes>  smoothing of the line art (default %1)"},
    {n("smoothc"), HELP_FILTER, K::Int, &TUOpts::smoothc, d(1), "", kNoValue, nullptr,
     "-smoothc <passes>  smoothing of the color art (default %1)"},
    {n("first_smooth", "first_smoothl"), HELP_FILTER, K::Int, &TUOpts::first_smoothl, d(0), "", kNoValue, nullptr,
     "-first_smooth|-first_smoothl <passes>  smoothing before the triangles are broken (default %1)"},
    // Deliberately 1 although its help line has always said 0.
    {n("first_smoothc"), HELP_FILTER, K::Int, &TUOpts::first_smoothc, d(1), "", kNoValue, nullptr,
     "-first_smoothc <passes>  smoothing of the color art before the triangles are broken (default 0)"},
    {n("2pass"), HELP_FILTER, K::SetFlag, &TUOpts::two_pass, d(0), "", nullptr, nullptr,
     "-2pass  separate line art and color art passes"},
    {n("support_thin_lines"), HELP_FILTER, K::SetFlag, &TUOpts::support_thin_lines, d(0), "", nullptr, nullptr,
     "-support_thin_lines  do not erode line when compute color art"},
    {n("margins"), HELP_FILTER, K::Special, {}, d(0.25), "", kNoMargin, nullptr,
     "-margins <inch>  all four margins (default %1)", nullptr, nullptr, parseMargins,
     [](TUOpts &, const OptionSpec &) {}},
    {n("top_margin"), HELP_FILTER, K::Real, &TUOpts::top_margin, d(0.25), "", kNoMargin, nullptr,
     "-top_margin <inch>  (default %1)"},
    {n("bottom_margin"), HELP_FILTER, K::Real, &TUOpts::bottom_margin, d(0.25), "", kNoMargin, nullptr,
     "-bottom_margin <inch>  (default %1)"},
    {n("left_margin"), HELP_FILTER, K::Real, &TUOpts::left_margin, d(0.25), "", kNoMargin, nullptr,
     "-left_margin <inch>  (default %1)"},
    {n("right_margin"), HELP_FILTER, K::Real, &TUOpts::right_margin, d(0.25), "", kNoMargin, nullptr,
     "-right_margin <inch>  (default %1)"},
    {n("pixel_margins"), HELP_FILTER, K::Special, {}, d(0), "", kNoPixelMargin, nullptr,
     "-pixel_margins <pixels>  all four pixel margins (default %1)", nullptr, nullptr, parsePixelMargins,
     [](TUOpts &, const OptionSpec &) {}},
    {n("top_pixel_margin"), HELP_FILTER, K::Int, &TUOpts::top_pixel_margin, d(0), "", kNoPixelMargin, nullptr,
     "-top_pixel_margin <pixels>  for a bitmap without registration (default %1)"},
    {n("bottom_pixel_margin"), HELP_FILTER, K::Int, &TUOpts::bottom_pixel_margin, d(0), "", kNoPixelMargin, nullptr,
     "-bottom_pixel_margin <pixels>  for a bitmap without registration (default %1)"},
    {n("left_pixel_margin"), HELP_FILTER, K::Int, &TUOpts::left_pixel_margin, d(0), "", kNoPixelMargin, nullptr,
     "-left_pixel_margin <pixels>  for a bitmap without registration (default %1)"},
    {n("right_pixel_margin"), HELP_FILTER, K::Int, &TUOpts::right_pixel_margin, d(0), "", kNoPixelMargin, nullptr,
     "-right_pixel_margin <pixels>  for a bitmap without registration (default %1)"},
    {n("remove_peg_bars", "rpb"), HELP_FILTER, K::ClearFlag, &TUOpts::keep_peg_bars, d(1), "", nullptr, nullptr,
     "-remove_peg_bars|-rpb  blank the peg bar region"},
    {n("keep_peg_bars"), 0, K::Special, {}, d(), "", nullptr, nullptr, nullptr, nullptr, nullptr, parseKeepPegBars,
     [](TUOpts &, const OptionSpec &) {}},
    {n("peg_bar_size"), HELP_FILTER, K::Real, &TUOpts::peg_bar_size, d(1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No size %1\n"), nullptr, "-peg_bar_size <inch>  (default %1)"},
    {n("asBitmap"), HELP_FILTER, K::SetFlag, &TUOpts::asBitmap, d(0), "", nullptr, nullptr,
     "-asBitmap  keep the drawing a bitmap drawing"},
    {n("pixelPerModelUnit"), HELP_FILTER, K::Special, &TUOpts::pixelPerModelUnit, d(1), "", nullptr, nullptr,
     "-pixelPerModelUnit <number above 0>  (default %1)", nullptr, nullptr, parsePixelPerModelUnit,
     resetPixelPerModelUnit},
    {n("premultiply"), HELP_FILTER, K::Special, &TUOpts::premultiply, d(0), "", kNoValue, nullptr,
     "-premultiply <straight|white|black>  how colour images become a texture (default straight)", nullptr, nullptr,
     parsePremultiply},
    {n("downscale_input"), HELP_FILTER, K::Int, &TUOpts::downscale_input, d(1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No value specified with -downscale_input.\n"), nullptr,
     "-downscale_input <factor>  (default %1)"},
    {n("downscale_texture"), HELP_FILTER, K::Int, &TUOpts::downscale_texture, d(1), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No value specified with -downscale_texture.\n"), nullptr,
     "-downscale_texture <factor>  (default %1)"},
    {n("buildmatte"), HELP_FILTER, K::SetFlag, &TUOpts::buildmatte, d(0), "", nullptr, nullptr,
     "-buildmatte  build a matte of the line art", nullptr, matteOfLineArt},
    {n("buildmatte_colourart"), HELP_FILTER, K::SetFlag, &TUOpts::buildmatte, d(0), "", nullptr, nullptr,
     "-buildmatte_colourart  build a matte of the colour art", nullptr, matteOfColourArt},
    {n("copystrokes"), HELP_FILTER, K::SetFlag, &TUOpts::copystrokes, d(0), "", nullptr, nullptr,
     "-copystrokes  copy the strokes"},
    {n("vectorization_color_id"), HELP_FILTER, K::Special, {}, d(3, 0, 0, 0, 255), "Vectorized Line",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No Vectorization color id specified %1\n"), nullptr,
     "-vectorization_color_id <hex id>[,name[,r,g,b[,a]]]  colour of the line art (default %1)", nullptr, nullptr,
     parseVectorizationColorId, resetVectorizationColorId},
    {n("layer"), HELP_FILTER, K::Text, &TUOpts::layer, d(), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No layer provided.\n"), nullptr,
     "-layer <group:layer>  selected layer for multi layer input drawing e.g. PSD"},
    {n("quadtree"), HELP_FILTER, K::SetFlag, &TUOpts::quadtree, d(0), "", nullptr, nullptr,
     "-quadtree  add quadtree data to large textures"},
    {n("stroke_thickness"), 0, K::Special, &TUOpts::stroke_thickness, d(), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No Stroke Thickness %1\n"), nullptr, nullptr, nullptr, nullptr,
     parseStrokeThickness, [](TUOpts &, const OptionSpec &) {}},

    // --- rgb ---
    {n("rgb"), HELP_RGB, K::SetFlag, &TUOpts::rgb, d(0), "", nullptr, nullptr, "-rgb  rgb keying"},
    {n("rgb_separate"), HELP_RGB, K::SetFlag, &TUOpts::rgb_separate, d(0), "", nullptr, nullptr,
     "-rgb_separate  one layer per key colour", nullptr, separateWithoutOptimization},
    {n("no_red"), HELP_RGB, K::SetFlag, &TUOpts::no_red, d(0), "", nullptr, nullptr, "-no_red  ignore red lines"},
    {n("no_green"), HELP_RGB, K::SetFlag, &TUOpts::no_green, d(0), "", nullptr, nullptr,
     "-no_green  ignore green lines"},
    {n("no_blue"), HELP_RGB, K::SetFlag, &TUOpts::no_blue, d(0), "", nullptr, nullptr, "-no_blue  ignore blue lines"},
    {n("flatten"), HELP_RGB, K::SetFlag, &TUOpts::flatten, d(0), "", nullptr, nullptr,
     "-flatten  flatten the key colours"},
    {n("rgb_alpha_texture"), HELP_RGB, K::SetFlag, &TUOpts::rgb_alpha_texture, d(0), "", nullptr, nullptr,
     "-rgb_alpha_texture  alpha of the texture"},
    {n("rgb_alpha"), HELP_RGB, K::Real, &TUOpts::rgb_alpha, d(255), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No alpha value specified with %1.\n"), "-rgb_alpha",
     "-rgb_alpha <0 to 255>  alpha of the key colours (default %1)", rgbAlpha},
    {n("threshsv"), HELP_RGB, K::Special, {}, d(0.5, 0.5), "", nullptr, nullptr,
     "-threshsv <saturation> <value>  key thresholds (default %1 %2)", nullptr, nullptr, parseThreshSV,
     resetThreshSV},
    {n("threshrgb"), HELP_RGB, K::Real, &TUOpts::threshrgb, d(0.2), "", kNoThresh, nullptr,
     "-threshrgb <0.0 to 1.0>  (default %1)"},
    {n("expand_bitmap_rgb"), HELP_RGB, K::Int, &TUOpts::expand_bitmap_rgb, d(0), "", kNoPixel, nullptr,
     "-expand_bitmap_rgb <pixels>  (default %1)"},
    {n("rmv_rgb_dirt"), HELP_RGB, K::Real, &TUOpts::rmv_rgb_dirt, d(0), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No rgb dirt size specified with %1.\n"), nullptr,
     "-rmv_rgb_dirt <world units^2>  (default %1)"},

    // --- color ---
    {n("color_vectorize"), HELP_COLOR, K::SetFlag, &TUOpts::color_vectorize, d(0), "", nullptr, nullptr,
     "-color_vectorize  vectorize the colours"},
    {n("quantize_color"), HELP_COLOR, K::SetFlag, &TUOpts::quantize_color, d(0), "", nullptr, nullptr,
     "-quantize_color  reduce the colours to a palette"},
    {n("color_rmv_holesl"), HELP_COLOR, K::Real, &TUOpts::color_rmv_holesl, d(0), "", kNoHole, nullptr,
     "-color_rmv_holesl <world units^2>  (default %1)"},
    {n("color_fill_holesl"), HELP_COLOR, K::Real, &TUOpts::color_fill_holesl, d(0), "", kNoHole, nullptr,
     "-color_fill_holesl <world units^2>  (default %1)"},
    {n("color_contour_smooth_passes", "ccsp"), HELP_COLOR, K::Int, &TUOpts::color_contour_smooth_passes, d(3), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No passes specified with %1.\n"), nullptr,
     "-color_contour_smooth_passes|-ccsp <passes>  (default %1)"},
    {n("blur_radius"), HELP_COLOR, K::Real, &TUOpts::blur_radius, d(0), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No radius specified with %1.\n"), nullptr,
     "-blur_radius <pixels>  (default %1)"},
    {n("aspect_ratio"), HELP_COLOR, K::Real, &TUOpts::aspect_ratio, d(4.0 / 3.0), "",
     QT_TRANSLATE_NOOP("TUPix2vecOptions", "No aspect ratio specified with %1.\n"), nullptr,
     "-aspect_ratio <ratio>  (default %1)"},
    {n("penstyle"), HELP_COLOR, K::Special, {}, d(1, 0.1, 5, 1, 1, 8), "", nullptr, nullptr,
     "-penstyle <center alpha> <edge alpha> <gamma> <center pressure> <edge pressure> <noise scaling> <noise "
     "bitmap>  (default %1 %2 %3 %4 %5 %6)",
     nullptr, nullptr, parsePenstyle, resetPenstyle, true},
    {n("pressure_variation"), HELP_COLOR, K::Special, {}, d(0, 0.5, 1, 0.1), "", nullptr, nullptr,
     "-pressure_variation <0|1|2> <min> <max> <max variation>  (default %1 %2 %3 %4)", nullptr, nullptr,
     parsePressureVariation, resetPressureVariation},

    // --- bubble ---
    {n("create_bubbles"), HELP_BUBBLE, K::SetFlag, &TUOpts::create_bubbles, d(0), "", nullptr, nullptr,
     "-create_bubbles  make bubbles"},
    {n("uniform_gap"), HELP_BUBBLE, K::SetFlag, &TUOpts::uniform_gap, d(0), "", nullptr, nullptr,
     "-uniform_gap  same gap between all bubbles"},
    {n("uniform_height"), HELP_BUBBLE, K::SetFlag, &TUOpts::uniform_height, d(0), "", nullptr, nullptr,
     "-uniform_height  *deprecated*"},
    {n("bubble_gap"), HELP_BUBBLE, K::Int, &TUOpts::bubble_gap, d(3), "", kNoValue, nullptr,
     "-bubble_gap <value>  must be >= 1.0 (default %1)", bubbleGap},
    {n("bubble_length"), HELP_BUBBLE, K::Int, &TUOpts::bubble_length, d(10), "", kNoValue, nullptr,
     "-bubble_length <value>  must be >= 1.0 (default %1)", bubbleLength},
    {n("min_radius"), HELP_BUBBLE, K::Real, &TUOpts::min_radius, d(1.5), "", kNoValue, nullptr,
     "-min_radius <value>  must be >= 1.0 (default %1)", minRadius},
    {n("max_radius"), HELP_BUBBLE, K::Real, &TUOpts::max_radius, d(3.5), "", kNoValue, nullptr,
     "-max_radius <value>  must be >= 1.0 (default %1)", maxRadius},

    // --- 4colours ---
    {n("4colours", "fco", "4colours_options"), HELP_4COLOURS, K::Special, {}, d(15, 30, 220, 240, 200, 0), "",
     nullptr, nullptr,
     "-4colours [rgbdiff:N] [dark:N] [grey:N] [white:N] [rt:N] [gt:N] [bt:N] [dirt:N] [keepTexture]  four pen "
     "drawing (defaults %1 %2 %3 %4, thresholds %5, dirt %6: 200 is a good value)",
     nullptr, nullptr, parseFourColours, resetFourColours},
};

}  // namespace

std::span<const OptionSpec> pix2vecOptionTable() { return kTable; }

bool OptionSpec::hasName(const QString &name) const {
    for (const char *alias : names)
        if (alias && name == QLatin1String(alias)) return true;
    return false;
}

const OptionSpec *findPix2vecOption(const QString &name) {
    for (const OptionSpec &spec : kTable)
        if (spec.hasName(name)) return &spec;
    return nullptr;
}

double optionReal(const QString &text) { return std::strtod(text.toLocal8Bit().constData(), nullptr); }

int optionInt(const QString &text) {
    errno = 0;
    const long v = std::strtol(text.toLocal8Bit().constData(), nullptr, 10);
    if (v > INT_MAX) return INT_MAX;
    if (v < INT_MIN) return INT_MIN;
    return static_cast<int>(v);
}

QString optionNumber(double value) { return QString::number(value, 'g', 6); }

std::optional<QString> OptionCursor::next() {
    if (index + 1 >= argc) return std::nullopt;
    return argv.at(++index);
}

std::optional<QString> OptionCursor::nextUndashed() {
    if (index + 1 >= argc || argv.at(index + 1).startsWith(QLatin1Char('-'))) return std::nullopt;
    return argv.at(++index);
}
