#include "vectorize/peg_info.h"

#include "vectorize/pix2vec_options.h"
#include "vectorize/scaninfo_keywords.h"

namespace {

// Inches from the field's middle to the centre peg, by field size.
double pegDistanceOfField(float paperSize) {
    if (paperSize == 16.0f) return 6.75;
    if (paperSize == 15.0f) return 6.18;
    return 5.25;
}

}  // namespace

PegInfo::PegInfo(bool hasScanInfo, int32_t fileType, bool hasAlpha, const QString &info, const QString &fileName,
                 bool isStdin, uint16_t width, uint16_t height, const PegMargins &margins, bool keepPegBars,
                 double pegBarSize, double fieldSize, const TUPix2vecOptions &options,
                 const std::optional<PegSubWindow> &subWindow)
    : file_type(fileType), width(width), height(height), has_alpha(hasAlpha ? 1 : 0), info(info) {
    if (hasScanInfo)
        initFromScanInfo(options, margins, keepPegBars, pegBarSize);
    else
        initWithoutScanInfo(fileName, isStdin, fieldSize, options, subWindow);
}

// Vertical margins count 0.75 of an inch per inch: a field is 3/4 as high as wide.
void PegInfo::setPictureBox(const PegMargins &margins) {
    const auto [top, bottom, left, right] = margins;
    picture_box.clear();
    picture_box.add({dpi * left, dpi * bottom * 0.75});
    picture_box.add({width - dpi * right, height - dpi * top * 0.75});
}

void PegInfo::initFromScanInfo(const TUPix2vecOptions &options, const PegMargins &margins, bool keepPegBars,
                               double pegBarSize) {
    const ScanInfoKeywords keywords(info);
    const int downscale = options.downscale_input;
    white_point = keywords.intValue(QStringLiteral("white point:"), 255);
    black_point = keywords.intValue(QStringLiteral("black point:"), 0);
    paper_size = keywords.floatValue(QStringLiteral("paper size:"), 12.0f);
    dpi = keywords.intValue(QStringLiteral("dpi:"), 75);
    if (downscale > 1) dpi /= downscale;

    float centreX = keywords.floatValue(QStringLiteral("rotation center x:"), float(width / 2));
    float centreY = keywords.floatValue(QStringLiteral("rotation center y:"), float(height + dpi));
    const float angle = keywords.floatValue(QStringLiteral("rotation angle:"), 0.0f);
    if (downscale > 1) {
        centreX /= float(downscale);
        centreY /= float(downscale);
    }
    const QString side = keywords.textValue(QStringLiteral("peg side:"), QStringLiteral("bottom"));

    setPictureBox(margins);

    // Image rows count upward from the bottom; the rotation centre is given
    // with rows counted down from the top.
    transform = Math::Matrix2x3({1.0, 0.0}, {0.0, 1.0}, {-centreX, centreY - height + 1.0});
    transform.Scale(options.calibX, options.calibY);
    transform.Rotate(-double(angle));

    const double perPixel = 5000.0 / (double(dpi) * 12.0);
    const double toPeg = dpi * pegDistanceOfField(paper_size);
    const double bar = dpi * pegBarSize;
    peg_box.clear();
    if (side.startsWith(QLatin1String("bottom"))) {
        transform.Translate(0.0, -toPeg);
        peg_box.add({double(width), double(height)});
        peg_box.add({0.0, height - bar});
    } else if (side.startsWith(QLatin1String("top"))) {
        transform.Translate(0.0, toPeg);
        peg_box.add({double(width), 0.0});
        peg_box.add({0.0, bar});
    } else if (side.startsWith(QLatin1String("left"))) {
        transform.Translate(-toPeg, 0.0);
        peg_box.add({0.0, 0.0});
        peg_box.add({bar, double(height)});
    } else {
        transform.Translate(toPeg, 0.0);
        peg_box.add({width - bar, 0.0});
        peg_box.add({double(width), double(height)});
    }
    transform.Scale(perPixel, perPixel);
    if (keepPegBars) peg_box.clear();
}

void PegInfo::initWithoutScanInfo(const QString &fileName, bool isStdin, double fieldSize,
                                  const TUPix2vecOptions &options, const std::optional<PegSubWindow> &subWindow) {
    picture_box.clear();
    picture_box.add({double(options.left_pixel_margin), double(options.bottom_pixel_margin)});
    picture_box.add({double(width - options.right_pixel_margin), double(height - options.top_pixel_margin)});
    peg_box.clear();
    paper_size = fieldSize > 0.0 ? float(fieldSize) : 12.0f;
    if (height == 0) {
        transform = Math::Matrix2x3();
        return;
    }

    double x = 0.0, y = 0.0, w = width, h = height, fullWidth = width, fullHeight = height;
    if (subWindow) {
        x = subWindow->x;
        y = double(subWindow->fullHeight) - subWindow->y - subWindow->h;
        w = subWindow->w;
        h = subWindow->h;
        fullWidth = subWindow->fullWidth;
        fullHeight = subWindow->fullHeight;
    }
    // The picture's height fills the field's height of 3750 units at field 12.
    const double field = paper_size;
    const double m = 3750.0 / h * field / 12.0;
    const double n = fullWidth * -1875.0 / fullHeight * field / 12.0;
    const Math::Vector2d translation{2.0 * (-n * x) / fullWidth + n,
                                     2.0 * (field * 1875.0 / 12.0 * y) / fullHeight + field * -1875.0 / 12.0};
    transform = Math::Matrix2x3({w / fullWidth * m, 0.0}, {0.0, h / fullHeight * m}, translation);
    if (options.dpi > 0.0) {
        const double k = fullHeight / options.dpi / (field * 0.75);
        transform.Scale(k, k);
    }

    // The dpi at which the picture's height fills 3/4 of the field.
    dpi = truncatedToInt(float(height) * 4.0f / paper_size / 3.0f);
    const QByteArray type = isStdin ? QByteArrayLiteral("STDIN") : fileName.toLocal8Bit();
    info = QString::asprintf("FILE: Type: %s  Width: %d Height: %d paper size: %f dpi: %d", type.constData(),
                             int(width), int(height), double(paper_size), dpi);
}

QString PegInfo::description(int downscale) const {
    if (info.isEmpty()) return info;
    const ScanInfoKeywords keywords(info);
    const int pages = keywords.intValue(QStringLiteral("pages:"), 1);
    const QString pegged = keywords.textValue(QStringLiteral("pegged:"), QStringLiteral("no"));
    QString side = keywords.textValue(QStringLiteral("peg side:"), QStringLiteral("bottom"));
    const float field = keywords.floatValue(QStringLiteral("paper size:"), 12.0f);
    int shownDpi = keywords.intValue(QStringLiteral("dpi:"), 200);
    if (downscale > 1) shownDpi /= downscale;
    side[0] = side[0].toUpper();
    return QString::asprintf("%d Page%s, %sPegged, %s Holes, %dF Paper, %d DPI", pages, pages >= 2 ? "s" : "",
                             pegged == QLatin1String("no") ? "Not " : "", side.toUtf8().constData(),
                             truncatedToInt(field), shownDpi);
}
