#pragma once

#include <memory>
#include <optional>

#include "app/smc/driver_calls.h"
#include "app/smc/platform.h"

namespace SMC {

// The way to the controller through the program's own driver: a plug-and-play
// device or, with Option::NonPnpDriver, a service that runs as long as this is open.
class PlatformWinProviderMMIO final : public Platform {
public:
    explicit PlatformWinProviderMMIO(std::unique_ptr<DriverCalls> calls = makeDriverCalls());

    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;
    void leaveFans() override;

private:
    // Of the first device of the interface class that opens. The name is that of the
    // last one tried.
    [[nodiscard]] DeviceCalls::Handle OpenAppleSMCDevice(QString& name);
    [[nodiscard]] DeviceCalls::Handle findDevice(DeviceCalls::Handle list, QString& name);
    [[nodiscard]] DeviceCalls::Handle OpenOneDevice(DeviceCalls::Handle list, QString& name);
    void startOrStopAppleSMC2Service(bool stop);
    void startOrStop(DeviceCalls::Handle manager, bool stop);
    // How many bytes of the reply were filled. Nothing, with a line in the log, when
    // there is no device or the call fails.
    [[nodiscard]] std::optional<std::size_t> control(std::uint32_t code,
                                                     std::span<const std::uint8_t> request,
                                                     std::span<std::uint8_t> reply);

    const std::unique_ptr<DriverCalls> m_calls; // never null
    DeviceCalls::Handle device = nullptr;
};

} // namespace SMC
