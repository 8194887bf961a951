// The device record, its generic operations against a simulated target, and
// the wrappers the scan loop calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "scan/scanner_device.h"
#include "scan/transport/scsi_handle.h"
#include "scan/transport/sim_target.h"
#include "support/message_capture.h"
#include "suite/base/tumessage.h"

namespace {

constexpr uint8_t kReserveUnit = 0x16;
constexpr uint8_t kReleaseUnit = 0x17;
constexpr uint8_t kInquiry = 0x12;
constexpr uint8_t kTestUnitReady = 0x00;

std::vector<int> g_sleeps;
void record_sleep(int ms) { g_sleeps.push_back(ms); }

bool starts_with(const std::string &s, const std::string &prefix) { return s.rfind(prefix, 0) == 0; }

// A record on a fresh simulated target named after the test, with the pauses
// recorded instead of slept.
class DeviceTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_sleeps.clear();
        oldSleep_ = set_sleep_function_of_ScanDevice(record_sleep);
        const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        registration_ = std::make_unique<SimScsiRegistration>(name, target_);
        dev_.name = QStringLiteral("Desk 2");
        dev_.model = QStringLiteral("Fujitsu_M3096G");
        dev_.device = QString::fromStdString("sim:" + name);
    }
    void TearDown() override {
        set_sleep_function_of_ScanDevice(oldSleep_);
        TUMessage::instance()->setDebugMode(false);
    }

    std::vector<std::string> assertionLines(const MessageCapture &capture) const {
        std::vector<std::string> out;
        for (const auto &[type, text] : capture.lines())
            if (starts_with(text, "Internal assertion error detected (")) out.push_back(text);
        return out;
    }

    std::shared_ptr<SimScsiTarget> target_ = std::make_shared<SimScsiTarget>();
    std::unique_ptr<SimScsiRegistration> registration_;
    ScanDeviceInfo dev_;
    ScanSleepFunction oldSleep_ = nullptr;
};

std::vector<uint8_t> inquiry_reply(const std::string &vendorProductRevision) {
    std::vector<uint8_t> reply(36, 0);
    reply[0] = 0x06;
    std::copy(vendorProductRevision.begin(), vendorProductRevision.end(), reply.begin() + 8);
    return reply;
}

}  // namespace

// ---- reserve ----

TEST_F(DeviceTest, ReserveRetriesOnceAfterUnitAttention) {
    MessageCapture capture;
    target_->queueReply(kReserveUnit, SimScsiReply::check(6));
    EXPECT_EQ(reserve_ScanDevice(&dev_), scan_status(SCSI_GOOD, STATUS_SUCCESS));
    EXPECT_TRUE(reserved_of_ScanDeviceInfo(&dev_) && opened_of_ScanDeviceInfo(&dev_));
    EXPECT_EQ(g_sleeps, std::vector<int>{1000});
    EXPECT_TRUE(capture.errors().empty());
    ASSERT_EQ(target_->countOf(kReserveUnit), 2u);
    for (const auto &c : target_->commands()) {
        EXPECT_EQ(c.command, (std::vector<uint8_t>{0x16, 0, 0, 0, 0, 0}));
        EXPECT_EQ(c.timeoutMs, 9500);
    }
    // A second reserve of a reserved record leaves the first alone.
    ScsiHandle *first = dev_.scsi;
    EXPECT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_EQ(target_->countOf(kReserveUnit), 2u);
    EXPECT_EQ(target_->openCount(), 1);
    EXPECT_EQ(dev_.scsi, first);
}

TEST_F(DeviceTest, ReserveFailuresAndRefusals) {
    MessageCapture capture;
    target_->queueReply(kReserveUnit, SimScsiReply::check(6));
    target_->queueReply(kReserveUnit, SimScsiReply::check(2));
    EXPECT_EQ(reserve_ScanDevice(&dev_), scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR));
    EXPECT_FALSE(dev_.reserved);
    EXPECT_TRUE(dev_.opened);  // release closes it
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"ReserveScanner: command error 7/5"});

    // A not-ready answer at once is not retried; a refused request is told and retried.
    ScanDeviceInfo other;
    other.device = dev_.device;
    target_->queueReply(kReserveUnit, SimScsiReply::check(2));
    EXPECT_EQ(reserve_ScanDevice(&other).code, STATUS_DEVICE_ERROR);
    EXPECT_EQ(target_->countOf(kReserveUnit), 3u);
    EXPECT_EQ(g_sleeps.size(), 1u);
    ScanDeviceInfo refused;
    refused.device = dev_.device;
    capture.clear();
    target_->queueReply(kReserveUnit, SimScsiReply::refused());
    EXPECT_FALSE(reserve_ScanDevice(&refused).failed());
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"Reserve_Scan_Device: request was invalid"});

    capture.clear();
    dev_.device = QStringLiteral("sim:no such scanner");
    release_ScanDevice(&dev_);
    dev_.name = QStringLiteral("Desk %2");  // a name never taken for a value
    EXPECT_EQ(reserve_ScanDevice(&dev_), scan_status(SCSI_FAILURE, STATUS_OPEN_FAILED));
    EXPECT_FALSE(dev_.opened || dev_.reserved);
    EXPECT_EQ(dev_.scsi, nullptr);
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"Failed to initialize scanner Desk %2 model Fujitsu_M3096G "
                                                         "connected to sim:no such scanner"});
}

// ---- inquire, ready, release ----

TEST_F(DeviceTest, InquiryFillsInqName) {
    TUMessage::instance()->setDebugMode(true);
    MessageCapture capture;
    dev_.inqName = QStringLiteral("old");
    target_->queueReply(kInquiry, SimScsiReply::good(inquiry_reply("FUJITSU M3096G          0100")));
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_FALSE(inquire_ScanDevice(&dev_).failed());
    EXPECT_EQ(inqName_of_ScanDeviceInfo(&dev_), QStringLiteral("FUJITSU M3096G          0100"));
    const SimScsiCommand &c = target_->commands().back();
    EXPECT_EQ(c.command, (std::vector<uint8_t>{0x12, 0, 0, 0, 0x24, 0}));
    EXPECT_EQ(c.length, 36u);
    EXPECT_EQ(c.timeoutMs, 10000);
    EXPECT_TRUE(capture.contains("inqName=FUJITSU M3096G          0100"));

    // A short name stops at its terminating zero.
    target_->queueReply(kInquiry, SimScsiReply::good(inquiry_reply("ACME")));
    EXPECT_FALSE(inquire_ScanDevice(&dev_).failed());
    EXPECT_EQ(dev_.inqName, QStringLiteral("ACME"));
}

TEST_F(DeviceTest, InquiryOfAnUnopenedRecordDoesNothingAndAFailureKeepsTheName) {
    EXPECT_FALSE(inquire_ScanDevice(&dev_).failed());
    EXPECT_TRUE(dev_.inqName.isNull());
    EXPECT_TRUE(target_->commands().empty());

    MessageCapture capture;
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    dev_.inqName = QStringLiteral("kept");
    target_->queueReply(kInquiry, SimScsiReply::check(2));
    EXPECT_EQ(inquire_ScanDevice(&dev_), scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR));
    EXPECT_EQ(dev_.inqName, QStringLiteral("kept"));
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"ScannerInquire: status 1/7 returned"});
}

namespace {

// A transport that answers every command with one fixed status.
class FixedStatusBackend : public ScsiBackend {
public:
    explicit FixedStatusBackend(int32_t status) : status_(status) {}
    bool read(ScsiHandle &, std::span<const uint8_t>, int, std::span<uint8_t>, int32_t *s) override { return set(s); }
    bool write(ScsiHandle &, std::span<const uint8_t>, int, std::span<const uint8_t>, int32_t *s) override {
        return set(s);
    }
    bool set(ScsiHandle &, std::span<const uint8_t>, int, int32_t *s) override { return set(s); }
    void close(ScsiHandle &) override {}

private:
    bool set(int32_t *s) {
        *s = status_;
        return true;
    }
    int32_t status_;
};

}  // namespace

TEST_F(DeviceTest, ReadyMapsTheUnitState) {
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_EQ(ready_ScanDevice(&dev_), scan_status(SCSI_GOOD, STATUS_SUCCESS));
    EXPECT_EQ(target_->commands().back().command, std::vector<uint8_t>(6, 0));

    TUMessage::instance()->setDebugMode(true);
    MessageCapture capture;
    target_->queueReply(kTestUnitReady, SimScsiReply::check(2));
    EXPECT_EQ(ready_ScanDevice(&dev_), scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR));
    EXPECT_TRUE(capture.contains("LMV_scsi_unit_ready: irt=1 status= 7"));
    EXPECT_FALSE(capture.contains("\tScanner is ready."));
    target_->queueReply(kTestUnitReady, SimScsiReply::refused());
    EXPECT_EQ(ready_ScanDevice(&dev_), scan_status(SCSI_FAILURE, STATUS_DEVICE_ERROR));
    EXPECT_TRUE(capture.contains("LMV_scsi_unit_ready: irt=0 status= 3"));

    // A transport that can tell "not ready yet" makes the loop wait.
    ScanDeviceInfo waiting;
    waiting.scsi = new ScsiHandle;
    waiting.scsi->backend = std::make_unique<FixedStatusBackend>(SCSI_NOT_READY_YET);
    waiting.opened = true;
    EXPECT_EQ(ready_ScanDevice(&waiting), scan_status(SCSI_NOT_READY_YET, STATUS_TRY_AGAIN));
}

TEST_F(DeviceTest, ReleaseUnreservesAndCloses) {
    EXPECT_EQ(release_ScanDevice(&dev_), scan_status(SCSI_GOOD, STATUS_SUCCESS)) << "never opened: nothing to do";
    EXPECT_TRUE(target_->commands().empty());
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_FALSE(release_ScanDevice(&dev_).failed());
    const SimScsiCommand &c = target_->commands().back();
    EXPECT_EQ(c.command, (std::vector<uint8_t>{0x17, 0, 0, 0, 0, 0}));
    EXPECT_EQ(c.timeoutMs, 9500);
    EXPECT_FALSE(dev_.reserved);
    EXPECT_FALSE(dev_.opened);
    EXPECT_EQ(dev_.scsi, nullptr);
    EXPECT_EQ(target_->closeCount(), 1);

    // A failed release still closes the handle, so the next reserve starts afresh.
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    target_->queueReply(kReleaseUnit, SimScsiReply::check(3));
    EXPECT_EQ(release_ScanDevice(&dev_), scan_status(SCSI_MEDIUM_ERROR, STATUS_DEVICE_ERROR));
    EXPECT_FALSE(dev_.opened);
    EXPECT_EQ(target_->closeCount(), 2);

    // Opened but never reserved (reserve failed): closed without RELEASE UNIT.
    target_->queueReply(kReserveUnit, SimScsiReply::check(2));
    EXPECT_TRUE(reserve_ScanDevice(&dev_).failed());
    EXPECT_FALSE(release_ScanDevice(&dev_).failed());
    EXPECT_EQ(target_->countOf(kReleaseUnit), 2u);
    EXPECT_EQ(target_->closeCount(), 3);
}

TEST_F(DeviceTest, DestroyingARecordClosesItsHandle) {
    {
        ScanDeviceInfo local;
        local.device = dev_.device;
        ASSERT_FALSE(reserve_ScanDevice(&local).failed());
    }
    EXPECT_EQ(target_->openCount(), 1);
    EXPECT_EQ(target_->closeCount(), 1);
}

// ---- wrappers ----

TEST_F(DeviceTest, WrappersTraceInDebugModeOnlyAndOnlySuccess) {
    TUMessage::instance()->setDebugMode(true);
    MessageCapture capture;
    Drawing *drawing = nullptr;  // the do-nothing operations never look at it
    EXPECT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_FALSE(ready_ScanDevice(&dev_).failed());
    EXPECT_FALSE(setup1_ScanDevice(&dev_, drawing).failed());
    EXPECT_FALSE(set_window_ScanDevice(&dev_, drawing).failed());
    EXPECT_FALSE(setup2_ScanDevice(&dev_, drawing).failed());
    EXPECT_FALSE(autoload_ScanDevice(&dev_).failed());
    EXPECT_FALSE(initiate_ScanDevice(&dev_).failed());
    EXPECT_FALSE(poll_ScanDevice(&dev_).failed());
    EXPECT_FALSE(read_ScanDevice(&dev_, drawing).failed());
    EXPECT_FALSE(eject_ScanDevice(&dev_).failed());
    EXPECT_FALSE(abort_ScanDevice(&dev_).failed());
    EXPECT_FALSE(release_ScanDevice(&dev_).failed());
    EXPECT_TRUE(may_stop_ScanDevice(&dev_));
    const auto traces = capture.texts('D');
    ASSERT_EQ(traces.size(), 20u);  // a line before and one after each traced operation
    EXPECT_EQ(traces.front(), "Reserving scanner for Fujitsu_M3096G named Desk 2");
    EXPECT_EQ(traces.back(), "\tScanner released.");

    capture.clear();
    dev_.ops.autoload = [](ScanDeviceInfo *) { return scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER); };
    dev_.ops.may_stop = [](ScanDeviceInfo *) { return false; };
    EXPECT_EQ(autoload_ScanDevice(&dev_), scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER));
    EXPECT_EQ(capture.texts('D'), std::vector<std::string>{"Autoloading scanner..."});
    EXPECT_FALSE(may_stop_ScanDevice(&dev_));

    TUMessage::instance()->setDebugMode(false);
    capture.clear();
    EXPECT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_TRUE(capture.lines().empty());
}

TEST_F(DeviceTest, NullRecordsAndEntriesAreInternalErrors) {
    MessageCapture capture;
    Drawing *drawing = nullptr;
    const ScanStatus broken = scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR);
    EXPECT_EQ(reserve_ScanDevice(nullptr), broken);
    EXPECT_EQ(eject_ScanDevice(nullptr), broken);
    EXPECT_EQ(generic_reserve_of_ScanDeviceInfo(nullptr), broken);
    EXPECT_EQ(generic_release_of_ScanDeviceInfo(nullptr), broken);
    EXPECT_TRUE(name_of_ScanDeviceInfo(nullptr).isEmpty());
    EXPECT_EQ(ops_of_ScanDeviceInfo(nullptr), nullptr);
    EXPECT_FALSE(resolution_step_of_ScanDeviceInfo(nullptr, 5));
    EXPECT_FALSE(resolution_step_of_ScanDeviceInfo(&dev_, 8));  // out of range
    EXPECT_EQ(assertionLines(capture).size(), 8u);

    capture.clear();
    dev_.ops = ScannerOps{nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    EXPECT_EQ(reserve_ScanDevice(&dev_), broken);
    EXPECT_EQ(ready_ScanDevice(&dev_), broken);
    EXPECT_EQ(inquire_ScanDevice(&dev_), broken);
    EXPECT_EQ(setup1_ScanDevice(&dev_, drawing), broken);
    EXPECT_EQ(set_window_ScanDevice(&dev_, drawing), broken);
    EXPECT_EQ(setup2_ScanDevice(&dev_, drawing), broken);
    EXPECT_EQ(autoload_ScanDevice(&dev_), broken);
    EXPECT_EQ(initiate_ScanDevice(&dev_), broken);
    EXPECT_EQ(read_ScanDevice(&dev_, drawing), broken);
    EXPECT_EQ(release_ScanDevice(&dev_), broken);
    EXPECT_EQ(poll_ScanDevice(&dev_), broken);
    EXPECT_EQ(abort_ScanDevice(&dev_), broken);
    EXPECT_EQ(assertionLines(capture).size(), 12u);
    for (const auto &line : assertionLines(capture)) EXPECT_NE(line.find("scanner_device.cpp:"), std::string::npos);
    // No eject entry: the model has no eject. Success, silently.
    TUMessage::instance()->setDebugMode(true);
    capture.clear();
    EXPECT_EQ(eject_ScanDevice(&dev_), scan_status(SCSI_GOOD, STATUS_SUCCESS));
    EXPECT_TRUE(capture.lines().empty());
    EXPECT_TRUE(target_->commands().empty());
}
