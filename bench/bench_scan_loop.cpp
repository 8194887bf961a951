// One drawing of a 12-field 300-dpi colour list on the colour test scanner,
// through the scan loop and stage by stage. The stages are what a drawing
// costs by itself: the chart the scanner "sees", the scan data delivered band
// by band into the drawing's pixmap, mechanical registration and the save.
// The baseline runs the four one after the other; the loop case scans one
// drawing through ScanDrawingList on a session, so its ratio is what the
// loop adds around the work.
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "scan/drawing.h"
#include "scan/drivers/Dev_bogus.h"
#include "scan/drivers/bogus_field_chart.h"
#include "scan/parameters.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_device.h"
#include "scan/scanner_list.h"
#include "suite/base/osw_util.h"
#include "support/ratio_report.h"
#include "workflow/config.h"
#include "workflow/drawing_list.h"
#include "workflow/register.h"
#include "workflow/scan_procs.h"
#include "workflow/scripted_window.h"

namespace {

constexpr double kField = 12;
constexpr uint32_t kDpi = 300;
constexpr char kModel[] = "Bogus-Color";
// The file format a manual list gives colour scans.
constexpr int32_t kColourFormat = 4;

struct DrawingDeleter {
    void operator()(Drawing *d) const { destroy_Drawing(&d); }
};
using DrawingPtr = std::unique_ptr<Drawing, DrawingDeleter>;

// A session on the scripted window, in a scratch folder that is also the
// current directory (where the test scanner looks for its control files:
// there are none, so the feeder never runs empty and the chart is unskewed).
class Station {
public:
    bool start(QString &error);
    ~Station() {
        if (config_) ScanConfigDestroy(config_);
    }

    ScanConfig *config() const { return config_; }
    ScanDeviceInfo *device() const { return device_of_ScannerEntry(scanner_of_ScanConfig(config_)); }
    QString scans() const { return dir_.filePath(QStringLiteral("scans")); }
    QString freshName() { return QString::number(++drawings_); }

    // A drawing as the loop prepares one for the next row.
    DrawingPtr freshDrawing();
    // Empties the scan folder so that every save writes a new file.
    void clearScans() const;
    // The size of the one file in the scan folder, or -1 for none or several;
    // the same size from the loop and from the stages shows they wrote alike.
    qint64 savedBytes() const {
        const QFileInfoList files = QDir(scans()).entryInfoList(QDir::Files);
        return files.size() == 1 ? files.first().size() : -1;
    }

private:
    QTemporaryDir dir_;
    ScriptedScanWindow window_;
    ScanConfig *config_ = nullptr;
    int drawings_ = 0;
};

bool Station::start(QString &error) {
    QString host;
    if (!dir_.isValid() || !QDir(dir_.path()).mkdir(QStringLiteral("scans")) || !oswUtil::getShortMachineName(host)) {
        error = QStringLiteral("no scratch folder or no machine name");
        return false;
    }
    QDir::setCurrent(dir_.path());
    set_sleep_function_of_ScanDevice([](int) {});

    const QString conf = dir_.filePath(QStringLiteral("Scan.conf"));
    QFile f(conf);
    if (!f.open(QIODevice::WriteOnly)) {
        error = QStringLiteral("cannot write %1").arg(conf);
        return false;
    }
    f.write(QStringLiteral("host: %1\nname: Bench\ndevice: fieldchart\nmodel: %2\n").arg(host, kModel).toUtf8());
    f.close();

    window_.manualPath = scans();
    window_.manualPrefix = QStringLiteral("BL");
    config_ = ScanConfigCreate(conf, &window_);
    if (!config_ || scanner_kind_of_ScanConfig(config_) != SCANNER_SCSI) {
        error = QStringLiteral("the session found no test scanner");
        return false;
    }
    set_depth_of_ScanConfig(config_, DEPTH_COLOUR);
    select_scanner_of_ScanConfig(config_, 0);  // parameters and feed follow the depth
    set_dpi_of_ScanConfig(config_, kDpi);
    set_field_of_ScanConfig(config_, kField);
    set_feed_of_ScanConfig(config_, FEED_PEGGED_MANY);
    set_optical_of_ScanConfig(config_, false);
    refresh_of_ScanConfig(config_);
    build_manual_list(config_, {freshName()});
    if (depth_of_ScanConfig(config_) != DEPTH_COLOUR || dpi_of_ScanConfig(config_) != kDpi ||
        autofeed_of_ScanConfig(config_) || one_drawing_of_ScanConfig(config_)) {
        error = QStringLiteral("the session refused colour, %1 dpi, pegged many").arg(kDpi);
        return false;
    }
    return true;
}

DrawingPtr Station::freshDrawing() {
    DrawingPtr d{create_Drawing(prefix_of_ScanConfig(config_), freshName(), scans())};
    set_file_format_of_Drawing(d.get(), kColourFormat);
    set_scan_host_of_Drawing(d.get(), host_of_ScannerList(scanner_list_of_ScanConfig(config_)));
    set_scanner_name_of_Drawing(d.get(), name_of_ScannerEntry(scanner_of_ScanConfig(config_)));
    set_peg_side_of_Drawing(d.get(), peg_side_of_ScanConfig(config_));
    set_pegged_of_Drawing(d.get(), true);
    set_paper_size_of_Drawing(d.get(), float(kField));
    set_dpi_of_Drawing(d.get(), float(kDpi));
    set_pages_of_Drawing(d.get(), 1.0f);
    set_pixel_shape_of_Drawing(d.get(), pixel_shape_of_ScanConfig(config_));
    set_scan_depth_of_Drawing(d.get(), DEPTH_COLOUR);
    copy_parameters_to_Drawing(parameters_of_ScanDeviceInfo(device(), DEPTH_COLOUR), d.get());
    return d;
}

void Station::clearScans() const {
    QDir folder(scans());
    for (const QString &name : folder.entryList(QDir::Files)) folder.remove(name);
}

Station *station = nullptr;

// The test scanner tells of every scan on the standard output and the chart's
// skew on the standard error; both are sent away while a case runs, so that
// the table stays readable, and come back before the case is reported.
class Quiet {
public:
    Quiet() {
        std::fflush(stdout);
        std::fflush(stderr);
        const int sink = ::open("/dev/null", O_WRONLY);
        if (sink < 0) return;
        out_ = ::dup(1);
        err_ = ::dup(2);
        ::dup2(sink, 1);
        ::dup2(sink, 2);
        ::close(sink);
    }
    ~Quiet() {
        std::fflush(stdout);
        std::fflush(stderr);
        if (out_ >= 0) ::dup2(out_, 1), ::close(out_);
        if (err_ >= 0) ::dup2(err_, 2), ::close(err_);
    }
    Quiet(const Quiet &) = delete;
    Quiet &operator=(const Quiet &) = delete;

private:
    int out_ = -1, err_ = -1;
};

QImage chart() { return paint_field_chart(kField, kDpi, false, 1.0, 1.0, FieldChartSkew{}); }

bool deliver(Drawing *d, const QImage &picture) {
    return deliver_Dev_bogus_image(station->device(), d, picture, false).code == STATUS_SUCCESS &&
           pixmap_of_Drawing(d) != nullptr;
}

bool register_drawing(Drawing *d) { return MechanicalRegisterScan(station->config(), d, pixmap_of_Drawing(d)) != 0; }

// ---- The stages alone ----------------------------------------------------------

void stage_chart(benchmark::State &state) {
    for (auto _ : state) {
        QImage image = chart();
        if (image.isNull()) state.SkipWithError("no chart");
        benchmark::DoNotOptimize(image.constBits());
    }
}

void stage_bands(benchmark::State &state) {
    const Quiet quiet;
    const QImage picture = chart();
    for (auto _ : state) {
        state.PauseTiming();
        DrawingPtr d = station->freshDrawing();
        state.ResumeTiming();
        if (!deliver(d.get(), picture)) state.SkipWithError("delivery failed");
        state.PauseTiming();
        d.reset();
        state.ResumeTiming();
    }
}

void stage_register(benchmark::State &state) {
    const Quiet quiet;
    DrawingPtr d = station->freshDrawing();
    if (!deliver(d.get(), chart())) state.SkipWithError("delivery failed");
    for (auto _ : state)
        if (!register_drawing(d.get())) state.SkipWithError("registration failed");
}

void stage_save(benchmark::State &state) {
    const Quiet quiet;
    const QImage picture = chart();
    for (auto _ : state) {
        state.PauseTiming();
        station->clearScans();
        DrawingPtr d = station->freshDrawing();
        const bool ready = deliver(d.get(), picture) && register_drawing(d.get());
        state.ResumeTiming();
        if (!ready || save_Drawing(d.get()) != 0) state.SkipWithError("save failed");
        state.PauseTiming();
        d.reset();
        state.counters["file_bytes"] = double(station->savedBytes());
        state.ResumeTiming();
    }
    station->clearScans();
}

// ---- One drawing ------------------------------------------------------------------

// The four stages back to back, with the drawing made and dropped as the loop
// makes and drops it.
void drawing_alone(benchmark::State &state) {
    const Quiet quiet;
    for (auto _ : state) {
        state.PauseTiming();
        station->clearScans();
        state.ResumeTiming();
        DrawingPtr d = station->freshDrawing();
        if (!deliver(d.get(), chart()) || !register_drawing(d.get()) || save_Drawing(d.get()) != 0)
            state.SkipWithError("a stage failed");
        d.reset();
        state.PauseTiming();
        const qint64 bytes = station->savedBytes();
        if (bytes <= 0) state.SkipWithError("no file saved");
        state.counters["file_bytes"] = double(bytes);
        state.ResumeTiming();
    }
    station->clearScans();
}

// Scan pressed on a list of one fresh row, pegged many: the loop runs that row
// from reserve to save and stops at the end of the list.
void drawing_loop(benchmark::State &state) {
    const Quiet quiet;
    ScanConfig *config = station->config();
    for (auto _ : state) {
        state.PauseTiming();
        station->clearScans();
        build_manual_list(config, {station->freshName()});
        state.ResumeTiming();
        ScanDrawingList(config);
        state.PauseTiming();
        const qint64 bytes = station->savedBytes();
        if (state_of_DrawingList(drawing_list_of_ScanConfig(config), 0) != ROW_SCANNED || bytes <= 0)
            state.SkipWithError("the row was not scanned and saved");
        state.counters["file_bytes"] = double(bytes);
        state.ResumeTiming();
    }
    station->clearScans();
}

}  // namespace

int main(int argc, char **argv) {
    QTemporaryDir logs;
    qputenv("SCAN_LOG_DIR", logs.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    Station session;
    QString error;
    if (!session.start(error)) {
        std::fprintf(stderr, "bench_scan_loop: %s\n", error.toLocal8Bit().constData());
        return 1;
    }
    station = &session;

    using Case = std::pair<const char *, void (*)(benchmark::State &)>;
    for (const auto &[name, run] : {Case{"drawing/baseline", drawing_alone}, Case{"drawing/loop", drawing_loop},
                                    Case{"drawing/chart", stage_chart}, Case{"drawing/bands", stage_bands},
                                    Case{"drawing/register", stage_register}, Case{"drawing/save", stage_save}})
        benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond);
    scanbench::setGoal("drawing", "loop", 1.1);
    // A drawing takes about a third of a second, so the default half second
    // of timing would rest on two; a later --benchmark_min_time wins.
    std::vector<char *> args(argv, argv + argc);
    char longer[] = "--benchmark_min_time=3";
    args.insert(args.begin() + 1, longer);
    int count = int(args.size());
    args.push_back(nullptr);
    return scanbench::runWithRatios(count, args.data());
}
