#pragma once
// Runs the same tests against an embedded SQLite file and against the
// throwaway PostgreSQL server; each test gets a fresh, empty database.
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

#include "suite/db/sql_db_access.h"
#include "support/pg_test_server.h"

enum class DbBackend { SQLite, PostgreSQL };

inline std::string dbBackendName(const ::testing::TestParamInfo<DbBackend> &info) {
    return info.param == DbBackend::SQLite ? "SQLite" : "PostgreSQL";
}

class DbBackendTest : public ::testing::TestWithParam<DbBackend> {
protected:
    void SetUp() override {
        if (GetParam() == DbBackend::SQLite) {
            ASSERT_TRUE(dir_.isValid());
            connection_ = dir_.filePath(QStringLiteral("production.db"));
        } else {
            if (!PgTestServer::installed()) GTEST_SKIP() << "PostgreSQL is not installed";
            PgTestServer &server = PgTestServer::instance();
            ASSERT_TRUE(server.running()) << server.error().toStdString();
            connection_ = server.createDatabase();
            ASSERT_FALSE(connection_.isEmpty()) << server.error().toStdString();
        }
        db_ = open();
        ASSERT_TRUE(db_);
    }
    // A further session on the test's database (another station or worker).
    std::unique_ptr<SqlDbAccess> open() {
        auto db = std::make_unique<SqlDbAccess>(connection_);
        db->dba_Initialize2dSystem(QStringLiteral("test"));
        if (db->dba_Open2dDatabaseSession() != 0) {
            ADD_FAILURE() << "cannot open " << connection_.toStdString() << ": " << db->lastError().toStdString();
            return nullptr;
        }
        return db;
    }
    // A job "J", scene "S" at `scenePath` and element "E" that wants Vectorize.
    LMV_element_data makeElement(const QString &scenePath = QStringLiteral("/studio/j/s")) {
        const auto job = db_->createJob(QStringLiteral("J"));
        EXPECT_TRUE(job) << db_->lastError().toStdString();
        if (!job) return {};
        const auto scene = db_->createScene(job->id, QStringLiteral("S"), scenePath);
        EXPECT_TRUE(scene) << db_->lastError().toStdString();
        if (!scene) return {};
        LMV_element_data spec;
        spec.name = QStringLiteral("E");
        spec.path = QStringLiteral("E");
        spec.scanType = LMV_SCAN_BW;
        spec.needsVectorization = LMV_VECTORIZE;
        spec.fieldChart = 16;
        const auto element = db_->createElement(scene->id, spec);
        EXPECT_TRUE(element) << db_->lastError().toStdString();
        return element.value_or(LMV_element_data{});
    }

    QTemporaryDir dir_;
    QString connection_;
    std::unique_ptr<SqlDbAccess> db_;
};

#define DB_BACKEND_TESTS(suite)                                                                                       \
    INSTANTIATE_TEST_SUITE_P(Backends, suite, ::testing::Values(DbBackend::SQLite, DbBackend::PostgreSQL),             \
                             dbBackendName)
