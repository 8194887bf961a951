#pragma once
// "Load From File": a scan file becomes the current drawing, and the settings
// it was scanned with (depth, optical registration, peg side, dpi, field and
// the scanner's values for that depth) become the session's.
#include <QString>

#include <cstdint>

struct LMV_scaninfo;
struct ScanConfig;

// The depth a scan was made at, told by which values its information holds:
// 0 black and white, 1 grey, 2 colour.
int32_t depth_of_scaninfo(const LMV_scaninfo &info);

// Leaves the list and database mode, loads `path` as the current drawing
// (Save goes) and takes over the settings of its scan information. False when
// the file could not be loaded.
bool load_scan_file_of_ScanConfig(ScanConfig *config, const QString &path);
