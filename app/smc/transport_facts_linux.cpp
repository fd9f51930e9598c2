#include "app/smc/transport_facts.h"

namespace SMC {

namespace {

class NoTransportFacts final : public TransportFacts {
public:
    QString releaseId() override { return {}; }
    bool halDriverExists() override { return false; }
    std::optional<int> halDriverSigningYear() override { return std::nullopt; }
    std::optional<std::uint64_t> halDriverSize() override { return std::nullopt; }
    bool softwareKeyExists(const QString&) override { return false; }
};

} // namespace

std::unique_ptr<TransportFacts> makeTransportFacts()
{
    return std::make_unique<NoTransportFacts>();
}

} // namespace SMC
