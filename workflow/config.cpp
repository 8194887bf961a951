#include "workflow/config.h"

#include <QCoreApplication>
#include <QObject>

#include "scan/basic_pixel_shape.h"
#include "scan/drawing.h"
#include "scan/scanner_list.h"
#include "scan/transport/device_string.h"
#include "scan/twain_device_list.h"
#include "suite/base/assertion.h"
#include "suite/base/msg_scope.h"
#include "suite/db/tudbaccess.h"
#include "workflow/dbinfo.h"
#include "workflow/drawing_list.h"
#include "workflow/scan_procs.h"
#include "workflow/scan_window.h"

namespace {

QString tr(const char *text) { return QCoreApplication::translate("kqScan", text); }

ScanWindow *window(const ScanConfig *config) { return config ? config->main_interface : nullptr; }

int32_t scsi_count(const ScanConfig *config) { return count_of_ScannerList(config->scanner_list.get()); }

// The menu index of the selected scanner, -1 without one.
int32_t selected_index(const ScanConfig *config) {
    if (config->scanner_kind == SCANNER_SCSI) {
        for (int32_t i = 0; i < scsi_count(config); ++i)
            if (entry_of_ScannerList(config->scanner_list.get(), i) == config->scanner) return i;
    } else if (config->scanner_kind == SCANNER_TWAIN && config->twain_scanner) {
        return scsi_count(config) + config->twain_scanner->index;
    }
    return -1;
}

ScanDeviceInfo *selected_device(const ScanConfig *config) {
    return config->scanner_kind == SCANNER_SCSI && config->scanner ? device_of_ScannerEntry(config->scanner) : nullptr;
}

void fill_scanner_menu(ScanConfig *config) {
    ScanWindow *w = window(config);
    const int32_t scsi = scsi_count(config);
    for (int32_t i = 0; i < scanner_count_of_ScanConfig(config); ++i) {
        if (i < scsi)
            w->addEntry(SelectionButton::Scanner, name_of_ScannerEntry(entry_of_ScannerList(config->scanner_list.get(), i)),
                        i);
        else
            w->addEntry(SelectionButton::Scanner,
                        entry_of_TwainDeviceList(config->twain_list.get(), i - scsi)->name + QStringLiteral(" (TWAIN)"), i);
    }
    select_scanner_of_ScanConfig(config, 0);
}

void fill_feed_menu(ScanConfig *config, bool twain) {
    ScanWindow *w = window(config);
    w->clearEntries(SelectionButton::Feed);
    if (twain) {
        w->addEntry(SelectionButton::Feed, tr("&Page"), FEED_PAGE);
    } else {
        w->addEntry(SelectionButton::Feed, tr("&Autofeed"), FEED_AUTOFEED);
        w->addEntry(SelectionButton::Feed, tr("Autofeed (&One)"), FEED_AUTOFEED_ONE);
        w->addEntry(SelectionButton::Feed, tr("&Pegged"), FEED_PEGGED);
        w->addEntry(SelectionButton::Feed, tr("Pegged (&Many)"), FEED_PEGGED_MANY);
    }
    w->addEntry(SelectionButton::Feed, tr("Pan &Cel"), FEED_PANCEL);
}

// The feed entry that belongs to the flags; -1 for a combination no entry has.
int32_t feed_entry_of_flags(bool autofeed, bool one, bool pancel) {
    if (pancel) return !autofeed && one ? FEED_PANCEL : -1;
    if (autofeed) return one ? FEED_AUTOFEED_ONE : FEED_AUTOFEED;
    return one ? FEED_PEGGED : FEED_PEGGED_MANY;
}

void select_scsi(ScanConfig *config, int32_t index) {
    ScannerEntry *entry = entry_of_ScannerList(config->scanner_list.get(), index);
    ScanDeviceInfo *dev = device_of_ScannerEntry(entry);
    LMV_ASSERT_VOID(dev != nullptr);
    if (config->scanner_kind != SCANNER_SCSI || config->scanner != entry) {
        set_peg_side_of_ScanConfig(config, defaultPegSide_of_ScannerEntry(entry));
        config->model_flag = dev->flag_a != 0;
        config->dpi = static_cast<uint32_t>(defaultResolution_of_ScannerEntry(entry));
        if (!config->database) config->depth = dev->default_depth;
        const bool feeder = feeder_of_ScanDeviceInfo(dev, config->depth);
        set_autofeed_of_ScanConfig(config, feeder);
        config->one_drawing = !feeder;
        config->scanner = entry;
        config->scanner_kind = SCANNER_SCSI;
        config->spti = LMV_scsi_is_spti(deviceName_of_ScannerEntry(entry).toStdString());
        config->twain_scanner = nullptr;
    }
    // The panel follows the depth also when the scanner stays: the colour
    // slot selects the scanner again for exactly that.
    window(config)->showParameters(parameters_of_ScanDeviceInfo(dev, config->depth));
}

void select_twain(ScanConfig *config, int32_t index) {
    TwainDeviceEntry *source = entry_of_TwainDeviceList(config->twain_list.get(), index);
    LMV_ASSERT_VOID(source != nullptr);
    if (config->scanner_kind == SCANNER_TWAIN && config->twain_scanner == source) return;
    ScannerEntry *settings = config->twain_settings.get();
    set_peg_side_of_ScanConfig(config, defaultPegSide_of_ScannerEntry(settings));
    config->model_flag = false;
    config->dpi = static_cast<uint32_t>(defaultResolution_of_ScannerEntry(settings));
    if (!config->database) config->depth = device_of_ScannerEntry(settings)->default_depth;
    set_autofeed_of_ScanConfig(config, true);
    config->one_drawing = false;
    config->twain_scanner = source;
    config->scanner_kind = SCANNER_TWAIN;
    config->scanner = nullptr;
    config->spti = false;
    window(config)->showParameters(nullptr);
}

void apply_interface_state(ScanConfig *config, int32_t state) {
    ScanWindow *w = window(config);
    const bool rows = count_of_DrawingList(config->drawing_list) > 0;
    const bool idle = state == INTERFACE_IDLE;
    bool preview = false, scan = false, save = false;
    switch (state) {
    case INTERFACE_IDLE:
        preview = scan = rows && config->scanner_kind != SCANNER_NONE;
        save = config->can_save;
        break;
    case INTERFACE_PREVIEW_DONE:
        preview = rows && config->scanner_kind == SCANNER_SCSI;
        scan = rows;
        save = true;
        break;
    case INTERFACE_SCANNING:
    case INTERFACE_SAVING_PANCEL: break;
    default: LMV_ASSERT_VOID(!"interface state");
    }
    config->interface_state = state;
    if (!idle) {
        // Leaving idle: a stop pressed before this press means nothing.
        config->stop = false;
        w->enableButton(SessionButton::Stop, true);
    }
    w->enableButton(SessionButton::Preview, preview);
    w->enableButton(SessionButton::Scan, scan);
    w->enableButton(SessionButton::Save, save);
    w->enableMenuBar(idle);
    w->enableSelectionButtons(idle);
    w->enableButton(SessionButton::Stop, false);
}

QString last_scanned_text(const ScanConfig *config) {
    if (!config->drawing) return tr("Last Scanned:");
    const QString base = file_base_name_of_Drawing(config->drawing);
    if (!config->pancel || config->interface_state == INTERFACE_SAVING_PANCEL)
        return tr("Last Scanned: %1").arg(base);
    return tr("Last Scanned: %1 (%2)").arg(base, config->peg_name);
}

}  // namespace

ScanConfig::ScanConfig() = default;

ScanConfig::~ScanConfig() {
    if (drawing) destroy_Drawing(&drawing);
    delete drawing_list;
    delete vect_options;
    DatabaseBindingDestroy(binding);
}

// ---- life ------------------------------------------------------------------

ScanConfig *ScanConfigCreate(const QString &path, ScanWindow *mainWindow) {
    LMV_ASSERT_RET(mainWindow != nullptr, nullptr);
    auto *config = new ScanConfig;
    config->main_interface = mainWindow;
    config->binding = DatabaseBindingCreate(mainWindow->database());
    config->scanner_list = read_ScannerList(path, true);
    config->twain_list = load_TwainDeviceList();
    config->twain_settings = take_TWAIN_of_ScannerList(config->scanner_list.get());
    if (!config->twain_settings) config->twain_settings = std::make_unique<ScannerEntry>();
    // The station's defaults of user and environment, when it has a database.
    if (TUDbAccess *db = mainWindow->database()) db->dba_read_config_file();

    set_pixel_shape_of_ScanConfig(config, 1);
    if (scanner_count_of_ScanConfig(config) > 0) fill_scanner_menu(config);
    refresh_of_ScanConfig(config);
    mainWindow->setWindowTitle(tr("Scan: ") + tr("Untitled"));

    if (scanner_count_of_ScanConfig(config) == 0 &&
        mainWindow->askNoScanner() == NoScannerAnswer::ExitScanProgram) {
        ScanConfigDestroy(config);
        return nullptr;
    }
    apply_interface_state(config, INTERFACE_IDLE);
    return config;
}

void ScanConfigDestroy(ScanConfig *config) {
    LMV_ASSERT_VOID(config != nullptr);
    ScanWindow *w = config->main_interface;
    if (w) w->setWaitCursor();
    delete config;
    if (w) w->restoreCursor();
}

// ---- getters -----------------------------------------------------------------

#define CONFIG_GETTER(type, field, fallback)                  \
    type field##_of_ScanConfig(const ScanConfig *config) {    \
        LMV_ASSERT_RET(config != nullptr, fallback);          \
        return config->field;                                 \
    }
CONFIG_GETTER(ScanWindow *, main_interface, nullptr)
CONFIG_GETTER(Drawing *, drawing, nullptr)
CONFIG_GETTER(DrawingList *, drawing_list, nullptr)
CONFIG_GETTER(QObject *, vect_options, nullptr)
CONFIG_GETTER(bool, model_flag, false)
CONFIG_GETTER(bool, database, false)
CONFIG_GETTER(QString, prefix, QString())
CONFIG_GETTER(QString, path, QString())
CONFIG_GETTER(bool, auto_save, true)
CONFIG_GETTER(int32_t, peg_side, 0)
CONFIG_GETTER(uint32_t, dpi, 0)
CONFIG_GETTER(double, field, 0.0)
CONFIG_GETTER(int32_t, depth, 0)
CONFIG_GETTER(bool, autofeed, false)
CONFIG_GETTER(bool, optical, false)
CONFIG_GETTER(bool, flip, false)
CONFIG_GETTER(bool, one_drawing, false)
CONFIG_GETTER(bool, pancel, false)
CONFIG_GETTER(bool, can_save, false)
CONFIG_GETTER(bool, trial, false)
CONFIG_GETTER(bool, spti, false)
CONFIG_GETTER(bool, pencil_test, false)
CONFIG_GETTER(int32_t, scanner_kind, SCANNER_NONE)
CONFIG_GETTER(ScannerEntry *, scanner, nullptr)
CONFIG_GETTER(TwainDeviceEntry *, twain_scanner, nullptr)
CONFIG_GETTER(bool, finish, false)
CONFIG_GETTER(int32_t, pixel_shape, 1)
CONFIG_GETTER(DatabaseBinding *, binding, nullptr)
CONFIG_GETTER(QString, peg_name, QString())
CONFIG_GETTER(int32_t, interface_state, INTERFACE_IDLE)
CONFIG_GETTER(bool, create_scaninfo, false)
#undef CONFIG_GETTER

ScannerList *scanner_list_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, nullptr);
    return config->scanner_list.get();
}

TwainDeviceList *twain_list_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, nullptr);
    return config->twain_list.get();
}

ScannerEntry *twain_settings_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, nullptr);
    return config->twain_settings.get();
}

bool stop_of_ScanConfig(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, false);
    if (config->main_interface) config->main_interface->processEvents();
    const bool stop = config->stop;
    config->stop = false;
    return stop;
}

// ---- plain setters -------------------------------------------------------------

#define CONFIG_SETTER(type, field)                                     \
    void set_##field##_of_ScanConfig(ScanConfig *config, type value) { \
        LMV_ASSERT_VOID(config != nullptr);                            \
        config->field = value;                                         \
    }
CONFIG_SETTER(const QString &, prefix)
CONFIG_SETTER(const QString &, path)
CONFIG_SETTER(uint32_t, dpi)
CONFIG_SETTER(double, field)
CONFIG_SETTER(int32_t, depth)
CONFIG_SETTER(bool, optical)
CONFIG_SETTER(bool, flip)
CONFIG_SETTER(bool, one_drawing)
CONFIG_SETTER(bool, trial)
CONFIG_SETTER(bool, finish)
CONFIG_SETTER(const QString &, peg_name)
CONFIG_SETTER(bool, create_scaninfo)
#undef CONFIG_SETTER

void set_vect_options_of_ScanConfig(ScanConfig *config, QObject *dialog) {
    LMV_ASSERT_VOID(config != nullptr);
    if (config->vect_options != dialog) delete config->vect_options;
    config->vect_options = dialog;
}

// ---- setters that do more ----------------------------------------------------------

void set_drawing_list_of_ScanConfig(ScanConfig *config, DrawingList *list) {
    LMV_ASSERT_VOID(config != nullptr);
    if (config->drawing_list != list) delete config->drawing_list;
    config->drawing_list = list;
    set_can_save_of_ScanConfig(config, false);
    // Scan and Preview follow the list: nothing to scan without one.
    if (config->interface_state == INTERFACE_IDLE) apply_interface_state(config, INTERFACE_IDLE);
}

void set_binding_of_ScanConfig(ScanConfig *config, DatabaseBinding *binding) {
    LMV_ASSERT_VOID(config != nullptr);
    if (config->binding != binding) DatabaseBindingDestroy(config->binding);
    config->binding = binding;
}

void select_scanner_of_ScanConfig(ScanConfig *config, int32_t index) {
    LMV_ASSERT_VOID(config != nullptr);
    LMV_ASSERT_VOID(index >= 0 && index < scanner_count_of_ScanConfig(config));
    if (index < scsi_count(config))
        select_scsi(config, index);
    else
        select_twain(config, index - scsi_count(config));
    window(config)->markEntry(SelectionButton::Scanner, index);
    if (config->pancel && (config->autofeed || !config->one_drawing)) set_pancel_of_ScanConfig(config, false);
    refresh_of_ScanConfig(config);
}

void set_database_of_ScanConfig(ScanConfig *config, bool on) {
    LMV_ASSERT_VOID(config != nullptr);
    config->database = on;
    ScanWindow *w = window(config);
    int32_t index = selected_index(config);
    if (on) {
        const int32_t type = scan_type_of_DatabaseBinding(config->binding);
        switch (type) {
        case SCANTYPE_COLOUR: config->depth = DEPTH_COLOUR; break;
        case SCANTYPE_GREY: config->depth = DEPTH_GREY; break;
        case SCANTYPE_BW:
        case SCANTYPE_NEVER: config->depth = DEPTH_BW; break;
        default: LMV_assertion_msg(__FILE__, __LINE__, "scan type of the element");
        }
        for (int32_t i = 0; i < scsi_count(config); ++i)
            w->enableEntry(SelectionButton::Scanner, i,
                           supports_scan_type_of_ScannerEntry(entry_of_ScannerList(config->scanner_list.get(), i), type));
        if (config->scanner_kind == SCANNER_SCSI) {
            ScannerEntry *best = best_for_scan_type_of_ScannerList(config->scanner_list.get(), config->scanner, type);
            if (best && best != config->scanner) {
                int32_t found = -1;
                find_by_name_of_ScannerList(config->scanner_list.get(), name_of_ScannerEntry(best), &found);
                if (found >= 0) index = found;
            }
        }
    } else {
        for (int32_t i = 0; i < scanner_count_of_ScanConfig(config); ++i)
            w->enableEntry(SelectionButton::Scanner, i, true);
    }
    if (index >= 0)
        select_scanner_of_ScanConfig(config, index);
    else
        refresh_of_ScanConfig(config);
}

void set_pencil_test_of_ScanConfig(ScanConfig *config, bool on) {
    LMV_ASSERT_VOID(config != nullptr);
    if (on && !window(config)->askPencilTest()) {
        config->pencil_test = false;
        window(config)->checkCheckBox(SessionCheckBox::PencilTest, false);
        return;
    }
    config->pencil_test = on;
}

void set_stop_of_ScanConfig(ScanConfig *config, bool on) {
    LMV_ASSERT_VOID(config != nullptr);
    config->stop = on;
    if (!on || !config->pancel) return;
    window(config)->clearPancel();
    if (config->drawing) set_can_save_of_ScanConfig(config, false);
    SetInterfaceState(config, INTERFACE_IDLE);
}

void set_autofeed_of_ScanConfig(ScanConfig *config, bool on) {
    LMV_ASSERT_VOID(config != nullptr);
    config->autofeed = on;
    config->optical = on;
    window(config)->checkCheckBox(SessionCheckBox::OpticalRegistration, on);
    window(config)->showOverview(on);
}

void set_pancel_of_ScanConfig(ScanConfig *config, bool on) {
    LMV_ASSERT_VOID(config != nullptr);
    config->pancel = on;
    window(config)->rebuildPancel();
}

void set_peg_side_of_ScanConfig(ScanConfig *config, int32_t side) {
    LMV_ASSERT_VOID(config != nullptr);
    config->peg_side = side;
    window(config)->rebuildPancel();
}

void set_drawing_of_ScanConfig(ScanConfig *config, Drawing *drawing, bool deleteOld) {
    LMV_ASSERT_VOID(config != nullptr);
    // Shown first: the pan cel strip copies from the view of the old one.
    if (drawing) window(config)->showDrawing(drawing, false);
    if (deleteOld && config->drawing && config->drawing != drawing) destroy_Drawing(&config->drawing);
    config->drawing = drawing;
}

void set_can_save_of_ScanConfig(ScanConfig *config, bool on) {
    LMV_ASSERT_VOID(config != nullptr);
    config->can_save = on;
    if (!on) window(config)->enableButton(SessionButton::Save, false);
    window(config)->setLastScannedText(last_scanned_text(config));
}

void set_pixel_shape_of_ScanConfig(ScanConfig *config, int32_t shape) {
    LMV_ASSERT_VOID(config != nullptr);
    config->pixel_shape = shape;
    set_basic_pixel_shape(shape);
    set_session_pixel_shape(shape);
}

void set_feed_of_ScanConfig(ScanConfig *config, int32_t entry) {
    LMV_ASSERT_VOID(config != nullptr);
    bool autofeed = false, one = false, pancel = false;
    switch (entry) {
    case FEED_AUTOFEED:
    case FEED_PAGE: autofeed = true; break;
    case FEED_AUTOFEED_ONE: autofeed = one = true; break;
    case FEED_PEGGED: one = true; break;
    case FEED_PEGGED_MANY: break;
    case FEED_PANCEL: one = pancel = true; break;
    default: LMV_ASSERT_VOID(!"feed entry");
    }
    set_autofeed_of_ScanConfig(config, autofeed);
    config->one_drawing = one;
    if (config->pancel != pancel) set_pancel_of_ScanConfig(config, pancel);
    refresh_feed_of_ScanConfig(config);
}

// ---- derived values --------------------------------------------------------------

int32_t scanner_count_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, 0);
    return scsi_count(config) + count_of_TwainDeviceList(config->twain_list.get());
}

float peg_pitch_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, 8.0f);
    if (config->scanner_kind == SCANNER_SCSI && config->scanner) return pegPitch_of_ScannerEntry(config->scanner);
    if (config->scanner_kind == SCANNER_TWAIN && config->twain_settings)
        return pegPitch_of_ScannerEntry(config->twain_settings.get());
    return 8.0f;
}

double x_calibration_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, 1.0);
    return config->scanner ? xScaleAdjustment_of_ScannerEntry(config->scanner) : 1.0;
}

double y_calibration_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, 1.0);
    return config->scanner ? yScaleAdjustment_of_ScannerEntry(config->scanner) : 1.0;
}

bool colour_capable_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, false);
    if (config->scanner_kind != SCANNER_SCSI) return true;
    if (!config->scanner || !config->scanner_list) {
        MSG_Scope(MSG_Text("kqscanmain", "Could not determine colour support for scanner."), MSG_ACTION_ERROR);
        return false;
    }
    return best_for_scan_type_of_ScannerList(config->scanner_list.get(), config->scanner, SCANTYPE_COLOUR) != nullptr;
}

// ---- texts --------------------------------------------------------------------------

const char *depth_name_of_ScanConfig(int32_t depth) {
    switch (depth) {
    case DEPTH_BW: return "B&W";
    case DEPTH_GREY: return "Grey";
    case DEPTH_COLOUR: return "Colour";
    default: return "";
    }
}

QString summary_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, QString());
    const int32_t depth = config->drawing ? scan_depth_of_Drawing(config->drawing) : config->depth;
    return QString::asprintf("%s, %ddpi, %.1fF, %s%s%s", depth_name_of_ScanConfig(depth), static_cast<int>(config->dpi),
                             config->field, peg_side_name(config->peg_side), config->optical ? ", O/R" : "",
                             config->pancel ? ", pancel" : "");
}

QString scanner_text_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, QString());
    if (config->scanner_kind == SCANNER_SCSI && config->scanner) return information_of_ScannerEntry(config->scanner);
    if (config->scanner_kind == SCANNER_TWAIN && config->twain_scanner) {
        const TwainDeviceEntry *source = config->twain_scanner;
        return source->description.isNull() ? source->name : source->description;
    }
    return tr("Unknown scanner");
}

QString scanner_name_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, QString());
    if (config->scanner_kind == SCANNER_SCSI && config->scanner) return name_of_ScannerEntry(config->scanner);
    if (config->scanner_kind == SCANNER_TWAIN && config->twain_scanner) return config->twain_scanner->name;
    return tr("Unknown scanner");
}

// ---- controls ------------------------------------------------------------------------

void refresh_of_ScanConfig(ScanConfig *config) {
    LMV_ASSERT_VOID(config != nullptr);
    ScanWindow *w = window(config);
    const bool rows = count_of_DrawingList(config->drawing_list) > 0;
    w->enableAction(SessionAction::EditMenu, rows);
    w->enableAction(SessionAction::CreateScanInfo, rows);

    ScanDeviceInfo *dev = selected_device(config);
    const bool twain = config->scanner_kind == SCANNER_TWAIN;
    w->enableAction(SessionAction::Info, dev != nullptr);
    w->enableAction(SessionAction::EjectPage, dev && dev->ops.eject && config->autofeed);

    for (int i = 0; i < static_cast<int>(kResolutionSteps.size()); ++i)
        w->enableEntry(SelectionButton::Dpi, i, twain || (dev && resolution_step_of_ScanDeviceInfo(dev, i)));

    if (config->database) {
        const int32_t type = scan_type_of_DatabaseBinding(config->binding);
        for (int32_t depth = DEPTH_BW; depth <= DEPTH_COLOUR; ++depth)
            w->enableEntry(SelectionButton::Colour, depth,
                           type != SCANTYPE_NEVER && binding_fits_depth(config->binding, depth));
        config->field = field_chart_of_DatabaseBinding(config->binding);
        if (type != SCANTYPE_NEVER && !binding_fits_depth(config->binding, config->depth))
            LMV_assertion_msg(__FILE__, __LINE__, "depth differs from the element's scan type");
    } else {
        for (int32_t depth = DEPTH_BW; depth <= DEPTH_COLOUR; ++depth)
            w->enableEntry(SelectionButton::Colour, depth, twain || (dev && supported_of_ScanDeviceInfo(dev, depth)));
    }

    w->markEntry(SelectionButton::Colour, config->depth);
    const int step = config->dpi == 0 ? 0 : resolution_step_index(static_cast<int32_t>(config->dpi));
    if (step >= 0)
        w->markEntry(SelectionButton::Dpi, step);
    else
        LMV_assertion_msg(__FILE__, __LINE__, "resolution of the session");
    w->markEntry(SelectionButton::Peg, config->peg_side);
    if (config->field == 12.0)
        w->markEntry(SelectionButton::Field, 0);
    else if (config->field == 16.0)
        w->markEntry(SelectionButton::Field, 1);
    w->checkCheckBox(SessionCheckBox::OpticalRegistration, config->optical);

    if (scanner_count_of_ScanConfig(config) > 0) w->removeEntry(SelectionButton::Scanner, kNoScannerId);
    refresh_feed_of_ScanConfig(config);
}

void refresh_feed_of_ScanConfig(ScanConfig *config) {
    LMV_ASSERT_VOID(config != nullptr);
    ScanWindow *w = window(config);
    const bool enable = config->database && needs_vectorization_of_DatabaseBinding(config->binding);
    if (qEnvironmentVariableIsSet("LMV_FORBID_OPTICAL")) w->enableCheckBox(SessionCheckBox::OpticalRegistration, enable);
    w->enableCheckBox(SessionCheckBox::PencilTest, enable);
    w->checkCheckBox(SessionCheckBox::PencilTest, config->pencil_test);

    const bool twain = config->scanner_kind == SCANNER_TWAIN;
    fill_feed_menu(config, twain);
    if (twain) {
        w->markEntry(SelectionButton::Feed, config->pancel ? FEED_PANCEL : FEED_PAGE);
        return;
    }
    if (config->scanner_kind != SCANNER_SCSI || !config->scanner) return;
    ScanDeviceInfo *dev = selected_device(config);
    const bool capable = dev && feeder_of_ScanDeviceInfo(dev, config->depth);
    if (config->autofeed && !capable) set_autofeed_of_ScanConfig(config, false);
    w->enableEntry(SelectionButton::Feed, FEED_AUTOFEED, capable);
    w->enableEntry(SelectionButton::Feed, FEED_AUTOFEED_ONE, capable);

    int32_t entry = feed_entry_of_flags(config->autofeed, config->one_drawing, config->pancel);
    if (entry < 0) {
        LMV_assertion_msg(__FILE__, __LINE__, "feed flags of the session");
        set_autofeed_of_ScanConfig(config, false);
        config->one_drawing = true;
        if (config->pancel) set_pancel_of_ScanConfig(config, false);
        entry = FEED_PEGGED;
    }
    w->markEntry(SelectionButton::Feed, entry);
}

void SetInterfaceState(ScanConfig *config, int32_t state) {
    LMV_ASSERT_VOID(config != nullptr);
    apply_interface_state(config, state);
}

// ---- saving -------------------------------------------------------------------------------

int32_t SaveScan(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, SCAN_INTERNAL);
    LMV_ASSERT_RET(config->drawing != nullptr, SCAN_INTERNAL);
    LMV_ASSERT_RET(!saved_of_Drawing(config->drawing), SCAN_INTERNAL);
    ScanWindow *w = window(config);
    w->setWaitCursor();
    const auto back_to_idle = [&] {
        if (config->pancel) SetInterfaceState(config, INTERFACE_IDLE);
    };

    if (config->pancel) {
        SetInterfaceState(config, INTERFACE_SAVING_PANCEL);
        QString message;
        if (!w->stitchPancel(message)) {
            w->restoreCursor();
            ReportScanError(config, SCAN_PANCEL_FAILED, message);
            SetInterfaceState(config, INTERFACE_IDLE);
            return SCAN_PANCEL_FAILED;
        }
    }
    if (save_Drawing(config->drawing) != 0) {
        ReportScanError(config, SCAN_SAVE_FAILED, tr("Error saving scan."));
        back_to_idle();
        w->restoreCursor();
        return SCAN_SAVE_FAILED;
    }
    int32_t result = SCAN_DONE;
    if (!w->isManualList()) {
        result = UpdateDrawingDatabase(config);
        if (result != SCAN_DONE) {
            w->restoreCursor();
            return result;
        }
    }
    DrawingList *list = config->drawing_list;
    mark_of_DrawingList(list, current_row_of_DrawingList(list), ROW_SCANNED, summary_of_ScanConfig(config));
    set_can_save_of_ScanConfig(config, false);
    next_of_DrawingList(list);
    back_to_idle();
    w->restoreCursor();
    return result;
}
