#include "smcd/protocol/records.h"

#include <algorithm>
#include <cerrno>

namespace smcd::protocol {

namespace {

constexpr std::size_t numberSize = 4;
constexpr std::size_t keySize = 4;
constexpr std::size_t terminatedKeySize = keySize + 1;

constexpr std::size_t halInfoSize = 12;
constexpr std::size_t mmioInfoSize = 6;
// Behind the key of the HAL driver's reply to an info request, and of the other's.
constexpr std::size_t halAttributesPlace = 8;
constexpr std::size_t mmioAttributesPlace = 5;

constexpr std::size_t mmioLengthPlace = keySize;
constexpr std::size_t mmioValuePlace = keySize + 1;
constexpr std::size_t mmioWriteSize = mmioValuePlace + longestValue;

struct Form {
    std::uint32_t code;
    Operation operation;
    Family family;
    std::size_t shortest; // bytes of the request
    std::size_t longest;
    std::size_t leastRoom;
};

constexpr Form forms[] {
    { code::open, Operation::Open, Family::Hal, 0, 0, numberSize },
    { code::keepFans, Operation::KeepFans, Family::Hal, 0, 0, 0 },
    { code::halRead, Operation::Read, Family::Hal, terminatedKeySize, terminatedKeySize, 0 },
    { code::halWrite, Operation::Write, Family::Hal, terminatedKeySize + 1,
      terminatedKeySize + longestValue, 0 },
    { code::halKeyByIndex, Operation::KeyByIndex, Family::Hal, numberSize, numberSize,
      terminatedKeySize },
    { code::halKeyInfo, Operation::KeyInfo, Family::Hal, terminatedKeySize, terminatedKeySize,
      halInfoSize },
    { code::mmioRead, Operation::Read, Family::Mmio, keySize, keySize, 0 },
    { code::mmioWrite, Operation::Write, Family::Mmio, mmioWriteSize, mmioWriteSize, 1 },
    { code::mmioKeyByIndex, Operation::KeyByIndex, Family::Mmio, numberSize, numberSize, keySize },
    { code::mmioKeyInfo, Operation::KeyInfo, Family::Mmio, keySize, keySize, mmioInfoSize },
};

std::uint32_t numberAt(Bytes bytes, std::size_t place)
{
    std::uint32_t number = 0;
    for (std::size_t byte = numberSize; byte > 0; --byte) {
        number = number << 8 | bytes[place + byte - 1];
    }
    return number;
}

void appendNumber(Packet& packet, std::uint32_t number)
{
    for (std::size_t byte = 0; byte < numberSize; ++byte) {
        packet.push_back(static_cast<std::uint8_t>(number >> (8 * byte) & 0xFF));
    }
}

bool isPrintable(std::uint8_t character) { return character >= 0x20 && character <= 0x7E; }

// The key that the record starts with, whose terminator is the HAL driver's habit.
bool takeKey(Bytes record, Call& call)
{
    const Bytes key = record.first(keySize);
    std::copy(key.begin(), key.end(), call.key.begin());
    return std::all_of(key.begin(), key.end(), isPrintable)
        && (call.family == Family::Mmio || record[keySize] == 0);
}

bool takeValue(Bytes record, Call& call)
{
    const bool isHal = call.family == Family::Hal;
    const std::size_t length = isHal ? record.size() - terminatedKeySize : record[mmioLengthPlace];
    if (length == 0 || length > longestValue) {
        return false;
    }
    const Bytes value = record.subspan(isHal ? terminatedKeySize : mmioValuePlace, length);
    std::copy(value.begin(), value.end(), call.value.begin());
    call.length = static_cast<std::uint8_t>(length);
    return true;
}

bool takeRecord(Bytes record, Call& call)
{
    switch (call.operation) {
    case Operation::Open:
    case Operation::KeepFans:
        return true;
    case Operation::KeyByIndex:
        call.index = numberAt(record, 0);
        return true;
    case Operation::Read:
    case Operation::KeyInfo:
        return takeKey(record, call);
    case Operation::Write:
        return takeKey(record, call) && takeValue(record, call);
    }
    return false;
}

} // namespace

Packet requestPacket(std::uint32_t code, std::size_t room, Bytes data)
{
    Packet packet;
    packet.reserve(requestHeader + data.size());
    appendNumber(packet, code);
    appendNumber(packet, static_cast<std::uint32_t>(std::min(room, longestReply)));
    packet.insert(packet.end(), data.begin(), data.end());
    return packet;
}

std::uint32_t parseRequest(Bytes packet, Call& call)
{
    if (packet.size() < requestHeader) {
        return EINVAL;
    }
    if (packet.size() > longestRequestPacket) {
        return EMSGSIZE;
    }
    const std::uint32_t wanted = numberAt(packet, 0);
    const auto* const form
        = std::find_if(std::begin(forms), std::end(forms),
                       [wanted](const Form& each) { return each.code == wanted; });
    if (form == std::end(forms)) {
        return ENOTTY;
    }
    const Bytes record = packet.subspan(requestHeader);
    call = {};
    call.operation = form->operation;
    call.family = form->family;
    call.room = std::min<std::size_t>(numberAt(packet, numberSize), longestReply);
    const bool isWhole = record.size() >= form->shortest && record.size() <= form->longest
        && call.room >= form->leastRoom;
    return isWhole && takeRecord(record, call) ? 0 : EINVAL;
}

Packet replyPacket(const Reply& reply)
{
    Packet packet;
    packet.reserve(replyHeader + reply.data.size());
    appendNumber(packet, reply.error);
    packet.insert(packet.end(), reply.data.begin(), reply.data.end());
    return packet;
}

std::optional<Reply> parseReply(Bytes packet, std::size_t room)
{
    if (packet.size() < replyHeader || packet.size() - replyHeader > room) {
        return std::nullopt;
    }
    const Bytes data = packet.subspan(replyHeader);
    return Reply { numberAt(packet, 0), { data.begin(), data.end() } };
}

Packet versionRecord()
{
    Packet record;
    appendNumber(record, version);
    return record;
}

Reply infoReply(Family family, const KeyInfo& info)
{
    if (family == Family::Mmio && info.length == 0) {
        return { ENOENT, {} };
    }
    Packet record(family == Family::Hal ? halInfoSize : mmioInfoSize, 0);
    const std::size_t attributesPlace
        = family == Family::Hal ? halAttributesPlace : mmioAttributesPlace;
    record[0] = info.length;
    std::copy(info.type.begin(), info.type.end(),
              record.begin() + static_cast<std::ptrdiff_t>(attributesPlace - info.type.size()));
    record[attributesPlace] = info.attributes;
    return { 0, record };
}

Packet nameRecord(Family family, const Key& key)
{
    Packet record(key.begin(), key.end());
    if (family == Family::Hal) {
        record.push_back(0);
    }
    return record;
}

Packet valueRecord(const Call& call, Bytes value)
{
    const Bytes part = value.first(std::min(value.size(), call.room));
    return { part.begin(), part.end() };
}

Packet writtenRecord(Family family) { return Packet(family == Family::Mmio ? 1 : 0, 0); }

} // namespace smcd::protocol
