// Rotation of a scanned sheet by a small registration angle, against OpenCV's
// bilinear warpAffine on the same picture with the same output size.
//
// The sheet is a 12-field drawing at 300 dpi: 12 x 9 inches, 3600 x 2700
// pixels. The station rotates on one thread, so the baseline runs OpenCV on
// one thread too (cv::setNumThreads(1)); OpenCV on all its threads is shown
// as a second, informative case.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstring>

#include "scan/pixmap_pixmap.h"
#include "scan/pixmap_rotate.h"
#include "support/ratio_report.h"

namespace {

constexpr int32_t kWidth = 3600, kHeight = 2700;
constexpr float kAngle = 0.7f;

// Pencil-like strokes on paper: content does not change the work, but a
// plain picture would hide mistakes in a quick look at the output.
template <class P>
void draw_sheet(P *pixels)
{
    for (int32_t y = 0; y < kHeight; ++y)
        for (int32_t x = 0; x < kWidth; ++x) {
            const bool ink = (x + 3 * y) % 97 < 3 || (x * x + y) % 389 < 2;
            const uint8_t v = ink ? uint8_t(40 + (x + y) % 50) : uint8_t(235 + (x ^ y) % 20);
            if constexpr (sizeof(P) == 1)
                pixels[size_t(y) * kWidth + x] = v;
            else
                pixels[size_t(y) * kWidth + x] = {v, uint8_t(v - 5), uint8_t(v - 10), 0};
        }
}

LMV_pixmap *make_sheet(int32_t kind)
{
    LMV_pixmap *pm = create_pixmap(kind, kWidth, kHeight);
    if (kind == PIXMAP_MATTE8)
        draw_sheet(matte8_data_of_pixmap(pm));
    else
        draw_sheet(rgba8_data_of_pixmap(pm));
    return pm;
}

// The output size of the station's rotation, for OpenCV to match.
cv::Size station_size(int32_t kind)
{
    LMV_pixmap *pm = make_sheet(kind);
    float cx = kWidth / 2.0f, cy = kHeight / 2.0f;
    rotate_LMV_pixmap(pm, kAngle, &cx, &cy, 0, kWidth - 1, 0, kHeight - 1, nullptr);
    const cv::Size size(width_of_pixmap(pm), height_of_pixmap(pm));
    release_pixmap(pm);
    return size;
}

void station(benchmark::State &state, int32_t kind)
{
    LMV_pixmap *sheet = make_sheet(kind);
    for (auto _ : state) {
        state.PauseTiming();
        LMV_pixmap *pm = clone_pixmap(sheet);
        float cx = kWidth / 2.0f, cy = kHeight / 2.0f;
        state.ResumeTiming();
        rotate_LMV_pixmap(pm, kAngle, &cx, &cy, 0, kWidth - 1, 0, kHeight - 1, nullptr);
        state.PauseTiming();
        release_pixmap(pm);
        state.ResumeTiming();
    }
    release_pixmap(sheet);
}

void opencv(benchmark::State &state, int32_t kind, int threads)
{
    LMV_pixmap *sheet = make_sheet(kind);
    const int type = kind == PIXMAP_MATTE8 ? CV_8UC1 : CV_8UC4;
    void *data = kind == PIXMAP_MATTE8 ? static_cast<void *>(matte8_data_of_pixmap(sheet))
                                       : static_cast<void *>(rgba8_data_of_pixmap(sheet));
    const cv::Mat src(kHeight, kWidth, type, data);
    const cv::Mat turn = cv::getRotationMatrix2D(cv::Point2f(kWidth / 2.0f, kHeight / 2.0f), kAngle, 1.0);
    const cv::Size size = station_size(kind);
    cv::Mat dst(size, type);
    cv::setNumThreads(threads);
    for (auto _ : state)
        cv::warpAffine(src, dst, turn, size, cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    cv::setNumThreads(1);
    release_pixmap(sheet);
}

} // namespace

int main(int argc, char **argv)
{
    for (const auto &[group, kind] : {std::pair{"rotate_matte8", int32_t(PIXMAP_MATTE8)},
                                      std::pair{"rotate_rgba8", int32_t(PIXMAP_RGBA8)}}) {
        const std::string g = group;
        benchmark::RegisterBenchmark((g + "/baseline").c_str(), opencv, kind, 1)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((g + "/station").c_str(), station, kind)->Unit(benchmark::kMillisecond);
        // -1: OpenCV's own choice of threads.
        benchmark::RegisterBenchmark((g + "/opencv_all_threads").c_str(), opencv, kind, -1)
            ->Unit(benchmark::kMillisecond);
        scanbench::setGoal(g, "station", 1.0);
    }
    return scanbench::runWithRatios(argc, argv);
}
