#pragma once
// A vector drawing: layers of strokes, the first at the bottom. Changes go
// through a GR_DrawingAccess, which tells its listeners.
#include <memory>
#include <vector>

#include "suite/graphic/gr_layer.h"

class GR_DrawingBase {
public:
    virtual ~GR_DrawingBase() = default;
    // True when the drawing changed since the flags were last brought up to
    // date; then they are.
    bool UpdateModificationFlags();
    bool isModified() const { return modified_; }
    void setModified() { modified_ = true; }

protected:
    virtual uint64_t contentRevision() const = 0;

private:
    bool modified_ = false;
    uint64_t seenRevision_ = 0;
};

class GR_VectorDrawingObj : public GR_DrawingBase {
public:
    int layerCount() const { return static_cast<int>(layers_.size()); }
    GR_Layer *layer(int i) const { return layers_[static_cast<size_t>(i)].get(); }
    GR_Layer *topLayer() const { return layers_.empty() ? nullptr : layers_.back().get(); }
    GR_Layer *findLayer(uint64_t id) const;
    int indexOf(const GR_Layer *layer) const;  // -1 when not here
    int strokeCount() const;
    Math::Box2d boundingBox() const;

    // Building blocks of GR_DrawingAccess and of the file loader; other code
    // changes a drawing through an access object.
    GR_Layer *insertLayer(int position, int type, std::vector<GR_StrokeData> strokes);
    std::unique_ptr<GR_Layer> takeLayer(int position);
    void placeLayer(int position, std::unique_ptr<GR_Layer> layer);
    uint64_t nextLayerId() const { return nextId_; }

private:
    uint64_t contentRevision() const override;

    std::vector<std::unique_ptr<GR_Layer>> layers_;
    uint64_t nextId_ = 1;
    uint64_t structureRevision_ = 0;
};
