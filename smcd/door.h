#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "smcd/descriptor.h"

namespace smcd {

// The socket on which clients arrive.
struct Door {
    Descriptor listener;
    Descriptor lock; // held for as long as the service runs
};

// The socket that the system hands to a service that it starts on demand, or nothing,
// and error says why.
[[nodiscard]] std::optional<Door> doorFromSystem(const std::filesystem::path& folder,
                                                 std::string& error);

// A socket of the service's own in that folder, for the owner and the group. What an
// earlier one has left is replaced. Nothing on failure, also when another service has
// the folder, and error says why.
[[nodiscard]] std::optional<Door> makeDoor(const std::filesystem::path& folder,
                                           const std::string& name,
                                           std::optional<std::uint32_t> group, std::string& error);

} // namespace smcd
