#pragma once

#include <functional>
#include <memory>

#include <QJsonObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include "tests/e2e/processgroup.h"
#include "tests/e2e/tracelog.h"

// One run of the program inside a simulated Mac, in a folder of its own. The
// machine's folders stay between two starts of one object, so that settings
// survive as on a real machine. Whatever was started is killed in the end.
class SimulatedRun {
public:
    // By name, as the simulator lists its machines.
    explicit SimulatedRun(const QString& machine = QStringLiteral("MacBookPro11,3"));
    ~SimulatedRun();
    SimulatedRun(const SimulatedRun&) = delete;
    SimulatedRun& operator=(const SimulatedRun&) = delete;

    // The program under test.
    [[nodiscard]] static QString program();
    // The same with its parts driven by lines on the standard input: see ask().
    [[nodiscard]] static QString steeredProgram();

    // For the next start.
    void setLoad(const QString& profile) { m_load = profile; }
    // Simulated seconds per second, for heat and fans.
    void setSpeed(double speed) { m_speed = speed; }
    // Variables of the program, over those of the machine.
    void setVariable(const QString& name, const QString& value);
    void unsetVariable(const QString& name) { m_unset.append(name); }
    // A change of the machine before the program starts, as control() takes it.
    void beforeStart(const QStringList& verb) { m_verbsBeforeStart.append(verb); }

    // The stored settings, while the program does not run.
    void storeSetting(const QString& key, const QVariant& value);
    [[nodiscard]] QVariant storedSetting(const QString& key) const;
    [[nodiscard]] QString settingsFile() const;
    // Makes a preset with one mode per fan ("0", "1,3000", "2,TC0P,40,70") the
    // active one, as an earlier run would have left it.
    void storeActivePreset(const QStringList& modes);
    [[nodiscard]] static QString presetText(const QString& name, const QStringList& modes);

    // Starts the machine and then the program in it.
    [[nodiscard]] bool start(const QStringList& arguments = {},
                             const QString& otherProgram = QString());
    [[nodiscard]] bool isRunning() const;
    // Runs the program a second time on the same machine, to its end; gives its
    // exit code, or -1 when it did not end in time.
    [[nodiscard]] int runBeside(const QStringList& arguments,
                                const QString& otherProgram = QString());

    // A verb of the running machine, such as { "fault", "mute" }.
    [[nodiscard]] bool control(const QStringList& verb, QString* answer = nullptr);
    [[nodiscard]] QJsonObject state();

    // A line for the program's standard input; gives the line that it answers, or
    // a null text.
    [[nodiscard]] QString ask(const QString& line, int milliseconds = 30000);

    // The trace so far.
    [[nodiscard]] const TraceLog& traceLog();
    // How many lines the trace has: "from here on" for what follows.
    [[nodiscard]] std::size_t here() { return traceLog().size(); }
    [[nodiscard]] bool waitFor(const std::function<bool()>& condition, int milliseconds = 30000);
    // The index of the first such line, or -1 when none came in time.
    [[nodiscard]] int waitForLine(const LineTest& test, std::size_t from = 0,
                                  int milliseconds = 30000);
    // Waits until the periodic tasks have had their first pass, on a machine with
    // fans.
    [[nodiscard]] bool waitUntilLoaded();

    void sendSignal(int number);
    [[nodiscard]] bool waitForEnd(int milliseconds = 20000);
    // Asks it to end as the session does; true when it did with code 0.
    [[nodiscard]] bool terminate();
    [[nodiscard]] int exitCode() const { return m_process->exitCode(); }

    // What the run has left behind on the controller that it must not: forced
    // fans, targets outside the limits, protocol errors. After the end; the latter
    // can be left out for runs that were disturbed.
    [[nodiscard]] QStringList leftovers(bool withProtocolErrors = true) const;
    [[nodiscard]] QJsonObject report() const;

    // After the end, since the program writes its log in blocks.
    [[nodiscard]] QString log() const;
    [[nodiscard]] QString standardError() const { return m_standardError; }
    // Of a file or folder in the run's own folder.
    [[nodiscard]] QString path(const QString& name) const;

private:
    [[nodiscard]] QStringList command(const QString& program, const QStringList& arguments) const;
    [[nodiscard]] bool release();
    void collectOutput();

    QTemporaryDir m_folder;
    const QString m_machine;
    QString m_load = QStringLiteral("idle");
    double m_speed = 1.0;
    QStringList m_set { QStringLiteral("QT_QPA_PLATFORM=offscreen") };
    QStringList m_unset;
    QList<QStringList> m_verbsBeforeStart;
    std::unique_ptr<ProcessGroup> m_process;
    QByteArray m_standardOutput;
    QString m_standardError;
    TraceLog m_trace;
    qint64 m_traceRead = 0; // bytes of the file
};
