#include "scan/scanner_list.h"

#include <QCoreApplication>

#include "suite/base/assertion.h"

ScannerEntry::ScannerEntry() : device_info(std::make_unique<ScanDeviceInfo>()) {}
ScannerEntry::~ScannerEntry() = default;

ScanDeviceInfo *device_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, nullptr);
    return e->device_info.get();
}

QString name_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return e->name;
}

void set_name_of_ScannerEntry(ScannerEntry *e, const QString &name) {
    LMV_ASSERT_VOID(e != nullptr);
    // Menu names are single words; a tab is not a blank and stays.
    e->name = name;
    e->name.replace(QLatin1Char(' '), QLatin1Char('_'));
}

QString deviceName_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return e->device;
}

QString model_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return e->model;
}

QString descr_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return e->descr;
}

namespace {
int32_t read_through(const ScannerEntry *e, int32_t own, int32_t ScanDeviceInfo::*field) {
    if (own != -1) return own;
    return e->device_info ? e->device_info.get()->*field : -1;
}
}  // namespace

// Each reads the entry's value, or the model's when the file left it at -1.
#define READ_THROUGH_ACCESSOR(entryField, deviceField)                        \
    int32_t entryField##_of_ScannerEntry(const ScannerEntry *e) {              \
        LMV_ASSERT_RET(e != nullptr, -1);                                      \
        return read_through(e, e->entryField, &ScanDeviceInfo::deviceField);   \
    }
READ_THROUGH_ACCESSOR(defaultThreshold, default_threshold)
READ_THROUGH_ACCESSOR(defaultBlackPoint, default_black_point)
READ_THROUGH_ACCESSOR(defaultWhitePoint, default_white_point)
READ_THROUGH_ACCESSOR(defaultResolution, default_resolution)
READ_THROUGH_ACCESSOR(defaultContrast, default_contrast)
READ_THROUGH_ACCESSOR(defaultBrightness, default_brightness)
READ_THROUGH_ACCESSOR(defaultGammaMode, default_gamma_mode)
#undef READ_THROUGH_ACCESSOR

void set_defaultGammaMode_of_ScannerEntry(ScannerEntry *e, int32_t mode) {
    LMV_ASSERT_VOID(e != nullptr);
    e->defaultGammaMode = mode;
    if (e->device_info) e->device_info->default_gamma_mode = mode;
}

float defaultGamma_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, -1.0f);
    return e->defaultGamma;
}

int32_t registrationStrictness_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, REGISTRATION_NOT_STATED);
    return e->registrationStrictness;
}

int32_t defaultPegSide_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, PEG_BOTTOM);
    return e->defaultPegSide;
}

QString gammaFile_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return e->gammaFile;
}

float pegPitch_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, 8.0f);
    return e->pegPitch;
}

float cleanSize_of_ScannerEntry(const ScannerEntry *e, int side) {
    LMV_ASSERT_RET(e != nullptr, 0.0f);
    LMV_ASSERT_RET(side >= 0 && side < 4, 0.0f);
    return e->cleanSize[static_cast<std::size_t>(side)];
}

QString dropOutColor_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return e->dropOutColor;
}

float leftOffset_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, 0.0f);
    return e->leftOffset;
}

int32_t WaitBetweenDrawings_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, 0);
    return e->WaitBetweenDrawings;
}

bool forceAllResolutions_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, false);
    return e->forceAllResolutions;
}

double xScaleAdjustment_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, 1.0);
    return e->xScaleAdjustment;
}

double yScaleAdjustment_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, 1.0);
    return e->yScaleAdjustment;
}

QStringList rgbDropList_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QStringList());
    return e->rgbDropList;
}

QString information_of_ScannerEntry(const ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, QString());
    return QCoreApplication::translate("Scan", "Scanner Name:\t%1\nDevice:\t\t%2\nScanner Model:\t%3\nDescription:\t%4")
        .arg(e->name, e->device, e->model, e->descr);
}

ScanStatus eject_of_ScannerEntry(ScannerEntry *e) {
    LMV_ASSERT_RET(e != nullptr, scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR));
    ScanDeviceInfo *dev = e->device_info.get();
    LMV_ASSERT_RET(dev != nullptr, scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR));
    const bool was = dev->last_drawing;
    dev->last_drawing = true;
    const ScanStatus status = eject_ScanDevice(dev);
    dev->last_drawing = was;
    return status;
}

int32_t count_of_ScannerList(const ScannerList *list) {
    LMV_ASSERT_RET(list != nullptr, 0);
    return list->count;
}

ScannerEntry *entry_of_ScannerList(const ScannerList *list, int32_t index) {
    LMV_ASSERT_RET(list != nullptr, nullptr);
    if (index < 0 || index >= static_cast<int32_t>(list->entries.size())) return nullptr;
    return list->entries[static_cast<std::size_t>(index)].get();
}

QString host_of_ScannerList(const ScannerList *list) {
    LMV_ASSERT_RET(list != nullptr, QString());
    return list->host;
}

ScannerEntry *find_by_name_of_ScannerList(const ScannerList *list, const QString &name, int32_t *index) {
    if (index) *index = -1;
    LMV_ASSERT_RET(list != nullptr, nullptr);
    for (std::size_t i = 0; i < list->entries.size(); ++i) {
        ScannerEntry *e = list->entries[i].get();
        if (e->name.size() == name.size() && e->name == name) {
            if (index) *index = static_cast<int32_t>(i);
            return e;
        }
    }
    return nullptr;
}

std::unique_ptr<ScannerEntry> take_TWAIN_of_ScannerList(ScannerList *list) {
    LMV_ASSERT_RET(list != nullptr, nullptr);
    int32_t index = -1;
    if (!find_by_name_of_ScannerList(list, QStringLiteral("TWAIN"), &index)) return nullptr;
    auto it = list->entries.begin() + index;
    std::unique_ptr<ScannerEntry> twain = std::move(*it);
    list->entries.erase(it);
    list->count = static_cast<int32_t>(list->entries.size());
    return twain;
}

bool supports_scan_type_of_ScannerEntry(const ScannerEntry *e, int32_t scanType) {
    LMV_ASSERT_RET(e != nullptr, false);
    switch (scanType) {
    case SCANTYPE_COLOUR: return supported_of_ScanDeviceInfo(e->device_info.get(), DEPTH_COLOUR);
    case SCANTYPE_GREY: return supported_of_ScanDeviceInfo(e->device_info.get(), DEPTH_GREY);
    case SCANTYPE_BW: return supported_of_ScanDeviceInfo(e->device_info.get(), DEPTH_BW);
    default: return false;  // "never supported"
    }
}

ScannerEntry *best_for_scan_type_of_ScannerList(const ScannerList *list, ScannerEntry *preferred,
                                                int32_t scanType) {
    LMV_ASSERT_RET(list != nullptr, nullptr);
    if (!preferred || scanType == SCANTYPE_NONE) return nullptr;
    if (supports_scan_type_of_ScannerEntry(preferred, scanType)) return preferred;
    for (const auto &e : list->entries)
        if (supports_scan_type_of_ScannerEntry(e.get(), scanType)) return e.get();
    return nullptr;
}
