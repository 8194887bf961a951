#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "support/run_program.h"
#include "vectorize/four_colour_options.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/vectorization_styles.h"

namespace {

// Every record starts from an empty data folder, so that no default style of
// the machine leaks in.
class Pix2vecOptions : public ::testing::Test {
protected:
    void SetUp() override { qputenv("SCAN_DATA_DIR", dir.path().toLocal8Bit()); }
    void TearDown() override { qunsetenv("SCAN_DATA_DIR"); }

    QTemporaryDir dir;
};

}  // namespace

TEST_F(Pix2vecOptions, ValuesAreNormalisedWhenParsed) {
    // Out of range values get their replacements; values that are no numbers
    // read as zero without error; colour ids are hexadecimal and take a name
    // and bytes; -analyze sends the output nowhere unless a file is given.
    using O = TUPix2vecOptions;
    const struct {
        const char *line;
        bool (*holds)(const O &);
    } cases[] = {
        {"-rgb_alpha 128", [](const O &o) { return std::abs(o.rgb_alpha - 0.50196) < 1e-5; }},
        {"-rgb_alpha 0.5", [](const O &o) { return o.rgb_alpha == 0.5; }},
        {"-rgb_alpha 300", [](const O &o) { return o.rgb_alpha == 1.0; }},
        {"-rgb_alpha -4", [](const O &o) { return o.rgb_alpha == 0.0; }},
        {"-fit_degreel 2 -fit_degreec 1", [](const O &o) { return o.fit_degreel == 3 && o.fit_degreec == 1; }},
        {"-bubble_gap 0 -bubble_length -3", [](const O &o) { return o.bubble_gap == 7 && o.bubble_length == 32; }},
        {"-min_radius 0.5 -max_radius -1", [](const O &o) { return o.min_radius == 0.5 && o.max_radius == 4; }},
        {"-min_radius -1", [](const O &o) { return o.min_radius == 2; }},
        {"-gap abc -output_version 5", [](const O &o) { return o.gap == 0 && o.output_version == 0; }},
        {"-output_version 604", [](const O &o) { return o.output_version == 1002; }},
        {"-vectorization_color_id 3,Ink", [](const O &o) { return o.vectorizationColorId == 5 && o.colorName == "Ink"; }},
        {"-vectorization_color_id ff,,Red,200,10,20",  // five parts leave alpha alone
         [](const O &o) { return o.vectorizationColorId == 0xff && o.colorName == "Red" && o.colorR == 200 && o.colorB == 20 && o.colorA == 255; }},
        {"-vectorization_color_id 10,Blue,1,2,3,128", [](const O &o) { return o.colorR == 1 && o.colorA == 128; }},
        {"-vectorization_color_id 10,Blue,9,9", [](const O &o) { return o.colorR == 0 && o.colorName == "Blue"; }},
        {"-outfile x -analyze", [](const O &o) { return o.outfile == "x"; }},
        {"-analyze -outfile x", [](const O &o) { return o.outfile == "x"; }},
        {"-analyze", [](const O &o) { return o.outfile == "/dev/null"; }},
    };
    for (const auto &c : cases) {
        O o;
        EXPECT_TRUE(o.parseOptionLine(c.line, false)) << c.line;
        EXPECT_TRUE(c.holds(o)) << c.line;
    }
    O o;
    o.parseOptionLine("-rgb_alpha 0.5", false);
    o.resetDefaults();
    EXPECT_EQ(o.rgb_alpha, 255);
    EXPECT_FALSE(o.optionLine(true, true, true, true, true, true, true, true, true).contains("rgb_alpha"));
    // Only the model unit is checked.
    EXPECT_FALSE(o.parseOptionLine("-pixelPerModelUnit abc", false));
    EXPECT_EQ(o.lastError, "Invalid pixel per model unit provided: abc.\n");
}

TEST_F(Pix2vecOptions, FailuresStopTheParseAndKeepWhatCameBefore) {
    TUPix2vecOptions o;
    EXPECT_FALSE(o.parseOptionLine("-gap 4 -keep_peg_bars -gap 6", false));
    EXPECT_EQ(std::tuple(o.errors, o.gap), std::tuple(1, 4.0));
    EXPECT_EQ(o.lastError,
              "-keep_peg_bars is deprecated. It is now on by default. Use -remove_peg_bars to remove peg bars.\n");

    const std::pair<const char *, const char *> cases[] = {
        {"-gap", "No gap size specified with gap.\n"},
        {"-rgb_alpha", "No alpha value specified with -rgb_alpha.\n"},
        {"-fs", "No field size fs\n"},
        {"-register 200 T", "No strictness -register\n"},
        {"-rmv_hairs 2", "Number of passes not specified with -rmv_hairs.\n"},
        {"-premultiply grey", "Wrong value specified for -premultiply: (grey).\n Expecting [straight|white|black].\n"},
        {"-4colours dark", "Wrong 4 colour options.\n"},
        {"file.tif", "Incorrect Usage (\"file.tif\")"},
        {"-Gap 3", "Incorrect Usage (\"-Gap\")"},
        {"-stroke_thickness 3", "Incorrect Usage (\"-stroke_thickness\")"},
        // Dashed values are missing values for these two.
        {"-penstyle -1 0.1 5 1 1 8 noise.png", "No center alpha specified with -penstyle\n"},
        {"-pressure_variation 1 0.5 -1 0.1", "No max pressure specified with -pressure_variation\n"},
    };
    for (const auto &[line, error] : cases) {
        TUPix2vecOptions fresh;
        EXPECT_FALSE(fresh.parseOptionLine(line, false)) << line;
        EXPECT_EQ(fresh.lastError, error) << line;
    }
    o.resetDefaults();  // errors count until a reset
    EXPECT_TRUE(o.parseOptionLine("-stroke_thickness 3", true));
    EXPECT_EQ(o.stroke_thickness, 3);
}

TEST_F(Pix2vecOptions, RegisterWordsMapToSidesAndStrictness) {
    TUPix2vecOptions o;
    EXPECT_TRUE(o.parseOptionLine("-register 200 top loose -out_peg_position same -scanner_calibrate -2 1.5", false));
    EXPECT_EQ(std::tuple(o.register_, o.dpi, o.side, o.strict, o.out_peg_position, o.calibX, o.calibY),
              std::tuple(true, 200, 1, 0, 0, 1, 1.5));
    o.parseOptionLine("-register 150 x Strict -out_peg_position r", false);
    EXPECT_EQ(std::tuple(o.side, o.strict, o.out_peg_position), std::tuple(3, 1, 4));
    EXPECT_TRUE(o.optionLine(true, true, true, true, true, true, true, true, false)
                    .contains("-register 150 L S "));
    EXPECT_FALSE(o.optionLine(true, false, true, true, true, true, true, true, false).contains("-register"));
}

TEST_F(Pix2vecOptions, StyleLineReadsBackToTheSameRecord) {
    TUPix2vecOptions o;
    ASSERT_TRUE(o.parseOptionLine(
        "-file in.tif -gap 3.5 -threshl 0.25 -rmv_hairs 2 4 -2pass -support_thin_lines -layer g:l -rgb "
        "-rgb_alpha 0.5 -threshsv 0.3 0.7 -4colours rt:0.9 dirt:200 -bubble_gap 5 -remove_peg_bars -debug -debug "
        "-noughtsfile n.txt -margins 0.5 -register 300 R S -out_peg_position B -pressure_variation 2 0.25 0.75 0.2 "
        "-buildmatte_colourart -copystrokes -scanner_calibrate 1.01 0.99 -stroke_thickness 4 -output_version 604",
        true));
    // Through a style file and back.
    ASSERT_TRUE(o.writeStyleFile(dir.filePath("style.vof"), true));
    EXPECT_FALSE(o.writeStyleFile(dir.filePath("missing/style.vof"), true));
    QFile file(dir.filePath("style.vof"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const QString line = QString::fromUtf8(file.readAll()).trimmed();
    EXPECT_EQ(line, o.styleLine(true).trimmed());
    TUPix2vecOptions back;
    back.resetDefaults();
    ASSERT_TRUE(back.parseOptionLine(line, true)) << qPrintable(back.lastError) << qPrintable(line);
    EXPECT_EQ(back.styleLine(true).trimmed(), line);
    EXPECT_EQ(std::tuple(back.fourColourOptions.redThreshold, back.debug, back.matteTarget, back.side, back.keep_peg_bars,
                         back.top_margin, back.pressure_max, back.stroke_thickness),
              std::tuple(229, 2, 1, 4, false, 0.5, 0.75f, 4));
    EXPECT_TRUE(line.contains("-margins 0.5 "));
    // A style with colour quantizing writes the option without its dash and
    // does not read back.
    o.quantize_color = true;
    TUPix2vecOptions slip;
    EXPECT_FALSE(slip.parseOptionLine(o.styleLine(true), true));
    EXPECT_EQ(slip.lastError, "Incorrect Usage (\"quantize_color\")");
}

TEST_F(Pix2vecOptions, DefaultStyleIsLoadedAndResetKeepsThePenstyle) {
    {
        QFile style(dir.filePath("default.vof"));
        ASSERT_TRUE(style.open(QIODevice::WriteOnly));
        style.write("-gap 3 -penstyle 0.5 0.2 4 1 1 6 missing.png -stroke_thickness 5\n");
    }
    TUPix2vecOptions o;
    // The bitmap does not exist: no error, no bitmap.
    EXPECT_EQ(std::tuple(o.errors, o.gap, o.stroke_thickness, o.penstyle, bool(o.penstyle_noise)), std::tuple(0, 3.0, 5, true, false));
    o.resetDefaults();
    EXPECT_EQ(o.gap, 10);
    EXPECT_FLOAT_EQ(o.penstyle_center_alpha, 0.5f);
    EXPECT_TRUE(o.optionLine(false, false, false, false, false, false, false, false, false)
                    .contains("-penstyle 0.5 0.2 4 1 1 6 missing.png "));
}

TEST_F(Pix2vecOptions, HelpEndsTheParseAndPicksSections) {
    TUPix2vecOptions o;
    o.parseArguments(4, {"pix2vec", "--help", "filter", "-gap"}, false, false);
    EXPECT_EQ(o.help, 1);
    EXPECT_EQ(o.errors, 0);
    const QString filter = o.helpText(HELP_FILTER);
    EXPECT_TRUE(filter.contains("\t-gap <world units>  close gaps up to this big (default 10)\n"));
    EXPECT_FALSE(filter.contains("-rgb_alpha"));
    EXPECT_TRUE(filter.startsWith(QString(71, '-') + '\n'));
    const QString all = o.helpText(HELP_ALL);
    EXPECT_LT(all.indexOf("-register "), all.indexOf("-gap "));
    EXPECT_LT(all.indexOf("-threshsv"), all.indexOf("-blur_radius"));
    EXPECT_TRUE(all.contains("(default 1.33333)"));
}

TEST(FourColourOptions, ParseStopsAtTheNextOptionAndTextReadsBackUnlessTheTextureIsKept) {
    auto parseWords = [](FourColourOptions &o, QStringList words) {
        words.prepend(QStringLiteral("-4colours"));
        return o.parse(words, 0, int(words.size()));
    };
    // Values below one are shares of 255, except the dirt area; keys are not case sensitive.
    FourColourOptions o;
    EXPECT_EQ(parseWords(o, {"rt:0.9", "GT:1", "bt:0.5", "dirt:0.5", "grey:100", "-gap", "3"}), 5);
    EXPECT_EQ(std::tuple(o.redThreshold, o.greenThreshold, o.blueThreshold, o.dirtArea, o.grey),
              std::tuple(229, 1, 127, 0.5, 100));
    for (const auto &[words, used] : {std::pair{QStringList{}, 0}, {{"dark"}, -1}, {{"dark:x"}, -1}, {{"dark:1:2"}, -1},
                                      {{"unknown:4"}, 1}})
        EXPECT_EQ(parseWords(o, words), used) << words.join(' ').toStdString();

    o = FourColourOptions();
    parseWords(o, {"rgbdiff:20", "white:250", "dirt:200"});
    EXPECT_EQ(o.toText(), "rgbdiff:20 dark:30 grey:220 white:250 dirt:200.0 rt:200 gt:200 bt:200");
    FourColourOptions back;
    EXPECT_EQ(parseWords(back, o.toText().split(' ')), 8);
    EXPECT_EQ(back.toText(), o.toText());
    o.keepTexture = true;
    EXPECT_TRUE(o.toText().endsWith("bt:200keepTexture"));
    EXPECT_EQ(parseWords(back, o.toText().split(' ')), -1);
}

// Each style of a studio's VectOptions.conf through `scanctl options
// --style-line` reads back to itself.
namespace {

constexpr const char *kStudioStyles =
    "# Styles of the studio\n"
    "style_name: Clean Line\n"
    "options: -thresh 0.6 -gap 3 -fit_errorl 0.8 -smoothl 2\n"
    "style_name: Pencil\n"
    "options: -pencil -threshl 0.35 -rmv_dirtl 4 -no_normalize\n"
    "style_name: Colour Art\n"
    "options: -rgb -threshrgb 0.2 -fit_errorc 1.5 -rmv_holesc 12 -min_radius 1 -max_radius 40\n"
    "style_name: Pegs Kept\n"
    "options: -register 2 -registration_looseness_factor 3 -pegpitch 8 -rmargin 1.25\n";

// The record a style line gives, from the defaults alone.
TUPix2vecOptions parsed(const QString &line) {
    TUPix2vecOptions options;
    options.resetDefaults();
    EXPECT_TRUE(options.parseOptionLine(line, true)) << line.toStdString() << ": " << options.lastError.toStdString();
    return options;
}

QString everything(const TUPix2vecOptions &o) { return o.optionLine(true, true, true, true, true, true, true, true, true); }

TEST(StyleLines, EachStudioStylePrintedByScanctlParsesBackToItself) {
    QString text = QString::fromLatin1(kStudioStyles);
    QTextStream in(&text);
    const VectorizationStyleList list = readVectorizationStyles(in);
    ASSERT_TRUE(list.errors.isEmpty()) << list.errors.toStdString();
    ASSERT_EQ(list.styles.size(), 4u);
    for (const VectorizationStyle &style : list.styles) {
        const ProcessResult printed =
            run_program(QStringLiteral(SCANCTL_PATH), QStringList{"options", "--style-line"} + style.options.split(' ', Qt::SkipEmptyParts));
        ASSERT_EQ(printed.status, 0) << style.name.toStdString() << ": " << printed.err.toStdString();
        const QString line = printed.out.trimmed();
        EXPECT_EQ(parsed(line).styleLine(true).trimmed(), line) << style.name.toStdString();
        EXPECT_EQ(everything(parsed(line)), everything(parsed(style.options))) << style.name.toStdString();
    }
}

}  // namespace
