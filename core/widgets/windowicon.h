#pragma once

#include <QIcon>

// The application's icon at 16, 32, 64 and 128 pixels; made once per process, on
// the GUI thread.
[[nodiscard]] QIcon windowIcon();
