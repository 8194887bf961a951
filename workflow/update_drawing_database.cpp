// The database step after each saved drawing of a database list: the cel is
// marked processed and, when the element wants vector art, the drawing goes on
// the vectorize queue.
#include <QCoreApplication>

#include <cmath>

#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"
#include "suite/db/tudbaccess.h"
#include "workflow/config.h"
#include "workflow/dbinfo.h"
#include "workflow/drawing_list.h"
#include "workflow/scan_procs.h"
#include "workflow/scan_window.h"
#include "workflow/vectorize_queue_state.h"

namespace {

QString tr(const char *text) { return QCoreApplication::translate("kqScan", text); }

// The option line of the style the operator chose in the window; none without a window.
QString style_option_line(const ScanConfig *config) {
    ScanWindow *window = main_interface_of_ScanConfig(config);
    return window ? window->vectorizationStyleLine() : QString();
}

// Calibration factors this close to one are no calibration at all.
bool calibrated(double factor) { return std::fabs(factor - 1.0) > 1e-5; }

// What the vectorizer is told besides the drawing: pencil test, the scanner's
// calibration, then the style's own options.
QString option_text(const ScanConfig *config) {
    QString text;
    if (pencil_test_of_ScanConfig(config)) text += QStringLiteral("-no_color_art ");
    const double x = x_calibration_of_ScanConfig(config);
    const double y = y_calibration_of_ScanConfig(config);
    if (calibrated(x) || calibrated(y))
        text += QStringLiteral("-scanner_calibrate %1 %2 ").arg(QString::number(x, 'g', 6), QString::number(y, 'g', 6));
    const QString style = style_option_line(config);
    if (!style.isEmpty()) text += style;
    return text;
}

// Keeps the queue of `environment` open: the open one when it belongs to the
// same environment, else the old one closed and a new one opened with a fresh
// entry. False when the queue cannot be opened.
bool open_queue_for(TUDbAccess *db, const QString &environment) {
    VectorizeQueueState &state = vectorize_queue_state();
    if (state.queue && state.environment == environment) return true;
    if (state.queue) {
        state.environment.clear();
        db->dba_CloseQueue(&state.queue);
    }
    if (db->dba_OpenQueue(0, environment, &state.queue) == -1 || !state.queue) {
        state.queue.reset();
        return false;
    }
    state.environment = environment;
    state.entry = dba_queueEntry_struct{};
    state.entry.queue = state.queue.get();
    state.entry.active = 1;
    return true;
}

}  // namespace

VectorizeQueueState &vectorize_queue_state() {
    static VectorizeQueueState state;
    return state;
}

int32_t UpdateDrawingDatabase(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, SCAN_BUSY);
    const DatabaseBinding *binding = config->binding;
    LMV_ASSERT_RET(binding != nullptr, SCAN_BUSY);
    TUDbAccess *db = database_of_DatabaseBinding(binding);
    LMV_ASSERT_RET(db != nullptr, SCAN_BUSY);
    DrawingList *list = drawing_list_of_ScanConfig(config);
    LMV_ASSERT_RET(list != nullptr, SCAN_BUSY);
    if (!binding->open) return SCAN_DONE;

    const int32_t row = current_row_of_DrawingList(list);
    if (row < 0) return SCAN_BUSY;  // reported as an assertion already
    const QString drawing = name_of_DrawingList(list, row);
    const QByteArray drawingText = drawing.toLocal8Bit();
    const LMV_element_data *element = &binding->element;
    const qint64 elementId = TUDbAccess::element_id_of_LMV_element_data(element);
    const dba_scene_struct *scene = db->openScene();

    // Whether the cel took the mark is the database's business.
    db->dba_ProcessedCels(scene, binding->element_name, elementId, QStringList{drawing}, DBA_CEL_SCANNED, 0);

    if (!binding->needs_vectorization) {
        LMV_trace("Vectorize not needed.\n");
        return SCAN_DONE;
    }

    if (!open_queue_for(db, db->envName())) {
        LMV_assertion_msg(__FILE__, __LINE__, "the vectorize queue did not open");
        ReportScanError(config, SCAN_QUEUE_FAILED, tr("Unable to open the vectorize queue."));
        return SCAN_QUEUE_FAILED;
    }
    VectorizeQueueState &state = vectorize_queue_state();
    dba_queueEntry_struct &entry = state.entry;
    entry.jobName = db->jobName();
    entry.sceneName = db->sceneName();
    entry.elementName = binding->element_name;
    entry.elementId = elementId;
    entry.drawing = drawing;
    entry.options = option_text(config);
    entry.sceneId = scene ? scene->id : 0;
    if (TUDbAccess::needs_vectorization_LMV_element_data(element) == LMV_VECTORIZE) {
        entry.process = DBA_PROCESS_VECTORIZE;
        LMV_trace("Process %s with Vectorize.\n", drawingText.constData());
    } else {
        entry.process = DBA_PROCESS_PIX2VEC;
        LMV_trace("Process %s with Pix2vec.\n", drawingText.constData());
    }
    entry.scene = scene;
    entry.sceneVersion = scene ? scene->version : 0;

    if (db->dba_AddQueueEntry(state.queue.get(), &entry) != 0) {
        LMV_assertion_msg(__FILE__, __LINE__, "the vectorize queue refused an entry");
        LMV_error("Error adding %s to the Vectorize queue.\n", drawingText.constData());
        // The next drawing finds no queue and opens it afresh.
        db->dba_CloseQueue(&state.queue);
        state.queue.reset();
        state.environment.clear();
        ReportScanError(config, SCAN_QUEUE_FAILED, tr("Failed to add the drawing to the Vectorize queue."));
        return SCAN_QUEUE_FAILED;
    }
    LMV_trace("Placed %s on the Vectorize queue.\n", drawingText.constData());
    return SCAN_DONE;
}
