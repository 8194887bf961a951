#pragma once
// Simulated SCSI devices, reached by the device string "sim:NAME". A device is
// registered under its name for the life of the process (or of a
// SimScsiRegistration); every command that reaches it goes through the same
// status mapping as a real adapter.
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

enum class SimDirection { None, In, Out };

// One command block as it went on the bus.
struct SimScsiCommand {
    std::vector<uint8_t> command;
    SimDirection direction = SimDirection::None;
    int timeoutMs = 0;
    std::size_t length = 0;     // bytes asked for (In) or sent (Out)
    std::vector<uint8_t> data;  // the bytes sent (Out)
};

// A device's answer to one command.
struct SimScsiReply {
    bool accepted = true;    // false: the transport refuses the request
    uint8_t scsiStatus = 0;  // the SCSI status byte; 2 is a check condition
    uint8_t senseKey = 0;    // read only when scsiStatus is not 0
    std::vector<uint8_t> data;  // bytes for a command with data in

    static SimScsiReply good(std::vector<uint8_t> data = {}) { return {true, 0, 0, std::move(data)}; }
    static SimScsiReply check(uint8_t senseKey) { return {true, 2, senseKey, {}}; }
    static SimScsiReply refused() { return {false, 0, 0, {}}; }
};

// The device side of a simulated bus. Scanner models implement this; the
// scripted target below serves tests.
class SimScsiDevice {
public:
    virtual ~SimScsiDevice() = default;
    virtual SimScsiReply execute(const SimScsiCommand &command) = 0;
    virtual void opened() {}
    virtual void closed() {}
};

// A target whose answers are scripted per opcode: a queue of replies, and a
// default when the queue is empty (good, no data, unless set otherwise). It
// keeps a log of everything it received.
class SimScsiTarget : public SimScsiDevice {
public:
    void queueReply(uint8_t opcode, SimScsiReply reply);
    void setDefaultReply(uint8_t opcode, SimScsiReply reply);

    const std::vector<SimScsiCommand> &commands() const { return commands_; }
    std::size_t countOf(uint8_t opcode) const;
    int openCount() const { return opens_; }
    int closeCount() const { return closes_; }

    SimScsiReply execute(const SimScsiCommand &command) override;
    void opened() override { ++opens_; }
    void closed() override { ++closes_; }

private:
    std::map<uint8_t, std::deque<SimScsiReply>> queues_;
    std::map<uint8_t, SimScsiReply> defaults_;
    std::vector<SimScsiCommand> commands_;
    int opens_ = 0;
    int closes_ = 0;
};

// The process-wide registry. Registering a taken name replaces the device.
void register_SimScsiDevice(const std::string &name, std::shared_ptr<SimScsiDevice> device);
void unregister_SimScsiDevice(const std::string &name);
std::shared_ptr<SimScsiDevice> find_SimScsiDevice(const std::string &name);

// Registers a device for the life of this object.
class SimScsiRegistration {
public:
    SimScsiRegistration(std::string name, std::shared_ptr<SimScsiDevice> device) : name_(std::move(name)) {
        register_SimScsiDevice(name_, std::move(device));
    }
    ~SimScsiRegistration() { unregister_SimScsiDevice(name_); }
    SimScsiRegistration(const SimScsiRegistration &) = delete;
    SimScsiRegistration &operator=(const SimScsiRegistration &) = delete;

private:
    std::string name_;
};

struct ScsiHandle;
// Attaches the simulated device NAME to a handle; false when none is registered.
bool open_sim_scsi(const std::string &name, ScsiHandle &handle);
