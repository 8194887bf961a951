#pragma once
// Where the station's main window joins start-up. The entry builds everything
// around it; the window itself is made by createStationWindow.
#include <QString>

#include <memory>

class QWidget;
class ScanWindow;
class TUDbAccess;
struct ScanConfig;
struct StartOptions;

// What start-up has made by the time the window is built.
struct StationStart {
    TUDbAccess *database = nullptr;  // open, kept alive
    const StartOptions *options = nullptr;
};

class StationWindow {
public:
    virtual ~StationWindow() = default;
    virtual QWidget *widget() = 0;
    virtual ScanWindow *scanWindow() = 0;
    // Takes the session, updates the vectorization style label, shows the
    // window and, when asked, opens the drawing selection from the database.
    virtual void startSession(ScanConfig *config, bool openDrawings) = 0;
};

// Builds the main window over the open database with the debug switches of
// the command line.
std::unique_ptr<StationWindow> createStationWindow(const StationStart &start);
