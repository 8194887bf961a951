// The vectorize driver and the pix2vec command around it: which stages run,
// what the drawing carries, and what the operator reads when it fails.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include "suite/graphic/gr_drawing_access.h"
#include "support/run_program.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/vectorize_drawing.h"

namespace {

// White paper with a black block: a drawing of one outline.
CEL_PixmapPtr blockPicture(int w = 240, int h = 180) {
    auto *grey = new CEL_PixmapMatte8(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) grey->at(x, y) = (x >= 60 && x < 120 && y >= 40 && y < 100) ? 0 : 255;
    return CEL_PixmapPtr(grey);
}

class Driver : public ::testing::Test {
protected:
    Driver() { currentVectorizeOptions() = &options; }
    std::unique_ptr<GR_CompositeVectorDrawingObj> run(VectorizeScanFields scan = {}) {
        image = blockPicture();
        return VectorizeDrawing(options, image, nullptr, scan, QStringLiteral("t"), matrix);
    }
    TUPix2vecOptions options;
    CEL_PixmapPtr image;
    Math::Matrix2x3 matrix;
};

}  // namespace

TEST_F(Driver, LineArtScaleScanInformationAndRefusedStages) {
    auto drawing = run();
    ASSERT_TRUE(drawing);
    EXPECT_EQ(drawing->lineArt().layerCount(), 1);
    EXPECT_EQ(drawing->lineArt().strokeCount(), 1);
    EXPECT_EQ(drawing->colorArt().layerCount(), 0);
    EXPECT_EQ(drawing->info().fieldSize(), 12.0);
    EXPECT_TRUE(drawing->info().scanInfo().startsWith("FILE:"));
    const double normalized = matrix.column0().x;

    // -no_normalize with a field size: the matrix of the picture as it is.
    ASSERT_TRUE(options.parseOptionLine("-no_normalize -field_size 16", false));
    drawing = run();
    ASSERT_TRUE(drawing);
    EXPECT_EQ(drawing->info().fieldSize(), 16.0);
    EXPECT_NEAR(matrix.column0().x * 12.0 / 16.0, normalized, 1e-9);

    // Both downscales divide what the scan information says of the pixels.
    options.resetDefaults();
    ASSERT_TRUE(options.parseOptionLine("-downscale_input 3 -downscale_texture 2", false));
    VectorizeScanFields scan;
    scan.fromScanFile = true;
    scan.scanInfo = "Version: 3 Scan Host: h Scanner Name: s Threshold: -1 Black point: -1 White point: 0 Gamma: 1 "
                    "Speed: 10 Peg Side: Bottom Pegged: No Paper Size: 12 Pages: 1 DPI: 600 Rotation Angle: 0 "
                    "Rotation Center X: 120 Rotation Center Y: 600";
    scan.width = 240, scan.height = 180;
    drawing = run(scan);
    ASSERT_TRUE(drawing);
    EXPECT_TRUE(drawing->info().scanInfo().contains("DPI: 100 ")) << drawing->info().scanInfo().toStdString();
    EXPECT_EQ(image->width(), 80);

    // A stage this build does not have is refused, never skipped.
    for (const char *line : {"-rgb", "-4colours", "-asBitmap", "-pencil", "-2pass"}) {
        options.resetDefaults();
        ASSERT_TRUE(options.parseOptionLine(line, false)) << line;
        EXPECT_EQ(unavailableVectorizeStage(options), QString(line));
        EXPECT_FALSE(run()) << line;
    }
    options.resetDefaults();
    ASSERT_TRUE(options.parseOptionLine("-2pass -no_color_art", false));
    EXPECT_TRUE(unavailableVectorizeStage(options).isEmpty()) << "without colour art -2pass is one pass";
}

TEST_F(Driver, FrameGoesUnderTheTopLayerOpenOnTheLeft) {
    GR_CompositeVectorDrawingObj drawing;
    GR_ColorDict dict(drawing.paletteInfo());
    GR_DrawingAccess access(dict);
    access.SetCurrentDrawing(&drawing.colorArt());
    options.frame = true;
    FrameColorArt(options, access, 16);
    EXPECT_EQ(drawing.colorArt().layerCount(), 0) << "no top layer, no frame";

    GR_Layer *top = access.CreateLayerAbove({});
    options.normalize = false;
    options.frame_fields = 0;  // not above 0: the drawing's field size
    FrameColorArt(options, access, 16);
    ASSERT_EQ(drawing.colorArt().layerCount(), 2);
    EXPECT_EQ(drawing.colorArt().topLayer(), top);
    const GR_StrokeData &frame = drawing.colorArt().layer(0)->stroke(0);
    const double x = 16.0 / 12.0 * 2500.0, y = x * 0.75;
    EXPECT_EQ(frame.path().points(), (std::vector<Math::Point2d>{
                                         {-x, y - 100}, {-x, y}, {x, y}, {x, -y}, {-x, -y}, {-x, y - 200}}));
    EXPECT_FALSE(frame.isClosed());
    EXPECT_EQ(frame.lineStyle().type, 2);
}

TEST(Pix2vec, WritesEachFormatAndSaysWhyItFailed) {
    QTemporaryDir dir;
    QImage paper(300, 225, QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter(&paper).fillRect(100, 60, 80, 50, Qt::black);
    const QString in = dir.filePath("in.png");
    ASSERT_TRUE(paper.save(in));

    for (const char *ext : {"kwg", "svg", "png"}) {
        const QString out = dir.filePath(QString("out.") + ext);
        const ProcessResult r = run_program(PIX2VEC_PATH, {"-file", in, "-outfile", out, "-no_color_art"});
        EXPECT_EQ(r.status, 0) << ext << ": " << r.err.toStdString();
        EXPECT_TRUE(QFileInfo(out).size() > 0) << ext;
    }
    const ProcessResult info = run_program(PIX2VEC_PATH, {"--info", dir.filePath("out.kwg")});
    EXPECT_EQ(info.status, 0);
    EXPECT_TRUE(info.out.contains("line art: 1 layers, 1 strokes")) << info.out.toStdString();

    struct Case {
        QStringList args;
        const char *message;
    } cases[] = {
        {{"-file", in, "-outfile", dir.filePath("out.txt")}, "Invalid file specifier."},
        {{"-file", in, "-outfile", dir.filePath("out.kwg"), "-rgb"}, "-rgb is not available yet."},
        {{"-file", in, "-outfile", dir.filePath("out.kwg"), "-register", "100", "B", "Strict"},
         "Optical registration failed."},
        {{"-file", dir.filePath("none.tif"), "-outfile", dir.filePath("out.kwg")}, "Cannot load drawing file"},
        {{"-file", in, "-outfile", dir.filePath("no/such/out.kwg")}, "Error when writing image to"},
        {{"--info", in}, "Cannot load drawing file"},
    };
    for (const Case &c : cases) {
        const ProcessResult r = run_program(PIX2VEC_PATH, c.args);
        EXPECT_EQ(r.status, 1) << c.message;
        EXPECT_TRUE(r.err.contains(c.message)) << r.err.toStdString();
    }
}

TEST(OptimizeTexture, EachGroupGetsTheSamePixelsCroppedToItsOutlines) {
    TUPix2vecOptions options;
    currentVectorizeOptions() = &options;
    // Grey ink: a ring (a blob with a hole) at the left, a small blob at the
    // right, far apart; each pixel's value tells where it was.
    const int w = 200, h = 100;
    auto *grey = new CEL_PixmapMatte8(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const bool ring = x >= 20 && x < 60 && y >= 20 && y < 60 && !(x >= 35 && x < 45 && y >= 35 && y < 45);
            const bool blob = x >= 150 && x < 170 && y >= 60 && y < 80;
            grey->at(x, y) = (ring || blob) ? uint8_t(10 + (x + 3 * y) % 90) : 255;
        }
    for (bool optimize : {true, false}) {
        SCOPED_TRACE(optimize);
        options.texture_optimization = optimize;
        CEL_PixmapPtr image(new CEL_PixmapMatte8(*grey));
        Math::Matrix2x3 matrix;
        const auto drawing = VectorizeDrawing(options, image, nullptr, {}, QStringLiteral("t"), matrix);
        ASSERT_TRUE(drawing);
        const auto &textures = drawing->paletteInfo().textures();
        ASSERT_EQ(textures.size(), optimize ? 2u : 1u) << "the page texture is gone";
        const GR_Layer &layer = *drawing->lineArt().layer(0);
        ASSERT_EQ(layer.strokeCount(), 3);
        for (const GR_StrokeData &s : layer.strokes()) {
            const GR_ColorPtr &ink = s.Color(0) ? s.Color(0) : s.Color(1);
            ASSERT_TRUE(ink);
            const CM_Texture *t = drawing->paletteInfo().texture(ink->textureId());
            ASSERT_NE(t, nullptr);
            if (optimize) {
                EXPECT_LT(t->pixels.width(), 50) << "cropped to its own group";
            }
            // A pixel inside the ink, through the world and back into the
            // piece, reads what the scan had there (inverted: ink high).
            const int px = s.path().boundingBox().x1 > matrix.Apply(Math::Point2d{100, 0}).x ? 155 : 25;
            const int py = px == 155 ? 65 : 25;
            const Math::Point2d world = matrix.Apply(Math::Point2d{px + 0.5, h - py - 0.5});
            const Math::Point2d uv = ink->textureMatrix().Inverse().Apply(world);
            const int tx = int(uv.x * t->pixels.width()), ty = int((1.0 - uv.y) * t->pixels.height());
            EXPECT_EQ(t->pixels.get(tx, ty), 255u - grey->at(px, py));
        }
    }
    delete grey;
}
