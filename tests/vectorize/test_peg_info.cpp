#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <tuple>

#include "scan/vector_scaninfo.h"
#include "vectorize/peg_info.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/scaninfo_keywords.h"

using Math::Point2d;

namespace {

constexpr double kUnitsPerInchAtField12 = 5000.0 / 12.0;
const PegMargins kNoMargins{0, 0, 0, 0};

// Options start from an empty data folder, so that no style of the machine leaks in.
class PegInfoTest : public ::testing::Test {
protected:
    void SetUp() override { qputenv("SCAN_DATA_DIR", dir.path().toLocal8Bit()); }
    void TearDown() override { qunsetenv("SCAN_DATA_DIR"); }

    PegInfo fromScanInfo(const QString &info, uint16_t width, uint16_t height, bool keepPegBars = false,
                         double pegBarSize = 1.0, const PegMargins &margins = kNoMargins) const {
        return PegInfo(true, 0, false, info, "sheet.tif", false, width, height, margins, keepPegBars, pegBarSize, 0.0,
                       options);
    }
    PegInfo plain(uint16_t width, uint16_t height, double field = 0.0, const QString &name = "p.png") const {
        return PegInfo(false, 0, false, QString(), name, false, width, height, kNoMargins, false, 1.0, field, options);
    }

    QTemporaryDir dir;
    TUPix2vecOptions options;
};

QString scanInfoLine(int side, float field, float dpi, float angle, float centreX, float centreY, int pegged = 1,
                     float pages = 1) {
    LMV_scaninfo info{.scan_host = "host", .scanner_name = "bogus", .threshold = 128, .white_point = 240,
                      .black_point = 10, .peg_side = side, .pegged = pegged, .paper_size = field, .pages = pages,
                      .dpi = dpi, .rotation_angle = angle, .rotation_center_x = centreX, .rotation_center_y = centreY};
    return QString::fromStdString(LMV_scaninfo_to_str(&info));
}

void expectNear(Point2d got, Point2d want, double tolerance = 1e-6) {
    EXPECT_NEAR(got.x, want.x, tolerance);
    EXPECT_NEAR(got.y, want.y, tolerance);
}

std::array<double, 4> corners(const Math::Box2d &b) { return {b.x0, b.y0, b.x1, b.y1}; }

// Where the centre peg of a side lies in the world, `inches` from the middle.
Point2d pegWorldPosition(const std::string &side, double inches) {
    const double v = kUnitsPerInchAtField12 * inches;
    return side == "Bottom" ? Point2d{0, -v} : side == "Top" ? Point2d{0, v} : side == "Left" ? Point2d{-v, 0} : Point2d{v, 0};
}

Point2d rotatedAbout(Point2d p, Point2d pivot, double angle) {
    const double cs = std::cos(angle), sn = std::sin(angle);
    const double dx = p.x - pivot.x, dy = p.y - pivot.y;
    return {pivot.x + cs * dx - sn * dy, pivot.y + sn * dx + cs * dy};
}

}  // namespace

TEST_F(PegInfoTest, ScanInfoPutsTheRotationCentreOnThePegOfEverySideAndField) {
    const std::pair<int, const char *> sides[] = {{4, "Bottom"}, {2, "Top"}, {1, "Left"}, {3, "Right"}};
    const std::pair<float, double> fields[] = {{12, 5.25}, {15, 6.18}, {16, 6.75}, {10, 5.25}};  // field, peg inches
    const uint16_t width = 3000, height = 2400;
    const float centreX = 1480, centreY = 2310;  // rows counted down from the top
    for (const auto &[scanSide, name] : sides)
        for (const auto &[field, inches] : fields) {
            SCOPED_TRACE(std::string(name) + " at field " + std::to_string(field));
            const PegInfo peg = fromScanInfo(scanInfoLine(scanSide, field, 200, 0.05f, centreX, centreY), width, height);
            EXPECT_EQ(std::tuple(peg.dpi, peg.paper_size, peg.white_point, peg.black_point), std::tuple(200, field, 240, 10));
            expectNear(peg.transform.Apply(Point2d{centreX, height - 1.0 - centreY}), pegWorldPosition(name, inches), 1e-3);
        }
    // An inch is a field's twelfth and the paper's angle is turned back: a
    // point one inch from the centre, at the angle the paper had.
    const double angle = 0.1;
    const PegInfo peg = fromScanInfo(scanInfoLine(4, 12, 300, float(angle), 1500, 2000), 3000, 2200);
    const Point2d centre{1500, 2200 - 1.0 - 2000};
    const Point2d inchAway = rotatedAbout({centre.x + 300, centre.y}, centre, angle);
    expectNear(peg.transform.Apply(inchAway), {kUnitsPerInchAtField12, -kUnitsPerInchAtField12 * 5.25}, 1e-2);
    // Reading at half size halves dpi and the centre but not the field.
    options.downscale_input = 2;
    const PegInfo half = fromScanInfo(scanInfoLine(4, 16, 400, 0, 2000, 3000), 2000, 1600);
    EXPECT_EQ(std::pair(half.dpi, half.paper_size), std::pair(200, 16.0f));
    expectNear(half.transform.Apply(Point2d{1000, 1600 - 1.0 - 1500}), {0, -kUnitsPerInchAtField12 * 6.75}, 1e-3);
}

TEST_F(PegInfoTest, PegBarLiesAlongTheSideUnlessKeptAndMarginsCutThePicture) {
    const uint16_t w = 2000, h = 1500;
    const struct {
        int scanSide;
        std::array<double, 4> want;
    } cases[] = {{4, {0, h - 100.0, w, h}}, {2, {0, 0, w, 100}}, {1, {0, 0, 100, h}}, {3, {w - 100.0, 0, w, h}}};
    for (const auto &c : cases) {
        const QString line = scanInfoLine(c.scanSide, 12, 200, 0, 1000, 1400);
        EXPECT_EQ(corners(fromScanInfo(line, w, h, false, 0.5).peg_box), c.want) << c.scanSide;
        EXPECT_TRUE(fromScanInfo(line, w, h, true, 0.5).peg_box.isEmpty());
    }
    // Top, bottom, left, right, in inches; a vertical inch is three quarters of the dpi.
    const PegMargins margins{1, 2, 0.5, 0.25};
    const PegInfo peg = fromScanInfo(scanInfoLine(4, 12, 200, 0, 1000, 1400), w, h, false, 1, margins);
    EXPECT_EQ(corners(peg.picture_box), (std::array<double, 4>{100, 300, 1950, 1350}));
}

TEST_F(PegInfoTest, DescriptionNamesPagesPeggingSideFieldAndDpi) {
    // A missing or unreadable dpi is 75 for the map and 200 for the operator;
    // only the exact word "no" counts as not pegged.
    const struct {
        QString info;
        int downscale, dpi;
        float field;
        const char *description;
    } cases[] = {
        {scanInfoLine(4, 12, 300, 0, 0, 0), 1, 300, 12, "1 Page, Pegged, Bottom Holes, 12F Paper, 300 DPI"},
        {scanInfoLine(1, 16.5f, 300, 0, 0, 0, 0, 2), 3, 100, 16.5f, "2 Pages, Not Pegged, Left Holes, 16F Paper, 100 DPI"},
        {"Version: 3 Peg Side: Top Pegged: Yes Paper Size: 12 Pages: 1 Rotation Angle: 0 ", 1, 75, 12,
         "1 Page, Pegged, Top Holes, 12F Paper, 200 DPI"},
        {"DPI: abc Paper Size: x", 1, 75, 12, "1 Page, Not Pegged, Bottom Holes, 12F Paper, 200 DPI"},
        {"Pegged: Nope", 1, 75, 12, "1 Page, Pegged, Bottom Holes, 12F Paper, 200 DPI"},
        {"DPI: 150", 1, 150, 12, "1 Page, Not Pegged, Bottom Holes, 12F Paper, 150 DPI"},
        {"", 1, 75, 12, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.info.toStdString());
        options.downscale_input = c.downscale;
        const PegInfo peg = fromScanInfo(c.info, 100, 100);
        EXPECT_EQ(std::tuple(peg.description(c.downscale), peg.dpi, peg.paper_size), std::tuple(QString(c.description), c.dpi, c.field));
    }
}

TEST_F(PegInfoTest, PlainImageFillsTheFieldHeightAndCarriesItsOwnKeywords) {
    const PegInfo peg(false, 3, true, QString(), "/tmp/drawing.png", false, 2000, 1500, kNoMargins, false, 1.0, 0.0,
                      options);
    EXPECT_EQ(std::tuple(peg.dpi, peg.paper_size, peg.has_alpha, peg.peg_box.isEmpty()), std::tuple(166, 12.0f, 1, true));
    EXPECT_EQ(peg.info, "FILE: Type: /tmp/drawing.png  Width: 2000 Height: 1500 paper size: 12.000000 dpi: 166");
    EXPECT_EQ(peg.description(1), "1 Page, Not Pegged, Bottom Holes, 12F Paper, 166 DPI");
    const double halfWidth = 1875.0 * 2000 / 1500;
    expectNear(peg.transform.Apply(Point2d{0, 0}), {-halfWidth, -1875});
    expectNear(peg.transform.Apply(Point2d{2000, 1500}), {halfWidth, 1875});
    // The lower right quarter of it, with y counted down in the whole picture:
    // the part's pixel (0, 0) is the whole's pixel (1000, 0), y upward.
    const PegInfo part(false, 0, false, QString(), "p.png", false, 1000, 750, kNoMargins, false, 1.0, 0.0, options,
                       PegSubWindow{1000, 750, 1000, 750, 2000, 1500});
    expectNear(part.transform.Apply(Point2d{0, 0}), peg.transform.Apply(Point2d{1000, 0}));
    expectNear(part.transform.Apply(Point2d{1000, 750}), peg.transform.Apply(Point2d{2000, 750}));
    // No height: the identity, and the text stays.
    const PegInfo empty(false, 0, false, "kept", "e.png", false, 10, 0, kNoMargins, false, 1.0, 0.0, options);
    EXPECT_EQ(empty.transform, Math::Matrix2x3());
    EXPECT_EQ(empty.info, "kept");
    // A larger field: the same picture covers more world, and dpi follows.
    options.left_pixel_margin = 10;
    options.top_pixel_margin = 20;
    const PegInfo wide(false, 0, false, QString(), QString(), true, 2000, 1500, kNoMargins, false, 1.0, 16.0, options);
    EXPECT_EQ(wide.info, "FILE: Type: STDIN  Width: 2000 Height: 1500 paper size: 16.000000 dpi: 125");
    expectNear(wide.transform.Apply(Point2d{2000, 1500}), {halfWidth * 16 / 12, 2500});
    EXPECT_EQ(std::pair(wide.picture_box.x0, wide.picture_box.y1), std::pair(10.0, 1480.0));
    // At a given dpi, 100 pixels are one inch, a twelfth of the field's 5000 units.
    options.dpi = 100;
    const Math::Vector2d inch = plain(1200, 600).transform.Apply(Math::Vector2d{100, 100});
    expectNear({inch.x, inch.y}, {kUnitsPerInchAtField12, kUnitsPerInchAtField12}, 1e-9);
}

// The three points of a registration of an upright sheet, for each side, with
// a and b given against the order of the side.
TEST_F(PegInfoTest, RegistrationPutsTheCentrePegAtThePegDistanceWhateverTheAngle) {
    const uint16_t w = 3000, h = 2400;
    const double dpi = 200, pegDistance = 5.25, half = 4 * dpi;
    const struct {
        int side;
        const char *name;
        Point2d c, a, b;  // a and b in the wrong order for the side
    } cases[] = {
        {1, "Top", {1500, 2300}, {1500 - half, 2300}, {1500 + half, 2300}},
        {2, "Bottom", {1500, 100}, {1500 + half, 100}, {1500 - half, 100}},
        {3, "Left", {100, 1200}, {100, 1200 - half}, {100, 1200 + half}},
        {4, "Right", {2900, 1200}, {2900, 1200 + half}, {2900, 1200 - half}},
    };
    const Point2d probe{1700, 1300}, pivot{1234, 987};
    const double perPixel = 5000.0 / (dpi * 12);
    for (const auto &c : cases) {
        const Point2d peg = pegWorldPosition(c.name, pegDistance);
        // On an upright sheet the map only scales and moves.
        const Point2d want{peg.x + (probe.x - c.c.x) * perPixel, peg.y + (probe.y - c.c.y) * perPixel};
        for (double angle : {0.0, 0.02, -0.03}) {
            SCOPED_TRACE(std::string(c.name) + " at " + std::to_string(angle));
            auto turned = [&](Point2d p) { return rotatedAbout(p, pivot, angle); };
            PegInfo info = plain(w, h);
            info.InitFromPegPositions(turned(c.a), turned(c.c), turned(c.b), c.side, kNoMargins, true, 1.0, dpi + 0.7,
                                      pegDistance, 1.0, 1.0);
            EXPECT_EQ(info.dpi, 200);
            expectNear(info.transform.Apply(turned(c.c)), peg, 1e-6);
            expectNear(info.transform.Apply(turned(probe)), want, 1e-6);
            EXPECT_TRUE(info.peg_box.isEmpty());
            // Given in the side's own order, the result is the same.
            PegInfo ordered = info;
            ordered.InitFromPegPositions(turned(c.b), turned(c.c), turned(c.a), c.side, kNoMargins, true, 1.0, dpi,
                                         pegDistance, 1.0, 1.0);
            expectNear(ordered.transform.Apply(probe), info.transform.Apply(probe), 1e-9);
        }
    }
    // Without keeping the bars, the points with y flipped, grown by half the
    // bar size on every side, are blanked; margins set the picture.
    PegInfo info = plain(w, h);
    info.InitFromPegPositions({700, 100}, {1500, 110}, {2300, 120}, 2, {0.5, 0.5, 1, 1}, false, 0.5, 200, 5.25, 1.0, 1.0);
    EXPECT_EQ(corners(info.peg_box), (std::array<double, 4>{700 - 50, 2400 - 120 - 50, 2300 + 50, 2400 - 100 + 50}));
    EXPECT_EQ(corners(info.picture_box), (std::array<double, 4>{200, 75, 2800, 2325}));
    EXPECT_FLOAT_EQ(info.paper_size, 12);
}

TEST(ScanInfoKeywords, ValuesAreFoundByKeyInAnyCaseAndEndAtABlank) {
    const ScanInfoKeywords k("Peg Side: LEFT Pegged: Yes DPI: 300 Paper Size: 15.5 Rotation Angle: 1e-2");
    EXPECT_EQ(k.textValue("peg side:", "bottom"), "left");
    EXPECT_EQ(k.intValue("dpi:", 75), 300);
    EXPECT_FLOAT_EQ(k.floatValue("paper size:", 12), 15.5f);
    EXPECT_FLOAT_EQ(k.floatValue("rotation angle:", 0), 0.01f);
    EXPECT_EQ(k.intValue("pages:", 1), 1);
    EXPECT_EQ(k.intValue("paper size:", 12), 12);  // a float where an int is wanted does not parse
    // The value starts one character after the key, whatever that character is.
    for (const auto &[text, dpi] : {std::pair{"dpi:=300", 300}, {"dpi:", 75}, {"dpi:  300", 75}})
        EXPECT_EQ(ScanInfoKeywords(text).intValue("dpi:", 75), dpi) << text;
}
