#include "app/sensors/drives/driveidentity.h"

#include <cstddef>

#include <QByteArray>

namespace {

// Places in the data: bytes for texts, words for numbers.
struct TextField {
    std::size_t place;
    std::size_t size;
};
constexpr TextField serialField { 20, 20 };
constexpr TextField firmwareField { 46, 8 };
constexpr TextField modelField { 54, 40 };
constexpr std::size_t enabledFeatures = 85;
constexpr std::size_t featuresValidity = 87;
constexpr std::size_t rotationRate = 217;

constexpr std::uint16_t smartBit = 0x0001;
constexpr std::uint16_t validityMask = 0xC000;
constexpr std::uint16_t validityMark = 0x4000;
constexpr std::uint16_t doesNotRotate = 1;

std::uint8_t byteAt(std::span<const std::uint8_t> data, std::size_t place)
{
    return place < data.size() ? data[place] : std::uint8_t { 0 };
}

std::uint16_t wordAt(std::span<const std::uint8_t> data, std::size_t word)
{
    return static_cast<std::uint16_t>(byteAt(data, 2 * word) | (byteAt(data, 2 * word + 1) << 8));
}

// The two bytes of each word stand the other way round.
QString textAt(std::span<const std::uint8_t> data, const TextField& field)
{
    QByteArray text;
    for (std::size_t index = 0; index < field.size; ++index) {
        const std::uint8_t byte = byteAt(data, (field.place + index) ^ 1U);
        if (byte == 0) {
            break;
        }
        text.append(static_cast<char>(byte));
    }
    return QString::fromLocal8Bit(text.trimmed()).trimmed();
}

} // namespace

DriveIdentity DriveIdentity::parse(std::span<const std::uint8_t> identifyData)
{
    DriveIdentity identity;
    identity.model = textAt(identifyData, modelField);
    identity.serial = textAt(identifyData, serialField);
    identity.firmwareRevision = textAt(identifyData, firmwareField);
    if (identity.model.isEmpty() && !identity.serial.isEmpty()) {
        // The number is the same for all of them: required. Their serial numbers keep
        // the keys apart, which are stored.
        identity.model = QStringLiteral("Drive %1").arg(0);
    }
    identity.isSolidState = wordAt(identifyData, rotationRate) == doesNotRotate;
    identity.isSmartEnabled
        = (wordAt(identifyData, featuresValidity) & validityMask) == validityMark
        && (wordAt(identifyData, enabledFeatures) & smartBit) != 0;
    return identity;
}

QString DriveIdentity::key() const { return QStringLiteral("%1 (%2)").arg(model, serial); }

SensorType DriveIdentity::type() const { return isSolidState ? SensorType::ssd : SensorType::hdd; }
