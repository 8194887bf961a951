// Reads the input as the scan information of a sheet: the first four bytes
// give the image size and the downscale, the rest is the string that the peg
// geometry and the operator's description read by keywords.
#include <cstdint>
#include <cstdlib>

#include <QString>

#include "suite/base/tumessage.h"
#include "vectorize/peg_info.h"
#include "vectorize/pix2vec_options.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static TUPix2vecOptions *options = [] {
        TUMessage::instance()->setSilent(true);
        return new TUPix2vecOptions;
    }();
    if (size < 4) return 0;
    const uint16_t width = uint16_t(data[0] << 4 | (data[1] & 15));
    const uint16_t height = uint16_t(data[2] << 4 | (data[1] >> 4));
    const int downscale = data[3] & 7;
    const QString info = QString::fromUtf8(reinterpret_cast<const char *>(data + 4), qsizetype(size - 4));

    options->downscale_input = downscale;
    const PegMargins margins{0.5, 0.5, 0.25, 0.25};
    const PegInfo peg(true, 0, false, info, QString(), false, width, height, margins, false, 1.0, 0.0, *options);
    const QString text = peg.description(downscale);
    // Every string that is not empty is described, whatever it holds.
    if (!info.isEmpty() && !text.contains(QLatin1String(" DPI"))) std::abort();
    (void)peg.transform.Apply(Math::Point2d{double(width), double(height)});
    return 0;
}
