#include "suite/graphic/gr_drawing_access.h"

#include <algorithm>

void GR_DrawingAccess::SetCurrentDrawing(GR_VectorDrawingObj *drawing) {
    flush();
    drawing_ = drawing;
    if (drawing_) drawing_->UpdateModificationFlags();
}

void GR_DrawingAccess::EndOperations() {
    if (depth_ > 0 && --depth_ == 0) flush();
}

GR_Layer *GR_DrawingAccess::CreateLayerAbove(std::vector<GR_StrokeData> strokes, int type) {
    if (!drawing_) return nullptr;
    GR_Layer *layer = drawing_->insertLayer(drawing_->layerCount(), type, std::move(strokes));
    record(GR_DrawingChange::LayerCreated, layer->id());
    return layer;
}

GR_Layer *GR_DrawingAccess::CreateLayerUnder(std::vector<GR_StrokeData> strokes, int type) {
    if (!drawing_) return nullptr;
    GR_Layer *layer = drawing_->insertLayer(0, type, std::move(strokes));
    record(GR_DrawingChange::LayerCreated, layer->id());
    return layer;
}

void GR_DrawingAccess::Merge(GR_Layer *into, GR_Layer *from) {
    if (!drawing_ || into == from || drawing_->indexOf(into) < 0 || drawing_->indexOf(from) < 0) return;
    std::vector<GR_StrokeData> &target = into->modify();
    std::vector<GR_StrokeData> &source = from->modify();
    target.insert(target.end(), std::make_move_iterator(source.begin()), std::make_move_iterator(source.end()));
    source.clear();
    record(GR_DrawingChange::LayerModified, into->id());
    Erase(from);
}

void GR_DrawingAccess::Move(GR_Layer *layer, int position) {
    const int from = drawing_ ? drawing_->indexOf(layer) : -1;
    if (from < 0) return;
    auto owned = drawing_->takeLayer(from);
    drawing_->placeLayer(position, std::move(owned));
    record(GR_DrawingChange::LayerMoved, layer->id());
}

void GR_DrawingAccess::Erase(GR_Layer *layer) {
    const int at = drawing_ ? drawing_->indexOf(layer) : -1;
    if (at < 0) return;
    const uint64_t id = layer->id();
    drawing_->takeLayer(at);
    record(GR_DrawingChange::LayerErased, id);
}

void GR_DrawingAccess::EraseAll() {
    while (drawing_ && drawing_->layerCount() > 0) Erase(drawing_->topLayer());
}

void GR_DrawingAccess::Modify(GR_Layer *layer, const std::function<void(std::vector<GR_StrokeData> &)> &change) {
    if (!drawing_ || drawing_->indexOf(layer) < 0) return;
    change(layer->modify());
    record(GR_DrawingChange::LayerModified, layer->id());
}

void GR_DrawingAccess::AddListener(GR_DrawingListener *listener) {
    if (std::find(listeners_.begin(), listeners_.end(), listener) == listeners_.end()) listeners_.push_back(listener);
}

void GR_DrawingAccess::RemoveListener(GR_DrawingListener *listener) {
    listeners_.erase(std::remove(listeners_.begin(), listeners_.end(), listener), listeners_.end());
}

void GR_DrawingAccess::record(GR_DrawingChange::Kind kind, uint64_t layerId) {
    pending_.push_back({kind, layerId});
    drawing_->setModified();
    if (depth_ == 0) flush();
}

void GR_DrawingAccess::flush() {
    if (pending_.empty() || !drawing_) return;
    std::vector<GR_DrawingChange> changes;
    changes.swap(pending_);
    // A copy: a listener may add or remove listeners while it is told.
    const std::vector<GR_DrawingListener *> listeners = listeners_;
    for (GR_DrawingListener *l : listeners) l->DrawingChanged(*drawing_, changes);
}
