#pragma once
// The registration step every scan passes through: where the pegs of the
// sheet are, optically from the peg holes or mechanically from the scanner's
// own peg bar.
struct Drawing;
struct LMV_pixmap;
struct ScanConfig;

// Non-zero when the current drawing's pixmap is registered.
int RegisterScan(ScanConfig *config);
int MechanicalRegisterScan(ScanConfig *config, Drawing *drawing, LMV_pixmap *pixmap);
int OpticalRegisterScan(ScanConfig *config, Drawing *drawing, LMV_pixmap *pixmap);
