#pragma once
// ASPI and SPTI, the transports of a Windows build.
#include "scan/transport/scsi_handle.h"

// Opens the adapter of a handle whose address is filled in (spti chooses the
// way) and attaches the backend. Always false in a build without Windows.
bool open_windows_scsi(ScsiHandle &handle);
