// The SVG read back as other tools read it, and the rendered ink at known
// pixels.
#include <gtest/gtest.h>

#include <QLocale>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <clocale>

#include "suite/graphic/gr_drawing_access.h"
#include "suite/graphic/gr_png_export.h"
#include "suite/graphic/gr_svg_export.h"

using Math::Point2d;

namespace {

GR_StrokeData stroke(std::vector<Point2d> points, int degree, uint64_t colorId, int side = 0) {
    GR_StrokeData s(GR_BezierPath2d(std::move(points), degree));
    if (colorId) s.SetColor(side, std::make_shared<const GR_Color>(colorId, Math::Matrix2x3(), -1, Math::Matrix2x3()));
    return s;
}

// Ink from (-1000, 0) to (1000, 1500) around a hole from (-500, 500) to
// (500, 1000). Both squares run the same way, so only an even-odd fill
// leaves the hole open.
std::vector<GR_StrokeData> ring() {
    return {stroke({{-1000, 0}, {1000, 0}, {1000, 1500}, {-1000, 1500}, {-1000, 0}}, 1, CM_PaletteList::kLineColorId),
            stroke({{-500, 500}, {500, 500}, {500, 1000}, {-500, 1000}, {-500, 500}}, 1, CM_PaletteList::kLineColorId)};
}

void addLayers(GR_CompositeVectorDrawingObj &drawing, GR_VectorDrawingObj &art,
               std::vector<std::vector<GR_StrokeData>> layers) {
    GR_ColorDict dict(drawing.paletteInfo());
    GR_DrawingAccess access(dict);
    access.SetCurrentDrawing(&art);
    for (auto &strokes : layers) access.CreateLayerAbove(std::move(strokes));
}

}  // namespace

TEST(SvgExport, FramesTheFieldFlipsOnceAndWritesOnePathPerLayerAndColourInWorldUnits) {
    GR_CompositeVectorDrawingObj drawing;
    drawing.info().SetFieldSize(16);
    auto extra = std::make_shared<CM_Palette>(QStringLiteral("Extra"));
    extra->LoadDefaultColor(QStringLiteral("Red"), 7, 255, 0, 0, 128);
    drawing.paletteInfo().paletteList()->append(extra);
    std::vector<GR_StrokeData> mixed = ring();
    mixed.push_back(stroke({{0, 0}, {10, 0}, {0, 10}}, 1, 7, 1));  // open, its colour in the second slot
    mixed.push_back(stroke({{0, 0}, {5, 5}, {0, 5}, {0, 0}}, 1, 0));  // paints nothing
    addLayers(drawing, drawing.lineArt(),
              {std::move(mixed), {}, {stroke({{0.1234, -0.0004}, {1234.5678, 0.1 + 0.2}, {-20.5, 123456789}, {0.1234, -0.0004}}, 3, 3)}});
    addLayers(drawing, drawing.colorArt(), {{stroke({{0, 0}, {100, 1e-9}}, 1, 0)}});

    // Numbers are written the same under a locale whose decimal mark is a comma.
    const std::string oldLocale = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QByteArray svg = GR_SvgExport(drawing);
    std::setlocale(LC_ALL, oldLocale.c_str());
    QLocale::setDefault(QLocale::c());

    QXmlStreamReader xml(svg);
    QStringList groups, transforms;
    QStringList paths;
    QString root;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::EndElement && xml.name() == u"g") groups.removeLast();
        if (!xml.isStartElement()) continue;
        const QXmlStreamAttributes a = xml.attributes();
        if (a.hasAttribute("transform")) transforms << groups.join('/') + ": " + a.value("transform").toString();
        if (xml.name() == u"svg")
            root = QStringList{xml.namespaceUri().toString(), a.value("viewBox").toString(), a.value("width").toString(),
                               a.value("height").toString()}.join(" | ");
        if (xml.name() == u"g") groups << a.value("id").toString();
        if (xml.name() == u"path")
            paths << QStringList{groups.last(), a.value("d").toString(), a.value(a.hasAttribute("fill-rule") ? "fill" : "stroke").toString(),
                                 a.value("fill-opacity").toString(), a.value("fill-rule").toString()}.join(" | ");
    }
    ASSERT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
    EXPECT_EQ(root.toStdString(), "http://www.w3.org/2000/svg | -3333.333 -2500 6666.667 5000 | 406.4mm | 304.8mm");
    EXPECT_EQ(transforms.join("; ").toStdString(), ": scale(1,-1)");
    EXPECT_EQ(paths.join('\n').toStdString(),
              "colour-art | M 0 0 L 100 0 | #808080 |  | \n"
              "line-art | M -1000 0 L 1000 0 L 1000 1500 L -1000 1500 Z M -500 500 L 500 500 L 500 1000 L -500 1000 Z | #000000 |  | evenodd\n"
              "line-art | M 0 0 L 10 0 L 0 10 | #ff0000 | 0.502 | evenodd\n"
              "line-art | M 0.123 0 C 1234.568 0.3 -20.5 123456789 0.123 0 Z | #000000 |  | evenodd");
}

TEST(PngExport, InkFillsTheRingWithYUpAndTheFieldCentredInItsProportions) {
    GR_CompositeVectorDrawingObj drawing;
    addLayers(drawing, drawing.lineArt(), {ring()});
    // At 500 by 375 a world unit is a tenth of a pixel, the origin at
    // (250, 187.5): the ring spans columns 150 to 350 and rows 37.5 to 187.5
    // (above the middle), the hole columns 200 to 300 and rows 87.5 to 137.5.
    // Wider, the field keeps its proportions and moves to the middle.
    struct Case {
        QSize size;
        int x, y;
        bool ink;
    };
    for (const Case &c : {Case{{500, 375}, 175, 112, true}, Case{{500, 375}, 250, 60, true}, Case{{500, 375}, 250, 160, true},
                          Case{{500, 375}, 250, 112, false}, Case{{500, 375}, 250, 250, false}, Case{{500, 375}, 120, 112, false},
                          Case{{600, 375}, 225, 112, true}, Case{{600, 375}, 175, 112, false}}) {
        const QImage image = GR_RenderDrawing(drawing, c.size);
        ASSERT_EQ(image.size(), c.size);
        EXPECT_EQ(image.pixel(c.x, c.y), c.ink ? qRgb(0, 0, 0) : qRgb(255, 255, 255)) << c.size.width() << ": " << c.x << ", " << c.y;
    }
    EXPECT_TRUE(GR_RenderDrawing(drawing, {0, 10}).isNull());
}

TEST(DrawingExport, WritersLeaveTheExportAndNoTemporaryFileAndNameThePathTheyCannotWrite) {
    GR_CompositeVectorDrawingObj drawing;
    addLayers(drawing, drawing.lineArt(), {ring()});
    QTemporaryDir dir;
    const QString svg = dir.filePath("d.svg"), png = dir.filePath("d.png"), lost = dir.filePath("no/d.svg");
    ASSERT_TRUE(GR_WriteSvg(drawing, svg));
    ASSERT_TRUE(GR_WritePng(drawing, png, {500, 375}));
    QFile written(svg);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), GR_SvgExport(drawing));
    EXPECT_EQ(QImage(png), GR_RenderDrawing(drawing, {500, 375}));
    QString error;
    EXPECT_FALSE(GR_WriteSvg(drawing, lost, &error));
    EXPECT_TRUE(error.contains(lost)) << qPrintable(error);
    EXPECT_FALSE(GR_WritePng(drawing, lost, {500, 375}, &error));
    EXPECT_TRUE(error.contains(lost)) << qPrintable(error);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
}
