// The device record, its generic operations against a simulated target, and
// the wrappers the scan loop calls.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scan/scanner_device.h"
#include "scan/transport/scsi_handle.h"
#include "scan/transport/sim_target.h"
#include "support/message_capture.h"
#include "suite/base/tumessage.h"

namespace {

constexpr uint8_t kReserveUnit = 0x16, kReleaseUnit = 0x17, kInquiry = 0x12, kTestUnitReady = 0x00;
using Lines = std::vector<std::string>;

std::vector<int> g_sleeps;

// A record on a fresh simulated target named after the test, with the pauses
// recorded instead of slept.
class DeviceTest : public ::testing::Test {
protected:
    void SetUp() override {
        g_sleeps.clear();
        oldSleep_ = set_sleep_function_of_ScanDevice([](int ms) { g_sleeps.push_back(ms); });
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
    std::shared_ptr<SimScsiTarget> target_ = std::make_shared<SimScsiTarget>();
    std::unique_ptr<SimScsiRegistration> registration_;
    ScanDeviceInfo dev_;
    ScanSleepFunction oldSleep_ = nullptr;
    MessageCapture capture_;
};

}  // namespace

// A unit attention or a refused request is retried once after a pause, no other failure is; a
// record that failed to reserve stays open until released.
TEST_F(DeviceTest, ReserveRetriesOnceAfterUnitAttentionOrRefusal) {
    struct Row {
        std::vector<SimScsiReply> replies;
        ScanStatus status;
        std::size_t commands;
        Lines errors;
    };
    const Row rows[] = {
        {{SimScsiReply::check(6)}, scan_status(SCSI_GOOD, STATUS_SUCCESS), 2, {}},
        {{SimScsiReply::refused()}, scan_status(SCSI_GOOD, STATUS_SUCCESS), 2, {"Reserve_Scan_Device: request was invalid"}},
        {{SimScsiReply::check(6), SimScsiReply::check(2)}, scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR), 2,
         {"ReserveScanner: command error 7/5"}},
        {{SimScsiReply::check(2)}, scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR), 1, {"ReserveScanner: command error 7/5"}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.errors.empty() ? "unit attention" : row.errors[0]);
        ScanDeviceInfo dev;
        dev.device = dev_.device;
        for (const SimScsiReply &reply : row.replies) target_->queueReply(kReserveUnit, reply);
        const std::size_t before = target_->countOf(kReserveUnit);
        g_sleeps.clear();
        capture_.clear();
        EXPECT_EQ(reserve_ScanDevice(&dev), row.status);
        EXPECT_EQ(std::tuple(dev.reserved, dev.opened), std::tuple(!row.status.failed(), true));
        EXPECT_EQ(target_->countOf(kReserveUnit) - before, row.commands);
        EXPECT_EQ(g_sleeps, std::vector<int>(row.commands - 1, 1000));
        EXPECT_EQ(capture_.errors(), row.errors);
    }
    for (const auto &c : target_->commands()) {
        EXPECT_EQ(c.command, (std::vector<uint8_t>{0x16, 0, 0, 0, 0, 0}));
        EXPECT_EQ(c.timeoutMs, 9500);
    }
}

TEST_F(DeviceTest, ReserveOfAReservedRecordOrOfNoScanner) {
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    ScsiHandle *first = dev_.scsi;
    EXPECT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_EQ(std::tuple(target_->countOf(kReserveUnit), target_->openCount(), dev_.scsi),
              std::tuple(std::size_t{1}, 1, first));

    release_ScanDevice(&dev_);
    dev_.device = QStringLiteral("sim:no such scanner");
    dev_.name = QStringLiteral("Desk %2");  // a name never taken for a value
    EXPECT_EQ(reserve_ScanDevice(&dev_), scan_status(SCSI_FAILURE, STATUS_OPEN_FAILED));
    EXPECT_FALSE(dev_.opened || dev_.reserved);
    EXPECT_EQ(dev_.scsi, nullptr);
    EXPECT_EQ(capture_.errors(),
              Lines{"Failed to initialize scanner Desk %2 model Fujitsu_M3096G connected to sim:no such scanner"});
}

TEST_F(DeviceTest, InquiryFillsInqNameOrKeepsItOnFailure) {
    EXPECT_FALSE(inquire_ScanDevice(&dev_).failed()) << "not opened: nothing to do";
    EXPECT_TRUE(dev_.inqName.isNull());
    EXPECT_TRUE(target_->commands().empty());

    TUMessage::instance()->setDebugMode(true);
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    for (const std::string name : {"FUJITSU M3096G          0100", "ACME"}) {  // a short name stops at its zero
        std::vector<uint8_t> reply(36, 0);
        reply[0] = 0x06;
        std::copy(name.begin(), name.end(), reply.begin() + 8);
        target_->queueReply(kInquiry, SimScsiReply::good(reply));
        EXPECT_FALSE(inquire_ScanDevice(&dev_).failed());
        EXPECT_EQ(inqName_of_ScanDeviceInfo(&dev_).toStdString(), name);
        EXPECT_TRUE(capture_.contains("inqName=" + name));
    }
    const SimScsiCommand &c = target_->commands().back();
    EXPECT_EQ(c.command, (std::vector<uint8_t>{0x12, 0, 0, 0, 0x24, 0}));
    EXPECT_EQ(std::pair(c.length, c.timeoutMs), std::pair(std::size_t{36}, 10000));

    target_->queueReply(kInquiry, SimScsiReply::check(2));
    EXPECT_EQ(inquire_ScanDevice(&dev_), scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR));
    EXPECT_EQ(dev_.inqName, QStringLiteral("ACME"));
    EXPECT_EQ(capture_.errors(), Lines{"ScannerInquire: status 1/7 returned"});
}

namespace {

// A transport that answers every command with "not ready yet".
struct NotReadyYetBackend : ScsiBackend {
    static bool answer(int32_t *s) { return *s = SCSI_NOT_READY_YET, true; }
    bool read(ScsiHandle &, std::span<const uint8_t>, int, std::span<uint8_t>, int32_t *s) override { return answer(s); }
    bool write(ScsiHandle &, std::span<const uint8_t>, int, std::span<const uint8_t>, int32_t *s) override {
        return answer(s);
    }
    bool set(ScsiHandle &, std::span<const uint8_t>, int, int32_t *s) override { return answer(s); }
    void close(ScsiHandle &) override {}
};

}  // namespace

TEST_F(DeviceTest, ReadyMapsTheUnitState) {
    ASSERT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_EQ(ready_ScanDevice(&dev_), scan_status(SCSI_GOOD, STATUS_SUCCESS));
    EXPECT_EQ(target_->commands().back().command, std::vector<uint8_t>(6, 0));

    TUMessage::instance()->setDebugMode(true);
    target_->queueReply(kTestUnitReady, SimScsiReply::check(2));
    EXPECT_EQ(ready_ScanDevice(&dev_), scan_status(SCSI_NOT_READY, STATUS_DEVICE_ERROR));
    EXPECT_TRUE(capture_.contains("LMV_scsi_unit_ready: irt=1 status= 7"));
    EXPECT_FALSE(capture_.contains("\tScanner is ready."));
    target_->queueReply(kTestUnitReady, SimScsiReply::refused());
    EXPECT_EQ(ready_ScanDevice(&dev_), scan_status(SCSI_FAILURE, STATUS_DEVICE_ERROR));
    EXPECT_TRUE(capture_.contains("LMV_scsi_unit_ready: irt=0 status= 3"));

    // A transport that can tell "not ready yet" makes the loop wait.
    ScanDeviceInfo waiting;
    waiting.scsi = new ScsiHandle;
    waiting.scsi->backend = std::make_unique<NotReadyYetBackend>();
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
    EXPECT_FALSE(dev_.reserved || dev_.opened);
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

    // A record destroyed while open closes its handle.
    {
        ScanDeviceInfo local;
        local.device = dev_.device;
        ASSERT_FALSE(reserve_ScanDevice(&local).failed());
    }
    EXPECT_EQ(std::pair(target_->openCount(), target_->closeCount()), std::pair(4, 4));
}

TEST_F(DeviceTest, WrappersTraceInDebugModeOnlyAndOnlySuccess) {
    TUMessage::instance()->setDebugMode(true);
    Drawing *drawing = nullptr;  // the do-nothing operations never look at it
    for (ScanStatus s : {reserve_ScanDevice(&dev_), ready_ScanDevice(&dev_), setup1_ScanDevice(&dev_, drawing),
                         set_window_ScanDevice(&dev_, drawing), setup2_ScanDevice(&dev_, drawing),
                         autoload_ScanDevice(&dev_), initiate_ScanDevice(&dev_), poll_ScanDevice(&dev_),
                         read_ScanDevice(&dev_, drawing), eject_ScanDevice(&dev_), abort_ScanDevice(&dev_),
                         release_ScanDevice(&dev_)})
        EXPECT_FALSE(s.failed());
    EXPECT_TRUE(may_stop_ScanDevice(&dev_));
    const auto traces = capture_.texts('D');
    ASSERT_EQ(traces.size(), 20u);  // a line before and one after each traced operation
    EXPECT_EQ(traces.front(), "Reserving scanner for Fujitsu_M3096G named Desk 2");
    EXPECT_EQ(traces.back(), "\tScanner released.");

    capture_.clear();
    dev_.ops.autoload = [](ScanDeviceInfo *) { return scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER); };
    dev_.ops.may_stop = [](ScanDeviceInfo *) { return false; };
    EXPECT_EQ(autoload_ScanDevice(&dev_), scan_status(SCSI_MEDIUM_ERROR, STATUS_NO_MORE_PAPER));
    EXPECT_EQ(capture_.texts('D'), Lines{"Autoloading scanner..."});
    EXPECT_FALSE(may_stop_ScanDevice(&dev_));

    TUMessage::instance()->setDebugMode(false);
    capture_.clear();
    EXPECT_FALSE(reserve_ScanDevice(&dev_).failed());
    EXPECT_TRUE(capture_.lines().empty());
}

TEST_F(DeviceTest, NullRecordsAndEntriesAreInternalErrors) {
    Drawing *drawing = nullptr;
    const ScanStatus broken = scan_status(SCSI_GOOD, STATUS_INTERNAL_ERROR);
    dev_.ops = ScannerOps{nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    for (ScanStatus s : {reserve_ScanDevice(nullptr), generic_reserve_of_ScanDeviceInfo(nullptr),
                         generic_release_of_ScanDeviceInfo(nullptr), reserve_ScanDevice(&dev_), ready_ScanDevice(&dev_),
                         setup1_ScanDevice(&dev_, drawing), release_ScanDevice(&dev_)})
        EXPECT_EQ(s, broken);
    EXPECT_FALSE(resolution_step_of_ScanDeviceInfo(&dev_, 8));  // out of range
    EXPECT_EQ(ops_of_ScanDeviceInfo(nullptr), nullptr);
    EXPECT_TRUE(name_of_ScanDeviceInfo(nullptr).isEmpty());
    EXPECT_EQ(capture_.assertions(), 10);
    // No eject entry: the model has no eject. Success, silently.
    TUMessage::instance()->setDebugMode(true);
    capture_.clear();
    EXPECT_EQ(eject_ScanDevice(&dev_), scan_status(SCSI_GOOD, STATUS_SUCCESS));
    EXPECT_TRUE(capture_.lines().empty());
    EXPECT_TRUE(target_->commands().empty());
}
