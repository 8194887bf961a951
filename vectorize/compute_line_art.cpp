#include "vectorize/compute_line_art.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "suite/graphic/bm_util.h"
#include "suite/graphic/gr_bezier_path_operator.h"
#include "vectorize/gr_bitmap2vector.h"
#include "vectorize/peg_info.h"
#include "vectorize/threshold_bitmap.h"
#include "vectorize/vectorize_trace.h"

namespace {

// Whether a closed outline is kept: a blob of ink (ink inside) is dirt below
// `dirtArea`, a hole in the ink below `holeArea`. Side 0 lies to the right of
// the path, so ink on side 0 with a clockwise (negative) area is inside.
bool keepOutline(const GR_StrokeData &stroke, double area, double holeArea, double dirtArea) {
    const double size = std::fabs(area);
    if (stroke.Color(0)) {
        if (area < 0 && size < dirtArea) return false;
        if (area > 0 && size < holeArea) return false;
    } else if (stroke.Color(1)) {
        if (area < 0 && size < holeArea) return false;
        if (area > 0 && size < dirtArea) return false;
    }
    return true;
}

}  // namespace

CM_TexturePtr ComputeLineArt(GR_DrawingAccess &access, std::unique_ptr<BM_GreyMap> &bitmap, double threshold,
                             bool texture, int textureDownscale, const Math::Matrix2x3 &matrix, double holeArea,
                             double dirtArea, const PegInfo &pegInfo, int jagFilter, int expand, bool erode,
                             int firstSmooth, const QString &textureName, const VectorizeColorKey &key) {
    vectorizeTrace("ComputeLineArt: th: %f texture: %d ds: %d holet: %f dirtt: %f exp: %d color: %d\n", threshold,
                   int(texture), textureDownscale, holeArea, dirtArea, expand, int(key.colorId));
    GR_PaletteInfo &paletteInfo = access.colorDict().paletteInfo();
    CColorList colors;
    colors.set(1, std::make_shared<const GR_Color>(key.colorId, Math::Matrix2x3(), -1, Math::Matrix2x3()));

    BM_MaskMap mask;
    const Math::Box2d &outer = pegInfo.picture_box, &pegBox = pegInfo.peg_box;
    vectorizeTrace("Thresholding bitmap... %f %f -> %f %f\n", outer.x0, outer.y0, outer.x1, outer.y1);
    const auto level = static_cast<uint8_t>(std::clamp(threshold * 255.0, 0.0, 255.0));
    const bool twoValued = thresholdBitmap(*bitmap, mask, level, outer, pegBox, jagFilter, expand, erode);
    if (twoValued && texture) {
        vectorizeTrace("Forcing no texture because the drawing is B&W\n");
        texture = false;
    }

    vectorizeTrace("Vectorizing bitmap...\n");
    std::vector<GR_StrokeData> strokes = GR_Bitmap2Vector<BM_Pixel1>(mask, colors).run();
    vectorizeTrace("... Vectorizing bitmap done %d strokes\n", int(strokes.size()));
    mask = BM_MaskMap();

    const int width = bitmap->width(), height = bitmap->height();
    Math::Matrix2x3 textureMatrix;
    textureMatrix.Scale(width, height);
    int64_t textureId = -1;
    CM_TexturePtr made;
    if (!texture) {
        if (key.texture) textureId = key.texture->id;
        else textureMatrix = Math::Matrix2x3();
    } else {
        if (textureDownscale > 1) {
            const int w = std::max(width / textureDownscale, 1), h = std::max(height / textureDownscale, 1);
            *bitmap = BM_Util::FastResize(*bitmap, w, h);
            vectorizeTrace("Downscaled texture from %dx%d to %dx%d\n", width, height, w, h);
        }
        made = std::make_shared<CM_Texture>(textureName, std::move(*bitmap));
        bitmap.reset();
        textureId = paletteInfo.addLocalColor(made);
    }

    std::map<const GR_Color *, GR_ColorPtr> moved;
    auto move = [&](const GR_ColorPtr &old) -> GR_ColorPtr {
        if (!old) return nullptr;
        GR_ColorPtr &copy = moved[old.get()];
        if (!copy) copy = GR_Color(old->colorId(), old->colorMatrix(), textureId, textureMatrix).CopyMovedVersion(matrix);
        return copy;
    };

    std::vector<GR_StrokeData> kept;
    kept.reserve(strokes.size());
    for (GR_StrokeData &stroke : strokes) {
        for (Math::Point2d &p : stroke.path().points()) p = matrix.Apply(Math::Point2d{p.x, height - p.y});
        const double area = stroke.path().GetPolygonArea();
        stroke.SetColor(0, move(stroke.Color(0)));
        stroke.SetColor(1, move(stroke.Color(1)));
        if (stroke.isClosed() && !keepOutline(stroke, area, holeArea, dirtArea)) continue;
        if (firstSmooth != 0) GR_BezierPath2dOperator::Smooth(stroke.path(), firstSmooth, true);
        kept.push_back(std::move(stroke));
    }

    vectorizeTrace("Creating layer with %d strokes\n", int(kept.size()));
    access.BeginOperations();
    if (key.layerUnder) access.CreateLayerUnder(std::move(kept), GR_Layer::kDrawingLayer);
    else access.CreateLayerAbove(std::move(kept), GR_Layer::kDrawingLayer);
    access.EndOperations();
    return made;
}
