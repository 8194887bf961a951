// Optical registration in the scan loop: which scans are turned and cut to the
// field, where the cut lies, and which are left whole for the vectorizer.
#include "session_fixture.h"

#include <QImage>
#include <QScopeGuard>

#include <cstdlib>
#include <numbers>

#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "scan/vector_scaninfo.h"
#include "workflow/dbinfo.h"
#include "workflow/register.h"
#include "workflow/scan_procs.h"

namespace {

QSize size(Drawing *d) { return {width_of_pixmap(pixmap_of_Drawing(d)), height_of_pixmap(pixmap_of_Drawing(d))}; }

QImage grey(Drawing *d) {
    QImage image;
    image_of_pixmap(pixmap_of_Drawing(d), &image);
    return image.convertToFormat(QImage::Format_Grayscale8);
}

// The test scanner at 100 dpi, field 12, pegs on the left, one drawing per
// press with optical registration, every sheet fed with the same known skew.
TEST_F(SessionTest, OpticalRegistrationCutsWhichScansToTheFieldAndWhere) {
    writeFile(QStringLiteral("DUMMY_XYR_OFFSET_FILE"), "0.04,-0.03,0.7\n");
    const auto scan = [this](const QString &name) {
        list({name});
        ScanDrawingList(config_);
        return drawing_of_ScanConfig(config_);
    };
    ScanConfig *c = start(scannerBlock("Test", "Bogus-Color"));
    set_dpi_of_ScanConfig(c, 100);
    set_depth_of_ScanConfig(c, DEPTH_GREY);
    set_peg_side_of_ScanConfig(c, PEG_LEFT);
    set_feed_of_ScanConfig(c, FEED_PEGGED_MANY);
    set_optical_of_ScanConfig(c, true);
    Drawing *cut = scan("1");
    ASSERT_NE(cut, nullptr);
    EXPECT_EQ(size(cut), QSize(900, 1200));
    EXPECT_EQ(std::pair(window_xres_inches_of_Drawing(cut), window_yres_inches_of_Drawing(cut)), std::pair(9.0, 12.0));
    const float angle = scaninfo_of_Drawing(cut)->rotation_angle;
    EXPECT_GT(std::abs(angle), 0.3 * std::numbers::pi / 180) << "the sheet was fed turned by 0.7 degree";
    EXPECT_TRUE(exists("T-1.tif"));
    const QImage withoutPegs = grey(cut);

    // Kept, the strip puts the centre hole half on the left edge, centred on
    // the middle row, and everything else three quarters of an inch further in.
    qputenv("LMV_SCAN_KEEP_PEGS", "1");
    auto keepPegs = qScopeGuard([] { qunsetenv("LMV_SCAN_KEEP_PEGS"); });
    Drawing *kept = scan("2");
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(scaninfo_of_Drawing(kept)->rotation_angle, angle);
    const QImage withPegs = grey(kept);
    ASSERT_EQ(withPegs.size(), QSize(900, 1200));
    for (auto [row, dark] : {std::pair(595, true), {605, true}, {625, false}, {575, false}})
        EXPECT_TRUE(dark ? qGray(withPegs.pixel(3, row)) < 64 : qGray(withPegs.pixel(3, row)) > 192) << row;
    int differences = 0;
    for (int y = 0; y < 1200; y += 3)
        for (int x = 0; x < 900 - 75; x += 3)
            differences += std::abs(int(withPegs.pixel(x + 75, y) & 0xff) - int(withoutPegs.pixel(x, y) & 0xff)) > 8;
    EXPECT_EQ(differences, 0);

    // Scans for the vectorizer stay whole: in a production, the elements that
    // are vectorized; anywhere, black and white, with its turn recorded.
    keepPegs.dismiss();
    qunsetenv("LMV_SCAN_KEEP_PEGS");
    set_optical_of_ScanConfig(c, false);
    Drawing *d = scan("3");
    ASSERT_NE(d, nullptr);
    const QSize scanned = size(d);
    set_optical_of_ScanConfig(c, true);
    c->database = true;
    c->binding->needs_vectorization = true;
    ASSERT_NE(RegisterScan(c), 0);
    EXPECT_EQ(size(d), scanned);
    c->binding->needs_vectorization = false;
    ASSERT_NE(RegisterScan(c), 0);
    EXPECT_EQ(size(d), QSize(900, 1200));
    c->database = false;

    set_depth_of_ScanConfig(c, DEPTH_BW);
    d = scan("4");
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(size(d), QSize(1050, 1300)) << "the sheet as the scanner gave it";
    const LMV_scaninfo *si = scaninfo_of_Drawing(d);
    EXPECT_NE(si->rotation_angle, 0.0f);
    EXPECT_GT(si->rotation_center_x, 0.0f);
    EXPECT_NEAR(si->rotation_center_y, 650.0f, 0.25 * 100) << "the centre hole is near the middle of the side";
}

}  // namespace
