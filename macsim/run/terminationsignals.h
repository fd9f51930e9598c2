#pragma once

#include <memory>

#include <QObject>

class QSocketNotifier;

namespace macsim {

// Turns the system's requests to end (SIGINT, SIGTERM, SIGHUP) into a signal of
// the event loop. At most one object may exist.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

Q_SIGNALS:
    // sentToGroup: the terminal sent it to all processes in the foreground.
    void received(int number, bool sentToGroup);

private:
    std::unique_ptr<QSocketNotifier> m_notifier;

    void readPipe();
};

} // namespace macsim
