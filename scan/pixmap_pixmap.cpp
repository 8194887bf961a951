// The pixmap record: its life and its four slots.
#include "scan/pixmap_pixmap.h"

#include "scan/pixmap_slots.h"
#include "suite/base/assertion.h"

namespace {

template <class Leaf>
void fill_new_leaf(UT_SharePtr<Leaf> &slot, int32_t width, int32_t height)
{
    slot = UT_makeShared<Leaf>(width, height);
}

template <class Leaf>
LMV_pixmap *wrap_leaf(UT_SharePtr<Leaf> LMV_pixmap::*slot, const UT_SharePtr<Leaf> &leaf, int32_t width,
                      int32_t height, uint8_t owns_data)
{
    auto *pixmap = new LMV_pixmap;
    pixmap->*slot = leaf;
    pixmap->width = width;
    pixmap->height = height;
    pixmap->owns_data = owns_data;
    return pixmap;
}

template <class Leaf>
void set_block(LMV_pixmap *pixmap, UT_SharePtr<Leaf> LMV_pixmap::*slot, std::unique_ptr<typename Leaf::Pixel[]> pixels,
               int32_t width, int32_t height, uint8_t owns_data)
{
    LMV_ASSERT_VOID(pixmap);
    clear_slots(*pixmap);
    auto leaf = UT_makeShared<Leaf>();
    leaf->setData(std::move(pixels), width, height);
    pixmap->*slot = std::move(leaf);
    pixmap->width = width;
    pixmap->height = height;
    pixmap->owns_data = owns_data;
}

template <class Leaf>
UT_SharePtr<Leaf> deep_copy(const UT_SharePtr<Leaf> &leaf)
{
    return leaf ? UT_makeShared<Leaf>(*leaf) : UT_SharePtr<Leaf>();
}

template <class Leaf>
auto *data_of(const UT_SharePtr<Leaf> &leaf)
{
    return leaf ? leaf->data() : nullptr;
}

} // namespace

LMV_pixmap *create_pixmap(int32_t kind, int32_t width, int32_t height, int32_t x_offset, int32_t y_offset)
{
    auto *pixmap = new LMV_pixmap;
    pixmap->width = width;
    pixmap->height = height;
    pixmap->x_offset = x_offset;
    pixmap->y_offset = y_offset;
    switch (kind) {
    case PIXMAP_RGBA16:
        fill_new_leaf(pixmap->rgba16, width, height);
        break;
    case PIXMAP_RGBA8:
        fill_new_leaf(pixmap->rgba8, width, height);
        break;
    case PIXMAP_MATTE16:
        fill_new_leaf(pixmap->matte16, width, height);
        break;
    case PIXMAP_MATTE8:
        fill_new_leaf(pixmap->matte8, width, height);
        break;
    case PIXMAP_NONE:
        break;
    default:
        // An unknown kind still gives a record, with no pixels.
        LMV_assertion_msg(__FILE__, __LINE__, "known pixmap kind");
        break;
    }
    return pixmap;
}

LMV_pixmap *create_pixmap(int32_t kind, int32_t width, int32_t height)
{
    return create_pixmap(kind, width, height, 0, 0);
}

LMV_pixmap *wrap_rgba8_pixmap(const CEL_PixmapRGBA8Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data)
{
    return wrap_leaf(&LMV_pixmap::rgba8, leaf, width, height, owns_data);
}

LMV_pixmap *wrap_rgba16_pixmap(const CEL_PixmapRGBA16Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data)
{
    return wrap_leaf(&LMV_pixmap::rgba16, leaf, width, height, owns_data);
}

LMV_pixmap *wrap_matte8_pixmap(const CEL_PixmapMatte8Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data)
{
    return wrap_leaf(&LMV_pixmap::matte8, leaf, width, height, owns_data);
}

LMV_pixmap *wrap_matte16_pixmap(const CEL_PixmapMatte16Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data)
{
    return wrap_leaf(&LMV_pixmap::matte16, leaf, width, height, owns_data);
}

void release_pixmap(LMV_pixmap *pixmap)
{
    LMV_ASSERT_VOID(pixmap);
    LMV_ASSERT_VOID(pixmap->ref_count >= 1);
    if (--pixmap->ref_count > 0)
        return;
    clear_slots(*pixmap);
    pixmap->flags = 0;
    delete pixmap;
}

LMV_pixmap *clone_pixmap(const LMV_pixmap *source)
{
    if (!source)
        return nullptr;
    auto *pixmap = new LMV_pixmap;
    pixmap->rgba8 = deep_copy(source->rgba8);
    pixmap->rgba16 = deep_copy(source->rgba16);
    pixmap->matte8 = deep_copy(source->matte8);
    pixmap->matte16 = deep_copy(source->matte16);
    pixmap->width = source->width;
    pixmap->height = source->height;
    pixmap->x_offset = source->x_offset;
    pixmap->y_offset = source->y_offset;
    pixmap->flags = source->flags;
    return pixmap;
}

int32_t type_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, PIXMAP_NONE);
    if (pixmap->rgba16)
        return PIXMAP_RGBA16;
    if (pixmap->rgba8)
        return PIXMAP_RGBA8;
    if (pixmap->matte16)
        return PIXMAP_MATTE16;
    if (pixmap->matte8)
        return PIXMAP_MATTE8;
    return PIXMAP_NONE;
}

CEL_PixmapRGBA8Ptr rgba8_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return pixmap->rgba8;
}

CEL_PixmapRGBA16Ptr rgba16_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return pixmap->rgba16;
}

CEL_PixmapMatte8Ptr matte8_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return pixmap->matte8;
}

CEL_PixmapMatte16Ptr matte16_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return pixmap->matte16;
}

CEL_RGBA8Pixel *rgba8_data_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return data_of(pixmap->rgba8);
}

CEL_RGBA16Pixel *rgba16_data_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return data_of(pixmap->rgba16);
}

uint8_t *matte8_data_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return data_of(pixmap->matte8);
}

uint16_t *matte16_data_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    return data_of(pixmap->matte16);
}

CEL_PixmapPtr best_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, nullptr);
    CEL_PixmapPtr best;
    visit_filled_slot(*pixmap, [&](const auto &slot) { best = slot; });
    return best;
}

void set_rgba8_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<CEL_RGBA8Pixel[]> pixels, int32_t width, int32_t height,
                         uint8_t owns_data)
{
    set_block(pixmap, &LMV_pixmap::rgba8, std::move(pixels), width, height, owns_data);
}

void set_rgba16_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<CEL_RGBA16Pixel[]> pixels, int32_t width, int32_t height,
                          uint8_t owns_data)
{
    set_block(pixmap, &LMV_pixmap::rgba16, std::move(pixels), width, height, owns_data);
}

void set_matte8_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<uint8_t[]> pixels, int32_t width, int32_t height,
                          uint8_t owns_data)
{
    set_block(pixmap, &LMV_pixmap::matte8, std::move(pixels), width, height, owns_data);
}

void set_matte16_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<uint16_t[]> pixels, int32_t width, int32_t height,
                           uint8_t owns_data)
{
    set_block(pixmap, &LMV_pixmap::matte16, std::move(pixels), width, height, owns_data);
}

void replace_pixmap(LMV_pixmap *pixmap, const CEL_PixmapPtr &leaf, int32_t width, int32_t height, uint8_t owns_data)
{
    LMV_ASSERT_VOID(pixmap);
    // The new leaf must be of the kind already held; anything else leaves the
    // pixmap with no pixels rather than with a kind its users don't expect.
    bool same_class = false;
    visit_filled_slot(*pixmap, [&](auto &slot) {
        using Leaf = std::remove_reference_t<decltype(*slot)>;
        auto typed = UT_dynamicCast<Leaf>(leaf);
        clear_slots(*pixmap);
        if (typed) {
            slot = std::move(typed);
            same_class = true;
        }
    });
    LMV_ASSERT_VOID(same_class);
    pixmap->width = width;
    pixmap->height = height;
    pixmap->owns_data = owns_data;
}

int32_t width_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, 0);
    return pixmap->width;
}

int32_t height_of_pixmap(const LMV_pixmap *pixmap)
{
    LMV_ASSERT_RET(pixmap, 0);
    return pixmap->height;
}

void set_size_of_pixmap(LMV_pixmap *pixmap, int32_t width, int32_t height)
{
    LMV_ASSERT_VOID(pixmap);
    pixmap->width = width;
    pixmap->height = height;
}
