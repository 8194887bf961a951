#pragma once
// Helpers shared by the pixmap tests.
#include <memory>

#include "scan/pixmap_pixmap.h"
#include "support/message_capture.h"

// Owns a pixmap for the length of a test.
struct PixmapDeleter {
    void operator()(LMV_pixmap *p) const { release_pixmap(p); }
};
using PixmapHolder = std::unique_ptr<LMV_pixmap, PixmapDeleter>;
