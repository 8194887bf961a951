#pragma once
// A command through ASPI: the execute request block this transport fills and
// reads back, the reading of its status, and the traces. The request is a
// plain record here; the Windows backend copies it into the packed block of
// the ASPI library and back, so everything but SendASPI32Command itself is
// tested on every platform.
#include <array>
#include <cstdint>
#include <span>

#include "scan/transport/scsi_handle.h"

enum class AspiOp { Read, Write, Set };

inline constexpr uint8_t kAspiExecuteCommand = 2;
inline constexpr uint8_t kAspiGetDeviceType = 1;
inline constexpr uint8_t kAspiFlagsRead = 72;   // data in, post by event
inline constexpr uint8_t kAspiFlagsOther = 64;  // direction by the command, post by event
inline constexpr uint8_t kAspiWriteSenseLength = 14;

// Request status values.
enum AspiStatus : uint8_t {
    ASPI_PENDING = 0,
    ASPI_COMPLETED = 1,
    ASPI_COMPLETED_WITH_ERROR = 4,
    ASPI_INVALID_REQUEST = 224,
    ASPI_BUFFER_ALIGNMENT = 225,
    ASPI_NO_PRIVILEGES = 226,
    ASPI_BUFFER_TOO_BIG = 230,
};

// Device types a scanner may call itself.
inline constexpr uint8_t kAspiDeviceTypeProcessor = 3;
inline constexpr uint8_t kAspiDeviceTypeScanner = 6;
// Some scanners call themselves processors; both are opened.
inline bool aspi_device_type_accepted(uint8_t requestStatus, uint8_t deviceType) {
    return requestStatus == 1 && (deviceType == kAspiDeviceTypeScanner || deviceType == kAspiDeviceTypeProcessor);
}

struct AspiExecRequest {
    uint8_t command = kAspiExecuteCommand;
    uint8_t status = ASPI_PENDING;
    uint8_t adapter = 0;
    uint8_t flags = 0;
    uint8_t target = 0;
    uint8_t lun = 0;
    std::span<uint8_t> data;
    uint8_t senseLength = 0;
    uint8_t cdbLength = 0;
    uint8_t adapterStatus = 0;  // SRB_HaStat
    uint8_t targetStatus = 0;   // SRB_TargStat
    std::array<uint8_t, 16> cdb{};
    std::array<uint8_t, kAspiWriteSenseLength + 2> sense{};
};

AspiExecRequest aspi_make_request(const ScsiHandle &handle, AspiOp op, std::span<const uint8_t> command,
                                  std::span<uint8_t> data);

// The transport status of a finished request, with the traces of a failure
// ("LMV_scsi_read: ..." and so on by the operation).
int32_t aspi_status_of_request(AspiOp op, const AspiExecRequest &request);

// The adapter and target status of a request that completed with an error.
void aspi_trace_status_dump(const AspiExecRequest &request);

// The library's side of a request: offer it, wait for it up to the time-out,
// and give back what SendASPI32Command returned.
class AspiPort {
public:
    virtual ~AspiPort() = default;
    virtual uint32_t sendAndWait(const ScsiHandle &handle, AspiExecRequest &request, int timeoutMs) = 0;
};

// One command: compose, send, map the status. The -scsidebug switch adds
// dumps of the command (and of the data of a write).
bool aspi_execute(const ScsiHandle &handle, AspiOp op, std::span<const uint8_t> command, int timeoutMs,
                  std::span<uint8_t> data, int32_t *status, AspiPort &port);
