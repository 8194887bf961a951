#include "app/scroll_image_painter.h"

#include <vector>

int image_coordinate_of_scale(int displayed, int scale) {
    if (scale > 0) return displayed / (scale + 1);
    if (scale < 0) return displayed * (1 - scale);
    return displayed;
}

QImage compose_scroll_view(const QImage &image, int scale, QPoint origin, QSize viewport, QSize displayed) {
    QImage view(viewport, QImage::Format_RGB32);
    if (view.isNull()) return view;
    view.fill(Qt::white);
    if (image.isNull()) return view;

    // Source column of each viewport column, -1 where nothing is shown.
    std::vector<int> columns(static_cast<size_t>(viewport.width()), -1);
    for (int x = 0; x < viewport.width(); ++x) {
        const int d = x + origin.x();
        if (d < 0 || d >= displayed.width()) continue;
        const int sx = image_coordinate_of_scale(d, scale);
        if (sx < image.width()) columns[static_cast<size_t>(x)] = sx;
    }
    for (int y = 0; y < viewport.height(); ++y) {
        const int d = y + origin.y();
        if (d < 0 || d >= displayed.height()) continue;
        const int sy = image_coordinate_of_scale(d, scale);
        if (sy >= image.height()) continue;
        const auto *source = reinterpret_cast<const QRgb *>(image.constScanLine(sy));
        auto *target = reinterpret_cast<QRgb *>(view.scanLine(y));
        for (int x = 0; x < viewport.width(); ++x) {
            const int sx = columns[static_cast<size_t>(x)];
            if (sx >= 0) target[x] = source[sx] | 0xff000000u;
        }
    }
    return view;
}
