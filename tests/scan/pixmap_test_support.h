#pragma once
// Helpers shared by the pixmap tests.
#include <memory>
#include <string>

#include "scan/pixmap_pixmap.h"
#include "support/message_capture.h"

// Owns a pixmap for the length of a test.
struct PixmapDeleter {
    void operator()(LMV_pixmap *p) const { release_pixmap(p); }
};
using PixmapHolder = std::unique_ptr<LMV_pixmap, PixmapDeleter>;

// The internal assertions logged while the capture lived.
inline int assertion_count(const MessageCapture &capture)
{
    int n = 0;
    for (const auto &line : capture.lines())
        n += line.second.starts_with("Internal assertion error detected (");
    return n;
}
