#pragma once

#include <functional>
#include <memory>

#include "app/smc/platform.h"
#include "app/smc/selection_messages.h"
#include "app/smc/transport_facts.h"

namespace SMC {

enum class Transport { MMIO, HAL, InpOut32 };

using TransportFactory = std::function<std::unique_ptr<Platform>(Transport)>;

// The transports of this program.
[[nodiscard]] std::unique_ptr<Platform> makeTransport(Transport transport);

// Chooses among the ways to the controller when it is opened, and passes
// everything on to the chosen one. Opening may wait for the user's answers and
// for the extra delay.
class PlatformWin final : public Platform {
public:
    PlatformWin(std::unique_ptr<TransportFacts> facts, std::unique_ptr<SelectionMessages> messages,
                TransportFactory factory = makeTransport);

    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;
    void leaveFans() override;

private:
    [[nodiscard]] bool openProvider(Transport transport);
    // Whether an old HAL driver can crash this release of Windows.
    [[nodiscard]] bool hasDangerousDriver();
    // At most one message, about the first product found.
    void tellAboutBlockingSoftware();

    const std::unique_ptr<TransportFacts> m_facts;
    const std::unique_ptr<SelectionMessages> m_messages;
    const TransportFactory m_factory;
    std::unique_ptr<Platform> provider; // none until open()
};

} // namespace SMC
