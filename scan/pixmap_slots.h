#pragma once
// Walks the filled slot of a pixmap with its own leaf type, so that operations
// on "the slot in use" are written once for all four pixel kinds.
#include "scan/pixmap_pixmap.h"

// Calls `fn(slot)` with the first filled slot, in the order RGBA8, RGBA16,
// Matte8, Matte16; `slot` is the pixmap's own shared pointer, so `fn` may
// replace it. Returns false when every slot is empty.
template <class Pixmap, class Fn>
bool visit_filled_slot(Pixmap &pixmap, Fn &&fn)
{
    if (pixmap.rgba8) {
        fn(pixmap.rgba8);
        return true;
    }
    if (pixmap.rgba16) {
        fn(pixmap.rgba16);
        return true;
    }
    if (pixmap.matte8) {
        fn(pixmap.matte8);
        return true;
    }
    if (pixmap.matte16) {
        fn(pixmap.matte16);
        return true;
    }
    return false;
}

// Empties all four slots; the leaves go when their last owner lets go.
inline void clear_slots(LMV_pixmap &pixmap)
{
    pixmap.rgba8.reset();
    pixmap.rgba16.reset();
    pixmap.matte8.reset();
    pixmap.matte16.reset();
}
