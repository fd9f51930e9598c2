#include "tests/e2e/simulatedrun.h"

#include <csignal>

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTest>

SimulatedRun::SimulatedRun(const QString& machine)
    : MachineRun(machine)
{
    setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
}

SimulatedRun::~SimulatedRun()
{
    if (QTest::currentTestFailed() && wasStarted()) {
        // A program that ends by itself leaves a complete log.
        sendSignal(SIGTERM);
        static_cast<void>(waitForEnd());
        tell(log());
    }
}

QString SimulatedRun::program() { return QStringLiteral(BRISORA_PROGRAM); }

QString SimulatedRun::steeredProgram() { return QStringLiteral(STEERED_PROGRAM); }

QString SimulatedRun::settingsFile() const
{
    return path(QStringLiteral("config/Orvane Software/Brisora.conf"));
}

void SimulatedRun::storeSetting(const QString& key, const QVariant& value)
{
    QDir().mkpath(QFileInfo(settingsFile()).path());
    QSettings settings(settingsFile(), QSettings::NativeFormat);
    settings.setValue(key, value);
}

QVariant SimulatedRun::storedSetting(const QString& key) const
{
    return QSettings(settingsFile(), QSettings::NativeFormat).value(key);
}

void SimulatedRun::storeActivePreset(const QStringList& modes)
{
    storeSetting(QStringLiteral("AppFirstRun"), 0);
    storeSetting(QStringLiteral("CustomPresets"),
                 QStringList { presetText(QStringLiteral("Mine"), modes) });
    storeSetting(QStringLiteral("ActivePreset"), QStringLiteral("Custom:0"));
}

bool SimulatedRun::start(const QStringList& arguments, const QString& otherProgram)
{
    return startCommand(QStringList(otherProgram.isEmpty() ? program() : otherProgram) + arguments);
}

int SimulatedRun::runBeside(const QStringList& arguments, const QString& otherProgram)
{
    return runCommandBeside(QStringList(otherProgram.isEmpty() ? program() : otherProgram)
                            + arguments);
}

bool SimulatedRun::terminate()
{
    sendSignal(SIGTERM);
    return waitForEnd() && exitCode() == 0;
}

QString SimulatedRun::log() const
{
    return QString::fromUtf8(contents(path(QStringLiteral("tmp/Brisora.log"))));
}
