#include "macsim/model/machinedescription.h"

#include <map>
#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "macsim/model/smcvalue.h"

// A library's resources have to be registered by hand, outside any namespace.
static void registerMachineFiles() { Q_INIT_RESOURCE(macsim); }

namespace macsim {

namespace {

const QString machineFolder = QStringLiteral(":/macsim/machines/");

// What makes a description unusable; caught in load().
class DescriptionError : public std::runtime_error {
public:
    explicit DescriptionError(const QString& text)
        : std::runtime_error(text.toStdString())
    {
    }
};

using KeyMap = std::map<QByteArray, KeyEntry>;

QJsonObject readObject(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw DescriptionError(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!document.isObject()) {
        throw DescriptionError(
            QStringLiteral("%1: %2 at byte %3")
                .arg(path, parseError.errorString(), QString::number(parseError.offset)));
    }
    return document.object();
}

QStringList texts(const QJsonValue& value)
{
    QStringList result;
    const QJsonArray array = value.toArray();
    for (const QJsonValue& each : array) {
        result.append(each.toString());
    }
    return result;
}

// A line of a key list has fixed columns: name, type, attributes, value, such as
// "FS! ui16 C0 0000". The value's digits give the key's length.
KeyEntry parseKeyLine(const QString& line)
{
    bool attributesValid = false;
    KeyEntry entry;
    entry.name = line.left(4).toLatin1();
    entry.type = line.mid(5, 4).toLatin1();
    entry.attributes = static_cast<quint8>(line.mid(10, 2).toUInt(&attributesValid, 16));
    const auto value = smcvalue::bytesFromHex(line.mid(13));
    entry.value = value.value_or(QByteArray());
    const bool columnsValid = line.size() >= 15 && line.at(4) == QLatin1Char(' ')
        && line.at(9) == QLatin1Char(' ') && line.at(12) == QLatin1Char(' ');
    if (!columnsValid || !attributesValid || !value) {
        throw DescriptionError(QStringLiteral("Not a key line: \"%1\"").arg(line));
    }
    return entry;
}

// Later lists replace keys of earlier ones, but within a list a key stands once.
void addKeyList(KeyMap& keys, const QJsonValue& lines)
{
    KeyMap list;
    const QStringList lineTexts = texts(lines);
    for (const QString& line : lineTexts) {
        const KeyEntry entry = parseKeyLine(line);
        if (!list.emplace(entry.name, entry).second) {
            throw DescriptionError(QStringLiteral("The key \"%1\" stands twice in one list")
                                       .arg(smcvalue::printable(entry.name)));
        }
    }
    for (const auto& [name, entry] : list) {
        keys[name] = entry;
    }
}

void addKey(KeyMap& keys, const QByteArray& name, const char* type, quint8 attributes,
            const QByteArray& value)
{
    KeyEntry entry;
    entry.name = name;
    entry.type = type;
    entry.attributes = attributes;
    entry.value = value;
    keys[name] = entry;
}

// Four bytes of kind, zone and place, then the name.
QByteArray fanIdentity(const QString& name, int fan)
{
    QByteArray identity(4, '\0');
    identity[2] = static_cast<char>(0x0C + 2 * fan);
    return (identity + name.toLatin1().left(12)).leftJustified(16, '\0');
}

// Attributes of the fan keys; each generation of controllers has its own.
struct FanAttributes {
    quint8 actual;
    quint8 limits;
    quint8 target;
};

void addFanKeys(KeyMap& keys, const MachineDescription& machine)
{
    const char* type = machine.fanType.constData();
    const FanAttributes attributes = machine.fanType == "fpe2" ? FanAttributes { 0x90, 0xC0, 0xD0 }
                                                               : FanAttributes { 0x85, 0x84, 0xD4 };
    for (int fan = 0; fan < static_cast<int>(machine.fans.size()); ++fan) {
        const FanDescription& description = machine.fans.at(static_cast<std::size_t>(fan));
        const QByteArray minimum = smcvalue::encode(machine.fanType, description.minimum);
        const QByteArray maximum = smcvalue::encode(machine.fanType, description.maximum);
        addKey(keys, fanKey(fan, "Ac"), type, attributes.actual, minimum);
        addKey(keys, fanKey(fan, "Mn"), type, attributes.limits, minimum);
        addKey(keys, fanKey(fan, "Mx"), type, attributes.limits, maximum);
        addKey(keys, fanKey(fan, "Tg"), type, attributes.target, minimum);
        if (machine.fanNames) {
            addKey(keys, fanKey(fan, "ID"), "{fds", 0x80, fanIdentity(description.name, fan));
        }
        if (!machine.fanMask) {
            addKey(keys, fanKey(fan, "Md"), "ui8 ", 0xD0, QByteArray(1, '\0'));
        }
    }
    addKey(keys, "FNum", "ui8 ", 0x80,
           smcvalue::encode("ui8 ", static_cast<double>(machine.fans.size())));
    if (machine.fanMask) {
        addKey(keys, "FS! ", "ui16", 0xC0, QByteArray(2, '\0'));
    }
}

HeatSource parseHeatSource(const QJsonObject& object)
{
    HeatSource source;
    source.name = object[QLatin1String("name")].toString();
    source.capacity = object[QLatin1String("capacity")].toDouble();
    source.idlePower = object[QLatin1String("idle")].toDouble();
    source.fullPower = object[QLatin1String("full")].toDouble();
    source.loss = object[QLatin1String("loss")].toDouble();
    source.airLoss = object[QLatin1String("air")].toDouble();
    const QJsonArray fans = object[QLatin1String("fans")].toArray();
    for (const QJsonValue& fan : fans) {
        source.fans.push_back(fan.toInt(-1));
    }
    source.neighbour = object[QLatin1String("near")].toString();
    source.neighbourShare = object[QLatin1String("share")].toDouble();
    const QJsonObject keys = object[QLatin1String("keys")].toObject();
    for (auto key = keys.begin(); key != keys.end(); ++key) {
        source.sensors.push_back({ key.key().toLatin1(), key.value().toDouble() });
    }
    return source;
}

FanDescription parseFan(const QJsonObject& object)
{
    FanDescription fan;
    fan.name = object[QLatin1String("name")].toString();
    fan.minimum = object[QLatin1String("min")].toDouble();
    fan.maximum = object[QLatin1String("max")].toDouble();
    fan.timeConstant = object[QLatin1String("inertia")].toDouble();
    fan.sources = texts(object[QLatin1String("follows")]);
    if (object.contains(QLatin1String("parksBelow"))) {
        fan.parksBelow = object[QLatin1String("parksBelow")].toDouble();
    }
    const QJsonArray curve = object[QLatin1String("curve")].toArray();
    for (const QJsonValue& point : curve) {
        const QJsonArray pair = point.toArray();
        fan.curve.push_back({ pair.at(0).toDouble(), pair.at(1).toDouble() });
    }
    return fan;
}

GpuDescription parseGpu(const QJsonObject& object)
{
    GpuDescription gpu;
    gpu.name = object[QLatin1String("name")].toString();
    gpu.address = object[QLatin1String("address")].toString();
    gpu.vendor = object[QLatin1String("vendor")].toString();
    gpu.device = object[QLatin1String("device")].toString();
    gpu.source = object[QLatin1String("heat")].toString();
    gpu.offset = object[QLatin1String("offset")].toDouble();
    return gpu;
}

ProcessorDescription parseProcessor(const QJsonObject& object)
{
    const auto number = [&object](const char* name) { return object[QLatin1String(name)].toInt(); };
    ProcessorDescription processor;
    processor.name = object[QLatin1String("name")].toString();
    processor.packages = number("packages");
    processor.cores = number("cores");
    processor.threads = number("threads");
    processor.megahertz = number("megahertz");
    processor.family = number("family");
    processor.model = number("model");
    processor.stepping = number("stepping");
    processor.cacheKilobytes = number("cacheKilobytes");
    return processor;
}

void parseController(MachineDescription& machine, const QJsonObject& controller)
{
    machine.fanType = controller[QLatin1String("fanType")].toString().toLatin1();
    machine.fanMask = controller[QLatin1String("fanControl")].toString() == QLatin1String("mask");
    machine.fanNames = controller[QLatin1String("fanNames")].toBool(true);
    machine.hasDriver = controller[QLatin1String("driver")].toBool();
    machine.temperatureType = controller[QLatin1String("temperatureType")].toString().toLatin1();
    const QStringList inverted = texts(controller[QLatin1String("inverted")]);
    for (const QString& key : inverted) {
        machine.invertedKeys.append(key.toLatin1());
    }
    KeyMap keys;
    const QStringList lists = texts(controller[QLatin1String("include")]);
    for (const QString& list : lists) {
        const QString path = machineFolder + QStringLiteral("keys/%1.json").arg(list);
        addKeyList(keys, readObject(path)[QLatin1String("keys")]);
    }
    addFanKeys(keys, machine);
    for (const HeatSource& source : machine.heatSources) {
        for (const HeatSource::SensorKey& sensor : source.sensors) {
            addKey(keys, sensor.key, machine.temperatureType.constData(), 0xC0,
                   smcvalue::encode(machine.temperatureType, machine.ambient));
        }
    }
    addKeyList(keys, controller[QLatin1String("keys")]);
    addKey(keys, "#KEY", "ui32", 0x80,
           smcvalue::encode("ui32", static_cast<double>(keys.size() + 1)));
    for (const auto& [name, entry] : keys) {
        machine.keys.push_back(entry);
    }
}

MachineDescription parse(const QJsonObject& object)
{
    MachineDescription machine;
    machine.name = object[QLatin1String("name")].toString();
    const QJsonObject dmi = object[QLatin1String("dmi")].toObject();
    for (auto text = dmi.begin(); text != dmi.end(); ++text) {
        machine.dmi.insert(text.key(), text.value().toString());
    }
    machine.processor = parseProcessor(object[QLatin1String("processor")].toObject());
    machine.portable = object[QLatin1String("portable")].toBool();
    machine.ambient = object[QLatin1String("ambient")].toDouble(machine.ambient);
    const QJsonArray sources = object[QLatin1String("heat")].toArray();
    for (const QJsonValue& source : sources) {
        machine.heatSources.push_back(parseHeatSource(source.toObject()));
    }
    const QJsonArray fans = object[QLatin1String("fans")].toArray();
    for (const QJsonValue& fan : fans) {
        machine.fans.push_back(parseFan(fan.toObject()));
    }
    const QJsonArray drives = object[QLatin1String("drives")].toArray();
    for (const QJsonValue& drive : drives) {
        machine.drives.push_back(DriveDescription::parse(drive.toObject()));
    }
    const QJsonArray gpus = object[QLatin1String("gpus")].toArray();
    for (const QJsonValue& gpu : gpus) {
        machine.gpus.push_back(parseGpu(gpu.toObject()));
    }
    if (object.contains(QLatin1String("controller"))) {
        parseController(machine, object[QLatin1String("controller")].toObject());
    }
    return machine;
}

} // namespace

QByteArray fanKey(int fan, const char* suffix)
{
    return QByteArray("F") + QByteArray::number(fan) + suffix;
}

QStringList MachineDescription::names()
{
    registerMachineFiles();
    QStringList result;
    const QStringList files
        = QDir(machineFolder).entryList({ QStringLiteral("*.json") }, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        result.append(file.chopped(5));
    }
    return result;
}

std::optional<MachineDescription> MachineDescription::load(const QString& nameOrPath,
                                                           QString& error)
{
    registerMachineFiles();
    const bool isPath = nameOrPath.endsWith(QLatin1String(".json"));
    if (!isPath && !names().contains(nameOrPath)) {
        error = QStringLiteral("There is no machine \"%1\"").arg(nameOrPath);
        return std::nullopt;
    }
    try {
        MachineDescription machine = parse(
            readObject(isPath ? nameOrPath : machineFolder + nameOrPath + QStringLiteral(".json")));
        const QStringList problems = machine.problems();
        if (!problems.isEmpty()) {
            error = QStringLiteral("%1: %2").arg(nameOrPath, problems.join(QStringLiteral("; ")));
            return std::nullopt;
        }
        return machine;
    } catch (const DescriptionError& failure) {
        error = QString::fromStdString(failure.what());
        return std::nullopt;
    }
}

} // namespace macsim
