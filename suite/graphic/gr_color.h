#pragma once
// What fills one side of a stroke: a colour of the palettes by id, and
// optionally a texture by id. The colour matrix places a gradient or pattern,
// the texture matrix maps the texture's unit square (u to the right, v upward,
// v = 0 at the texture's last row) into world units.
#include <cstdint>
#include <memory>

#include "suite/graphic/math_matrix2x3.h"

class GR_Color {
public:
    GR_Color() = default;
    GR_Color(uint64_t colorId, const Math::Matrix2x3 &colorMatrix, int64_t textureId,
             const Math::Matrix2x3 &textureMatrix)
        : colorId_(colorId), textureId_(textureId), colorMatrix_(colorMatrix), textureMatrix_(textureMatrix) {}

    uint64_t colorId() const { return colorId_; }
    int64_t textureId() const { return textureId_; }  // -1: none
    const Math::Matrix2x3 &colorMatrix() const { return colorMatrix_; }
    const Math::Matrix2x3 &textureMatrix() const { return textureMatrix_; }

    // The same colour on a drawing moved by `move`: both matrices are
    // followed by it.
    std::shared_ptr<const GR_Color> CopyMovedVersion(const Math::Matrix2x3 &move) const {
        return std::make_shared<const GR_Color>(colorId_, move * colorMatrix_, textureId_, move * textureMatrix_);
    }

    friend bool operator==(const GR_Color &, const GR_Color &) = default;

private:
    uint64_t colorId_ = 0;
    int64_t textureId_ = -1;
    Math::Matrix2x3 colorMatrix_;
    Math::Matrix2x3 textureMatrix_;
};

using GR_ColorPtr = std::shared_ptr<const GR_Color>;

// How a stroke is drawn. Type 0 is an outline with no line of its own (the
// edge of an ink area), type 2 a pen line of `thickness` world units.
struct GR_LineStyle {
    int type = 0;
    double thickness = 0.0;
    friend bool operator==(const GR_LineStyle &, const GR_LineStyle &) = default;
};
