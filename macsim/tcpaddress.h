#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Where port faces that can't reach the simulator's local socket connect to, as
// the environment variable MACSIM_TCP has it: "127.0.0.1:PORT/TOKEN". Any user of
// this machine can connect to a port; the token, which is sent before the first
// record and isn't answered, shows that the caller belongs to the run.
namespace macsim {

struct TcpAddress {
    static constexpr std::string_view host = "127.0.0.1";
    static constexpr std::size_t tokenLength = 32; // characters

    std::uint16_t port = 0;
    std::string token;

    // The variable's value.
    [[nodiscard]] std::string text() const
    {
        return std::string(host) + ':' + std::to_string(port) + '/' + token;
    }

    // Nothing for anything but such a value.
    [[nodiscard]] static std::optional<TcpAddress> parse(std::string_view text)
    {
        constexpr std::size_t longestPort = 5;
        if (text.substr(0, host.size()) != host || text.substr(host.size(), 1) != ":") {
            return std::nullopt;
        }
        text.remove_prefix(host.size() + 1);
        const std::size_t slash = text.find('/');
        if (slash == std::string_view::npos || slash == 0 || slash > longestPort
            || text.size() - slash - 1 != tokenLength) {
            return std::nullopt;
        }
        std::uint32_t port = 0;
        for (const char digit : text.substr(0, slash)) {
            if (digit < '0' || digit > '9') {
                return std::nullopt;
            }
            port = port * 10 + static_cast<std::uint32_t>(digit - '0');
        }
        if (port == 0 || port > 0xFFFF) {
            return std::nullopt;
        }
        return TcpAddress { static_cast<std::uint16_t>(port), std::string(text.substr(slash + 1)) };
    }
};

} // namespace macsim
