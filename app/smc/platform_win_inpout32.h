#pragma once

#include <memory>

#include "app/smc/platform.h"
#include "app/smc/port_driver.h"
#include "app/smc/port_protocol.h"

namespace SMC {

// The way to the controller through its two I/O ports, which a driver library
// grants.
class PlatformWinProviderInpOut32 final : public Platform {
public:
    explicit PlatformWinProviderInpOut32(std::unique_ptr<PortDriver> driver = makePortDriver());

    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    // False when the controller took all bytes and true when it didn't: the
    // service's treatment of control modes on this transport depends on it.
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;

private:
    void tellRefusal();

    // The driver's ports. A function that the library lacks does nothing: it
    // reads as 0.
    class Ports final : public PortAccess {
    public:
        explicit Ports(PortDriver& driver);
        void out32(std::uint16_t port, std::uint16_t value) override;
        std::uint16_t inp32(std::uint16_t port) override;
        void sleep(std::uint32_t milliseconds) override;

        bool hasOut32 = false;
        bool hasInp32 = false;

    private:
        PortDriver& m_driver;
    };

    const std::unique_ptr<PortDriver> m_driver;
    bool m_loaded = false;
    Ports m_ports;
    PortProtocol m_protocol;
};

} // namespace SMC
