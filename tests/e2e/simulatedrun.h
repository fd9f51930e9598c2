#pragma once

#include <QVariant>

#include "tests/e2e/machinerun.h"

// One run of the program inside a simulated Mac. Its settings survive between two
// starts of one object, as on a real machine.
class SimulatedRun : public MachineRun {
public:
    explicit SimulatedRun(const QString& machine = QStringLiteral("MacBookPro11,3"));
    ~SimulatedRun();

    // The program under test.
    [[nodiscard]] static QString program();
    // The same with its parts driven by lines on the standard input: see ask().
    [[nodiscard]] static QString steeredProgram();

    // The stored settings, while the program does not run.
    void storeSetting(const QString& key, const QVariant& value);
    [[nodiscard]] QVariant storedSetting(const QString& key) const;
    [[nodiscard]] QString settingsFile() const;
    // Makes a preset with these modes the active one, as an earlier run would have
    // left it.
    void storeActivePreset(const QStringList& modes);

    // Starts the machine and then the program in it.
    [[nodiscard]] bool start(const QStringList& arguments = {},
                             const QString& otherProgram = QString());
    // Runs the program a second time on the same machine, to its end; gives its
    // exit code, or -1 when it did not end in time.
    [[nodiscard]] int runBeside(const QStringList& arguments,
                                const QString& otherProgram = QString());

    // A line for the program's standard input; gives the line that it answers, or
    // a null text.
    [[nodiscard]] QString ask(const QString& line, int milliseconds = 30000)
    {
        return askCommand(line, milliseconds);
    }

    // Asks it to end as the session does; true when it did with code 0.
    [[nodiscard]] bool terminate();

    // After the end, since the program writes its log in blocks.
    [[nodiscard]] QString log() const;
};
