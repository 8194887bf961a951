#pragma once
// The station program from its first line to its exit code.

// The whole run: start-up in its fixed order, the event loop, the tear-down.
// Exit code 0 for every end but a failure of the preferences or a window
// wanted without a display (1).
int ScanMain(int argc, char **argv);

// Makes the station's message object (which opens the log) and opens the
// production database. 1 with the database open; 0 after the operator was
// told that it could not be reached.
class TUDbAccess;
#include <memory>
int ConnectStationDatabase(std::unique_ptr<TUDbAccess> &database);
