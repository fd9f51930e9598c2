#pragma once

#include <QMap>
#include <QVariant>

#include "tests/e2e/machinerun.h"
#include "tests/e2e/virtualdisplay.h"
#include "tests/wine/wineprefix.h"

// One run of the Windows program under Wine inside a simulated Mac, with a Windows
// machine of its own and on a display of the test's. No process of Wine outlives
// this object.
class WineRun : public MachineRun {
public:
    // What is missing for such runs on this machine, in a sentence; empty when all
    // is there.
    [[nodiscard]] static QString missing();
    // Past the check for Apple hardware, to the ports: where the simulated Mac is.
    [[nodiscard]] static QStringList toThePorts();

    // The display must outlive the run.
    explicit WineRun(const VirtualDisplay& display);
    ~WineRun();

    // Values of the program's registry key for the next start: an int, a QString or
    // a QStringList, as the program stores them.
    void storeSetting(const QString& name, const QVariant& value);
    // Makes a preset with these modes the active one, as an earlier run would have
    // left it.
    void storeActivePreset(const QStringList& modes);
    // The values of the program's registry key, numbers in hexadecimal digits.
    // Empty when there is no such key. After a start.
    [[nodiscard]] QMap<QString, QString> storedSettings();

    // Whether the registry has this key, such as "HKEY_CURRENT_USER\\Software".
    [[nodiscard]] bool hasRegistryKey(const QString& key);
    // Whether it has the program's.
    [[nodiscard]] bool hasSettings();

    // Leaves the simulated Mac's port driver out of the next start.
    void hidePortDriver() { unsetVariable(QStringLiteral("WINEPATH")); }

    // Starts the machine and then the program in it.
    [[nodiscard]] bool start(const QStringList& arguments = toThePorts());
    // The same on an account that has never run the program. Wine's task scheduler
    // takes no task with the highest privileges: the program's box that tells so is
    // answered.
    [[nodiscard]] bool startFirst();
    // Runs the program a second time on the same machine, to its end; gives its
    // exit code, or -1 when it did not end in time.
    [[nodiscard]] int runBeside(const QStringList& arguments);

    // Waits for a window of the program, by its whole title; gives its number, or
    // an empty text.
    [[nodiscard]] QString waitForWindow(const QString& title);
    [[nodiscard]] bool isWindowVisible(const QString& title) const;

    // Asks the program's windows to close, as a click on their buttons does.
    [[nodiscard]] bool closeWindows();
    // Tells the program that the session ends, and lets it end by itself. True when
    // it did with code 0.
    [[nodiscard]] bool endSession();
    // Ends the session: what hasn't ended by itself is terminated.
    [[nodiscard]] bool logOff();

    // As it lies on the disk. After the end, since the program writes its log in
    // blocks.
    [[nodiscard]] QByteArray log() const;

private:
    [[nodiscard]] bool writeRegistryFile();
    void endWine();

    const VirtualDisplay& m_display;
    WinePrefix m_prefix;
    QString m_settings; // as a .reg file has them
};
