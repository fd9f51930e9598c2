#include "app/sysinfo/windowsrecords.h"

#include <algorithm>
#include <limits>
#include <ostream>

#include <QtEndian>

#include "app/sysinfo/machinefiles.h"

namespace WindowsRecords {

std::uint8_t coreCount(const std::vector<std::uint32_t>& relations, std::ostream& messages)
{
    constexpr std::ptrdiff_t most = std::numeric_limits<std::uint8_t>::max();
    for (const std::uint32_t relation : relations) {
        if (relation != relationCore && relation != relationPackage) {
            messages << "\nError: Unsupported LOGICAL_PROCESSOR_RELATIONSHIP value.\n";
        }
    }
    const std::ptrdiff_t cores = std::count(relations.begin(), relations.end(), relationCore);
    return static_cast<std::uint8_t>(std::min(cores, most));
}

QString processorBrand(const std::array<std::uint32_t, 12>& registers)
{
    QByteArray text;
    for (const std::uint32_t value : registers) {
        const std::uint32_t bytes = qToLittleEndian(value);
        text.append(reinterpret_cast<const char*>(&bytes), sizeof(bytes));
    }
    return QString::fromLatin1(text.constData()); // as far as its first zero
}

QString operatingSystemName(const QString& productVersion, bool isWow64)
{
    return QStringLiteral("Windows %1 %2")
        .arg(productVersion, isWow64 ? QStringLiteral("x64") : QStringLiteral("x86"));
}

QByteArray firmwareBlock(const QByteArray& managementData)
{
    constexpr int headerSize = 8;
    constexpr int lengthOffset = 4;
    const bool hasHeader = managementData.size() >= headerSize
        && qFromLittleEndian<quint32>(managementData.constData() + lengthOffset)
            == static_cast<quint32>(managementData.size() - headerSize);
    return hasHeader ? managementData : MachineFiles::firmwareBlock(QByteArray(), managementData);
}

} // namespace WindowsRecords
