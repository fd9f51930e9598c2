#include "core/system/darkmodewatcher.h"

#include <utility>

namespace System {

void DarkModeWatcher::takeLook(bool dark) { m_lastDark = dark; }

void DarkModeWatcher::compareLook(bool dark)
{
    if (std::exchange(m_lastDark, dark) != dark) {
        Q_EMIT darkModeChanged();
    }
}

} // namespace System
