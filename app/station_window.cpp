#include "app/station_window.h"

#include "app/start_options.h"
#include "app/tudb_selector.h"
#include "app/tukqscan.h"
#include "suite/db/tudbaccess.h"
#include "suite/db/tudbadmin.h"
#include "workflow/connect_database.h"

namespace {

// The main window together with the database selector it is given.
class KqScanStation : public StationWindow {
public:
    explicit KqScanStation(const StationStart &start) {
        if (auto *admin = dynamic_cast<TUDbAdmin *>(start.database))
            selector_ = std::make_unique<TUDbSelector>(start.database, admin, selector_user_types());
        const bool debug = start.options && start.options->debug;
        const bool scsiDebug = start.options && start.options->scsiDebug;
        window_ = std::make_unique<TUKqScan>(start.database, selector_.get(), debug, scsiDebug);
    }

    QWidget *widget() override { return window_.get(); }
    ScanWindow *scanWindow() override { return window_.get(); }

    void startSession(ScanConfig *config, bool openDrawings) override {
        window_->setConfig(config);
        window_->show(openDrawings);
    }

private:
    std::unique_ptr<TUDbSelector> selector_;
    std::unique_ptr<TUKqScan> window_;
};

}  // namespace

std::unique_ptr<StationWindow> createStationWindow(const StationStart &start) {
    return std::make_unique<KqScanStation>(start);
}
