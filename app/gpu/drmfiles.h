#pragma once

#include <QByteArray>
#include <QStringList>

// What the kernel's files tell about graphics cards. The functions take whatever is
// in them.
namespace DrmFiles {

// The cards among the entries of the folder of graphics devices, which names
// their connectors as well ("card0", "card0-DP-1"), in the order of their numbers.
[[nodiscard]] QStringList cards(const QStringList& entries);

// Whether a PCI vendor, such as "0x1002", is AMD.
[[nodiscard]] bool isAmd(const QByteArray& vendor);

} // namespace DrmFiles
