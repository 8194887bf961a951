// Saving and loading a scan through the drawing record, against writing and
// reading the bare pixel block. The sheet is a 12-field 300-dpi scan: white
// paper with grain and pencil strokes, in grey and in two values.
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "support/ratio_report.h"

namespace {

constexpr int kWidth = 3600;
constexpr int kHeight = 2700;
constexpr size_t kPixels = size_t(kWidth) * kHeight;
constexpr int kGreyFormat = 2;

// Paper grain around a light grey, and a few hundred soft pencil strokes.
std::vector<uint8_t> pencil_sheet() {
    std::mt19937 random(20240611);
    std::vector<uint8_t> sheet(kPixels);
    std::uniform_int_distribution<int> grain(-5, 5);
    for (uint8_t &p : sheet) p = uint8_t(240 + grain(random) + grain(random) / 2);

    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int stroke = 0; stroke < 500; ++stroke) {
        double x = 100 + unit(random) * (kWidth - 200), y = 100 + unit(random) * (kHeight - 200);
        double heading = unit(random) * 6.283, turn = (unit(random) - 0.5) * 0.05;
        const double radius = 0.8 + unit(random) * 1.4;
        const int lead = 40 + int(unit(random) * 80), darkest = 50 + int(unit(random) * 80);
        const int length = 150 + int(unit(random) * 400);
        for (int step = 0; step < length; ++step) {
            heading += turn + (unit(random) - 0.5) * 0.02;
            x += std::cos(heading);
            y += std::sin(heading);
            const int x0 = int(x - radius - 1), x1 = int(x + radius + 1);
            const int y0 = int(y - radius - 1), y1 = int(y + radius + 1);
            if (x0 < 0 || y0 < 0 || x1 >= kWidth || y1 >= kHeight) break;
            for (int py = y0; py <= y1; ++py)
                for (int px = x0; px <= x1; ++px) {
                    const double edge = std::hypot(px - x, py - y) - radius;  // soft graphite edge
                    if (edge > 1.0) continue;
                    const double cover = edge <= 0.0 ? 1.0 : 1.0 - edge;
                    const int ink = int(240 - cover * (240 - darkest)) + (step * lead / length) % 8;
                    uint8_t &p = sheet[size_t(py) * kWidth + px];
                    p = uint8_t(std::min<int>(p, ink));
                }
        }
    }
    return sheet;
}

std::vector<uint8_t> two_valued(const std::vector<uint8_t> &grey) {
    std::vector<uint8_t> bw(grey.size());
    std::transform(grey.begin(), grey.end(), bw.begin(), [](uint8_t v) { return v < 160 ? 0 : 255; });
    return bw;
}

const QTemporaryDir &folder() {
    static const QTemporaryDir dir;
    return dir;
}

Drawing *drawing_of(const std::vector<uint8_t> &pixels, const QString &name) {
    auto block = CEL_PixmapMatte8::makeBlock(kWidth, kHeight, false);
    std::copy(pixels.begin(), pixels.end(), block.get());
    LMV_pixmap *pixmap = create_pixmap(PIXMAP_NONE, 0, 0);
    set_matte8_of_pixmap(pixmap, std::move(block), kWidth, kHeight, 1);
    Drawing *d = create_Drawing(QStringLiteral("BG"), name, folder().path());
    set_file_format_of_Drawing(d, kGreyFormat);
    set_dpi_of_Drawing(d, 300.0f);
    set_paper_size_of_Drawing(d, 12.0f);
    set_peg_side_of_Drawing(d, 2);
    set_pegged_of_Drawing(d, true);
    set_pixmap_of_Drawing(d, pixmap);
    return d;
}

std::string raw_path(const char *name) { return folder().filePath(QString::fromLatin1(name)).toStdString(); }

bool write_raw(const std::string &path, const std::vector<uint8_t> &pixels) {
    std::FILE *f = std::fopen(path.c_str(), "wb");
    if (!f) return false;
    const bool written = std::fwrite(pixels.data(), 1, pixels.size(), f) == pixels.size();
    return std::fclose(f) == 0 && written;
}

void save_raw(benchmark::State &state, const std::vector<uint8_t> *pixels, const char *name) {
    const std::string path = raw_path(name);
    for (auto _ : state)
        if (!write_raw(path, *pixels)) state.SkipWithError("fwrite failed");
    state.counters["file_bytes"] = double(pixels->size());
}

void load_raw(benchmark::State &state, const std::vector<uint8_t> *pixels, const char *name) {
    const std::string path = raw_path(name);
    write_raw(path, *pixels);
    std::vector<uint8_t> back(pixels->size());
    for (auto _ : state) {
        std::FILE *f = std::fopen(path.c_str(), "rb");
        if (!f || std::fread(back.data(), 1, back.size(), f) != back.size()) state.SkipWithError("fread");
        if (f) std::fclose(f);
        benchmark::DoNotOptimize(back.data());
    }
    if (back != *pixels) state.SkipWithError("raw bytes differ");
    state.counters["file_bytes"] = double(pixels->size());
}

QString station_path(const QString &name) { return folder().filePath(QStringLiteral("BG-%1.tif").arg(name)); }

void save_station(benchmark::State &state, const std::vector<uint8_t> *pixels, const char *name) {
    Drawing *d = drawing_of(*pixels, QString::fromLatin1(name));
    for (auto _ : state)
        if (save_Drawing(d) != 0) state.SkipWithError("save_Drawing failed");
    destroy_Drawing(&d);
    state.counters["file_bytes"] = double(QFileInfo(station_path(QString::fromLatin1(name))).size());
}

void load_station(benchmark::State &state, const std::vector<uint8_t> *pixels, const char *name) {
    const QString path = station_path(QString::fromLatin1(name));
    Drawing *saved = drawing_of(*pixels, QString::fromLatin1(name));
    const int result = save_Drawing(saved);
    destroy_Drawing(&saved);
    if (result != 0) {
        state.SkipWithError("save_Drawing failed");
        return;
    }
    for (auto _ : state) {
        QString text;
        Drawing *d = load_Drawing(path, text);
        if (!d) {
            state.SkipWithError("load_Drawing failed");
            break;
        }
        state.PauseTiming();
        const bool same = std::equal(pixels->begin(), pixels->end(), matte8_data_of_pixmap(pixmap_of_Drawing(d)));
        destroy_Drawing(&d);
        state.ResumeTiming();
        if (!same) state.SkipWithError("pixels differ after the round trip");
    }
    state.counters["file_bytes"] = double(QFileInfo(path).size());
}

}  // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    static const std::vector<uint8_t> grey = pencil_sheet();
    static const std::vector<uint8_t> bw = two_valued(grey);
    for (const auto &[group, pixels] : {std::pair{"grey", &grey}, std::pair{"bw", &bw}}) {
        const std::string g = group;
        benchmark::RegisterBenchmark(("save_" + g + "/baseline").c_str(), save_raw, pixels, group)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("save_" + g + "/station").c_str(), save_station, pixels, group)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("load_" + g + "/baseline").c_str(), load_raw, pixels, group)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("load_" + g + "/station").c_str(), load_station, pixels, group)->Unit(benchmark::kMillisecond);
    }
    return scanbench::runWithRatios(argc, argv);
}
