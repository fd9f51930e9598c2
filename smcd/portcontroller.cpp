#include "smcd/portcontroller.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>

namespace smcd {

namespace {

std::string text(const Key& key) { return { key.begin(), key.end() }; }

} // namespace

std::unique_ptr<Controller> PortController::open(std::unique_ptr<SMC::PortDriver> driver,
                                                 std::string& reason)
{
    using SMC::PortFunction;
    const bool isLoaded = driver->load() && driver->resolve(PortFunction::IsInpOutDriverOpen)
        && driver->resolve(PortFunction::Out32) && driver->resolve(PortFunction::Inp32);
    // The first call may be the one that gets the driver ready.
    if (isLoaded && (driver->isInpOutDriverOpen() != 0 || driver->isInpOutDriverOpen() != 0)) {
        return std::make_unique<PortController>(std::move(driver));
    }
    reason = driver->refusal();
    if (reason.empty()) {
        reason = "The port driver can't be used";
    }
    return nullptr;
}

PortController::PortController(std::unique_ptr<SMC::PortDriver> driver)
    : m_driver(std::move(driver))
    , m_protocol(*m_driver)
{
}

template <typename Exchange> std::uint32_t PortController::attempt(const Exchange& exchange)
{
    if (m_driver->isInpOutDriverOpen() == 0) {
        return ENODEV;
    }
    return exchange() == SMC::PortResult::Done ? 0 : EIO;
}

std::uint32_t PortController::keyInfo(const Key& key, KeyInfo& info)
{
    std::array<std::uint8_t, SMC::PortProtocol::infoLength> reply {};
    const std::uint32_t error = attempt(
        [this, &key, &reply] { return m_protocol.readInfo(text(key).c_str(), reply.data()); });
    if (error == 0) {
        info.length = reply[0];
        std::copy_n(reply.begin() + 1, info.type.size(), info.type.begin());
        info.attributes = reply[5];
    }
    return error;
}

std::uint32_t PortController::readKey(const Key& key, std::span<std::uint8_t> value)
{
    return attempt([this, &key, value] {
        return m_protocol.readKey(text(key).c_str(), value.data(),
                                  static_cast<std::uint8_t>(value.size()));
    });
}

std::uint32_t PortController::writeKey(const Key& key, Bytes value)
{
    return attempt([this, &key, value] {
        return m_protocol.writeKey(text(key).c_str(), value.data(),
                                   static_cast<std::uint8_t>(value.size()));
    });
}

std::uint32_t PortController::keyByIndex(std::uint32_t index, Key& key)
{
    SMC::FourBytes name {};
    const std::uint32_t error
        = attempt([this, index, &name] { return m_protocol.readName(index, name); });
    std::copy(name.begin(), name.end(), key.begin());
    return error;
}

} // namespace smcd
