#pragma once
// The one way to change a vector drawing: layers are created, merged, moved
// and erased through an access object, which tells its listeners what
// changed. Between BeginOperations and EndOperations the changes are grouped
// and told once, at the end; listeners stay registered across operations and
// across switches of the current drawing.
#include <functional>
#include <vector>

#include "suite/graphic/gr_palette_info.h"
#include "suite/graphic/gr_vector_drawing.h"

struct GR_DrawingChange {
    enum Kind { LayerCreated, LayerErased, LayerModified, LayerMoved };
    Kind kind;
    uint64_t layerId;
};

class GR_DrawingListener {
public:
    virtual ~GR_DrawingListener() = default;
    virtual void DrawingChanged(const GR_VectorDrawingObj &drawing, const std::vector<GR_DrawingChange> &changes) = 0;
};

class GR_DrawingAccess {
public:
    explicit GR_DrawingAccess(GR_ColorDict &dict) : dict_(dict) {}

    GR_ColorDict &colorDict() const { return dict_; }
    // The drawing that the calls below change; its modification flags are
    // brought up to date as it becomes current.
    void SetCurrentDrawing(GR_VectorDrawingObj *drawing);
    GR_VectorDrawingObj *CurrentDrawing() const { return drawing_; }

    void BeginOperations() { ++depth_; }
    void EndOperations();

    // A new layer of the strokes, above all others or under all others.
    GR_Layer *CreateLayerAbove(std::vector<GR_StrokeData> strokes, int type = GR_Layer::kDrawingLayer);
    GR_Layer *CreateLayerUnder(std::vector<GR_StrokeData> strokes, int type = GR_Layer::kDrawingLayer);
    // The strokes of `from` go on top of those of `into`, and `from` is erased.
    void Merge(GR_Layer *into, GR_Layer *from);
    // Puts the layer at `position` (0 is the bottom) among the layers.
    void Move(GR_Layer *layer, int position);
    void Erase(GR_Layer *layer);
    void EraseAll();
    // Changes the strokes of a layer in place.
    void Modify(GR_Layer *layer, const std::function<void(std::vector<GR_StrokeData> &)> &change);

    void AddListener(GR_DrawingListener *listener);
    void RemoveListener(GR_DrawingListener *listener);

private:
    void record(GR_DrawingChange::Kind kind, uint64_t layerId);
    void flush();

    GR_ColorDict &dict_;
    GR_VectorDrawingObj *drawing_ = nullptr;
    int depth_ = 0;
    std::vector<GR_DrawingChange> pending_;
    std::vector<GR_DrawingListener *> listeners_;
};
