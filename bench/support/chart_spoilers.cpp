#include "support/chart_spoilers.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace regacc {

namespace {

uint8_t clamp_level(double v) { return static_cast<uint8_t>(std::clamp(std::lround(v), 0L, 255L)); }

// The outlines of the holes, in chart pixels, as they are painted.
QPainterPath centre_hole_outline(const ChartSheet &sheet) {
    QPainterPath path;
    path.addEllipse(QRectF(centre_hole_of_field_chart(sheet.field, sheet.dpi, true)));
    return path;
}

QPainterPath slot_outline(const QRect &slot) {
    QPainterPath path;
    path.addRoundedRect(QRectF(slot), 40, 40);
    return path;
}

QTransform chart_to_image(const ChartSheet &sheet, const FieldChartSkew &skew) {
    return placement_of_field_chart(sheet.field, sheet.dpi, true, 1.0, 1.0, skew).chart_to_image();
}

// How far into the unturned picture (pegs on the left) an outline reaches.
double depth_of(const QPainterPath &outline, const QTransform &t) {
    double deepest = -1e300;
    for (const QPointF &p : outline.toFillPolygon(t)) deepest = std::max(deepest, p.x());
    return deepest;
}

// A y offset of exactly `k` whole pixels, as the chart truncates it.
double offset_of_pixels(int k, int dpi) { return (k + (k < 0 ? -0.5 : 0.5)) / dpi; }

}  // namespace

void add_grey_noise(QImage &chart, double sigma, uint32_t seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0.0, sigma);
    const QImage::Format format = chart.format();
    chart = chart.convertToFormat(QImage::Format_Grayscale8);
    for (int y = 0; y < chart.height(); ++y) {
        uint8_t *row = chart.scanLine(y);
        for (int x = 0; x < chart.width(); ++x) row[x] = clamp_level(row[x] + noise(random));
    }
    chart = chart.convertToFormat(format);
}

void add_dust(QImage &chart, const ChartSheet &sheet, int specks, uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const double dpi = sheet.dpi;
    const QTransform placed = chart_to_image(sheet, sheet.skew);

    // Centres and radii of the holes in the picture, the slots taken as
    // circles of half their length.
    struct Around {
        QPointF centre;
        double radius;
    };
    std::vector<Around> holes{{placed.map(QRectF(centre_hole_of_field_chart(sheet.field, dpi, true)).center()),
                               0.125 * dpi}};
    for (const QRect &slot : slots_of_field_chart(sheet.field, dpi, true))
        holes.push_back({placed.map(QRectF(slot).center()), 0.35 * dpi});

    QPainter p(&chart);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    for (int k = 0; k < specks; ++k) {
        const double radius = (0.002 + 0.004 * unit(random)) * dpi;
        QPointF at;
        if (k % 2 == 0) {
            at = QPointF(unit(random) * dpi, unit(random) * chart.height());
        } else {
            const Around &hole = holes[size_t(k / 2) % holes.size()];
            const double direction = 2.0 * std::numbers::pi * unit(random);
            const double distance = hole.radius + (0.02 + 0.08 * unit(random)) * dpi + radius;
            at = hole.centre + distance * QPointF(std::cos(direction), std::sin(direction));
        }
        p.drawEllipse(at, radius, radius);
    }
}

void box_blur(QImage &chart, int radius) {
    if (radius <= 0) return;
    const QImage::Format format = chart.format();
    QImage grey = chart.convertToFormat(QImage::Format_Grayscale8);
    const int w = grey.width(), h = grey.height();
    const int span = 2 * radius + 1;
    // Rows, then columns: running sums over the window, the edges repeated.
    std::vector<int> line;
    auto blur_line = [&](auto get, auto set, int n) {
        line.resize(size_t(n));
        for (int i = 0; i < n; ++i) line[size_t(i)] = get(i);
        int sum = 0;
        for (int i = -radius; i <= radius; ++i) sum += line[size_t(std::clamp(i, 0, n - 1))];
        for (int i = 0; i < n; ++i) {
            set(i, uint8_t((sum + span / 2) / span));
            sum += line[size_t(std::min(i + radius + 1, n - 1))] - line[size_t(std::max(i - radius, 0))];
        }
    };
    for (int y = 0; y < h; ++y) {
        uint8_t *row = grey.scanLine(y);
        blur_line([row](int i) { return int(row[i]); }, [row](int i, uint8_t v) { row[i] = v; }, w);
    }
    for (int x = 0; x < w; ++x)
        blur_line([&grey, x](int i) { return int(grey.constScanLine(i)[x]); },
                  [&grey, x](int i, uint8_t v) { grey.scanLine(i)[x] = v; }, h);
    chart = grey.convertToFormat(format);
}

FieldChartSkew skew_at_band_end(const ChartSheet &sheet, Hole hole, double overshoot) {
    std::vector<QPainterPath> outlines;
    if (hole == Hole::Centre) {
        outlines.push_back(centre_hole_outline(sheet));
    } else {
        for (const QRect &slot : slots_of_field_chart(sheet.field, sheet.dpi, true))
            outlines.push_back(slot_outline(slot));
    }
    auto depth = [&](int k) {
        FieldChartSkew skew = sheet.skew;
        skew.y_offset = offset_of_pixels(k, sheet.dpi);
        const QTransform t = chart_to_image(sheet, skew);
        double deepest = -1e300;
        for (const QPainterPath &outline : outlines) deepest = std::max(deepest, depth_of(outline, t));
        return deepest;
    };
    // The depth grows by the squeeze of the sheet for every pixel of offset.
    const double at0 = depth(0);
    const double slope = depth(100) / 100.0 - at0 / 100.0;
    const int k = static_cast<int>(std::lround((sheet.dpi + overshoot - at0) / slope));
    FieldChartSkew skew = sheet.skew;
    skew.y_offset = offset_of_pixels(k, sheet.dpi);
    return skew;
}

}  // namespace regacc
