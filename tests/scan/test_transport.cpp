// The SCSI transport: device strings, the pass-through packing and status
// mapping of the Windows transports, the dumps, and the simulated target
// through the six primitives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "scan/scan_status.h"
#include "scan/transport/aspi_command.h"
#include "scan/transport/device_string.h"
#include "scan/transport/hex_dump.h"
#include "scan/transport/scsi_sense.h"
#include "scan/transport/scsi_transport.h"
#include "scan/transport/sim_target.h"
#include "scan/transport/spti_command.h"
#include "scan/transport/spti_inquiry.h"
#include "support/message_capture.h"
#include "suite/base/tumessage.h"

namespace {

// Turns debug mode on for one test, so that the trace channel is visible.
class DebugTraces {
public:
    DebugTraces() : old_(TUMessage::instance()->getDebugMode()) { TUMessage::instance()->setDebugMode(true); }
    ~DebugTraces() { TUMessage::instance()->setDebugMode(old_); }

private:
    bool old_;
};

uint32_t u32_at(std::span<const uint8_t> b, std::size_t offset) {
    uint32_t v;
    std::memcpy(&v, b.data() + offset, 4);
    return v;
}

uint8_t *data_pointer_of(std::span<const uint8_t> block) {
    uint64_t v;
    std::memcpy(&v, block.data() + spti_offset::data_buffer, 8);
    return reinterpret_cast<uint8_t *>(static_cast<std::uintptr_t>(v));
}

}  // namespace

// ---- device strings ----

TEST(DeviceString, ParsesBothForms) {
    const auto aspi = parse_scsi_device_string("sc2;d5;l1");
    ASSERT_TRUE(aspi);
    EXPECT_FALSE(aspi->spti);
    EXPECT_EQ(aspi->adapter, 2);
    EXPECT_EQ(aspi->target, 5);
    EXPECT_EQ(aspi->lun, 1);

    const auto spti = parse_scsi_device_string("a1;p2;t3;l4");
    ASSERT_TRUE(spti);
    EXPECT_TRUE(spti->spti);
    EXPECT_EQ(spti->adapter, 1);
    EXPECT_EQ(spti->path, 2);
    EXPECT_EQ(spti->target, 3);
    EXPECT_EQ(spti->lun, 4);

    EXPECT_TRUE(parse_scsi_device_string("sc0;d0;l0"));
    EXPECT_TRUE(parse_scsi_device_string("a0;p0;t0;l0"));
}

TEST(DeviceString, RefusesEverythingElse) {
    for (const char *bad : {"sc10;d0;l0", "sc0;d0", "a0;t0;p0;l0", "", "sc0;d0;l0;", "sc0;d0;l0;l0", "scx;d0;l0",
                            "SC0;d0;l0", "sc0;d0;lA", "a0;p0;t0", "a0;p0;t0;l10", "sc0;;l0", ";sc0;d0;l0",
                            "sim:x", "/dev/sg0"})
        EXPECT_FALSE(parse_scsi_device_string(bad)) << bad;
}

TEST(DeviceString, TellsTheSptiKind) {
    EXPECT_TRUE(LMV_scsi_is_spti("a0;p0;t0;l0"));
    EXPECT_FALSE(LMV_scsi_is_spti("sc0;d0;l0"));
    EXPECT_FALSE(LMV_scsi_is_spti("a0;t0;p0;l0"));
    EXPECT_FALSE(LMV_scsi_is_spti("sim:a0;p0;t0;l0"));
}

// ---- status mapping ----

TEST(SenseMapping, GoodStatusIgnoresSenseAndKeysMap) {
    std::vector<uint8_t> sense(18, 0);
    sense[2] = 0x06;
    EXPECT_EQ(convert_scsistatus_to_lmvstatus(0, sense), SCSI_GOOD);

    const std::pair<uint8_t, int32_t> cases[] = {{2, SCSI_NOT_READY}, {3, SCSI_MEDIUM_ERROR}, {6, SCSI_UNIT_ATTENTION}};
    for (auto [key, expected] : cases) {
        sense[2] = key;
        EXPECT_EQ(convert_scsistatus_to_lmvstatus(2, sense), expected) << int(key);
        // Only the low four bits are the key: the filemark and EOM bits above don't matter.
        sense[2] = static_cast<uint8_t>(key | 0xe0);
        EXPECT_EQ(convert_scsistatus_to_lmvstatus(2, sense), expected) << int(key);
    }
}

TEST(SenseMapping, UnknownKeyIsFailureWithTrace) {
    DebugTraces debug;
    MessageCapture capture;
    std::vector<uint8_t> sense(18, 0);
    sense[2] = 0x05;  // illegal request
    EXPECT_EQ(convert_scsistatus_to_lmvstatus(2, sense), SCSI_FAILURE);
    EXPECT_TRUE(capture.contains("convert_scsistatus_to_lmvstatus: Unknown status code (2)"));
    // Sense too short to hold a key: a failure, not a read past the end.
    EXPECT_EQ(convert_scsistatus_to_lmvstatus(8, std::span<const uint8_t>(sense).first(2)), SCSI_FAILURE);
    EXPECT_TRUE(capture.contains("convert_scsistatus_to_lmvstatus: Unknown status code (8)"));
}

// ---- hex dump ----

TEST(HexDump, FormatsLinesOfSixteen) {
    std::vector<uint8_t> bytes = {'A', 'b', 0x00, 0x7f, ' ', '~', 0xff};
    EXPECT_EQ(scsi_hex_dump(bytes), "0000: 41 62 00 7f 20 7e ff " + std::string(9 * 3, ' ') + "Ab.. ~." +
                                        std::string(9, ' ') + "\n");

    std::vector<uint8_t> seventeen(17);
    for (std::size_t i = 0; i < seventeen.size(); ++i) seventeen[i] = static_cast<uint8_t>('a' + i);
    const std::string dump = scsi_hex_dump(seventeen);
    EXPECT_EQ(dump,
              "0000: 61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70 abcdefghijklmnop\n"
              "0010: 71 " + std::string(15 * 3, ' ') + "q" + std::string(15, ' ') + "\n");
    EXPECT_EQ(scsi_hex_dump({}), "");
}

TEST(HexDump, TraceWritesEvenWithDebugOff) {
    const bool old = TUMessage::instance()->getDebugMode();
    TUMessage::instance()->setDebugMode(false);
    MessageCapture capture;
    const std::vector<uint8_t> bytes(20, 0x41);
    trace_scsi_hex_dump(bytes);
    TUMessage::instance()->setDebugMode(old);
    EXPECT_EQ(capture.lines().size(), 2u);
    EXPECT_TRUE(capture.contains("0000: 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41 41 AAAAAAAAAAAAAAAA"));
}

// ---- SPTI ----

TEST(Spti, PacksTheRequestBlock) {
    ScsiHandle h;
    h.path = 2;
    h.target = 5;
    h.lun = 1;
    const uint8_t cdb[] = {0x28, 0, 0, 0, 0, 0, 0, 0, 0x10, 0};
    std::vector<uint8_t> data(4096);
    SptiRequest r(h, cdb, 9500, SptiDirection::Read, data);
    const auto b = std::as_const(r).block();
    ASSERT_EQ(b.size(), 96u);
    EXPECT_EQ(b[0] | b[1] << 8, 56);
    EXPECT_EQ(b[spti_offset::path], 2);
    EXPECT_EQ(b[spti_offset::target], 5);
    EXPECT_EQ(b[spti_offset::lun], 1);
    EXPECT_EQ(b[spti_offset::cdb_length], sizeof cdb);
    EXPECT_EQ(b[spti_offset::sense_length], 24);
    EXPECT_EQ(b[spti_offset::direction], 1);
    EXPECT_EQ(u32_at(b, spti_offset::transfer_length), 4096u);
    EXPECT_EQ(u32_at(b, spti_offset::timeout), 9u);  // seconds, rounded down
    EXPECT_EQ(u32_at(b, spti_offset::sense_offset), 60u);
    EXPECT_EQ(data_pointer_of(b), data.data());
    EXPECT_TRUE(std::equal(std::begin(cdb), std::end(cdb), b.begin() + spti_offset::cdb));
}

TEST(Spti, DirectionsAndShortTimeOut) {
    ScsiHandle h;
    const uint8_t cdb[6] = {};
    std::vector<uint8_t> data(2);
    SptiRequest write(h, cdb, 1000, SptiDirection::Write, data);
    EXPECT_EQ(std::as_const(write).block()[spti_offset::direction], 0);
    SptiRequest set(h, cdb, 999, SptiDirection::None, {});
    EXPECT_EQ(std::as_const(set).block()[spti_offset::direction], 2);
    EXPECT_EQ(u32_at(std::as_const(set).block(), spti_offset::timeout), 1u);  // below a second: one second
    EXPECT_EQ(u32_at(std::as_const(set).block(), spti_offset::transfer_length), 0u);
    EXPECT_EQ(data_pointer_of(std::as_const(set).block()), nullptr);
    SptiRequest zero(h, cdb, 0, SptiDirection::None, {});
    EXPECT_EQ(u32_at(std::as_const(zero).block(), spti_offset::timeout), 1u);
}

// A fake adapter that moves the declared transfer length through the data
// pointer of the block, the way the pass-through does.
struct FakeAdapter {
    std::vector<uint8_t> deviceBytes;  // what the device sends on a read
    std::vector<uint8_t> received;     // what arrived on a write
    uint8_t scsiStatus = 0;
    uint8_t senseKey = 0;
    bool fail = false;

    SptiIoctl ioctl() {
        return [this](std::span<uint8_t> block, std::string &text, int &number) {
            if (fail) {
                text = "The request is not supported.";
                number = 50;
                return false;
            }
            const uint32_t length = u32_at(block, spti_offset::transfer_length);
            uint8_t *buffer = data_pointer_of(block);
            if (block[spti_offset::direction] == 1)
                std::copy_n(deviceBytes.begin(), std::min<std::size_t>(length, deviceBytes.size()), buffer);
            else if (block[spti_offset::direction] == 0)
                received.assign(buffer, buffer + length);
            block[spti_offset::scsi_status] = scsiStatus;
            block[kSptiSenseOffset + 2] = senseKey;
            return true;
        };
    }
};

TEST(Spti, OneDataByteMovesEightBytes) {
    ScsiHandle h;
    const uint8_t cdb[6] = {0x1a, 0, 0, 0, 1, 0};
    FakeAdapter adapter;
    adapter.deviceBytes = {0x5a, 1, 2, 3, 4, 5, 6, 7};
    uint8_t byte = 0;
    int32_t status = -1;
    ASSERT_TRUE(spti_execute(h, cdb, 2000, SptiDirection::Read, {&byte, 1}, &status, adapter.ioctl()));
    EXPECT_EQ(status, SCSI_GOOD);
    EXPECT_EQ(byte, 0x5a);

    uint8_t out = 0x99;
    ASSERT_TRUE(spti_execute(h, cdb, 2000, SptiDirection::Write, {&out, 1}, &status, adapter.ioctl()));
    EXPECT_EQ(adapter.received, (std::vector<uint8_t>{0x99, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Spti, StatusOfTheAnswer) {
    ScsiHandle h;
    const uint8_t cdb[6] = {};
    FakeAdapter adapter;
    int32_t status = -1;
    adapter.scsiStatus = 2;
    adapter.senseKey = 6;
    EXPECT_TRUE(spti_execute(h, cdb, 1000, SptiDirection::None, {}, &status, adapter.ioctl()));
    EXPECT_EQ(status, SCSI_UNIT_ATTENTION);
    adapter.senseKey = 3;
    EXPECT_TRUE(spti_execute(h, cdb, 1000, SptiDirection::None, {}, &status, adapter.ioctl()));
    EXPECT_EQ(status, SCSI_MEDIUM_ERROR);

    DebugTraces debug;
    MessageCapture capture;
    adapter.fail = true;
    EXPECT_FALSE(spti_execute(h, cdb, 1000, SptiDirection::None, {}, &status, adapter.ioctl()));
    EXPECT_EQ(status, SCSI_FAILURE);
    EXPECT_TRUE(capture.contains("convert_winstatus_to_lmvstatus: Received error The request is not supported. (50)"));
}

namespace {

// An inquiry answer with one bus and the given records (target, lun, type).
std::vector<uint8_t> inquiry_answer(std::initializer_list<std::array<uint8_t, 3>> records) {
    std::vector<uint8_t> a(kSptiInquiryBufferSize, 0);
    a[0] = 1;
    std::size_t offset = 64;
    const auto putOffset = [&a](std::size_t at, uint32_t value) { std::memcpy(a.data() + at, &value, 4); };
    putOffset(spti_inquiry_offset::buses + spti_inquiry_offset::bus_first_record, static_cast<uint32_t>(offset));
    std::size_t i = 0;
    for (const auto &r : records) {
        a[offset + spti_inquiry_offset::record_target] = r[0];
        a[offset + spti_inquiry_offset::record_lun] = r[1];
        a[offset + spti_inquiry_offset::record_inquiry] = r[2];
        const std::size_t next = ++i < records.size() ? offset + 64 : 0;
        putOffset(offset + spti_inquiry_offset::record_next, static_cast<uint32_t>(next));
        offset = next;
    }
    return a;
}

}  // namespace

TEST(Spti, FindsOnlyAScannerAtTargetAndLun) {
    const auto answer = inquiry_answer({{1, 0, 0x05}, {3, 0, 0x03}, {4, 1, 0x06}, {2, 0, 0x26}});
    EXPECT_EQ(spti_find_scanner(answer, 4, 1), SptiInquiryResult::Found);
    EXPECT_EQ(spti_find_scanner(answer, 2, 0), SptiInquiryResult::Found);  // qualifier bits ignored
    EXPECT_EQ(spti_find_scanner(answer, 4, 0), SptiInquiryResult::NotFound);
    // A processor opens by ASPI but not here.
    EXPECT_EQ(spti_find_scanner(answer, 3, 0), SptiInquiryResult::NotFound);
    EXPECT_EQ(spti_find_scanner(std::vector<uint8_t>(16, 0), 4, 1), SptiInquiryResult::NoBus);
}

TEST(Spti, InquiryWalkSurvivesBrokenOffsets) {
    auto looping = inquiry_answer({{1, 0, 0x05}});
    looping[64 + spti_inquiry_offset::record_next] = 64;  // points at itself
    EXPECT_EQ(spti_find_scanner(looping, 4, 1), SptiInquiryResult::NotFound);
    auto outside = inquiry_answer({{1, 0, 0x05}});
    outside[64 + spti_inquiry_offset::record_next + 1] = 0xff;  // far past the end
    EXPECT_EQ(spti_find_scanner(outside, 4, 1), SptiInquiryResult::NotFound);
    std::vector<uint8_t> manyBuses(10, 0);
    manyBuses[0] = 200;
    EXPECT_EQ(spti_find_scanner(manyBuses, 4, 1), SptiInquiryResult::NotFound);
}

// ---- ASPI ----

TEST(Aspi, ComposesTheExecuteRequest) {
    ScsiHandle h;
    h.adapter = 1;
    h.target = 4;
    h.lun = 2;
    const uint8_t cdb[] = {0x12, 0, 0, 0, 36, 0};
    std::vector<uint8_t> data(36);
    const auto read = aspi_make_request(h, AspiOp::Read, cdb, data);
    EXPECT_EQ(read.command, 2);
    EXPECT_EQ(read.adapter, 1);
    EXPECT_EQ(read.target, 4);
    EXPECT_EQ(read.lun, 2);
    EXPECT_EQ(read.flags, 72);
    EXPECT_EQ(read.senseLength, 0);
    EXPECT_EQ(read.cdbLength, 6);
    EXPECT_EQ(read.cdb[4], 36);
    EXPECT_EQ(read.data.size(), 36u);
    const auto write = aspi_make_request(h, AspiOp::Write, cdb, data);
    EXPECT_EQ(write.flags, 64);
    EXPECT_EQ(write.senseLength, 14);
    const auto set = aspi_make_request(h, AspiOp::Set, cdb, {});
    EXPECT_EQ(set.flags, 64);
    EXPECT_EQ(set.senseLength, 0);
}

TEST(Aspi, OpensScannersAndProcessors) {
    EXPECT_TRUE(aspi_device_type_accepted(ASPI_COMPLETED, 6));
    EXPECT_TRUE(aspi_device_type_accepted(ASPI_COMPLETED, 3));
    EXPECT_FALSE(aspi_device_type_accepted(ASPI_COMPLETED, 5));  // a CD-ROM drive
    EXPECT_FALSE(aspi_device_type_accepted(ASPI_COMPLETED, 0));
    EXPECT_FALSE(aspi_device_type_accepted(ASPI_INVALID_REQUEST, 6));
}

TEST(Aspi, StatusTableAndItsTraces) {
    DebugTraces debug;
    MessageCapture capture;
    AspiExecRequest r;
    r.status = ASPI_COMPLETED;
    EXPECT_EQ(aspi_status_of_request(AspiOp::Read, r), SCSI_GOOD);
    EXPECT_TRUE(capture.lines().empty());

    const std::pair<uint8_t, const char *> rows[] = {
        {224, "LMV_scsi_read: Invalid request"},
        {225, "LMV_scsi_read: Cannot handle the alignment of this buffer"},
        {226, "LMV_scsi_read: No such privileges to perform this operation"},
        {230, "LMV_scsi_read: Cannot handle the buffer size ( too big )"},
        {0, "LMV_scsi_read: Unknown Error SRB_Status=0"},
    };
    for (auto [status, text] : rows) {
        r.status = status;
        EXPECT_EQ(aspi_status_of_request(AspiOp::Read, r), SCSI_FAILURE);
        EXPECT_TRUE(capture.contains(text)) << text;
    }
    r.status = 224;
    aspi_status_of_request(AspiOp::Write, r);
    EXPECT_TRUE(capture.contains("LMV_scsi_write: Invalid request"));
    aspi_status_of_request(AspiOp::Set, r);
    EXPECT_TRUE(capture.contains("LMV_scsi_set: Invalid request"));

    // An unknown status is traced by read and write, not by set.
    capture.clear();
    r.status = 99;
    EXPECT_EQ(aspi_status_of_request(AspiOp::Set, r), SCSI_FAILURE);
    EXPECT_TRUE(capture.lines().empty());
    aspi_status_of_request(AspiOp::Write, r);
    EXPECT_TRUE(capture.contains("LMV_scsi_write: Unknown Error SRB_Status=99"));
}

TEST(Aspi, StatusDumpTexts) {
    DebugTraces debug;
    MessageCapture capture;
    AspiExecRequest r;
    r.status = ASPI_COMPLETED_WITH_ERROR;
    r.adapterStatus = 16;
    r.targetStatus = 2;
    r.sense[2] = 0x06;
    EXPECT_EQ(aspi_status_of_request(AspiOp::Write, r), SCSI_FAILURE);
    const std::vector<std::string> expected = {
        "LMV_scsi_write: Command completed with an error",
        "Host Adapter Error",
        "REQUESTE SENSE failed",
        "Targget Error",
        "target check condition occurred, sensedata follows:",
        "0000: 00 00 06 00 00 00 00 00 00 00 00 00 00 00       ..............  ",
    };
    ASSERT_EQ(capture.lines().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(capture.lines()[i].second, expected[i]);

    capture.clear();
    r.adapterStatus = 0x42;
    r.targetStatus = 24;
    aspi_trace_status_dump(r);
    // The unknown adapter status reports the target status.
    EXPECT_TRUE(capture.contains("Unknown SRB_HaStat 18"));
    EXPECT_TRUE(capture.contains("target reservation conflict"));
    capture.clear();
    r.adapterStatus = 17;
    r.targetStatus = 8;
    aspi_trace_status_dump(r);
    EXPECT_TRUE(capture.contains("selection of the target timed out (target not ready ?)"));
    EXPECT_TRUE(capture.contains("specified target/LUN is busy"));
    capture.clear();
    r.adapterStatus = 0;
    r.targetStatus = 0x30;
    aspi_trace_status_dump(r);
    EXPECT_FALSE(capture.contains("Host Adapter Error"));
    EXPECT_TRUE(capture.contains("Unknown SRB_TargStat 30"));
}

namespace {

class FakeAspiPort : public AspiPort {
public:
    uint32_t returned = 0;
    uint8_t status = ASPI_COMPLETED;
    AspiExecRequest last;
    uint32_t sendAndWait(const ScsiHandle &, AspiExecRequest &r, int) override {
        r.status = status;
        last = r;
        return returned;
    }
};

}  // namespace

TEST(Aspi, WhatCountsAsTaken) {
    ScsiHandle h;
    const uint8_t cdb[6] = {};
    FakeAspiPort port;
    int32_t status = -1;
    uint8_t byte = 0;
    // Read and set: taken when the library accepted the request, even if it failed.
    port.status = ASPI_INVALID_REQUEST;
    EXPECT_TRUE(aspi_execute(h, AspiOp::Set, cdb, 1000, {}, &status, port));
    EXPECT_EQ(status, SCSI_FAILURE);
    EXPECT_TRUE(aspi_execute(h, AspiOp::Read, cdb, 1000, {&byte, 1}, &status, port));
    port.returned = 0xe0;
    EXPECT_FALSE(aspi_execute(h, AspiOp::Read, cdb, 1000, {&byte, 1}, &status, port));
    // Write: taken only when it completed.
    port.returned = 0;
    EXPECT_FALSE(aspi_execute(h, AspiOp::Write, cdb, 1000, {&byte, 1}, &status, port));
    port.status = ASPI_COMPLETED;
    port.returned = 0xe0;
    EXPECT_TRUE(aspi_execute(h, AspiOp::Write, cdb, 1000, {&byte, 1}, &status, port));
    EXPECT_EQ(status, SCSI_GOOD);
    EXPECT_EQ(port.last.flags, 64);
}

TEST(Aspi, ScsiDebugDumpsCommandsEvenWithDebugOff) {
    const bool oldDebug = TUMessage::instance()->getDebugMode();
    TUMessage::instance()->setDebugMode(false);
    ScsiHandle h;
    FakeAspiPort port;
    int32_t status = -1;
    const uint8_t cdb[6] = {0x2a, 0, 0, 0, 2, 0};
    uint8_t data[2] = {'h', 'i'};
    MessageCapture capture;
    aspi_execute(h, AspiOp::Read, cdb, 1000, data, &status, port);
    EXPECT_TRUE(capture.lines().empty());  // switch off: nothing

    const bool old = LMV_scsi_set_debug(true);
    EXPECT_FALSE(old);
    EXPECT_TRUE(LMV_scsi_set_debug(true));
    aspi_execute(h, AspiOp::Read, cdb, 1000, data, &status, port);
    EXPECT_TRUE(capture.contains("LMV_scsi_read: Sending Cmd:: opcode = 0x2a"));
    EXPECT_TRUE(capture.contains("0000: 2a 00 00 00 02 00                               *.....          "));
    capture.clear();
    aspi_execute(h, AspiOp::Write, cdb, 1500, data, &status, port);
    LMV_scsi_set_debug(old);
    TUMessage::instance()->setDebugMode(oldDebug);
    ASSERT_EQ(capture.lines().size(), 5u);
    EXPECT_EQ(capture.lines()[0].second.rfind("LMV_scsi_write(fd=-1, cmd[0]=0x2a, cmd_len=6, timeout=1500, buf=", 0), 0u);
    EXPECT_NE(capture.lines()[0].second.find(", buf_len=2)"), std::string::npos);
    EXPECT_EQ(capture.lines()[1].second, "Command:");
    EXPECT_EQ(capture.lines()[3].second, "Data:");
    EXPECT_EQ(capture.lines()[4].second.substr(0, 12), "0000: 68 69 ");
}

// ---- primitives over the simulated target ----

TEST(SimTransport, OpensOnlyRegisteredNamesAndCloses) {
    ScsiHandle *h = reinterpret_cast<ScsiHandle *>(1);
    EXPECT_FALSE(LMV_scsi_open("sim:nobody", &h));
    EXPECT_EQ(h, nullptr);
    EXPECT_FALSE(LMV_scsi_open("sc0;d0;l0", &h));  // no ASPI on this platform
    EXPECT_FALSE(LMV_scsi_open("a0;p0;t0;l0", &h));
    EXPECT_FALSE(LMV_scsi_open("garbage", &h));

    auto target = std::make_shared<SimScsiTarget>();
    {
        SimScsiRegistration reg("t1", target);
        ASSERT_TRUE(LMV_scsi_open("sim:t1", &h));
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(target->openCount(), 1);
        EXPECT_TRUE(LMV_scsi_close(h));
        EXPECT_EQ(target->closeCount(), 1);
    }
    EXPECT_FALSE(LMV_scsi_open("sim:t1", &h));
    EXPECT_TRUE(LMV_scsi_close(nullptr));
}

TEST(SimTransport, CommandsAndScriptedReplies) {
    auto target = std::make_shared<SimScsiTarget>();
    SimScsiRegistration reg("t2", target);
    ScsiHandle *h = nullptr;
    ASSERT_TRUE(LMV_scsi_open("sim:t2", &h));

    int32_t status = -1;
    EXPECT_TRUE(LMV_scsi_unit_ready(h, &status));
    EXPECT_EQ(status, SCSI_GOOD);
    ASSERT_EQ(target->commands().size(), 1u);
    EXPECT_EQ(target->commands()[0].command, std::vector<uint8_t>(6, 0));
    EXPECT_EQ(target->commands()[0].timeoutMs, 1000);
    EXPECT_EQ(target->commands()[0].direction, SimDirection::None);

    target->queueReply(0x00, SimScsiReply::check(kSenseKeyNotReady));
    target->queueReply(0x00, SimScsiReply::refused());
    EXPECT_TRUE(LMV_scsi_unit_ready(h, &status));
    EXPECT_EQ(status, SCSI_NOT_READY);
    EXPECT_FALSE(LMV_scsi_unit_ready(h, &status));
    EXPECT_EQ(status, SCSI_FAILURE);
    EXPECT_TRUE(LMV_scsi_unit_ready(h, &status));  // queue empty: default again
    EXPECT_EQ(status, SCSI_GOOD);

    const uint8_t read10[] = {0x28, 0, 0, 0, 0, 0, 0, 0, 4, 0};
    target->queueReply(0x28, SimScsiReply::good({1, 2, 3, 4, 5, 6}));
    uint8_t buf[4] = {};
    EXPECT_TRUE(LMV_scsi_read(h, read10, sizeof read10, 5000, buf, sizeof buf, &status));
    EXPECT_EQ(std::vector<uint8_t>(buf, buf + 4), (std::vector<uint8_t>{1, 2, 3, 4}));
    EXPECT_EQ(target->commands().back().length, 4u);

    const uint8_t write10[] = {0x2a, 0, 0, 0, 0, 0, 0, 0, 3, 0};
    const uint8_t out[] = {7, 8, 9};
    target->queueReply(0x2a, SimScsiReply::check(kSenseKeyMediumError));
    EXPECT_TRUE(LMV_scsi_write(h, write10, sizeof write10, 6000, out, sizeof out, &status));
    EXPECT_EQ(status, SCSI_MEDIUM_ERROR);
    EXPECT_EQ(target->commands().back().data, (std::vector<uint8_t>{7, 8, 9}));
    EXPECT_EQ(target->commands().back().direction, SimDirection::Out);
    EXPECT_EQ(target->countOf(0x00), 4u);
    EXPECT_EQ(target->countOf(0x28), 1u);

    LMV_scsi_close(h);
}

TEST(SimTransport, RefusesBrokenRequests) {
    int32_t status = -1;
    const uint8_t cdb[6] = {};
    uint8_t buf[1];
    EXPECT_FALSE(LMV_scsi_set(nullptr, cdb, 6, 1000, &status));
    EXPECT_EQ(status, SCSI_FAILURE);
    EXPECT_FALSE(LMV_scsi_read(nullptr, cdb, 6, 1000, buf, 1, &status));
    EXPECT_FALSE(LMV_scsi_unit_ready(nullptr, &status));

    auto target = std::make_shared<SimScsiTarget>();
    SimScsiRegistration reg("t3", target);
    ScsiHandle *h = nullptr;
    ASSERT_TRUE(LMV_scsi_open("sim:t3", &h));
    EXPECT_FALSE(LMV_scsi_set(h, nullptr, 6, 1000, &status));
    EXPECT_FALSE(LMV_scsi_set(h, cdb, 0, 1000, &status));
    EXPECT_FALSE(LMV_scsi_read(h, cdb, 6, 1000, nullptr, 4, &status));
    EXPECT_FALSE(LMV_scsi_write(h, cdb, 6, 1000, buf, -1, &status));
    EXPECT_TRUE(target->commands().empty());  // nothing reached the bus
    LMV_scsi_close(h);
}
