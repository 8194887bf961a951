#pragma once
// The vectorizer: one picture in, one composite vector drawing out.
#include <QString>

#include <cstdint>
#include <memory>

#include "suite/cel/cel_pixmap.h"
#include "suite/graphic/gr_composite_drawing.h"
#include "suite/graphic/math_matrix2x3.h"

class TUPix2vecOptions;
class GR_DrawingAccess;

// Where the picture came from: a scan file brings its scan information,
// which the peg geometry reads; any other picture is taken at its size.
struct VectorizeScanFields {
    bool fromScanFile = false;
    int32_t fileType = 0;
    QString scanInfo;
    QString fileName;  // for the scan information of a plain picture
    bool isStdin = false;
    uint16_t width = 0, height = 0;
};

// The option that asks for a stage this build does not have ("-rgb", ...),
// or empty when every stage the options ask for is here.
QString unavailableVectorizeStage(const TUPix2vecOptions &options);

// Runs the stages the options ask for, in their order. `image` may be
// replaced by a downscaled one. Null when `image` is null, when
// registration failed (options.registrationFailed is then set), or when a
// stage is not available (see unavailableVectorizeStage). `drawing`, when
// given, is filled and returned; it is destroyed on failure.
std::unique_ptr<GR_CompositeVectorDrawingObj> VectorizeDrawing(
    TUPix2vecOptions &options, CEL_PixmapPtr &image, CEL_PixmapPtr colourImage, VectorizeScanFields scan,
    const QString &textureName, Math::Matrix2x3 &matrixOut,
    std::unique_ptr<GR_CompositeVectorDrawingObj> drawing = nullptr);

// A frame of `fieldSize` fields (or as the options say) on a new layer of the
// current drawing, under its former top layer; open on the left so that it
// closes no region.
void FrameColorArt(const TUPix2vecOptions &options, GR_DrawingAccess &access, double fieldSize);
