#pragma once

#include <QJsonArray>
#include <QJsonObject>

#include "tests/e2e/simulatedrun.h"

// One run of the program, driven by lines, inside a simulated Mac with drives.
class DriveRun : public SimulatedRun {
public:
    // The drives of the machine that is the default one here, by their keys.
    static QString ssd() { return QStringLiteral("APPLE SSD SM0128F (S1K4NYAF215377)"); }
    static QString hdd() { return QStringLiteral("APPLE HDD ST1000DM003 (Z1D4LM2P)"); }

    explicit DriveRun(const QString& machine = QStringLiteral("iMac14,2"))
        : SimulatedRun(machine)
    {
        storeSetting(QStringLiteral("AppFirstRun"), 0);
    }

    [[nodiscard]] bool startSteered() { return start({}, steeredProgram()); }

    // The text behind a key, of "KEY text" parts that are separated by semicolons; null
    // without such a key.
    [[nodiscard]] static QString textOf(const QString& answer, const QString& key)
    {
        const QStringList parts = answer.split(QLatin1Char(';'));
        for (const QString& part : parts) {
            if (part.startsWith(key + QLatin1Char(' '))) {
                return part.mid(key.size() + 1);
            }
        }
        return {};
    }

    // In degrees Celsius, as the program shows it; 0 before the first reading.
    [[nodiscard]] double valueOf(const QString& key)
    {
        return textOf(ask(QStringLiteral("values")), key).toDouble();
    }
    [[nodiscard]] bool waitForValue(const QString& key)
    {
        return waitFor([this, &key] { return valueOf(key) != 0.0; });
    }

    // What the machine knows about its drive.
    [[nodiscard]] QJsonObject driveState(const char* name)
    {
        const QJsonArray drives = state()[QLatin1String("drives")].toArray();
        for (const QJsonValue& drive : drives) {
            if (drive[QLatin1String("name")].toString() == QLatin1String(name)) {
                return drive.toObject();
            }
        }
        return {};
    }

    // Does something to a drive, such as "sdb hang 5000".
    [[nodiscard]] bool tell(const char* what)
    {
        return control(QStringLiteral("drive %1").arg(QLatin1String(what)).split(QLatin1Char(' ')));
    }

    // A command to a drive, and what became of it: "sdb read-smart ok".
    [[nodiscard]] static LineTest drive(const char* event)
    {
        return [text = QStringLiteral("drive ") + QLatin1String(event)](const TraceLine& line) {
            return line.kind == TraceLine::Kind::Event && line.text == text;
        };
    }
};
