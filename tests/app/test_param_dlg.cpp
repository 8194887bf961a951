// The parameter panel over the parameter sets of the test scanners.
#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "app/param_dlg.h"
#include "app/param_rgb_drop_widget.h"
#include "app/param_speed_widget.h"
#include "app/param_widget.h"
#include "scan/devices.h"
#include "scan/parameters.h"
#include "scan/scanner_device.h"
#include "qstring_print.h"
#include "support/screenshot.h"

namespace {

std::unique_ptr<ScanDeviceInfo> bogus(const char *model, QStringList dropColours = {}) {
    auto dev = std::make_unique<ScanDeviceInfo>();
    dev->model = QString::fromLatin1(model);
    dev->device = QStringLiteral("fieldchart");
    dev->rgbDropList = dropColours;
    EXPECT_TRUE(setup_model_of_devices(dev.get()));
    return dev;
}

// The widgets the panel shows, by name.
QString shownWidgets(TUParamDlg &dlg) {
    const std::pair<const char *, QWidget *> all[] = {
        {"threshold", dlg.thresholdWidget()}, {"black", dlg.blackPointWidget()}, {"white", dlg.whitePointWidget()},
        {"gamma", dlg.gammaWidget()},         {"speed", dlg.speedWidget()},      {"drop", dlg.rgbDropWidget()}};
    QStringList out;
    for (const auto &[name, w] : all)
        if (w && !w->isHidden()) out << name;
    return out.join(' ');
}

class ParamDlgTest : public ::testing::Test {
protected:
    void SetUp() override {
        dlg.setFixedWidth(280);
        dlg.show();
    }
    TUParamDlg dlg;
};

TEST_F(ParamDlgTest, EachDepthShowsWhatTheScannerOffers) {
    auto colour = bogus("Bogus-Color", {QStringLiteral("Red, 1, 0"), QStringLiteral("Green, 2, 0")});
    const struct {
        Standard_parameters *set;
        const char *shot, *widgets;
    } cases[] = {{bw_parameters_of_ScanDeviceInfo(colour.get()), "param_black_and_white", "threshold speed drop"},
                 {grey_parameters_of_ScanDeviceInfo(colour.get()), "param_grey", "black white speed drop"},
                 {colour_parameters_of_ScanDeviceInfo(colour.get()), "param_colour", "gamma speed"},
                 {nullptr, "", ""}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.shot);
        SCANAPP_DisplayParameters(c.set, &dlg);
        if (*c.shot) save_screenshot(&dlg, QString::fromLatin1(c.shot));
        EXPECT_EQ(shownWidgets(dlg), c.widgets);
    }
    // The threshold widget is kept for the next black and white set.
    TUParamThresholdWidget *threshold = dlg.thresholdWidget();
    SCANAPP_DisplayParameters(bw_parameters_of_ScanDeviceInfo(colour.get()), &dlg);
    EXPECT_EQ(dlg.thresholdWidget(), threshold);
    EXPECT_EQ(dlg.thresholdWidget()->valueLabel()->text(), QString::number(colour->default_threshold));
    EXPECT_EQ(dlg.rgbDropWidget()->colourBox()->count(), 2);
    EXPECT_EQ(dlg.rgbDropWidget()->colourBox()->itemText(0), QStringLiteral("Red, 1, 0"));
}

TEST_F(ParamDlgTest, SwitchingScannersFiresNoValueSignalAndMovesGoToTheNewSet) {
    auto first = bogus("Bogus-Color", {QStringLiteral("Red, 1, 0"), QStringLiteral("Green, 2, 0")});
    auto second = bogus("Bogus-B&W", {QStringLiteral("Blue, 3, 0")});
    Standard_parameters *a = bw_parameters_of_ScanDeviceInfo(first.get());
    Standard_parameters *b = bw_parameters_of_ScanDeviceInfo(second.get());
    set_threshold_of_Standard_parameters(a, 40);
    set_threshold_of_Standard_parameters(b, 200);
    set_rgbDrop_index_of_Standard_parameters(b, 0);
    SCANAPP_DisplayParameters(a, &dlg);

    QSignalSpy thresholdInt(dlg.thresholdWidget(), qOverload<Standard_parameters *, int>(&TUParamWidget::valueChanged));
    QSignalSpy thresholdDouble(dlg.thresholdWidget(),
                               qOverload<Standard_parameters *, double>(&TUParamWidget::valueChanged));
    QSignalSpy speed(dlg.speedWidget(), qOverload<Standard_parameters *, int>(&TUParamWidget::valueChanged));
    QSignalSpy drop(dlg.rgbDropWidget(), &TUParamRgbDropWidget::rgbChanged);
    const int32_t speedA = a->speed_current, speedB = b->speed_current;

    SCANAPP_DisplayParameters(b, &dlg);
    SCANAPP_DisplayParameters(a, &dlg);
    SCANAPP_DisplayParameters(b, &dlg);
    EXPECT_EQ(thresholdInt.count() + thresholdDouble.count() + speed.count() + drop.count(), 0);
    EXPECT_EQ(std::tie(a->threshold_current, b->threshold_current, a->speed_current, b->speed_current),
              std::tuple(40, 200, speedA, speedB));
    EXPECT_EQ(dlg.thresholdWidget()->slider()->value(), 200);
    EXPECT_EQ(dlg.rgbDropWidget()->colourBox()->currentText(), QStringLiteral("Blue, 3, 0"));

    // The operator's move now goes to the second scanner only.
    dlg.thresholdWidget()->slider()->setFocus();
    QTest::keyClick(dlg.thresholdWidget()->slider(), Qt::Key_Right);
    EXPECT_EQ(std::tie(a->threshold_current, b->threshold_current), std::tuple(40, 201));
    EXPECT_EQ(dlg.thresholdWidget()->valueLabel()->text(), QStringLiteral("201"));
    ASSERT_EQ(thresholdInt.count(), 1);
    EXPECT_EQ(thresholdInt.at(0).at(0).value<Standard_parameters *>(), b);
}

// Gamma runs on the slider at a hundred times its value; a drop colour
// chosen is written, and no choice stays empty.
TEST_F(ParamDlgTest, GammaAndDropColourOfABareSet) {
    Standard_parameters set;
    ASSERT_TRUE(init_gamma_of_Standard_parameters(&set, 0.01f, 3.0f, 1.0f));
    ASSERT_TRUE(init_rgbDrop_of_Standard_parameters(
        &set, {QStringLiteral("None, 0"), QStringLiteral("Red, 1, 0"), QStringLiteral("Green, 2, 0")}));
    set.rgbDrop_index = -1;
    SCANAPP_DisplayParameters(&set, &dlg);
    QComboBox *box = dlg.rgbDropWidget()->colourBox();
    EXPECT_EQ(box->currentIndex(), -1);
    box->setCurrentIndex(2);
    EXPECT_EQ(set.rgbDrop_index, 2);
    EXPECT_EQ(rgbDrop_of_Standard_parameters(&set), QStringLiteral("2, 0"));
    QSlider *slider = dlg.gammaWidget()->slider();
    EXPECT_EQ(slider->value(), 100);
    EXPECT_EQ(slider->minimum(), 1);
    EXPECT_EQ(slider->maximum(), 300);
    EXPECT_EQ(dlg.gammaWidget()->valueLabel()->text(), QStringLiteral("1"));

    slider->setValue(65);
    EXPECT_FLOAT_EQ(set.gamma_current, 0.65f);
    EXPECT_EQ(dlg.gammaWidget()->valueLabel()->text(), QStringLiteral("0.65"));
    save_screenshot(&dlg, QStringLiteral("param_gamma_065"));

    // 0.65 is stored as a float a little below: the half step keeps it at 65.
    SCANAPP_DisplayParameters(&set, &dlg);
    EXPECT_EQ(slider->value(), 65);
}

// Presets hold the slider and Custom frees it; a set offers only its own
// modes, and a value off the presets of a set without Custom is named, not
// left blank.
TEST_F(ParamDlgTest, SpeedModes) {
    auto colour = bogus("Bogus-Color");
    Standard_parameters *bw = bw_parameters_of_ScanDeviceInfo(colour.get());  // normal 15000, fast 2000, custom
    set_speed_of_Standard_parameters(bw, 15000);
    SCANAPP_DisplayParameters(bw, &dlg);
    TUParamSpeedWidget *speed = dlg.speedWidget();
    QComboBox *modes = speed->modeBox();
    ASSERT_EQ(modes->count(), 3);
    EXPECT_EQ(modes->currentText(), QStringLiteral("Normal"));
    EXPECT_EQ(speed->slider()->value(), 15000);
    EXPECT_FALSE(speed->slider()->isEnabled() || speed->unitLabel()->isEnabled());
    EXPECT_EQ(speed->unitLabel()->text(), QStringLiteral("Milliseconds/Line"));
    save_screenshot(&dlg, QStringLiteral("param_speed_normal"));
    modes->setCurrentIndex(1);  // Fast
    EXPECT_EQ(bw->speed_current, 2000);
    EXPECT_EQ(speed->slider()->value(), 2000);
    modes->setCurrentIndex(2);  // Custom
    EXPECT_TRUE(speed->slider()->isEnabled());
    speed->slider()->setValue(500);
    EXPECT_EQ(bw->speed_current, 500);
    SCANAPP_DisplayParameters(bw, &dlg);
    EXPECT_EQ(modes->currentText(), QStringLiteral("Custom"));
    EXPECT_TRUE(speed->slider()->isEnabled());

    Standard_parameters set;
    ASSERT_TRUE(init_speed_of_Standard_parameters(&set, 5, 300, 40, "Milliseconds/Line", false, 0, false, 0, true));
    SCANAPP_DisplayParameters(&set, &dlg);
    ASSERT_EQ(modes->count(), 1);
    EXPECT_EQ(modes->itemText(0), QStringLiteral("Custom"));
    EXPECT_EQ(speed->slider()->value(), 40);

    Standard_parameters *grey = grey_parameters_of_ScanDeviceInfo(colour.get());  // 10; normal, fast, no custom
    SCANAPP_DisplayParameters(grey, &dlg);
    EXPECT_EQ(modes->currentText(), QStringLiteral("Custom"));
    EXPECT_FALSE(speed->slider()->isEnabled()) << "the set takes no custom value";
    EXPECT_EQ(speed->slider()->value(), 10);
    save_screenshot(&dlg, QStringLiteral("param_speed_off_presets"));
    modes->setCurrentIndex(0);
    EXPECT_EQ(grey->speed_current, 15000);
}

}  // namespace
