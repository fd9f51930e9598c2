#pragma once

namespace macsim {

// A new connection to the simulator that MACSIM_SOCKET names, as the system numbers
// it, with this patience for each exchange; -1 when there is none. The caller
// closes it.
[[nodiscard]] int connectToSimulator(unsigned int patienceMilliseconds);

} // namespace macsim
