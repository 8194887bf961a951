// Rotation: quarter turns, limits, traces and assertions, and the fast shear kernels against a
// plain reference that follows each line of each pass pixel by pixel on full canvases.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>
#include <random>
#include <tuple>
#include <vector>

#include "scan/pixmap_pixmap.h"
#include "scan/pixmap_rotate.h"
#include "scan/rotate_geometry.h"
#include "scan/rotate_shear.h"
#include "suite/base/tumessage.h"
#include "support/message_capture.h"

namespace {

// A picture as plain channel values, whatever its kind.
struct Picture {
    int32_t kind = PIXMAP_MATTE8;
    int32_t w = 0, h = 0;
    std::vector<int32_t> v;  // w * h * channels
    int channels() const { return kind == PIXMAP_RGBA8 || kind == PIXMAP_RGBA16 ? 4 : 1; }
    bool wide() const { return kind == PIXMAP_RGBA16 || kind == PIXMAP_MATTE16; }
    int32_t *at(int32_t x, int32_t y) { return v.data() + (size_t(y) * w + x) * channels(); }
    const int32_t *at(int32_t x, int32_t y) const { return v.data() + (size_t(y) * w + x) * channels(); }
    bool operator==(const Picture &) const = default;
};

Picture blank(int32_t kind, int32_t w, int32_t h, const std::vector<int32_t> &fill)
{
    Picture p{kind, w, h, {}};
    p.v.resize(size_t(w) * h * p.channels());
    for (size_t i = 0; i < p.v.size(); ++i)
        p.v[i] = fill[i % fill.size()];
    return p;
}

// The pixmap of a picture, and the picture of a pixmap's filled slot.
LMV_pixmap *pixmap_of(const Picture &p)
{
    LMV_pixmap *pm = create_pixmap(p.kind, p.w, p.h);
    void *raw = const_cast<void *>(best_of_pixmap(pm)->rawData());
    for (size_t i = 0; i < p.v.size(); ++i)
        if (p.wide())
            static_cast<uint16_t *>(raw)[i] = uint16_t(p.v[i]);
        else
            static_cast<uint8_t *>(raw)[i] = uint8_t(p.v[i]);
    return pm;
}

Picture picture_of(const LMV_pixmap *pm)
{
    const CEL_PixmapPtr leaf = best_of_pixmap(pm);
    Picture p = blank(type_of_pixmap(pm), leaf->width(), leaf->height(), {0});
    EXPECT_EQ(std::pair(pm->width, pm->height), std::pair(p.w, p.h));
    const void *raw = leaf->rawData();
    for (size_t i = 0; i < p.v.size(); ++i)
        p.v[i] = p.wide() ? static_cast<const uint16_t *>(raw)[i] : static_cast<const uint8_t *>(raw)[i];
    return p;
}

Picture random_picture(int32_t kind, int32_t w, int32_t h, std::mt19937 &rng)
{
    Picture p = blank(kind, w, h, {0});
    for (int32_t &x : p.v)
        x = int32_t(rng() % (p.wide() ? 65536 : 256));
    return p;
}

// ---- The reference: each pass along its lines, on canvases of w2 x h2. ----

struct Reference {
    bool fixed;   // the 24-bit arithmetic of RGBA8
    bool tail;    // colour kinds
    std::vector<int32_t> bg;
    int C;

    int32_t mix(int32_t a, int32_t b, float wa, float wb) const
    {
        if (!fixed)
            return int32_t(float(a) * wa + float(b) * wb);
        const uint32_t fa = uint32_t(int32_t(double(wa) * 16777216.0)), fb = 0x1000000u - fa;
        return int32_t((uint32_t(a) * fa + uint32_t(b) * fb) >> 24);
    }

    // One line: `count` values from src(n) written from dst(start); colour
    // kinds blend the background in once more after the last.
    template <class Src, class Dst>
    void line(Src src, int32_t count, Dst dst, int32_t start, int32_t len, float v) const
    {
        const ShearStep st = shear_step(v);
        std::vector<int32_t> prev = bg;
        for (int32_t n = 0; n < count + (tail && count >= 1); ++n) {
            const int32_t *s = n < count ? src(n) : bg.data();
            if (start + n >= 0 && start + n < len)
                for (int c = 0; c < C; ++c)
                    dst(start + n)[c] = mix(s[c], prev[size_t(c)], st.wa, st.wb);
            prev.assign(s, s + C);
        }
    }

    Picture shear(const Picture &src, const ShearGeometry &g) const
    {
        Picture one = blank(src.kind, g.w2, g.h2, bg), two = one, three = one;
        for (int32_t j = 0; j < g.h; ++j)
            line([&](int32_t n) { return src.at(n, j); }, g.w, [&](int32_t x) { return one.at(x, j); },
                 int32_t(std::floor(float(j) * g.t)), g.w2, float(j) * g.t);
        // Passes 2 and 3: a line shifted up is read from -off on, and holds
        // `filled` values of the pass before.
        const auto pass = [&](float v, int32_t filled, int32_t len, auto read, auto write) {
            const int32_t off = int32_t(std::floor(v)), from = off < 0 ? -off : 0;
            line([&](int32_t n) { return read(from + n); }, off < 0 ? filled - 1 + off : len - off, write,
                 std::max(off, 0), len, v);
        };
        for (int32_t k = 0; k < g.w2; ++k)
            pass(float(g.w - 1 - k) * g.s, g.h, g.h2, [&](int32_t y) { return one.at(k, y); },
                 [&](int32_t y) { return two.at(k, y); });
        for (int32_t r = 0; r < g.h2; ++r)
            pass((float(r) - float(g.w - 1) * g.s) * g.t, g.w2, g.w2, [&](int32_t x) { return two.at(x, r); },
                 [&](int32_t x) { return three.at(x, r); });
        Picture out = blank(src.kind, g.out_w, g.out_h, {0});
        for (int32_t y = 0; y < g.out_h; ++y)
            for (int32_t x = 0; x < g.out_w; ++x)
                std::copy(three.at(x, y), three.at(x, y) + C, out.at(x, y));
        return out;
    }
};

// The quarter-turn copy, pixel by pixel from its table.
Picture quarter_turned(const Picture &src, int turns)
{
    const int32_t w = src.w, h = src.h;
    Picture out = blank(src.kind, turns % 2 ? h : w, turns % 2 ? w : h, {0});
    for (int32_t j = 0; j < h; ++j)
        for (int32_t i = 0; i < w; ++i) {
            int32_t x = i, y = j;
            if (turns == 1) x = j, y = w - 1 - i;
            if (turns == 2) x = w - 1 - i, y = h - 1 - j;
            if (turns == 3) x = h - 1 - j, y = i;
            std::copy(src.at(i, j), src.at(i, j) + src.channels(), out.at(x, y));
        }
    return out;
}

Picture reference_rotation(const Picture &src, float angle, const uint8_t *background)
{
    const int C = src.channels();
    std::vector<int32_t> bg(size_t(C), 0);
    if (background && C == 4)
        for (int c = 0; c < 4; ++c)
            bg[size_t(c)] = src.kind == PIXMAP_RGBA16 ? background[c] << 7 : background[c];
    const Reference ref{src.kind == PIXMAP_RGBA8, C == 4, bg, C};
    const QuarterTurn turn = quarter_turn_of_angle(angle);
    const Picture copy = quarter_turned(src, turn.turns);
    const ShearGeometry g = shear_geometry(copy.w, copy.h, turn.reduced);
    return g.a == 0.0f ? copy : ref.shear(copy, g);
}

// Rotates a copy of `src` about (cx, cy), which move along, over `part`
// (x0, x1, y0, y1; the whole picture by default).
Picture rotated(const Picture &src, float angle, const uint8_t *background = nullptr, float *cx = nullptr,
                float *cy = nullptr, std::optional<std::array<int32_t, 4>> part = {})
{
    LMV_pixmap *pm = pixmap_of(src);
    float x = cx ? *cx : 0.0f, y = cy ? *cy : 0.0f;
    const auto [x0, x1, y0, y1] = part.value_or(std::array{0, src.w - 1, 0, src.h - 1});
    rotate_LMV_pixmap(pm, angle, &x, &y, x0, x1, y0, y1, background);
    Picture out = picture_of(pm);
    release_pixmap(pm);
    if (cx) *cx = x;
    if (cy) *cy = y;
    return out;
}

const int32_t kKinds[] = {PIXMAP_RGBA16, PIXMAP_RGBA8, PIXMAP_MATTE16, PIXMAP_MATTE8};
const uint8_t kBackground[4] = {10, 200, 33, 255};

// ---- Tests ----

void expect_reference(const Picture &src, std::initializer_list<float> angles)
{
    for (float angle : angles)
        for (const uint8_t *bg : {static_cast<const uint8_t *>(nullptr), kBackground}) {
            SCOPED_TRACE(testing::Message() << "kind " << src.kind << " " << src.w << "x" << src.h << " angle " << angle
                                              << (bg ? " with background" : ""));
            const Picture expect = reference_rotation(src, angle, bg);
            const Picture got = rotated(src, angle, bg);
            ASSERT_TRUE(got == expect);
        }
}

// Both builds of the kernels, the AVX2 one (where the processor has it) and
// the plain one, against the reference.
TEST(RotateKernels, FastKernelsMatchTheReferenceExactly)
{
    for (bool wide : {true, false}) {
        SCOPED_TRACE(wide ? "wide vectors" : "plain");
        set_shear_wide_vectors(wide);
        std::mt19937 rng(7);
        const std::pair<int32_t, int32_t> sizes[] = {{23, 17}, {40, 9}, {1, 12}, {12, 1}, {2, 2}, {37, 52}};
        for (int32_t kind : kKinds) {
            for (auto [w, h] : sizes)
                expect_reference(random_picture(kind, w, h, rng), {0.7f, 3.3f, 17.0f, 44.9f, 45.0f, 63.5f, 89.9f,
                                                                   90.0f, 95.3f, 180.0f, 200.25f, 270.0f, 300.2f, 359.1f});
            // Flat pictures with a few marks make the empty corners large,
            // where the colour kernels skip what the pass before did not write.
            Picture sparse = blank(kind, 61, 45, {kBackground[0], kBackground[1], kBackground[2], kBackground[3]});
            for (int i = 0; i < 30; ++i)
                *sparse.at(int32_t(rng() % 61), int32_t(rng() % 45)) = int32_t(rng() % 256);
            expect_reference(sparse, {1.0f, 12.5f, 33.0f, 81.0f});
        }
        // Vector kernels take 32-byte steps, the last overlapping the one before; shorter lines go
        // pixel by pixel. Small angles keep the vertical pass's columns in long runs.
        for (int32_t kind : {PIXMAP_RGBA8, PIXMAP_MATTE8})
            for (int32_t w = 1; w <= 42; ++w)
                expect_reference(random_picture(kind, w, 7, rng), {0.3f, 2.0f, 358.0f});
    }
    set_shear_wide_vectors(true);
}

// What the reference shares with the kernels: a shift's taps, the quarter turns (reduced in double,
// narrowed once), the size from the rounded extent (one column is < half a pixel), the loop's angle.
TEST(RotateArithmetic, StepsTurnsSizesAndAngles)
{
    for (auto [v, off, wa, wb] : {std::tuple(3.0f, 3, 1.0f, 0.0f), {2.25f, 2, 0.75f, 0.25f}, {-0.25f, -1, 0.25f, 0.75f},
                                  {-2.0f, -2, 1.0f, 0.0f}}) {
        const ShearStep st = shear_step(v);
        EXPECT_EQ(std::tuple(st.off, st.wa, st.wb), std::tuple(off, wa, wb)) << v;
    }
    for (auto [angle, turns] : {std::pair(89.99f, 0), {90.0f, 1}, {269.99f, 2}, {359.5f, 3}})
        EXPECT_EQ(quarter_turn_of_angle(angle).turns, turns) << angle;
    EXPECT_EQ(quarter_turn_of_angle(100.3f).reduced, float(double(100.3f) - 90.0));
    EXPECT_EQ(quarter_turn_of_angle(300.7f).reduced, float(double(300.7f) - 270.0));
    const Picture column = rotated(blank(PIXMAP_MATTE8, 1, 10, {200}), 0.5f);
    EXPECT_EQ(std::pair(column.w, column.h), std::pair(0, 9));
    const Picture row = rotated(blank(PIXMAP_MATTE8, 10, 1, {200}), 0.5f);
    EXPECT_EQ(std::pair(row.w, row.h), std::pair(9, 0));
    EXPECT_EQ(rotation_angle_from_radians(0.0), 360.0f);
    EXPECT_FLOAT_EQ(rotation_angle_from_radians(-0.01), 0.5729578f);
    EXPECT_FLOAT_EQ(rotation_angle_from_radians(0.01), 359.42704f);
    EXPECT_EQ(rotation_angle_from_radians(-M_PI / 2), 90.0f);
}

// The centre is carried along; zero does nothing, before any check; a full turn, null pointers and
// an empty pixmap change nothing; bounds are cut to the picture, a right edge past it moves x0 to the last column.
TEST(RotateCalls, CentreNoOpsBadCallsAndBounds)
{
    Picture src = blank(PIXMAP_MATTE8, 64, 48, {0});
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            *src.at(40 + dx, 20 + dy) = 255;
    for (float angle : {2.0f, 30.0f, 75.0f, 130.0f, 250.0f, 333.0f}) {
        float mx = 40.0f, my = 20.0f;
        const Picture out = rotated(src, angle, nullptr, &mx, &my);
        double sum = 0, sx = 0, sy = 0;
        for (int32_t y = 0; y < out.h; ++y)
            for (int32_t x = 0; x < out.w; ++x)
                sum += *out.at(x, y), sx += double(x) * *out.at(x, y), sy += double(y) * *out.at(x, y);
        ASSERT_GT(sum, 0) << angle;
        EXPECT_LT(std::max(std::fabs(sx / sum - mx), std::fabs(sy / sum - my)), 1.5) << angle;
    }

    const bool wasDebug = TUMessage::instance()->isDebugMode();
    TUMessage::instance()->setDebugMode(true);
    MessageCapture capture;
    LMV_pixmap *pm = pixmap_of(blank(PIXMAP_MATTE8, 5, 4, {7}));
    const uint8_t *data = matte8_data_of_pixmap(pm);
    float cx = 3.5f, cy = -2.0f;
    rotate_LMV_pixmap(pm, 0.0f, &cx, &cy, -10, 50, -10, 50, nullptr);
    EXPECT_EQ(std::tuple(capture.contains("In rotate_LMV_pixmap."),
                         capture.contains("Out rotate_LMV_pixmap (bail - rotate is no-op)."),
                         capture.contains("Out rotate_LMV_pixmap."), capture.assertions()),
              std::tuple(true, true, false, 0));
    rotate_LMV_pixmap(pm, 360.0f, &cx, &cy, 0, 4, 0, 3, nullptr);
    EXPECT_TRUE(capture.contains("Out rotate_LMV_pixmap."));
    rotate_LMV_pixmap(pm, 10.0f, nullptr, &cy, 0, 4, 0, 3, nullptr);
    rotate_LMV_pixmap(pm, 10.0f, &cx, nullptr, 0, 4, 0, 3, nullptr);
    rotate_LMV_pixmap(nullptr, 10.0f, nullptr, nullptr, 0, 0, 0, 0, nullptr);
    EXPECT_EQ(std::tuple(matte8_data_of_pixmap(pm), pm->width, cx, cy), std::tuple(data, 5, 3.5f, -2.0f));
    release_pixmap(pm);
    pm = create_pixmap(PIXMAP_NONE, 0, 0);
    rotate_LMV_pixmap(pm, 10.0f, &cx, &cy, 0, 0, 0, 0, nullptr);
    EXPECT_EQ(type_of_pixmap(pm), PIXMAP_NONE);
    EXPECT_EQ(capture.assertions(), 4);
    release_pixmap(pm);
    TUMessage::instance()->setDebugMode(wasDebug);

    Picture counting = blank(PIXMAP_MATTE8, 4, 3, {0});
    for (size_t i = 0; i < counting.v.size(); ++i)
        counting.v[i] = int32_t(i);  // row y holds 4y .. 4y+3
    struct Case {
        const char *name;
        int32_t x0, x1, y0, y1;
        float cx, cy, want_cx, want_cy;
        int32_t w;
        std::vector<int32_t> v;
    };
    const Case cases[] = {
        {"y clamped, x0 too: all", -3, 3, -5, 99, 1, 1, 2, 1, 4, {11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}},
        {"x1 below 0 is 0", 0, -4, 1, 2, 0, 2, 0, 0, 1, {8, 4}},
        // x0 becomes 3, the part is 3 wide; its row y is pixels 4y + 3 to
        // 4y + 5 of the block, 0 past its end.
        {"x1 past the right", 0, 5, 0, 2, 3, 0, 2, 2, 3, {0, 0, 11, 9, 8, 7, 5, 4, 3}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        float px = c.cx, py = c.cy;
        const Picture out = rotated(counting, 180.0f, nullptr, &px, &py, std::array{c.x0, c.x1, c.y0, c.y1});
        EXPECT_EQ(std::tuple(out.w, out.v, px, py), std::tuple(c.w, c.v, c.want_cx, c.want_cy));
    }
}

} // namespace
