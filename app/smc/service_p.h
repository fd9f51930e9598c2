#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "app/smc/encoding.h"
#include "app/smc/service.h"
#include "core/threads/fairmutex.h"

namespace SMC {

class Platform;

// One entry of the key table that a sorted search fills where it probes.
struct KeyTableEntry {
    std::array<char, 5> key = {}; // terminated
    std::uint8_t valid = 0; // 1 once the entry has been fetched
    std::uint8_t length = 0;
    std::array<char, 5> type = {}; // terminated
    std::uint8_t attributes = 0;
};
static_assert(sizeof(KeyTableEntry) == 13);

// What the service keeps. Functions that touch the transport take the mutex
// themselves unless they say otherwise.
class Service::ServicePrivate {
public:
    using Value = std::array<std::uint8_t, valueRoom>;

    explicit ServicePrivate(std::unique_ptr<Platform> smcPlatform);
    ServicePrivate(const ServicePrivate&) = delete;
    ServicePrivate& operator=(const ServicePrivate&) = delete;
    ~ServicePrivate();

    // Detects fan encoding and control scheme; takes no lock, since no other
    // thread uses the service yet.
    void doInit();
    // 0 when the count can't be read or can't be right.
    [[nodiscard]] std::uint32_t getSMCKeysCount();
    [[nodiscard]] bool applesmc_get_entry_by_index(std::vector<KeyTableEntry>& table,
                                                   std::uint32_t index);
    // The first index whose key is not below the given one; 0 when an entry on
    // the way can't be fetched.
    [[nodiscard]] std::uint32_t applesmc_get_lower_bound(std::vector<KeyTableEntry>& table,
                                                         std::uint32_t count, const char* key);

    [[nodiscard]] bool getFanRPM(const std::string& key, std::uint16_t& rpm);
    [[nodiscard]] bool setFanRPM(const std::string& key, std::uint16_t rpm);

    // These four run with the mutex held.
    [[nodiscard]] bool readModeMask(std::uint8_t count, std::vector<bool>& modes);
    [[nodiscard]] bool readModeKeys(std::uint8_t count, std::vector<bool>& modes);
    [[nodiscard]] bool writeModeMask(const std::vector<bool>& modes);
    [[nodiscard]] bool writeModeKeys(std::vector<bool> modes);

    // Reads a value into a zeroed buffer with room for any value.
    [[nodiscard]] bool readValue(const std::string& key, std::uint8_t length, Value& value);

    std::unique_ptr<Platform> platform;
    // Fair: the update task reads one key after the other, and an order of the
    // user must not wait for a gap.
    core::threads::FairMutex mutex;
    std::atomic<std::uint8_t> fanCount = 0xFF; // 0xFF: not yet read
    std::vector<std::string> temperatureKeys; // under the mutex; empty: not yet found
    std::uint8_t m_smcFanKeySize = 0; // bytes of a fan speed: 2 is "fpe2", 4 is "flt "
    std::uint8_t m_smcFanModeKey = 0; // one of the schemes below
    std::uint8_t m_smcTemperatureKeySize = 0; // under the mutex; 0 until a key was accepted
    bool m_dualFan = false;
    bool m_xserveFanLimit = false;
    std::optional<bool> m_invertCoreTemps; // under the mutex; looked up when first needed

    static constexpr std::uint8_t maskScheme = 1; // "FS! " holds a bit per fan
    static constexpr std::uint8_t perFanScheme = 2; // "F{}Md" of each fan
};

} // namespace SMC
