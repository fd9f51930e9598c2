#pragma once

#include <cstdint>

#include "app/smc/encoding.h"
#include "app/smc/port_access.h"

// Free of Qt.
namespace SMC {

enum class PortResult {
    Done,
    ByteLost, // a command, key or length byte was not accepted
    NoAnswer, // the controller neither gave nor took a value byte
};

// The exchange of bytes with the controller over its two ports. Without framing
// beyond the order of the bytes: one exchange at a time. A controller that is
// silent costs some two seconds per byte, after which the exchange ends.
class PortProtocol {
public:
    static constexpr std::uint16_t dataPort = 0x300;
    static constexpr std::uint16_t commandPort = 0x304;
    static constexpr std::uint8_t infoLength = 6;

    // The ports must outlive the object.
    explicit PortProtocol(PortAccess& ports);

    // Fills buffer with length bytes.
    [[nodiscard]] PortResult readKey(const char* key, std::uint8_t* buffer, std::uint8_t length);
    [[nodiscard]] PortResult writeKey(const char* key, const std::uint8_t* data,
                                      std::uint8_t length);
    // Fills buffer with length, type and attributes: infoLength bytes.
    [[nodiscard]] PortResult readInfo(const char* key, std::uint8_t* buffer);
    // Fills key with the name of an entry of the key table.
    [[nodiscard]] PortResult readName(std::uint32_t index, FourBytes& key);

private:
    [[nodiscard]] PortResult send_byte(std::uint8_t byte, std::uint16_t port);
    [[nodiscard]] PortResult send_argument(const FourBytes& key);
    [[nodiscard]] bool wait_status(std::uint8_t expected);
    [[nodiscard]] PortResult read_smc(const FourBytes& key, std::uint8_t* buffer,
                                      std::uint8_t length);
    [[nodiscard]] PortResult write_smc(const FourBytes& key, const std::uint8_t* data,
                                       std::uint8_t length);
    [[nodiscard]] std::uint8_t status();

    PortAccess& m_ports;
};

} // namespace SMC
