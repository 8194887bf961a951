#pragma once
// The scan loop: one press of Scan or Preview works through the drawing list,
// each drawing from reserve to save. Runs on the main thread; the event loop
// is pumped inside the stop checks and the operator's questions.
#include <QString>

#include <cstdint>

struct LMV_pixmap;
struct ScanConfig;

// ScanResult values.
enum ScanResult : int32_t {
    SCAN_DONE = 0,
    SCAN_NOT_REGISTERED = 1,
    SCAN_WRONG_COLOUR_MODE = 2,
    SCAN_BUSY = 4,  // also UpdateDrawingDatabase without a binding
    SCAN_DEVICE_FAILED = 5,
    SCAN_STOPPED = 6,
    SCAN_SKIPPED = 7,
    SCAN_RETRY = 8,
    SCAN_SAVE_FAILED = 9,
    SCAN_INTERNAL = 10,
    SCAN_QUEUE_FAILED = 12,
    SCAN_PANCEL_FAILED = 13,
    SCAN_NO_DEVICE = 14,
};

// Results that end the list at once: 5, 6, 9 and 15.
bool ends_list_of_ScanResult(int32_t result);

void ScanDrawingList(ScanConfig *config);
int32_t ScanCurrentDrawing(ScanConfig *config);
int32_t ScanOneDrawing(ScanConfig *config);
// Takes the pixmap over: it is released unless it became the drawing's.
int32_t addScanToDrawing(ScanConfig *config, LMV_pixmap *pixmap, int32_t depth, bool fromListener);
// The one report of a scan failure; the list then ends after this drawing.
void ReportScanError(ScanConfig *config, int32_t code, const QString &text);
// Asks what to do with a drawing that did not register: 8, 7 or 6.
int32_t AskRegistrationFailure(ScanConfig *config);
// The Stop button: asks whether to stop at once or finish this drawing.
void AskStopScanning(ScanConfig *config);
