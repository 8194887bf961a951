// The vectorize queue: entries go in whole, are taken once under a lease,
// come back when their worker's lease runs out, and record their outcome.
#include <tuple>

#include "db_backend_fixture.h"

class DbQueue : public DbBackendTest {
protected:
    void SetUp() override {
        DbBackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        db_->setClock([this] { return clock_; });
        ASSERT_EQ(db_->dba_OpenQueue(0, QStringLiteral("default"), &queue_), 0) << db_->lastError().toStdString();
        ASSERT_TRUE(queue_);
    }

    qint64 add(const QString &drawing, SqlDbAccess &db, dba_queue_struct *queue) {
        dba_queueEntry_struct entry;
        entry.queue = queue;
        entry.active = 1;
        entry.jobName = QStringLiteral("J");
        entry.sceneName = QStringLiteral("S");
        entry.elementName = QStringLiteral("E");
        entry.elementId = 17;
        entry.drawing = drawing;
        entry.options = QStringLiteral("-no_color_art -scanner_calibrate 1.01 0.99 ");
        entry.sceneId = 3;
        entry.process = DBA_PROCESS_PIX2VEC;
        entry.sceneVersion = 5000000000LL;
        EXPECT_EQ(db.dba_AddQueueEntry(queue, &entry), 0) << db.lastError().toStdString();
        EXPECT_EQ(entry.state, dba_queueState::Waiting);
        return entry.id;
    }
    qint64 add(const QString &drawing) { return add(drawing, *db_, queue_.get()); }

    qint64 clock_ = 1'000'000;
    std::unique_ptr<dba_queue_struct> queue_;
};

TEST_P(DbQueue, EntryKeepsEveryFieldAndListsInOrder) {
    const qint64 first = add(QStringLiteral("1"));
    clock_ += 5;
    const qint64 second = add(QStringLiteral("2"));
    ASSERT_GT(second, first);

    const auto e = db_->queueEntry(first);
    ASSERT_TRUE(e);
    EXPECT_EQ(std::tuple(e->environment, e->active, e->jobName, e->sceneName, e->elementName, e->elementId, e->drawing),
              std::tuple(QStringLiteral("default"), 1, QStringLiteral("J"), QStringLiteral("S"), QStringLiteral("E"), 17,
                         QStringLiteral("1")));
    EXPECT_EQ(e->options, QStringLiteral("-no_color_art -scanner_calibrate 1.01 0.99 "));
    EXPECT_EQ(std::tuple(e->sceneId, e->process, e->sceneVersion, e->state, e->createdAt, e->takenAt, e->worker),
              std::tuple(3, DBA_PROCESS_PIX2VEC, 5000000000LL, dba_queueState::Waiting, 1'000'000, 0, QString()));

    const auto all = db_->queueEntries();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].id, first);
    EXPECT_EQ(all[1].drawing, QStringLiteral("2"));
    EXPECT_FALSE(db_->queueEntry(second + 1));

    dba_queueEntry_struct orphan;
    EXPECT_NE(db_->dba_AddQueueEntry(nullptr, &orphan), 0);
    db_->dba_CloseQueue(&queue_);
    EXPECT_FALSE(queue_);
}

TEST_P(DbQueue, TakeGivesTheOldestOnceThenNothing) {
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w1"), 60));  // empty queue
    EXPECT_TRUE(db_->lastError().isEmpty());
    const qint64 first = add(QStringLiteral("1"));
    const qint64 second = add(QStringLiteral("2"));

    const auto a = db_->takeQueueEntry(QStringLiteral("w1"), 60);
    ASSERT_TRUE(a);
    EXPECT_EQ(std::tuple(a->id, a->state, a->worker, a->takenAt, a->leaseExpires),
              std::tuple(first, dba_queueState::Taken, QStringLiteral("w1"), clock_, clock_ + 60'000));
    // Another session (another process or machine) gets the next one.
    auto other = open();
    ASSERT_TRUE(other);
    other->setClock([this] { return clock_; });
    const auto b = other->takeQueueEntry(QStringLiteral("w2"), 60);
    ASSERT_TRUE(b);
    EXPECT_EQ(b->id, second);
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w3"), 60));
    EXPECT_FALSE(db_->takeQueueEntry(QString(), 60));
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w3"), 0));

    EXPECT_EQ(db_->queueEntries(dba_queueState::Taken).size(), 2u);
    EXPECT_TRUE(db_->queueEntries(dba_queueState::Waiting).empty());
}

TEST_P(DbQueue, DoneAndFailRecordTheOutcomeOfTakenEntriesOnly) {
    const qint64 first = add(QStringLiteral("1"));
    const qint64 second = add(QStringLiteral("2"));
    EXPECT_EQ(db_->finishQueueEntry(first), -1);  // still waiting
    ASSERT_TRUE(db_->takeQueueEntry(QStringLiteral("w1"), 60));
    ASSERT_TRUE(db_->takeQueueEntry(QStringLiteral("w1"), 60));
    clock_ += 1234;
    EXPECT_EQ(db_->finishQueueEntry(first, QStringLiteral("w2")), -1);  // not w2's
    ASSERT_EQ(db_->finishQueueEntry(first), 0);
    ASSERT_EQ(db_->failQueueEntry(second, QStringLiteral("no lines found"), QStringLiteral("w1")), 0);
    EXPECT_EQ(db_->finishQueueEntry(first), -1);  // done once is done
    EXPECT_EQ(db_->failQueueEntry(99999, QStringLiteral("x")), -1);

    const auto done = db_->queueEntry(first), failed = db_->queueEntry(second);
    EXPECT_EQ(std::tuple(done->state, done->finishedAt, done->worker), std::tuple(dba_queueState::Done, clock_, QStringLiteral("w1")));
    EXPECT_EQ(std::tuple(failed->state, failed->message), std::tuple(dba_queueState::Failed, QStringLiteral("no lines found")));
    // Finished entries are never offered again, however old.
    clock_ += 10'000'000;
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w1"), 60));
}

TEST_P(DbQueue, ExpiredLeaseOffersTheEntryAgainAndTheOldWorkerLosesIt) {
    const qint64 id = add(QStringLiteral("1"));
    ASSERT_TRUE(db_->takeQueueEntry(QStringLiteral("dead"), 10));
    clock_ += 9'999;
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w2"), 10));
    ASSERT_EQ(db_->renewQueueLease(id, QStringLiteral("dead"), 10), 0);
    EXPECT_EQ(db_->renewQueueLease(id, QStringLiteral("w2"), 10), -1);
    clock_ += 9'999;
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w2"), 10));
    clock_ += 2;
    const auto again = db_->takeQueueEntry(QStringLiteral("w2"), 10);
    ASSERT_TRUE(again);
    EXPECT_EQ(std::tuple(again->id, again->worker), std::tuple(id, QStringLiteral("w2")));
    EXPECT_EQ(db_->finishQueueEntry(id, QStringLiteral("dead")), -1);
    EXPECT_EQ(db_->finishQueueEntry(id, QStringLiteral("w2")), 0);
}

TEST_P(DbQueue, EachEnvironmentHasItsOwnQueue) {
    std::unique_ptr<dba_queue_struct> night;
    ASSERT_EQ(db_->dba_OpenQueue(0, QStringLiteral("night"), &night), 0);
    add(QStringLiteral("n1"), *db_, night.get());
    EXPECT_FALSE(db_->takeQueueEntry(QStringLiteral("w"), 60));  // the current environment is "default"
    ASSERT_EQ(db_->setEnvironment(QStringLiteral("night")), 0);
    const auto taken = db_->takeQueueEntry(QStringLiteral("w"), 60);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->environment, QStringLiteral("night"));
    EXPECT_EQ(db_->queueEntries().size(), 1u);  // listing spans environments
    EXPECT_EQ(db_->dba_OpenQueue(0, QString(), &night), -1);
}

DB_BACKEND_TESTS(DbQueue);
