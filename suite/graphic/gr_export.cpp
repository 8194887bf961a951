#include "suite/graphic/gr_export.h"

#include <QDir>
#include <QSaveFile>

#include <algorithm>

std::optional<GR_Rgba> GR_StrokeRgba(const GR_StrokeData &stroke, const GR_PaletteInfo &info) {
    const GR_ColorPtr &color = stroke.Color(0) ? stroke.Color(0) : stroke.Color(1);
    if (!color) return std::nullopt;
    const CM_PaletteListPtr &list = info.paletteList();
    const CM_Color *known = list ? list->findColor(color->colorId()) : nullptr;
    return known ? known->rgba : GR_Rgba{0, 0, 0, 255};
}

std::vector<GR_ColorGroup> GR_GroupByColor(const GR_Layer &layer, const GR_PaletteInfo &info) {
    std::vector<GR_ColorGroup> groups;
    for (const GR_StrokeData &stroke : layer.strokes()) {
        const std::optional<GR_Rgba> rgba = GR_StrokeRgba(stroke, info);
        if (!rgba || stroke.path().pointCount() < 2) continue;
        auto group = std::find_if(groups.begin(), groups.end(), [&](const GR_ColorGroup &g) { return g.rgba == *rgba; });
        if (group == groups.end()) group = groups.insert(groups.end(), GR_ColorGroup{*rgba, {}});
        group->paths.push_back(&stroke.path());
    }
    return groups;
}

bool GR_WriteWhole(const QString &path, const std::function<bool(QIODevice &)> &write, QString *error) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && write(file) && file.commit()) return true;
    if (error) *error = QStringLiteral("Cannot write %1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
    return false;
}
