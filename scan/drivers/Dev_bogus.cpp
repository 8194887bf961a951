#include "scan/drivers/Dev_bogus.h"

#include <QDateTime>
#include <QImage>
#include <QList>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "scan/drawing.h"
#include "scan/drivers/bogus_field_chart.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_device.h"
#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "suite/cel/cel_context.h"
#include "suite/cel/celio_manager.h"

namespace {

// What reserve noted from the record; either one skews the chart.
bool fed = false;
bool registered = false;

constexpr char kFieldChart[] = "fieldchart";

struct FileCloser {
    void operator()(std::FILE *f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

ScanStatus success() { return scan_status(SCSI_GOOD, STATUS_SUCCESS); }
ScanStatus internal_error() { return scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR); }

bool colour_model(const ScanDeviceInfo *dev) { return dev->model == QLatin1String("Bogus-Color"); }

bool known_depth(int32_t depth) { return depth == DEPTH_BW || depth == DEPTH_GREY || depth == DEPTH_COLOUR; }

const char *depth_name(int32_t depth) {
    switch (depth) {
    case DEPTH_BW: return "B&W";
    case DEPTH_GREY: return "Gray";
    case DEPTH_COLOUR: return "Color";
    default: return "Unknown";
    }
}

// Width of a black-and-white line in pixels, rounded up to whole bytes.
int rounded_to_8(int width) { return (width + 7) / 8 * 8; }

// ---- The picture -------------------------------------------------------------

// The first image of a drawing file, inverted as the scanner would see the
// paper; null when the file gives none.
QImage image_of_file(const QString &path) {
    QDateTime date;
    QList<CEL_RepresentationPtr> reps;
    QString comment;
    if (!CELIO_Manager::getInstance().read(path, date, CEL_Context(), reps, &comment, nullptr) || reps.isEmpty())
        return QImage();
    const auto pixmap = UT_dynamicCast<CEL_Pixmap>(reps.first());
    if (!pixmap) return QImage();
    QImage image = pixmap->getImage();
    image.invertPixels();
    return image;
}

struct Picture {
    QImage image;  // null when there is nothing to scan
    bool from_file = false;
};

Picture picture_of_scan(const ScanDeviceInfo *dev, const Drawing *drawing, double x_calibration,
                        double y_calibration) {
    Picture picture;
    const QString &source = dev->device;
    if (!source.isEmpty() && source != QLatin1String(kFieldChart)) {
        picture.image = image_of_file(source);
        picture.from_file = !picture.image.isNull();
    }
    // An unreadable file quietly becomes the chart.
    if (!picture.from_file)
        picture.image = make_field_chart(paper_size_of_Drawing(drawing), dpi_of_Drawing(drawing), fed || registered,
                                         x_calibration, y_calibration);
    return picture;
}

// ---- Scan data ---------------------------------------------------------------

// One bit a pixel, set where red is 0, first pixel in the high bit; lines are
// padded with clear bits to whole bytes.
std::vector<uint8_t> bw_data(const QImage &image) {
    const int w = image.width(), h = image.height();
    const size_t line = size_t(rounded_to_8(w) / 8);
    std::vector<uint8_t> data(line * size_t(h), 0);
    for (int y = 0; y < h; ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        uint8_t *out = data.data() + size_t(y) * line;
        for (int x = 0; x < w; ++x)
            if (qRed(row[x]) == 0) out[x / 8] |= uint8_t(0x80u >> (x % 8));
    }
    return data;
}

// One byte a pixel. The weights are this scanner's own, not the usual luma.
std::vector<uint8_t> grey_data(const QImage &image) {
    const int w = image.width(), h = image.height();
    std::vector<uint8_t> data(size_t(w) * size_t(h));
    uint8_t *out = data.data();
    for (int y = 0; y < h; ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x)
            *out++ = uint8_t(255 - int(0.4 * qGreen(row[x]) + 0.3 * qRed(row[x]) + 0.3 * qBlue(row[x])));
    }
    return data;
}

// R G B. A chart gets a ramp, red growing to the right and blue downwards, so
// that colour scans of it show where each part of the sheet went.
std::vector<uint8_t> colour_data(const QImage &image, bool ramp) {
    const int w = image.width(), h = image.height();
    std::vector<uint8_t> data(size_t(w) * size_t(h) * 3);
    uint8_t *out = data.data();
    for (int y = 0; y < h; ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        const double down = double(y) / h;
        for (int x = 0; x < w; ++x) {
            const double across = ramp ? double(x) / w : 1.0;
            *out++ = uint8_t(255 - int(qRed(row[x]) * across));
            *out++ = uint8_t(255 - qGreen(row[x]));
            *out++ = uint8_t(255 - int(qBlue(row[x]) * (ramp ? down : 1.0)));
        }
    }
    return data;
}

// Bytes handed to the band loader at once, in whole lines. The black-and-white
// model counts a line as its width rounded to 8 whatever the depth; the colour
// model counts the line size of the depth (again the rounded width for
// black and white, a multiple of its byte count).
size_t piece_of_scan(const ScanDeviceInfo *dev, int32_t depth, int width) {
    const size_t rounded = size_t(rounded_to_8(width));
    size_t line = rounded;
    size_t limit = 10000;
    if (colour_model(dev)) {
        limit = 100000;
        if (depth == DEPTH_GREY) line = size_t(width);
        if (depth == DEPTH_COLOUR) line = 3 * size_t(width);
    }
    if (line == 0) return limit;
    // A line longer than the limit goes alone.
    return std::max(limit - limit % line, line);
}

void print_drop(const Standard_parameters *p) {
    const QString drop = rgbDrop_of_Standard_parameters(p);
    std::printf("rgbDrop_of_Standard_parameters=%s\n", drop.isNull() ? "(null)" : drop.toLocal8Bit().constData());
}

// ---- Operations --------------------------------------------------------------

ScanStatus bogus_reserve(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, internal_error());
    fed = dev->autofeeded;
    registered = dev->optical_reg;
    return success();
}

// Counts the feeder down in ADF_COUNT_FILE: at 0 it is empty. A missing file
// is a feeder that never runs empty, an unreadable count changes nothing.
ScanStatus bogus_autoload(ScanDeviceInfo *dev) {
    LMV_ASSERT_RET(dev != nullptr, internal_error());
    fed = true;
    // Read and written in place; a file that isn't there is not created.
    const FilePtr f{std::fopen("ADF_COUNT_FILE", "r+")};
    if (!f) return success();
    int count = 0;
    if (std::fscanf(f.get(), "%d", &count) != 1) return success();
    if (count < 1) return scan_status(SCSI_MEDIUM_ERROR, STATUS_FEEDER_FAILURE);
    std::rewind(f.get());
    std::fprintf(f.get(), "%d\n", count - 1);
    return success();
}

ScanStatus bogus_setup1(ScanDeviceInfo *dev, Drawing *) {
    LMV_ASSERT_RET(dev != nullptr, internal_error());
    for (const QString &entry : dev->rgbDropList)
        std::printf("%s\n", entry.toLocal8Bit().constData());
    std::fflush(stdout);
    return success();
}

ScanStatus bogus_set_window(ScanDeviceInfo *dev, Drawing *drawing) {
    LMV_ASSERT_RET(dev != nullptr && drawing != nullptr, internal_error());
    const int32_t depth = scan_depth_of_Drawing(drawing);
    LMV_log("set_window: scan_depth_of_Drawing:%s:%d\n", depth_name(depth), depth);
    LMV_log("set_window: dpi_of_Drawing:%d\n", int(dpi_of_Drawing(drawing)));
    LMV_log("set_window: paper_size_of_Drawing: %g\n", double(paper_size_of_Drawing(drawing)));
    LMV_log("set_window: optical_reg_of_ScanDeviceInfo:%d\n", int(dev->optical_reg));
    LMV_log("set_window: peg_side_of_Drawing:%d\n", peg_side_of_Drawing(drawing));
    LMV_log("set_window: dev->leftOffset=%g\n", double(dev->leftOffset));
    if (dev->autofeeded) LMV_log("In autofeeded\n");
    return success();
}

ScanStatus bogus_read(ScanDeviceInfo *dev, Drawing *drawing) {
    LMV_ASSERT_RET(dev != nullptr && drawing != nullptr, internal_error());
    const int32_t depth = scan_depth_of_Drawing(drawing);
    if (!known_depth(depth)) return internal_error();

    double x_calibration = 1.0, y_calibration = 1.0;
    if (depth == DEPTH_BW) {
        if (const char *calibration = std::getenv("DEV_BOGUS_CALIBRATION")) {
            const int read = std::sscanf(calibration, "%lf %lf", &x_calibration, &y_calibration);
            (void)read;
            std::printf("Using calibration: %f %f\n", x_calibration, y_calibration);
        }
    }
    const Picture picture = picture_of_scan(dev, drawing, x_calibration, y_calibration);
    return deliver_Dev_bogus_image(dev, drawing, picture.image, picture.from_file);
}

}  // namespace

void install_Dev_bogus_ops(ScanDeviceInfo *dev) {
    LMV_ASSERT_VOID(dev != nullptr);
    // Nothing to open: reserved stays false, and release has nothing to undo.
    // The slots not named keep their fresh do-nothing operations.
    dev->ops = ScannerOps{
        .reserve = bogus_reserve,
        .ready = nop_of_ScanDeviceInfo,
        .inquire = nop_of_ScanDeviceInfo,
        .setup1 = bogus_setup1,
        .set_window = bogus_set_window,
        .autoload = bogus_autoload,
        .read = bogus_read,
        .release = nop_of_ScanDeviceInfo,
    };
}

ScanStatus deliver_Dev_bogus_image(ScanDeviceInfo *dev, Drawing *drawing, const QImage &picture, bool from_file) {
    LMV_ASSERT_RET(dev != nullptr && drawing != nullptr, internal_error());
    const int32_t depth = scan_depth_of_Drawing(drawing);
    if (!known_depth(depth)) return internal_error();
    const bool colour = colour_model(dev);
    // The scan data is taken from 32 bits a pixel whatever the picture holds.
    const QImage image = picture.isNull() ? QImage() : picture.convertToFormat(QImage::Format_RGB32);
    if (depth == DEPTH_COLOUR && image.depth() == 0) return internal_error();
    const int width = image.width();
    const int height = image.height();

    std::vector<uint8_t> data;
    if (depth == DEPTH_BW)
        data = bw_data(image);
    else if (depth == DEPTH_GREY)
        data = grey_data(image);
    else
        data = colour_data(image, !from_file);

    LMV_pixmap *pixmap = create_pixmap(depth == DEPTH_COLOUR ? PIXMAP_RGBA8 : PIXMAP_MATTE8, width, height);
    set_pixmap_of_Drawing(drawing, pixmap);

    // The black-and-white model sends packed bits at every depth.
    const bool one_bit = colour ? depth == DEPTH_BW : true;
    const int32_t peg_side = peg_side_of_Drawing(drawing);
    const size_t piece = piece_of_scan(dev, depth, width);
    int32_t x = 0, y = 0;
    for (size_t offset = 0; offset < data.size(); offset += piece) {
        const size_t length = std::min(piece, data.size() - offset);
        load_band_of_pixmap(pixmap, &x, &y, data.data() + offset, int32_t(length), false, one_bit, peg_side,
                            offset == 0, offset + length >= data.size());
    }

    if (colour && depth == DEPTH_GREY && dev->device == QLatin1String(kFieldChart))
        stretch_gray_pixmap(pixmap, black_point_of_Standard_parameters(&dev->grey_parameters) / 255.0,
                            white_point_of_Standard_parameters(&dev->grey_parameters) / 255.0);

    LMV_log("xres:%d yres:%d\n", width_of_pixmap(pixmap), height_of_pixmap(pixmap));
    if (colour) {
        LMV_log("dev->default_gamma = %g\n", double(dev->default_gamma));
        print_drop(&dev->bw_parameters);
        print_drop(&dev->grey_parameters);
        std::fflush(stdout);
    }
    return success();
}

