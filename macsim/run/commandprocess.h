#pragma once

#include <QProcess>

namespace macsim {

// The command that runs inside the machine, on the simulator's own standard
// streams. It is asked to end when the simulator dies.
class CommandProcess : public QProcess {
    Q_OBJECT

public:
    explicit CommandProcess(QObject* parent = nullptr);

    // Sends it a signal, if it runs.
    void sendSignal(int number);

protected:
    void setupChildProcess() override;
};

} // namespace macsim
