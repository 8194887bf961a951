#include "tools/pix2vec/drawing_info.h"

#include <QCoreApplication>

#include "suite/graphic/gr_composite_drawing.h"

namespace {

void printArt(QTextStream &out, const char *title, const GR_VectorDrawingObj &art) {
    out << title << ": " << art.layerCount() << " layers, " << art.strokeCount() << " strokes\n";
    for (int i = 0; i < art.layerCount(); ++i) {
        const GR_Layer &layer = *art.layer(i);
        int closed = 0, curves = 0;
        for (const GR_StrokeData &s : layer.strokes()) {
            closed += s.isClosed() ? 1 : 0;
            curves += s.path().segmentCount();
        }
        out << "  layer " << layer.id() << " (type " << layer.type() << "): " << layer.strokeCount() << " strokes, "
            << closed << " closed, " << curves << " segments\n";
    }
}

}  // namespace

bool printDrawingInfo(const QString &path, QTextStream &out, QTextStream &err) {
    QString error;
    const auto drawing = GR_CompositeVectorDrawingObj::Load(path, &error);
    if (!drawing) {
        err << QCoreApplication::translate("VectorizeDrawing", "Cannot load drawing file \"%1\".").arg(path) << ' '
            << error << '\n';
        return false;
    }
    const GR_CompositeDrawingInfo &info = drawing->info();
    out << path << '\n';
    out << "field size: " << info.fieldSize() << '\n';
    out << "scan information: " << (info.scanInfo().isEmpty() ? QStringLiteral("none") : info.scanInfo()) << '\n';
    out << "creator: " << info.creator() << '\n';
    printArt(out, "line art", drawing->lineArt());
    printArt(out, "colour art", drawing->colorArt());
    const CM_PaletteList &palettes = *drawing->paletteInfo().paletteList();
    for (int i = 0; i < palettes.count(); ++i) {
        const CM_Palette &p = *palettes.palette(i);
        out << "palette \"" << p.name() << "\": " << p.colors().size() << " colours\n";
        for (const CM_Color &c : p.colors())
            out << "  " << c.id << " \"" << c.name << "\" " << c.rgba[0] << ',' << c.rgba[1] << ',' << c.rgba[2] << ','
                << c.rgba[3] << '\n';
    }
    for (const CM_TexturePtr &t : drawing->paletteInfo().textures())
        out << "texture " << t->id << " \"" << t->name << "\": " << t->pixels.width() << 'x' << t->pixels.height()
            << '\n';
    return true;
}
