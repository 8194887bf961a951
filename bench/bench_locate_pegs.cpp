// The peg hole search on the bottom band of a 16-field 600-dpi scan of the
// test scanner's field chart, against OpenCV doing the same kind of job on the
// same band: threshold, full contour boundaries, and each contour's moments
// and area.
//
// The picture is the one optical registration hands to the search: the chart
// as the scanner sees it (holes dark on light paper), loaded turned for
// bottom pegs, made grey and complemented (holes bright). The search changes
// its picture (everything outside the band becomes 0), so each iteration gets
// a fresh copy made outside the timing. That clearing is work OpenCV's job
// doesn't have; opencv_and_clear measures the two together for reference.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <QImage>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "scan/contour_tracer.h"
#include "scan/drivers/bogus_field_chart.h"
#include "scan/locate_pegs.h"
#include "scan/peg_candidates.h"
#include "scan/peg_mask.h"
#include "scan/pixmap_pixmap.h"
#include "suite/cel/cel_pixmap.h"
#include "support/ratio_report.h"

namespace {

constexpr double kField = 16;
constexpr double kDpi = 600;
constexpr int32_t kPegsAtBottom = 4;  // the band loader's peg side
// A sheet fed a little crooked; small enough to stay within the tolerances.
const FieldChartSkew kSkew{0.04, 0.02, 0.3};

PegRegistrationOptions bottom_options() {
    PegRegistrationOptions o;
    o.dpi = kDpi;
    o.side = 2;
    o.strict = 1;
    return o;
}

// The inverted grey picture of the chart, pegs at the bottom.
BM_GreyMap chart_picture() {
    QImage seen = paint_field_chart(kField, kDpi, true, 1.0, 1.0, kSkew);
    seen.invertPixels();  // the chart is white on black; paper scans light
    const CEL_PixmapPtr leaf = pixmap_from_QImage(seen, kPegsAtBottom);
    seen = QImage();
    const auto *rgba = dynamic_cast<const CEL_PixmapRGBA8 *>(leaf.get());
    if (!rgba) {
        std::fprintf(stderr, "the chart did not load as a colour pixmap\n");
        std::exit(1);
    }
    const CEL_PixmapMatte8 matte(*rgba);
    BM_GreyMap grey(matte.width(), matte.height());
    for (int y = 0; y < matte.height(); ++y) {
        const uint8_t *from = matte.row(y);
        uint8_t *to = grey.row(y);
        for (int x = 0; x < matte.width(); ++x) to[x] = static_cast<uint8_t>(~from[x]);
    }
    return grey;
}

const BM_GreyMap &picture() {
    static const BM_GreyMap p = chart_picture();
    return p;
}

void restore(BM_GreyMap &grey) {
    std::memcpy(grey.data(), picture().data(),
                static_cast<size_t>(picture().bytesPerRow()) * static_cast<size_t>(picture().height()));
}

int threshold() { return static_cast<int>(bottom_options().threshr * 255.0); }

Math::Box2d band() { return search_box_of_pegs(picture().width(), picture().height(), bottom_options()); }

// The job is worth timing only when the search finds the bar on this picture.
// PEG_BENCH_TRACE in the environment prints the search's traces.
bool search_succeeds() {
    BM_GreyMap grey = picture();
    PegRegistrationOptions options = bottom_options();
    options.rdebug = std::getenv("PEG_BENCH_TRACE") != nullptr;
    Math::Point2d points[3];
    if (!locate_pegs(grey, options, points)) return false;
    std::fprintf(stderr, "pegs at (%.2f, %.2f) (%.2f, %.2f) (%.2f, %.2f) in %d x %d\n", points[0].x, points[0].y,
                 points[1].x, points[1].y, points[2].x, points[2].y, grey.width(), grey.height());
    return true;
}

// OpenCV's job on the band: threshold, contours, and each contour's moments
// and area. Returns the number of contours.
size_t opencv_job(const cv::Mat &strip, cv::Mat &bright, std::vector<std::vector<cv::Point>> &contours,
                  std::vector<cv::Vec4i> &nesting) {
    cv::threshold(strip, bright, threshold(), 255, cv::THRESH_BINARY);
    cv::findContours(bright, contours, nesting, cv::RETR_CCOMP, cv::CHAIN_APPROX_NONE);
    double total = 0.0;
    for (const std::vector<cv::Point> &c : contours) {
        const cv::Moments m = cv::moments(c);
        total += m.m10 + m.m01 + std::fabs(cv::contourArea(c));
    }
    benchmark::DoNotOptimize(total);
    return contours.size();
}

// The band as it lies in the picture, no copy.
cv::Mat band_of(const BM_GreyMap &grey) {
    const int top = static_cast<int>(band().y0);
    return cv::Mat(grey.height() - top, grey.width(), CV_8UC1, const_cast<uint8_t *>(grey.row(top)),
                   static_cast<size_t>(grey.bytesPerRow()));
}

void opencv(benchmark::State &state) {
    const cv::Mat strip = band_of(picture());
    cv::Mat bright(strip.size(), CV_8UC1);
    std::vector<std::vector<cv::Point>> contours;
    std::vector<cv::Vec4i> nesting;
    size_t count = 0;
    for (auto _ : state) count = opencv_job(strip, bright, contours, nesting);
    state.counters["contours"] = static_cast<double>(count);
}

// Not a baseline, a reference: OpenCV's job together with the clearing of
// the picture outside the band that the search has to do and OpenCV doesn't,
// on the picture that the whole search gets.
void opencv_and_clear(benchmark::State &state) {
    BM_GreyMap grey = picture();
    const cv::Mat strip = band_of(grey);
    cv::Mat bright(strip.size(), CV_8UC1);
    std::vector<std::vector<cv::Point>> contours;
    std::vector<cv::Vec4i> nesting;
    const size_t bytes = static_cast<size_t>(grey.bytesPerRow()) * static_cast<size_t>(band().y0);
    for (auto _ : state) {
        state.PauseTiming();
        restore(grey);
        state.ResumeTiming();
        std::memset(grey.data(), 0, bytes);
        opencv_job(strip, bright, contours, nesting);
    }
}

void whole_search(benchmark::State &state) {
    BM_GreyMap grey = picture();
    const PegRegistrationOptions options = bottom_options();
    for (auto _ : state) {
        state.PauseTiming();
        restore(grey);
        state.ResumeTiming();
        Math::Point2d points[3];
        if (!locate_pegs(grey, options, points)) state.SkipWithError("no pegs found");
    }
}

// The one-inch band cut out of the scan as a picture of its own: the search
// then has nothing outside the band to clear, and does the job the OpenCV
// baseline does.
BM_GreyMap band_picture() {
    const int top = static_cast<int>(band().y0);
    BM_GreyMap strip(picture().width(), picture().height() - top);
    for (int y = 0; y < strip.height(); ++y)
        std::memcpy(strip.row(y), picture().row(top + y), static_cast<size_t>(picture().width()));
    return strip;
}

void band_search(benchmark::State &state) {
    const BM_GreyMap original = band_picture();
    BM_GreyMap grey = original;
    const PegRegistrationOptions options = bottom_options();
    for (auto _ : state) {
        state.PauseTiming();
        std::memcpy(grey.data(), original.data(),
                    static_cast<size_t>(grey.bytesPerRow()) * static_cast<size_t>(grey.height()));
        state.ResumeTiming();
        Math::Point2d points[3];
        if (!locate_pegs(grey, options, points)) state.SkipWithError("no pegs found in the band");
    }
}

// What any search that clears its picture outside the band has to do: write
// zeros over the rows above the band, in one go.
void clear_outside(benchmark::State &state) {
    BM_GreyMap grey = picture();
    const size_t bytes = static_cast<size_t>(grey.bytesPerRow()) * static_cast<size_t>(band().y0);
    for (auto _ : state) {
        state.PauseTiming();
        restore(grey);
        state.ResumeTiming();
        std::memset(grey.data(), 0, bytes);
        benchmark::DoNotOptimize(grey.data());
    }
}

void mask_only(benchmark::State &state) {
    BM_GreyMap grey = picture();
    const Math::Box2d box = band();
    for (auto _ : state) {
        state.PauseTiming();
        restore(grey);
        state.ResumeTiming();
        BM_MaskMap mask;  // as the search has it: the band's rows only
        allocate_peg_mask(mask, grey.width(), grey.height(), box, 2);
        build_peg_mask(grey, mask, threshold(), box, Math::Box2d{}, 2, 2, false);
        benchmark::DoNotOptimize(mask.data());
    }
}

// The search's picture and mask as the tracer gets them. The trace changes
// the mask only by clearing its frame, which stays clear, so one mask serves
// every iteration.
struct Masked {
    BM_GreyMap grey = picture();
    BM_MaskMap mask;
    Masked() {
        allocate_peg_mask(mask, grey.width(), grey.height(), band(), 2);
        build_peg_mask(grey, mask, threshold(), band(), Math::Box2d{}, 2, 2, false);
    }
};

std::vector<GR_BezierPath2d> trace(BM_MaskMap &mask) {
    std::vector<GR_BezierPath2d> polygons;
    ContourTracer tracer;  // fresh marks, as the search has
    tracer.mask = &mask;
    trace_contours(tracer, polygons);
    return polygons;
}

void trace_only(benchmark::State &state) {
    Masked masked;
    size_t count = 0;
    for (auto _ : state) count = trace(masked.mask).size();
    state.counters["contours"] = static_cast<double>(count);
}

void candidates_only(benchmark::State &state) {
    Masked masked;
    const std::vector<GR_BezierPath2d> polygons = trace(masked.mask);
    const PegRegistrationOptions options = bottom_options();
    for (auto _ : state) {
        const PegCandidates found = peg_candidates(polygons, masked.mask, masked.grey, options);
        benchmark::DoNotOptimize(found.center.data());
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (!search_succeeds()) {
        std::fprintf(stderr, "the search finds no pegs on the chart: nothing to measure\n");
        return 1;
    }
    benchmark::RegisterBenchmark("pegs/baseline", opencv)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/locate_pegs", whole_search)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/locate_pegs_band", band_search)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/clear_outside", clear_outside)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/opencv_and_clear", opencv_and_clear)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/mask", mask_only)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/trace", trace_only)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("pegs/candidates", candidates_only)->Unit(benchmark::kMillisecond);
    scanbench::setGoal("pegs", "locate_pegs", 1.0);
    scanbench::setGoal("pegs", "locate_pegs_band", 1.0);
    cv::setNumThreads(1);  // the search runs on one thread
    return scanbench::runWithRatios(argc, argv);
}
