#pragma once
// Runs the built scanctl's database commands against one test database: an
// embedded SQLite file in a temporary folder, or a fresh database on the
// throwaway PostgreSQL server.
#include <QtCore>
#include <QtSql>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "suite/db/sql_db_access.h"
#include "support/pg_test_server.h"
#include "support/raw_sql.h"
#include "support/run_program.h"

enum class ScanctlBackend { SQLite, PostgreSQL };

inline std::string scanctlBackendName(const ::testing::TestParamInfo<ScanctlBackend> &info) {
    return info.param == ScanctlBackend::SQLite ? "SQLite" : "PostgreSQL";
}

class ScanctlDbTest : public ::testing::Test {
protected:
    // Chooses the database; false (with a failure) when it can't be had.
    void useBackend(ScanctlBackend backend) {
        ASSERT_TRUE(dir_.isValid());
        if (backend == ScanctlBackend::SQLite) {
            connection_ = dir_.filePath(QStringLiteral("production.db"));
            return;
        }
        // The server programs are part of the station's set-up: when they are
        // there, a server that does not start is a failure, not a skip.
        if (!PgTestServer::installed()) GTEST_SKIP() << "PostgreSQL is not installed";
        PgTestServer &server = PgTestServer::instance();
        ASSERT_TRUE(server.running()) << server.error().toStdString();
        connection_ = server.createDatabase();
        ASSERT_FALSE(connection_.isEmpty()) << server.error().toStdString();
    }

    // The test's database, after the group and subcommand words (before any
    // "--"), unless the words name another.
    QStringList withDb(QStringList args) const {
        if (!args.contains(QStringLiteral("--db"))) {
            args.insert(std::min<qsizetype>(2, args.size()), QStringLiteral("--db"));
            args.insert(std::min<qsizetype>(3, args.size()), connection_);
        }
        return args;
    }

    ProcessResult scanctl(const QStringList &args, int timeoutMs = 30000) const {
        return run_program(QStringLiteral(SCANCTL_PATH), withDb(args), dir_.path(), timeoutMs);
    }

    // Starts scanctl and returns at once.
    std::unique_ptr<QProcess> start(const QStringList &args) const {
        auto p = std::make_unique<QProcess>();
        p->setWorkingDirectory(dir_.path());
        p->start(QStringLiteral(SCANCTL_PATH), withDb(args));
        return p;
    }

    // Waits for a started scanctl to end by itself.
    static bool finish(QProcess &p, int timeoutMs = 60000) {
        return p.waitForFinished(timeoutMs) && p.exitStatus() == QProcess::NormalExit;
    }

    // Job J, scene S in the temporary folder, element E with the given
    // vectorize word, all through scanctl.
    void makeProduction(const QString &vectorize = QStringLiteral("vectorize")) {
        for (const QStringList &args :
             {QStringList{"db", "create-job", "J"},
              QStringList{"db", "create-scene", "J", "S", "--path", dir_.filePath(QStringLiteral("scenes/S"))},
              QStringList{"db", "create-element", "J", "S", "E", "--scan-type", "bw", "--vectorize", vectorize,
                          "--field", "12"}}) {
            const ProcessResult r = scanctl(args);
            ASSERT_EQ(r.status, 0) << args.join(' ').toStdString() << ": " << r.err.toStdString();
        }
    }

    // Runs one statement on the test's database over a connection of its own.
    bool rawSql(const QString &statement) const { return raw_sql(connection_, statement); }
    // For messages: the database as scanctl names it.
    QString described() const {
        DbConnectionSettings settings;
        DbConnectionSettings::parse(connection_, settings);
        return settings.describe();
    }

    // A session of the test itself on the same database.
    std::unique_ptr<SqlDbAccess> openDirectly() const {
        auto db = std::make_unique<SqlDbAccess>(connection_);
        EXPECT_EQ(db->dba_Open2dDatabaseSession(), 0) << db->lastError().toStdString();
        return db->isOpen() ? std::move(db) : nullptr;
    }

    QTemporaryDir dir_;
    QString connection_;
};
