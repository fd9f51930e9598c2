#pragma once

#include <memory>

class AppPlatformSpecific;
class MachineIdentity;
class QBrisoraApp;

// The platform of the system that this program was built for.
[[nodiscard]] std::unique_ptr<AppPlatformSpecific> makeSystemPlatform(QBrisoraApp& app,
                                                                      MachineIdentity& identity);
