#pragma once

#include <istream>
#include <string>

namespace inpout32 {

// The kernel driver that holds a part of the controller's ports (0x300 to 0x31F)
// in a table in the form of /proc/ioports; empty when there is none. Entries by
// which the firmware or a bus merely describes its ports own nothing.
[[nodiscard]] std::string portOwner(std::istream& table);

} // namespace inpout32
