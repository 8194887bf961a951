// The peg hole search's pixel work: the stamped mask, the boundary polygons
// and the grey-weighted centroid.
#include <cmath>
#include <cstring>
#include <random>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "scan/contour_tracer.h"
#include "scan/peg_mask.h"
#include "scan/refine_dot.h"

namespace {

Math::Box2d box(double x0, double y0, double x1, double y1) { return {x0, y0, x1, y1}; }
const Math::Box2d kNoBox;

std::vector<GR_BezierPath2d> trace(BM_MaskMap &mask) {
    ContourTracer tracer;
    tracer.mask = &mask;
    std::vector<GR_BezierPath2d> out;
    trace_contours(tracer, out);
    return out;
}

// Cracks between 4-neighbours of different value.
int count_cracks(const BM_MaskMap &mask) {
    int n = 0;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x) {
            if (x + 1 < mask.width() && mask.get(x, y) != mask.get(x + 1, y)) ++n;
            if (y + 1 < mask.height() && mask.get(x, y) != mask.get(x, y + 1)) ++n;
        }
    return n;
}

// The boundary walk put plainly: every pixel of a row looked at (all-clear bytes passed over), two
// walked-crack bits a pixel, each move tested against the cracks' codes.
std::vector<std::vector<Math::Point2d>> plain_trace(BM_MaskMap mask) {
    const int w = mask.width(), h = mask.height();
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (x < 2 || y < 2 || x >= w - 2 || y >= h - 2) mask.set(x, y, 0);
    const int stepX[4] = {-1, 0, 1, 0}, stepY[4] = {0, 1, 0, -1}, testBit[4] = {4, 2, 1, 8};
    std::vector<unsigned> marks(static_cast<size_t>(w * h), 0);
    auto markAt = [&](int x, int y) -> unsigned & { return marks[static_cast<size_t>(y * w + x)]; };
    auto code = [&](int x, int y) {
        return (markAt(x, y) & 1u) | (markAt(x, y) & 2u) | (x > 0 && (markAt(x - 1, y) & 1u) ? 4u : 0u) |
               (y > 0 && (markAt(x, y - 1) & 2u) ? 8u : 0u);
    };
    auto mark = [&](int x, int y, int d) {
        if (d == 0) markAt(x - 1, y) |= 1;
        if (d == 1) markAt(x, y) |= 2;
        if (d == 2) markAt(x, y) |= 1;
        if (d == 3) markAt(x, y - 1) |= 2;
    };
    std::vector<std::vector<Math::Point2d>> out;
    for (int y = 0; y + 1 < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (!mask.row(y)[x >> 3] || mask.get(x, y) == mask.get(x, y + 1) || (markAt(x, y) & 2u)) continue;
            int ax = x, ay = y + 1, bx = x, by = y, d = 2;
            const unsigned a0 = mask.get(ax, ay), b0 = mask.get(bx, by);
            auto mid = [&] { return Math::Point2d{(ax + bx) / 2.0 + 0.5, (ay + by) / 2.0 + 0.5}; };
            mark(bx, by, 1);
            std::vector<Math::Point2d> points{mid()};
            for (;;) {
                const int nax = ax + stepX[d], nay = ay + stepY[d], nbx = bx + stepX[d], nby = by + stepY[d];
                const unsigned a = mask.get(nax, nay), b = mask.get(nbx, nby);
                const bool straight = a == a0 && b == b0 && !(code(nax, nay) & testBit[(d + 1) % 4]);
                bool toB = b == a0 && !(code(nbx, nby) & testBit[(d + 2) % 4]);
                bool toA = a == b0 && !(code(nax, nay) & testBit[(d + 2) % 4]);
                if (toB && toA) (a0 ? toA : toB) = false;
                if (straight) ax = nax, ay = nay, bx = nbx, by = nby;
                else if (toB) ax = nbx, ay = nby, d = (d + 1) % 4;
                else if (toA) bx = nax, by = nay, d = (d + 3) % 4;
                else break;
                points.insert(points.begin(), mid());
                mark(ax, ay, (d + 1) % 4);
            }
            points.insert(points.begin(), points.back());
            out.push_back(points);
        }
    return out;
}

// The stamp cell by cell: each pixel above the threshold in the box and out of the exclusion (both
// from the floor of the start to the ceiling of the end) stamps a disc; the grey keeps only those.
BM_MaskMap plain_stamp(BM_GreyMap &grey, int threshold, const Math::Box2d &search, const Math::Box2d &excluded, int r) {
    const int w = grey.width(), h = grey.height();
    const auto in = [](const Math::Box2d &b, int x, int y) {
        return !b.isEmpty() && x >= std::floor(b.x0) && x <= std::ceil(b.x1) && y >= std::floor(b.y0) && y <= std::ceil(b.y1);
    };
    BM_MaskMap mask(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (!in(search, x, y) || in(excluded, x, y)) grey.set(x, y, 0);
            if (static_cast<int>(grey.get(x, y)) <= threshold) continue;
            for (int dy = -r; dy <= r; ++dy)
                for (int dx = -r; dx <= r; ++dx)
                    if (dx * dx + dy * dy <= r * r && x + dx >= 0 && x + dx < w && y + dy >= 0 && y + dy < h)
                        mask.set(x + dx, y + dy, 1);
        }
    return mask;
}

// The centroid swept in row order (another order rounds differently) over a window clamped to the
// picture; the point comes back unchanged outside the picture or when nothing weighs.
Math::Point2d plain_centroid(const BM_MaskMap &mask, const BM_GreyMap &grey, Math::Point2d at, int width, int height) {
    const int w = grey.width(), h = grey.height();
    if (at.x < 0 || at.y < 0 || at.x >= w || at.y >= h) return at;
    const int x0 = std::max(static_cast<int>(std::floor(at.x - width / 2)), 0);
    const int x1 = std::min(static_cast<int>(std::ceil(at.x + width / 2)), w - 1);
    const int y0 = std::max(static_cast<int>(std::floor(at.y - height / 2)), 0);
    const int y1 = std::min(static_cast<int>(std::ceil(at.y + height / 2)), h - 1);
    double weight = 0.0, sumX = 0.0, sumY = 0.0;
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x) {
            const double g = mask.get(x, y) ? grey.get(x, y) / 255.0 : 0.0;
            weight += g, sumX += g * x, sumY += g * y;
        }
    return weight == 0.0 ? at : Math::Point2d{sumX / weight, sumY / weight};
}

}  // namespace

TEST(PegMask, ReportsFewerThanThreeValuesInTheBox) {
    BM_GreyMap grey(20, 6);
    for (int x = 0; x < 20; ++x) grey.set(x, 2, x % 2 ? 255 : 0);
    BM_MaskMap mask;
    BM_GreyMap two = grey;
    two.set(0, 5, 77);  // outside the box: not looked at
    EXPECT_TRUE(build_peg_mask(two, mask, 128, box(0, 0, 19, 3), kNoBox, 2, 2, false));
    BM_GreyMap three = grey;
    three.set(19, 3, 77);  // the box's last row and column still count
    EXPECT_FALSE(build_peg_mask(three, mask, 128, box(0, 0, 18.5, 2.5), kNoBox, 2, 2, false));
    BM_GreyMap excluded = three;
    EXPECT_TRUE(build_peg_mask(excluded, mask, 128, box(0, 0, 19, 3), box(18, 3, 19, 3), 2, 2, false));
    EXPECT_EQ(excluded.get(19, 3), 0u);
}

// Thinning against a labelling sweep peeling k layers from the top left (row and column 0 clear):
// k is the radii's difference, or 1 when equal; without `keep` the grey outside the mask is cleared.
TEST(PegMask, ThinningMatchesTheLabellingSweep) {
    std::mt19937 rng(3);
    for (auto [r1, r2, keep] : {std::tuple(4, 1, true), {4, 1, false}, {3, 1, true}, {0, 0, true}, {2, 2, true}}) {
        SCOPED_TRACE(testing::Message() << r1 << " " << r2 << (keep ? " keep" : ""));
        const int w = 30 + static_cast<int>(rng() % 80), h = 20 + static_cast<int>(rng() % 20);
        BM_GreyMap grey(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) grey.set(x, y, rng() % 100 < (r1 ? 8 : 40) ? 200 : rng() % 100);
        BM_GreyMap original = grey, copy = grey;
        BM_MaskMap thinned;
        const int r = std::max(r1, r2), k = std::max(r - r2, 1), inner = k + 1;
        build_peg_mask(grey, thinned, 100, box(0, 0, w, h), kNoBox, r1, r2, keep);
        const BM_MaskMap stamped = plain_stamp(copy, 100, box(0, 0, w, h), kNoBox, r);

        std::vector<std::vector<int>> label(static_cast<size_t>(h), std::vector<int>(static_cast<size_t>(w), 0));
        for (int y = 1; y < h; ++y)
            for (int x = 1; x < w; ++x) label[y][x] = stamped.get(x, y) ? inner : 0;
        for (int i = 0; i < k; ++i)
            for (int y = 1; y < h; ++y)
                for (int x = 1; x < w; ++x) {
                    int &p = label[y][x], &left = label[y][x - 1], &up = label[y - 1][x];
                    if (p == inner && (left == i || up == i)) p = i + 1;
                    else if (p == i) {
                        if (left == inner) left = i + 1;
                        if (up == inner) up = i + 1;
                    }
                }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                ASSERT_EQ(thinned.get(x, y), label[y][x] == inner ? 1u : 0u) << x << "," << y;
                ASSERT_EQ(grey.get(x, y), keep || stamped.get(x, y) ? original.get(x, y) : 0u) << x << "," << y;
            }
    }
}

// One pixel is a diamond of crack midpoints; a limit keeps the scan to its rows and columns,
// inclusive.
TEST(ContourTracer, OnePixelIsADiamondAndALimitHolds) {
    BM_MaskMap mask(16, 16);
    mask.set(2, 2, 1), mask.set(13, 13, 1);
    const auto both = trace(mask);
    ASSERT_EQ(both.size(), 2u);
    EXPECT_EQ(both[0].points(), (std::vector<Math::Point2d>{{2.5, 3}, {2, 2.5}, {2.5, 2}, {3, 2.5}, {2.5, 3}}));
    ContourTracer limited{&mask, {}, true, {10.2, 12.5, 13.0, 13.0}};
    std::vector<GR_BezierPath2d> paths;
    trace_contours(limited, paths);
    ASSERT_EQ(paths.size(), 1u);
    EXPECT_EQ(paths[0].point(0), (Math::Point2d{13.5, 14}));
}

// The quick paths against plain ones on tiny, degenerate and word-edge pictures: the stamp on a whole
// mask and on a band's rows; the tracer, fresh or reusing marks (every crack once); the centroid, to the bit.
TEST(PegSearch, QuickPathsEqualPlainOnes) {
    struct Case {
        const char *name;
        int w, h;
        unsigned bright;  // percent of pixels above the threshold
        Math::Box2d search;
        int r;
        Math::Box2d excluded = kNoBox;
    };
    const Case cases[] = {
        {"1x1", 1, 1, 100, box(0, 0, 1, 1), 0},
        {"one row", 40, 1, 50, box(0, 0, 40, 1), 2},
        {"one column", 1, 40, 50, box(0, 0, 1, 40), 2},
        {"5x5 lit", 5, 5, 100, box(0, 0, 5, 5), 0},
        {"6x6 lit", 6, 6, 100, box(0, 0, 6, 6), 2},
        {"checkerboards", 67, 29, 50, box(0, 0, 67, 29), 0},
        {"noise", 90, 45, 35, box(0, 0, 90, 45), 0},
        {"blobs", 150, 60, 3, box(0, 0, 150, 60), 2},
        {"bottom band, traced in the marks the blobs left", 150, 60, 4, box(0, 45.5, 150, 60), 2},
        {"top band", 150, 60, 4, box(0, 0, 150, 10), 2},
        {"thin band over the sides", 73, 40, 30, box(-3, 20, 80, 21), 1},
        {"box off the picture", 30, 20, 50, box(40, 0, 50, 20), 2},
        {"fractional box, excluded block", 203, 38, 5, box(-3.5, 2.25, 190.5, 35.5), 5, box(20.5, 4, 40, 9.5)},
        {"excluded across the box", 97, 31, 8, box(5.75, 0.5, 90.25, 27.5), 3, box(-2, 10, 120, 12.5)},
    };
    std::mt19937 rng(17);
    ContourTracer reused;  // its marks kept from one picture to the next, cleared where needed
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        BM_GreyMap grey(c.w, c.h);
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x) grey.set(x, y, rng() % 100 < c.bright ? 101 + rng() % 155 : rng() % 101);
        BM_GreyMap bandGrey = grey, plainGrey = grey;
        BM_MaskMap whole, band;
        build_peg_mask(grey, whole, 100, c.search, c.excluded, std::max(c.r - 1, 0), c.r, false);
        allocate_peg_mask(band, c.w, c.h, c.search, c.r);
        build_peg_mask(bandGrey, band, 100, c.search, c.excluded, c.r, c.r, false);
        const BM_MaskMap plain_mask = plain_stamp(plainGrey, 100, c.search, c.excluded, c.r);
        for (int y = 0; y < c.h; ++y)
            for (int x = 0; x < c.w; ++x) {
                ASSERT_EQ(std::pair(whole.get(x, y), band.get(x, y)), std::pair(plain_mask.get(x, y), plain_mask.get(x, y)))
                    << x << "," << y;
                ASSERT_EQ(std::pair(grey.get(x, y), bandGrey.get(x, y)), std::pair(plainGrey.get(x, y), plainGrey.get(x, y)))
                    << x << "," << y;
            }

        const std::vector<std::vector<Math::Point2d>> plain = plain_trace(whole);
        std::vector<GR_BezierPath2d> quick;
        reused.mask = &whole;
        trace_contours(reused, quick);
        const std::vector<GR_BezierPath2d> fromBand = trace(band);
        ASSERT_EQ(quick.size(), plain.size());
        ASSERT_EQ(fromBand.size(), plain.size());
        std::set<std::pair<double, double>> cracks;
        size_t walked = 0;
        for (const auto &path : quick) {
            for (int i = 0; i + 1 < path.pointCount(); ++i) cracks.insert({path.point(i).x, path.point(i).y});
            walked += static_cast<size_t>(path.pointCount() - 1);
        }
        EXPECT_EQ(std::pair(walked, cracks.size()), std::pair(size_t(count_cracks(whole)), walked));
        // Centroids in each polygon's window, at random points with random
        // windows, and just outside each side with a window reaching in.
        std::vector<std::tuple<Math::Point2d, int, int>> windows{
            {{-0.125, 0}, 2 * c.w, 2 * c.h}, {{0, -0.5}, 2 * c.w, 2 * c.h},
            {{double(c.w), 0}, 2 * c.w, 2 * c.h}, {{0, double(c.h)}, 2 * c.w, 2 * c.h}};
        for (int i = 0; i < 6; ++i)
            windows.push_back({{(rng() % (c.w * 8)) / 8.0, (rng() % (c.h * 8)) / 8.0}, static_cast<int>(rng() % (c.w + 10)),
                               static_cast<int>(rng() % (c.h + 10))});
        for (size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(quick[i].points(), plain[i]) << "polygon " << i;
            ASSERT_EQ(fromBand[i].points(), plain[i]) << "polygon " << i;
            const Math::Box2d b = quick[i].boundingBox();
            windows.push_back({{b.x0 + b.width() / 3, b.y0 + b.height() / 2}, static_cast<int>(b.width() + 0.5),
                               static_cast<int>(b.height() + 0.5)});
        }
        for (const auto &[at, bw, bh] : windows) {
            const Math::Point2d want = plain_centroid(whole, grey, at, bw, bh);
            const Math::Point2d fromWhole = refine_dot(whole, grey, at, bw, bh), fromBand = refine_dot(band, bandGrey, at, bw, bh);
            ASSERT_EQ(std::tuple(fromWhole.x, fromWhole.y, fromBand.x, fromBand.y), std::tuple(want.x, want.y, want.x, want.y))
                << at.x << "," << at.y << " " << bw << "x" << bh;
        }
    }
}
