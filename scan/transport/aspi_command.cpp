#include "scan/transport/aspi_command.h"

#include <algorithm>

#include "scan/scan_status.h"
#include "scan/transport/hex_dump.h"
#include "scan/transport/scsi_transport.h"
#include "suite/base/lmv_trace.h"

namespace {

const char *op_prefix(AspiOp op) {
    switch (op) {
    case AspiOp::Read: return "LMV_scsi_read";
    case AspiOp::Write: return "LMV_scsi_write";
    case AspiOp::Set: return "LMV_scsi_set";
    }
    return "LMV_scsi_read";
}

const char *adapter_status_text(uint8_t value) {
    switch (value) {
    case 9: return "bus transaction timeout\n";
    case 11: return "SRB expired while waiting to be processed\n";
    case 13: return "MESSAGE REJECTED received while processing the SRB\n";
    case 14: return "unexpected bus reset occurred\n";
    case 15: return "parity error occurred\n";
    case 16: return "REQUESTE SENSE failed\n";
    case 17: return "selection of the target timed out (target not ready ?)\n";
    case 18: return "data underrun or data overrun\n";
    case 19: return "unexpected bus free\n";
    case 20: return "bus phase sequence failure\n";
    default: return nullptr;
    }
}

void trace_command(const ScsiHandle &handle, AspiOp op, std::span<const uint8_t> command, int timeoutMs,
                   std::span<const uint8_t> data) {
    if (op == AspiOp::Read) {
        LMV_direct_trace("LMV_scsi_read: Sending Cmd:: opcode = 0x%02x\n", command.empty() ? 0 : command[0]);
        trace_scsi_hex_dump(command);
    } else if (op == AspiOp::Write) {
        LMV_direct_trace("LMV_scsi_write(fd=%d, cmd[0]=0x%02x, cmd_len=%d, timeout=%d, buf=%p, buf_len=%d)\n",
                         static_cast<int>(handle.file), command.empty() ? 0 : command[0],
                         static_cast<int>(command.size()), timeoutMs, static_cast<const void *>(data.data()),
                         static_cast<int>(data.size()));
        LMV_direct_trace("Command:\n");
        trace_scsi_hex_dump(command);
        LMV_direct_trace("Data:\n");
        trace_scsi_hex_dump(data);
    }
}

}  // namespace

AspiExecRequest aspi_make_request(const ScsiHandle &handle, AspiOp op, std::span<const uint8_t> command,
                                  std::span<uint8_t> data) {
    AspiExecRequest r;
    r.adapter = handle.adapter;
    r.target = handle.target;
    r.lun = handle.lun;
    r.flags = op == AspiOp::Read ? kAspiFlagsRead : kAspiFlagsOther;
    // Only a write asks for sense data; a check condition on a read or set dumps nothing.
    r.senseLength = op == AspiOp::Write ? kAspiWriteSenseLength : 0;
    r.data = data;
    r.cdbLength = static_cast<uint8_t>(std::min<std::size_t>(command.size(), r.cdb.size()));
    std::copy_n(command.begin(), r.cdbLength, r.cdb.begin());
    return r;
}

void aspi_trace_status_dump(const AspiExecRequest &request) {
    if (request.adapterStatus != 0) {
        LMV_trace("Host Adapter Error\n");
        if (const char *text = adapter_status_text(request.adapterStatus))
            LMV_trace("%s", text);
        else
            LMV_trace("Unknown SRB_HaStat %02x\n", request.targetStatus);  // the target status, long reported so
    }
    if (request.targetStatus != 0) {
        LMV_trace("Targget Error\n");
        switch (request.targetStatus) {
        case 2:
            LMV_trace("target check condition occurred, sensedata follows:\n");
            trace_scsi_hex_dump(std::span(request.sense).first(kAspiWriteSenseLength));
            break;
        case 8: LMV_trace("specified target/LUN is busy\n"); break;
        case 24: LMV_trace("target reservation conflict\n"); break;
        default: LMV_trace("Unknown SRB_TargStat %02x\n", request.targetStatus); break;
        }
    }
}

int32_t aspi_status_of_request(AspiOp op, const AspiExecRequest &request) {
    const char *prefix = op_prefix(op);
    switch (request.status) {
    case ASPI_COMPLETED: return SCSI_GOOD;
    case ASPI_COMPLETED_WITH_ERROR:
        LMV_trace("%s: Command completed with an error\n", prefix);
        aspi_trace_status_dump(request);
        break;
    case ASPI_INVALID_REQUEST: LMV_trace("%s: Invalid request\n", prefix); break;
    case ASPI_BUFFER_ALIGNMENT: LMV_trace("%s: Cannot handle the alignment of this buffer\n", prefix); break;
    case ASPI_NO_PRIVILEGES: LMV_trace("%s: No such privileges to perform this operation\n", prefix); break;
    case ASPI_BUFFER_TOO_BIG: LMV_trace("%s: Cannot handle the buffer size ( too big )\n", prefix); break;
    default:
        if (op != AspiOp::Set) LMV_trace("%s: Unknown Error SRB_Status=%d\n", prefix, request.status);
        break;
    }
    return SCSI_FAILURE;
}

bool aspi_execute(const ScsiHandle &handle, AspiOp op, std::span<const uint8_t> command, int timeoutMs,
                  std::span<uint8_t> data, int32_t *status, AspiPort &port) {
    if (LMV_scsi_debug()) trace_command(handle, op, command, timeoutMs, data);
    AspiExecRequest request = aspi_make_request(handle, op, command, data);
    const uint32_t sent = port.sendAndWait(handle, request, timeoutMs);
    *status = aspi_status_of_request(op, request);
    // A write counts as taken only when it completed; read and set when the
    // library accepted the request.
    return op == AspiOp::Write ? request.status == ASPI_COMPLETED : sent == 0;
}
