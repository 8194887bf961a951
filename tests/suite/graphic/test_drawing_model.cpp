// The drawing model's operations: layers made, merged, moved and erased
// through the access object, what its listeners hear, and the fast resize.
#include <gtest/gtest.h>

#include "suite/graphic/bm_util.h"
#include "suite/graphic/gr_drawing_access.h"

namespace {

struct Recorder : GR_DrawingListener {
    std::vector<std::vector<GR_DrawingChange>> calls;
    void DrawingChanged(const GR_VectorDrawingObj &, const std::vector<GR_DrawingChange> &changes) override {
        calls.push_back(changes);
    }
};

std::vector<GR_StrokeData> strokes(int n) {
    return std::vector<GR_StrokeData>(size_t(n), GR_StrokeData(GR_BezierPath2d({{0, 0}, {1, 1}})));
}

std::vector<uint64_t> ids(const GR_VectorDrawingObj &d) {
    std::vector<uint64_t> out;
    for (int i = 0; i < d.layerCount(); ++i) out.push_back(d.layer(i)->id());
    return out;
}

}  // namespace

TEST(DrawingAccess, OperationsKeepOrderAndListenersHearEachOperationOnce) {
    GR_PaletteInfo palettes;
    GR_ColorDict dict(palettes);
    GR_DrawingAccess access(dict);
    GR_VectorDrawingObj lineArt, colorArt;
    Recorder recorder;
    access.AddListener(&recorder);
    access.SetCurrentDrawing(&lineArt);

    GR_Layer *a = access.CreateLayerAbove(strokes(1));
    GR_Layer *b = access.CreateLayerAbove(strokes(2));
    GR_Layer *under = access.CreateLayerUnder(strokes(3));
    EXPECT_EQ(ids(lineArt), (std::vector<uint64_t>{under->id(), a->id(), b->id()}));
    EXPECT_EQ(recorder.calls.size(), 3u) << "outside an operation each change is told at once";

    access.BeginOperations();
    access.Move(under, 3);
    access.Merge(a, b);
    access.EndOperations();
    ASSERT_EQ(recorder.calls.size(), 4u) << "an operation is told once, at its end";
    EXPECT_EQ(recorder.calls.back().size(), 3u);  // moved, modified, erased
    EXPECT_EQ(ids(lineArt), (std::vector<uint64_t>{a->id(), under->id()}));
    EXPECT_EQ(a->strokeCount(), 3);
    EXPECT_TRUE(lineArt.UpdateModificationFlags());

    // Ids are never reused, and the listener stays through a switch.
    const uint64_t erased = under->id();
    access.Erase(under);
    access.SetCurrentDrawing(&colorArt);
    access.CreateLayerAbove(strokes(1));
    access.SetCurrentDrawing(&lineArt);
    EXPECT_GT(access.CreateLayerAbove(strokes(1))->id(), erased);
    EXPECT_EQ(recorder.calls.size(), 7u);

    access.RemoveListener(&recorder);
    access.EraseAll();
    EXPECT_EQ(lineArt.layerCount(), 0);
    EXPECT_EQ(recorder.calls.size(), 7u);
}

TEST(FastResize, AveragesWhenShrinkingAndRepeatsWhenGrowing) {
    BM_GreyMap map(4, 2);
    const uint8_t values[2][4] = {{0, 100, 200, 255}, {50, 150, 250, 255}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x) map.set(x, y, values[y][x]);
    const BM_GreyMap half = BM_Util::FastResize(map, 2, 1);
    EXPECT_EQ(half.get(0, 0), 75u);   // (0 + 100 + 50 + 150) / 4
    EXPECT_EQ(half.get(1, 0), 240u);  // (200 + 255 + 250 + 255) / 4
    const BM_GreyMap grown = BM_Util::FastResize(map, 8, 4);
    EXPECT_EQ(grown.get(3, 3), 150u);
    EXPECT_EQ(grown.get(7, 0), 255u);
    const BM_GreyMap one = BM_Util::FastResize(map, 0, -3);
    EXPECT_EQ(one.width(), 1);
    EXPECT_EQ(one.get(0, 0), 158u);  // all eight: 1260 / 8, rounded
}
