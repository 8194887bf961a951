#pragma once
// What a pixel of a scan is in the world of the model: the map from image
// pixels to world units, the part of the picture to use and the peg bar to
// blank. A field of 12 is 5000 units wide and 3750 high, centred on the origin.
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

#include "suite/graphic/math_geometry.h"
#include "suite/graphic/math_matrix2x3.h"

class TUPix2vecOptions;

// Margins in inches, in the order top, bottom, left, right.
using PegMargins = std::array<double, 4>;

// A part of a larger picture that the image stands for, with y counted down
// from the top of the full picture.
struct PegSubWindow {
    float x = 0, y = 0, w = 0, h = 0, fullWidth = 0, fullHeight = 0;
};

class PegInfo {
public:
    // From the scan information string when `hasScanInfo`; otherwise from the
    // image's size alone, and `info` becomes a "FILE:" text carrying the same
    // keywords (`fileName`, or standard input).
    PegInfo(bool hasScanInfo, int32_t fileType, bool hasAlpha, const QString &info, const QString &fileName,
            bool isStdin, uint16_t width, uint16_t height, const PegMargins &margins, bool keepPegBars,
            double pegBarSize, double fieldSize, const TUPix2vecOptions &options,
            const std::optional<PegSubWindow> &subWindow = std::nullopt);

    // Sets the map from the three peg points of a registration (a, c, b as the
    // peg search gives them, y upward): the centre peg goes to the peg
    // distance (inches) from the world's middle, on `side` (1 top, 2 bottom,
    // 3 left, 4 right), whatever the angle of the paper.
    void InitFromPegPositions(Math::Point2d a, Math::Point2d c, Math::Point2d b, int side, const PegMargins &margins,
                              bool keepPegBars, double pegBarSize, double dpi, double pegDistance, double calibX,
                              double calibY);

    // "1 Page, Pegged, Bottom Holes, 12F Paper, 300 DPI"; empty for no info.
    QString description(int downscale) const;

    int32_t file_type = 0;
    uint16_t width = 0;
    uint16_t height = 0;
    uint8_t has_alpha = 0;
    QString info;
    Math::Matrix2x3 transform;
    Math::Box2d picture_box;  // pixels, y upward
    Math::Box2d peg_box;      // pixels; empty for none
    int32_t white_point = 255;
    int32_t black_point = 0;
    float paper_size = 12.0f;
    int32_t dpi = 0;

private:
    void initFromScanInfo(const TUPix2vecOptions &options, const PegMargins &margins, bool keepPegBars,
                          double pegBarSize);
    void initWithoutScanInfo(const QString &fileName, bool isStdin, double fieldSize,
                             const TUPix2vecOptions &options, const std::optional<PegSubWindow> &subWindow);
    void setPictureBox(const PegMargins &margins);
};
