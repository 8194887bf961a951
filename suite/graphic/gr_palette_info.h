#pragma once
// The colours a drawing can use: its palette list and the textures it carries
// itself. A colour dictionary answers a colour id or texture id with what to
// paint.
#include <memory>
#include <vector>

#include "suite/graphic/cm_palette.h"

class GR_PaletteInfo {
public:
    GR_PaletteInfo() : paletteList_(CM_PaletteList::makeDefault()) {}

    const CM_PaletteListPtr &paletteList() const { return paletteList_; }
    void setPaletteList(CM_PaletteListPtr list) { paletteList_ = std::move(list); }

    // Takes the texture into the drawing and gives it the next free id,
    // which it returns.
    int64_t addLocalColor(const CM_TexturePtr &texture);
    // Takes the texture with the id it has (a drawing being read back).
    void addLocalColorKeepingId(CM_TexturePtr texture) { textures_.push_back(std::move(texture)); }
    const std::vector<CM_TexturePtr> &textures() const { return textures_; }
    // Drops the texture of that id, when no stroke uses it any more.
    void removeLocalColor(int64_t id);
    const CM_Texture *texture(int64_t id) const;

private:
    CM_PaletteListPtr paletteList_;
    std::vector<CM_TexturePtr> textures_;
};

class GR_ColorDict {
public:
    explicit GR_ColorDict(GR_PaletteInfo &info) : info_(info) {}
    GR_PaletteInfo &paletteInfo() const { return info_; }
    // Null for an id no palette knows.
    const CM_Color *color(uint64_t id) const { return info_.paletteList()->findColor(id); }

private:
    GR_PaletteInfo &info_;
};
