#include "workflow/scan_procs.h"

#include <QCoreApplication>

#include "scan/drawing.h"
#include "scan/parameters.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "scan/twain_device_list.h"
#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "suite/base/msg_scope.h"
#include "workflow/config.h"
#include "workflow/dbinfo.h"
#include "workflow/drawing_list.h"
#include "workflow/register.h"
#include "workflow/scan_window.h"

namespace {

QString tr(const char *text) { return QCoreApplication::translate("kqScan", text); }


// The Drawing of the current row, with the session's settings; the caller
// owns it.
Drawing *prepare_Drawing(ScanConfig *config, const QString &host, const QString &scanner) {
    QString directory = config->path;
    QString element = config->prefix;
    int32_t format = config->depth == DEPTH_COLOUR ? 4 : 2;
    if (config->database) {
        directory = path_of_DatabaseBinding(config->binding);
        element = name_of_DatabaseBinding(config->binding);
        format = pf_of_DatabaseBinding(config->binding);
    }
    DrawingList *list = config->drawing_list;
    Drawing *d = create_Drawing(element, name_of_DrawingList(list, current_row_of_DrawingList(list)), directory);
    set_file_format_of_Drawing(d, format);
    set_scan_host_of_Drawing(d, host);
    set_scanner_name_of_Drawing(d, scanner);
    set_peg_side_of_Drawing(d, config->peg_side);
    set_pegged_of_Drawing(d, !config->optical);
    set_paper_size_of_Drawing(d, static_cast<float>(config->field));
    set_dpi_of_Drawing(d, static_cast<float>(config->dpi));
    set_pages_of_Drawing(d, 1.0f);
    set_pixel_shape_of_Drawing(d, config->pixel_shape);
    set_scan_depth_of_Drawing(d, config->depth);
    set_write_scaninfo_file_of_Drawing(d, config->create_scaninfo ? 1 : 0);
    return d;
}

// Puts the drawing that was current before this scan back, and deletes the
// scan that was not accepted.
void restore_previous(ScanConfig *config, Drawing *previous) {
    if (config->drawing == previous) return;
    Drawing *rejected = config->drawing;
    set_drawing_of_ScanConfig(config, previous, false);
    if (rejected) destroy_Drawing(&rejected);
}

// Checks ready, polling again while the device is busy.
ScanStatus wait_ready(ScanDeviceInfo *dev) {
    ScanStatus s = ready_ScanDevice(dev);
    while (s.code == STATUS_BUSY) {
        sleep_of_ScanDevice(1);
        s = ready_ScanDevice(dev);
    }
    return s;
}

// One pass through the device, from reserve to registration. The drawing is
// handed to the session at registration; until then it stays the caller's.
class DeviceSequence {
public:
    DeviceSequence(ScanConfig *config, ScanDeviceInfo *dev, Drawing *drawing)
        : config_(config), dev_(dev), drawing_(drawing), window_(config->main_interface) {}

    int32_t run();
    bool stopped() const { return stopped_; }
    bool handedOver() const { return handed_over_; }

private:
    // Reports a failed device step; the result is the device's result word.
    int32_t fail(ScanStatus s, const char *text) {
        ReportScanError(config_, s.code, tr(text));
        return s.code;
    }
    bool stop() {
        if (stop_of_ScanConfig(config_)) stopped_ = true;
        return stopped_;
    }

    ScanConfig *config_;
    ScanDeviceInfo *dev_;
    Drawing *drawing_;
    ScanWindow *window_;
    bool stopped_ = false;
    bool handed_over_ = false;
};

int32_t DeviceSequence::run() {
    ScanStatus s;
    if (!dev_->reserved && (s = reserve_ScanDevice(dev_)).failed()) return fail(s, "Reserve of scanner failed.\n");
    if ((s = wait_ready(dev_)).code != STATUS_SUCCESS) return fail(s, "Scanner is not ready.\n");
    if ((s = inquire_ScanDevice(dev_)).failed()) return fail(s, "Inquire of scanner failed.\n");
    if (config_->autofeed) {
        s = autoload_ScanDevice(dev_);
        if (s.scsi == SCSI_MEDIUM_ERROR || s.scsi == SCSI_FAILURE)
            return window_->askAutofeedError() == AutofeedAnswer::Retry ? SCAN_RETRY : SCAN_STOPPED;
        if (s.failed()) return fail(s, "Auto load of scanner ADF failed.\n");
    }
    if ((s = setup1_ScanDevice(dev_, drawing_)).failed()) return fail(s, "Setup #1 of scanner failed.\n");
    if ((s = set_window_ScanDevice(dev_, drawing_)).failed()) return fail(s, "Set window of scanner failed.\n");
    if ((s = setup2_ScanDevice(dev_, drawing_)).failed()) return fail(s, "Setup #2 of scanner failed.\n");
    if (stop()) return SCAN_STOPPED;

    window_->enableButton(SessionButton::Stop, may_stop_ScanDevice(dev_));
    if ((s = initiate_ScanDevice(dev_)).failed()) return fail(s, "Scan of scanner failed.\n");
    // A stop between scan and read aborts in the device and never reads.
    s = poll_ScanDevice(dev_);
    while (s.code == STATUS_BUSY) {
        if (stop()) {
            abort_ScanDevice(dev_);
            return SCAN_STOPPED;
        }
        s = poll_ScanDevice(dev_);
    }
    if (s.code == STATUS_NO_MORE_PAPER) {
        set_stop_of_ScanConfig(config_, true);
        return SCAN_STOPPED;
    }
    if (s.code != STATUS_SUCCESS) return s.code;
    if ((s = read_ScanDevice(dev_, drawing_)).failed()) return fail(s, "Read of scanner failed.\n");

    window_->enableButton(SessionButton::Stop, true);
    if (config_->autofeed && (s = eject_ScanDevice(dev_)).failed()) return fail(s, "Eject of scanner failed.\n");
    if (stop()) return SCAN_STOPPED;
    if (config_->flip) flip_Drawing(drawing_);

    set_drawing_of_ScanConfig(config_, drawing_, false);
    handed_over_ = true;
    LMV_trace("Registering scan...\n");
    if (!RegisterScan(config_)) return AskRegistrationFailure(config_);
    LMV_trace("\tScan registered.\n");
    if ((s = wait_ready(dev_)).code != STATUS_SUCCESS) return fail(s, "Scanner is not ready.\n");
    return SCAN_DONE;
}

int32_t answer_of_registration(RegistrationAnswer answer) {
    switch (answer) {
    case RegistrationAnswer::Retry: return SCAN_RETRY;
    case RegistrationAnswer::SkipDrawing: return SCAN_SKIPPED;
    case RegistrationAnswer::StopScanning: break;
    }
    return SCAN_STOPPED;
}

QString path_text(const Drawing *d) {
    return QStringLiteral("%1/%2").arg(path_of_Drawing(d), file_base_name_of_Drawing(d));
}

}  // namespace

bool ends_list_of_ScanResult(int32_t result) { return result >= 0 && result < 16 && ((0x8260 >> result) & 1); }

void ReportScanError(ScanConfig *config, int32_t code, const QString &text) {
    LMV_ASSERT_VOID(config != nullptr);
    if (config->main_interface) config->main_interface->restoreCursor();
    QString message = text;
    if (code == SCAN_SAVE_FAILED) message += tr("\nCheck for a full disk and the permissions on the path.");
    if (code == SCAN_NO_DEVICE)
        message += tr("\nCheck SCSI ID of the scanner in the configuration file and permissions on the device file.");
    MSG_Scope(MSG_Text::translated(message, message), MSG_ACTION_ERROR);
    config->finish = true;
}

int32_t AskRegistrationFailure(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr && config->main_interface, SCAN_INTERNAL);
    return answer_of_registration(config->main_interface->askRegistrationFailure());
}

void AskStopScanning(ScanConfig *config) {
    LMV_ASSERT_VOID(config != nullptr && config->main_interface);
    if (config->main_interface->askStop() == StopAnswer::FinishThisDrawing)
        set_finish_of_ScanConfig(config, true);
    else
        set_stop_of_ScanConfig(config, true);
}

int32_t ScanOneDrawing(ScanConfig *config) {
    if (!config || config->scanner_kind != SCANNER_SCSI) return SCAN_NO_DEVICE;
    LMV_trace("ScanOneDrawing()\n");
    LMV_ASSERT_RET(config->scanner != nullptr, SCAN_INTERNAL);
    ScanDeviceInfo *dev = device_of_ScannerEntry(config->scanner);
    LMV_ASSERT_RET(dev != nullptr, SCAN_INTERNAL);
    ScanWindow *w = config->main_interface;
    w->setWaitCursor();

    Drawing *d = prepare_Drawing(config, host_of_ScannerList(config->scanner_list.get()),
                                 name_of_ScannerEntry(config->scanner));
    dev->optical_reg = config->optical;
    dev->autofeeded = config->autofeed;
    const Standard_parameters *parameters = parameters_of_ScanDeviceInfo(dev, config->depth);
    if (!parameters) {
        LMV_assertion_msg(__FILE__, __LINE__, "parameter set of the depth");
        destroy_Drawing(&d);
        w->restoreCursor();
        return SCAN_INTERNAL;
    }
    copy_parameters_to_Drawing(parameters, d);
    LMV_log("OPTIONS %s <%s>, %s:%d, %d dpi, %.1f field, OP:%d, pegSide:%d pancelMode:%d\n",
            qPrintable(name_of_ScannerEntry(config->scanner)), qPrintable(model_of_ScannerEntry(config->scanner)),
            depth_name_of_ScanConfig(config->depth), config->depth, static_cast<int>(config->dpi), config->field,
            config->optical ? 1 : 0, config->peg_side, config->pancel ? 1 : 0);

    DeviceSequence sequence(config, dev, d);
    int32_t result = sequence.run();
    if (!sequence.handedOver()) destroy_Drawing(&d);

    if (dev->opened || dev->reserved) {
        const ScanStatus s = release_ScanDevice(dev);
        if (s.failed()) ReportScanError(config, result, tr("Error releasing scanner.\n"));
    }
    w->restoreCursor();
    return sequence.stopped() ? SCAN_STOPPED : result;
}

int32_t ScanCurrentDrawing(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr && config->main_interface, SCAN_INTERNAL);
    DrawingList *list = config->drawing_list;
    LMV_ASSERT_RET(list != nullptr, SCAN_INTERNAL);
    const int32_t row = current_row_of_DrawingList(list);
    LMV_ASSERT_RET(row >= 0, SCAN_INTERNAL);
    LMV_ASSERT_RET(!name_of_DrawingList(list, row).isEmpty(), SCAN_INTERNAL);
    Drawing *previous = config->drawing;
    ScanWindow *w = config->main_interface;
    w->setWaitCursor();
    // A stop puts the row back to its bare name.
    const auto stopped = [&] {
        mark_of_DrawingList(list, row, ROW_NONE, QString());
        w->restoreCursor();
        return SCAN_STOPPED;
    };
    const auto leave = [&](int32_t result) {
        w->restoreCursor();
        return result;
    };
    if (stop_of_ScanConfig(config)) return stopped();

    int32_t result = ScanOneDrawing(config);
    while (result == SCAN_RETRY) {
        // The failed image has already moved the pan cel selection on.
        if (config->pancel && !config->trial) w->pancelStepBack();
        restore_previous(config, previous);
        result = ScanOneDrawing(config);
    }
    if (result == SCAN_STOPPED) {
        restore_previous(config, previous);
        return leave(SCAN_STOPPED);
    }
    if (stop_of_ScanConfig(config)) {
        restore_previous(config, previous);
        return stopped();
    }
    if (result == SCAN_SKIPPED) {
        mark_of_DrawingList(list, row, ROW_NOT_SCANNED, summary_of_ScanConfig(config));
        next_of_DrawingList(list);
        restore_previous(config, previous);
        return leave(SCAN_SKIPPED);
    }
    if (result != SCAN_DONE) {
        restore_previous(config, previous);
        return leave(result);
    }

    if (!w->pancelFits(config->drawing)) {
        restore_previous(config, previous);
        return leave(SCAN_DONE);
    }
    if (previous && previous != config->drawing) destroy_Drawing(&previous);
    set_can_save_of_ScanConfig(config, true);
    w->enableButton(SessionButton::Save, true);
    if (stop_of_ScanConfig(config)) return stopped();
    // A preview and a pan cel pass stay unsaved: the operator saves them.
    if (config->trial || config->pancel) return leave(SCAN_DONE);

    const QString path = path_text(config->drawing);
    if (!config->auto_save && !w->askSaveDrawing(tr("Save the file ") + path + QStringLiteral("?"))) {
        mark_of_DrawingList(list, row, ROW_NOT_SCANNED, summary_of_ScanConfig(config));
        return leave(SCAN_SKIPPED);
    }
    if (stop_of_ScanConfig(config)) return stopped();
    return leave(SaveScan(config));
}

void ScanDrawingList(ScanConfig *config) {
    LMV_ASSERT_VOID(config != nullptr && config->main_interface);
    ScanWindow *w = config->main_interface;
    if (config->scanner_kind == SCANNER_TWAIN) {
        // TWAIN images arrive through the external helper, one addScanToDrawing
        // each; without the helper no TWAIN source can be selected.
        LMV_ASSERT_VOID(config->twain_scanner != nullptr);
        SetInterfaceState(config, INTERFACE_SCANNING);
        SetInterfaceState(config, INTERFACE_IDLE);
        return;
    }
    if (config->scanner_kind != SCANNER_SCSI) return;
    LMV_ASSERT_VOID(config->drawing_list != nullptr && config->scanner != nullptr);
    ScanDeviceInfo *dev = device_of_ScannerEntry(config->scanner);
    DrawingList *list = config->drawing_list;
    SetInterfaceState(config, INTERFACE_SCANNING);
    config->finish = false;
    for (;;) {
        const int32_t row = current_row_of_DrawingList(list);
        const bool notLast = row < count_of_DrawingList(list) - 1;
        if (stop_of_ScanConfig(config)) break;
        set_last_drawing_of_ScanDeviceInfo(dev, notLast ? config->one_drawing : true);
        const int32_t result = ScanCurrentDrawing(config);
        w->processEvents();
        if (ends_list_of_ScanResult(result)) break;
        if (const int32_t delay = WaitBetweenDrawings_of_ScannerEntry(config->scanner); delay > 0) {
            w->setWaitCursor();
            sleep_of_ScanDevice(delay);
            w->restoreCursor();
        }
        if (config->one_drawing || config->trial || config->finish || !notLast) break;
    }
    SetInterfaceState(config, INTERFACE_IDLE);
}

int32_t addScanToDrawing(ScanConfig *config, LMV_pixmap *pixmap, int32_t depth, bool fromListener) {
    LMV_trace("addScanToDrawing()\n");
    if (!config || !config->main_interface) {
        LMV_assertion_msg(__FILE__, __LINE__, "session of the scan");
        if (pixmap) release_pixmap(pixmap);
        return SCAN_NO_DEVICE;
    }
    ScanWindow *w = config->main_interface;
    DrawingList *list = config->drawing_list;
    if (!list || current_row_of_DrawingList(list) < 0) {
        if (pixmap) release_pixmap(pixmap);
        return SCAN_INTERNAL;
    }
    w->setWaitCursor();
    Drawing *previous = config->drawing;
    int32_t result = SCAN_DONE;
    const auto leave = [&] {
        if (pixmap && pixmap_of_Drawing(config->drawing) != pixmap) release_pixmap(pixmap);
        w->restoreCursor();
        LMV_trace("\tScan registered.\n");
        return result;
    };

    if (config->database && !binding_fits_depth(config->binding, depth)) {
        MSG_Scope(MSG_Text("kqScan", "The scanned image is not compatible with the destination drawing's color mode."),
                  MSG_ACTION_ERROR);
        result = SCAN_WRONG_COLOUR_MODE;
        return leave();
    }

    const QString source = config->twain_scanner ? config->twain_scanner->name : QString();
    Drawing *d = prepare_Drawing(config, QStringLiteral("localhost"), source);
    if (!config->database) set_file_format_of_Drawing(d, depth == DEPTH_COLOUR ? 4 : 2);
    const double dpi = config->dpi ? config->dpi : 1.0;
    set_window_xres_inches_of_Drawing(d, width_of_pixmap(pixmap) / dpi);
    set_window_yres_inches_of_Drawing(d, height_of_pixmap(pixmap) / dpi);
    // What the source did with threshold, points, gamma and speed is unknown.
    set_threshold_of_Drawing(d, -1);
    set_black_point_of_Drawing(d, -1);
    set_white_point_of_Drawing(d, -1);
    set_gamma_of_Drawing(d, -1.0f);
    set_speed_of_Drawing(d, -1);
    set_pixmap_of_Drawing(d, pixmap);
    LMV_log("OPTIONS %s:%d, %d dpi, %.1f field, OP:%d, pegSide:%d pancelMode:%d\n", depth_name_of_ScanConfig(config->depth),
            config->depth, static_cast<int>(config->dpi), config->field, config->optical ? 1 : 0, config->peg_side,
            config->pancel ? 1 : 0);
    if (config->flip) flip_Drawing(d);
    set_drawing_of_ScanConfig(config, d, false);
    LMV_trace("Registering scan...\n");

    if (RegisterScan(config)) {
        if (!w->pancelFits(d)) {
            restore_previous(config, previous);
            pixmap = nullptr;  // went with the refused drawing
            return leave();
        }
        if (previous && previous != d) destroy_Drawing(&previous);
        set_can_save_of_ScanConfig(config, true);
        w->enableButton(SessionButton::Save, true);
        if (!config->trial && !config->pancel) {
            const QString path = path_text(d);
            if (fromListener || config->auto_save || w->askSaveDrawing(tr("Save the file %1 ?").arg(path)))
                SaveScan(config);
        }
        return leave();
    }
    // The drawing that did not register goes, and its pixmap with it.
    restore_previous(config, previous);
    pixmap = nullptr;
    if (fromListener) {
        MSG_Scope(MSG_Text("kqScan", "Unable to optically register this drawing."), MSG_ACTION_ERROR);
        result = SCAN_NOT_REGISTERED;
        return leave();
    }
    result = AskRegistrationFailure(config);
    if (result == SCAN_SKIPPED) {
        mark_of_DrawingList(list, current_row_of_DrawingList(list), ROW_NOT_SCANNED, summary_of_ScanConfig(config));
        next_of_DrawingList(list);
    }
    return leave();
}
