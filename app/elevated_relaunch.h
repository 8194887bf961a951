#pragma once
// Starting the station again with administrator rights, for SCSI scanners that
// only an elevated process may drive.
#include <QString>
#include <QStringList>

#include "app/start_options.h"

// The arguments of this run after the program path.
using BAPP_Arguments = QStringList;

// Relaunch when the configuration names a SCSI scanner on a system that
// separates rights and an upgrade is allowed, or when it is asked for. The
// elevated run carries -preventPrivilegeUpgrade, which stops it here.
bool wantsElevatedRelaunch(const StartOptions &options, int scsiScanners, bool separatesRights);

// The program to start elevated and its parameters as one command text:
// " -preventPrivilegeUpgrade" and every argument but -requireAdministrator,
// options as they are and other words in double quotes. An indirect launch
// goes through the wstart launcher, with the program path first.
struct RelaunchCommand {
    QString program;
    QString parameters;
};
RelaunchCommand relaunchCommand(const QString &programPath, const BAPP_Arguments &arguments, bool indirect);

// The argument list of pkexec for the same relaunch. pkexec clears the
// environment, so the display of this session is handed on through env.
QStringList pkexecArguments(const QString &programPath, const BAPP_Arguments &arguments,
                            const QString &display, const QString &xauthority, const QString &waylandDisplay);

// Starts the elevated run and returns at once; whether it started is not asked.
void ElevatedRelaunch(const QString &programPath, const BAPP_Arguments &arguments, bool indirect);
