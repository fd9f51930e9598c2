#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QString>

namespace SMC {

// What the system tells for the choice of a transport. Anything that can't be
// read counts as absent.
class TransportFacts {
public:
    TransportFacts() = default;
    TransportFacts(const TransportFacts&) = delete;
    TransportFacts& operator=(const TransportFacts&) = delete;
    virtual ~TransportFacts() = default;

    // The release of Windows, such as "1903"; empty where there is none.
    [[nodiscard]] virtual QString releaseId() = 0;
    [[nodiscard]] virtual bool halDriverExists() = 0;
    // The year in which the HAL driver's file was signed.
    [[nodiscard]] virtual std::optional<int> halDriverSigningYear() = 0;
    // In bytes.
    [[nodiscard]] virtual std::optional<std::uint64_t> halDriverSize() = 0;
    // Whether the machine-wide registry key exists, in the 64-bit view.
    [[nodiscard]] virtual bool softwareKeyExists(const QString& key) = 0;
};

// The system's own facts. On Linux there are none.
[[nodiscard]] std::unique_ptr<TransportFacts> makeTransportFacts();

} // namespace SMC
