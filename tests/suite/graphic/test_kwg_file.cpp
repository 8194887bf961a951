// The native drawing file: everything a drawing holds comes back, the bytes
// are canonical, damaged files are refused with a reason, failed stores lose
// nothing.
#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include "suite/graphic/gr_composite_drawing.h"
#include "support/file_size_limit.h"

namespace {

using Drawing = GR_CompositeVectorDrawingObj;
QLatin1StringView k(const char *name) { return QLatin1StringView(name); }

// Two palettes, a texture, a line art of two layers whose ids are out of
// order, strokes of both degrees, an empty slot, one colour shared and one
// equal colour made apart, and a colour art.
std::unique_ptr<Drawing> fullDrawing() {
    auto d = std::make_unique<Drawing>();
    d->info().SetFieldSize(16);
    d->info().SetScanInfo(QStringLiteral("Version: 3 DPI: 300 Peg Side: Top "));
    d->info().SetCreator(QStringLiteral("pix2vec — studio é"));
    auto palettes = std::make_shared<CM_PaletteList>();
    palettes->append(std::make_shared<CM_Palette>(QStringLiteral("Ink")));
    palettes->append(std::make_shared<CM_Palette>(QStringLiteral("Keys"), -1, QStringLiteral("/studio/keys.plt")));
    palettes->palette(0)->LoadDefaultColor(QStringLiteral("Vectorized Line"), 3, 0, 0, 0, 255);
    palettes->palette(0)->LoadDefaultColor(QStringLiteral("Red"), 7, 255, 0, 0, 128);
    palettes->palette(1)->LoadDefaultColor(QStringLiteral("Skin"), 9, 250, 200, 180, 255);
    d->paletteInfo().setPaletteList(palettes);
    BM_GreyMap pixels(5, 3);
    for (int i = 0; i < 15; ++i) pixels.set(i % 5, i / 5, unsigned(17 * i));
    const int64_t texture = d->paletteInfo().addLocalColor(std::make_shared<CM_Texture>(QStringLiteral("pencil"), pixels));

    Math::Matrix2x3 moved;
    moved.Rotate(0.5);
    moved.Translate(-2500, 1875.25);
    const auto line = std::make_shared<const GR_Color>(3, moved, texture, moved.Inverse());
    GR_StrokeData outline(GR_BezierPath2d({{0, 0}, {10.25, -3}, {-0.0, 1e-300}, {0, 0}}, 1));
    outline.SetColor(0, line);
    GR_StrokeData curve(GR_BezierPath2d({{0, 0}, {1, 2}, {3, 4}, {5, -6.5}}, 3));
    curve.setLineStyle({2, 1.5});
    curve.SetColor(0, std::make_shared<const GR_Color>(*line));
    curve.SetColor(1, std::make_shared<const GR_Color>(7, Math::Matrix2x3(), -1, Math::Matrix2x3()));
    d->lineArt().placeLayer(0, std::make_unique<GR_Layer>(9, 2, std::vector{outline, curve}));
    d->lineArt().placeLayer(1, std::make_unique<GR_Layer>(4, 5, std::vector{curve}));
    d->colorArt().insertLayer(0, 2, {outline});
    return d;
}

void expectSameLayers(const GR_VectorDrawingObj &a, const GR_VectorDrawingObj &b) {
    ASSERT_EQ(a.layerCount(), b.layerCount());
    for (int i = 0; i < a.layerCount(); ++i) {
        const GR_Layer &la = *a.layer(i), &lb = *b.layer(i);
        EXPECT_EQ(std::pair(la.id(), la.type()), std::pair(lb.id(), lb.type()));
        ASSERT_EQ(la.strokeCount(), lb.strokeCount());
        for (int s = 0; s < la.strokeCount(); ++s) {
            const GR_StrokeData &sa = la.stroke(s), &sb = lb.stroke(s);
            EXPECT_TRUE(sa.path() == sb.path() && sa.lineStyle() == sb.lineStyle()) << "layer " << i << " stroke " << s;
            for (int side : {0, 1})
                EXPECT_TRUE(sa.Color(side) ? sb.Color(side) && *sa.Color(side) == *sb.Color(side) : !sb.Color(side));
        }
    }
}

QByteArray fileBytes(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The bytes of `good` with one field changed by `edit`.
QByteArray edited(const QByteArray &good, const std::function<void(QCborValue &)> &edit) {
    QCborValue top = QCborValue::fromCbor(good).taggedValue();
    edit(top);
    return top.toCbor();
}

}  // namespace

TEST(KwgFile, KeepsEverythingAndStoresAgainToTheSameBytes) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("BG-0001.kwg"));
    const auto d = fullDrawing();
    QString error;
    ASSERT_TRUE(d->Store(path, 1002, &error)) << error.toStdString();
    const auto back = Drawing::Load(path, &error);
    ASSERT_TRUE(back) << error.toStdString();

    const GR_CompositeDrawingInfo &ia = d->info(), &ib = back->info();
    EXPECT_EQ(std::tuple(ib.fieldSize(), ib.scanInfo(), ib.creator()), std::tuple(ia.fieldSize(), ia.scanInfo(), ia.creator()));
    const CM_PaletteList &pa = *d->paletteInfo().paletteList(), &pb = *back->paletteInfo().paletteList();
    ASSERT_EQ(pb.count(), 2);
    for (int i = 0; i < 2; ++i) {
        const CM_Palette &a = *pa.palette(i), &b = *pb.palette(i);
        EXPECT_EQ(std::tuple(b.name(), b.idValue(), b.pathName(), b.colors()), std::tuple(a.name(), a.idValue(), a.pathName(), a.colors()));
    }
    ASSERT_EQ(back->paletteInfo().textures().size(), 1u);
    const CM_Texture &ta = *d->paletteInfo().textures()[0], &tb = *back->paletteInfo().textures()[0];
    EXPECT_EQ(std::tuple(tb.id, tb.name, tb.pixels.width(), tb.pixels.height()), std::tuple(ta.id, ta.name, 5, 3));
    for (int i = 0; i < 15; ++i) EXPECT_EQ(tb.pixels.get(i % 5, i / 5), unsigned(17 * i));
    expectSameLayers(d->lineArt(), back->lineArt());
    expectSameLayers(d->colorArt(), back->colorArt());
    // Equal colours are one entry of the file, hence one object once read.
    EXPECT_EQ(back->lineArt().layer(0)->stroke(0).Color(0).get(), back->lineArt().layer(0)->stroke(1).Color(0).get());

    EXPECT_EQ(back->toBytes(), fileBytes(path));
    EXPECT_EQ(d->toBytes(), fileBytes(path)) << "version 0 writes the same format";
}

TEST(KwgFile, DamagedFilesAreRefusedWithTheirReason) {
    const QByteArray good = fullDrawing()->toBytes();
    const auto stroke = [](QCborValue &top) { return top[k("lineArt")][0][k("strokes")][0]; };
    const struct {
        const char *name;
        QByteArray bytes;
        const char *reason;
    } cases[] = {
        {"empty", {}, "the file is empty"},
        {"cut in the header", good.left(7), "damaged drawing file"},
        {"cut half way", good.left(good.size() / 2), "damaged drawing file"},
        {"last byte missing", good.chopped(1), "damaged drawing file"},
        {"bytes after the drawing", good + '\0', "bytes after the drawing"},
        {"a byte string longer than the file", QByteArray::fromHex("5b000001000000000041"), "damaged drawing file"},
        {"not a map", QCborValue(1002).toCbor(), "not a drawing file"},
        {"another magic", edited(good, [](QCborValue &t) { t[k("format")] = k("kwx"); }), "not a drawing file"},
        {"version 1001", edited(good, [](QCborValue &t) { t[k("version")] = 1001; }), "format version 1001 is not supported"},
        {"points of odd length", edited(good, [&](QCborValue &t) { stroke(t)[k("points")] = QByteArray(15, '\0'); }),
         "lineArt: layer 1: stroke 1: 15 point bytes are not whole points"},
        {"colour index out of range", edited(good, [&](QCborValue &t) { stroke(t)[k("colors")] = QCborArray{0, 2}; }),
         "colour slot 1 holds 2, not an index of the 2 colours"},
        {"a field of the wrong type", edited(good, [&](QCborValue &t) { stroke(t)[k("degree")] = 1.0; }),
         "\"degree\" is not an integer"},
        {"texture pixels for another size", edited(good, [](QCborValue &t) { t[k("textures")][0][k("width")] = 6; }),
         "the pixels do not hold 6 x 3 pixels"},
        {"layer id twice", edited(good, [](QCborValue &t) { t[k("lineArt")][1][k("id")] = 9; }), "layer id 9 is used twice"},
    };
    for (const auto &c : cases) {
        QString error;
        EXPECT_FALSE(Drawing::fromBytes(c.bytes, &error)) << c.name;
        EXPECT_TRUE(error.contains(QLatin1String(c.reason))) << c.name << ": " << error.toStdString();
    }
}

// Refused before writing, or stopped half way: the earlier file stays, and
// no temporary file is left.
TEST(KwgFile, FailedStoresKeepTheEarlierFile) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("BG-0001.kwg")), missing = dir.filePath(QStringLiteral("no/BG.kwg"));
    const auto d = fullDrawing();
    ASSERT_TRUE(d->Store(path, 0));
    const QByteArray before = fileBytes(path);
    QString error;
    EXPECT_FALSE(d->Store(missing, 0, &error));
    EXPECT_TRUE(error.contains(missing)) << error.toStdString();
    EXPECT_FALSE(d->Store(path, 1001, &error));
    EXPECT_TRUE(error.contains(QLatin1String("version 1001 is not supported"))) << error.toStdString();

    d->lineArt().layer(0)->modify().resize(5000, d->lineArt().layer(0)->stroke(1));
    EXPECT_FALSE(with_file_size_limit(32768, [&] { return d->Store(path, 0, &error); }));
    EXPECT_TRUE(error.contains(path)) << error.toStdString();
    EXPECT_EQ(fileBytes(path), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("BG-0001.kwg")});
}
