#pragma once

#include <QJsonArray>

#include "tests/e2e/simulatedrun.h"

// One run of the steered program on a machine with GPUs.
class GpuRun : public SimulatedRun {
public:
    // Degrees Celsius at which freezeKey() holds a key, as no driver tells them.
    static constexpr double frozen = 20.0;

    using SimulatedRun::SimulatedRun;

    // Until the sensors are there.
    [[nodiscard]] bool startSteered()
    {
        storeSetting(QStringLiteral("AppFirstRun"), 0);
        return start({}, steeredProgram()) && waitUntilLoaded();
    }

    // What the program calls the first sensor whose key begins like this, after the
    // beginning of the key.
    [[nodiscard]] QString sensor(const QString& key)
    {
        return partAfter(ask(QStringLiteral("sensors")), key);
    }

    // Degrees Celsius that the program shows for it.
    [[nodiscard]] double shown(const QString& key)
    {
        return partAfter(ask(QStringLiteral("values")), key)
            .section(QLatin1Char(' '), -1)
            .toDouble();
    }

    // Degrees Celsius that the driver of the machine's last GPU tells.
    [[nodiscard]] double told()
    {
        return state()[QStringLiteral("gpus")]
            .toArray()
            .last()[QStringLiteral("temperature")]
            .toDouble();
    }

    [[nodiscard]] bool freezeKey(const char* key)
    {
        const QString name = QString::fromLatin1(key);
        return control({ QStringLiteral("freeze"), name })
            && control({ QStringLiteral("set"), name, QStringLiteral("1400") });
    }

private:
    [[nodiscard]] static QString partAfter(const QString& answer, const QString& key)
    {
        const QStringList parts = answer.split(QLatin1Char(';'));
        for (const QString& part : parts) {
            if (part.startsWith(key)) {
                return part.mid(key.size()).trimmed();
            }
        }
        return {};
    }
};
