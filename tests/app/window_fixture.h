#pragma once
// Shared set-up of the window tests: a production in an embedded SQLite file
// in a temporary folder with reports recorded instead of shown, an operator
// who answers message boxes, and ways to act inside a modal dialog.
#include <QtWidgets>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "suite/base/message_fixture.h"
#include "suite/db/sql_db_access.h"
#include "support/raw_sql.h"
#include "support/screenshot.h"

// Answers the message boxes that open: the n-th with the n-th answer, those
// after the last answer with the last one; saves a screenshot of the first box
// as `shot`. `beforeAnswer` runs just before each answer is given.
class BoxOperator : public QObject {
public:
    BoxOperator(QStringList answers, QString shot) : answers_(std::move(answers)), shot_(std::move(shot)) {
        connect(&timer_, &QTimer::timeout, this, &BoxOperator::look);
        timer_.start(5);
    }
    BoxOperator(const QString &answer, QString shot) : BoxOperator(QStringList{answer}, std::move(shot)) {}
    QStringList titles;
    QStringList texts;
    std::function<void()> beforeAnswer;

private:
    void look() {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible()) return;
        const QString answer = answers_.at(std::min<qsizetype>(titles.size(), answers_.size() - 1));
        titles << box->windowTitle();
        texts << box->text();
        if (!shot_.isEmpty()) save_screenshot(box, shot_);
        shot_.clear();
        if (beforeAnswer) beforeAnswer();
        for (QAbstractButton *b : box->buttons())
            if (b->text() == answer) return b->click();
        box->reject();
    }
    QStringList answers_;
    QString shot_;
    QTimer timer_;
};

// The child of `parent` of type T (a button or an action) with this text.
template <typename T>
T *childWithText(const QObject *parent, const QString &text) {
    for (T *child : parent->findChildren<T *>())
        if (child->text() == text) return child;
    ADD_FAILURE() << "no " << text.toStdString();
    return nullptr;
}

// Acts once on the next modal dialog of type T, which is closed afterwards
// if the step left it open; the watch ends with `owner`.
template <typename T>
void atNextDialog(QObject *owner, std::function<void(T *)> step) {
    auto *timer = new QTimer(owner);
    QObject::connect(timer, &QTimer::timeout, owner, [timer, step] {
        auto *dialog = qobject_cast<T *>(QApplication::activeModalWidget());
        if (!dialog) return;
        timer->stop();
        step(dialog);
        if (dialog->isVisible()) dialog->reject();
    });
    timer->start(5);
}

class ProductionTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        ASSERT_TRUE(QDir(dir_.path()).mkdir(QStringLiteral("logs")));
        messages_ = std::make_unique<InstalledMessage>(
            std::make_unique<RecordingMessage>(settingsIn(dir_.filePath(QStringLiteral("logs")))));
        db_ = std::make_unique<SqlDbAccess>(dir_.filePath(QStringLiteral("production.db")));
        db_->dba_Initialize2dSystem(QStringLiteral("test"));
        ASSERT_EQ(db_->dba_Open2dDatabaseSession(), 0) << db_->lastError().toStdString();
    }

    // Job J, scene S and black and white element E in it.
    LMV_element_data makeElement() {
        const auto job = db_->createJob(QStringLiteral("J"));
        const auto scene = job ? db_->createScene(job->id, QStringLiteral("S"), dir_.filePath(QStringLiteral("S"))) : std::nullopt;
        const auto element =
            scene ? db_->createElement(scene->id, {.name = "E", .path = "E", .scanType = LMV_SCAN_BW}) : std::nullopt;
        EXPECT_TRUE(element) << db_->lastError().toStdString();
        return element.value_or(LMV_element_data{});
    }

    void openScene() {
        ASSERT_EQ(db_->selectJob(QStringLiteral("J")), 0) << db_->lastError().toStdString();
        ASSERT_EQ(db_->selectScene(QStringLiteral("S")), 0) << db_->lastError().toStdString();
    }

    // Renames a table of the production file behind the session's back, so
    // that the next read of it fails.
    void hideTable(const QString &table) const {
        ASSERT_TRUE(raw_sql(dir_.filePath(QStringLiteral("production.db")),
                            QStringLiteral("ALTER TABLE %1 RENAME TO hidden_%1").arg(table)));
    }

    // Schedules `inside` for when `dialog` runs its modal loop next; a
    // dialog still open afterwards is rejected.
    static void whileOpen(QDialog &dialog, const std::function<void()> &inside) {
        QTimer::singleShot(0, &dialog, [&dialog, inside] {
            inside();
            if (dialog.isVisible()) dialog.reject();
        });
    }

    // The texts shown to the operator so far.
    QStringList reported() const {
        QStringList texts;
        for (const auto &shown : static_cast<RecordingMessage *>(messages_->get())->shown) texts << shown.texts;
        return texts;
    }

    QTemporaryDir dir_;
    std::unique_ptr<InstalledMessage> messages_;
    std::unique_ptr<SqlDbAccess> db_;
};
