#pragma once

#include <optional>
#include <span>
#include <string>

namespace smcd {

struct Options {
    bool isForeground = false; // makes its own socket
    bool wantsHelp = false;
    std::string group = "brisora"; // whose members are served

    // The arguments after the program's name. On failure nothing, and error says why.
    [[nodiscard]] static std::optional<Options> parse(std::span<const char* const> arguments,
                                                      std::string& error);
    [[nodiscard]] static std::string help();
};

} // namespace smcd
