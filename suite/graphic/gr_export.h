#pragma once
// What the SVG and PNG exports share: the colour a stroke paints, a layer's
// strokes gathered by colour, a path walked segment by segment, and files
// written whole or not at all.
#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "suite/graphic/gr_layer.h"
#include "suite/graphic/gr_palette_info.h"

class QIODevice;

using GR_Rgba = std::array<uint8_t, 4>;

// What a stroke paints: the colour of its first set slot (an outline has ink
// on one side and nothing on the other), looked up in the palettes. None when
// neither slot is set. An id no palette knows paints black, so that a
// drawing with a lost palette still shows its lines.
std::optional<GR_Rgba> GR_StrokeRgba(const GR_StrokeData &stroke, const GR_PaletteInfo &info);

// The strokes of one layer that paint one colour, in drawing order. Filled
// together even-odd, the holes of an outline stay open.
struct GR_ColorGroup {
    GR_Rgba rgba;
    std::vector<const GR_BezierPath2d *> paths;
};
// The groups of a layer in the order their colours first appear; strokes that
// paint nothing and paths of fewer than two points are left out, so an empty
// layer gives no group.
std::vector<GR_ColorGroup> GR_GroupByColor(const GR_Layer &layer, const GR_PaletteInfo &info);

// Calls sink.moveTo(p), lineTo(p), cubicTo(c1, c2, p) and close() along the
// path. A degree-3 path gives its cubics; points left over after the last
// whole cubic, and every point of a polyline, give lines. A closed path ends
// with close(); a closed polyline leaves out its last point, which close()
// returns to.
template <class Sink>
void GR_WalkPath(const GR_BezierPath2d &path, Sink &sink) {
    const std::vector<Math::Point2d> &p = path.points();
    if (p.empty()) return;
    const bool closed = path.isClosed();
    sink.moveTo(p[0]);
    size_t i = 1;
    if (path.degree() == 3)
        for (; i + 2 < p.size(); i += 3) sink.cubicTo(p[i], p[i + 1], p[i + 2]);
    const size_t end = closed && i == 1 ? p.size() - 1 : p.size();
    for (; i < end; ++i) sink.lineTo(p[i]);
    if (closed) sink.close();
}

// Writes `path` through a temporary file that replaces it only when `write`
// succeeded, so a failed write leaves an earlier file as it was. False with
// `error` naming the path on failure.
bool GR_WriteWhole(const QString &path, const std::function<bool(QIODevice &)> &write, QString *error);
