#pragma once

#include "core/application/qapplicationex.h"

class QLocalServer;
class QLocalSocket;

// An application of which one instance runs per user. A connection to the
// running instance is the whole message between two of them.
class QApplicationExSingle : public QApplicationEx {
    Q_OBJECT

public:
    // Looks for a running instance for up to half a second; without one, this
    // one becomes the instance that answers.
    QApplicationExSingle(int& argc, char** argv, const QString& applicationName,
                         const QString& instanceKey);

    [[nodiscard]] bool isAnotherInstanceRunning() const { return m_anotherInstanceRunning; }

Q_SIGNALS:
    // Another instance was started and has ended again.
    void anotherInstanceStarted();

private:
    [[nodiscard]] bool isAnswered(const QString& serverName);
    void takeConnections();

    bool m_anotherInstanceRunning = false;
    QLocalSocket* m_localSocket = nullptr;
    QLocalServer* m_localServer = nullptr;
};
