#pragma once

#include <QByteArray>
#include <QStringList>

// The file of PCI identifiers, which distributions install at different places or
// not at all.
namespace PciIds {

// Where it may lie.
[[nodiscard]] QStringList paths();
// The contents of the first file that can be read; empty when none can.
[[nodiscard]] QByteArray read(const QStringList& paths);

} // namespace PciIds
