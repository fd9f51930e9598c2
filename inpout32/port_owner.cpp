#include "inpout32/port_owner.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace inpout32 {

namespace {

constexpr unsigned long firstPort = 0x300;
constexpr unsigned long lastPort = 0x31F;

bool isOneOf(char character, const char* characters)
{
    return character != '\0' && std::strchr(characters, character) != nullptr;
}

// A device that the firmware lists: seven or eight capitals and digits, a colon
// and two hexadecimal digits, such as "APP0001:00".
bool isFirmwareDevice(const std::string& name)
{
    const std::size_t colon = name.find(':');
    if ((colon != 7 && colon != 8) || name.size() != colon + 3) {
        return false;
    }
    const auto end = name.begin() + static_cast<std::ptrdiff_t>(colon);
    return std::all_of(name.begin(), end,
                       [](char character) {
                           return isOneOf(character, "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
                       })
        && isOneOf(name[colon + 1], "0123456789abcdef")
        && isOneOf(name[colon + 2], "0123456789abcdef");
}

// Also bus windows and plug-and-play reservations, such as "PCI Bus 0000:00" and
// "pnp 00:03".
bool isDescription(const std::string& name)
{
    return name.starts_with("PCI Bus ") || name.starts_with("pnp ") || isFirmwareDevice(name);
}

} // namespace

std::string portOwner(std::istream& table)
{
    constexpr char separator[] = " : ";

    std::string line;
    while (std::getline(table, line)) {
        // "  0300-031f : name"
        char* rest = nullptr;
        const unsigned long first = std::strtoul(line.c_str(), &rest, 16);
        if (*rest != '-') {
            continue;
        }
        const unsigned long last = std::strtoul(rest + 1, &rest, 16);
        if (std::strncmp(rest, separator, std::strlen(separator)) != 0) {
            continue;
        }
        const std::string name = rest + std::strlen(separator);
        // The kernel hides the numbers, but not the names, from the unprivileged.
        const bool isHidden = first == 0 && last == 0;
        const bool isOwner = isHidden
            ? name == "applesmc"
            : first <= lastPort && last >= firstPort && !isDescription(name);
        if (isOwner) {
            return name;
        }
    }
    return {};
}

} // namespace inpout32
