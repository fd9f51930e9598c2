#include "core/system/powersourcewatcher.h"

#include <utility>

namespace System {

PowerSourceWatcher::PowerSourceWatcher(Reader read)
    : m_read(std::move(read))
{
    qRegisterMetaType<System::PowerSource>("System::PowerSource");
}

void PowerSourceWatcher::takeSource() { m_lastSource = m_read(); }

void PowerSourceWatcher::lookForChange()
{
    const PowerSource source = m_read();
    if (std::exchange(m_lastSource, source) != source) {
        Q_EMIT powerSourceChanged(source);
    }
}

} // namespace System
