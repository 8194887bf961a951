#include "app/load_from_file.h"

#include <QCoreApplication>

#include "scan/drawing.h"
#include "scan/parameters.h"
#include "scan/scanner_device.h"
#include "scan/scanner_list.h"
#include "scan/twain_device_list.h"
#include "scan/vector_scaninfo.h"
#include "suite/base/lmv_trace.h"
#include "workflow/config.h"
#include "workflow/scan_window.h"

namespace {

void copy_parameters(Standard_parameters *p, const LMV_scaninfo &info, int32_t depth) {
    if (!p) return;
    switch (depth) {
    case 0: p->threshold_current = info.threshold; break;
    case 1:
        p->white_point_current = info.white_point;
        p->black_point_current = info.black_point;
        p->gamma_current = info.gamma;
        break;
    default: p->gamma_current = info.gamma; break;
    }
}

Standard_parameters *parameters_of(ScannerEntry *entry, int32_t depth) {
    ScanDeviceInfo *dev = entry ? device_of_ScannerEntry(entry) : nullptr;
    return dev ? parameters_of_ScanDeviceInfo(dev, depth) : nullptr;
}

// Selects the scanner of the current kind again, or only refreshes the
// controls when none is selected.
void reselect_current_scanner(ScanConfig *config) {
    int32_t index = -1;
    if (scanner_kind_of_ScanConfig(config) == SCANNER_SCSI && scanner_of_ScanConfig(config)) {
        find_by_name_of_ScannerList(scanner_list_of_ScanConfig(config), name_of_ScannerEntry(scanner_of_ScanConfig(config)),
                                    &index);
    } else if (scanner_kind_of_ScanConfig(config) == SCANNER_TWAIN && twain_scanner_of_ScanConfig(config)) {
        index = count_of_ScannerList(scanner_list_of_ScanConfig(config)) + twain_scanner_of_ScanConfig(config)->index;
    }
    if (index >= 0)
        select_scanner_of_ScanConfig(config, index);
    else
        refresh_of_ScanConfig(config);
}

}  // namespace

int32_t depth_of_scaninfo(const LMV_scaninfo &info) {
    if (info.threshold < 0 && info.black_point >= 0 && info.white_point >= 0) return 1;
    return info.threshold < 0 ? 2 : 0;
}

bool load_scan_file_of_ScanConfig(ScanConfig *config, const QString &path) {
    ScanWindow *w = main_interface_of_ScanConfig(config);
    if (!w) return false;
    set_drawing_list_of_ScanConfig(config, nullptr);
    w->drawingListView()->clear();
    set_database_of_ScanConfig(config, false);
    w->setWindowTitle(QCoreApplication::translate("kqScan", "Scan: ") + path);

    QString text;
    Drawing *drawing = load_Drawing(path, text);
    if (!drawing) return false;
    set_drawing_of_ScanConfig(config, drawing, true);
    set_can_save_of_ScanConfig(config, false);
    if (text.isEmpty()) return true;

    LMV_scaninfo info;
    if (LMV_scaninfo_from_str(&info, text.toLatin1().constData()) != 0) LMV_trace("LoadFromFile: bad scan information\n");
    const int32_t depth = depth_of_scaninfo(info);

    set_depth_of_ScanConfig(config, depth);
    set_optical_of_ScanConfig(config, info.pegged != 1);
    set_peg_side_of_ScanConfig(config, info.peg_side == 0 ? 4 : info.peg_side);
    set_dpi_of_ScanConfig(config, static_cast<uint32_t>(info.dpi));
    set_field_of_ScanConfig(config, info.paper_size);

    // The file's values go to the scanner that made it, which becomes the
    // selected one. Selecting a scanner that is already selected keeps the
    // settings above; another scanner brings its own defaults for them.
    int32_t index = -1;
    ScannerEntry *entry = find_by_name_of_ScannerList(scanner_list_of_ScanConfig(config),
                                                      QString::fromStdString(info.scanner_name), &index);
    copy_parameters(parameters_of(entry ? entry : scanner_of_ScanConfig(config), depth), info, depth);
    if (entry) select_scanner_of_ScanConfig(config, index);

    // Selecting the current scanner again shows its values for the new depth
    // and marks every setting on the controls.
    reselect_current_scanner(config);
    return true;
}
