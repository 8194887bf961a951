#include "support/pg_test_server.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace {
const QString kBin = QStringLiteral("/usr/lib/postgresql/15/bin/");
const QString kUser = QStringLiteral("postgres");

// Stops the server once the tests are over, while the application still exists.
struct StopAtEnd : ::testing::Environment {
    void TearDown() override { PgTestServer::instance().stop(); }
};
}  // namespace

bool PgTestServer::installed() { return QFile::exists(kBin + QStringLiteral("initdb")); }

PgTestServer &PgTestServer::instance() {
    static PgTestServer *server = [] {
        ::testing::AddGlobalTestEnvironment(new StopAtEnd);
        return new PgTestServer;
    }();
    return *server;
}

bool PgTestServer::run(const QString &program, const QStringList &args) {
    QProcess p;
    if (asPostgresUser_)
        p.start(QStringLiteral("runuser"), QStringList{QStringLiteral("-u"), kUser, QStringLiteral("--"), kBin + program} + args);
    else
        p.start(kBin + program, args);
    if (p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0) return true;
    error_ = QStringLiteral("%1 failed: %2 %3")
                 .arg(program, QString::fromLocal8Bit(p.readAllStandardError()),
                      QString::fromLocal8Bit(p.readAllStandardOutput()));
    return false;
}

PgTestServer::PgTestServer() {
    char pattern[] = "/tmp/scan-pg-XXXXXX";
    if (!installed()) {
        error_ = QStringLiteral("the PostgreSQL server programs are not installed");
        return;
    }
    if (!mkdtemp(pattern)) {
        error_ = QStringLiteral("cannot make a temporary folder");
        return;
    }
    dir_ = QString::fromLocal8Bit(pattern);
    if (geteuid() == 0) {  // the server refuses root
        const passwd *pw = getpwnam("postgres");
        if (!pw || chown(pattern, pw->pw_uid, pw->pw_gid) != 0) {
            error_ = QStringLiteral("cannot hand %1 to the postgres user").arg(dir_);
            return;
        }
        asPostgresUser_ = true;
    }
    running_ = run(QStringLiteral("initdb"), {QStringLiteral("-D"), dir_ + QStringLiteral("/data"), QStringLiteral("-U"),
                                              kUser, QStringLiteral("-A"), QStringLiteral("trust"), QStringLiteral("-E"),
                                              QStringLiteral("UTF8"), QStringLiteral("--no-sync")}) &&
               resume();
}

bool PgTestServer::resume() {
    const QString options = QStringLiteral("-k %1 -h '' -F -c max_connections=60").arg(dir_);
    return run(QStringLiteral("pg_ctl"), {QStringLiteral("-D"), dir_ + QStringLiteral("/data"), QStringLiteral("-o"), options,
                                          QStringLiteral("-l"), dir_ + QStringLiteral("/server.log"), QStringLiteral("-w"),
                                          QStringLiteral("start")});
}

bool PgTestServer::halt() {
    return run(QStringLiteral("pg_ctl"), {QStringLiteral("-D"), dir_ + QStringLiteral("/data"), QStringLiteral("-m"),
                                          QStringLiteral("immediate"), QStringLiteral("stop")});
}

QString PgTestServer::url(const QString &database) const {
    return QStringLiteral("postgresql://%1@/%2?host=%3").arg(kUser, database, dir_);
}

QString PgTestServer::createDatabase() {
    if (!running_) return QString();
    const QString name = QStringLiteral("test_%1").arg(++databases_);
    const QString connection = QStringLiteral("pg_test_server_admin");
    bool ok;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
        db.setHostName(dir_);
        db.setUserName(kUser);
        db.setDatabaseName(kUser);
        if ((ok = db.open())) {
            QSqlQuery q(db);
            if (!(ok = q.exec(QStringLiteral("CREATE DATABASE %1").arg(name)))) error_ = q.lastError().text();
        } else {
            error_ = db.lastError().text();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return ok ? url(name) : QString();
}

void PgTestServer::stop() {
    if (running_) halt();
    running_ = false;
    if (!dir_.isEmpty()) QDir(dir_).removeRecursively();
    dir_.clear();
}
