// The scan views: the scale slider, zoom and panning of the main image, the
// copies of the frame preview and the overview, and a test scanner chart.
#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include <cstring>

#include "app/scale_slider.h"
#include "app/scan_image.h"
#include "app/scroll_image.h"
#include "scan/drawing.h"
#include "scan/drivers/bogus_field_chart.h"
#include "scan/pixmap_pixmap.h"
#include "support/screenshot.h"

namespace {

// A drawing whose grey pixmap holds `image`.
struct GreyDrawing {
    explicit GreyDrawing(const QImage &image) {
        const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
        drawing = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QString());
        LMV_pixmap *pixmap = create_pixmap(PIXMAP_MATTE8, grey.width(), grey.height());
        uint8_t *data = matte8_data_of_pixmap(pixmap);
        for (int y = 0; y < grey.height(); ++y)
            std::memcpy(data + static_cast<size_t>(y) * grey.width(), grey.constScanLine(y), grey.width());
        set_pixmap_of_Drawing(drawing, pixmap);
    }
    ~GreyDrawing() { destroy_Drawing(&drawing); }
    Drawing *drawing = nullptr;
};

// Grey levels that tell every pixel's column and row apart (mod 256).
QImage ramp(int width, int height) {
    QImage image(width, height, QImage::Format_Grayscale8);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image.scanLine(y)[x] = static_cast<uchar>((x * 7 + y * 13) & 0xff);
    return image;
}

void mouse(QWidget *target, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held) {
    QMouseEvent event(type, at, target->mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

// Presses `button` at the first point, moves through the others and releases.
void drag(QWidget *target, Qt::MouseButton button, std::initializer_list<QPoint> path) {
    mouse(target, QEvent::MouseButtonPress, *path.begin(), button, button);
    for (const QPoint at : path) mouse(target, QEvent::MouseMove, at, Qt::NoButton, button);
    mouse(target, QEvent::MouseButtonRelease, *(path.end() - 1), button, Qt::NoButton);
}

QPoint scrollPosition(const TUScrollImage *view) {
    return {view->horizontalScrollBar()->value(), view->verticalScrollBar()->value()};
}

TEST(ScaleSliderTest, LabelsAtTheEndsAndTheFactorAtRelease) {
    TUScaleSlider scale;
    scale.resize(260, 30);
    scale.show();
    QSignalSpy factor(&scale, &TUScaleSlider::scaleChanged);
    EXPECT_EQ(scale.label()->text(), QStringLiteral("Scale: 1:1"));
    save_screenshot(&scale, QStringLiteral("preview_scale_1_1"));
    scale.slider()->setValue(1);
    EXPECT_EQ(scale.label()->text(), QStringLiteral("Scale: 1:16"));
    scale.slider()->setValue(31);
    EXPECT_EQ(scale.label()->text(), QStringLiteral("Scale: 16:1"));
    // A drag changes the label at once and the scale only at release.
    scale.slider()->setSliderDown(true);
    scale.slider()->setSliderPosition(18);
    EXPECT_EQ(scale.label()->text(), QStringLiteral("Scale: 3:1"));
    scale.slider()->setSliderDown(false);
    ASSERT_EQ(factor.count(), 3);
    EXPECT_EQ(factor.at(0).at(0).toInt(), -15);
    EXPECT_EQ(factor.at(1).at(0).toInt(), 15);
    EXPECT_EQ(factor.at(2).at(0).toInt(), 2);
}

class MainImageTest : public ::testing::Test {
protected:
    void SetUp() override {
        view.resize(400, 300);
        view.show();
        scroll = view.scrollImage();
        slider = view.scaleSlider()->slider();
    }
    TUScanImage view{0};
    TUScrollImage *scroll = nullptr;
    QSlider *slider = nullptr;
};

TEST_F(MainImageTest, ZoomKeepsTheCentreAndShowsTheImagePixels) {
    GreyDrawing sheet(ramp(1000, 800));
    view.setDrawing(sheet.drawing);
    EXPECT_EQ(scroll->displayedSize(), QSize(1000, 800));
    const QSize port = scroll->viewport()->size();
    // Centred on the middle of the image.
    EXPECT_EQ(scrollPosition(scroll), QPoint(500 - port.width() / 2, 400 - port.height() / 2));

    // The viewport shows the image's pixel under each point (displayed
    // coordinate * mul / div), and white past the displayed image.
    const auto expectShown = [&](int mul, int div) {
        const QImage shown = scroll->viewport()->grab().toImage();
        const QSize size = scroll->displayedSize();
        const QPoint origin = scrollPosition(scroll), last(size.width() - 1, size.height() - 1);
        for (const QPoint at : {QPoint(0, 0), QPoint(33, 71), last - origin, QPoint(port.width() - 1, port.height() - 1)}) {
            if (!QRect(QPoint(), port).contains(at)) continue;  // the image's last pixel when it is in view
            const QPoint d = origin + at;
            const bool inside = d.x() < size.width() && d.y() < size.height();
            const int expected = inside ? (d.x() * mul / div * 7 + d.y() * mul / div * 13) & 0xff : 255;
            EXPECT_EQ(qGray(shown.pixel(at)), expected) << at.x() << "," << at.y() << " at " << mul << ":" << div;
        }
    };
    slider->setValue(17);  // 2:1
    EXPECT_EQ(scroll->displayedSize(), QSize(2000, 1600));
    EXPECT_NEAR(scroll->horizontalScrollBar()->value(), 1000 - port.width() / 2, 1);
    EXPECT_NEAR(scroll->verticalScrollBar()->value(), 800 - port.height() / 2, 1);
    save_screenshot(&view, QStringLiteral("preview_main_zoom_2_1"));
    expectShown(1, 2);

    slider->setValue(13);  // 1:4
    EXPECT_EQ(scroll->displayedSize(), QSize(250, 200));
    EXPECT_EQ(scroll->horizontalScrollBar()->maximum(), 0);
    save_screenshot(&view, QStringLiteral("preview_main_zoom_1_4"));
    expectShown(4, 1);
}

TEST_F(MainImageTest, PanningWithTheSpaceBarMovesTheViewAndANewScanKeepsIt) {
    GreyDrawing sheet(ramp(1200, 900));
    view.setDrawing(sheet.drawing);
    QWidget *port = scroll->viewport();
    const QPoint start = scrollPosition(scroll);

    // Without the space bar a drag does nothing.
    drag(port, Qt::LeftButton, {QPoint(200, 150), QPoint(150, 100)});
    EXPECT_EQ(scrollPosition(scroll), start);
    EXPECT_FALSE(scroll->moved());

    view.setHeldKey(' ');
    drag(port, Qt::LeftButton, {QPoint(200, 150), QPoint(150, 110), QPoint(140, 90)});
    view.setHeldKey(0);
    const QPoint panned = start + QPoint(60, 60);
    EXPECT_EQ(scrollPosition(scroll), panned);
    EXPECT_TRUE(scroll->moved());
    save_screenshot(&view, QStringLiteral("preview_main_panned"));

    GreyDrawing next(ramp(1200, 900));
    view.setDrawing(next.drawing);
    EXPECT_EQ(scrollPosition(scroll), panned);
}

TEST_F(MainImageTest, ZoomDragStepsTheSliderEveryTwentyFivePixels) {
    GreyDrawing sheet(ramp(600, 400));
    view.setDrawing(sheet.drawing);
    QWidget *port = scroll->viewport();
    view.setHeldKey(' ');
    mouse(port, QEvent::MouseButtonPress, QPoint(100, 100), Qt::MiddleButton, Qt::MiddleButton);
    // Short moves add up: the last y stays until a step is made.
    mouse(port, QEvent::MouseMove, QPoint(100, 110), Qt::NoButton, Qt::MiddleButton);
    mouse(port, QEvent::MouseMove, QPoint(100, 120), Qt::NoButton, Qt::MiddleButton);
    EXPECT_EQ(slider->value(), 16);
    mouse(port, QEvent::MouseMove, QPoint(100, 130), Qt::NoButton, Qt::MiddleButton);
    EXPECT_EQ(slider->value(), 17);
    EXPECT_EQ(scroll->displayedSize(), QSize(1200, 800));
    mouse(port, QEvent::MouseMove, QPoint(100, 70), Qt::NoButton, Qt::MiddleButton);  // 60 up: two steps
    EXPECT_EQ(slider->value(), 15);
    EXPECT_EQ(view.scaleSlider()->label()->text(), QStringLiteral("Scale: 1:2"));
    mouse(port, QEvent::MouseButtonRelease, QPoint(100, 70), Qt::MiddleButton, Qt::NoButton);
    EXPECT_FALSE(scroll->moved());
}

// The frame preview keeps its own copy fitted to its fixed size; the
// overview shares the main image at 1:4 and opens on the sheet's middle row.
TEST(ScanImageCopyTest, ShowsAPaintedTestScannerChartInAllThreeViews) {
    const QImage chart = paint_field_chart(12.0, 50.0, false, 1.0, 1.0, FieldChartSkew());
    GreyDrawing sheet(chart);
    QWidget window;
    window.resize(760, 560);
    TUScanImage main(0, &window), preview(1, &window), overview(2, &window);
    main.setGeometry(0, 0, 440, 560);
    preview.setGeometry(450, 0, 300, 200);
    preview.setFixedSizeForCopies(300, 200);
    overview.setGeometry(450, 220, 300, 100);
    window.show();
    main.scaleSlider()->slider()->setValue(15);  // 1:2
    main.setDrawing(sheet.drawing);
    TUScanImage::copyFrom(&overview, &main);
    TUScanImage::copyFrom(&preview, &main);
    save_screenshot(&window, QStringLiteral("preview_field_chart"));
    const QImage &small = preview.scrollImage()->image();
    EXPECT_TRUE(small.width() == 300 || small.height() == 200) << small.width() << "x" << small.height();
    EXPECT_NEAR(double(small.width()) / small.height(), double(chart.width()) / chart.height(), 0.02);
    EXPECT_EQ(small.depth(), 32);
    EXPECT_EQ(preview.scrollImage()->displayedSize(), QSize(300, 200));
    const TUScrollImage *over = overview.scrollImage();
    EXPECT_TRUE(over->borrowed());
    EXPECT_EQ(over->scaleFactor(), -3);
    EXPECT_EQ(over->image().cacheKey(), main.scrollImage()->image().cacheKey());
    EXPECT_EQ(over->displayedSize(), QSize(chart.width() / 4, chart.height() / 4));
    EXPECT_EQ(scrollPosition(over), QPoint(0, chart.height() / 8 - over->viewport()->height() / 2));

    EXPECT_EQ(main.scrollImage()->displayedSize(), QSize(chart.width() / 2, chart.height() / 2));
    overview.clear();
    main.clear();
    TUScanImage::copyFrom(&preview, &main);
    EXPECT_TRUE(preview.scrollImage()->image().isNull());
}

}  // namespace
