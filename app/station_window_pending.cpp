// NOT FINISHED: the station's main window (TUKqScan) is not built yet. It
// replaces this file: createStationWindow then makes the window with
// start.database, start.options->debug and start.options->scsiDebug.
#include "app/station_window.h"

std::unique_ptr<StationWindow> createStationWindow(const StationStart &) { return nullptr; }
