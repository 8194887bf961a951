// The band loader on a 16-field sheet at 600 dpi (16 x 12 inches: lines of
// 9600 pixels, 7200 lines), fed the way the drivers feed it, against memcpy.
//
// Baselines: the loader has to allocate the image on the first band and then
// write every output byte once, so each baseline allocates a fresh block of
// the output size and memcpys the output's bytes into it in the same bands:
// W x H bytes for grey, W x H x 4 bytes for colour (the loader reads only
// three of those four bytes a pixel, so this is the fair floor for writing
// an RGBA8 image). Setting up and freeing the pixmap stay outside the timing
// in both.
#include <algorithm>
#include <cstring>
#include <string>
#include <memory>
#include <random>
#include <vector>

#include "scan/pixmap_pixmap.h"
#include "support/ratio_report.h"

namespace {

constexpr int32_t kWidth = 9600;
constexpr int32_t kHeight = 7200;
// Grey drivers gather whole lines in a 1 MiB copy buffer; the colour path
// sends at most 100000 bytes of whole lines at a time.
constexpr size_t kGreyBand = 1048576 - 1048576 % size_t(kWidth);
constexpr size_t kColourBand = 100000 - 100000 % (3 * size_t(kWidth));

const std::vector<uint8_t> &raster(size_t bytes)
{
    static std::vector<uint8_t> data;
    if (data.size() < bytes) {
        data.resize(bytes);
        std::mt19937 rng(7);
        for (auto &b : data)
            b = uint8_t(rng());
    }
    return data;
}

void bench_baseline(benchmark::State &state, size_t output_bytes, size_t band_out)
{
    const std::vector<uint8_t> &src = raster(output_bytes);
    for (auto _ : state) {
        auto block = std::make_unique_for_overwrite<uint8_t[]>(output_bytes);
        for (size_t done = 0; done < output_bytes; done += band_out)
            std::memcpy(block.get() + done, src.data() + done, std::min(band_out, output_bytes - done));
        benchmark::DoNotOptimize(block.get());
        state.PauseTiming();
        block.reset();
        state.ResumeTiming();
    }
}

void bench_loader(benchmark::State &state, bool colour, int32_t side, bool invert)
{
    const size_t bytes = size_t(kWidth) * kHeight * (colour ? 3 : 1);
    const size_t band = colour ? kColourBand : kGreyBand;
    const std::vector<uint8_t> &src = raster(bytes);
    for (auto _ : state) {
        state.PauseTiming();
        // An empty leaf: the first band gives it its block, as in a scan.
        LMV_pixmap *pm = colour ? wrap_rgba8_pixmap(UT_makeShared<CEL_PixmapRGBA8>(), kWidth, kHeight, 1)
                                : wrap_matte8_pixmap(UT_makeShared<CEL_PixmapMatte8>(), kWidth, kHeight, 1);
        state.ResumeTiming();
        int32_t x = 0, y = 0;
        for (size_t done = 0; done < bytes; done += band) {
            const size_t length = std::min(band, bytes - done);
            load_band_of_pixmap(pm, &x, &y, src.data() + done, int32_t(length), invert, false, side, done == 0,
                                done + length == bytes);
        }
        benchmark::DoNotOptimize(best_of_pixmap(pm).get());
        state.PauseTiming();
        release_pixmap(pm);
        state.ResumeTiming();
    }
}

const char *kSides[] = {"", "left", "top", "right", "bottom"};

void register_group(const char *group, bool colour)
{
    const size_t pixels = size_t(kWidth) * kHeight;
    const size_t out_bytes = pixels * (colour ? 4 : 1);
    const size_t band_out = colour ? kColourBand / 3 * 4 : kGreyBand;
    auto unit = [](benchmark::internal::Benchmark *b) { b->Unit(benchmark::kMillisecond); };
    unit(benchmark::RegisterBenchmark((std::string(group) + "/baseline").c_str(), bench_baseline, out_bytes, band_out));
    for (int32_t side = 1; side <= 4; ++side) {
        const std::string name = kSides[side];
        unit(benchmark::RegisterBenchmark((std::string(group) + "/" + name).c_str(), bench_loader, colour, side, false));
        scanbench::setGoal(group, name, side == 1 ? 1.5 : 3.0);
    }
    if (!colour) {
        // The inverted copy of a black-on-white scanner.
        unit(benchmark::RegisterBenchmark((std::string(group) + "/left_inverted").c_str(), bench_loader, colour, 1,
                                          true));
        scanbench::setGoal(group, "left_inverted", 1.5);
    }
}

} // namespace

int main(int argc, char **argv)
{
    register_group("band_grey", false);
    register_group("band_colour", true);
    // A colour case takes a few hundred milliseconds; measure each for two
    // seconds unless told otherwise, so that one slow iteration doesn't decide.
    std::vector<char *> args(argv, argv + argc);
    std::string min_time = "--benchmark_min_time=2";
    if (std::none_of(args.begin(), args.end(), [](const char *a) { return std::strstr(a, "min_time"); }))
        args.push_back(min_time.data());
    int count = int(args.size());
    args.push_back(nullptr);
    return scanbench::runWithRatios(count, args.data());
}
