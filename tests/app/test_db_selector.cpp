#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include "app/tudb_select_dlg.h"
#include "app/tudb_selector.h"
#include "app/tudb_user_dialog.h"
#include "window_fixture.h"
#include "support/screenshot.h"
#include "workflow/connect_database.h"

namespace {

void choose(QListWidget *list, const QString &text) {
    const auto items = list->findItems(text, Qt::MatchExactly);
    ASSERT_EQ(items.size(), 1) << text.toStdString();
    list->setCurrentItem(items.first());
}

QStringList texts(const QListWidget *list) {
    QStringList out;
    for (int row = 0; row < list->count(); ++row) out << list->item(row)->text();
    return out;
}

class DbSelectorTest : public ProductionTest {
protected:
    void SetUp() override {
        ProductionTest::SetUp();
        envBefore_ = db_->envName();
        element_ = makeElement();
        const auto scene = db_->findScene(db_->findJob(QStringLiteral("J"))->id, QStringLiteral("S"));
        ASSERT_TRUE(scene && db_->createElement(scene->id, {.name = "Paint", .path = "Paint", .scanType = LMV_SCAN_COLOUR}));
        const auto other = db_->createJob(QStringLiteral("K"));
        ASSERT_TRUE(other && db_->createScene(other->id, QStringLiteral("T"), dir_.filePath(QStringLiteral("T"))));
    }
    LMV_element_data element_;
    QString envBefore_;
};

}  // namespace

TEST_F(DbSelectorTest, LogsInThenOpensTheChosenElement) {
    QObject steps;
    TUDbUserDialog login(db_.get(), db_.get(), selector_user_types());
    atNextDialog<TUDbUserDialog>(&steps, [&](TUDbUserDialog *shown) {
        EXPECT_EQ(shown->typeBox()->count(), 9);  // never the vectorize service
        EXPECT_EQ(shown->typeBox()->currentText(), QStringLiteral("Scanner Operator"));
        shown->userEdit()->setText(QStringLiteral("mia"));
        shown->environmentEdit()->clear();
        EXPECT_FALSE(shown->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->isEnabled());
        QTest::keyClicks(shown->environmentEdit(), QStringLiteral("stu/dio"));
        save_screenshot(shown, QStringLiteral("db_login"));
        QTest::mouseClick(childWithText<QPushButton>(shown, "OK"), Qt::LeftButton);
    });
    EXPECT_EQ(login.exec(), QDialog::Accepted);
    EXPECT_EQ(db_->userName(), QStringLiteral("mia"));
    EXPECT_EQ(db_->envName(), QStringLiteral("studio"));
    ASSERT_TRUE(db_->createJob(QStringLiteral("L")));  // the new environment's own job

    TUDbSelector selector(db_.get(), db_.get(), selector_user_types());
    atNextDialog<TUDbSelectDlg>(&steps, [&](TUDbSelectDlg *select) {
        EXPECT_EQ(texts(select->jobList()), QStringList({"L"}));
    });
    EXPECT_EQ(selector.run(false), TUDbSelector::Cancelled);
    ASSERT_EQ(db_->setEnvironment(envBefore_), 0);

    atNextDialog<TUDbSelectDlg>(&steps, [&](TUDbSelectDlg *select) {
        EXPECT_EQ(texts(select->jobList()), QStringList({"J", "K"}));
        choose(select->jobList(), QStringLiteral("K"));
        EXPECT_EQ(texts(select->sceneList()), QStringList({"T"}));
        EXPECT_EQ(select->elementList()->count(), 0);
        choose(select->jobList(), QStringLiteral("J"));
        choose(select->sceneList(), QStringLiteral("S"));
        EXPECT_EQ(texts(select->elementList()), QStringList({"E", "Paint"}));
        // No colour scanner: the colour element cannot be taken.
        EXPECT_FALSE(select->elementList()->item(1)->flags() & Qt::ItemIsEnabled);
        choose(select->elementList(), QStringLiteral("E"));
        save_screenshot(select, QStringLiteral("db_select"));
        QTest::mouseClick(childWithText<QPushButton>(select, "OK"), Qt::LeftButton);
    });
    EXPECT_EQ(selector.run(false), TUDbSelector::Selected);
    EXPECT_EQ(db_->jobName(), QStringLiteral("J"));
    EXPECT_EQ(db_->sceneName(), QStringLiteral("S"));
    EXPECT_EQ(selector.elementId(), element_.id);
    EXPECT_EQ(db_->selectedElementId(), element_.id);
}

// A failed read is an error to the operator, never an empty list.
TEST_F(DbSelectorTest, AFailedReadIsReportedNotShownAsNoScenes) {
    hideTable(QStringLiteral("scenes"));
    TUDbSelectDlg select(db_.get(), false);
    whileOpen(select, [&] {
        choose(select.jobList(), QStringLiteral("J"));
        EXPECT_EQ(select.sceneList()->count(), 0);
    });
    select.exec();
    ASSERT_FALSE(reported().isEmpty());
    EXPECT_TRUE(reported().last().startsWith("Cannot read the production database: ")) << reported().last().toStdString();
}
