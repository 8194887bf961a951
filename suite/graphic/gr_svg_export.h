#pragma once
// A composite drawing as SVG, for browsers and other programs. What tools
// rely on: the viewBox frames the drawing's field in world units; one top
// group carries the only transform, scale(1,-1), so every coordinate in the
// path data is in world units with y up; path data has only absolute M, L, C
// and Z. The colour art is in <g id="colour-art">, under the line art in
// <g id="line-art">, which holds one even-odd filled <path> per layer and
// colour.
#include <QByteArray>
#include <QString>

#include "suite/graphic/gr_composite_drawing.h"

QByteArray GR_SvgExport(const GR_CompositeVectorDrawingObj &drawing);
// Writes the SVG to `path` through a temporary file; false with `error`
// naming the path on failure, an earlier file staying as it was.
bool GR_WriteSvg(const GR_CompositeVectorDrawingObj &drawing, const QString &path, QString *error = nullptr);
