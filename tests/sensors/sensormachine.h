#pragma once

#include <memory>

#include <QFile>
#include <QTemporaryDir>

#include "app/smc/service.h"
#include "app/sysinfo/sysinfo.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/fakesmcplatform.h"
#include "tests/support/gzipped.h"

// A Mac of the given model with a controller in memory and a service over it,
// and a file for a sensor database.
class SensorMachine {
public:
    explicit SensorMachine(const char* model = "MacBookPro11,3")
        : identity(QString::fromLatin1(model))
        , info(identity)
        , settings(std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("settings.ini")),
                                               QSettings::IniFormat))
    {
        auto platform = std::make_unique<FakeSmcPlatform>();
        controller = platform.get();
        // Temperature keys are looked for between other ones.
        controller->addFan(0, "Left", 2000, 1800, 6000);
        controller->setKey("VRSN", "ui8 ", { 1 });
        service = std::make_unique<SMC::Service>(std::move(platform));
        if (!service->open()) {
            qFatal("The controller in memory doesn't open");
        }
    }

    // The path of a database that holds these elements for all models.
    QString databaseWith(const QByteArray& elements)
    {
        QFile file(m_folder.filePath(QStringLiteral("sensors.xml.gz")));
        const QByteArray data = gzipped("<smcSensors><modelMatch models=\"all\">" + elements
                                        + "</modelMatch></smcSensors>");
        if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size()) {
            qFatal("The database can't be written");
        }
        return file.fileName();
    }

private:
    QTemporaryDir m_folder;

public:
    FakeMachineIdentity identity;
    const SystemInfo info;
    QSettingsCache settings;
    FakeSmcPlatform* controller = nullptr; // owned by the service
    std::unique_ptr<SMC::Service> service;
};
