// The test scanner: its field chart, its feeder count and the scan data it
// delivers to the drawing at each depth.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <memory>
#include <string>
#include <vector>

#include "scan/devices.h"
#include "scan/drawing.h"
#include "scan/drivers/bogus_field_chart.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_device.h"
#include "support/message_capture.h"

namespace {

// The chart of a 12-inch field at 100 dpi, unskewed: painted on a 1200 pixel
// square, turned a quarter and scaled to 1050 by 1200.
constexpr double kField = 12, kDpi = 100;
constexpr int kSquare = 1200, kWide = 1050;

// Where a point of the chart (in pixels from its top left) lands in the image,
// for a chart moved by (dx, dy) pixels before it was turned.
QPoint landing(double cx, double cy, double dx = 0, double dy = 0) {
    return QPoint(int((cy + dy) * kWide / kSquare), int(kSquare - cx - dx));
}

bool white(const QImage &chart, QPoint p) { return qRed(chart.pixel(p)) == 255; }

struct DrawingDeleter {
    void operator()(Drawing *d) const { destroy_Drawing(&d); }
};
using DrawingPtr = std::unique_ptr<Drawing, DrawingDeleter>;

class BogusDevice : public ::testing::Test {
protected:
    std::unique_ptr<ScanDeviceInfo> device(const char *model, const QString &source) {
        auto dev = std::make_unique<ScanDeviceInfo>();
        dev->model = QString::fromLatin1(model);
        dev->device = source;
        EXPECT_TRUE(setup_model_of_devices(dev.get()));
        return dev;
    }
    DrawingPtr drawing(int32_t depth, int32_t peg_side = 1) {
        DrawingPtr d(create_Drawing(QStringLiteral("A"), QStringLiteral("0001"), dir_.path()));
        set_scan_depth_of_Drawing(d.get(), depth);
        set_peg_side_of_Drawing(d.get(), peg_side);
        set_paper_size_of_Drawing(d.get(), float(kField));
        set_dpi_of_Drawing(d.get(), float(kDpi));
        return d;
    }
    // One scan as the loop runs it, standard output kept aside.
    ScanStatus scan(ScanDeviceInfo *dev, Drawing *d) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_FALSE(reserve_ScanDevice(dev).failed());
        const ScanStatus status = read_ScanDevice(dev, d);
        stdout_ = testing::internal::GetCapturedStdout();
        testing::internal::GetCapturedStderr();
        return status;
    }
    static std::vector<uint8_t> matte(const Drawing *d) {
        const LMV_pixmap *p = pixmap_of_Drawing(d);
        const uint8_t *data = matte8_data_of_pixmap(p);
        return data ? std::vector<uint8_t>(data, data + size_t(width_of_pixmap(p)) * size_t(height_of_pixmap(p)))
                    : std::vector<uint8_t>{};
    }

    // The driver's control files are read from the current directory: an
    // empty one of the test's own.
    QString path(const char *name) const { return dir_.filePath(QString::fromLatin1(name)); }
    void write(const char *name, const QByteArray &text) const {
        QFile f(path(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
    }
    QByteArray read(const char *name) const {
        QFile f(path(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(missing)");
    }
    void SetUp() override { QDir::setCurrent(dir_.path()); }
    void TearDown() override { QDir::setCurrent(old_); }

    QTemporaryDir dir_;
    QString old_ = QDir::currentPath();
    std::string stdout_;
};

TEST_F(BogusDevice, FieldChartPegHolesGridSizeAndOffsetFile) {
    const QImage chart = make_field_chart(kField, kDpi, false, 1.0, 1.0);
    ASSERT_EQ(chart.size(), QSize(kWide, kSquare));
    struct Spot {
        double cx, cy;
        bool white;
    };
    const Spot spots[] = {
        {599.5, 37.5, true}, {620, 37.5, false},                                // the round hole, black beside it
        {169, 37, true}, {158, 37, false}, {1030, 37, true}, {1040, 37, false},  // slots 0.7 inch wide
        {600, 80, false},                                                       // nothing before the grid
        {650, 320, true}, {625, 320, false}, {625, 300, true},  // lines every 1/2 and 3/8 inch, black between
        {1012, 562, false}, {1080, 562, true},                  // the dot beyond the right arrow head
    };
    for (const Spot &s : spots) EXPECT_EQ(white(chart, landing(s.cx, s.cy)), s.white) << s.cx << "," << s.cy;

    // Room for the skew: an inch taller, the chart half an inch further in.
    const QImage skewed = paint_field_chart(kField, kDpi, true, 1.0, 1.0, FieldChartSkew{});
    ASSERT_EQ(skewed.size(), QSize(kWide, 1300));
    EXPECT_TRUE(white(skewed, QPoint(int(37.5 * kWide / 1300), 1300 - 650)));

    write("DUMMY_XYR_OFFSET_FILE", "0.5,0.25,0\n");
    testing::internal::CaptureStderr();
    const QImage moved = make_field_chart(kField, kDpi, false, 1.0, 1.0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "DUMMY_XYR_OFFSET_FILE opened\nxoff:0.5, yoff:0.25, roff:0\nxoff:0.5, yoff:0.25, roff:0\n");
    EXPECT_TRUE(white(moved, landing(599.5, 37.5, 50, 25)));
    EXPECT_FALSE(white(moved, landing(599.5, 37.5)));
}

TEST_F(BogusDevice, FeederCountsDownToEmpty) {
    auto dev = device("Bogus-Color", QStringLiteral("fieldchart"));
    // No file: the feeder never runs empty, and no file appears; an empty
    // file reads nothing and changes nothing.
    for (const char *before : {"(missing)", ""}) {
        if (!*before) write("ADF_COUNT_FILE", before);
        EXPECT_FALSE(autoload_ScanDevice(dev.get()).failed());
        EXPECT_EQ(read("ADF_COUNT_FILE"), before);
    }
    write("ADF_COUNT_FILE", "1\n");
    EXPECT_EQ(autoload_ScanDevice(dev.get()), scan_status(SCSI_GOOD, STATUS_SUCCESS));
    EXPECT_EQ(read("ADF_COUNT_FILE"), "0\n");
    EXPECT_EQ(autoload_ScanDevice(dev.get()), scan_status(SCSI_MEDIUM_ERROR, STATUS_FEEDER_FAILURE));
    EXPECT_EQ(read("ADF_COUNT_FILE"), "0\n");
}

TEST_F(BogusDevice, ReportsAndCalibration) {
    auto dev = device("Bogus-Color", QStringLiteral("fieldchart"));
    dev->rgbDropList = {QStringLiteral("Red, 0, 100"), QStringLiteral("None")};
    dev->autofeeded = true;
    dev->leftOffset = 0.25f;
    DrawingPtr d = drawing(DEPTH_GREY, 3);
    MessageCapture capture;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(setup1_ScanDevice(dev.get(), d.get()).failed());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Red, 0, 100\nNone\n");
    EXPECT_FALSE(set_window_ScanDevice(dev.get(), d.get()).failed());
    for (const char *line : {"set_window: scan_depth_of_Drawing:Gray:1", "set_window: peg_side_of_Drawing:3",
                             "set_window: dev->leftOffset=0.25", "In autofeeded"})
        EXPECT_TRUE(capture.contains(line)) << line;
    EXPECT_FALSE(dev->reserved);

    // Calibrations other than 1.0 give the black-and-white chart a margin.
    qputenv("DEV_BOGUS_CALIBRATION", "1.0 0.5");
    auto bw = device("Bogus-B&W", QStringLiteral("fieldchart"));
    DrawingPtr b = drawing(DEPTH_BW);
    const ScanStatus status = scan(bw.get(), b.get());
    qunsetenv("DEV_BOGUS_CALIBRATION");
    ASSERT_FALSE(status.failed());
    EXPECT_EQ(stdout_, "Using calibration: 1.000000 0.500000\n");
    EXPECT_TRUE(capture.contains("xres:1425 yres:1700"));
}

// A small drawing file of known colours through the three depths, then the chart.
TEST_F(BogusDevice, DepthConversions) {
    QImage image(11, 2, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setPixel(1, 0, qRgb(0, 0, 0));
    image.setPixel(2, 0, qRgb(0, 255, 255));   // no red: black in black and white
    image.setPixel(3, 0, qRgb(255, 0, 0));
    image.setPixel(9, 1, qRgb(155, 205, 55));  // the grey weights tell here
    ASSERT_TRUE(image.save(path("sheet.png")));
    auto dev = device("Bogus-Color", path("sheet.png"));

    DrawingPtr bw = drawing(DEPTH_BW);
    MessageCapture capture;
    ASSERT_FALSE(scan(dev.get(), bw.get()).failed());
    std::vector<uint8_t> expected(22, 255);
    expected[1] = expected[2] = expected[11 + 9] = 0;
    EXPECT_EQ(matte(bw.get()), expected);
    EXPECT_TRUE(capture.contains("xres:11 yres:2"));
    EXPECT_EQ(stdout_, "rgbDrop_of_Standard_parameters=(null)\nrgbDrop_of_Standard_parameters=(null)\n");

    DrawingPtr grey = drawing(DEPTH_GREY);
    ASSERT_FALSE(scan(dev.get(), grey.get()).failed());
    const std::vector<uint8_t> g = matte(grey.get());
    ASSERT_EQ(g.size(), 22u);
    // White, black, cyan inverted to red, red inverted to cyan, and the weights.
    EXPECT_EQ(std::vector<uint8_t>({g[0], g[1], g[2], g[3], g[11 + 9]}), std::vector<uint8_t>({255, 0, 179, 77, 145}));

    DrawingPtr colour = drawing(DEPTH_COLOUR);
    ASSERT_FALSE(scan(dev.get(), colour.get()).failed());
    const CEL_RGBA8Pixel *c = rgba8_data_of_pixmap(pixmap_of_Drawing(colour.get()));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c[2], (CEL_RGBA8Pixel{0, 255, 255, 0}));
    EXPECT_EQ(c[11 + 9], (CEL_RGBA8Pixel{155, 205, 55, 0}));

    // The chart instead ramps red across and blue down its white parts.
    dev->device = QStringLiteral("fieldchart");
    ASSERT_FALSE(scan(dev.get(), colour.get()).failed());
    c = rgba8_data_of_pixmap(pixmap_of_Drawing(colour.get()));
    const QPoint hole = landing(599.5, 37.5);
    EXPECT_EQ(c[hole.y() * kWide + hole.x()], (CEL_RGBA8Pixel{248, 0, 128, 0}));
    EXPECT_EQ(c[0], (CEL_RGBA8Pixel{255, 255, 255, 0}));
}

// Both models deliver the chart's black-and-white pixmap alike, whatever
// pieces they cut it into, and as the chart shows it.
TEST_F(BogusDevice, BlackAndWhiteBandsOfBothModels) {
    const QImage chart = make_field_chart(kField, kDpi, false, 1.0, 1.0);
    for (int32_t side : {1, 2}) {
        auto bw_model = device("Bogus-B&W", QStringLiteral("fieldchart"));
        auto colour_model = device("Bogus-Color", QStringLiteral("fieldchart"));
        DrawingPtr a = drawing(DEPTH_BW, side), b = drawing(DEPTH_BW, side);
        MessageCapture capture;
        ASSERT_FALSE(scan(bw_model.get(), a.get()).failed());
        ASSERT_FALSE(scan(colour_model.get(), b.get()).failed());
        EXPECT_TRUE(capture.errors().empty());
        const std::vector<uint8_t> pa = matte(a.get());
        EXPECT_EQ(pa, matte(b.get()));
        if (side == 2) {
            EXPECT_TRUE(capture.contains("xres:1200 yres:1050"));
            continue;
        }
        ASSERT_EQ(pa.size(), size_t(chart.width()) * size_t(chart.height()));
        size_t mismatches = 0;
        for (int y = 0; y < chart.height(); ++y)
            for (int x = 0; x < chart.width(); ++x)
                mismatches += pa[size_t(y) * size_t(chart.width()) + size_t(x)] != (qRed(chart.pixel(x, y)) == 0 ? 255 : 0);
        EXPECT_EQ(mismatches, 0u);
    }
}

TEST_F(BogusDevice, ChartSkewFollowsFeedAndRegistration) {
    auto dev = device("Bogus-B&W", QStringLiteral("fieldchart"));
    DrawingPtr d = drawing(DEPTH_BW);
    std::vector<uint8_t> before;
    // Fixed: every scan alike. Fed, or registered optically: each sheet skewed anew.
    for (auto [fed, optical] : {std::pair(false, false), {true, false}, {false, true}}) {
        dev->autofeeded = fed;
        dev->optical_reg = optical;
        ASSERT_FALSE(scan(dev.get(), d.get()).failed());
        before = matte(d.get());
        ASSERT_FALSE(scan(dev.get(), d.get()).failed());
        EXPECT_EQ(matte(d.get()) == before, !fed && !optical) << fed << optical;
        EXPECT_EQ(height_of_pixmap(pixmap_of_Drawing(d.get())), fed || optical ? 1300 : kSquare);
    }
}

// Levels are stretched for the named chart, not for the one standing in for an unreadable file;
// degenerate points make the stretch turn the two-valued chart all white.
TEST_F(BogusDevice, StretchOnlyForTheNamedChart) {
    for (const char *source : {"fieldchart", "no/such/sheet.tif"}) {
        auto dev = device("Bogus-Color", QString::fromLatin1(source));
        set_black_point_of_Standard_parameters(&dev->grey_parameters, 0);
        set_white_point_of_Standard_parameters(&dev->grey_parameters, 0);
        DrawingPtr d = drawing(DEPTH_GREY);
        MessageCapture capture;
        ASSERT_FALSE(scan(dev.get(), d.get()).failed());
        EXPECT_TRUE(capture.errors().empty());
        const std::vector<uint8_t> g = matte(d.get());
        const auto black = std::count(g.begin(), g.end(), uint8_t(0));
        EXPECT_TRUE(std::string(source) == "fieldchart" ? black == 0 : black > 1000) << black;
    }
}

TEST_F(BogusDevice, InternalErrors) {
    auto dev = device("Bogus-Color", QStringLiteral("fieldchart"));
    DrawingPtr d = drawing(7);
    EXPECT_EQ(scan(dev.get(), d.get()), scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR));
    // No field, no chart: an image of depth 0 at colour depth.
    DrawingPtr empty = drawing(DEPTH_COLOUR);
    set_paper_size_of_Drawing(empty.get(), 0.0f);
    EXPECT_EQ(scan(dev.get(), empty.get()), scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR));
}

}  // namespace
