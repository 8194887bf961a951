#pragma once
// The line art of an ink bitmap: one layer of closed outlines, ink on the
// side that faces it, with dirt and holes below given areas removed and,
// optionally, the grey of the ink kept as a texture.
#include <QString>

#include <cstdint>
#include <memory>

#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/cm_palette.h"
#include "suite/graphic/gr_drawing_access.h"
#include "suite/graphic/math_matrix2x3.h"

class PegInfo;

// What a call colours its strokes with and where its layer goes.
struct VectorizeColorKey {
    CM_PalettePtr palette;
    CM_PaletteListPtr paletteList;
    double dirtArea = 0.0;
    CM_TexturePtr texture;  // a texture to reuse
    bool layerUnder = false;
    uint64_t colorId = CM_PaletteList::kLineColorId;
};

// `bitmap`: 8-bit ink values (ink high), y down; changed in place, and taken
// (left null) when it becomes the texture. `threshold` 0 to 1; `matrix` maps
// pixels (y up, row r at height - r) to world units; areas in world units
// squared; `jagFilter` and `expand` in pixels; `firstSmooth` in passes.
// Adds the layer to the access object's current drawing and returns the
// texture made, or null.
CM_TexturePtr ComputeLineArt(GR_DrawingAccess &access, std::unique_ptr<BM_GreyMap> &bitmap, double threshold,
                             bool texture, int textureDownscale, const Math::Matrix2x3 &matrix, double holeArea,
                             double dirtArea, const PegInfo &pegInfo, int jagFilter, int expand, bool erode,
                             int firstSmooth, const QString &textureName, const VectorizeColorKey &key);
