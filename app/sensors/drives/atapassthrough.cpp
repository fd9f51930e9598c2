#include "app/sensors/drives/atapassthrough.h"

#include <algorithm>

namespace AtaPassThrough {

namespace {

// Long enough for most drives that are starting, and shorter than a program that
// ends waits for its tasks.
constexpr std::uint32_t timeout = 7000; // milliseconds

constexpr std::uint8_t operation = 0x85;
// The second byte: how the data move.
constexpr std::uint8_t nonData = 3 << 1;
constexpr std::uint8_t programmedInput = 4 << 1;
// The third byte: what the sector count says, and whether the registers come back.
constexpr std::uint8_t readsBlocksOfSectorCount = 0x0E;
constexpr std::uint8_t returnsRegisters = 0x20;

constexpr std::uint8_t good = 0;
constexpr std::uint8_t checkCondition = 2;
// The driver's note that there are sense bytes is no error.
constexpr std::uint16_t hasSense = 0x08;

// Sense bytes.
constexpr std::uint8_t formatMask = 0x7F;
constexpr std::uint8_t fixedFormat = 0x70;
constexpr std::uint8_t descriptorFormat = 0x72;
constexpr std::uint8_t recoveredError = 1; // a key: there is something to tell
constexpr std::uint8_t registersAvailable = 0x1D; // with an additional code of 0
constexpr std::uint8_t ataReturn = 0x09; // a descriptor
constexpr std::size_t ataReturnSize = 14;
// Bits of the drive's own status.
constexpr std::uint8_t ataFailure = 0x21;

ScsiCommand command(const AtaRegisters& registers, std::uint8_t protocol, std::uint8_t transfer)
{
    ScsiCommand result;
    result.bytes[0] = operation;
    result.bytes[1] = protocol;
    result.bytes[2] = transfer;
    result.bytes[4] = registers.features;
    result.bytes[6] = registers.sectorCount;
    result.bytes[8] = registers.sectorNumber;
    result.bytes[10] = registers.cylinderLow;
    result.bytes[12] = registers.cylinderHigh;
    result.bytes[13] = registers.driveHead;
    result.bytes[14] = registers.command;
    result.timeout = timeout;
    return result;
}

bool hasArrived(const ScsiOutcome& outcome)
{
    return outcome.error == 0 && outcome.hostStatus == 0 && (outcome.driverStatus & ~hasSense) == 0;
}

using Bytes = std::span<const std::uint8_t>;

struct Answer {
    std::uint8_t status = 0;
    std::uint8_t sectorCount = 0;
};

std::optional<Answer> fixedAnswer(Bytes sense)
{
    if (sense.size() < 14 || (sense[2] & 0x0F) != recoveredError || sense[12] != 0
        || sense[13] != registersAvailable) {
        return std::nullopt;
    }
    return Answer { sense[4], sense[6] };
}

std::optional<Answer> descriptorAnswer(Bytes sense)
{
    constexpr std::size_t firstDescriptor = 8;
    if (sense.size() < firstDescriptor || (sense[1] & 0x0F) != recoveredError || sense[2] != 0
        || sense[3] != registersAvailable) {
        return std::nullopt;
    }
    // Each descriptor tells its length without its first two bytes.
    for (std::size_t place = firstDescriptor; place + 2 <= sense.size();
         place += 2U + sense[place + 1]) {
        if (sense[place] == ataReturn && place + ataReturnSize <= sense.size()) {
            return Answer { sense[place + 13], sense[place + 5] };
        }
    }
    return std::nullopt;
}

std::optional<Answer> answerIn(Bytes sense)
{
    if (sense.empty()) {
        return std::nullopt;
    }
    switch (sense[0] & formatMask) {
    case fixedFormat:
        return fixedAnswer(sense);
    case descriptorFormat:
        return descriptorAnswer(sense);
    default:
        return std::nullopt;
    }
}

} // namespace

ScsiCommand plain(const AtaRegisters& registers) { return command(registers, nonData, 0); }

ScsiCommand asking(const AtaRegisters& registers)
{
    return command(registers, nonData, returnsRegisters);
}

ScsiCommand reading(const AtaRegisters& registers, std::span<std::uint8_t> data)
{
    ScsiCommand result = command(registers, programmedInput, readsBlocksOfSectorCount);
    result.data = data;
    return result;
}

bool succeeded(const ScsiOutcome& outcome) { return hasArrived(outcome) && outcome.status == good; }

std::optional<std::uint8_t> returnedSectorCount(const ScsiOutcome& outcome)
{
    if (!hasArrived(outcome) || outcome.status != checkCondition) {
        return std::nullopt;
    }
    const auto answer
        = answerIn(Bytes(outcome.sense).first(std::min(outcome.senseSize, outcome.sense.size())));
    return answer && (answer->status & ataFailure) == 0 ? std::optional(answer->sectorCount)
                                                        : std::nullopt;
}

} // namespace AtaPassThrough
