#pragma once

#include "app/smc/transport_facts.h"

namespace SMC {

// The facts of Windows, from its registry and from the HAL driver's file.
class TransportFactsWindows final : public TransportFacts {
public:
    explicit TransportFactsWindows(const QString& halDriverPath);

    [[nodiscard]] QString releaseId() override;
    [[nodiscard]] bool halDriverExists() override;
    // By local time, whether or not the signature is trusted. Nothing is shown to
    // the user, and nothing is fetched from the network.
    [[nodiscard]] std::optional<int> halDriverSigningYear() override;
    [[nodiscard]] std::optional<std::uint64_t> halDriverSize() override;
    [[nodiscard]] bool softwareKeyExists(const QString& key) override;

private:
    const QString m_halDriverPath;
};

} // namespace SMC
