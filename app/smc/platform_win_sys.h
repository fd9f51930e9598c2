#pragma once

#include "app/smc/platform.h"
#include "core/threads/clock.h"

namespace SMC {

// The way to the controller through the HAL driver. There is no channel to that
// driver's device: open() fails with the error number of a file that does not
// exist, and key operations refuse.
class PlatformWinProviderMacHAL final : public Platform {
public:
    // The clock, which must outlive the object, makes the extra delay.
    explicit PlatformWinProviderMacHAL(core::threads::Clock& clock
                                       = core::threads::Clock::system());

    // Waits first if Option::ExtraDelay has a value. Throws std::invalid_argument
    // or std::out_of_range when that is no number.
    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;

private:
    core::threads::Clock& m_clock;
};

} // namespace SMC
