// The peg fit: candidates by area, the choice of one peg bar among them, and
// optical registration of punched pages drawn at 200 dpi.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

#include "scan/optical_registration.h"
#include "scan/peg_candidates.h"

namespace {

using Math::Point2d;

PegRegistrationOptions options_at_200(int side = 2, int strict = 1) {
    PegRegistrationOptions o;
    o.dpi = 200.0;
    o.side = side;
    o.strict = strict;
    return o;
}

GR_BezierPath2d rectangle(double x, double y, double w, double h) {
    GR_BezierPath2d path;
    for (const Point2d &p : {Point2d{x, y}, Point2d{x + w, y}, Point2d{x + w, y + h}, Point2d{x, y + h}, Point2d{x, y}})
        path.append(p);
    return path;
}

testing::AssertionResult near(Point2d got, Point2d want, double tolerance) {
    if (std::abs(got.x - want.x) <= tolerance && std::abs(got.y - want.y) <= tolerance) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << got.x << ", " << got.y << ") is not within " << tolerance << " of ("
                                       << want.x << ", " << want.y << ")";
}

// Candidates of polygons on an empty mask, where refining leaves each
// polygon's mean point as it is.
PegCandidates candidates_of(const std::vector<GR_BezierPath2d> &polygons, const PegRegistrationOptions &o) {
    return peg_candidates(polygons, BM_MaskMap(400, 400), BM_GreyMap(400, 400), o);
}

// ---- candidates ----

TEST(PegCandidates, AreaLimitsAt200DpiAreStrictAndUseTheFloat64Factors) {
    struct Case {
        double w, h;
        bool centre, side;
    };
    // Centre: 1418.6254.. to 2596.7226..; side: 1806.2499999999995 to
    // 6612.499999999998, so 1806.25 is a slot and 6612.5 is not.
    const Case cases[] = {
        {1.0, 1418.62, false, false}, {1.0, 1418.63, true, false},  {1.0, 1806.24, true, false},
        {42.5, 42.5, true, true},     {1.0, 2000.0, true, true},    {1.0, 2596.72, true, true},
        {1.0, 2596.73, false, true},  {50.0, 132.2499, false, true}, {50.0, 132.25, false, false},
    };
    for (const Case &c : cases) {
        const PegCandidates found = candidates_of({rectangle(10, 10, c.w, c.h)}, options_at_200());
        EXPECT_EQ(std::pair(found.center.size(), found.side.size()), std::pair(size_t(c.centre), size_t(c.side)))
            << c.w * c.h;
    }
}

// On an empty mask the point is the mean of all points, calibrated like the
// area; on a mask it is the grey-weighted centroid of the masked pixels.
TEST(PegCandidates, PointIsTheMeanOfAllPointsOrTheCentroidOfTheMask) {
    PegRegistrationOptions o = options_at_200();
    o.calibX = 1.25;
    // 1600 px² is a round hole only; calibrated it is 2000, a slot as well.
    PegCandidates found = candidates_of({rectangle(100, 200, 40, 40)}, o);
    ASSERT_EQ(std::pair(found.center.size(), found.side.size()), (std::pair<size_t, size_t>(1, 1)));
    // The closing point counts again: (100+140+140+100+100)/5, (200+200+240+240+200)/5.
    EXPECT_EQ(found.center[0], (Point2d{116.0 * 1.25, 216.0}));

    BM_MaskMap mask(400, 400);
    BM_GreyMap grey(400, 400);
    // A bright 40 x 40 block with a brighter right half pulls the point right.
    for (int y = 100; y < 140; ++y)
        for (int x = 100; x < 140; ++x) mask.set(x, y, 1), grey.set(x, y, x < 120 ? 100 : 200);
    // The polygon (3600 px², a slot) is larger so that its window holds the block.
    found = peg_candidates({rectangle(90, 90, 60, 60)}, mask, grey, options_at_200());
    ASSERT_EQ(found.side.size(), 1u);
    EXPECT_TRUE(near(found.side[0], {(109.5 * 100 + 129.5 * 200) / 300.0, 119.5}, 1e-9));
}

TEST(PegCandidates, RoundHolesAreFittedCirclesAndNeverSlots) {
    GR_BezierPath2d hole;  // a circle of radius 25 around (150, 160): 72 points and the first again
    for (int i = 0; i <= 72; ++i) {
        const double t = std::numbers::pi * (i % 72) / 36;
        hole.append({150 + 25.0 * std::cos(t), 160 + 25.0 * std::sin(t)});
    }
    PegCircle fit = fit_peg_circle(hole, 2.0, 1.0);
    EXPECT_TRUE(near(fit.centre, {300, 160}, 1e-9));
    fit = fit_peg_circle(hole, 1.0, 1.0);
    EXPECT_NEAR(fit.radius, 25.0, 1e-9);
    EXPECT_NEAR(fit.variance, 0.0, 1e-9);
    GR_BezierPath2d two;  // fewer than three points
    two.append({5, 5});
    two.append({9, 9});
    fit = fit_peg_circle(two, 1.0, 1.0);
    EXPECT_EQ(std::pair(fit.centre, fit.radius), std::pair(Point2d{0, 0}, 0.0));

    // π·25² ≈ 1963 is in the slot range too, but round-hole mode has no slots;
    // the candidate is the circle's centre, not the refined mean.
    PegRegistrationOptions o = options_at_200();
    o.centerPegHoles = true;
    const PegCandidates found = candidates_of({hole, rectangle(0, 0, 10, 10)}, o);
    ASSERT_EQ(std::pair(found.center.size(), found.side.size()), (std::pair<size_t, size_t>(1, 0)));
    EXPECT_TRUE(near(found.center[0], {150, 160}, 1e-9));
}

// ---- decision ----

// A bar along the bottom band of a 2000 x 2000 picture at 200 dpi, pitch 8.
const Math::Box2d kBottomBand{0, 1800, 2000, 2000};
const Point2d kLeft{200, 1900}, kMiddle{1000, 1900}, kRight{1800, 1900};

bool decide(const PegCandidates &k, const PegRegistrationOptions &o, Point2d out[3],
            const Math::Box2d &box = kBottomBand) {
    return decide_pegs(k, box, o, out[0], out[1], out[2]);
}

// Each side accepts only its own order of the ends, and needs a middle and two ends.
TEST(PegDecision, EachSideAcceptsOnlyItsOwnOrderOfEnds) {
    const Point2d top{1000, 200}, bottom{1000, 1800}, centre{1000, 1000};
    struct Case {
        int side;
        PegCandidates k;
        bool fits;
        Point2d a, b;
    };
    const Case cases[] = {
        {1, {{kMiddle}, {kLeft, kRight}}, true, kRight, kLeft}, {2, {{kMiddle}, {kRight, kLeft}}, true, kLeft, kRight},
        {3, {{centre}, {top, bottom}}, true, bottom, top},      {4, {{centre}, {bottom, top}}, true, top, bottom},
        {3, {{kMiddle}, {kLeft, kRight}}, false, {}, {}},      {1, {{centre}, {top, bottom}}, false, {}, {}},
        {0, {{kMiddle}, {kLeft, kRight}}, false, {}, {}},      {2, {{kMiddle}, {kLeft}}, false, {}, {}},
        {2, {{}, {kLeft, kRight}}, false, {}, {}},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const Case &c = cases[i];
        Point2d out[3];
        ASSERT_EQ(decide(c.k, options_at_200(c.side), out), c.fits) << "case " << i;
        if (c.fits) {
            EXPECT_EQ(std::tuple(out[0], out[1], out[2]), std::tuple(c.a, c.k.center[0], c.b)) << "case " << i;
        }
    }
}

TEST(PegDecision, TolerancesAndTheirLooseness) {
    // Strict at 200 dpi: ends 1600 ± 50 apart, middle 800 ± 25 along and
    // at most 2 off the line; loose doubles each.
    struct Case {
        Point2d b, c;
        bool strict, loose;
    };
    const Case cases[] = {
        {{1849.9, 1900}, {1024.9, 1900}, true, true},   {{1850.1, 1900}, {1024.9, 1900}, false, true},
        {{1900.1, 1900}, {1050, 1900}, false, false},   {{1800, 1900}, {1024.9, 1900}, true, true},
        {{1800, 1900}, {1025.1, 1900}, false, true},    {{1800, 1900}, {1050.1, 1900}, false, false},
        {{1800, 1900}, {1000, 1901.9}, true, true},     {{1800, 1900}, {1000, 1897.9}, false, true},
        {{1800, 1900}, {1000, 1904.1}, false, false},
    };
    for (const Case &k : cases) {
        Point2d out[3];
        const PegCandidates candidates{{k.c}, {kLeft, k.b}};
        EXPECT_EQ(decide(candidates, options_at_200(2, 1), out), k.strict) << k.b.x << " " << k.c.x << " " << k.c.y;
        EXPECT_EQ(decide(candidates, options_at_200(2, 0), out), k.loose) << k.b.x << " " << k.c.x << " " << k.c.y;
    }
}

// Two fits close together are doubt, even against a far rival nearer the band's middle. Of two
// bars 1000 apart, in either order, the one nearer the middle of the search box wins.
TEST(PegDecision, RivalBars) {
    const Point2d farLeft{200, 900}, farMiddle{1000, 900}, farRight{1800, 900};
    const Math::Box2d farBand{0, 800, 2000, 1000};
    Point2d out[3];
    EXPECT_FALSE(decide({{kMiddle, {1010, 1900}}, {kLeft, kRight}}, options_at_200(), out));
    EXPECT_FALSE(
        decide({{kMiddle, {1010, 1900}, farMiddle}, {kLeft, kRight, farLeft, farRight}}, options_at_200(), out, farBand));
    for (const PegCandidates &k : {PegCandidates{{kMiddle, farMiddle}, {kLeft, kRight, farLeft, farRight}},
                                   PegCandidates{{farMiddle, kMiddle}, {farLeft, farRight, kLeft, kRight}}})
        for (auto [band, want] : {std::pair(kBottomBand, kMiddle), {farBand, farMiddle}}) {
            ASSERT_TRUE(decide(k, options_at_200(), out, band));
            EXPECT_EQ(out[1], want);
        }
}

// Round holes span two pitches end to end, and are traced on request.
TEST(PegDecision, RoundHolesSpanTwoPitches) {
    PegRegistrationOptions o = options_at_200();
    o.centerPegHoles = true;
    o.rdebug = true;
    const Point2d left{200, 1900}, middle{1800, 1903}, right{3400, 1900};
    Point2d out[3];
    testing::internal::CaptureStdout();
    ASSERT_TRUE(decide({{middle, right, left}, {}}, o, out));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Performing registration using only center pegs holes 3 center candidates\n"
              "Point: 1800.000000 1903.000000\nPoint: 3400.000000 1900.000000\nPoint: 200.000000 1900.000000\n"
              "Distances: 1600.002812 1600.002812 3200.000000\n");
    EXPECT_EQ(std::tuple(out[0], out[1], out[2]), std::tuple(left, middle, right));
    o.rdebug = false;
    // 8 off the line is the limit; a middle 9 off fails strict.
    EXPECT_FALSE(decide({{{1800, 1909}, right, left}, {}}, o, out));
    // A normal-mode bar (one pitch end to end) is no round-hole bar; two holes are too few.
    EXPECT_FALSE(decide({{kLeft, kMiddle, kRight}, {}}, o, out));
    EXPECT_FALSE(decide({{kLeft, kRight}, {kLeft, kRight, kMiddle}}, o, out));
}

TEST(PegSearchBox, BandOfEachSideIsInImagePixels) {
    PegRegistrationOptions o = options_at_200();
    o.calibX = 2.0;
    o.calibY = 0.5;
    for (auto [side, x0, y0, x1, y1] : {std::tuple(1, 0, 0, 1000, 400), {2, 0, 400, 1000, 800}, {3, 0, 0, 100, 800},
                                         {4, 900, 0, 1000, 800}, {7, 0, 0, 1000, 800}}) {
        o.side = side;
        const Math::Box2d box = search_box_of_pegs(1000, 800, o);
        EXPECT_EQ(std::tuple(box.x0, box.y0, box.x1, box.y1), std::tuple(x0, y0, x1, y1)) << side;
    }
}

// ---- the whole search on drawn pages ----

constexpr int kPage = 2000;

// Where the middle hole of each side's bar lies, in pixel indices.
const Point2d kMiddleOfSide[] = {{}, {1000, 100}, {1000, 1900}, {100, 1000}, {1900, 1000}};

// A white page punched at 200 dpi along `side` (a quarter-inch round hole, slots 8 inches apart),
// the bar turned by `turn` radians anticlockwise (y up) and scaled; the middle hole at kMiddleOfSide.
CEL_PixmapPtr punched_page(int side, double turn, double scaleX = 1.0, double scaleY = 1.0) {
    QImage page(kPage, kPage, QImage::Format_Grayscale8);
    page.fill(255);
    QPainter painter(&page);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    const Point2d middle = kMiddleOfSide[side];
    painter.translate(middle.x + 0.5, middle.y + 0.5);
    painter.scale(scaleX, scaleY);
    painter.rotate(-turn * 180.0 / std::numbers::pi + (side >= 3 ? 90.0 : 0.0));
    painter.drawEllipse(QPointF(0, 0), 25.0, 25.0);
    for (const double x : {-800.0, 800.0}) painter.drawRoundedRect(QRectF(x - 50, -15, 100, 30), 15, 15);
    painter.end();
    auto pixmap = UT_makeShared<CEL_PixmapMatte8>(page.width(), page.height());
    for (int y = 0; y < page.height(); ++y)
        std::memcpy(pixmap->row(y), page.constScanLine(y), static_cast<size_t>(page.width()));
    return pixmap;
}

struct Found {
    bool ok = false;
    float x = -1, y = -1, angle = -1;
};
Found register_page(const CEL_PixmapPtr &picture, const PegRegistrationOptions &o) {
    Found f;
    f.ok = optical_registration(picture, o, &f.x, &f.y, &f.angle);
    return f;
}

// The angle each side's bar comes back with (colour, failures and other dpi are measured on the
// test scanner's chart), and a calibrated search, traced on request.
TEST(OpticalRegistration, FindsTheMiddleHoleAndTheTurnOnEverySide) {
    const double turn = 0.4 * std::numbers::pi / 180.0;
    const double tolerance = 0.01 * std::numbers::pi / 180.0;
    for (int side = 1; side <= 4; ++side) {
        const Found f = register_page(punched_page(side, turn), options_at_200(side));
        ASSERT_TRUE(f.ok) << "side " << side;
        EXPECT_TRUE(near({f.x, f.y}, kMiddleOfSide[side], 0.25)) << "side " << side;
        // The top bar runs right to left: its corrected angle is left near -2π.
        EXPECT_NEAR(f.angle, side == 1 ? turn - 2.0 * std::numbers::pi : turn, tolerance) << "side " << side;
    }
    // Turned the other way, the top bar's angle lands near 0.
    EXPECT_NEAR(register_page(punched_page(1, -turn), options_at_200(1)).angle, -turn, tolerance);
    EXPECT_FALSE(register_page(CEL_PixmapPtr(), options_at_200()).ok);

    // A scanner that stretches x by 1/1.25 and y by 1/0.8: the page is drawn
    // that much smaller, the calibration brings the bar back to 8 inches.
    PegRegistrationOptions o = options_at_200();
    o.calibX = 1.25;
    o.calibY = 0.8;
    o.rdebug = true;
    const CEL_PixmapPtr page = punched_page(2, 0.0, 1.0 / o.calibX, 1.0 / o.calibY);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const Found calibrated = register_page(page, o);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Performing optical registration. Looseness factor is 2.000000\nCalibration values: 1.250000 0.800000\n");
    ASSERT_TRUE(calibrated.ok);
    EXPECT_TRUE(near({calibrated.x, calibrated.y}, kMiddleOfSide[2], 0.25));
    EXPECT_NEAR(calibrated.angle, 0.0, tolerance);
    EXPECT_NE(out.find("Found a side peg candidate at coordinates ("), std::string::npos) << out;
    EXPECT_EQ(out.find("Distances"), std::string::npos);  // round holes only
}

}  // namespace
