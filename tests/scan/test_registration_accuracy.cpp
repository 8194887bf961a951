// Optical registration of the test scanner's field chart, scanned as the
// driver sends it, against where the chart was painted.
#include <gtest/gtest.h>

#include <QPainter>

#include <cmath>
#include <cstring>
#include <numbers>
#include <string>
#include <vector>

#include "scan/pixmap_pixmap.h"
#include "support/chart_spoilers.h"
#include "support/registration_accuracy.h"

namespace {

using regacc::ChartSheet;
using regacc::ChartTruth;
using regacc::Depth;
using regacc::RegistrationError;

constexpr double kAngleGoal = 0.01;  // degrees
constexpr double kCentreGoal = 0.5;  // pixels

// Skews across the range of the scanner's random draw: a degree either way,
// an eighth of an inch along the bar, from an eighth up to 0.05 down.
const FieldChartSkew kSkews[] = {
    {-0.125, -0.125, -1.0},
    {0.03, 0.05, 0.37},
    {0.125, -0.04, 0.93},
};

void expect_within_goals(const QImage &chart, const ChartSheet &sheet, Depth depth = Depth::Grey,
                         double angle_goal = kAngleGoal) {
    for (int32_t side = 1; side <= 4; ++side) {
        const RegistrationError e = regacc::measure_sheet(chart, sheet, side, depth);
        const std::string where = "field " + std::to_string(sheet.field) + " dpi " + std::to_string(sheet.dpi) +
                                  " rotation " + std::to_string(sheet.skew.rotation) + " side " +
                                  std::to_string(side);
        ASSERT_TRUE(e.registered) << where;
        EXPECT_LT(e.angle_degrees, angle_goal) << where;
        EXPECT_LT(e.centre_pixels, kCentreGoal) << where;
    }
}

TEST(ChartTruth, TurnOfPegSideIsWhereTheBandLoaderPutsEachPixel) {
    constexpr int W = 5, H = 3;
    std::vector<uint8_t> raster(W * H);
    for (size_t k = 0; k < raster.size(); ++k) raster[k] = uint8_t(k + 1);
    for (int32_t side = 1; side <= 4; ++side) {
        LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, W, H);
        int32_t x = 0, y = 0;
        load_band_of_pixmap(pixmap, &x, &y, raster.data(), W * H, false, false, side, true, true);
        const int stored_width = width_of_pixmap(pixmap);
        const uint8_t *stored = matte8_data_of_pixmap(pixmap);
        const QTransform turn = turn_of_peg_side(side, W, H);
        for (int j = 0; j < H; ++j)
            for (int i = 0; i < W; ++i) {
                const QPointF p = turn.map(QPointF(i + 0.5, j + 0.5)) - QPointF(0.5, 0.5);
                const int at = int(std::lround(p.y())) * stored_width + int(std::lround(p.x()));
                EXPECT_EQ(stored[at], raster[size_t(j * W + i)]) << "side " << side << " i " << i << " j " << j;
            }
        release_pixmap(pixmap);
    }
}

// The truth is checked on the painting itself, before any scan: the mean of
// the hole's painted pixels strays from the circle's centre only by the
// painting's sampling.
TEST(ChartTruth, PaintedCentreHoleIsWhereTheTruthPutsIt) {
    for (const FieldChartSkew &skew : kSkews) {
        const ChartSheet sheet{12.0, 150, skew};
        const QImage chart = regacc::paint_sheet(sheet);
        for (int32_t side = 1; side <= 4; ++side) {
            const QPointF painted = regacc::painted_truth_of_sheet(chart, sheet, side).centre;
            const QPointF truth = regacc::truth_of_sheet(sheet, side).centre;
            EXPECT_NEAR(painted.x(), truth.x(), 0.2) << skew.rotation << " side " << side;
            EXPECT_NEAR(painted.y(), truth.y(), 0.2) << skew.rotation << " side " << side;
        }
    }
}

TEST(ChartTruth, AngleIsTheSheetsTurnSqueezedAcrossAndZeroWhenStraight) {
    ChartSheet sheet{12.0, 300, {}};
    for (int32_t side = 1; side <= 4; ++side) EXPECT_NEAR(regacc::truth_of_sheet(sheet, side).angle, 0.0, 1e-12);
    // The chart is turned clockwise on the sheet (y down) by the skew, then
    // squeezed across by 3150 / 3900: the bar's tangent shrinks by as much.
    sheet.skew.rotation = 1.0;
    const double squeezed = std::atan(std::tan(std::numbers::pi / 180.0) * 3150.0 / 3900.0);
    for (int32_t side = 1; side <= 4; ++side)
        EXPECT_NEAR(std::fabs(regacc::truth_of_sheet(sheet, side).angle), squeezed, 1e-9) << side;
}

// Clean charts on every side across the fields, resolutions and skews. The
// slots' sampling error is about the same in pixels at any resolution, and the
// bar is shorter in pixels: the angle goal grows as the dpi falls.
TEST(RegistrationAccuracy, CleanChartsOnEverySide) {
    for (const ChartSheet &sheet : {ChartSheet{12.0, 300, kSkews[2]}, ChartSheet{16.0, 300, kSkews[1]},
                                    ChartSheet{12.0, 100, kSkews[0]}, ChartSheet{16.0, 100, kSkews[2]},
                                    ChartSheet{12.0, 150, kSkews[0]}, ChartSheet{16.0, 150, kSkews[2]}})
        expect_within_goals(regacc::paint_sheet(sheet), sheet, Depth::Grey, kAngleGoal * 300.0 / sheet.dpi);
}

// The colour ramp of a colour scan makes the holes unevenly dark.
TEST(RegistrationAccuracy, ColourScanOfTheChart) {
    const ChartSheet sheet{12.0, 300, kSkews[1]};
    expect_within_goals(regacc::paint_sheet(sheet), sheet, Depth::Colour);
}

// Two slits side by side where the round hole was, each of a round hole's
// area, both on the bar and near its middle: two fits, so no registration.
TEST(RegistrationAccuracy, TwoCentreCandidatesBetweenTheSlotsRefuse) {
    const ChartSheet sheet{12.0, 300, {}};
    QImage chart = regacc::paint_sheet(sheet);
    // Unskewed, the bar runs down the picture and the pegs are on the left.
    const QPointF c = regacc::truth_of_sheet(sheet, 1).centre + QPointF(0.5, 0.5);
    const double inch = sheet.dpi;
    {
        QPainter p(&chart);
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::black);
        p.drawEllipse(c, 0.15 * inch, 0.15 * inch);
        p.setBrush(Qt::white);
        for (const double along : {-0.09, 0.09})
            p.drawRect(QRectF(c.x() - 0.26 * inch, c.y() + (along - 0.04) * inch, 0.52 * inch, 0.08 * inch));
    }
    for (int32_t side = 1; side <= 4; ++side) {
        const regacc::Registration r =
            regacc::register_as_station(regacc::scan_sheet(chart, sheet, side, Depth::Grey), sheet.dpi, side);
        EXPECT_FALSE(r.found) << side;
        EXPECT_EQ(r.x, 0.0f);
        EXPECT_EQ(r.y, 0.0f);
        EXPECT_EQ(r.angle, 0.0f);
    }
    // One slit alone is a centre hole: the failure above is the doubt, not the shape.
    {
        QPainter p(&chart);
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::black);
        p.drawRect(QRectF(c.x() - 0.3 * inch, c.y() - 0.2 * inch, 0.6 * inch, 0.18 * inch));
    }
    const regacc::Registration alone =
        regacc::register_as_station(regacc::scan_sheet(chart, sheet, 1, Depth::Grey), sheet.dpi, 1);
    ASSERT_TRUE(alone.found);
    EXPECT_NEAR(alone.y, c.y() - 0.5 + 0.09 * inch, 0.5);
}

// The band searched ends an inch from the peg edge. A centre hole just short
// of its end is found as well as anywhere; one half beyond it is cut to half
// its area, too small for a centre hole, and the sheet goes unregistered.
TEST(RegistrationAccuracy, CentreHoleCutByTheEndOfTheBand) {
    const ChartSheet straight{12.0, 150, {0.05, 0.0, 0.2}};
    const double depth = 0.25 * straight.dpi * 3150.0 / 3900.0;  // across the squeezed picture
    ChartSheet near = straight;
    near.skew = regacc::skew_at_band_end(straight, regacc::Hole::Centre, -0.1 * depth);
    expect_within_goals(regacc::paint_sheet(near), near, Depth::Grey, kAngleGoal * 2.0);

    ChartSheet cut = straight;
    cut.skew = regacc::skew_at_band_end(straight, regacc::Hole::Centre, 0.5 * depth);
    const QImage chart = regacc::paint_sheet(cut);
    for (int32_t side = 1; side <= 4; ++side)
        EXPECT_FALSE(regacc::measure_sheet(chart, cut, side).registered) << side;
}

}  // namespace
