// The SCSI transport: device strings, the Windows transports' packing and status mapping, the
// dumps, and the simulated target through the six primitives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <tuple>
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

// Sets the debug mode for one scope, so that the trace channel is visible or not.
struct DebugMode {
    explicit DebugMode(bool on = true) : old(TUMessage::instance()->getDebugMode()) {
        TUMessage::instance()->setDebugMode(on);
    }
    ~DebugMode() { TUMessage::instance()->setDebugMode(old); }
    bool old;
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

TEST(DeviceString, BothFormsAndNothingElse) {
    struct Case {
        const char *text;
        bool spti;
        int adapter, path, target, lun;
    };
    for (const Case &c : {Case{"sc2;d5;l1", false, 2, 0, 5, 1}, Case{"a1;p2;t3;l4", true, 1, 2, 3, 4}}) {
        const auto a = parse_scsi_device_string(c.text);
        ASSERT_TRUE(a) << c.text;
        EXPECT_EQ(std::tuple(a->spti, int(a->adapter), int(a->path), int(a->target), int(a->lun)),
                  std::tuple(c.spti, c.adapter, c.path, c.target, c.lun));
        EXPECT_EQ(LMV_scsi_is_spti(c.text), c.spti) << c.text;
    }
    for (const char *bad : {"sc10;d0;l0", "sc0;d0", "a0;t0;p0;l0", "", "sc0;d0;l0;", "SC0;d0;l0", "sc0;d0;lA",
                            "a0;p0;t0", "sc0;;l0", "sim:a0;p0;t0;l0"}) {
        EXPECT_FALSE(parse_scsi_device_string(bad)) << bad;
        EXPECT_FALSE(LMV_scsi_is_spti(bad)) << bad;
    }
}

// ---- SPTI ----

TEST(Spti, PacksTheRequestBlock) {
    ScsiHandle h;
    h.path = 2;
    h.target = 5;
    h.lun = 1;
    const uint8_t cdb[] = {0x28, 0, 0, 0, 0, 0, 0, 0, 0x10, 0};
    std::vector<uint8_t> data(4096);
    // Read, write and none; the time-out in whole seconds, at least one.
    for (auto [dir, code, ms, seconds] : {std::tuple(SptiDirection::Read, 1, 9500, 9u), {SptiDirection::Write, 0, 1000, 1u},
                                          {SptiDirection::None, 2, 999, 1u}}) {
        const bool none = dir == SptiDirection::None;
        SptiRequest r(h, cdb, ms, dir, none ? std::span<uint8_t>() : std::span(data));
        const auto b = std::as_const(r).block();
        ASSERT_EQ(b.size(), 96u);
        EXPECT_EQ(b[0] | b[1] << 8, 56);
        EXPECT_EQ(std::tuple(b[spti_offset::path], b[spti_offset::target], b[spti_offset::lun],
                             b[spti_offset::cdb_length], b[spti_offset::sense_length], b[spti_offset::direction]),
                  std::tuple(2, 5, 1, int(sizeof cdb), 24, code));
        EXPECT_EQ(u32_at(b, spti_offset::transfer_length), none ? 0u : 4096u);
        EXPECT_EQ(u32_at(b, spti_offset::timeout), seconds) << ms;
        EXPECT_EQ(u32_at(b, spti_offset::sense_offset), 60u);
        EXPECT_EQ(data_pointer_of(b), none ? nullptr : data.data());
        EXPECT_TRUE(std::equal(std::begin(cdb), std::end(cdb), b.begin() + spti_offset::cdb));
    }
}

TEST(Spti, OneDataByteMovesEightAndTheAnswerGivesTheStatus) {
    // A fake adapter moving the declared transfer length through the block's
    // data pointer, as the pass-through does.
    std::vector<uint8_t> received;
    uint8_t scsiStatus = 0, senseKey = 0;
    bool fail = false;
    const SptiIoctl ioctl = [&](std::span<uint8_t> block, std::string &text, int &number) {
        if (fail) {
            text = "The request is not supported.";
            number = 50;
            return false;
        }
        const uint32_t length = u32_at(block, spti_offset::transfer_length);
        uint8_t *buffer = data_pointer_of(block);
        if (block[spti_offset::direction] == 1)
            for (uint32_t i = 0; i < length; ++i) buffer[i] = uint8_t(0x5a + i);
        else if (block[spti_offset::direction] == 0)
            received.assign(buffer, buffer + length);
        block[spti_offset::scsi_status] = scsiStatus;
        block[kSptiSenseOffset + 2] = senseKey;
        return true;
    };
    ScsiHandle h;
    const uint8_t cdb[6] = {0x1a, 0, 0, 0, 1, 0};
    uint8_t byte = 0;
    int32_t status = -1;
    ASSERT_TRUE(spti_execute(h, cdb, 2000, SptiDirection::Read, {&byte, 1}, &status, ioctl));
    EXPECT_EQ(status, SCSI_GOOD);
    EXPECT_EQ(byte, 0x5a);
    uint8_t out = 0x99;
    ASSERT_TRUE(spti_execute(h, cdb, 2000, SptiDirection::Write, {&out, 1}, &status, ioctl));
    EXPECT_EQ(received, (std::vector<uint8_t>{0x99, 0, 0, 0, 0, 0, 0, 0}));

    // The answer's status and sense key give the status; only the low four bits are the key.
    DebugMode debug;
    MessageCapture capture;
    for (auto [scsi, key, expected] : {std::tuple(0, 6, SCSI_GOOD), {2, 0xe2, SCSI_NOT_READY}, {2, 3, SCSI_MEDIUM_ERROR},
                                       {2, 0x16, SCSI_UNIT_ATTENTION}, {2, 5, SCSI_FAILURE}}) {
        scsiStatus = uint8_t(scsi);
        senseKey = uint8_t(key);
        EXPECT_TRUE(spti_execute(h, cdb, 1000, SptiDirection::None, {}, &status, ioctl));
        EXPECT_EQ(status, expected) << key;
    }
    EXPECT_TRUE(capture.contains("convert_scsistatus_to_lmvstatus: Unknown status code (2)"));
    const uint8_t shortSense[2] = {0x70, 0};  // no key: a failure, not a read past the end
    EXPECT_EQ(convert_scsistatus_to_lmvstatus(8, shortSense), SCSI_FAILURE);
    fail = true;
    EXPECT_FALSE(spti_execute(h, cdb, 1000, SptiDirection::None, {}, &status, ioctl));
    EXPECT_EQ(status, SCSI_FAILURE);
    EXPECT_TRUE(capture.contains("convert_winstatus_to_lmvstatus: Received error The request is not supported. (50)"));
}

TEST(Spti, InquiryFindsOnlyAScannerAndSurvivesBrokenOffsets) {
    // One bus whose records (target, lun, type) are chained 64 bytes apart.
    const auto answer = [](std::initializer_list<std::array<uint8_t, 3>> records) {
        std::vector<uint8_t> a(kSptiInquiryBufferSize, 0);
        a[0] = 1;
        const auto put = [&a](std::size_t at, uint32_t value) { std::memcpy(a.data() + at, &value, 4); };
        put(spti_inquiry_offset::buses + spti_inquiry_offset::bus_first_record, 64);
        uint32_t offset = 64;
        for (const auto &r : records) {
            a[offset + spti_inquiry_offset::record_target] = r[0];
            a[offset + spti_inquiry_offset::record_lun] = r[1];
            a[offset + spti_inquiry_offset::record_inquiry] = r[2];
            offset += 64;
            put(offset - 64 + spti_inquiry_offset::record_next, &r == records.end() - 1 ? 0 : offset);
        }
        return a;
    };
    const auto chain = answer({{1, 0, 0x05}, {3, 0, 0x03}, {4, 1, 0x06}, {2, 0, 0x26}});
    EXPECT_EQ(spti_find_scanner(chain, 4, 1), SptiInquiryResult::Found);
    EXPECT_EQ(spti_find_scanner(chain, 2, 0), SptiInquiryResult::Found);  // qualifier bits ignored
    EXPECT_EQ(spti_find_scanner(chain, 4, 0), SptiInquiryResult::NotFound);
    EXPECT_EQ(spti_find_scanner(chain, 3, 0), SptiInquiryResult::NotFound);  // a processor: ASPI only
    EXPECT_EQ(spti_find_scanner(std::vector<uint8_t>(16, 0), 4, 1), SptiInquiryResult::NoBus);

    auto looping = answer({{1, 0, 0x05}});
    looping[64 + spti_inquiry_offset::record_next] = 64;  // points at itself
    EXPECT_EQ(spti_find_scanner(looping, 4, 1), SptiInquiryResult::NotFound);
    looping[64 + spti_inquiry_offset::record_next + 1] = 0xff;  // far past the end
    EXPECT_EQ(spti_find_scanner(looping, 4, 1), SptiInquiryResult::NotFound);
    std::vector<uint8_t> manyBuses(10, 0);
    manyBuses[0] = 200;
    EXPECT_EQ(spti_find_scanner(manyBuses, 4, 1), SptiInquiryResult::NotFound);
}

// ---- ASPI ----

TEST(Aspi, ComposesTheRequestAndOpensScannersAndProcessors) {
    ScsiHandle h;
    h.adapter = 1;
    h.target = 4;
    h.lun = 2;
    const uint8_t cdb[] = {0x12, 0, 0, 0, 36, 0};
    std::vector<uint8_t> data(36);
    for (auto [op, flags, sense] : {std::tuple(AspiOp::Read, 72, 0), {AspiOp::Write, 64, 14}, {AspiOp::Set, 64, 0}}) {
        const auto r = aspi_make_request(h, op, cdb, data);
        EXPECT_EQ(std::tuple(r.command, r.adapter, r.target, r.lun, r.cdbLength, r.cdb[4], r.data.size()),
                  std::tuple(2, 1, 4, 2, 6, 36, 36u));
        EXPECT_EQ(std::pair(int(r.flags), int(r.senseLength)), std::pair(flags, sense));
    }
    EXPECT_TRUE(aspi_device_type_accepted(ASPI_COMPLETED, 6));
    EXPECT_TRUE(aspi_device_type_accepted(ASPI_COMPLETED, 3));
    EXPECT_FALSE(aspi_device_type_accepted(ASPI_COMPLETED, 5));  // a CD-ROM drive
    EXPECT_FALSE(aspi_device_type_accepted(ASPI_INVALID_REQUEST, 6));
}

class FakeAspiPort : public AspiPort {
public:
    uint32_t returned = 0;
    uint8_t status = ASPI_COMPLETED;
    uint32_t sendAndWait(const ScsiHandle &, AspiExecRequest &r, int) override {
        r.status = status;
        return returned;
    }
};

// Read and set are taken once the library accepted the request, even if it failed; a write only
// when it completed. Each failure is traced, except a set's unknown status.
TEST(Aspi, WhatCountsAsTakenAndTheTraceOfEachStatus) {
    const std::tuple<AspiOp, uint32_t, uint8_t, bool, int32_t, std::string> rows[] = {
        {AspiOp::Set, 0, ASPI_INVALID_REQUEST, true, SCSI_FAILURE, "LMV_scsi_set: Invalid request"},
        {AspiOp::Read, 0xe0, ASPI_COMPLETED, false, SCSI_GOOD, ""},
        {AspiOp::Read, 0, 225, true, SCSI_FAILURE, "LMV_scsi_read: Cannot handle the alignment of this buffer"},
        {AspiOp::Read, 0, 230, true, SCSI_FAILURE, "LMV_scsi_read: Cannot handle the buffer size ( too big )"},
        {AspiOp::Write, 0, 226, false, SCSI_FAILURE, "LMV_scsi_write: No such privileges to perform this operation"},
        {AspiOp::Write, 0, 99, false, SCSI_FAILURE, "LMV_scsi_write: Unknown Error SRB_Status=99"},
        {AspiOp::Write, 0xe0, ASPI_COMPLETED, true, SCSI_GOOD, ""},
        {AspiOp::Set, 0, 99, true, SCSI_FAILURE, ""},
    };
    DebugMode debug;
    ScsiHandle h;
    const uint8_t cdb[6] = {};
    uint8_t byte = 0;
    for (const auto &[op, returned, aspiStatus, taken, result, trace] : rows) {
        FakeAspiPort port;
        port.returned = returned;
        port.status = aspiStatus;
        int32_t status = -1;
        MessageCapture capture;
        EXPECT_EQ(aspi_execute(h, op, cdb, 1000, {&byte, 1}, &status, port), taken) << trace;
        EXPECT_EQ(status, result) << trace;
        EXPECT_EQ(capture.texts('D'), trace.empty() ? std::vector<std::string>{} : std::vector{trace});
    }

    // An error with the adapter's and the target's status, and the sense data.
    AspiExecRequest r;
    r.status = ASPI_COMPLETED_WITH_ERROR;
    r.adapterStatus = 16;
    r.targetStatus = 2;
    r.sense[2] = 0x06;
    MessageCapture capture;
    EXPECT_EQ(aspi_status_of_request(AspiOp::Write, r), SCSI_FAILURE);
    EXPECT_EQ(capture.texts('D'), (std::vector<std::string>{
                                      "LMV_scsi_write: Command completed with an error", "Host Adapter Error",
                                      "REQUESTE SENSE failed", "Targget Error",
                                      "target check condition occurred, sensedata follows:",
                                      "0000: 00 00 06 00 00 00 00 00 00 00 00 00 00 00       ..............  "}));
    for (auto [adapter, target, a, t] : {std::tuple(0x42, 24, "Unknown SRB_HaStat 18", "target reservation conflict"),
                                         {17, 8, "selection of the target timed out (target not ready ?)",
                                          "specified target/LUN is busy"},
                                         {0, 0x30, "", "Unknown SRB_TargStat 30"}}) {
        capture.clear();
        r.adapterStatus = uint8_t(adapter);
        r.targetStatus = uint8_t(target);
        aspi_trace_status_dump(r);
        EXPECT_EQ(capture.contains(a), *a != 0) << a;
        EXPECT_TRUE(capture.contains(t)) << t;
    }
}

// The dumps of the SCSI debug switch reach the trace even with debug off, in
// lines of sixteen bytes.
TEST(Aspi, ScsiDebugDumpsCommandsEvenWithDebugOff) {
    DebugMode off(false);
    ScsiHandle h;
    FakeAspiPort port;
    int32_t status = -1;
    const uint8_t cdb[6] = {0x2a, 0, 0, 0, 2, 0};
    std::vector<uint8_t> data(17);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>('a' + i);
    MessageCapture capture;
    aspi_execute(h, AspiOp::Read, cdb, 1000, data, &status, port);
    EXPECT_TRUE(capture.lines().empty());  // switch off: nothing

    const bool old = LMV_scsi_set_debug(true);
    EXPECT_TRUE(LMV_scsi_set_debug(true)) << "gives the previous setting";
    aspi_execute(h, AspiOp::Read, cdb, 1000, data, &status, port);
    EXPECT_TRUE(capture.contains("LMV_scsi_read: Sending Cmd:: opcode = 0x2a"));
    capture.clear();
    aspi_execute(h, AspiOp::Write, cdb, 1500, data, &status, port);
    LMV_scsi_set_debug(old);
    ASSERT_EQ(capture.lines().size(), 6u);
    EXPECT_EQ(capture.lines()[0].second.rfind("LMV_scsi_write(fd=-1, cmd[0]=0x2a, cmd_len=6, timeout=1500, buf=", 0), 0u);
    EXPECT_EQ(capture.lines()[3].second, "Data:");
    EXPECT_EQ(capture.lines()[4].second, "0000: 61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70 abcdefghijklmnop");
    EXPECT_EQ(capture.lines()[5].second, "0010: 71" + std::string(15 * 3 + 1, ' ') + "q" + std::string(15, ' '));
    EXPECT_EQ(scsi_hex_dump(data), capture.lines()[4].second + "\n" + capture.lines()[5].second + "\n");
}

// ---- primitives over the simulated target ----

TEST(SimTransport, RefusesBrokenRequestsAndWrites) {
    ScsiHandle *h = reinterpret_cast<ScsiHandle *>(1);
    for (const char *device : {"sim:nobody", "sc0;d0;l0", "a0;p0;t0;l0"})  // no ASPI or SPTI here
        EXPECT_FALSE(LMV_scsi_open(device, &h)) << device;
    EXPECT_EQ(h, nullptr);
    int32_t status = -1;
    const uint8_t cdb[6] = {};
    uint8_t buf[3] = {7, 8, 9};
    EXPECT_FALSE(LMV_scsi_read(nullptr, cdb, 6, 1000, buf, 1, &status));
    EXPECT_EQ(status, SCSI_FAILURE);
    EXPECT_TRUE(LMV_scsi_close(nullptr));

    auto target = std::make_shared<SimScsiTarget>();
    SimScsiRegistration reg("t1", target);
    ASSERT_TRUE(LMV_scsi_open("sim:t1", &h));
    EXPECT_FALSE(LMV_scsi_set(h, nullptr, 6, 1000, &status));
    EXPECT_FALSE(LMV_scsi_set(h, cdb, 0, 1000, &status));
    EXPECT_FALSE(LMV_scsi_read(h, cdb, 6, 1000, nullptr, 4, &status));
    EXPECT_FALSE(LMV_scsi_write(h, cdb, 6, 1000, buf, -1, &status));
    EXPECT_TRUE(target->commands().empty());  // nothing reached the bus

    const uint8_t write10[] = {0x2a, 0, 0, 0, 0, 0, 0, 0, 3, 0};
    target->queueReply(0x2a, SimScsiReply::check(kSenseKeyMediumError));
    EXPECT_TRUE(LMV_scsi_write(h, write10, sizeof write10, 6000, buf, 3, &status));
    EXPECT_EQ(status, SCSI_MEDIUM_ERROR);
    EXPECT_EQ(target->commands().back().data, (std::vector<uint8_t>{7, 8, 9}));
    EXPECT_EQ(target->commands().back().direction, SimDirection::Out);
    EXPECT_TRUE(LMV_scsi_close(h));
}

}  // namespace
