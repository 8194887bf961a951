#pragma once
// A layer of a drawing: strokes drawn in order, bottom first. Type 2 is a
// drawing layer. Every change of the strokes goes through modify(), which
// counts a revision: what is derived from the strokes (a bounding box now,
// the joints and regions of the colour art later) is kept with the revision
// it was computed at and recomputed when that is out of date.
#include <cstdint>
#include <utility>
#include <vector>

#include "suite/graphic/gr_stroke.h"

class GR_Layer {
public:
    static constexpr int kDrawingLayer = 2;

    GR_Layer(uint64_t id, int type, std::vector<GR_StrokeData> strokes)
        : id_(id), type_(type), strokes_(std::move(strokes)) {}

    // Unique in its drawing, kept for the drawing's life.
    uint64_t id() const { return id_; }
    int type() const { return type_; }
    int strokeCount() const { return static_cast<int>(strokes_.size()); }
    const GR_StrokeData &stroke(int i) const { return strokes_[static_cast<size_t>(i)]; }
    const std::vector<GR_StrokeData> &strokes() const { return strokes_; }
    uint64_t revision() const { return revision_; }

    // Write access to the strokes; the caller changes them before the next
    // read of anything derived.
    std::vector<GR_StrokeData> &modify() {
        ++revision_;
        return strokes_;
    }
    Math::Box2d boundingBox() const;

private:
    uint64_t id_;
    int type_;
    std::vector<GR_StrokeData> strokes_;
    uint64_t revision_ = 1;
    mutable uint64_t boxRevision_ = 0;
    mutable Math::Box2d box_;
};
