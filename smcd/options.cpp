#include "smcd/options.h"

#include <string_view>

namespace smcd {

std::optional<Options> Options::parse(std::span<const char* const> arguments, std::string& error)
{
    Options options;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string_view argument = arguments[index];
        if (argument == "--foreground") {
            options.isForeground = true;
        } else if (argument == "--help") {
            options.wantsHelp = true;
        } else if (argument == "--group" && index + 1 < arguments.size()) {
            options.group = arguments[++index];
        } else {
            error = "Unknown or incomplete: " + std::string(argument);
            return std::nullopt;
        }
    }
    return options;
}

std::string Options::help()
{
    return "smcd serves the Mac's controller to programs that may not touch it.\n\n"
           "  --foreground   makes its own socket, /run/brisora/smc.sock, instead of taking\n"
           "                 the one that the system hands over\n"
           "  --group NAME   serves the members of this group (brisora), and root\n"
           "  --help         tells this\n";
}

} // namespace smcd
