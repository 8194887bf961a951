#include "scan/transport/sim_target.h"

#include <algorithm>
#include <array>
#include <mutex>

#include "scan/scan_status.h"
#include "scan/transport/scsi_handle.h"
#include "scan/transport/scsi_sense.h"

namespace {

struct Registry {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<SimScsiDevice>> devices;
};

Registry &registry() {
    static Registry r;
    return r;
}

// The status of a reply, through the mapping every adapter uses.
int32_t status_of_reply(const SimScsiReply &reply) {
    if (!reply.accepted) return SCSI_FAILURE;
    std::array<uint8_t, 18> sense{};
    sense[0] = 0x70;  // current error, fixed format
    sense[2] = reply.senseKey;
    return convert_scsistatus_to_lmvstatus(reply.scsiStatus, sense);
}

class SimBackend : public ScsiBackend {
public:
    explicit SimBackend(std::shared_ptr<SimScsiDevice> device) : device_(std::move(device)) { device_->opened(); }

    bool read(ScsiHandle &, std::span<const uint8_t> command, int timeoutMs, std::span<uint8_t> data,
              int32_t *status) override {
        const SimScsiReply reply = run(command, SimDirection::In, timeoutMs, data.size(), {}, status);
        std::copy_n(reply.data.begin(), std::min(reply.data.size(), data.size()), data.begin());
        return reply.accepted;
    }
    bool write(ScsiHandle &, std::span<const uint8_t> command, int timeoutMs, std::span<const uint8_t> data,
               int32_t *status) override {
        return run(command, SimDirection::Out, timeoutMs, data.size(), data, status).accepted;
    }
    bool set(ScsiHandle &, std::span<const uint8_t> command, int timeoutMs, int32_t *status) override {
        return run(command, SimDirection::None, timeoutMs, 0, {}, status).accepted;
    }
    void close(ScsiHandle &) override { device_->closed(); }

private:
    SimScsiReply run(std::span<const uint8_t> command, SimDirection direction, int timeoutMs, std::size_t length,
                     std::span<const uint8_t> data, int32_t *status) {
        SimScsiCommand c{{command.begin(), command.end()}, direction, timeoutMs, length, {data.begin(), data.end()}};
        SimScsiReply reply = device_->execute(c);
        *status = status_of_reply(reply);
        return reply;
    }

    std::shared_ptr<SimScsiDevice> device_;
};

}  // namespace

void SimScsiTarget::queueReply(uint8_t opcode, SimScsiReply reply) { queues_[opcode].push_back(std::move(reply)); }

void SimScsiTarget::setDefaultReply(uint8_t opcode, SimScsiReply reply) { defaults_[opcode] = std::move(reply); }

std::size_t SimScsiTarget::countOf(uint8_t opcode) const {
    return std::count_if(commands_.begin(), commands_.end(),
                         [opcode](const SimScsiCommand &c) { return !c.command.empty() && c.command[0] == opcode; });
}

SimScsiReply SimScsiTarget::execute(const SimScsiCommand &command) {
    commands_.push_back(command);
    const uint8_t opcode = command.command.empty() ? 0 : command.command[0];
    if (auto q = queues_.find(opcode); q != queues_.end() && !q->second.empty()) {
        SimScsiReply reply = std::move(q->second.front());
        q->second.pop_front();
        return reply;
    }
    if (auto d = defaults_.find(opcode); d != defaults_.end()) return d->second;
    return SimScsiReply::good();
}

void register_SimScsiDevice(const std::string &name, std::shared_ptr<SimScsiDevice> device) {
    std::lock_guard lock(registry().mutex);
    registry().devices[name] = std::move(device);
}

void unregister_SimScsiDevice(const std::string &name) {
    std::lock_guard lock(registry().mutex);
    registry().devices.erase(name);
}

std::shared_ptr<SimScsiDevice> find_SimScsiDevice(const std::string &name) {
    std::lock_guard lock(registry().mutex);
    auto it = registry().devices.find(name);
    return it == registry().devices.end() ? nullptr : it->second;
}

bool open_sim_scsi(const std::string &name, ScsiHandle &handle) {
    auto device = find_SimScsiDevice(name);
    if (!device) return false;
    handle.backend = std::make_unique<SimBackend>(std::move(device));
    return true;
}
