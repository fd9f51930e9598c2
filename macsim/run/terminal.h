#pragma once

namespace macsim {

// The columns of the terminal on standard error, or 0 when there is none.
[[nodiscard]] int terminalWidth();

} // namespace macsim
