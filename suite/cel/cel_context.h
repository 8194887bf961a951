#pragma once
// How a file is to be read. The station always reads whole images at their
// own size; indexed images are expanded to colour by the reader itself, so
// the palette folder is carried for callers that want to know it.
#include <QString>

struct CEL_Context {
    CEL_Context() = default;
    CEL_Context(bool fullImage, bool thumbnail, bool keepPalette, QString paletteFolder,
                int frame, QString layer, double scale)
        : fullImage(fullImage), thumbnail(thumbnail), keepPalette(keepPalette),
          paletteFolder(std::move(paletteFolder)), frame(frame), layer(std::move(layer)), scale(scale)
    {
    }
    bool fullImage = true;
    bool thumbnail = false;
    bool keepPalette = false;
    QString paletteFolder;
    int frame = 0;
    QString layer;
    double scale = 1.0;
};
