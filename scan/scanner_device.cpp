// Placeholder operations so that the tree builds; the real generic operations,
// the wrappers and the accessors replace them.
#include "scan/scanner_device.h"

ScanDeviceInfo::ScanDeviceInfo() = default;
ScanDeviceInfo::~ScanDeviceInfo() = default;

ScanStatus generic_reserve_of_ScanDeviceInfo(ScanDeviceInfo *) { return {0, STATUS_INTERNAL_ERROR}; }
ScanStatus generic_ready_of_ScanDeviceInfo(ScanDeviceInfo *) { return {0, STATUS_INTERNAL_ERROR}; }
ScanStatus generic_inquire_of_ScanDeviceInfo(ScanDeviceInfo *) { return {0, STATUS_INTERNAL_ERROR}; }
ScanStatus generic_release_of_ScanDeviceInfo(ScanDeviceInfo *) { return {0, STATUS_INTERNAL_ERROR}; }
ScanStatus nop_of_ScanDeviceInfo(ScanDeviceInfo *) { return {}; }
ScanStatus nop_drawing_of_ScanDeviceInfo(ScanDeviceInfo *, Drawing *) { return {}; }
bool may_stop_true_of_ScanDeviceInfo(ScanDeviceInfo *) { return true; }

int resolution_step_index(int32_t dpi) {
    for (std::size_t i = 0; i < kResolutionSteps.size(); ++i)
        if (kResolutionSteps[i] == dpi) return static_cast<int>(i);
    return -1;
}

Standard_parameters *parameters_of_ScanDeviceInfo(ScanDeviceInfo *dev, int32_t depth) {
    if (!dev) return nullptr;
    switch (depth) {
    case DEPTH_BW: return &dev->bw_parameters;
    case DEPTH_GREY: return &dev->grey_parameters;
    case DEPTH_COLOUR: return &dev->colour_parameters;
    default: return nullptr;
    }
}

bool supported_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int32_t depth) {
    if (!dev) return false;
    switch (depth) {
    case DEPTH_BW: return dev->bw_supported;
    case DEPTH_GREY: return dev->grey_supported;
    case DEPTH_COLOUR: return dev->colour_supported;
    default: return false;
    }
}

bool feeder_of_ScanDeviceInfo(const ScanDeviceInfo *dev, int32_t depth) {
    if (!dev) return false;
    switch (depth) {
    case DEPTH_BW: return dev->bw_feeder;
    case DEPTH_GREY: return dev->grey_feeder;
    case DEPTH_COLOUR: return dev->colour_feeder;
    default: return false;
    }
}
