#include "support/registration_accuracy.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>
#include <utility>

#include "scan/devices.h"
#include "scan/drawing.h"
#include "scan/drivers/Dev_bogus.h"
#include "scan/optical_registration.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_device.h"

namespace regacc {

namespace {

// Sends the given standard streams to /dev/null while it lives.
class Muted {
public:
    explicit Muted(std::initializer_list<int> streams) {
        std::fflush(nullptr);
        const int sink = ::open("/dev/null", O_WRONLY);
        if (sink < 0) return;
        for (const int fd : streams) saved_[count_++] = {fd, ::dup(fd)}, ::dup2(sink, fd);
        ::close(sink);
    }
    ~Muted() {
        std::fflush(nullptr);
        for (int k = 0; k < count_; ++k) {
            const auto [fd, copy] = saved_[k];
            if (copy < 0) continue;
            ::dup2(copy, fd);
            ::close(copy);
        }
    }
    Muted(const Muted &) = delete;
    Muted &operator=(const Muted &) = delete;

private:
    std::array<std::pair<int, int>, 2> saved_{};
    int count_ = 0;
};

struct DrawingDeleter {
    void operator()(Drawing *d) const { destroy_Drawing(&d); }
};

// The direction of the chart's x axis (along the peg bar) in the stored
// picture, with y turned upward.
QPointF bar_direction(const QTransform &chart_to_picture) {
    const QPointF d = chart_to_picture.map(QPointF(1, 0)) - chart_to_picture.map(QPointF(0, 0));
    return {d.x(), -d.y()};
}

QTransform chart_to_picture(const ChartSheet &sheet, const FieldChartSkew &skew, int32_t peg_side) {
    const FieldChartPlacement placement = placement_of_field_chart(sheet.field, sheet.dpi, true, 1.0, 1.0, skew);
    const QSize size = placement.image_size;
    return placement.chart_to_image() * turn_of_peg_side(peg_side, size.width(), size.height());
}

// The angle from the straight bar's direction to the bar's, counter-clockwise.
double angle_between(QPointF straight, QPointF bar) {
    return std::atan2(straight.x() * bar.y() - straight.y() * bar.x(),
                      straight.x() * bar.x() + straight.y() * bar.y());
}

QPointF straight_bar(const ChartSheet &sheet, int32_t peg_side) {
    FieldChartSkew straight = sheet.skew;
    straight.rotation = 0.0;
    return bar_direction(chart_to_picture(sheet, straight, peg_side));
}

// The mean of the white pixels of `chart` within `across` of `centre` across
// the bar (x: the bar runs down the unturned chart) and `along` along it, in
// continuous coordinates.
QPointF white_mean(const QImage &chart, QPointF centre, double across, double along) {
    const int x0 = std::max(0, int(centre.x() - across)), x1 = std::min(chart.width() - 1, int(centre.x() + across));
    const int y0 = std::max(0, int(centre.y() - along)), y1 = std::min(chart.height() - 1, int(centre.y() + along));
    double sx = 0, sy = 0, n = 0;
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x)
            if (const int w = qGray(chart.pixel(x, y)); w > 0) sx += w * x, sy += w * y, n += w;
    return n > 0 ? QPointF(sx / n + 0.5, sy / n + 0.5) : centre;
}

}  // namespace

QImage paint_sheet(const ChartSheet &sheet) {
    return paint_field_chart(sheet.field, sheet.dpi, true, 1.0, 1.0, sheet.skew);
}

QImage sheet_through_offset_file(const ChartSheet &sheet) {
    QTemporaryDir dir;
    if (!dir.isValid()) return QImage();
    QFile file(dir.filePath(QStringLiteral("DUMMY_XYR_OFFSET_FILE")));
    if (!file.open(QIODevice::WriteOnly)) return QImage();
    // %.17g: the file's numbers read back as exactly the skew we compare with.
    char text[128];
    std::snprintf(text, sizeof text, "%.17g,%.17g,%.17g\n", sheet.skew.x_offset, sheet.skew.y_offset,
                  sheet.skew.rotation);
    file.write(text);
    file.close();

    const QString previous = QDir::currentPath();
    QDir::setCurrent(dir.path());
    QImage chart;
    {
        const Muted muted{2};
        chart = make_field_chart(sheet.field, sheet.dpi, true, 1.0, 1.0);
    }
    QDir::setCurrent(previous);
    return chart;
}

ChartTruth truth_of_sheet(const ChartSheet &sheet, int32_t peg_side) {
    const QTransform placed = chart_to_picture(sheet, sheet.skew, peg_side);
    ChartTruth truth;
    // The hole is painted by sampling pixel centres, so its pixels' mean sits
    // on the circle's centre in continuous coordinates; registration weighs
    // pixel (x, y) at (x, y), half a pixel short of its middle.
    const QRectF hole = centre_hole_of_field_chart(sheet.field, sheet.dpi, true);
    truth.centre = placed.map(hole.center()) - QPointF(0.5, 0.5);

    truth.angle = angle_between(straight_bar(sheet, peg_side), bar_direction(placed));
    return truth;
}

ChartTruth painted_truth_of_sheet(const QImage &chart, const ChartSheet &sheet, int32_t peg_side) {
    const FieldChartPlacement placement = placement_of_field_chart(sheet.field, sheet.dpi, true, 1.0, 1.0, sheet.skew);
    const QTransform placed = placement.chart_to_image();
    const QTransform turn =
        turn_of_peg_side(peg_side, placement.image_size.width(), placement.image_size.height());
    const double inch = sheet.dpi;
    const QRectF hole = centre_hole_of_field_chart(sheet.field, sheet.dpi, true);
    ChartTruth truth;
    truth.centre = turn.map(white_mean(chart, placed.map(hole.center()), 0.2 * inch, 0.2 * inch)) - QPointF(0.5, 0.5);
    const std::array<QRect, 2> ends = slots_of_field_chart(sheet.field, sheet.dpi, true);
    const QPointF a = turn.map(white_mean(chart, placed.map(QRectF(ends[0]).center()), 0.2 * inch, 0.45 * inch));
    const QPointF b = turn.map(white_mean(chart, placed.map(QRectF(ends[1]).center()), 0.2 * inch, 0.45 * inch));
    truth.angle = angle_between(straight_bar(sheet, peg_side), QPointF(b.x() - a.x(), a.y() - b.y()));
    return truth;
}

CEL_PixmapPtr scan_sheet(const QImage &chart, const ChartSheet &sheet, int32_t peg_side, Depth depth) {
    ScanDeviceInfo device;
    device.model = QStringLiteral("Bogus-Color");
    device.device = QStringLiteral("fieldchart");
    if (!setup_model_of_devices(&device)) return {};
    const std::unique_ptr<Drawing, DrawingDeleter> drawing(
        create_Drawing(QStringLiteral("chart"), QStringLiteral("0001"), QString()));
    set_scan_depth_of_Drawing(drawing.get(), depth == Depth::Grey ? DEPTH_GREY : DEPTH_COLOUR);
    set_peg_side_of_Drawing(drawing.get(), peg_side);
    set_paper_size_of_Drawing(drawing.get(), float(sheet.field));
    set_dpi_of_Drawing(drawing.get(), float(sheet.dpi));
    {
        const Muted muted{1};
        if (deliver_Dev_bogus_image(&device, drawing.get(), chart, false).failed()) return {};
    }
    // A reference of its own: the picture outlives the drawing.
    return best_of_pixmap(pixmap_of_Drawing(drawing.get()));
}

Registration register_as_station(const CEL_PixmapPtr &picture, int dpi, int32_t peg_side) {
    Registration r;
    r.found = optical_registration(picture, &r.x, &r.y, &r.angle, 0.5, dpi, registration_side_of_peg_side(peg_side),
                                   1.0, 8.0, 2.0, 1);
    return r;
}

RegistrationError error_of(const Registration &found, const ChartTruth &truth) {
    RegistrationError e;
    e.registered = found.found;
    if (!found.found) return e;
    // The top side's angle is left unwrapped, near 0 or near -2π.
    const double turn = std::remainder(double(found.angle) - truth.angle, 2.0 * std::numbers::pi);
    e.angle_degrees = std::fabs(turn) * 180.0 / std::numbers::pi;
    e.centre_pixels = std::hypot(found.x - truth.centre.x(), found.y - truth.centre.y());
    return e;
}

RegistrationError measure_sheet(const QImage &chart, const ChartSheet &sheet, int32_t peg_side, Depth depth) {
    const CEL_PixmapPtr picture = scan_sheet(chart, sheet, peg_side, depth);
    if (!picture) return {};
    return error_of(register_as_station(picture, sheet.dpi, peg_side), truth_of_sheet(sheet, peg_side));
}

}  // namespace regacc
