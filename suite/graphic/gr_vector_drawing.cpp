#include "suite/graphic/gr_vector_drawing.h"

#include <algorithm>

Math::Box2d GR_Layer::boundingBox() const {
    if (boxRevision_ != revision_) {
        box_.clear();
        for (const GR_StrokeData &s : strokes_)
            for (const Math::Point2d &p : s.path().points()) box_.add(p);
        boxRevision_ = revision_;
    }
    return box_;
}

bool GR_DrawingBase::UpdateModificationFlags() {
    const uint64_t now = contentRevision();
    if (now != seenRevision_) {
        seenRevision_ = now;
        modified_ = true;
    }
    return modified_;
}

GR_Layer *GR_VectorDrawingObj::findLayer(uint64_t id) const {
    for (const auto &l : layers_)
        if (l->id() == id) return l.get();
    return nullptr;
}

int GR_VectorDrawingObj::indexOf(const GR_Layer *layer) const {
    for (size_t i = 0; i < layers_.size(); ++i)
        if (layers_[i].get() == layer) return static_cast<int>(i);
    return -1;
}

int GR_VectorDrawingObj::strokeCount() const {
    int n = 0;
    for (const auto &l : layers_) n += l->strokeCount();
    return n;
}

Math::Box2d GR_VectorDrawingObj::boundingBox() const {
    Math::Box2d box;
    for (const auto &l : layers_) {
        const Math::Box2d b = l->boundingBox();
        if (!b.isEmpty()) {
            box.add({b.x0, b.y0});
            box.add({b.x1, b.y1});
        }
    }
    return box;
}

GR_Layer *GR_VectorDrawingObj::insertLayer(int position, int type, std::vector<GR_StrokeData> strokes) {
    auto layer = std::make_unique<GR_Layer>(nextId_++, type, std::move(strokes));
    GR_Layer *raw = layer.get();
    placeLayer(position, std::move(layer));
    return raw;
}

std::unique_ptr<GR_Layer> GR_VectorDrawingObj::takeLayer(int position) {
    if (position < 0 || position >= layerCount()) return nullptr;
    auto layer = std::move(layers_[static_cast<size_t>(position)]);
    layers_.erase(layers_.begin() + position);
    ++structureRevision_;
    return layer;
}

void GR_VectorDrawingObj::placeLayer(int position, std::unique_ptr<GR_Layer> layer) {
    position = std::clamp(position, 0, layerCount());
    nextId_ = std::max(nextId_, layer->id() + 1);
    layers_.insert(layers_.begin() + position, std::move(layer));
    ++structureRevision_;
}

uint64_t GR_VectorDrawingObj::contentRevision() const {
    uint64_t sum = structureRevision_ << 32;
    for (const auto &l : layers_) sum += l->revision() + l->id();
    return sum;
}
