#pragma once
// A throwaway PostgreSQL server for the tests of one test program: made with
// initdb in a temporary folder on first use, listening only on a Unix socket
// there, and stopped when the program's tests end. Under root it runs as the
// `postgres` system user, since the server refuses root.
#include <QString>

class PgTestServer {
public:
    // The one server of this program, started on first call.
    static PgTestServer &instance();

    // Whether this machine has the PostgreSQL server programs at all.
    static bool installed();
    // True when the server runs; otherwise why not.
    bool running() const { return running_; }
    QString error() const { return error_; }

    // A new, empty database on the server; its connection string, empty on failure.
    QString createDatabase();
    // The connection string of an existing database.
    QString url(const QString &database) const;

    void stop();
    // Stops the server as a crash would, keeping its data, and starts it again.
    bool halt();
    bool resume();

private:
    PgTestServer();
    bool run(const QString &program, const QStringList &args);

    QString dir_;
    bool running_ = false;
    bool asPostgresUser_ = false;
    QString error_;
    int databases_ = 0;
};
