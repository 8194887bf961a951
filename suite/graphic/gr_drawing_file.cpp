// The native drawing file: one CBOR item, laid out in docs/kwg-format.md.
// Written in one fixed key order so that equal drawings give equal bytes;
// read leniently as to order but strictly as to types, ranges and sizes,
// since a file may come from anywhere.
#include <QCborArray>
#include <QCborMap>
#include <QCborStreamReader>
#include <QCborValue>
#include <QDir>
#include <QFile>
#include <QtEndian>

#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "suite/graphic/gr_composite_drawing.h"
#include "suite/graphic/gr_export.h"

namespace {

const QLatin1StringView kMagic("kwg");
// Deflate shrinks at most about 1032 to 1: a texture claiming more pixels
// than its compressed bytes can hold is refused before anything is allocated.
constexpr qint64 kMaxInflateRatio = 1032;
constexpr qint64 kMaxTextureSide = 1 << 15;
constexpr qint64 kMaxTexturePixels = qint64(1) << 28;  // far above any scanned page

QLatin1StringView key(const char *name) { return QLatin1StringView(name); }

// ---- writing ----

QCborArray matrixArray(const Math::Matrix2x3 &m) {
    const Math::Vector2d c0 = m.column0(), c1 = m.column1(), t = m.translation();
    return {c0.x, c0.y, c1.x, c1.y, t.x, t.y};
}

// Points as x0 y0 x1 y1 ..., each a little-endian IEEE double.
QByteArray pointBytes(const std::vector<Math::Point2d> &points) {
    QByteArray bytes(qsizetype(points.size() * 16), Qt::Uninitialized);
    char *out = bytes.data();
    for (const Math::Point2d &p : points) {
        qToLittleEndian(std::bit_cast<quint64>(p.x), out);
        qToLittleEndian(std::bit_cast<quint64>(p.y), out + 8);
        out += 16;
    }
    return bytes;
}

// The distinct colours of the strokes in order of first use. Strokes share
// colour objects, and equal colours made apart are one entry too; a colour is
// looked up by its object first, as most strokes share one.
class ColorTable {
public:
    QCborValue indexOf(const GR_ColorPtr &color) {
        if (!color) return QCborValue(nullptr);
        if (const auto it = byObject_.find(color.get()); it != byObject_.end()) return it->second;
        const Math::Matrix2x3 &cm = color->colorMatrix(), &tm = color->textureMatrix();
        std::array<quint64, 14> bits{color->colorId(), quint64(color->textureId())};
        const double values[12] = {cm.column0().x, cm.column0().y, cm.column1().x, cm.column1().y,
                                   cm.translation().x, cm.translation().y, tm.column0().x, tm.column0().y,
                                   tm.column1().x, tm.column1().y, tm.translation().x, tm.translation().y};
        std::memcpy(bits.data() + 2, values, sizeof values);  // bits, so that NaN and -0 stay apart
        auto [it, added] = byValue_.try_emplace(bits, entries_.size());
        if (added)
            entries_.append(QCborMap{{key("id"), qint64(color->colorId())},
                                     {key("matrix"), matrixArray(cm)},
                                     {key("texture"), qint64(color->textureId())},
                                     {key("textureMatrix"), matrixArray(tm)}});
        byObject_.emplace(color.get(), it->second);
        return it->second;
    }
    const QCborArray &entries() const { return entries_; }

private:
    QCborArray entries_;
    std::unordered_map<const GR_Color *, qint64> byObject_;
    std::map<std::array<quint64, 14>, qint64> byValue_;
};

QCborArray layerArray(const GR_VectorDrawingObj &drawing, ColorTable &colors) {
    QCborArray layers;
    for (int i = 0; i < drawing.layerCount(); ++i) {
        const GR_Layer &layer = *drawing.layer(i);
        QCborArray strokes;
        for (const GR_StrokeData &s : layer.strokes())
            strokes.append(QCborMap{{key("degree"), s.path().degree()},
                                    {key("points"), pointBytes(s.path().points())},
                                    {key("style"), s.lineStyle().type},
                                    {key("thickness"), s.lineStyle().thickness},
                                    {key("colors"), QCborArray{colors.indexOf(s.Color(0)), colors.indexOf(s.Color(1))}}});
        layers.append(QCborMap{{key("id"), qint64(layer.id())}, {key("type"), layer.type()}, {key("strokes"), strokes}});
    }
    return layers;
}

QCborArray paletteArray(const CM_PaletteList &list) {
    QCborArray palettes;
    for (int i = 0; i < list.count(); ++i) {
        const CM_Palette &palette = *list.palette(i);
        QCborArray colors;
        for (const CM_Color &c : palette.colors())
            colors.append(QCborMap{{key("id"), qint64(c.id)},
                                   {key("name"), c.name},
                                   {key("rgba"), QCborArray{c.rgba[0], c.rgba[1], c.rgba[2], c.rgba[3]}}});
        palettes.append(QCborMap{{key("name"), palette.name()},
                                 {key("id"), qint64(palette.idValue())},
                                 {key("path"), palette.pathName()},
                                 {key("colors"), colors}});
    }
    return palettes;
}

// Rows top first without padding, compressed: a page is mostly paper.
QByteArray texturePixels(const BM_GreyMap &map) {
    const int w = map.width(), h = map.height();
    QByteArray raw(qsizetype(w) * h, '\0');
    for (int y = 0; y < h; ++y)
        if (map.stores(y)) std::memcpy(raw.data() + qsizetype(y) * w, map.row(y), size_t(w));
    return qCompress(raw);
}

QCborArray textureArray(const std::vector<CM_TexturePtr> &textures) {
    QCborArray out;
    for (const CM_TexturePtr &t : textures)
        out.append(QCborMap{{key("id"), qint64(t->id)},
                            {key("name"), t->name},
                            {key("width"), t->pixels.width()},
                            {key("height"), t->pixels.height()},
                            {key("pixels"), texturePixels(t->pixels)}});
    return out;
}

// ---- reading ----

// Reads fields of the decoded item, keeping the first fault with where it was
// met ("lineArt: layer 2: stroke 7: ..."). After a fault every read gives a
// neutral value, so callers check ok() only where a fault would mislead them.
class Reader {
public:
    bool ok() const { return error_.isEmpty(); }
    const QString &error() const { return error_; }

    void fail(const QString &what) {
        if (!ok()) return;
        QStringList where;
        for (const auto &[name, index] : scopes_)
            where << (index < 0 ? QString::fromLatin1(name) : QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(index + 1));
        where << what;
        error_ = where.join(QStringLiteral(": "));
    }

    // Names what is read while it lives.
    class Scope {
    public:
        Scope(Reader &r, const char *name, qsizetype index = -1) : r_(r) { r_.scopes_.emplace_back(name, index); }
        ~Scope() { r_.scopes_.pop_back(); }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        Reader &r_;
    };

    QCborValue field(const QCborMap &map, const char *name, QCborValue::Type type, const char *typeName) {
        const QCborValue v = map.value(key(name));
        if (v.type() == type) return v;
        fail(v.isUndefined() ? QStringLiteral("no \"%1\"").arg(QLatin1String(name))
                             : QStringLiteral("\"%1\" is not %2").arg(QLatin1String(name), QLatin1String(typeName)));
        return {};
    }
    qint64 integer(const QCborMap &map, const char *name, qint64 min = std::numeric_limits<qint64>::min(),
                   qint64 max = std::numeric_limits<qint64>::max()) {
        const qint64 v = field(map, name, QCborValue::Integer, "an integer").toInteger();
        if (v >= min && v <= max) return v;
        fail(QStringLiteral("\"%1\" is %2, out of range").arg(QLatin1String(name)).arg(v));
        return min;
    }
    double number(const QCborMap &map, const char *name) {
        return field(map, name, QCborValue::Double, "a floating-point number").toDouble();
    }
    QString text(const QCborMap &map, const char *name) {
        return field(map, name, QCborValue::String, "a text").toString();
    }
    QByteArray bytes(const QCborMap &map, const char *name) {
        return field(map, name, QCborValue::ByteArray, "a byte string").toByteArray();
    }
    QCborArray array(const QCborMap &map, const char *name) {
        return field(map, name, QCborValue::Array, "an array").toArray();
    }
    QCborMap map(const QCborValue &v, const char *what) {
        if (!v.isMap()) fail(QStringLiteral("%1 is not a map").arg(QLatin1String(what)));
        return v.toMap();
    }
    Math::Matrix2x3 matrix(const QCborMap &map, const char *name) {
        const QCborArray a = array(map, name);
        double m[6] = {};
        if (ok() && a.size() != 6) fail(QStringLiteral("\"%1\" has %2 numbers, not 6").arg(QLatin1String(name)).arg(a.size()));
        for (qsizetype i = 0; ok() && i < 6; ++i) {
            if (!a[i].isDouble()) fail(QStringLiteral("\"%1\" holds a value that is not a number").arg(QLatin1String(name)));
            m[i] = a[i].toDouble();
        }
        return Math::Matrix2x3({m[0], m[1]}, {m[2], m[3]}, {m[4], m[5]});
    }

private:
    QString error_;
    std::vector<std::pair<const char *, qsizetype>> scopes_;
};

std::vector<Math::Point2d> readPoints(Reader &r, const QCborMap &stroke, int degree) {
    const QByteArray bytes = r.bytes(stroke, "points");
    const qsizetype count = bytes.size() / 16;
    if (bytes.size() % 16) r.fail(QStringLiteral("%1 point bytes are not whole points of 16").arg(bytes.size()));
    else if (degree == 3 && count % 3 != 1 && count != 0)
        r.fail(QStringLiteral("a cubic path of %1 points (not 3n + 1)").arg(count));
    std::vector<Math::Point2d> points;
    if (!r.ok()) return points;
    points.resize(size_t(count));
    const char *in = bytes.constData();
    for (Math::Point2d &p : points) {
        p.x = std::bit_cast<double>(qFromLittleEndian<quint64>(in));
        p.y = std::bit_cast<double>(qFromLittleEndian<quint64>(in + 8));
        in += 16;
    }
    return points;
}

void readLayers(Reader &r, const QCborMap &top, const char *name, const std::vector<GR_ColorPtr> &colors,
                GR_VectorDrawingObj &drawing) {
    Reader::Scope scope(r, name);
    const QCborArray layers = r.array(top, name);
    std::unordered_set<quint64> ids;
    for (qsizetype li = 0; r.ok() && li < layers.size(); ++li) {
        Reader::Scope layerScope(r, "layer", li);
        const QCborMap layer = r.map(layers[li], "the layer");
        const auto id = quint64(r.integer(layer, "id"));
        const int type = int(r.integer(layer, "type", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
        const QCborArray strokeItems = r.array(layer, "strokes");
        if (r.ok() && !ids.insert(id).second) r.fail(QStringLiteral("layer id %1 is used twice").arg(id));
        std::vector<GR_StrokeData> strokes;
        strokes.reserve(size_t(strokeItems.size()));
        for (qsizetype si = 0; r.ok() && si < strokeItems.size(); ++si) {
            Reader::Scope strokeScope(r, "stroke", si);
            const QCborMap item = r.map(strokeItems[si], "the stroke");
            const int degree = int(r.integer(item, "degree", 1, 3));
            if (r.ok() && degree == 2) r.fail(QStringLiteral("degree 2 is not a path degree"));
            GR_StrokeData &stroke = strokes.emplace_back(GR_BezierPath2d(readPoints(r, item, degree), degree));
            const int style = int(r.integer(item, "style", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
            stroke.setLineStyle({style, r.number(item, "thickness")});
            const QCborArray sides = r.array(item, "colors");
            if (r.ok() && sides.size() != 2) r.fail(QStringLiteral("%1 colour slots, not 2").arg(sides.size()));
            for (int side = 0; r.ok() && side < 2; ++side) {
                const QCborValue slot = sides[side];
                if (slot.isNull()) continue;
                const qint64 index = slot.isInteger() ? slot.toInteger() : -1;
                if (index < 0 || index >= qint64(colors.size()))
                    r.fail(QStringLiteral("colour slot %1 holds %2, not an index of the %3 colours")
                               .arg(side)
                               .arg(slot.toDiagnosticNotation())
                               .arg(colors.size()));
                else stroke.SetColor(side, colors[size_t(index)]);
            }
        }
        if (r.ok()) drawing.placeLayer(drawing.layerCount(), std::make_unique<GR_Layer>(id, type, std::move(strokes)));
    }
}

std::vector<GR_ColorPtr> readColors(Reader &r, const QCborMap &top) {
    Reader::Scope scope(r, "colors");
    const QCborArray items = r.array(top, "colors");
    std::vector<GR_ColorPtr> colors;
    for (qsizetype i = 0; r.ok() && i < items.size(); ++i) {
        Reader::Scope entry(r, "colour", i);
        const QCborMap c = r.map(items[i], "the colour");
        const auto id = quint64(r.integer(c, "id"));
        const Math::Matrix2x3 matrix = r.matrix(c, "matrix");
        const qint64 texture = r.integer(c, "texture", -1);
        colors.push_back(std::make_shared<const GR_Color>(id, matrix, texture, r.matrix(c, "textureMatrix")));
    }
    return colors;
}

CM_PaletteListPtr readPalettes(Reader &r, const QCborMap &top) {
    Reader::Scope scope(r, "palettes");
    const QCborArray items = r.array(top, "palettes");
    auto list = std::make_shared<CM_PaletteList>();
    for (qsizetype i = 0; r.ok() && i < items.size(); ++i) {
        Reader::Scope entry(r, "palette", i);
        const QCborMap p = r.map(items[i], "the palette");
        auto palette = std::make_shared<CM_Palette>(r.text(p, "name"), r.integer(p, "id"), r.text(p, "path"));
        const QCborArray colors = r.array(p, "colors");
        for (qsizetype ci = 0; r.ok() && ci < colors.size(); ++ci) {
            Reader::Scope colorScope(r, "colour", ci);
            const QCborMap c = r.map(colors[ci], "the colour");
            CM_Color color{quint64(r.integer(c, "id")), r.text(c, "name")};
            const QCborArray rgba = r.array(c, "rgba");
            if (r.ok() && rgba.size() != 4) r.fail(QStringLiteral("\"rgba\" has %1 values, not 4").arg(rgba.size()));
            for (qsizetype k = 0; r.ok() && k < 4; ++k) {
                const qint64 v = rgba[k].isInteger() ? rgba[k].toInteger() : -1;
                if (v < 0 || v > 255) r.fail(QStringLiteral("\"rgba\" holds %1, not 0 to 255").arg(rgba[k].toDiagnosticNotation()));
                color.rgba[size_t(k)] = uint8_t(v);
            }
            if (r.ok()) palette->add(color);
        }
        list->append(std::move(palette));
    }
    return list;
}

void readTextures(Reader &r, const QCborMap &top, GR_PaletteInfo &info) {
    Reader::Scope scope(r, "textures");
    const QCborArray items = r.array(top, "textures");
    for (qsizetype i = 0; r.ok() && i < items.size(); ++i) {
        Reader::Scope entry(r, "texture", i);
        const QCborMap t = r.map(items[i], "the texture");
        const qint64 id = r.integer(t, "id", 0);
        const QString name = r.text(t, "name");
        const qint64 w = r.integer(t, "width", 0, kMaxTextureSide), h = r.integer(t, "height", 0, kMaxTextureSide);
        const QByteArray packed = r.bytes(t, "pixels");
        if (!r.ok()) return;
        if (info.texture(id)) return r.fail(QStringLiteral("texture id %1 is used twice").arg(id));
        // qUncompress would allocate whatever the first four bytes claim.
        const qint64 claimed = packed.size() >= 4 ? qFromBigEndian<quint32>(packed.constData()) : -1;
        if (claimed != w * h || w * h > kMaxTexturePixels || w * h > (packed.size() - 4) * kMaxInflateRatio + 64)
            return r.fail(QStringLiteral("the pixels do not hold %1 x %2 pixels").arg(w).arg(h));
        const QByteArray raw = w * h > 0 ? qUncompress(packed) : QByteArray();
        if (raw.size() != w * h) return r.fail(QStringLiteral("the pixels do not hold %1 x %2 pixels").arg(w).arg(h));
        BM_GreyMap pixels{int(w), int(h)};
        for (int y = 0; y < h; ++y) std::memcpy(pixels.row(y), raw.constData() + y * w, size_t(w));
        auto texture = std::make_shared<CM_Texture>(name, std::move(pixels));
        texture->id = id;
        info.addLocalColorKeepingId(std::move(texture));
    }
}

}  // namespace

QByteArray GR_CompositeVectorDrawingObj::toBytes() const {
    ColorTable colors;
    // The colour table fills as the strokes are written, and precedes them.
    const QCborArray line = layerArray(lineArt_, colors), colour = layerArray(colorArt_, colors);
    const QCborMap top{{key("format"), kMagic},
                       {key("version"), kFormatVersion},
                       {key("info"), QCborMap{{key("fieldSize"), info_.fieldSize()},
                                              {key("scanInfo"), info_.scanInfo()},
                                              {key("creator"), info_.creator()}}},
                       {key("palettes"), paletteArray(*paletteInfo_.paletteList())},
                       {key("textures"), textureArray(paletteInfo_.textures())},
                       {key("colors"), colors.entries()},
                       {key("lineArt"), line},
                       {key("colorArt"), colour}};
    return QCborValue(QCborKnownTags::Signature, top).toCbor();
}

bool GR_CompositeVectorDrawingObj::Store(const QString &path, int version, QString *error) const {
    if (version != 0 && version != kFormatVersion) {
        if (error) *error = QStringLiteral("Cannot write %1: drawing file format version %2 is not supported (only %3 is)")
                                .arg(QDir::toNativeSeparators(path)).arg(version).arg(kFormatVersion);
        return false;
    }
    const QByteArray bytes = toBytes();
    return GR_WriteWhole(path, [&bytes](QIODevice &out) { return out.write(bytes) == bytes.size(); }, error);
}

std::unique_ptr<GR_CompositeVectorDrawingObj> GR_CompositeVectorDrawingObj::Load(const QString &path, QString *error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = QStringLiteral("Cannot read %1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return nullptr;
    }
    QString why;
    auto drawing = fromBytes(file.readAll(), &why);
    if (!drawing && error) *error = QStringLiteral("Cannot read %1: %2").arg(QDir::toNativeSeparators(path), why);
    return drawing;
}

std::unique_ptr<GR_CompositeVectorDrawingObj> GR_CompositeVectorDrawingObj::fromBytes(const QByteArray &bytes,
                                                                                      QString *error) {
    const auto refuse = [error](const QString &why) {
        if (error) *error = why;
        return nullptr;
    };
    if (bytes.isEmpty()) return refuse(QStringLiteral("the file is empty"));
    QCborStreamReader stream(bytes);
    QCborValue item = QCborValue::fromCbor(stream);
    if (stream.lastError() != QCborError::NoError)
        return refuse(QStringLiteral("damaged drawing file: %1 near byte %2")
                          .arg(stream.lastError().toString())
                          .arg(stream.currentOffset()));
    if (stream.currentOffset() != bytes.size())
        return refuse(QStringLiteral("damaged drawing file: bytes after the drawing, from byte %1").arg(stream.currentOffset()));
    if (item.isTag() && item.tag() == QCborTag(QCborKnownTags::Signature)) item = item.taggedValue();
    const QCborMap top = item.toMap();
    if (top.value(key("format")).toString() != kMagic) return refuse(QStringLiteral("not a drawing file"));
    const QCborValue version = top.value(key("version"));
    if (!version.isInteger() || version.toInteger() != kFormatVersion)
        return refuse(QStringLiteral("drawing file format version %1 is not supported").arg(version.toDiagnosticNotation()));

    auto drawing = std::make_unique<GR_CompositeVectorDrawingObj>();
    Reader r;
    {
        Reader::Scope scope(r, "info");
        const QCborMap info = r.map(top.value(key("info")), "\"info\"");
        const double fields = r.number(info, "fieldSize");
        if (r.ok() && !(fields > 0 && fields < 1e6)) r.fail(QStringLiteral("field size %1 is out of range").arg(fields));
        drawing->info_.SetFieldSize(fields);
        drawing->info_.SetScanInfo(r.text(info, "scanInfo"));
        drawing->info_.SetCreator(r.text(info, "creator"));
    }
    if (r.ok()) drawing->paletteInfo_.setPaletteList(readPalettes(r, top));
    if (r.ok()) readTextures(r, top, drawing->paletteInfo_);
    const std::vector<GR_ColorPtr> colors = r.ok() ? readColors(r, top) : std::vector<GR_ColorPtr>();
    if (r.ok()) readLayers(r, top, "lineArt", colors, drawing->lineArt_);
    if (r.ok()) readLayers(r, top, "colorArt", colors, drawing->colorArt_);
    if (!r.ok()) return refuse(QStringLiteral("damaged drawing file: ") + r.error());
    return drawing;
}
