#pragma once

#include <functional>
#include <memory>

#include <QJsonObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "tests/e2e/tracelog.h"
#include "tests/support/processgroup.h"

// One run of a command inside a simulated Mac, in a folder of its own. The
// machine's folders stay between two starts of one object. Whatever was started
// is killed in the end.
class MachineRun {
public:
    MachineRun(const MachineRun&) = delete;
    MachineRun& operator=(const MachineRun&) = delete;

    // For the next start.
    void setLoad(const QString& profile) { m_load = profile; }
    // Simulated seconds per second, for heat and fans.
    void setSpeed(double speed) { m_speed = speed; }
    // Variables of the command, over those of the machine.
    void setVariable(const QString& name, const QString& value);
    void unsetVariable(const QString& name) { m_unset.append(name); }
    // A change of the machine before the command starts, as control() takes it.
    void beforeStart(const QStringList& verb) { m_verbsBeforeStart.append(verb); }

    // A preset as the settings hold it, with one mode per fan ("0", "1,3000",
    // "2,TC0P,40,70").
    [[nodiscard]] static QString presetText(const QString& name, const QStringList& modes);

    [[nodiscard]] bool isRunning() const;

    // A verb of the running machine, such as { "fault", "mute" }.
    [[nodiscard]] bool control(const QStringList& verb, QString* answer = nullptr);
    [[nodiscard]] QJsonObject state();

    // The trace so far.
    [[nodiscard]] const TraceLog& traceLog();
    // How many lines the trace has: "from here on" for what follows.
    [[nodiscard]] std::size_t here() { return traceLog().size(); }
    [[nodiscard]] bool waitFor(const std::function<bool()>& condition, int milliseconds = 30000);
    // Waits until the fan turns at about this speed, in RPM.
    [[nodiscard]] bool waitForSpeed(int fan, int rpm);
    // The index of the first such line, or -1 when none came in time.
    [[nodiscard]] int waitForLine(const LineTest& test, std::size_t from = 0,
                                  int milliseconds = 30000);
    // Waits until the periodic tasks have had their first pass, on a machine with
    // fans.
    [[nodiscard]] bool waitUntilLoaded();

    void sendSignal(int number);
    [[nodiscard]] bool waitForEnd(int milliseconds = 20000);
    [[nodiscard]] int exitCode() const { return m_process->exitCode(); }

    // What the run has left behind on the controller that it must not: forced
    // fans, targets outside the limits, protocol errors. After the end; the latter
    // can be left out for runs that were disturbed.
    [[nodiscard]] QStringList leftovers(bool withProtocolErrors = true) const;
    [[nodiscard]] QJsonObject report() const;

    [[nodiscard]] QString standardError() const { return m_standardError; }
    // Of a file or folder in the run's own folder.
    [[nodiscard]] QString path(const QString& name) const;

protected:
    // The machine by name, as the simulator lists it.
    explicit MachineRun(const QString& machine);
    ~MachineRun();

    // Further options of the simulator.
    void setOptions(const QStringList& options) { m_options = options; }
    // Starts the machine and then the command in it.
    [[nodiscard]] bool startCommand(const QStringList& command);
    // Runs a command on the same machine, or in its surroundings after the end, to
    // its own end; gives its exit code, or -1 when it did not end in time or there
    // was no start before.
    [[nodiscard]] int runCommandBeside(const QStringList& command);
    // Whether there was a start, successful or not.
    [[nodiscard]] bool wasStarted() const { return m_process != nullptr; }

    // A line for the command's standard input; gives the line that it answers, or
    // a null text.
    [[nodiscard]] QString askCommand(const QString& line, int milliseconds);

    // Prints everything that is known about the run.
    void tell(const QString& log) const;

    [[nodiscard]] static QByteArray contents(const QString& path);

private:
    [[nodiscard]] QStringList surrounded(const QStringList& command) const;
    [[nodiscard]] bool release();
    void collectOutput();

    QTemporaryDir m_folder;
    const QString m_machine;
    QStringList m_options;
    QString m_load = QStringLiteral("idle");
    double m_speed = 1.0;
    QStringList m_set;
    QStringList m_unset;
    QList<QStringList> m_verbsBeforeStart;
    std::unique_ptr<ProcessGroup> m_process;
    QByteArray m_standardOutput;
    QString m_standardError;
    TraceLog m_trace;
    qint64 m_traceRead = 0; // bytes of the file
};
