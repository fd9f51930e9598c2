#pragma once

#include <memory>

#include <QObject>

// The system's wish that this process ends: termination, interrupt and hang-up
// signals, turned into a Qt signal on the thread that owns the object. At most
// one object at a time.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void terminationRequested();

private:
    class Handler;
    const std::unique_ptr<Handler> m_handler;
};
