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
