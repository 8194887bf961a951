// The station program.
#include "app/scan_entry.h"

int main(int argc, char **argv) { return ScanMain(argc, argv); }
