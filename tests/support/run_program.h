#pragma once
// Runs a program to its end and keeps its exit status and both outputs.
#include <QProcess>
#include <QString>
#include <QStringList>

struct ProcessResult {
    int status = -1;  // -1 when it crashed or didn't end in time
    QString out, err;
};

inline ProcessResult run_program(const QString &program, const QStringList &args, const QString &workingDirectory = {},
                                 int timeoutMs = 30000) {
    QProcess p;
    if (!workingDirectory.isEmpty()) p.setWorkingDirectory(workingDirectory);
    p.start(program, args);
    ProcessResult r;
    if (!p.waitForFinished(timeoutMs)) return r;
    r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}
