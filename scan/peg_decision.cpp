#include "scan/locate_pegs.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

// The order two peg points must have on each side, so that a runs to b in
// one fixed direction and the angle of a→b means the same on every drawing.
bool in_side_order(int side, const Math::Point2d &a, const Math::Point2d &b) {
    switch (side) {
    case 1: return a.x > b.x;
    case 2: return b.x > a.x;
    case 3: return a.y > b.y;
    case 4: return b.y > a.y;
    default: return false;
    }
}

// The geometry of one peg bar in calibrated pixels: how far apart its ends
// are, where its middle hole is, and how far each may stray.
struct BarGeometry {
    double endToEnd;
    double endToMiddle;
    double endTolerance;
    double alongTolerance;
    double offTolerance;
};

class PegFit {
public:
    PegFit(const PegCandidates &candidates, const Math::Box2d &searchBox, const PegRegistrationOptions &options)
        : candidates_(candidates), middle_(searchBox.center()), options_(options) {}

    bool run(Math::Point2d &a, Math::Point2d &c, Math::Point2d &b) {
        const double dpi = options_.dpi;
        if (options_.centerPegHoles) {
            if (candidates_.center.size() < 3) return false;
            if (options_.rdebug) {
                std::printf("Performing registration using only center pegs holes %d center candidates\n",
                            static_cast<int>(candidates_.center.size()));
                for (const Math::Point2d &p : candidates_.center) std::printf("Point: %f %f\n", p.x, p.y);
            }
            const BarGeometry bar{2.0 * dpi * options_.pegpitch, dpi * options_.pegpitch,
                                  tolerance(std::fabs(dpi * 0.25)), tolerance(dpi * 0.125),
                                  tolerance(std::max(dpi * 0.01, 1.0) * 4.0)};
            search(candidates_.center, bar, true);
        } else {
            if (candidates_.center.empty() || candidates_.side.size() < 2) return false;
            const BarGeometry bar{dpi * options_.pegpitch, dpi * options_.pegpitch * 0.5,
                                  tolerance(std::fabs(dpi * 0.25)), tolerance(dpi * 0.125),
                                  tolerance(std::max(dpi * 0.01, 1.0))};
            search(candidates_.side, bar, false);
        }
        if (count_ != 1) return false;
        a = a_, c = c_, b = b_;
        return true;
    }

private:
    double tolerance(double v) const { return options_.strict == 0 ? v * options_.looseness : v; }

    // Every ordered pair of ends that is one bar apart, and every middle
    // candidate on it. In round-hole mode the ends come from the middle list
    // too, and a middle is never one of its own ends.
    void search(const std::vector<Math::Point2d> &ends, const BarGeometry &bar, bool roundHoles) {
        const std::vector<Math::Point2d> &middles = candidates_.center;
        for (size_t i = 0; i < ends.size(); ++i) {
            for (size_t j = 0; j < ends.size(); ++j) {
                if (j == i) continue;
                const Math::Point2d &a = ends[i], &b = ends[j];
                const double length = a.GetDistance(b);
                if (std::fabs(length - bar.endToEnd) > bar.endTolerance) continue;
                if (!in_side_order(options_.side, a, b)) continue;
                const Math::Segment2d segment{a, b};
                for (size_t k = 0; k < middles.size(); ++k) {
                    if (roundHoles && (k == i || k == j)) continue;
                    const Math::Point2d &c = middles[k];
                    const double along = segment.GetProjectedRatio(c) * length;
                    if (std::fabs(along - bar.endToMiddle) > bar.alongTolerance) continue;
                    if (std::sqrt(segment.GetDistanceSq(c)) > bar.offTolerance) continue;
                    if (!admits_rival(c, bar.endToMiddle)) continue;
                    ++count_;
                    a_ = a, c_ = c, b_ = b;
                    if (roundHoles && options_.rdebug)
                        std::printf("Distances: %f %f %f\n", a.GetDistance(c), c.GetDistance(b), length);
                }
            }
        }
    }

    // A second fit far from the first replaces it when it lies nearer the
    // middle of the band (a stray mark beside the bar, say); a second fit
    // close to the first is doubt, and once doubted the search cannot succeed.
    bool admits_rival(const Math::Point2d &c, double farApart) {
        if (count_ != 1 || c_.GetDistance(c) <= farApart) return true;
        if (!(c.GetDistance(middle_) < c_.GetDistance(middle_))) return false;
        count_ = 0;
        return true;
    }

    const PegCandidates &candidates_;
    const Math::Point2d middle_;  // uncalibrated, as the band is
    const PegRegistrationOptions &options_;
    int count_ = 0;
    Math::Point2d a_, c_, b_;
};

}  // namespace

Math::Box2d search_box_of_pegs(int width, int height, const PegRegistrationOptions &options) {
    const double margin = options.dpi * options.rmargin;
    const double w = width, h = height;
    switch (options.side) {
    case 1: return {0.0, 0.0, w, margin / options.calibY};
    case 2: return {0.0, h - margin / options.calibY, w, h};
    case 3: return {0.0, 0.0, margin / options.calibX, h};
    case 4: return {w - margin / options.calibX, 0.0, w, h};
    default: return {0.0, 0.0, w, h};
    }
}

bool decide_pegs(const PegCandidates &candidates, const Math::Box2d &searchBox, const PegRegistrationOptions &options,
                 Math::Point2d &a, Math::Point2d &c, Math::Point2d &b) {
    return PegFit(candidates, searchBox, options).run(a, c, b);
}
