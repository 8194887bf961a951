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
struct ScanDeviceInfo;

// Fills every slot of the record's operation table: reserve, autoload, setup1,
// set_window and read of this driver, do-nothing operations for the rest.
void install_Dev_bogus_ops(ScanDeviceInfo *dev);
