#pragma once

#include <QString>

namespace core {

// The path of a file under /sys, /proc (not /proc/self), /dev or /run, with the
// folder that the variable BRISORA_SYSROOT names put before it. The variable is
// read at each call and is empty by default.
[[nodiscard]] QString systemPath(const QString& absolutePath);

} // namespace core
