#pragma once

#include <memory>

class AppPlatformSpecific;
struct PlatformHost;

// The platform of the system that this program was built for.
[[nodiscard]] std::unique_ptr<AppPlatformSpecific> makeSystemPlatform(PlatformHost host);
