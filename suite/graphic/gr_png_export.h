#pragma once
// A composite drawing rendered for previews: the field on white, keeping its
// proportions and centred in the image, y up in the world being up in the
// picture. Line art is filled even-odd per layer and colour, as in the SVG;
// colour-art strokes are thin lines.
#include <QImage>
#include <QSize>
#include <QString>

#include "suite/graphic/gr_composite_drawing.h"

// A null image for an empty size or one too large to allocate.
QImage GR_RenderDrawing(const GR_CompositeVectorDrawingObj &drawing, QSize pixels);
// Renders and writes a PNG to `path` through a temporary file; false with
// `error` naming the path on failure, an earlier file staying as it was.
bool GR_WritePng(const GR_CompositeVectorDrawingObj &drawing, const QString &path, QSize pixels,
                 QString *error = nullptr);
