#pragma once

#include <memory>

#include "app/smc/driver_calls.h"
#include "app/smc/platform.h"
#include "core/threads/clock.h"

namespace SMC {

// The way to the controller through the HAL driver.
class PlatformWinProviderMacHAL final : public Platform {
public:
    // The clock, which must outlive the object, makes the extra delay.
    explicit PlatformWinProviderMacHAL(std::unique_ptr<DriverCalls> calls = makeDriverCalls(),
                                       core::threads::Clock& clock
                                       = core::threads::Clock::system());

    // Waits first if Option::ExtraDelay has a value. Throws std::invalid_argument
    // or std::out_of_range when that is no number.
    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;
    void leaveFans() override;

private:
    void wait();
    // For diagnosis only.
    void logVersions();
    // False, with a line in the log, when there is no device or the call fails.
    [[nodiscard]] bool control(const char* operation, std::uint32_t code,
                               std::span<const std::uint8_t> request,
                               std::span<std::uint8_t> reply);

    const std::unique_ptr<DriverCalls> m_calls; // never null
    core::threads::Clock& m_clock;
    DeviceCalls::Handle device = nullptr;
};

} // namespace SMC
