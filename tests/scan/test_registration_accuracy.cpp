// Optical registration of the test scanner's field chart, scanned as the
// driver sends it, against where the chart was painted.
#include <gtest/gtest.h>

#include "support/chart_spoilers.h"
#include "support/registration_accuracy.h"

namespace {

using regacc::ChartSheet;
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
        SCOPED_TRACE(testing::Message() << "field " << sheet.field << " dpi " << sheet.dpi << " rotation "
                                        << sheet.skew.rotation << " side " << side);
        ASSERT_TRUE(e.registered);
        EXPECT_LT(e.angle_degrees, angle_goal);
        EXPECT_LT(e.centre_pixels, kCentreGoal);
    }
}

// Clean charts on every side across fields, resolutions and skews, and a colour scan (its ramp
// darkens the holes unevenly). The bar is shorter in pixels at lower dpi: the angle goal grows.
TEST(RegistrationAccuracy, CleanChartsOnEverySide) {
    for (auto [sheet, depth] : {std::pair(ChartSheet{12.0, 300, kSkews[2]}, Depth::Grey),
                                {ChartSheet{16.0, 300, kSkews[1]}, Depth::Grey},
                                {ChartSheet{12.0, 100, kSkews[0]}, Depth::Grey},
                                {ChartSheet{16.0, 100, kSkews[2]}, Depth::Grey},
                                {ChartSheet{12.0, 150, kSkews[0]}, Depth::Grey},
                                {ChartSheet{16.0, 150, kSkews[2]}, Depth::Grey},
                                {ChartSheet{12.0, 300, kSkews[1]}, Depth::Colour}})
        expect_within_goals(regacc::paint_sheet(sheet), sheet, depth, kAngleGoal * 300.0 / sheet.dpi);
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
