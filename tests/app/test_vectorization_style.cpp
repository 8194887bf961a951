// The style list as the operator uses it: choosing, cancelling back to the
// former choice, and the window's label and queue line following the choice.
#include <QtWidgets>
#include <QtTest>

#include "station_window_fixture.h"
#include "vectorize/ui/tuvect_options_dlg.h"

namespace {

const char *const kStyles =
    "# the studio's styles\n"
    "style_name: Clean Line\n"
    "options: -smooth 4\n"
    "style_name: Ink\n"
    "options: -gap 2 -no_color_art\n";

class VectorizationStyleTest : public StationWindowTest {
protected:
    void SetUp() override {
        StationWindowTest::SetUp();
        oldEtc_ = qgetenv("SCAN_ETC");
        qputenv("SCAN_ETC", dir_.path().toUtf8());
        QFile file(dir_.filePath(QStringLiteral("VectOptions.conf")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(kStyles);
    }
    void TearDown() override {
        qputenv("SCAN_ETC", oldEtc_);
        StationWindowTest::TearDown();
    }
    QByteArray oldEtc_;
};

}  // namespace

// The window names the style in force from the start; OK takes the chosen
// style for the queue's line, Cancel goes back to the row chosen before.
TEST_F(VectorizationStyleTest, TheWindowNamesTheChosenStyleAndQueuesItsLine) {
    start(twoScanners());
    QAction *action = childWithText<QAction>(window_.get(), "&Vectorize Style...");
    ASSERT_TRUE(action && action->isEnabled());
    EXPECT_EQ(window_->vectorizationStyleLabel()->text(), "Vectorization Style: Default Style");
    action->trigger();
    TUVectOptionsDlg *dialog = window_->styleDialog();
    ASSERT_TRUE(dialog && dialog->isVisible());
    EXPECT_EQ(dialog->list()->count(), 3);
    EXPECT_EQ(dialog->currentOptions(), " ");
    dialog->list()->setCurrentRow(2);
    save_screenshot(dialog, QStringLiteral("vectorization_styles"));
    QTest::mouseClick(childWithText<QPushButton>(dialog, "&OK"), Qt::LeftButton);
    EXPECT_EQ(window_->vectorizationStyleLabel()->text(), "Vectorization Style: Ink");
    EXPECT_EQ(window_->vectorizationStyleLine(), "-gap 2 -no_color_art");
    save_screenshot(window_.get(), QStringLiteral("station_vectorization_style"));

    action->trigger();
    EXPECT_EQ(window_->styleDialog(), dialog) << "one list per session";
    dialog->list()->setCurrentRow(1);
    EXPECT_EQ(dialog->currentName(), "Clean Line");
    dialog->reject();
    EXPECT_EQ(dialog->currentName(), "Ink") << "Cancel restores the row noted at show";
    EXPECT_EQ(dialog->list()->currentRow(), 2);
    EXPECT_EQ(window_->vectorizationStyleLine(), "-gap 2 -no_color_art");
}

TEST_F(VectorizationStyleTest, AMissingStyleListIsToldOnceAtStartAndNotDuringAScan) {
    const QString path = dir_.filePath(QStringLiteral("VectOptions.conf"));
    ASSERT_TRUE(QFile::remove(path));
    start(twoScanners());
    EXPECT_EQ(reported().count("Error opening file " + path), 1);
    EXPECT_EQ(window_->vectorizationStyleLabel()->text(), "Vectorization Style: Default Style");
    EXPECT_EQ(window_->vectorizationStyleLine(), " ") << "the queue line of a scan";
    EXPECT_EQ(reported().count("Error opening file " + path), 1);
}
