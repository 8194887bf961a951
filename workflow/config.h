#pragma once
// ScanConfig: the one record of a scanning session. It knows its window
// through the window seam and pushes each change of a setting to the controls;
// the window's slots write into it through the setters below. Nothing of it
// is kept between runs.
#include <QString>

#include <cstdint>
#include <memory>

class QObject;
class ScanWindow;
struct DatabaseBinding;
struct Drawing;
struct DrawingList;
struct ScannerEntry;
struct ScannerList;
struct TwainDeviceEntry;
struct TwainDeviceList;

enum InterfaceState : int32_t {
    INTERFACE_IDLE = 1000,
    INTERFACE_SCANNING = 1001,
    INTERFACE_PREVIEW_DONE = 1002,
    INTERFACE_SAVING_PANCEL = 1003,
};

enum ScannerKind : int32_t { SCANNER_NONE = 0, SCANNER_SCSI = 1, SCANNER_TWAIN = 2 };

// Feed menu entries.
enum FeedEntry : int32_t {
    FEED_AUTOFEED = 0,
    FEED_AUTOFEED_ONE = 1,
    FEED_PEGGED = 2,
    FEED_PEGGED_MANY = 3,
    FEED_PAGE = 4,
    FEED_PANCEL = 5,
};

// The scanner menu's entry for "no scanner"; its id is ignored.
inline constexpr int kNoScannerId = 9999;

struct ScanConfig {
    ScanConfig();
    ~ScanConfig();
    ScanConfig(const ScanConfig &) = delete;
    ScanConfig &operator=(const ScanConfig &) = delete;

    ScanWindow *main_interface = nullptr;  // not owned
    Drawing *drawing = nullptr;            // owned
    DrawingList *drawing_list = nullptr;   // owned
    QObject *vect_options = nullptr;       // the style dialog, made by the window; owned
    bool model_flag = false;
    bool database = false;
    QString prefix;
    QString path;
    bool auto_save = true;
    int32_t peg_side = 4;
    uint32_t dpi = 0;
    double field = 12.0;
    int32_t depth = 0;
    bool autofeed = false;
    bool optical = false;
    bool flip = false;
    bool one_drawing = false;
    bool pancel = false;
    bool can_save = false;
    bool trial = false;
    bool spti = false;
    bool pencil_test = false;
    int32_t scanner_kind = SCANNER_NONE;
    std::unique_ptr<ScannerList> scanner_list;
    ScannerEntry *scanner = nullptr;
    std::unique_ptr<TwainDeviceList> twain_list;
    TwainDeviceEntry *twain_scanner = nullptr;
    std::unique_ptr<ScannerEntry> twain_settings;
    bool stop = false;
    bool finish = false;
    int32_t pixel_shape = 1;
    DatabaseBinding *binding = nullptr;  // owned
    QString peg_name;
    int32_t interface_state = INTERFACE_IDLE;
    bool create_scaninfo = false;
};

// Life. Null when the operator leaves at the no-scanner question.
ScanConfig *ScanConfigCreate(const QString &path, ScanWindow *mainWindow);
void ScanConfigDestroy(ScanConfig *config);

// Getters; a null record is an internal assertion and a neutral value.
ScanWindow *main_interface_of_ScanConfig(const ScanConfig *config);
Drawing *drawing_of_ScanConfig(const ScanConfig *config);
DrawingList *drawing_list_of_ScanConfig(const ScanConfig *config);
QObject *vect_options_of_ScanConfig(const ScanConfig *config);
bool model_flag_of_ScanConfig(const ScanConfig *config);
bool database_of_ScanConfig(const ScanConfig *config);
QString prefix_of_ScanConfig(const ScanConfig *config);
QString path_of_ScanConfig(const ScanConfig *config);
bool auto_save_of_ScanConfig(const ScanConfig *config);
int32_t peg_side_of_ScanConfig(const ScanConfig *config);
uint32_t dpi_of_ScanConfig(const ScanConfig *config);
double field_of_ScanConfig(const ScanConfig *config);
int32_t depth_of_ScanConfig(const ScanConfig *config);
bool autofeed_of_ScanConfig(const ScanConfig *config);
bool optical_of_ScanConfig(const ScanConfig *config);
bool flip_of_ScanConfig(const ScanConfig *config);
bool one_drawing_of_ScanConfig(const ScanConfig *config);
bool pancel_of_ScanConfig(const ScanConfig *config);
bool can_save_of_ScanConfig(const ScanConfig *config);
bool trial_of_ScanConfig(const ScanConfig *config);
bool spti_of_ScanConfig(const ScanConfig *config);
bool pencil_test_of_ScanConfig(const ScanConfig *config);
int32_t scanner_kind_of_ScanConfig(const ScanConfig *config);
ScannerList *scanner_list_of_ScanConfig(const ScanConfig *config);
ScannerEntry *scanner_of_ScanConfig(const ScanConfig *config);
TwainDeviceList *twain_list_of_ScanConfig(const ScanConfig *config);
TwainDeviceEntry *twain_scanner_of_ScanConfig(const ScanConfig *config);
ScannerEntry *twain_settings_of_ScanConfig(const ScanConfig *config);
bool finish_of_ScanConfig(const ScanConfig *config);
int32_t pixel_shape_of_ScanConfig(const ScanConfig *config);
DatabaseBinding *binding_of_ScanConfig(const ScanConfig *config);
QString peg_name_of_ScanConfig(const ScanConfig *config);
int32_t interface_state_of_ScanConfig(const ScanConfig *config);
bool create_scaninfo_of_ScanConfig(const ScanConfig *config);

// The stop check: pumps the event loop, then returns the stop request and
// clears it. Reading the flag consumes it.
bool stop_of_ScanConfig(ScanConfig *config);

// Plain setters.
void set_vect_options_of_ScanConfig(ScanConfig *config, QObject *dialog);  // takes it over
void set_prefix_of_ScanConfig(ScanConfig *config, const QString &prefix);
void set_path_of_ScanConfig(ScanConfig *config, const QString &path);
void set_dpi_of_ScanConfig(ScanConfig *config, uint32_t dpi);
void set_field_of_ScanConfig(ScanConfig *config, double field);
void set_depth_of_ScanConfig(ScanConfig *config, int32_t depth);
void set_optical_of_ScanConfig(ScanConfig *config, bool on);
void set_flip_of_ScanConfig(ScanConfig *config, bool on);
void set_one_drawing_of_ScanConfig(ScanConfig *config, bool on);
void set_trial_of_ScanConfig(ScanConfig *config, bool on);
void set_finish_of_ScanConfig(ScanConfig *config, bool on);
void set_peg_name_of_ScanConfig(ScanConfig *config, const QString &name);
void set_create_scaninfo_of_ScanConfig(ScanConfig *config, bool on);

// Setters that do more.
// Replacing the list deletes the old one and takes Save away.
void set_drawing_list_of_ScanConfig(ScanConfig *config, DrawingList *list);
// Takes the binding over and destroys the old one.
void set_binding_of_ScanConfig(ScanConfig *config, DatabaseBinding *binding);
void select_scanner_of_ScanConfig(ScanConfig *config, int32_t index);
void set_database_of_ScanConfig(ScanConfig *config, bool on);
// Switching on asks the pencil test question; anything but Yes leaves it off.
void set_pencil_test_of_ScanConfig(ScanConfig *config, bool on);
void set_stop_of_ScanConfig(ScanConfig *config, bool on);
// Sets autofeed and optical together, checks the Optical Registration box
// and shows or hides the overview.
void set_autofeed_of_ScanConfig(ScanConfig *config, bool on);
void set_pancel_of_ScanConfig(ScanConfig *config, bool on);
void set_peg_side_of_ScanConfig(ScanConfig *config, int32_t side);
// Shows a non-null drawing first, then deletes the old one when asked.
void set_drawing_of_ScanConfig(ScanConfig *config, Drawing *drawing, bool deleteOld);
void set_can_save_of_ScanConfig(ScanConfig *config, bool on);
void set_pixel_shape_of_ScanConfig(ScanConfig *config, int32_t shape);

// The feed menu's slot: writes the flags of an entry.
void set_feed_of_ScanConfig(ScanConfig *config, int32_t entry);

// Derived values.
int32_t scanner_count_of_ScanConfig(const ScanConfig *config);
float peg_pitch_of_ScanConfig(const ScanConfig *config);
double x_calibration_of_ScanConfig(const ScanConfig *config);
double y_calibration_of_ScanConfig(const ScanConfig *config);
// Whether the selected scanner, or any in the list, scans colour.
bool colour_capable_of_ScanConfig(const ScanConfig *config);

// Texts.
// "B&W", "Grey" or "Colour"; "" for another depth.
const char *depth_name_of_ScanConfig(int32_t depth);
QString summary_of_ScanConfig(const ScanConfig *config);
QString scanner_text_of_ScanConfig(const ScanConfig *config);
QString scanner_name_of_ScanConfig(const ScanConfig *config);

// Updates every control from the record.
void refresh_of_ScanConfig(ScanConfig *config);
void refresh_feed_of_ScanConfig(ScanConfig *config);
void SetInterfaceState(ScanConfig *config, int32_t state);
// Saves the current drawing and moves the list on; a ScanResult.
int32_t SaveScan(ScanConfig *config);
inline int32_t save_scan_of_ScanConfig(ScanConfig *config) { return SaveScan(config); }
