#pragma once
// An open libtiff file that keeps its own messages: libtiff's errors and
// warnings for this handle are collected here instead of going to standard
// error, so a broken file becomes a plain error text for the caller.
#include <QString>

#include <cstdint>
#include <tiffio.h>

namespace celio {

// Private tag that carries the comment's exact bytes (ImageDescription stops
// at the first NUL and is ASCII by definition).
constexpr ttag_t kCommentTag = 65117;

class TiffHandle {
public:
    // `mode` as for TIFFOpen ("r", "w", "w8").
    TiffHandle(const QString &path, const char *mode);
    ~TiffHandle();
    TiffHandle(const TiffHandle &) = delete;
    TiffHandle &operator=(const TiffHandle &) = delete;

    TIFF *get() const { return tif_; }
    explicit operator bool() const { return tif_ != nullptr; }
    // Closes the file now; false when libtiff reported an error at any time.
    bool close();

    // An error, or a warning that part of the file could not be read (libtiff
    // skips an unreadable tag with only a warning; that is a cut-off file).
    bool failed() const { return !firstError_.isEmpty(); }
    // The first error libtiff reported on this handle, or `fallback`.
    QString error(const QString &fallback) const { return failed() ? firstError_ : fallback; }

private:
    static int onError(TIFF *, void *self, const char *module, const char *fmt, va_list ap);
    static int onWarning(TIFF *, void *self, const char *module, const char *fmt, va_list ap);

    TIFF *tif_ = nullptr;
    QString firstError_;
};

}  // namespace celio
