#include "suite/graphic/cm_palette.h"

#include <algorithm>

const CM_Color *CM_Palette::find(uint64_t id) const {
    const auto it = std::find_if(colors_.begin(), colors_.end(), [id](const CM_Color &c) { return c.id == id; });
    return it == colors_.end() ? nullptr : &*it;
}

void CM_Palette::LoadDefaultColor(const QString &name, uint64_t id, uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
    CM_Color color{id, name, {r, g, b, a}};
    const auto it = std::find_if(colors_.begin(), colors_.end(), [id](const CM_Color &c) { return c.id == id; });
    if (it != colors_.end()) *it = std::move(color);
    else colors_.push_back(std::move(color));
}

std::shared_ptr<CM_PaletteList> CM_PaletteList::makeDefault() {
    auto list = std::make_shared<CM_PaletteList>();
    auto palette = std::make_shared<CM_Palette>(QStringLiteral("Default"));
    palette->LoadDefaultColor(QStringLiteral("Vectorized Line"), kLineColorId, 0, 0, 0, 255);
    list->append(std::move(palette));
    return list;
}

void CM_PaletteList::insert(int position, CM_PalettePtr palette) {
    position = std::clamp(position, 0, count());
    palettes_.insert(palettes_.begin() + position, std::move(palette));
}

const CM_Color *CM_PaletteList::findColor(uint64_t id) const {
    for (const CM_PalettePtr &p : palettes_)
        if (const CM_Color *c = p->find(id)) return c;
    return nullptr;
}
