// The report box the operator sees, alone and through the station's message
// object: headings, the cut list, the Ignore buttons, suspension and
// re-entrance.
#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include <functional>

#include "app/report_box.h"
#include "app/tuuimessage.h"
#include "suite/base/msg_scope.h"
#include "window_fixture.h"
#include "support/screenshot.h"

namespace {

QStringList numbered(int n) {
    QStringList out;
    for (int i = 1; i <= n; ++i) out << QStringLiteral("Message %1").arg(i);
    return out;
}

QStringList buttonTexts(const QMessageBox &box) {
    QStringList out;
    for (QAbstractButton *b : box.buttons()) out << b->text();
    out.sort();
    return out;
}

// The box takes heading and text from the pending report (tested with it);
// here, what the box adds: icon, title, buttons and width.
TEST(ReportBox, HeadingIconAndButtonsOfEachSeverity) {
    const auto box = makeReportBox('E', {QStringLiteral("The scanner did not answer.")}, false, "Scan", nullptr);
    EXPECT_EQ(box->text(), "The following error occurred:\nThe scanner did not answer.");
    EXPECT_EQ(box->windowTitle(), "Scan");
    EXPECT_EQ(buttonTexts(*box), QStringList{"OK"});
    box->show();
    save_screenshot(box.get(), "report_one_error");
    EXPECT_GE(box->width(), kReportBoxWidth);
    for (auto [severity, icon] : {std::pair{'E', QMessageBox::Critical}, {'W', QMessageBox::Warning},
                                  {'I', QMessageBox::Information}})
        EXPECT_EQ(makeReportBox(severity, {"a", "b"}, false, "Scan", nullptr)->icon(), icon) << severity;

    const auto warnings = makeReportBox('W', {QStringLiteral("First"), QStringLiteral("Second")}, false, "Scan", nullptr);
    warnings->show();
    save_screenshot(warnings.get(), "report_two_warnings");
    const auto thirty = makeReportBox('E', numbered(30), false, "Scan", nullptr);
    thirty->show();
    save_screenshot(thirty.get(), "report_thirty_errors");
}

TEST(ReportBox, IgnoreAllIsToldApartFromIgnore) {
    for (const bool all : {false, true}) {
        const auto box = makeReportBox('W', {"Paper jam"}, true, "Scan", nullptr);
        EXPECT_EQ(buttonTexts(*box), (QStringList{"Ignore", "Ignore All"}));
        box->show();
        if (!all) save_screenshot(box.get(), "report_ignore_buttons");
        QAbstractButton *target = nullptr;
        for (QAbstractButton *b : box->buttons())
            if (b->text() == (all ? "Ignore All" : "Ignore")) target = b;
        ASSERT_NE(target, nullptr);
        QTest::mouseClick(target, Qt::LeftButton);
        EXPECT_EQ(isIgnoreAll(*box), all);
    }
    // An OK box has no Ignore All to be chosen.
    const auto ok = makeReportBox('E', {"x"}, false, "Scan", nullptr);
    ok->show();
    QTest::mouseClick(ok->buttons().front(), Qt::LeftButton);
    EXPECT_FALSE(isIgnoreAll(*ok));
}

// The station's message object, answered by an operator who presses OK.
class StationMessages : public ::testing::Test {
protected:
    void SetUp() override {
        TUMessage::Settings s;
        s.appName = QStringLiteral("Scan");
        TUMessage::setInstance(std::make_unique<TUUIMessage>(s));
    }
    void TearDown() override { TUMessage::takeInstance(); }
};

// An error is shown at once; one raised while its box is open comes after it.
TEST_F(StationMessages, AReportRaisedWhileOneIsOpenComesAfterItOnce) {
    BoxOperator ok(QStringLiteral("OK"), QStringLiteral("report_station_error"));
    bool returnedAtOnce = false;
    ok.beforeAnswer = [&] {
        if (ok.texts.size() > 1) return;
        MSG_Scope(MSG_Text::untranslated("Second"), MSG_ACTION_ERROR);
        returnedAtOnce = ok.texts.size() == 1;  // no box opened inside the first
    };
    MSG_Scope(MSG_Text::untranslated("First"), MSG_ACTION_ERROR);
    EXPECT_TRUE(returnedAtOnce);
    EXPECT_EQ(ok.texts, (QStringList{"The following error occurred:\nFirst", "The following error occurred:\nSecond"}));
}

TEST_F(StationMessages, SuspendedReportsWaitAndComeAsOneList) {
    BoxOperator ok(QStringLiteral("OK"), QStringLiteral("report_flushed_after_suspension"));
    TUMessage *m = TUMessage::instance();
    m->suspendReport(true);
    MSG_Scope(MSG_Text::untranslated("Lamp warming up"), MSG_ACTION_FATAL);
    MSG_Scope(MSG_Text::untranslated("Feeder empty"), MSG_ACTION_ERROR);
    QTest::qWait(30);
    EXPECT_TRUE(ok.texts.isEmpty());
    m->suspendReport(false);
    EXPECT_EQ(ok.texts, QStringList{"The following errors occurred:\n - Lamp warming up\n - Feeder empty\n"});
}

}  // namespace
