#include "scan/transport/windows_transport.h"

#include "suite/base/lmv_trace.h"

#ifndef _WIN32

bool open_windows_scsi(ScsiHandle &handle) {
    LMV_trace("LMV_scsi_open: %s devices need a Windows build\n", handle.spti ? "SPTI" : "ASPI");
    return false;
}

#else

#include <windows.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "scan/scan_status.h"
#include "scan/transport/aspi_command.h"
#include "scan/transport/spti_command.h"
#include "scan/transport/spti_inquiry.h"

static_assert(sizeof(void *) == 8, "the pass-through block is packed for 64-bit Windows");

namespace {

HANDLE system_handle(ScsiSystemHandle h) { return reinterpret_cast<HANDLE>(h); }
ScsiSystemHandle scsi_handle(HANDLE h) { return reinterpret_cast<ScsiSystemHandle>(h); }

// ---- ASPI ----

#pragma pack(push, 1)
struct SRB_GDEVBlock {
    BYTE SRB_Cmd, SRB_Status, SRB_HaId, SRB_Flags;
    DWORD SRB_Hdr_Rsvd;
    BYTE SRB_Target, SRB_Lun, SRB_DeviceType, SRB_Rsvd1;
};
struct SRB_ExecSCSICmd {
    BYTE SRB_Cmd, SRB_Status, SRB_HaId, SRB_Flags;
    DWORD SRB_Hdr_Rsvd;
    BYTE SRB_Target, SRB_Lun;
    WORD SRB_Rsvd1;
    DWORD SRB_BufLen;
    BYTE *SRB_BufPointer;
    BYTE SRB_SenseLen, SRB_CDBLen, SRB_HaStat, SRB_TargStat;
    void *SRB_PostProc;
    BYTE SRB_Rsvd2[20];
    BYTE CDBByte[16];
    BYTE SenseArea[kAspiWriteSenseLength + 2];
};
#pragma pack(pop)

using SendASPI32CommandFn = DWORD(__cdecl *)(void *);
using GetASPI32SupportInfoFn = DWORD(__cdecl *)();

// Loaded once and kept for the life of the process.
struct AspiLibrary {
    bool tried = false;
    SendASPI32CommandFn send = nullptr;
    GetASPI32SupportInfoFn supportInfo = nullptr;
};

AspiLibrary &aspi_library() {
    static AspiLibrary lib;
    if (!lib.tried) {
        lib.tried = true;
        if (HMODULE dll = LoadLibraryW(L"WNASPI32.DLL")) {
            lib.send = reinterpret_cast<SendASPI32CommandFn>(GetProcAddress(dll, "SendASPI32Command"));
            lib.supportInfo = reinterpret_cast<GetASPI32SupportInfoFn>(GetProcAddress(dll, "GetASPI32SupportInfo"));
        }
    }
    return lib;
}

class WinAspiPort : public AspiPort {
public:
    uint32_t sendAndWait(const ScsiHandle &handle, AspiExecRequest &r, int timeoutMs) override {
        SRB_ExecSCSICmd srb{};
        srb.SRB_Cmd = r.command;
        srb.SRB_HaId = r.adapter;
        srb.SRB_Flags = r.flags;
        srb.SRB_Target = r.target;
        srb.SRB_Lun = r.lun;
        srb.SRB_BufLen = static_cast<DWORD>(r.data.size());
        srb.SRB_BufPointer = r.data.data();
        srb.SRB_SenseLen = r.senseLength;
        srb.SRB_CDBLen = r.cdbLength;
        srb.SRB_PostProc = system_handle(handle.event);
        std::memcpy(srb.CDBByte, r.cdb.data(), r.cdb.size());
        const DWORD sent = aspi_library().send(&srb);
        if (srb.SRB_Status == ASPI_PENDING &&
            WaitForSingleObject(system_handle(handle.event), static_cast<DWORD>(timeoutMs)) == WAIT_OBJECT_0)
            ResetEvent(system_handle(handle.event));
        r.status = srb.SRB_Status;
        r.adapterStatus = srb.SRB_HaStat;
        r.targetStatus = srb.SRB_TargStat;
        std::memcpy(r.sense.data(), srb.SenseArea, r.sense.size());
        return sent;
    }
};

class AspiBackend : public ScsiBackend {
public:
    bool read(ScsiHandle &h, std::span<const uint8_t> cmd, int timeoutMs, std::span<uint8_t> data,
              int32_t *status) override {
        return aspi_execute(h, AspiOp::Read, cmd, timeoutMs, data, status, port_);
    }
    bool write(ScsiHandle &h, std::span<const uint8_t> cmd, int timeoutMs, std::span<const uint8_t> data,
               int32_t *status) override {
        // The library takes a mutable pointer but does not write an outgoing buffer.
        std::span<uint8_t> out(const_cast<uint8_t *>(data.data()), data.size());
        return aspi_execute(h, AspiOp::Write, cmd, timeoutMs, out, status, port_);
    }
    bool set(ScsiHandle &h, std::span<const uint8_t> cmd, int timeoutMs, int32_t *status) override {
        return aspi_execute(h, AspiOp::Set, cmd, timeoutMs, {}, status, port_);
    }
    void close(ScsiHandle &h) override {
        if (h.event != kInvalidScsiSystemHandle) CloseHandle(system_handle(h.event));
        h.event = kInvalidScsiSystemHandle;
    }

private:
    WinAspiPort port_;
};

bool open_aspi(ScsiHandle &h) {
    AspiLibrary &lib = aspi_library();
    if (!lib.send || !lib.supportInfo) return false;
    HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    if (!event) return false;
    h.event = scsi_handle(event);
    auto fail = [&h] {
        CloseHandle(system_handle(h.event));
        h.event = kInvalidScsiSystemHandle;
        return false;
    };
    if (((lib.supportInfo() >> 8) & 0xff) != ASPI_COMPLETED) return fail();
    SRB_GDEVBlock block{};
    block.SRB_Cmd = kAspiGetDeviceType;
    block.SRB_HaId = h.adapter;
    block.SRB_Target = h.target;
    block.SRB_Lun = h.lun;
    lib.send(&block);
    if (!aspi_device_type_accepted(block.SRB_Status, block.SRB_DeviceType)) return fail();
    h.backend = std::make_unique<AspiBackend>();
    return true;
}

// ---- SPTI ----

std::string system_error_text(DWORD error) {
    char *text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   error, 0, reinterpret_cast<char *>(&text), 0, nullptr);
    std::string out = text ? text : "";
    if (text) LocalFree(text);
    return out;
}

class SptiBackend : public ScsiBackend {
public:
    bool read(ScsiHandle &h, std::span<const uint8_t> cmd, int timeoutMs, std::span<uint8_t> data,
              int32_t *status) override {
        return spti_execute(h, cmd, timeoutMs, SptiDirection::Read, data, status, ioctl(h));
    }
    bool write(ScsiHandle &h, std::span<const uint8_t> cmd, int timeoutMs, std::span<const uint8_t> data,
               int32_t *status) override {
        std::span<uint8_t> out(const_cast<uint8_t *>(data.data()), data.size());
        return spti_execute(h, cmd, timeoutMs, SptiDirection::Write, out, status, ioctl(h));
    }
    bool set(ScsiHandle &h, std::span<const uint8_t> cmd, int timeoutMs, int32_t *status) override {
        return spti_execute(h, cmd, timeoutMs, SptiDirection::None, {}, status, ioctl(h));
    }
    void close(ScsiHandle &h) override {
        if (h.file != kInvalidScsiSystemHandle) CloseHandle(system_handle(h.file));
        h.file = kInvalidScsiSystemHandle;
    }

private:
    static SptiIoctl ioctl(const ScsiHandle &h) {
        HANDLE file = system_handle(h.file);
        return [file](std::span<uint8_t> block, std::string &errorText, int &errorNumber) {
            DWORD returned = 0;
            if (DeviceIoControl(file, kIoctlScsiPassThroughDirect, block.data(), static_cast<DWORD>(block.size()),
                                block.data(), static_cast<DWORD>(block.size()), &returned, nullptr))
                return true;
            const DWORD error = GetLastError();
            errorText = system_error_text(error);
            errorNumber = static_cast<int>(error);
            return false;
        };
    }
};

bool open_spti(ScsiHandle &h) {
    const std::wstring path = L"\\\\.\\Scsi" + std::to_wstring(h.adapter) + L":";
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    h.file = scsi_handle(file);
    auto fail = [&h] {
        CloseHandle(system_handle(h.file));
        h.file = kInvalidScsiSystemHandle;
        return false;
    };
    std::vector<uint8_t> answer(kSptiInquiryBufferSize);
    DWORD returned = 0;
    if (!DeviceIoControl(file, kIoctlScsiGetInquiryData, nullptr, 0, answer.data(), static_cast<DWORD>(answer.size()),
                         &returned, nullptr))
        return fail();
    if (spti_find_scanner(answer, h.target, h.lun) != SptiInquiryResult::Found) return fail();
    std::array<uint8_t, 24> capabilities{};
    if (DeviceIoControl(file, kIoctlScsiGetCapabilities, nullptr, 0, capabilities.data(),
                        static_cast<DWORD>(capabilities.size()), &returned, nullptr)) {
        std::memcpy(&h.max_transfer, capabilities.data() + 4, 4);
        std::memcpy(&h.alignment_mask, capabilities.data() + 16, 4);
    }
    h.backend = std::make_unique<SptiBackend>();
    return true;
}

}  // namespace

bool open_windows_scsi(ScsiHandle &handle) { return handle.spti ? open_spti(handle) : open_aspi(handle); }

#endif
