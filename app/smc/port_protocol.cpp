#include "app/smc/port_protocol.h"

namespace SMC {

namespace {

constexpr std::uint8_t readCommand = 0x10;
constexpr std::uint8_t writeCommand = 0x11;
constexpr std::uint8_t keyByIndexCommand = 0x12;
constexpr std::uint8_t keyInfoCommand = 0x13;

constexpr std::uint8_t busyBit = 0x02;
constexpr std::uint8_t acceptedBit = 0x04;
constexpr std::uint8_t statusBits = 0x0F;
constexpr std::uint8_t valueByteReady = 0x05;
constexpr std::uint8_t valueByteWanted = 0x04;

// The waits of one byte, in milliseconds: 2, 4, 8 ... 1024.
constexpr std::uint32_t firstDelay = 2;
constexpr std::uint32_t delayLimit = 2000;

} // namespace

PortProtocol::PortProtocol(PortAccess& ports)
    : m_ports(ports)
{
}

PortResult PortProtocol::readKey(const char* key, std::uint8_t* buffer, std::uint8_t length)
{
    const PortResult command = send_byte(readCommand, commandPort);
    return command == PortResult::Done ? read_smc(keyBytes(key), buffer, length) : command;
}

PortResult PortProtocol::writeKey(const char* key, const std::uint8_t* data, std::uint8_t length)
{
    const PortResult command = send_byte(writeCommand, commandPort);
    return command == PortResult::Done ? write_smc(keyBytes(key), data, length) : command;
}

PortResult PortProtocol::readInfo(const char* key, std::uint8_t* buffer)
{
    const PortResult command = send_byte(keyInfoCommand, commandPort);
    return command == PortResult::Done ? read_smc(keyBytes(key), buffer, infoLength) : command;
}

PortResult PortProtocol::readName(std::uint32_t index, FourBytes& key)
{
    const PortResult command = send_byte(keyByIndexCommand, commandPort);
    // The index goes out in the place of a key.
    return command == PortResult::Done
        ? read_smc(numberToBigEndian(index), key.data(), static_cast<std::uint8_t>(key.size()))
        : command;
}

PortResult PortProtocol::send_byte(std::uint8_t byte, std::uint16_t port)
{
    m_ports.out32(port, byte);
    for (std::uint32_t delay = firstDelay; delay < delayLimit; delay *= 2) {
        m_ports.sleep(delay);
        const std::uint8_t bits = status();
        if ((bits & busyBit) != 0) {
            continue;
        }
        if ((bits & acceptedBit) != 0) {
            return PortResult::Done;
        }
        m_ports.out32(port, byte); // it was lost
    }
    return PortResult::ByteLost;
}

PortResult PortProtocol::send_argument(const FourBytes& key)
{
    for (const std::uint8_t byte : key) {
        if (const PortResult sent = send_byte(byte, dataPort); sent != PortResult::Done) {
            return sent;
        }
    }
    return PortResult::Done;
}

bool PortProtocol::wait_status(std::uint8_t expected)
{
    for (std::uint32_t delay = firstDelay; delay < delayLimit; delay *= 2) {
        m_ports.sleep(delay);
        if ((status() & statusBits) == expected) {
            return true;
        }
    }
    return false;
}

PortResult PortProtocol::read_smc(const FourBytes& key, std::uint8_t* buffer, std::uint8_t length)
{
    if (const PortResult sent = send_argument(key); sent != PortResult::Done) {
        return sent;
    }
    if (const PortResult sent = send_byte(length, dataPort); sent != PortResult::Done) {
        return sent;
    }
    for (std::uint8_t i = 0; i < length; ++i) {
        if (!wait_status(valueByteReady)) {
            return PortResult::NoAnswer;
        }
        buffer[i] = static_cast<std::uint8_t>(m_ports.inp32(dataPort) & 0xFF);
    }
    return PortResult::Done;
}

PortResult PortProtocol::write_smc(const FourBytes& key, const std::uint8_t* data,
                                   std::uint8_t length)
{
    if (const PortResult sent = send_argument(key); sent != PortResult::Done) {
        return sent;
    }
    if (const PortResult sent = send_byte(length, dataPort); sent != PortResult::Done) {
        return sent;
    }
    for (std::uint8_t i = 0; i < length; ++i) {
        if (!wait_status(valueByteWanted)) {
            return PortResult::NoAnswer;
        }
        m_ports.out32(dataPort, data[i]);
    }
    return PortResult::Done;
}

std::uint8_t PortProtocol::status()
{
    return static_cast<std::uint8_t>(m_ports.inp32(commandPort) & 0xFF);
}

} // namespace SMC
