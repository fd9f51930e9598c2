#pragma once

#include <functional>

#include <QObject>

#include "core/system/powersource.h"

namespace System {

// Tells when the machine's power comes from another source than before; a class
// per system tells it when to look.
class PowerSourceWatcher : public QObject {
    Q_OBJECT

public:
    using Reader = std::function<PowerSource()>;

    // The reader gives the source as it is now.
    explicit PowerSourceWatcher(Reader read);

    // Takes the present source for the last one, without a signal.
    void takeSource();
    // To be called when the source may have changed.
    void lookForChange();

Q_SIGNALS:
    void powerSourceChanged(System::PowerSource source);

private:
    const Reader m_read;
    PowerSource m_lastSource = PowerSourceUnknown;
};

} // namespace System
