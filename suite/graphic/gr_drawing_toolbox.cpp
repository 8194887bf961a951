#include "suite/graphic/gr_drawing_toolbox.h"

#include "suite/graphic/gr_bezier_fit.h"

void GR_DrawingToolbox::UpgradeBeziers(GR_DrawingAccess &access, double fitError, int fitDegree, bool keepEnds,
                                       int smoothPasses, bool pencil) {
    GR_VectorDrawingObj *drawing = access.CurrentDrawing();
    if (!drawing) return;
    GR_FitOptions options;
    options.maxError = fitError;
    options.degree = fitDegree == 1 ? 1 : 3;
    options.cornerAngle = pencil ? GR_FitOptions::kPencilCornerAngle : GR_FitOptions::kInkCornerAngle;
    options.smoothPasses = std::max(0, smoothPasses);
    options.smoothEnds = !keepEnds;
    GR_BezierFitter fitter;
    access.BeginOperations();
    for (int i = 0; i < drawing->layerCount(); ++i) {
        access.Modify(drawing->layer(i), [&](std::vector<GR_StrokeData> &strokes) {
            for (GR_StrokeData &stroke : strokes)
                if (stroke.path().degree() == 1) stroke.path() = fitter.Fit(stroke.path(), options);
        });
    }
    access.EndOperations();
}
