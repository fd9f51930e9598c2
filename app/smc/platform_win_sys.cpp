#include "app/smc/platform_win_sys.h"

#include <algorithm>

#include "app/smc/options.h"
#include "core/log/log.h"

namespace SMC {

namespace {

constexpr int noSuchFile = 2; // the same number on both systems

bool refuse()
{
    LOG_ERR("Port X not opened");
    return false;
}

} // namespace

PlatformWinProviderMacHAL::PlatformWinProviderMacHAL(core::threads::Clock& clock)
    : m_clock(clock)
{
}

bool PlatformWinProviderMacHAL::open()
{
    if (const std::string delay = Options::value(Option::ExtraDelay); !delay.empty()) {
        LOG_INFO("Extra delay of {}", delay);
        m_clock.sleep(static_cast<std::uint32_t>(std::max(0, std::stoi(delay))));
    }
    LOG_ERR("Failed to open standard port X (error {}), will try inpout32", noSuchFile);
    return false;
}

void PlatformWinProviderMacHAL::close() { }

bool PlatformWinProviderMacHAL::getKeyByIndex(std::uint32_t, std::string&) { return refuse(); }

bool PlatformWinProviderMacHAL::getKeyInfo(const char*, KeyInfo&) { return refuse(); }

bool PlatformWinProviderMacHAL::readKey(const char*, void*, std::uint8_t) { return refuse(); }

bool PlatformWinProviderMacHAL::writeKey(const char*, const void*, std::uint8_t)
{
    return refuse();
}

} // namespace SMC
