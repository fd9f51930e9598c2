#include "app/sysinfo/machinefiles.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <utility>

#include <QByteArrayList>
#include <QtEndian>

namespace {

using Field = std::pair<QByteArray, QByteArray>;

// A line "name : value" of /proc/cpuinfo.
Field fieldOf(const QByteArray& line)
{
    const int colon = line.indexOf(':');
    if (colon < 0) {
        return {};
    }
    return { line.left(colon).trimmed(), line.mid(colon + 1).trimmed() };
}

std::uint8_t limited(std::size_t count)
{
    constexpr std::size_t most = std::numeric_limits<std::uint8_t>::max();
    return static_cast<std::uint8_t>(std::min(count, most));
}

// "0x8086" and a line's end as "8086".
QByteArray withoutPrefix(const QByteArray& number)
{
    const QByteArray digits = number.trimmed().toLower();
    return digits.startsWith("0x") ? digits.mid(2) : digits;
}

// The name in brackets at the end, which is the one on the box, or the whole.
QString marketName(const QString& name)
{
    const int bracket = name.lastIndexOf(QLatin1Char('['));
    if (bracket < 0 || !name.endsWith(QLatin1Char(']'))) {
        return name;
    }
    const QString inBrackets = name.mid(bracket + 1, name.size() - bracket - 2).trimmed();
    return inBrackets.isEmpty() ? name : inBrackets;
}

// Names of devices leave their makers out, and people know them by both.
QString withMaker(const QByteArray& vendorDigits, const QString& name)
{
    constexpr std::array<std::pair<const char*, const char*>, 3> makers { {
        { "1002", "AMD" },
        { "10de", "NVIDIA" },
        { "8086", "Intel" },
    } };
    for (const auto& [digits, maker] : makers) {
        const QString text = QString::fromLatin1(maker);
        if (vendorDigits == digits && !name.contains(text)) {
            return text + QLatin1Char(' ') + name;
        }
    }
    return name;
}

} // namespace

namespace MachineFiles {

QString processorBrand(const QByteArray& cpuInfo)
{
    const QByteArrayList lines = cpuInfo.split('\n');
    for (const QByteArray& line : lines) {
        const auto [name, value] = fieldOf(line);
        if (name == "model name") {
            return QString::fromLatin1(value);
        }
    }
    return QString();
}

std::uint8_t coreCount(const QByteArray& cpuInfo)
{
    std::set<Field> cores; // package and core within it
    std::size_t coresPerPackage = 0;
    std::size_t processors = 0;
    QByteArray package;
    const QByteArrayList lines = cpuInfo.split('\n');
    for (const QByteArray& line : lines) {
        const auto [name, value] = fieldOf(line);
        if (name == "processor") {
            ++processors;
        } else if (name == "physical id") {
            package = value;
        } else if (name == "core id" && !package.isEmpty()) {
            cores.emplace(package, value);
        } else if (name == "cpu cores") {
            coresPerPackage = value.toUInt();
        }
    }
    if (!cores.empty()) {
        return limited(cores.size());
    }
    return limited(coresPerPackage > 0 ? coresPerPackage : processors);
}

QByteArray firmwareBlock(const QByteArray& entryPoint, const QByteArray& structures)
{
    if (structures.isEmpty()) {
        return QByteArray();
    }
    // Reserved, major version, minor version, DMI revision, length.
    QByteArray header(8, '\0');
    const auto copyByte = [&header, &entryPoint](int to, int from) {
        if (from < entryPoint.size()) {
            header[to] = entryPoint.at(from);
        }
    };
    if (entryPoint.startsWith("_SM3_")) {
        copyByte(1, 7);
        copyByte(2, 8);
    } else if (entryPoint.startsWith("_SM_")) {
        copyByte(1, 6);
        copyByte(2, 7);
        copyByte(3, 30);
    }
    qToLittleEndian(static_cast<quint32>(structures.size()), header.data() + 4);
    return header + structures;
}

bool isDisplayClass(const QByteArray& classText) { return classText.startsWith("0x03"); }

QString pciDeviceName(const QByteArray& vendor, const QByteArray& device, const QByteArray& pciIds)
{
    const QByteArray vendorDigits = withoutPrefix(vendor);
    const QByteArray deviceDigits = withoutPrefix(device);
    // A line "8086  Vendor" is followed by its devices: "<tab>0d26  Device".
    bool isVendor = false;
    const QByteArrayList lines = pciIds.split('\n');
    for (const QByteArray& line : lines) {
        if (line.isEmpty() || line.startsWith('#')) {
            continue;
        }
        if (!line.startsWith('\t')) {
            if (isVendor) {
                break;
            }
            isVendor = line.startsWith(vendorDigits + "  ");
        } else if (isVendor && line.startsWith('\t' + deviceDigits + "  ")) {
            const QString name = QString::fromUtf8(line.mid(deviceDigits.size() + 3)).trimmed();
            if (!name.isEmpty()) {
                return withMaker(vendorDigits, marketName(name));
            }
        }
    }
    return withMaker(vendorDigits, QString::fromLatin1(vendorDigits + ':' + deviceDigits));
}

} // namespace MachineFiles
