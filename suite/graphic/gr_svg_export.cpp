#include "suite/graphic/gr_svg_export.h"

#include <QIODevice>
#include <QXmlStreamWriter>

#include <charconv>
#include <cmath>

#include "suite/graphic/gr_export.h"

namespace {

const QString kSvgNamespace = QStringLiteral("http://www.w3.org/2000/svg");

// At most three decimals: a thousandth of a world unit is far below a pixel
// at any scan resolution. The shortest text that reads back as the rounded
// value, with a dot and no exponent whatever the locale.
void appendNumber(QByteArray &out, double v) {
    if (!std::isfinite(v)) v = 0.0;  // keeps the file readable; nothing sensible to draw there
    // Beyond 1e15 a double has no thousandths left to round.
    double r = std::abs(v) < 1e15 ? std::round(v * 1000.0) / 1000.0 : v;
    if (r == 0.0) r = 0.0;  // no "-0"
    char text[400];  // room for the largest double in fixed notation
    const auto result = std::to_chars(text, text + sizeof text, r, std::chars_format::fixed);
    out.append(text, result.ptr - text);
}

QString number(double v) {
    QByteArray text;
    appendNumber(text, v);
    return QString::fromLatin1(text);
}

struct PathData {
    QByteArray d;
    void point(const Math::Point2d &p) {
        d += ' ';
        appendNumber(d, p.x);
        d += ' ';
        appendNumber(d, p.y);
    }
    void moveTo(const Math::Point2d &p) {
        d += d.isEmpty() ? "M" : " M";
        point(p);
    }
    void lineTo(const Math::Point2d &p) {
        d += " L";
        point(p);
    }
    void cubicTo(const Math::Point2d &c1, const Math::Point2d &c2, const Math::Point2d &p) {
        d += " C";
        point(c1);
        point(c2);
        point(p);
    }
    void close() { d += " Z"; }
};

// `what` is "fill" or "stroke": #rrggbb, and its opacity when not opaque.
void writePaint(QXmlStreamWriter &xml, const QString &what, const GR_Rgba &rgba) {
    xml.writeAttribute(what, QString::asprintf("#%02x%02x%02x", rgba[0], rgba[1], rgba[2]));
    if (rgba[3] < 255) xml.writeAttribute(what + QStringLiteral("-opacity"), number(rgba[3] / 255.0));
}

void writeLineArt(QXmlStreamWriter &xml, const GR_CompositeVectorDrawingObj &drawing) {
    xml.writeStartElement(kSvgNamespace, QStringLiteral("g"));
    xml.writeAttribute(QStringLiteral("id"), QStringLiteral("line-art"));
    const GR_VectorDrawingObj &art = drawing.lineArt();
    for (int l = 0; l < art.layerCount(); ++l) {
        // Strokes of one layer may paint different colours: one path per
        // colour, each filled even-odd on its own, in the order the colours
        // first appear in the layer. Textures are written as the flat colour
        // of their stroke for now.
        for (const GR_ColorGroup &group : GR_GroupByColor(*art.layer(l), drawing.paletteInfo())) {
            PathData data;
            for (const GR_BezierPath2d *path : group.paths) GR_WalkPath(*path, data);
            xml.writeStartElement(kSvgNamespace, QStringLiteral("path"));
            xml.writeAttribute(QStringLiteral("d"), QString::fromLatin1(data.d));
            writePaint(xml, QStringLiteral("fill"), group.rgba);
            xml.writeAttribute(QStringLiteral("fill-rule"), QStringLiteral("evenodd"));
            xml.writeEndElement();
        }
    }
    xml.writeEndElement();
}

// Each colour-art stroke as a thin line of its colour, grey when it has none
// (a zone not painted yet). Its boundaries are what the colour art has until
// zones are filled.
void writeColorArt(QXmlStreamWriter &xml, const GR_CompositeVectorDrawingObj &drawing) {
    xml.writeStartElement(kSvgNamespace, QStringLiteral("g"));
    xml.writeAttribute(QStringLiteral("id"), QStringLiteral("colour-art"));
    const GR_VectorDrawingObj &art = drawing.colorArt();
    for (int l = 0; l < art.layerCount(); ++l) {
        for (const GR_StrokeData &stroke : art.layer(l)->strokes()) {
            if (stroke.path().pointCount() < 2) continue;
            PathData data;
            GR_WalkPath(stroke.path(), data);
            xml.writeStartElement(kSvgNamespace, QStringLiteral("path"));
            xml.writeAttribute(QStringLiteral("d"), QString::fromLatin1(data.d));
            xml.writeAttribute(QStringLiteral("fill"), QStringLiteral("none"));
            writePaint(xml, QStringLiteral("stroke"),
                       GR_StrokeRgba(stroke, drawing.paletteInfo()).value_or(GR_Rgba{128, 128, 128, 255}));
            // About 0.2 mm, a fine pen on paper, drawn alike by every reader
            // (some ignore a stroke that does not scale).
            xml.writeAttribute(QStringLiteral("stroke-width"), QStringLiteral("3"));
            xml.writeEndElement();
        }
    }
    xml.writeEndElement();
}

}  // namespace

QByteArray GR_SvgExport(const GR_CompositeVectorDrawingObj &drawing) {
    const Math::Box2d field = drawing.info().fieldBox();
    // A field is as many inches wide as its size: 5000 world units for 12.
    constexpr double kMillimetresPerUnit = 12.0 * 25.4 / 5000.0;
    QByteArray out;
    QXmlStreamWriter xml(&out);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDefaultNamespace(kSvgNamespace);
    xml.writeStartElement(kSvgNamespace, QStringLiteral("svg"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.1"));
    xml.writeAttribute(QStringLiteral("width"), number(field.width() * kMillimetresPerUnit) + QStringLiteral("mm"));
    xml.writeAttribute(QStringLiteral("height"), number(field.height() * kMillimetresPerUnit) + QStringLiteral("mm"));
    // The flip below turns the field's y range [y0, y1] into [-y1, -y0].
    xml.writeAttribute(QStringLiteral("viewBox"), QStringList{number(field.x0), number(-field.y1), number(field.width()),
                                                              number(field.height())}
                                                      .join(QLatin1Char(' ')));
    xml.writeStartElement(kSvgNamespace, QStringLiteral("g"));
    xml.writeAttribute(QStringLiteral("transform"), QStringLiteral("scale(1,-1)"));
    writeColorArt(xml, drawing);
    writeLineArt(xml, drawing);
    xml.writeEndDocument();
    return out;
}

bool GR_WriteSvg(const GR_CompositeVectorDrawingObj &drawing, const QString &path, QString *error) {
    const QByteArray bytes = GR_SvgExport(drawing);
    return GR_WriteWhole(
        path, [&](QIODevice &file) { return file.write(bytes) == bytes.size(); }, error);
}
