#pragma once

#include <QObject>

namespace System {

// Tells when the user asks the system for the other look, light or dark; a class
// per system tells it what the wish is. On one thread at a time.
class DarkModeWatcher : public QObject {
    Q_OBJECT

public:
    // Takes the look for the last one, without a signal.
    void takeLook(bool dark);
    // To be called with the look that the user may have changed.
    void compareLook(bool dark);

Q_SIGNALS:
    void darkModeChanged();

private:
    bool m_lastDark = false;
};

} // namespace System
