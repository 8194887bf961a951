#include "suite/graphic/gr_palette_info.h"

#include <algorithm>

int64_t GR_PaletteInfo::addLocalColor(const CM_TexturePtr &texture) {
    int64_t next = 1;
    for (const CM_TexturePtr &t : textures_) next = std::max(next, t->id + 1);
    texture->id = next;
    textures_.push_back(texture);
    return next;
}

const CM_Texture *GR_PaletteInfo::texture(int64_t id) const {
    for (const CM_TexturePtr &t : textures_)
        if (t->id == id) return t.get();
    return nullptr;
}

void GR_PaletteInfo::removeLocalColor(int64_t id) {
    textures_.erase(std::remove_if(textures_.begin(), textures_.end(),
                                   [id](const CM_TexturePtr &t) { return t->id == id; }),
                    textures_.end());
}
