#include "suite/graphic/gr_png_export.h"

#include <QIODevice>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

#include "suite/graphic/gr_export.h"

namespace {

struct PainterPathSink {
    QPainterPath path;
    void moveTo(const Math::Point2d &p) { path.moveTo(p.x, p.y); }
    void lineTo(const Math::Point2d &p) { path.lineTo(p.x, p.y); }
    void cubicTo(const Math::Point2d &c1, const Math::Point2d &c2, const Math::Point2d &p) {
        path.cubicTo(c1.x, c1.y, c2.x, c2.y, p.x, p.y);
    }
    void close() { path.closeSubpath(); }
};

QColor toQColor(const GR_Rgba &rgba) { return QColor(rgba[0], rgba[1], rgba[2], rgba[3]); }

}  // namespace

QImage GR_RenderDrawing(const GR_CompositeVectorDrawingObj &drawing, QSize pixels) {
    if (pixels.isEmpty()) return {};
    QImage image(pixels, QImage::Format_RGB32);
    if (image.isNull()) return {};
    image.fill(Qt::white);

    const Math::Box2d field = drawing.info().fieldBox();
    const double scale = std::min(pixels.width() / field.width(), pixels.height() / field.height());
    const Math::Point2d centre = field.center();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // The field's centre on the image's centre, world y turned downward.
    painter.setTransform(QTransform(scale, 0, 0, -scale, pixels.width() / 2.0 - scale * centre.x,
                                    pixels.height() / 2.0 + scale * centre.y));

    // Colour art under the line art, as zone boundaries one pixel wide, grey
    // when unpainted.
    QPen thin(Qt::gray);
    thin.setCosmetic(true);
    thin.setWidthF(1.0);
    painter.setBrush(Qt::NoBrush);
    const GR_VectorDrawingObj &colorArt = drawing.colorArt();
    for (int l = 0; l < colorArt.layerCount(); ++l)
        for (const GR_StrokeData &stroke : colorArt.layer(l)->strokes()) {
            const std::optional<GR_Rgba> rgba = GR_StrokeRgba(stroke, drawing.paletteInfo());
            thin.setColor(rgba ? toQColor(*rgba) : QColor(128, 128, 128));
            painter.setPen(thin);
            PainterPathSink sink;
            GR_WalkPath(stroke.path(), sink);
            painter.drawPath(sink.path);
        }

    // Textures render as the flat colour of their stroke for now.
    painter.setPen(Qt::NoPen);
    const GR_VectorDrawingObj &lineArt = drawing.lineArt();
    for (int l = 0; l < lineArt.layerCount(); ++l)
        for (const GR_ColorGroup &group : GR_GroupByColor(*lineArt.layer(l), drawing.paletteInfo())) {
            PainterPathSink sink;
            sink.path.setFillRule(Qt::OddEvenFill);
            for (const GR_BezierPath2d *path : group.paths) GR_WalkPath(*path, sink);
            painter.fillPath(sink.path, toQColor(group.rgba));
        }
    return image;
}

bool GR_WritePng(const GR_CompositeVectorDrawingObj &drawing, const QString &path, QSize pixels, QString *error) {
    const QImage image = GR_RenderDrawing(drawing, pixels);
    if (image.isNull()) {
        if (error)
            *error = QStringLiteral("Cannot render %1 at %2 by %3 pixels")
                         .arg(path, QString::number(pixels.width()), QString::number(pixels.height()));
        return false;
    }
    return GR_WriteWhole(path, [&](QIODevice &file) { return image.save(&file, "PNG"); }, error);
}
