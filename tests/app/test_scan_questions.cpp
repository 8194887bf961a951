// The questions the scan loop puts to the operator at the station: a feeder
// that runs empty and a drawing that cannot be registered, each answered in
// every way it can be.
#include <QtGui>
#include <QtTest>

#include "station_window_fixture.h"

namespace {

// The feeder of the test scanner holds `count` sheets.
void fillFeeder(int count) {
    QFile f(QStringLiteral("ADF_COUNT_FILE"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(QByteArray::number(count) + '\n');
}

}  // namespace

class ScanQuestions : public StationWindowTest {
protected:
    // The colour test scanner, which feeds and registers optically, scanning
    // `device` (the painted chart or a drawing file), with a list of `numbers`.
    void startScanning(const QString &device, const QString &numbers) {
        ASSERT_NE(start(scannerBlock("Test Scanner", "Bogus-Color", {}, device.toStdString())), nullptr);
        ASSERT_TRUE(autofeed_of_ScanConfig(config_));
        ASSERT_TRUE(optical_of_ScanConfig(config_));
        buildList(numbers);
        ASSERT_EQ(window_->drawingList()->count(), numbers.count(' ') + 1);
    }
    // A sheet with nothing on it, so no peg holes either.
    QString blankDrawing() {
        QImage blank(850, 700, QImage::Format_RGB32);
        blank.fill(Qt::white);
        const QString path = dir_.filePath(QStringLiteral("blank.png"));
        EXPECT_TRUE(blank.save(path));
        return path;
    }
};

// Retry with the feeder still empty asks again, Retry once refilled scans
// the drawing, and Stop Scanning leaves the rest of the list as it was.
TEST_F(ScanQuestions, AnEmptyFeederIsRetriedOrStopped) {
    startScanning(QStringLiteral("fieldchart"), QStringLiteral("1 2"));
    fillFeeder(0);
    BoxOperator operatorAnswers(QStringList{"Retry", "Retry", "Stop Scanning"}, QStringLiteral("station_autofeed_error"));
    operatorAnswers.beforeAnswer = [&operatorAnswers] {
        if (operatorAnswers.titles.size() == 2) fillFeeder(1);
    };
    QTest::keyClick(window_.get(), Qt::Key_F5);
    ASSERT_EQ(operatorAnswers.titles, QStringList(3, QStringLiteral("Autofeed Error")));
    EXPECT_EQ(operatorAnswers.texts.first(), QStringLiteral("Drawing misfed or not found."));
    EXPECT_TRUE(row(0).startsWith(QStringLiteral("1 (Scanned) "))) << row(0).toStdString();
    EXPECT_EQ(row(1), QStringLiteral("2"));
    EXPECT_TRUE(window_->button(SessionButton::Scan)->isEnabled());
    EXPECT_FALSE(window_->button(SessionButton::Stop)->isEnabled());
}

// Retry feeds the same drawing again, Skip Drawing marks it and goes on to the
// next, Stop Scanning ends the list there.
TEST_F(ScanQuestions, ARegistrationFailureIsRetriedSkippedOrStopped) {
    startScanning(blankDrawing(), QStringLiteral("1 2 3"));
    BoxOperator operatorAnswers(
        QStringList{QStringLiteral("Retry"), QStringLiteral("Skip Drawing"), QStringLiteral("Stop Scanning")},
        QStringLiteral("station_registration_failed"));
    QTest::keyClick(window_.get(), Qt::Key_F5);
    ASSERT_EQ(operatorAnswers.titles.size(), 3) << operatorAnswers.titles.join(", ").toStdString();
    for (const QString &title : operatorAnswers.titles) EXPECT_EQ(title, QStringLiteral("Optical Registration Failed"));
    EXPECT_EQ(operatorAnswers.texts.first(),
              QStringLiteral("Unable to optically register this drawing.\nPress Retry to re-feed drawing, Skip "
                             "Drawing to\nproceed to next drawing, or Stop Scanning."));
    EXPECT_TRUE(row(0).startsWith(QStringLiteral("1 (Not Scanned)"))) << row(0).toStdString();
    EXPECT_EQ(row(1), QStringLiteral("2"));
    EXPECT_EQ(row(2), QStringLiteral("3"));
    EXPECT_TRUE(window_->button(SessionButton::Scan)->isEnabled());
    save_screenshot(window_.get(), QStringLiteral("station_registration_stopped"));
}
