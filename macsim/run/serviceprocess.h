#pragma once

#include <functional>

#include <QObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTimer>

#include "macsim/model/trace.h"
#include "macsim/run/commandprocess.h"

namespace macsim {

// The service that touches the controller for the programs of the machine. It is
// started again a moment after an end that nobody asked for, as a system does it.
// Each start leaves an event with the number of the process in the trace, and so
// does each end.
class ServiceProcess : public QObject {
    Q_OBJECT

public:
    static constexpr int restartDelay = 100; // milliseconds

    // The trace must outlive the object. socketPath is where the service appears.
    ServiceProcess(const Trace& trace, QString socketPath, QObject* parent = nullptr);
    ~ServiceProcess() override;

    // Either ready() or failed() follows.
    void start(const QString& program, const QStringList& arguments,
               const QProcessEnvironment& environment);
    [[nodiscard]] bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    // Asks it to end, and kills it if it doesn't; stopped() follows.
    void stop();

Q_SIGNALS:
    void ready();
    void failed(const QString& reason);
    void stopped();

private:
    const Trace& m_trace;
    const QString m_socketPath;
    CommandProcess m_process;
    QTimer m_look; // for the socket of the first start
    QTimer m_patience; // with the start, then with the end
    bool m_isStopping = false;

    void launch();
    void look();
    void ended();
    void fail(const QString& reason);
};

} // namespace macsim
