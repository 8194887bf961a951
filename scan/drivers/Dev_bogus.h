#pragma once
// The test scanner, models "Bogus-B&W" and "Bogus-Color". It drives no
// hardware: its `device` text names a drawing file to "scan", or is
// "fieldchart" for a painted chart at the sheet's field size and resolution,
// skewed a little when the sheet is fed or registered optically. The scan loop,
// the feeder logic, the pixmap store and registration all run as with a real
// scanner.
//
// The feeder is counted down in a file "ADF_COUNT_FILE" in the current
// directory: with no such file it never runs empty.
#include "scan/scan_status.h"

class QImage;
struct Drawing;
struct ScanDeviceInfo;

// Fills every slot of the record's operation table: reserve, autoload, setup1,
// set_window and read of this driver, do-nothing operations for the rest.
void install_Dev_bogus_ops(ScanDeviceInfo *dev);

// The second half of a read: turns a picture of the sheet into the scan data
// of the drawing's depth and hands it to the drawing's new pixmap in pieces,
// as the scanner would send it. `from_file` marks a picture read from a
// drawing file rather than the painted chart (a colour scan of the chart
// carries a ramp). Separate so that the delivery can be measured alone.
ScanStatus deliver_Dev_bogus_image(ScanDeviceInfo *dev, Drawing *drawing, const QImage &image, bool from_file);
