#include "vectorize/vectorize_drawing.h"

#include <QCoreApplication>

#include <cstdio>

#include "scan/locate_pegs.h"
#include "scan/vector_scaninfo.h"
#include "suite/base/whoami.h"
#include "suite/cel/cel_algo.h"
#include "suite/graphic/gr_drawing_access.h"
#include "suite/graphic/gr_drawing_toolbox.h"
#include "vectorize/compute_line_art.h"
#include "vectorize/optimize_texture.h"
#include "vectorize/peg_info.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/vectorize_trace.h"

namespace {

constexpr const char *kContext = "VectorizeDrawing";

// Said once a process: a queue worker vectorizes many drawings.
void warnOnce(bool &said, const char *text) {
    if (said) return;
    said = true;
    std::fprintf(stderr, "%s\n", qPrintable(QCoreApplication::translate(kContext, text)));
}

CEL_PixmapPtr downscaled(const CEL_PixmapPtr &image, int factor) {
    if (!image) return image;
    const int w = std::max(image->width() / factor, 1), h = std::max(image->height() / factor, 1);
    const double s = 1.0 / factor;
    if (auto *m8 = dynamic_cast<CEL_PixmapMatte8 *>(image.get())) return CelAlgo::scale(m8, w, h, 0, 0, s, s, nullptr);
    if (auto *c8 = dynamic_cast<CEL_PixmapRGBA8 *>(image.get())) return CelAlgo::scale(c8, w, h, 0, 0, s, s, nullptr);
    if (auto *m16 = dynamic_cast<CEL_PixmapMatte16 *>(image.get()))
        return CelAlgo::scale(m16, w, h, 0, 0, s, s, nullptr);
    if (auto *c16 = dynamic_cast<CEL_PixmapRGBA16 *>(image.get()))
        return CelAlgo::scale(c16, w, h, 0, 0, s, s, nullptr);
    return image;
}

// The grey the stages read and whether alpha is the same everywhere.
struct SplitInput {
    CEL_PixmapMatte8Ptr grey;
    bool alphaUniform = true;
};

template <typename Leaf>
CEL_PixmapMatte8Ptr inverseAlpha(const Leaf &leaf, bool &uniform) {
    CEL_PixmapMatte8Ptr grey(new CEL_PixmapMatte8(leaf.width(), leaf.height()));
    const size_t n = leaf.pixelCount();
    const auto *src = leaf.data();
    uint8_t *dst = grey->data();
    constexpr int shift = sizeof(src->a) == 2 ? 8 : 0;
    uniform = true;
    for (size_t i = 0; i < n; ++i) {
        dst[i] = static_cast<uint8_t>(255 - (src[i].a >> shift));
        uniform = uniform && src[i].a == src[0].a;
    }
    return grey;
}

SplitInput splitInput(const TUPix2vecOptions &options, const CEL_Pixmap &image) {
    SplitInput in;
    if (auto *m8 = dynamic_cast<const CEL_PixmapMatte8 *>(&image)) {
        in.grey = CEL_PixmapMatte8Ptr(new CEL_PixmapMatte8(*m8));
        return in;
    }
    if (auto *m16 = dynamic_cast<const CEL_PixmapMatte16 *>(&image)) {
        in.grey = CEL_PixmapMatte8Ptr(new CEL_PixmapMatte8(*m16));
        return in;
    }
    const bool fromAlpha = options.color_as_texture || options.vectorize_alpha;
    if (auto *c8 = dynamic_cast<const CEL_PixmapRGBA8 *>(&image)) {
        in.grey = fromAlpha ? inverseAlpha(*c8, in.alphaUniform) : CEL_PixmapMatte8Ptr(new CEL_PixmapMatte8(*c8));
        // A flat alpha channel can't show the peg holes.
        if (fromAlpha && in.alphaUniform && options.register_) in.grey = CEL_PixmapMatte8Ptr(new CEL_PixmapMatte8(*c8));
    } else if (auto *c16 = dynamic_cast<const CEL_PixmapRGBA16 *>(&image)) {
        in.grey = fromAlpha ? inverseAlpha(*c16, in.alphaUniform) : CEL_PixmapMatte8Ptr(new CEL_PixmapMatte8(*c16));
        if (fromAlpha && in.alphaUniform && options.register_) in.grey = CEL_PixmapMatte8Ptr(new CEL_PixmapMatte8(*c16));
    }
    return in;
}

// The ink bitmap: 255 minus the grey, so that a threshold compares darkness.
void fillBitmap(BM_GreyMap &bitmap, const CEL_PixmapMatte8 &grey) {
    if (bitmap.width() != grey.width() || bitmap.height() != grey.height()) bitmap.allocate(grey.width(), grey.height());
    for (int y = 0; y < grey.height(); ++y) {
        const uint8_t *from = grey.row(y);
        uint8_t *to = bitmap.row(y);
        for (int x = 0; x < grey.width(); ++x) to[x] = static_cast<uint8_t>(255 - from[x]);
    }
}

PegInfo makePegInfo(const TUPix2vecOptions &o, const VectorizeScanFields &scan, uint16_t width, uint16_t height,
                    bool fromScan) {
    const PegMargins margins{o.top_margin, o.bottom_margin, o.left_margin, o.right_margin};
    return PegInfo(fromScan, scan.fileType, false, fromScan ? scan.scanInfo : QString(), scan.fileName, scan.isStdin,
                   width, height, margins, o.keep_peg_bars, o.peg_bar_size, o.field_size, o);
}

// The scan information of the drawing: that of the scan, with its pixel
// measures divided by how much coarser the drawing's pixels are.
QString drawingScanInfo(const PegInfo &pegInfo, int scale) {
    if (scale <= 1 || pegInfo.info.startsWith(QLatin1String("FILE:"))) return pegInfo.info;
    LMV_scaninfo info;
    if (LMV_scaninfo_from_str(&info, pegInfo.info.toUtf8().constData()) != 0) return pegInfo.info;
    info.dpi /= float(scale);
    info.rotation_center_x /= float(scale);
    info.rotation_center_y /= float(scale);
    return QString::fromStdString(LMV_scaninfo_to_str(&info));
}

}  // namespace

QString unavailableVectorizeStage(const TUPix2vecOptions &o) {
    const std::pair<bool, const char *> stages[] = {
        {o.asBitmap, "-asBitmap"},
        {o.color_vectorize, "-color_vectorize"},
        {o.rgb, "-rgb"},
        {o.fourColours, "-4colours"},
        {o.color_as_texture, "-color_as_texture"},
        {o.two_pass && o.color_art, "-2pass"},
        {o.buildmatte, "-buildmatte"},
        {o.pencil, "-pencil"},
        {!o.airbrushl.isEmpty(), "-airbrushl"},
        {!o.airbrushc.isEmpty(), "-airbrushc"},
        {o.create_bubbles, "-create_bubbles"},
    };
    for (const auto &[asked, name] : stages)
        if (asked) return QLatin1String(name);
    return {};
}

void FrameColorArt(const TUPix2vecOptions &options, GR_DrawingAccess &access, double fieldSize) {
    if (!options.frame) return;
    double size = options.normalize ? 12.0 : fieldSize;
    if (options.frame_fields > 0) size = options.frame_fields;
    GR_VectorDrawingObj *drawing = access.CurrentDrawing();
    if (size <= 0 || !drawing || !drawing->topLayer()) return;
    vectorizeTrace("Framing color art with %f fields frame\n", size);
    const double x = size / 12.0 * 2500.0, y = x * 3.0 * 0.25;
    GR_StrokeData frame(GR_BezierPath2d({{-x, y - 100}, {-x, y}, {x, y}, {x, -y}, {-x, -y}, {-x, y - 200}}));
    frame.setLineStyle({2, 0.0});
    GR_Layer *formerTop = drawing->topLayer();
    access.BeginOperations();
    GR_Layer *layer = access.CreateLayerAbove({std::move(frame)});
    access.Move(layer, drawing->indexOf(formerTop));
    access.EndOperations();
}

std::unique_ptr<GR_CompositeVectorDrawingObj> VectorizeDrawing(TUPix2vecOptions &options, CEL_PixmapPtr &image,
                                                               CEL_PixmapPtr colourImage, VectorizeScanFields scan,
                                                               const QString &textureName,
                                                               Math::Matrix2x3 &matrixOut,
                                                               std::unique_ptr<GR_CompositeVectorDrawingObj> drawing) {
    static bool saidNoColourArt = false;
    options.registrationFailed = false;
    if (!unavailableVectorizeStage(options).isEmpty()) return nullptr;

    // 1. Downscale.
    if (options.downscale_input >= 2) {
        image = downscaled(image, options.downscale_input);
        colourImage = downscaled(colourImage, options.downscale_input);
        if (scan.fromScanFile) {
            scan.width = static_cast<uint16_t>(scan.width / options.downscale_input);
            scan.height = static_cast<uint16_t>(scan.height / options.downscale_input);
        }
    }
    if (!image) return nullptr;

    // 5. The grey the stages read.
    SplitInput input = splitInput(options, *image);
    if (!input.grey) return nullptr;
    const CEL_PixmapMatte8 &grey = *input.grey;

    vectorizeTrace("Read the scan file\n");
    uint16_t width = scan.width, height = scan.height;
    if (!scan.fromScanFile) {
        width = static_cast<uint16_t>(grey.width());
        height = static_cast<uint16_t>(grey.height());
    }

    // 7. What a pixel is in the world.
    PegInfo pegInfo = makePegInfo(options, scan, width, height, scan.fromScanFile);
    if (pegInfo.dpi < 1)
        pegInfo = makePegInfo(options, scan, static_cast<uint16_t>(grey.width()), static_cast<uint16_t>(grey.height()),
                              false);
    vectorizeTrace("Field size: %f\nImage size: %dx%d\n", double(pegInfo.paper_size), grey.width(), grey.height());

    // 8-10. Bitmap, drawing, palettes, access.
    auto bitmap = std::make_unique<BM_GreyMap>();
    fillBitmap(*bitmap, grey);
    if (!drawing) drawing = std::make_unique<GR_CompositeVectorDrawingObj>();
    auto paletteList = CM_PaletteList::makeDefault();
    if (options.vectorizationColorId != CM_PaletteList::kLineColorId)
        paletteList->palette(0)->LoadDefaultColor(options.colorName, options.vectorizationColorId, options.colorR,
                                                  options.colorG, options.colorB, options.colorA);
    drawing->paletteInfo().setPaletteList(paletteList);
    GR_ColorDict dict(drawing->paletteInfo());
    GR_DrawingAccess access(dict);

    // 12. Line art current.
    access.SetCurrentDrawing(&drawing->lineArt());

    // 14. Optical registration.
    if (options.register_) {
        Math::Point2d pegs[3];
        if (!locate_pegs(*bitmap, options, pegs)) {
            options.registrationFailed = true;
            return nullptr;
        }
        const int side = options.out_peg_position != 0 ? options.out_peg_position : options.side;
        const PegMargins margins{options.top_margin, options.bottom_margin, options.left_margin, options.right_margin};
        pegInfo.InitFromPegPositions(pegs[0], pegs[1], pegs[2], side, margins, options.keep_peg_bars,
                                     options.peg_bar_size, options.dpi, options.peg_distance_from_center,
                                     options.calibX, options.calibY);
        fillBitmap(*bitmap, grey);
    }

    // 15-16. Field size and matrix.
    drawing->info().SetFieldSize(options.normalize ? 12.0
                                                   : (options.field_size > 0 ? options.field_size : pegInfo.paper_size));
    Math::Matrix2x3 matrix = pegInfo.transform;
    matrix.Translate(options.pixelOffsetX, options.pixelOffsetY);
    if (options.normalize) {
        const double scale = 12.0 / (options.field_size > 0 ? options.field_size : double(pegInfo.paper_size));
        matrix.Scale(scale, scale);
        vectorizeTrace("Scale: %f\n", scale);
    }

    // 18. Line art.
    vectorizeTrace("Computing line art\n");
    VectorizeColorKey key;
    key.colorId = options.vectorizationColorId;
    const CM_TexturePtr texture = ComputeLineArt(
        access, bitmap, options.thresh, options.texture, options.downscale_texture, matrix, options.rmv_holes,
        options.rmv_dirt, pegInfo, options.jag_filterl, options.expand_bitmapl, false, options.first_smoothl,
        textureName, key);
    access.SetCurrentDrawing(&drawing->colorArt());
    vectorizeTrace("Line art computed\n");

    // 19. Colour art.
    if (options.color_art)
        warnOnce(saidNoColourArt, QT_TRANSLATE_NOOP("VectorizeDrawing",
                                                    "Colour art is not available yet: the drawing has line art only."));
    input.grey.reset();
    bitmap.reset();

    // 24-25. Colour art curves and frame.
    access.SetCurrentDrawing(&drawing->colorArt());
    vectorizeTrace("UpgradeBeziers color art...%d layers\n", drawing->colorArt().layerCount());
    GR_DrawingToolbox::UpgradeBeziers(access, options.fit_errorc, options.fit_degreec, true, options.smoothc, false);
    vectorizeTrace("UpgradeBeziers done: %d layers\n", drawing->colorArt().layerCount());
    FrameColorArt(options, access, pegInfo.paper_size);
    vectorizeTrace("FrameColorArt done: %d layers\n", drawing->colorArt().layerCount());

    // 26-27. Line art curves.
    access.SetCurrentDrawing(&drawing->lineArt());
    vectorizeTrace("UpgradeBeziers line art...\n");
    GR_DrawingToolbox::UpgradeBeziers(access, options.fit_errorl, options.fit_degreel, false, options.smoothl,
                                      options.pencil);

    // 28. Texture.
    vectorizeTrace("Optimize texture...%p\n", static_cast<const void *>(texture.get()));
    if (options.texture && texture) optimizeTexture(access, texture, options.texture_optimization);
    if (options.output_peg_matrix) {
        const Math::Vector2d e = matrix.column0(), f = matrix.column1(), t = matrix.translation();
        std::printf("PegMatrix = [ %f %f, %f %f, %f %f ]\n", e.x, e.y, f.x, f.y, t.x, t.y);
        std::fflush(stdout);
    }
    vectorizeTrace("Almost done: %d layers\n", drawing->lineArt().layerCount());

    // 30. Scan information and creator.
    int scale = 1;
    if (options.downscale_input > 1) scale *= options.downscale_input;
    if (options.downscale_texture > 1) scale *= options.downscale_texture;
    const QString info = drawingScanInfo(pegInfo, scale);
    vectorizeTrace("Setting scaninfo: %s\n", qPrintable(info));
    drawing->info().SetScanInfo(info);
    drawing->info().SetCreator(whoami::progName());
    matrixOut = matrix;
    return drawing;
}
