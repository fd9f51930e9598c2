#include "app/smc/platform_win_inpout32.h"

#include <algorithm>
#include <array>

#include "core/log/log.h"

namespace SMC {

namespace {

// The result of an exchange, after its own log line.
bool isReadDone(PortResult result)
{
    switch (result) {
    case PortResult::Done:
        return true;
    case PortResult::ByteLost:
        LOG_ERR("PlatformWinProviderInpOut32::send_byte failed");
        return false;
    case PortResult::NoAnswer:
        LOG_ERR("PlatformWinProviderInpOut32::read_smc failed");
        return false;
    }
    return false;
}

// The bytes of one key, from the command to the last one.
class Exchange {
public:
    explicit Exchange(PortDriver& driver)
        : m_driver(driver)
    {
        m_driver.beginExchange();
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange() { m_driver.endExchange(); }

private:
    PortDriver& m_driver;
};

} // namespace

PlatformWinProviderInpOut32::Ports::Ports(PortDriver& driver)
    : m_driver(driver)
{
}

void PlatformWinProviderInpOut32::Ports::out32(std::uint16_t port, std::uint16_t value)
{
    if (hasOut32) {
        m_driver.out32(port, value);
    }
}

std::uint16_t PlatformWinProviderInpOut32::Ports::inp32(std::uint16_t port)
{
    return hasInp32 ? m_driver.inp32(port) : std::uint16_t { 0 };
}

void PlatformWinProviderInpOut32::Ports::sleep(std::uint32_t milliseconds)
{
    m_driver.sleep(milliseconds);
}

PlatformWinProviderInpOut32::PlatformWinProviderInpOut32(std::unique_ptr<PortDriver> driver)
    : m_driver(std::move(driver))
    , m_ports(*m_driver)
    , m_protocol(m_ports)
{
}

bool PlatformWinProviderInpOut32::open()
{
    m_loaded = m_driver->load();
    if (!m_loaded) {
        LOG_ERR("inpout32 loading failed with {}", m_driver->lastError());
        tellRefusal();
        return false;
    }
    const bool canAsk = m_driver->resolve(PortFunction::IsInpOutDriverOpen);
    const std::uint32_t error = m_driver->lastError();
    m_ports.hasOut32 = m_driver->resolve(PortFunction::Out32);
    m_ports.hasInp32 = m_driver->resolve(PortFunction::Inp32);
    if (!canAsk) {
        LOG_ERR("GetProcAddress failed with {}", error);
        return false;
    }
    // The first call may be the one that gets the driver ready.
    if (m_driver->isInpOutDriverOpen() == 0 && m_driver->isInpOutDriverOpen() == 0) {
        tellRefusal();
        return false;
    }
    LOG_INFO("Using inpout32 module");
    return true;
}

void PlatformWinProviderInpOut32::tellRefusal()
{
    if (const std::string reason = m_driver->refusal(); !reason.empty()) {
        LOG_ERR("{}", core::log::singleLine(QString::fromStdString(reason)));
    }
}

void PlatformWinProviderInpOut32::close()
{
    if (m_loaded) {
        m_driver->unload();
    }
}

bool PlatformWinProviderInpOut32::getKeyByIndex(std::uint32_t index, std::string& key)
{
    const Exchange exchange(*m_driver);
    FourBytes name = {};
    if (!isReadDone(m_protocol.readName(index, name))) {
        LOG_ERR("getKeyByIndex: read_smc failed");
        return false;
    }
    key.assign(name.begin(), std::find(name.begin(), name.end(), 0));
    return true;
}

bool PlatformWinProviderInpOut32::getKeyInfo(const char* key, KeyInfo& info)
{
    const Exchange exchange(*m_driver);
    std::array<std::uint8_t, PortProtocol::infoLength> reply = {};
    if (!isReadDone(m_protocol.readInfo(key, reply.data()))) {
        LOG_ERR("getKeyInfo: read_smc failed");
        return false;
    }
    if (reply[0] == 0) {
        return false; // no such key
    }
    info.length = reply[0];
    std::transform(reply.begin() + 1, reply.begin() + 5, info.type.begin(),
                   [](std::uint8_t byte) { return static_cast<char>(byte); });
    info.attributes = reply[5];
    return true;
}

bool PlatformWinProviderInpOut32::readKey(const char* key, void* buffer, std::uint8_t length)
{
    const Exchange exchange(*m_driver);
    return isReadDone(m_protocol.readKey(key, static_cast<std::uint8_t*>(buffer), length));
}

bool PlatformWinProviderInpOut32::writeKey(const char* key, const void* data, std::uint8_t length)
{
    const Exchange exchange(*m_driver);
    const auto sent = static_cast<std::uint8_t>(std::min<std::size_t>(length, valueRoom));
    const PortResult result
        = m_protocol.writeKey(key, static_cast<const std::uint8_t*>(data), sent);
    if (result == PortResult::ByteLost) {
        LOG_ERR("PlatformWinProviderInpOut32::send_byte failed");
    }
    return result != PortResult::Done;
}

} // namespace SMC
