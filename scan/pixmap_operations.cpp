// Whole-image operations on a pixmap, each done by the image kernels on the
// slot in use.
#include "scan/pixmap_pixmap.h"

#include <type_traits>

#include "scan/pixmap_slots.h"
#include "suite/base/assertion.h"
#include "suite/cel/cel_algo.h"

void flip_pixmap(LMV_pixmap *pixmap, bool s)
{
    LMV_ASSERT_VOID(pixmap);
    const bool filled = visit_filled_slot(*pixmap, [&](auto &slot) { CelAlgo::preFlip(slot.get(), false, s, !s); });
    LMV_ASSERT_VOID(filled);
}

void scale_pixmap(LMV_pixmap *pixmap, double tx, double ty, int32_t width, int32_t height, double sx, double sy)
{
    LMV_ASSERT_VOID(pixmap);
    CEL_PixmapPtr scaled;
    const bool filled = visit_filled_slot(
        *pixmap, [&](auto &slot) { scaled = CelAlgo::scale(slot.get(), width, height, tx, ty, sx, sy, nullptr); });
    LMV_ASSERT_VOID(filled);
    replace_pixmap(pixmap, scaled, width, height, 1);
}

void stretch_gray_pixmap(LMV_pixmap *pixmap, double black, double white)
{
    LMV_ASSERT_VOID(pixmap);
    visit_filled_slot(*pixmap, [&](auto &slot) {
        using Leaf = std::remove_reference_t<decltype(*slot)>;
        if constexpr (!std::is_same_v<Leaf, CEL_PixmapMatte8>) {
            auto grey = UT_makeShared<CEL_PixmapMatte8>(*slot);
            slot.reset();
            pixmap->matte8 = std::move(grey);
        }
    });
    LMV_ASSERT_VOID(pixmap->matte8);
    CelAlgo::stretchGrayPixmap(pixmap->matte8.get(), black, white);
}

void image_of_pixmap(const LMV_pixmap *pixmap, QImage *image)
{
    LMV_ASSERT_VOID(pixmap && image);
    const bool filled = visit_filled_slot(*pixmap, [&](const auto &slot) {
        using Leaf = std::remove_cvref_t<decltype(*slot)>;
        if constexpr (std::is_same_v<Leaf, CEL_PixmapMatte8>)
            *image = CEL_Util::getGrayScaleImage(slot.get());
        else
            *image = slot->getImage();
    });
    LMV_ASSERT_VOID(filled);
}
