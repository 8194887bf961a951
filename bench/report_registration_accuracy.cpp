// How accurately optical registration finds the test scanner's field chart:
// charts painted with known skews are scanned as the driver sends them and
// registered with the station's settings, and the result is compared with
// where the chart was painted. Clean charts at every resolution first, then
// spoiled ones. The set of charts is fixed, so runs compare.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "support/chart_spoilers.h"
#include "support/registration_accuracy.h"

namespace {

using namespace regacc;

constexpr int kResolutions[] = {100, 150, 200, 300, 400, 600};
constexpr double kFields[] = {12.0, 16.0};
constexpr double kAngleGoal = 0.01;  // degrees, at 300 dpi
constexpr double kCentreGoal = 0.5;  // pixels, at 300 dpi

// Five skews per chart across the range of the scanner's random draw:
// rotations over a degree either way, offsets over an eighth of an inch along
// the bar and from an eighth up to 0.05 down.
constexpr FieldChartSkew kSkews[] = {
    {-0.125, 0.05, -1.0}, {0.0625, -0.125, -0.52}, {0.125, -0.0375, 0.03}, {-0.0625, 0.00625, 0.48}, {0.0, -0.08, 1.0},
};

struct Tally {
    int count = 0, registered = 0;
    double angle_max = 0, angle_sum = 0, centre_max = 0, centre_sum = 0;
    std::string worst_angle, worst_centre;  // the cases of the largest errors
    // Of clean charts: the largest errors against the painted pixels.
    double painted_angle_max = 0, painted_centre_max = 0;

    void add(const RegistrationError &e, const std::string &label) {
        ++count;
        if (!e.registered) return;
        ++registered;
        if (e.angle_degrees >= angle_max) worst_angle = label;
        angle_max = std::max(angle_max, e.angle_degrees);
        angle_sum += e.angle_degrees;
        if (e.centre_pixels >= centre_max) worst_centre = label;
        centre_max = std::max(centre_max, e.centre_pixels);
        centre_sum += e.centre_pixels;
    }
    void add_painted(const RegistrationError &e) {
        painted_angle_max = std::max(painted_angle_max, e.angle_degrees);
        painted_centre_max = std::max(painted_centre_max, e.centre_pixels);
    }
    double angle_mean() const { return registered ? angle_sum / registered : 0.0; }
    double centre_mean() const { return registered ? centre_sum / registered : 0.0; }
};

std::string label_of(const ChartSheet &sheet, int32_t side) {
    char text[128];
    std::snprintf(text, sizeof text, "field %g side %d skew (%g, %g, %g)", sheet.field, side, sheet.skew.x_offset,
                  sheet.skew.y_offset, sheet.skew.rotation);
    return text;
}

void print_header(bool painted = false) {
    std::printf("%-34s %6s %6s %10s %10s %9s %9s%s\n", "", "charts", "found", "angle max", "angle mean", "ctr max",
                "ctr mean", painted ? "   | painted: angle max  ctr max" : "");
}

void print_row(const std::string &name, const Tally &t, bool painted = false) {
    std::printf("%-34s %6d %6d %10.5f %10.5f %9.3f %9.3f", name.c_str(), t.count, t.registered, t.angle_max,
                t.angle_mean(), t.centre_max, t.centre_mean());
    if (painted) std::printf("   |          %9.6f  %7.4f", t.painted_angle_max, t.painted_centre_max);
    std::printf("\n");
}

const char *verdict(bool met) { return met ? "PASS" : "MISS"; }

// Every field, skew and peg side of one resolution, clean.
Tally clean_charts(int dpi, Depth depth) {
    Tally t;
    for (const double field : kFields)
        for (const FieldChartSkew &skew : kSkews) {
            const ChartSheet sheet{field, dpi, skew};
            const QImage chart = paint_sheet(sheet);
            for (int32_t side = 1; side <= 4; ++side) {
                const Registration found = register_as_station(scan_sheet(chart, sheet, side, depth), dpi, side);
                t.add(error_of(found, truth_of_sheet(sheet, side)), label_of(sheet, side));
                t.add_painted(error_of(found, painted_truth_of_sheet(chart, sheet, side)));
            }
        }
    return t;
}

// A spoiled chart of each field and skew, on two peg sides in turn (every
// side comes up): `spoil` changes the painted chart, `reskew` the skew first.
using Spoil = std::function<void(QImage &, const ChartSheet &, uint32_t seed)>;
using Reskew = std::function<FieldChartSkew(const ChartSheet &, int index)>;

Tally spoiled_charts(int dpi, const Spoil &spoil, const Reskew &reskew = {}) {
    Tally t;
    uint32_t seed = 1;
    int index = 0;
    for (const double field : kFields)
        for (const FieldChartSkew &skew : kSkews) {
            ChartSheet sheet{field, dpi, skew};
            if (reskew) sheet.skew = reskew(sheet, index);
            QImage chart = paint_sheet(sheet);
            if (spoil) spoil(chart, sheet, seed++);
            for (const int32_t side : {index % 4 + 1, (index + 2) % 4 + 1})
                t.add(measure_sheet(chart, sheet, side), label_of(sheet, side));
            ++index;
        }
    return t;
}

}  // namespace

int main() {
    std::printf("Optical registration of the test scanner's field chart\n");
    std::printf("Bogus-Color grey scans; threshold 0.5, margin 1 in, pitch 8 in, strict. Fields 12 and 16,\n"
                "5 skews each (rotation -1..1 degree, offsets across the chart's range), peg sides 1-4.\n"
                "Angle error in degrees, centre error in pixels, against the chart's geometry (where the\n"
                "painter was told to put the holes); \"painted\" is against the mean of the pixels the\n"
                "painter and the resampling of the sheet actually set.\n\n");

    print_header(true);
    bool all_found = true;
    Tally at300;
    for (const int dpi : kResolutions) {
        const Tally t = clean_charts(dpi, Depth::Grey);
        print_row(std::to_string(dpi) + " dpi", t, true);
        all_found = all_found && t.registered == t.count;
        if (dpi == 300) at300 = t;
        std::fflush(stdout);
    }
    const Tally colour = clean_charts(300, Depth::Colour);
    print_row("300 dpi, colour scan (ramp)", colour, true);

    std::printf("\nGoals\n");
    std::printf("  every clean grey chart registers        %s\n", verdict(all_found));
    std::printf("  300 dpi angle <= %.2f degree             %s (max %.5f, %s)\n", kAngleGoal,
                verdict(at300.registered == at300.count && at300.angle_max <= kAngleGoal), at300.angle_max,
                at300.worst_angle.c_str());
    std::printf("  300 dpi centre <= %.1f pixel              %s (max %.3f, %s)\n", kCentreGoal,
                verdict(at300.registered == at300.count && at300.centre_max <= kCentreGoal), at300.centre_max,
                at300.worst_centre.c_str());

    // The same skew through the scanner's own offset file.
    {
        const ChartSheet sheet{12.0, 300, kSkews[1]};
        const QImage chart = sheet_through_offset_file(sheet);
        Tally t;
        for (int32_t side = 1; side <= 4; ++side) t.add(measure_sheet(chart, sheet, side), label_of(sheet, side));
        std::printf("  skew from DUMMY_XYR_OFFSET_FILE, 300 dpi: chart %s the painted one; ",
                    chart == paint_sheet(sheet) ? "equals" : "DIFFERS FROM");
        std::printf("%d of %d found, angle max %.5f, centre max %.3f\n", t.registered, t.count, t.angle_max,
                    t.centre_max);
    }

    std::printf("\nSpoiled charts, 300 dpi, 20 each (fields 12 and 16, 5 skews, 2 peg sides)\n");
    print_header();
    constexpr int dpi = 300;
    for (const double sigma : {20.0, 50.0, 80.0})
        print_row("noise sigma " + std::to_string(int(sigma)),
                  spoiled_charts(dpi, [sigma](QImage &c, const ChartSheet &, uint32_t s) { add_grey_noise(c, sigma, s); }));
    for (const int specks : {40, 200, 1000})
        print_row("dust " + std::to_string(specks) + " specks",
                  spoiled_charts(dpi, [specks](QImage &c, const ChartSheet &sh, uint32_t s) { add_dust(c, sh, specks, s); }));
    for (const int radius : {1, 3, 6})
        print_row("box blur " + std::to_string(2 * radius + 1) + " px",
                  spoiled_charts(dpi, [radius](QImage &c, const ChartSheet &, uint32_t) { box_blur(c, radius); }));

    // The band searched ends an inch in; holes pushed against its end, by a
    // share of their depth across the (squeezed) picture.
    struct End {
        const char *name;
        Hole hole;
        double share;
    };
    const End ends[] = {
        {"centre hole 1/10 short of band end", Hole::Centre, -0.1},
        {"centre hole at band end", Hole::Centre, 0.0},
        {"centre hole 1/4 beyond band end", Hole::Centre, 0.25},
        {"centre hole 1/2 beyond band end", Hole::Centre, 0.5},
        {"deeper slot at band end, 1 deg", Hole::Side, 0.0},
        {"deeper slot 1/2 beyond, 1 deg", Hole::Side, 0.5},
    };
    for (const End &end : ends)
        print_row(end.name, spoiled_charts(dpi, {}, [&end](const ChartSheet &sheet, int index) {
                      ChartSheet turned = sheet;
                      // Turned a whole degree either way, one slot reaches deepest.
                      if (end.hole == Hole::Side) turned.skew.rotation = index % 2 ? 1.0 : -1.0;
                      const FieldChartPlacement placement =
                          placement_of_field_chart(sheet.field, sheet.dpi, true, 1.0, 1.0, turned.skew);
                      const double squeeze = double(placement.image_size.width()) / placement.sheet_size;
                      const double depth = (end.hole == Hole::Centre ? 0.25 : 0.14) * sheet.dpi * squeeze;
                      return skew_at_band_end(turned, end.hole, end.share * depth);
                  }));
    return 0;
}
