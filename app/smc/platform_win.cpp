#include "app/smc/platform_win.h"

#include "app/smc/options.h"
#include "app/smc/platform_win_inpout32.h"
#include "app/smc/platform_win_sys.h"
#include "app/smc/platform_win_sys_mmio.h"
#include "app/smc/selection_texts.h"
#include "build_config.h"
#include "core/log/log.h"

namespace SMC {

namespace {

// Software that keeps programs from the controller.
struct BlockingSoftware {
    QString registryKey;
    QString product;
    int issue;
};

} // namespace

std::unique_ptr<Platform> makeTransport(Transport transport)
{
    switch (transport) {
    case Transport::MMIO:
        return std::make_unique<PlatformWinProviderMMIO>();
    case Transport::HAL:
        return std::make_unique<PlatformWinProviderMacHAL>();
    case Transport::InpOut32:
        return std::make_unique<PlatformWinProviderInpOut32>();
    }
    return nullptr;
}

PlatformWin::PlatformWin(std::unique_ptr<TransportFacts> facts,
                         std::unique_ptr<SelectionMessages> messages, TransportFactory factory)
    : m_facts(std::move(facts))
    , m_messages(std::move(messages))
    , m_factory(std::move(factory))
{
}

bool PlatformWin::open()
{
    using Answer = SelectionMessages::BootCampAnswer;

    bool opened = false;
    if (Options::isSet(Option::UseMMIO)) {
        LOG_INFO("PlatformWin::open trying MMIO");
        opened = openProvider(Transport::MMIO);
    } else {
        bool force = Options::isSet(Option::ForceInpOut32);
        if (hasDangerousDriver()) {
            const QString text = bootCampText(QLatin1String(BuildConfig::webSite));
            const Answer answer = m_messages->askAboutBootCamp(selectionTitle(), text);
            if (answer == Answer::Abort) {
                return false;
            }
            force = force || answer == Answer::Help;
        }
        if (force) {
            LOG_INFO("Force trying InpOut32");
            opened = openProvider(Transport::InpOut32);
        } else {
            LOG_INFO("Using HAL");
            opened = openProvider(Transport::HAL);
            if (!opened) {
                LOG_INFO("PlatformWin::open trying inpout32");
                opened = openProvider(Transport::InpOut32);
            }
        }
    }
    if (!opened) {
        tellAboutBlockingSoftware();
    }
    return opened;
}

void PlatformWin::close()
{
    if (provider) {
        provider->close();
    }
}

bool PlatformWin::getKeyByIndex(std::uint32_t index, std::string& key)
{
    return provider && provider->getKeyByIndex(index, key);
}

bool PlatformWin::getKeyInfo(const char* key, KeyInfo& info)
{
    return provider && provider->getKeyInfo(key, info);
}

bool PlatformWin::readKey(const char* key, void* buffer, std::uint8_t length)
{
    return provider && provider->readKey(key, buffer, length);
}

bool PlatformWin::writeKey(const char* key, const void* data, std::uint8_t length)
{
    return provider && provider->writeKey(key, data, length);
}

void PlatformWin::leaveFans()
{
    if (provider) {
        provider->leaveFans();
    }
}

bool PlatformWin::openProvider(Transport transport)
{
    provider = m_factory(transport);
    connect(provider.get(), &Platform::error_unexpected_disconnect, this,
            &Platform::error_unexpected_disconnect);
    return provider->open();
}

bool PlatformWin::hasDangerousDriver()
{
    constexpr int firstDangerousRelease = 1903;
    constexpr int lastDangerousYear = 2012;
    constexpr std::uint64_t harmlessSize = 22872; // bytes; one old driver is good

    if (m_facts->releaseId().toInt() < firstDangerousRelease || !m_facts->halDriverExists()) {
        return false;
    }
    const std::optional<int> year = m_facts->halDriverSigningYear();
    if (!year || *year > lastDangerousYear) {
        return false;
    }
    const std::optional<std::uint64_t> size = m_facts->halDriverSize();
    return size && *size != harmlessSize;
}

void PlatformWin::tellAboutBlockingSoftware()
{
    const QString folder
        = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\");
    const BlockingSoftware known[] = {
        { folder + QStringLiteral("Riot Vanguard"), QStringLiteral("Riot Vanguard Anti-Cheat"),
          325 },
        { folder + QStringLiteral("{1419E44C-0EF4-4822-9194-9F1A4D43973D}_is1"),
          QStringLiteral("FACEIT Anti-Cheat"), 350 },
    };
    for (const BlockingSoftware& software : known) {
        if (m_facts->softwareKeyExists(software.registryKey)) {
            m_messages->tellAboutBlockingSoftware(
                selectionTitle(),
                blockingSoftwareText(software.product, software.issue,
                                     QLatin1String(BuildConfig::trackerSite)));
            return;
        }
    }
}

} // namespace SMC
