// What clients may send to the service: packets of a session, each with its length
// before it. No write may reach the controller that the rules forbid, and at the end
// no fan may stay forced that nobody has kept.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <vector>

#include "smcd/service.h"
#include "tests/smcd/controllerref.h"

namespace {

using namespace smcd;

class FuzzedController final : public Controller {
public:
    std::map<Key, std::vector<std::uint8_t>> keys {
        { fanCountKey, { 2 } },
        { maskKey, { 0, 0 } },
        { fanKey(0, 'M', 'd'), { 0 } },
        { fanKey(1, 'M', 'd'), { 0 } },
        { fanKey(0, 'M', 'n'), { 0x1F, 0x40 } },
        { fanKey(1, 'M', 'n'), { 0x1F, 0x40 } },
        { fanKey(0, 'M', 'x'), { 0x60, 0x30 } },
        { fanKey(1, 'M', 'x'), { 0x60, 0x30 } },
        { fanKey(0, 'T', 'g'), { 0x1F, 0x40 } },
        { fanKey(1, 'T', 'g'), { 0x1F, 0x40 } },
        { { 'T', 'C', '0', 'P' }, { 0x2D, 0x80 } },
    };

    std::uint32_t keyInfo(const Key& key, KeyInfo& info) override
    {
        const auto found = keys.find(key);
        info.length = found == keys.end() ? std::uint8_t { 0 }
                                          : static_cast<std::uint8_t>(found->second.size());
        return 0;
    }

    std::uint32_t readKey(const Key& key, std::span<std::uint8_t> value) override
    {
        const auto found = keys.find(key);
        if (found == keys.end() || found->second.size() != value.size()) {
            std::abort(); // asked for with another length than its own
        }
        std::copy(found->second.begin(), found->second.end(), value.begin());
        return 0;
    }

    std::uint32_t writeKey(const Key& key, Bytes value) override
    {
        const bool isTarget = key[2] == 'T' && key[3] == 'g';
        const bool isMode = key[2] == 'M' && key[3] == 'd';
        const auto found = keys.find(key);
        if (found == keys.end() || found->second.size() != value.size()
            || (key != maskKey && !isTarget && !isMode)) {
            std::abort();
        }
        const int speed = isTarget ? value[0] << 6 | value[1] >> 2 : 2000;
        if (speed < 2000 || speed > 6156 || (key == maskKey && (value[0] != 0 || value[1] > 3))
            || (isMode && value[0] > 1)) {
            std::abort();
        }
        found->second.assign(value.begin(), value.end());
        return 0;
    }

    std::uint32_t keyByIndex(std::uint32_t index, Key& key) override
    {
        if (index >= keys.size()) {
            return ENOENT;
        }
        key = std::next(keys.begin(), static_cast<std::ptrdiff_t>(index))->first;
        return 0;
    }
};

class Note final : public ForcedFans {
public:
    std::optional<ControlBits> read() override { return bits; }
    bool write(const ControlBits& now) override
    {
        bits = now;
        return true;
    }
    ControlBits bits;
};

bool isForced(FuzzedController& controller)
{
    return controller.keys[maskKey][1] != 0 || controller.keys[fanKey(0, 'M', 'd')][0] != 0
        || controller.keys[fanKey(1, 'M', 'd')][0] != 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedController controller;
    Note note;
    Service service(
        [&controller](std::string&) { return std::make_unique<ControllerRef>(controller); }, note,
        [](const std::string&) {});
    service.start();
    bool wasKept = false;
    std::span<const std::uint8_t> rest(data, size);
    while (rest.size() > 1) {
        const ClientId client = rest[0] >> 6; // four of them
        const std::size_t length = std::min<std::size_t>(rest[0] & 0x3F, rest.size() - 1);
        const Bytes packet = rest.subspan(1, length);
        rest = rest.subspan(1 + length);
        protocol::Call call;
        wasKept = wasKept
            || (protocol::parseRequest(packet, call) == 0
                && call.operation == protocol::Operation::KeepFans);
        const protocol::Packet reply = service.answer(client, packet);
        if (!protocol::parseReply(reply, protocol::longestReply)) {
            std::abort();
        }
        if (packet.size() == 1) { // no request: this client leaves
            service.left(client);
            service.giveBack();
        }
    }
    service.leaveAll();
    service.giveBack();
    if (service.owes() || note.bits.any() || (!wasKept && isForced(controller))) {
        std::abort();
    }
    return 0;
}
