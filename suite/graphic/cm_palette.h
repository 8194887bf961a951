#pragma once
// Palettes: named lists of colours that strokes refer to by id, and textures
// (grey pictures that keep the pencil's shading inside strokes).
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/gr_color.h"

struct CM_Color {
    uint64_t id = 0;
    QString name;
    std::array<uint8_t, 4> rgba{0, 0, 0, 255};
    friend bool operator==(const CM_Color &, const CM_Color &) = default;
};

// A grey picture, 0 for white paper and 255 for full ink; id -1 until a
// palette info takes it.
struct CM_Texture {
    CM_Texture(QString name, BM_GreyMap pixels) : name(std::move(name)), pixels(std::move(pixels)) {}
    int64_t id = -1;
    QString name;
    BM_GreyMap pixels;
};
using CM_TexturePtr = std::shared_ptr<CM_Texture>;

class CM_Palette {
public:
    // `idValue` tells palettes apart in a list (the keying palette is -1);
    // `pathName` is where the palette lives, empty for one kept in memory.
    CM_Palette(QString name, int64_t idValue = 0, QString pathName = {})
        : name_(std::move(name)), pathName_(std::move(pathName)), idValue_(idValue) {}

    const QString &name() const { return name_; }
    const QString &pathName() const { return pathName_; }
    int64_t idValue() const { return idValue_; }
    const std::vector<CM_Color> &colors() const { return colors_; }
    const CM_Color *find(uint64_t id) const;
    // Adds the colour, or replaces the one of the same id.
    void LoadDefaultColor(const QString &name, uint64_t id, uint8_t r, uint8_t g, uint8_t b, uint8_t a);
    void add(const CM_Color &color) { LoadDefaultColor(color.name, color.id, color.rgba[0], color.rgba[1], color.rgba[2], color.rgba[3]); }

private:
    QString name_, pathName_;
    int64_t idValue_ = 0;
    std::vector<CM_Color> colors_;
};
using CM_PalettePtr = std::shared_ptr<CM_Palette>;

// The palettes a drawing uses, searched first to last.
class CM_PaletteList {
public:
    // The ink of a vectorized drawing when no other is asked for.
    static constexpr uint64_t kLineColorId = 3;

    // An empty list.
    CM_PaletteList() = default;
    // A list of one palette, "Default", holding the black "Vectorized Line"
    // under id 3.
    static std::shared_ptr<CM_PaletteList> makeDefault();

    int count() const { return static_cast<int>(palettes_.size()); }
    const CM_PalettePtr &palette(int i) const { return palettes_[static_cast<size_t>(i)]; }
    void insert(int position, CM_PalettePtr palette);
    void append(CM_PalettePtr palette) { insert(count(), std::move(palette)); }
    const CM_Color *findColor(uint64_t id) const;

private:
    std::vector<CM_PalettePtr> palettes_;
};
using CM_PaletteListPtr = std::shared_ptr<CM_PaletteList>;

// The colours an edge follower hands to strokes, by pixel value: index 1 is
// the ink of a two-valued bitmap, a 24-bit value a colour of an index bitmap.
class CColorList {
public:
    void set(uint32_t index, GR_ColorPtr color) { colors_[index] = std::move(color); }
    // Null for an index that has no colour.
    GR_ColorPtr at(uint32_t index) const {
        const auto it = colors_.find(index);
        return it == colors_.end() ? nullptr : it->second;
    }

private:
    std::unordered_map<uint32_t, GR_ColorPtr> colors_;
};
