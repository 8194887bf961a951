// The station's connection at start-up, to the database $SCAN_DB names.
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "suite/db/tudbaccess.h"
#include "support/message_capture.h"
#include "workflow/connect_database.h"

namespace {

class ConnectDatabaseTest : public ::testing::Test {
protected:
    void SetUp() override { old_ = qgetenv("SCAN_DB"); }
    void TearDown() override { qputenv("SCAN_DB", old_); }
    QByteArray old_;
    QTemporaryDir dir_;
    MessageCapture capture_;
};

TEST_F(ConnectDatabaseTest, AnEmbeddedDatabaseIsMadeAndOpened) {
    qputenv("SCAN_DB", dir_.filePath("station.db").toLocal8Bit());
    std::unique_ptr<TUDbAccess> db;
    EXPECT_EQ(ConnectDatabase(db), 1);
    ASSERT_NE(db, nullptr);
    EXPECT_FALSE(db->envName().isEmpty()) << "a session with its environment";
    EXPECT_TRUE(QFile::exists(dir_.filePath("station.db")));
    EXPECT_TRUE(capture_.texts('F').empty());
}

}  // namespace
