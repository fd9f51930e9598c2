// A program that looks at the drives of the machine it runs in, through the calls
// that the real one makes. Its arguments are operations, each of which prints a line:
//
//     disks            the disks under the mounted file systems
//     open NAME        "ok", or why not
//     identify NAME    the drive's key
//     power NAME       "standby", "awake" or "-"
//     celsius NAME     the temperature, or why not
//     enable NAME      "ok", or why not
//     patience MS      how long the drives may take from here on; prints nothing
//     hold NAME        opens the drive, and uses this from here on; prints nothing
//     mark FILE        makes a file; prints nothing
//     wait FILE        until there is such a file; prints nothing

#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include "app/sensors/drives/atapassthrough.h"
#include "app/sensors/drives/drivecalls.h"
#include "app/sensors/drives/driveidentity.h"
#include "app/sensors/drives/mounteddisks.h"
#include "app/sensors/drives/smartattributes.h"
#include "core/system_path.h"

namespace {

using Block = std::array<std::uint8_t, 512>;

class Caller {
public:
    void run(const QString& operation, const QString& argument)
    {
        if (operation == QLatin1String("disks")) {
            printDisks();
        } else if (operation == QLatin1String("open")) {
            print(errorText(open(argument).error));
        } else if (operation == QLatin1String("patience")) {
            m_patience = argument.toUInt();
        } else if (operation == QLatin1String("hold")) {
            m_held = open(argument).descriptor;
        } else if (operation == QLatin1String("mark")) {
            QFile(argument).open(QIODevice::WriteOnly);
        } else if (operation == QLatin1String("wait")) {
            while (!QFile::exists(argument)) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        } else if (const int drive = m_held ? *m_held : open(argument).descriptor; drive < 0) {
            print(QStringLiteral("not open"));
        } else {
            ask(operation, drive);
        }
        std::fflush(stdout);
    }

private:
    const std::shared_ptr<DriveCalls> m_calls = makeDriveCalls();
    std::optional<unsigned int> m_patience;
    std::optional<int> m_held;

    static void print(const QString& text) { std::puts(qPrintable(text)); }

    static QString errorText(int error)
    {
        return error == 0 ? QStringLiteral("ok")
                          : QString::fromStdString(std::generic_category().message(error));
    }

    DriveCalls::Opened open(const QString& name)
    {
        return m_calls->open(QFile::encodeName(core::systemPath(QStringLiteral("/dev/") + name)));
    }

    static void printDisks()
    {
        QFile file(QStringLiteral("/proc/self/mountinfo"));
        const QByteArray mounts = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        QStringList names;
        for (const MountedDisk& disk : findMountedDisks(mounts)) {
            names.append(disk.name + QLatin1String(disk.isUsb ? "(usb)" : ""));
        }
        print(names.join(QLatin1Char(' ')));
    }

    ScsiOutcome execute(int drive, ScsiCommand command)
    {
        command.timeout = m_patience.value_or(command.timeout);
        return m_calls->execute(drive, command);
    }

    static QString problemIn(const ScsiOutcome& outcome)
    {
        if (outcome.error != 0) {
            return errorText(outcome.error);
        }
        return outcome.hostStatus != 0 ? QStringLiteral("host %1").arg(outcome.hostStatus)
                                       : QStringLiteral("status %1").arg(outcome.status);
    }

    void ask(const QString& operation, int drive)
    {
        Block block {};
        if (operation == QLatin1String("power")) {
            const auto count = AtaPassThrough::returnedSectorCount(
                execute(drive, AtaPassThrough::asking(AtaCommands::checkPowerMode)));
            print(!count            ? QStringLiteral("-")
                      : *count == 0 ? QStringLiteral("standby")
                                    : QStringLiteral("awake"));
            return;
        }
        const bool identifies = operation == QLatin1String("identify");
        const ScsiCommand command = operation == QLatin1String("enable")
            ? AtaPassThrough::plain(AtaCommands::smartEnable)
            : AtaPassThrough::reading(
                identifies ? AtaCommands::identifyDevice : AtaCommands::smartReadData, block);
        const ScsiOutcome outcome = execute(drive, command);
        if (!AtaPassThrough::succeeded(outcome)) {
            print(problemIn(outcome));
        } else if (identifies) {
            print(DriveIdentity::parse(block).key());
        } else if (const auto celsius = smartTemperature(block); celsius) {
            print(QString::number(*celsius));
        } else {
            print(QStringLiteral("ok"));
        }
    }
};

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Caller caller;
    for (int index = 1; index < arguments.size(); ++index) {
        const bool hasArgument = arguments.at(index) != QLatin1String("disks");
        caller.run(arguments.at(index), hasArgument ? arguments.value(index + 1) : QString());
        index += hasArgument ? 1 : 0;
    }
    return 0;
}
