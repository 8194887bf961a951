#include "vectorize/optimize_texture.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>

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

// Even-odd test of points against a closed polyline or control polygon, with
// its edges sorted into horizontal bands so that a test looks at the edges
// of one band: a page's outline can have tens of thousands of points.
class PolygonTest {
public:
    explicit PolygonTest(const GR_BezierPath2d &path) : v_(path.points()) {
        const Math::Box2d box = path.boundingBox();
        y0_ = box.y0;
        const size_t n = v_.size();
        bands_.resize(std::clamp<size_t>(n / 8, 1, 1024));
        height_ = box.height() > 0 ? box.height() : 1.0;
        for (size_t i = 0, j = n - 1; i < n; j = i++) {
            const auto [lo, hi] = std::minmax(v_[i].y, v_[j].y);
            for (size_t b = band(lo); b <= band(hi); ++b) bands_[b].push_back(uint32_t(i));
        }
    }
    bool contains(const Math::Point2d &p) const {
        bool in = false;
        const size_t n = v_.size();
        for (uint32_t i : bands_[band(p.y)]) {
            const Math::Point2d &a = v_[i], &b = v_[i == 0 ? n - 1 : i - 1];
            if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) in = !in;
        }
        return in;
    }

private:
    size_t band(double y) const {
        return size_t(std::clamp((y - y0_) / height_ * double(bands_.size()), 0.0, double(bands_.size() - 1)));
    }
    const std::vector<Math::Point2d> &v_;
    double y0_ = 0, height_ = 1;
    std::vector<std::vector<uint32_t>> bands_;
};

struct Group {
    Math::Box2d box;
    std::vector<int> strokes;
};

// Groups by the cells of a coarse grid over the layer that their boxes
// cover, so that finding the group that holds a point looks at a few.
class GroupGrid {
public:
    explicit GroupGrid(const Math::Box2d &area) : area_(area) {}
    void add(int group, const Math::Box2d &box) {
        const auto [cx0, cy0] = cell({box.x0, box.y0});
        const auto [cx1, cy1] = cell({box.x1, box.y1});
        for (int y = cy0; y <= cy1; ++y)
            for (int x = cx0; x <= cx1; ++x) cells_[size_t(y * kCells + x)].push_back(group);
    }
    const std::vector<int> &at(const Math::Point2d &p) const {
        const auto [x, y] = cell(p);
        return cells_[size_t(y * kCells + x)];
    }

private:
    static constexpr int kCells = 64;
    std::pair<int, int> cell(const Math::Point2d &p) const {
        auto index = [](double v, double lo, double size) {
            return size > 0 ? std::clamp(int((v - lo) / size * kCells), 0, kCells - 1) : 0;
        };
        return {index(p.x, area_.x0, area_.width()), index(p.y, area_.y0, area_.height())};
    }
    Math::Box2d area_;
    std::vector<std::vector<int>> cells_ = std::vector<std::vector<int>>(size_t(kCells * kCells));
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
    std::vector<std::unique_ptr<PolygonTest>> tests;  // made when first needed
    GroupGrid grid(layer.boundingBox());
    for (int i : order) {
        const GR_StrokeData &s = layer.stroke(i);
        int holder = -1;
        if (s.isClosed()) {
            for (int g : grid.at(s.path().point(0))) {
                const int top = tops[size_t(g)];
                if (!inside(boxes[size_t(i)], boxes[size_t(top)])) continue;
                std::unique_ptr<PolygonTest> &test = tests[size_t(g)];
                if (!test) test = std::make_unique<PolygonTest>(layer.stroke(top).path());
                if (test->contains(s.path().point(0))) {
                    holder = g;
                    break;
                }
            }
        }
        if (holder < 0) {
            grid.add(int(groups.size()), boxes[size_t(i)]);
            groups.push_back({boxes[size_t(i)], {i}});
            tops.push_back(i);
            tests.emplace_back();
        } else {
            groups[size_t(holder)].strokes.push_back(i);
        }
    }
    return groups;
}

// Two boxes apart along x or y never merge: the box around both is then
// larger than the two together. So with the groups in order of their left
// edges, each is only compared with those that start before it ends.
void mergeGroups(std::vector<Group> &groups) {
    bool merged = true;
    while (merged) {
        merged = false;
        std::sort(groups.begin(), groups.end(), [](const Group &a, const Group &b) { return a.box.x0 < b.box.x0; });
        std::vector<char> alive(groups.size(), 1);
        for (size_t a = 0; a < groups.size(); ++a) {
            if (!alive[a]) continue;
            for (size_t b = a + 1; b < groups.size() && groups[b].box.x0 <= groups[a].box.x1; ++b) {
                if (!alive[b]) continue;
                const Math::Box2d u = united(groups[a].box, groups[b].box);
                if (area(u) > area(groups[a].box) + area(groups[b].box)) continue;
                groups[a].box = u;
                groups[a].strokes.insert(groups[a].strokes.end(), groups[b].strokes.begin(), groups[b].strokes.end());
                alive[b] = 0;
                merged = true;
            }
        }
        size_t kept = 0;
        for (size_t g = 0; g < groups.size(); ++g) {
            if (!alive[g]) continue;
            if (kept != g) groups[kept] = std::move(groups[g]);
            ++kept;
        }
        groups.resize(kept);
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
