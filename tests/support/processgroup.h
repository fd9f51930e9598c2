#pragma once

#include <QProcess>

// A process that leads a group of its own, so that whatever it starts can be
// ended with it. It is asked to end when the process that started it dies.
class ProcessGroup : public QProcess {
    Q_OBJECT

public:
    // Kills what is left of the group.
    ~ProcessGroup() override;

    // Sends a signal to the leader alone, if it runs.
    void sendSignal(int number);
    void killAll();

protected:
    void setupChildProcess() override;

private:
    qint64 m_group = 0;
};
