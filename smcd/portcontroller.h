#pragma once

#include "app/smc/port_driver.h"
#include "app/smc/port_protocol.h"
#include "smcd/controller.h"

namespace smcd {

// The controller behind its two ports. Fails with ENODEV once the ports may not be
// used, as when a driver of the kernel's has taken them.
class PortController final : public Controller {
public:
    // Gets the driver ready; null when it can't be.
    [[nodiscard]] static std::unique_ptr<Controller> open(std::unique_ptr<SMC::PortDriver> driver,
                                                          std::string& reason);

    explicit PortController(std::unique_ptr<SMC::PortDriver> driver);

    std::uint32_t keyInfo(const Key& key, KeyInfo& info) override;
    std::uint32_t readKey(const Key& key, std::span<std::uint8_t> value) override;
    std::uint32_t writeKey(const Key& key, Bytes value) override;
    std::uint32_t keyByIndex(std::uint32_t index, Key& key) override;

private:
    const std::unique_ptr<SMC::PortDriver> m_driver;
    SMC::PortProtocol m_protocol;

    template <typename Exchange> [[nodiscard]] std::uint32_t attempt(const Exchange& exchange);
};

} // namespace smcd
