#include "app/smc/platform_win_sys_mmio.h"

#include "app/smc/options.h"
#include "core/log/log.h"

namespace SMC {

namespace {

constexpr int noSuchFile = 2; // the same number on both systems

bool refuse()
{
    LOG_ERR("The device is not opened");
    return false;
}

} // namespace

bool PlatformWinProviderMMIO::open()
{
    std::string device; // the name of a plug-and-play device only
    if (Options::isSet(Option::NonPnpDriver)) {
        LOG_INFO("Trying to open SMC using with non-PNP driver");
    } else {
        LOG_INFO("Trying to open SMC using with PNP driver");
        LOG_ERR("No interfaces found, driver doesn't seem to be installed");
        device = "<no-interface>";
    }
    LOG_ERR("Create file failed to open {}, error {}", device, noSuchFile);
    return false;
}

void PlatformWinProviderMMIO::close() { }

bool PlatformWinProviderMMIO::getKeyByIndex(std::uint32_t, std::string&) { return refuse(); }

bool PlatformWinProviderMMIO::getKeyInfo(const char*, KeyInfo&) { return refuse(); }

bool PlatformWinProviderMMIO::readKey(const char*, void*, std::uint8_t) { return refuse(); }

bool PlatformWinProviderMMIO::writeKey(const char*, const void*, std::uint8_t) { return refuse(); }

} // namespace SMC
