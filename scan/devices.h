#pragma once
// The scanner model table: which model names exist, and what the setup of each
// model family fills into a ScanDeviceInfo (depths, resolutions, defaults,
// parameter sets, operations).
#include <QString>

#include <cstdint>

struct ScanDeviceInfo;
struct ScannerEntry;

// True for every model name that a Scan.conf may give.
bool supported_model_of_devices(const QString &model);

// Runs the setup of the model family named by dev->model. A name with no setup
// reports "Device %1 Not Supported." and leaves the record as it was; false then.
bool setup_model_of_devices(ScanDeviceInfo *dev);

// forceAllResolutions: 72 to 600 dpi, every step, optical limit 600.
void widen_resolutions_of_ScanDeviceInfo(ScanDeviceInfo *dev);

// Limits the entry's default resolution to its model and moves it up to an offered
// step; a change is logged and stored in the entry.
void check_resolution_of_ScannerEntry(ScannerEntry *entry);

// The Fujitsu fi driver's process-wide mode: once a "Fujitsu_fi6770" is set up,
// every fi scanner reads its drop colours by their first letter.
bool fi6770_mode_of_devices();
void reset_fi6770_mode_of_devices();  // for tests
