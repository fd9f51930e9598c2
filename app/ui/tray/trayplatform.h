#pragma once

#include <memory>

class QTrayIconPlatform;

// The tray icon of the running system.
[[nodiscard]] std::unique_ptr<QTrayIconPlatform> makeTrayPlatform();

// Whether the desktop has a tray now. A desktop can lose its tray and get one
// back, so this is asked whenever it counts.
[[nodiscard]] bool isTrayAvailable();
