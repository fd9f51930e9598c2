#pragma once

#include <span>
#include <string_view>

#include <QByteArray>

// The beginning of a small file of the kernel's, as far as it fits into the buffer,
// in which the result lies; empty when it can't be read. Allocates nothing. Takes as
// long as the driver behind the file does. Any thread.
[[nodiscard]] std::string_view readKernelFile(const QByteArray& path, std::span<char> buffer);

// Whether a device's file "power/runtime_status" says that the kernel has put the
// device to sleep, from which any use would wake it.
[[nodiscard]] inline bool isRuntimeSuspended(std::string_view status)
{
    return status.starts_with("suspended") || status.starts_with("suspending");
}
