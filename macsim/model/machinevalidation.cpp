#include <algorithm>

#include <QRegularExpression>

#include "macsim/model/machinedescription.h"
#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

constexpr int smallestTable = 250; // keys that a real controller has at the least
constexpr int longestValue = 32; // bytes
constexpr int mostFans = 10; // a fan's number is one digit of its keys

class Validator {
public:
    explicit Validator(const MachineDescription& machine)
        : m_machine(machine)
    {
    }

    QStringList run()
    {
        require(!m_machine.name.isEmpty(), QStringLiteral("no name"));
        for (const char* file : { "sys_vendor", "product_name" }) {
            require(!m_machine.dmi.value(QLatin1String(file)).isEmpty(),
                    QStringLiteral("no %1").arg(QLatin1String(file)));
        }
        checkProcessor();
        checkHeat();
        checkDrives();
        checkGpus();
        if (m_machine.hasController()) {
            checkKeys();
            checkFans();
        } else {
            require(m_machine.fans.empty(), QStringLiteral("fans without a controller"));
        }
        return m_problems;
    }

private:
    const MachineDescription& m_machine;
    QStringList m_problems;

    void require(bool condition, const QString& problem)
    {
        if (!condition) {
            m_problems.append(problem);
        }
    }

    [[nodiscard]] bool hasSource(const QString& name) const
    {
        return std::any_of(m_machine.heatSources.begin(), m_machine.heatSources.end(),
                           [&name](const HeatSource& source) { return source.name == name; });
    }

    void checkProcessor()
    {
        const ProcessorDescription& processor = m_machine.processor;
        require(!processor.name.isEmpty() && processor.packages > 0 && processor.cores > 0
                    && processor.threads >= processor.cores
                    && processor.threads % processor.cores == 0 && processor.megahertz > 0,
                QStringLiteral("the processor is not described"));
    }

    void checkHeat()
    {
        const auto fanCount = static_cast<int>(m_machine.fans.size());
        for (const HeatSource& source : m_machine.heatSources) {
            require(source.capacity > 0.0 && source.loss > 0.0 && source.airLoss >= 0.0
                        && source.idlePower >= 0.0 && source.fullPower >= source.idlePower,
                    QStringLiteral("heat source %1 has impossible numbers").arg(source.name));
            require(std::all_of(source.fans.begin(), source.fans.end(),
                                [fanCount](int fan) { return fan >= 0 && fan < fanCount; }),
                    QStringLiteral("heat source %1 has a fan that isn't there").arg(source.name));
            require(source.neighbour.isEmpty()
                        || (hasSource(source.neighbour) && source.neighbour != source.name
                            && source.neighbourShare > 0.0 && source.neighbourShare <= 1.0),
                    QStringLiteral("heat source %1 has no such neighbour").arg(source.name));
        }
    }

    void checkDrives()
    {
        QStringList names;
        for (const DriveDescription& drive : m_machine.drives) {
            const auto prefix
                = drive.bus == DriveBus::Nvme ? QLatin1String("nvme") : QLatin1String("sd");
            require(drive.isBusKnown && drive.name.startsWith(prefix)
                        && drive.name.size() > prefix.size() && !names.contains(drive.name),
                    QStringLiteral("drive %1 has no usable name or bus").arg(drive.name));
            require(drive.model.size() <= 40 && drive.serial.size() <= 20
                        && drive.firmware.size() <= 8,
                    QStringLiteral("drive %1 tells too much").arg(drive.name));
            require(hasSource(drive.source),
                    QStringLiteral("drive %1 is no heat source").arg(drive.name));
            require(drive.rotation >= 0 && drive.rotation <= 0xFFFF && drive.attribute >= 0
                        && drive.attribute <= 0xFF,
                    QStringLiteral("drive %1 has impossible numbers").arg(drive.name));
            require(!drive.encrypted || !drive.mounts.isEmpty(),
                    QStringLiteral("drive %1 has nothing to encrypt").arg(drive.name));
            names.append(drive.name);
        }
    }

    void checkGpus()
    {
        static const QRegularExpression address(
            QStringLiteral("^[0-9a-f]{4}:[0-9a-f]{2}:[0-9a-f]{2}\\.[0-7]$"));
        static const QRegularExpression number(QStringLiteral("^[0-9a-f]{4}$"));
        QStringList addresses;
        for (const GpuDescription& gpu : m_machine.gpus) {
            require(!gpu.name.isEmpty() && address.match(gpu.address).hasMatch()
                        && number.match(gpu.vendor).hasMatch()
                        && number.match(gpu.device).hasMatch(),
                    QStringLiteral("GPU %1 is not described").arg(gpu.name));
            require(hasSource(gpu.source),
                    QStringLiteral("GPU %1 is no heat source").arg(gpu.name));
            require(!addresses.contains(gpu.address),
                    QStringLiteral("GPU %1 has another one's place").arg(gpu.name));
            addresses.append(gpu.address);
        }
    }

    void checkKeys()
    {
        const auto count = static_cast<int>(m_machine.keys.size());
        require(count >= smallestTable, QStringLiteral("only %1 keys").arg(count));
        bool below = false;
        bool above = false;
        for (std::size_t index = 0; index < m_machine.keys.size(); ++index) {
            const KeyEntry& entry = m_machine.keys[index];
            require(entry.name.size() == 4 && entry.type.size() == 4 && !entry.value.isEmpty()
                        && entry.value.size() <= longestValue,
                    QStringLiteral("key %1 is malformed").arg(smcvalue::printable(entry.name)));
            require(index == 0 || m_machine.keys[index - 1].name < entry.name,
                    QStringLiteral("key %1 is out of order").arg(smcvalue::printable(entry.name)));
            below = below || entry.name < "T";
            above = above || !(entry.name < "U");
        }
        require(below && above, QStringLiteral("no keys on both sides of the temperatures"));
        require(number("#KEY") == count, QStringLiteral("#KEY isn't the table's size"));
        require(m_machine.temperatureType == "sp78" || m_machine.temperatureType == "flt ",
                QStringLiteral("no usable type of temperatures"));
    }

    void checkFans()
    {
        const auto count = static_cast<int>(m_machine.fans.size());
        require(count <= mostFans, QStringLiteral("too many fans"));
        require(number("FNum") == count, QStringLiteral("FNum isn't the number of fans"));
        require(m_machine.fanType == "fpe2" || m_machine.fanType == "flt ",
                QStringLiteral("no usable type of fan speeds"));
        for (int index = 0; index < count; ++index) {
            checkFan(m_machine.fans.at(static_cast<std::size_t>(index)), index);
        }
    }

    void checkFan(const FanDescription& fan, int index)
    {
        require(!fan.name.isEmpty() && fan.name.size() <= 12,
                QStringLiteral("fan %1 has no usable name").arg(index));
        require(fan.minimum >= 0.0 && fan.maximum > fan.minimum && fan.timeConstant > 0.0,
                QStringLiteral("fan %1 has impossible numbers").arg(index));
        require(number(fanKey(index, "Mn")) == fan.minimum
                    && number(fanKey(index, "Mx")) == fan.maximum,
                QStringLiteral("fan %1's limits don't fit their keys").arg(index));
        require(!fan.sources.isEmpty()
                    && std::all_of(fan.sources.begin(), fan.sources.end(),
                                   [this](const QString& name) { return hasSource(name); }),
                QStringLiteral("fan %1 follows no heat source").arg(index));
        const bool ascending
            = std::adjacent_find(fan.curve.begin(), fan.curve.end(),
                                 [](const CurvePoint& left, const CurvePoint& right) {
                                     return left.celsius >= right.celsius
                                         || left.share > right.share;
                                 })
            == fan.curve.end();
        require(fan.curve.size() >= 2 && ascending && fan.curve.front().share >= 0.0
                    && fan.curve.back().share <= 1.0,
                QStringLiteral("fan %1 has no usable curve").arg(index));
    }

    [[nodiscard]] double number(const QByteArray& name) const
    {
        const auto found
            = std::find_if(m_machine.keys.begin(), m_machine.keys.end(),
                           [&name](const KeyEntry& entry) { return entry.name == name; });
        return found == m_machine.keys.end()
            ? -1.0
            : smcvalue::decode(found->type, found->value).value_or(-1.0);
    }
};

} // namespace

QStringList MachineDescription::problems() const { return Validator(*this).run(); }

} // namespace macsim
