#pragma once

#include <QByteArray>

#include "macsim/model/machinedescription.h"

namespace macsim {

// The firmware table of a machine: structures of type 0 (firmware), 1 (system),
// 2 (board) and 127 (end), with the texts of its description.
[[nodiscard]] QByteArray dmiTable(const MachineDescription& machine);

// The 64-bit entry point ("_SM3_") that tells the table's size.
[[nodiscard]] QByteArray dmiEntryPoint(const QByteArray& table);

} // namespace macsim
