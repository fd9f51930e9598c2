#pragma once

#include <optional>

#include "smcd/controlbits.h"
#include "smcd/keyreader.h"

namespace smcd {

// What a write does to the fans' control bits.
struct WriteEffect {
    ControlBits sets;
    ControlBits clears;
};

// Decides which writes are let through: the control bits and modes of fans that
// exist, and target speeds within the fan's own limits.
class WriteRules {
public:
    // The reader must outlive the rules.
    explicit WriteRules(KeyReader& reader);

    // 0 and what the write will do, or the error number to answer.
    [[nodiscard]] std::uint32_t check(const Key& key, Bytes value, WriteEffect& effect);

private:
    KeyReader& m_reader;
    std::optional<std::size_t> m_fanCount;

    [[nodiscard]] std::uint32_t fanCount(std::size_t& count);
    [[nodiscard]] std::uint32_t checkMask(Bytes value, WriteEffect& effect);
    [[nodiscard]] std::uint32_t checkMode(std::size_t fan, Bytes value, WriteEffect& effect);
    [[nodiscard]] std::uint32_t checkTarget(std::size_t fan, Bytes value);
    [[nodiscard]] std::uint32_t limit(const Key& key, double& rpm);
};

// A speed in RPM, of 2 bytes ("fpe2") or 4 ("flt "); nothing for another length.
[[nodiscard]] std::optional<double> speedOf(Bytes value);

} // namespace smcd
