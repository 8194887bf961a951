#include "suite/cel/tiff_handle.h"

#include <QFile>

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>

#include "suite/base/lmv_trace.h"

namespace celio {
namespace {

// libtiff's own buffers (strip chopping, compressed strips, tables) never need
// more than this; a claim above it comes from a damaged file.
constexpr tmsize_t kMaxLibtiffAlloc = tmsize_t(512) << 20;

TIFFExtendProc previousExtender = nullptr;

void addCommentTag(TIFF *tif)
{
    static const TIFFFieldInfo info[] = {
        {kCommentTag, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_UNDEFINED, FIELD_CUSTOM, 1, 1,
         const_cast<char *>("ScanComment")},
    };
    TIFFMergeFieldInfo(tif, info, 1);
    if (previousExtender)
        previousExtender(tif);
}

// The extender is process-wide in libtiff; it is installed once, chained to
// whatever was there before.
void installCommentTag()
{
    static std::once_flag once;
    std::call_once(once, [] { previousExtender = TIFFSetTagExtender(addCommentTag); });
}

QString format(const char *module, const char *fmt, va_list ap)
{
    char text[1024];
    std::vsnprintf(text, sizeof text, fmt, ap);
    return module && *module ? QStringLiteral("%1: %2").arg(QString::fromLocal8Bit(module), QString::fromLocal8Bit(text))
                             : QString::fromLocal8Bit(text);
}

struct OptionsDeleter {
    void operator()(TIFFOpenOptions *o) const { TIFFOpenOptionsFree(o); }
};

}  // namespace

TiffHandle::TiffHandle(const QString &path, const char *mode)
{
    installCommentTag();
    std::unique_ptr<TIFFOpenOptions, OptionsDeleter> opts(TIFFOpenOptionsAlloc());
    TIFFOpenOptionsSetMaxSingleMemAlloc(opts.get(), kMaxLibtiffAlloc);
    TIFFOpenOptionsSetErrorHandlerExtR(opts.get(), &TiffHandle::onError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(opts.get(), &TiffHandle::onWarning, this);
    tif_ = TIFFOpenExt(QFile::encodeName(path).constData(), mode, opts.get());
}

TiffHandle::~TiffHandle()
{
    close();
}

bool TiffHandle::close()
{
    if (tif_)
        TIFFClose(std::exchange(tif_, nullptr));
    return !failed();
}

int TiffHandle::onError(TIFF *, void *self, const char *module, const char *fmt, va_list ap)
{
    auto *h = static_cast<TiffHandle *>(self);
    if (!h->failed())
        h->firstError_ = format(module, fmt, ap);
    return 1;
}

int TiffHandle::onWarning(TIFF *, void *self, const char *module, const char *fmt, va_list ap)
{
    auto *h = static_cast<TiffHandle *>(self);
    const QString text = format(module, fmt, ap);
    if (!h->failed() && text.contains(QLatin1String("IO error")))
        h->firstError_ = text;
    LMV_trace("TIFF warning: %s", qPrintable(text));
    return 1;
}

}  // namespace celio
