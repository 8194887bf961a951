#pragma once
// An open SCSI device: where it sits on the bus, the system objects of the
// Windows transports, and the backend that carries its commands.
#include <cstdint>
#include <memory>
#include <span>

struct ScsiHandle;

// A system handle kept as an integer, so that the record is the same on every
// platform; -1 means "not made yet".
using ScsiSystemHandle = std::intptr_t;
inline constexpr ScsiSystemHandle kInvalidScsiSystemHandle = -1;

// One way of reaching a device. Every backend reports `scsi` with the same
// status mapping (scsi_sense.h) and returns whether the request was taken.
class ScsiBackend {
public:
    virtual ~ScsiBackend() = default;
    virtual bool read(ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs, std::span<uint8_t> data,
                      int32_t *status) = 0;
    virtual bool write(ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs,
                       std::span<const uint8_t> data, int32_t *status) = 0;
    virtual bool set(ScsiHandle &handle, std::span<const uint8_t> command, int timeoutMs, int32_t *status) = 0;
    // Frees what the backend holds for the handle (file, event, simulated target).
    virtual void close(ScsiHandle &handle) = 0;
};

struct ScsiHandle {
    uint8_t spti = 0;  // 0 ASPI, 1 SPTI
    uint8_t adapter = 0;
    uint8_t target = 0;
    uint8_t lun = 0;
    ScsiSystemHandle file = kInvalidScsiSystemHandle;  // the adapter's device file (SPTI)
    uint8_t path = 0;                                   // SPTI path id
    uint32_t max_transfer = 0;                          // kept, not consulted
    uint32_t alignment_mask = 0;                        // kept, not consulted
    ScsiSystemHandle event = kInvalidScsiSystemHandle;  // ASPI completion event
    std::unique_ptr<ScsiBackend> backend;
};
