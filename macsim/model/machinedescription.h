#pragma once

#include <optional>
#include <vector>

#include <QMap>
#include <QString>
#include <QStringList>

#include "macsim/model/drivedescription.h"
#include "macsim/model/keytable.h"

namespace macsim {

// A part of the machine that gets warm: a lump of heat capacity that loses heat
// to its surroundings, the more the faster its fans blow.
struct HeatSource {
    struct SensorKey {
        QByteArray key;
        double offset = 0.0; // degrees Celsius above the source's temperature
    };

    QString name;
    double capacity = 0.0; // joules per kelvin
    double idlePower = 0.0; // watts with nothing to do
    double fullPower = 0.0; // watts at full load
    double loss = 0.0; // watts per kelvin without any air flow
    double airLoss = 0.0; // watts per kelvin more with all its fans at full speed
    std::vector<int> fans; // the fans that blow at it
    QString neighbour; // the source that warms it, or empty
    double neighbourShare = 0.0; // 0 to 1: how much of the neighbour's warmth reaches it
    std::vector<SensorKey> sensors;
};

// One point of the automatic control: at this temperature this share (0 to 1) of
// the way from the fan's minimum to its maximum.
struct CurvePoint {
    double celsius = 0.0;
    double share = 0.0;
};

struct FanDescription {
    QString name; // as F{}ID tells it, at most 12 characters, blanks included
    double minimum = 0.0; // RPM
    double maximum = 0.0; // RPM
    double timeConstant = 0.0; // seconds for 63 % of a change
    std::optional<double> parksBelow; // degrees Celsius: automatic control stops the fan
    QStringList sources; // automatic control follows the hottest of them
    std::vector<CurvePoint> curve; // ascending in temperature
};

// A GPU as the system's buses and its own driver show it. Which driver it has
// follows from the vendor.
struct GpuDescription {
    static constexpr const char* amd = "1002";
    static constexpr const char* nvidia = "10de";

    QString name; // as its driver tells it
    QString address; // on the PCI bus, such as "0000:01:00.0"
    QString vendor; // four hexadecimal digits, as is the device
    QString device;
    QString source; // the heat source that it is
    double offset = 0.0; // degrees Celsius above the source's temperature

    [[nodiscard]] bool isOf(const char* maker) const { return vendor == QLatin1String(maker); }
};

struct ProcessorDescription {
    QString name;
    int packages = 0;
    int cores = 0; // of each package
    int threads = 0; // of each package
    int megahertz = 0;
    int family = 0;
    int model = 0;
    int stepping = 0;
    int cacheKilobytes = 0;
};

// A machine as its file describes it. A machine without keys has no controller.
struct MachineDescription {
    QString name;
    QMap<QString, QString> dmi; // file name under sys/class/dmi/id, and its text
    ProcessorDescription processor;
    bool portable = false; // has a battery
    double ambient = 25.0; // degrees Celsius
    QByteArray fanType; // "fpe2" or "flt "
    bool fanMask = true; // "FS! " forces fans, otherwise "F{}Md"
    bool fanNames = true; // the controller tells them in "F{}ID"
    bool hasDriver = false; // the system has the controller's driver
    QByteArray temperatureType; // "sp78" or "flt "
    QList<QByteArray> invertedKeys; // report 100 minus the temperature
    std::vector<HeatSource> heatSources;
    std::vector<FanDescription> fans;
    std::vector<DriveDescription> drives;
    std::vector<GpuDescription> gpus;
    std::vector<KeyEntry> keys; // all of them, fans and sensors included

    [[nodiscard]] bool hasController() const { return !keys.empty(); }

    // The name of a description that comes with the program, or the path of a
    // .json file. On failure nothing, and error says why.
    [[nodiscard]] static std::optional<MachineDescription> load(const QString& nameOrPath,
                                                                QString& error);
    // The names of the descriptions that come with the program, sorted.
    [[nodiscard]] static QStringList names();
    // What is wrong with the description, empty when nothing is.
    [[nodiscard]] QStringList problems() const;
};

// The key of a fan: fanKey(1, "Ac") is "F1Ac".
[[nodiscard]] QByteArray fanKey(int fan, const char* suffix);

} // namespace macsim
