#pragma once
// The scanners of this machine, as Scan.conf tells them. One file serves a whole
// studio; the reader keeps only the blocks whose host: is this machine, merges
// each scanner with its model (devices.h) and reports trouble as messages.
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "scan/scanner_device.h"

// Peg sides of Scan.conf and of a Drawing.
enum PegSide : int32_t { PEG_NONE = 0, PEG_LEFT = 1, PEG_TOP = 2, PEG_RIGHT = 3, PEG_BOTTOM = 4 };

// Element scan types; they run the other way from ScanDepth.
enum ElementScanType : int32_t {
    SCANTYPE_COLOUR = 0,
    SCANTYPE_GREY = 1,
    SCANTYPE_BW = 2,
    SCANTYPE_NEVER = 3,
    SCANTYPE_NONE = 4,
};

// One scanner block of Scan.conf. A -1 (-1.0 for the gamma) means "the model's
// value": the accessors below then read through to the device record.
struct ScannerEntry {
    ScannerEntry();
    ~ScannerEntry();
    ScannerEntry(const ScannerEntry &) = delete;
    ScannerEntry &operator=(const ScannerEntry &) = delete;

    QString name;  // blanks replaced by "_" (set_name_of_ScannerEntry)
    QString device;
    QString model;
    QString descr;
    int32_t defaultThreshold = -1;
    int32_t defaultBlackPoint = -1;
    int32_t defaultWhitePoint = -1;
    int32_t defaultResolution = -1;
    int32_t defaultContrast = -1;
    float defaultGamma = -1.0f;
    int32_t registrationStrictness = REGISTRATION_NOT_STATED;
    int32_t defaultPegSide = PEG_BOTTOM;
    std::unique_ptr<ScanDeviceInfo> device_info;  // never null
    QString gammaFile;
    float pegPitch = 8.0f;
    // 0 peg side, 1 first neighbour, 2 opposite side, 3 second neighbour
    std::array<float, 4> cleanSize = {0.0f, 0.0f, 0.0f, 0.0f};
    int32_t defaultBrightness = -1;
    int32_t defaultGammaMode = -1;
    QString dropOutColor;
    float leftOffset = 0.0f;
    int32_t WaitBetweenDrawings = 0;
    bool forceAllResolutions = false;
    double xScaleAdjustment = 1.0;
    double yScaleAdjustment = 1.0;
    QStringList rgbDropList;
};

ScanDeviceInfo *device_of_ScannerEntry(const ScannerEntry *e);
QString name_of_ScannerEntry(const ScannerEntry *e);
void set_name_of_ScannerEntry(ScannerEntry *e, const QString &name);
QString deviceName_of_ScannerEntry(const ScannerEntry *e);  // the device: text
QString model_of_ScannerEntry(const ScannerEntry *e);
QString descr_of_ScannerEntry(const ScannerEntry *e);

// Read through to the device record on -1.
int32_t defaultThreshold_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultBlackPoint_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultWhitePoint_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultResolution_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultContrast_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultBrightness_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultGammaMode_of_ScannerEntry(const ScannerEntry *e);
// Also writes the device record at once.
void set_defaultGammaMode_of_ScannerEntry(ScannerEntry *e, int32_t mode);

float defaultGamma_of_ScannerEntry(const ScannerEntry *e);
int32_t registrationStrictness_of_ScannerEntry(const ScannerEntry *e);
int32_t defaultPegSide_of_ScannerEntry(const ScannerEntry *e);
QString gammaFile_of_ScannerEntry(const ScannerEntry *e);
float pegPitch_of_ScannerEntry(const ScannerEntry *e);
float cleanSize_of_ScannerEntry(const ScannerEntry *e, int side);  // 0.0 for a bad side
QString dropOutColor_of_ScannerEntry(const ScannerEntry *e);
float leftOffset_of_ScannerEntry(const ScannerEntry *e);
int32_t WaitBetweenDrawings_of_ScannerEntry(const ScannerEntry *e);
bool forceAllResolutions_of_ScannerEntry(const ScannerEntry *e);
double xScaleAdjustment_of_ScannerEntry(const ScannerEntry *e);
double yScaleAdjustment_of_ScannerEntry(const ScannerEntry *e);
QStringList rgbDropList_of_ScannerEntry(const ScannerEntry *e);

// Whether the scanner scans an element scan type (ElementScanType); never
// for SCANTYPE_NEVER and SCANTYPE_NONE.
bool supports_scan_type_of_ScannerEntry(const ScannerEntry *e, int32_t scanType);

// "Scanner Name:\t...\nDevice:\t\t...\nScanner Model:\t...\nDescription:\t..."
QString information_of_ScannerEntry(const ScannerEntry *e);

// Ejects the sheet from the operator's menu: the eject runs with the unload flag
// (last_drawing) set, which is put back afterwards.
ScanStatus eject_of_ScannerEntry(ScannerEntry *e);

struct ScannerList {
    QString host;  // short machine name; empty when it could not be found
    int32_t count = 0;  // always entries.size()
    std::vector<std::unique_ptr<ScannerEntry>> entries;
    // A TWAIN entry left out by a read without keepTwain.
    std::unique_ptr<ScannerEntry> setAside;
};

// Reads a Scan.conf. Never fails: trouble is reported and the list may be empty.
// `host` stands in for this machine's short name (tests, checking another station).
std::unique_ptr<ScannerList> read_ScannerList(const QString &path, bool keepTwain,
                                              const std::optional<QString> &host = std::nullopt);

int32_t count_of_ScannerList(const ScannerList *list);
ScannerEntry *entry_of_ScannerList(const ScannerList *list, int32_t index);  // null for a bad index
QString host_of_ScannerList(const ScannerList *list);
// Exact, case-sensitive. *index is the position, or -1 when there is none.
ScannerEntry *find_by_name_of_ScannerList(const ScannerList *list, const QString &name, int32_t *index);
// Removes the first entry named "TWAIN" and hands it over; null if there is none.
std::unique_ptr<ScannerEntry> take_TWAIN_of_ScannerList(ScannerList *list);
// The preferred scanner when it supports the element scan type, else the first
// that does; null for a null preference or SCANTYPE_NONE.
ScannerEntry *best_for_scan_type_of_ScannerList(const ScannerList *list, ScannerEntry *preferred,
                                                int32_t scanType);
