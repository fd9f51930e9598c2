#pragma once

namespace System {

// Whether the system is at least Windows major.0 without a service pack: 6 is
// Vista, 10 is Windows 10. Windows only.
[[nodiscard]] bool isWindowsVersionAtLeast(unsigned major);

} // namespace System
