#include "vectorize/optimize_texture.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "suite/graphic/gr_drawing_access.h"
#include "vectorize/vectorize_trace.h"

namespace {

double area(const Math::Box2d &b) { return b.width() * b.height(); }

Math::Box2d united(const Math::Box2d &a, const Math::Box2d &b) {
    Math::Box2d u = a;
    if (!b.isEmpty()) {
        u.add({b.x0, b.y0});
        u.add({b.x1, b.y1});
    }
    return u;
}

bool inside(const Math::Box2d &inner, const Math::Box2d &outer) {
    return inner.x0 >= outer.x0 && inner.x1 <= outer.x1 && inner.y0 >= outer.y0 && inner.y1 <= outer.y1;
}

// Even-odd test of a point against a closed polyline or control polygon.
bool contains(const GR_BezierPath2d &path, const Math::Point2d &p) {
    bool in = false;
    const std::vector<Math::Point2d> &v = path.points();
    for (size_t i = 0, j = v.size() - 1; i < v.size(); j = i++)
        if ((v[i].y > p.y) != (v[j].y > p.y) && p.x < (v[j].x - v[i].x) * (p.y - v[i].y) / (v[j].y - v[i].y) + v[i].x)
            in = !in;
    return in;
}

struct Group {
    Math::Box2d box;
    std::vector<int> strokes;
};

// The components of a layer: each outline that no other outline holds, with
// every stroke inside it.
std::vector<Group> components(const GR_Layer &layer) {
    const int n = layer.strokeCount();
    std::vector<Math::Box2d> boxes(static_cast<size_t>(n));
    std::vector<int> order(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        boxes[size_t(i)] = layer.stroke(i).path().boundingBox();
        order[size_t(i)] = i;
    }
    // Largest first: a stroke's holder comes before it.
    std::sort(order.begin(), order.end(), [&](int a, int b) { return area(boxes[size_t(a)]) > area(boxes[size_t(b)]); });
    std::vector<Group> groups;
    std::vector<int> tops;  // stroke index of each group's outline
    for (int i : order) {
        const GR_StrokeData &s = layer.stroke(i);
        int holder = -1;
        if (s.isClosed() && !s.path().isEmpty()) {
            for (size_t g = 0; g < groups.size() && holder < 0; ++g) {
                const int top = tops[g];
                if (inside(boxes[size_t(i)], boxes[size_t(top)]) && contains(layer.stroke(top).path(), s.path().point(0)))
                    holder = int(g);
            }
        }
        if (holder < 0) {
            groups.push_back({boxes[size_t(i)], {i}});
            tops.push_back(i);
        } else {
            groups[size_t(holder)].strokes.push_back(i);
        }
    }
    return groups;
}

void mergeGroups(std::vector<Group> &groups) {
    bool merged = true;
    while (merged) {
        merged = false;
        for (size_t a = 0; a < groups.size(); ++a) {
            for (size_t b = a + 1; b < groups.size(); ++b) {
                const Math::Box2d u = united(groups[a].box, groups[b].box);
                if (area(u) > area(groups[a].box) + area(groups[b].box)) continue;
                groups[a].box = u;
                groups[a].strokes.insert(groups[a].strokes.end(), groups[b].strokes.begin(), groups[b].strokes.end());
                groups.erase(groups.begin() + std::ptrdiff_t(b));
                merged = true;
                --b;
            }
        }
    }
}

// The pixels of `texture` under the world box `box`, and the matrix from
// the crop's unit square to the world.
CM_TexturePtr crop(const CM_Texture &texture, const Math::Matrix2x3 &toWorld, const Math::Box2d &box,
                   Math::Matrix2x3 &cropToWorld) {
    const Math::Matrix2x3 toTexture = toWorld.Inverse();
    Math::Box2d b;
    for (const Math::Point2d &p : {Math::Point2d{box.x0, box.y0}, {box.x1, box.y0}, {box.x0, box.y1}, {box.x1, box.y1}})
        b.add(toTexture.Apply(p));
    const int w = texture.pixels.width(), h = texture.pixels.height();
    const int x0 = std::clamp(int(b.x0 * w - 1), 0, std::max(w - 1, 0));
    const int y0 = std::clamp(int(h - b.y1 * h - 1), 0, h);
    const int cw = std::max(std::min(int(b.width() * w + 2), w - x0), 1);
    const int ch = std::max(std::min(int(b.height() * h + 2), h - y0), 1);
    BM_GreyMap pixels(cw, ch);
    for (int y = 0; y < ch && y0 + y < h; ++y) std::copy_n(texture.pixels.row(y0 + y) + x0, cw, pixels.row(y));
    // The crop's unit square in the texture's unit square (v up).
    Math::Matrix2x3 local;
    local.Scale(double(cw) / w, double(ch) / h);
    local.Translate(double(x0) / w, double(h - y0 - ch) / h);
    cropToWorld = toWorld * local;
    return std::make_shared<CM_Texture>(texture.name, std::move(pixels));
}

}  // namespace

void optimizeTexture(GR_DrawingAccess &access, const CM_TexturePtr &texture, bool optimize) {
    GR_VectorDrawingObj *drawing = access.CurrentDrawing();
    if (!texture || !drawing || drawing->layerCount() == 0) return;
    GR_Layer *layer = drawing->layer(0);
    std::vector<Group> groups = components(*layer);
    if (!optimize && !groups.empty()) {
        for (size_t g = 1; g < groups.size(); ++g) {
            groups[0].box = united(groups[0].box, groups[g].box);
            groups[0].strokes.insert(groups[0].strokes.end(), groups[g].strokes.begin(), groups[g].strokes.end());
        }
        groups.resize(1);
    } else {
        mergeGroups(groups);
    }
    vectorizeTrace("Texture in %d pieces\n", int(groups.size()));

    GR_PaletteInfo &palettes = access.colorDict().paletteInfo();
    std::vector<GR_StrokeData> strokes = layer->strokes();
    for (const Group &group : groups) {
        std::map<const GR_Color *, GR_ColorPtr> moved;
        CM_TexturePtr piece;
        Math::Matrix2x3 pieceMatrix;
        for (int i : group.strokes) {
            GR_StrokeData &s = strokes[size_t(i)];
            for (int side = 0; side < 2; ++side) {
                const GR_ColorPtr &c = s.Color(side);
                if (!c || c->textureId() != texture->id) continue;  // not textured: keeps its colour
                if (!piece) {
                    piece = crop(*texture, c->textureMatrix(), group.box, pieceMatrix);
                    palettes.addLocalColor(piece);
                }
                GR_ColorPtr &copy = moved[c.get()];
                if (!copy) copy = std::make_shared<const GR_Color>(c->colorId(), c->colorMatrix(), piece->id, pieceMatrix);
                s.SetColor(side, copy);
            }
        }
    }
    access.BeginOperations();
    access.CreateLayerAbove(std::move(strokes), layer->type());
    access.Erase(layer);
    access.EndOperations();
    palettes.removeLocalColor(texture->id);
}
