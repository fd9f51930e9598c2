#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

// What the program and the controller's driver say to each other: the control codes
// and records of the two drivers for Windows, and the packets that carry them over a
// local socket on Linux. docs/smcd-protocol.md describes all of it. Free of Qt and of
// the system.
namespace smcd::protocol {

using Bytes = std::span<const std::uint8_t>;
using Packet = std::vector<std::uint8_t>;
using Key = std::array<char, 4>;

// Before it stands what BRISORA_SYSROOT holds.
inline constexpr std::string_view socketPath = "/run/brisora/smc.sock";

inline constexpr std::uint32_t version = 1;
inline constexpr std::size_t longestValue = 32; // bytes of a key
inline constexpr std::size_t requestHeader = 8; // code and room
inline constexpr std::size_t replyHeader = 4; // error number
// Of the bytes after the header. No record needs that many.
inline constexpr std::size_t longestRequest = 64;
inline constexpr std::size_t longestReply = 64;
inline constexpr std::size_t longestRequestPacket = requestHeader + longestRequest;
inline constexpr std::size_t longestReplyPacket = replyHeader + longestReply;

namespace code {

inline constexpr std::uint32_t halRead = 0x9C402454;
inline constexpr std::uint32_t halWrite = 0x9C402458;
inline constexpr std::uint32_t halKeyByIndex = 0x9C40245C;
inline constexpr std::uint32_t halKeyInfo = 0x9C402460;

inline constexpr std::uint32_t mmioRead = 0x220000;
inline constexpr std::uint32_t mmioWrite = 0x220004;
inline constexpr std::uint32_t mmioKeyByIndex = 0x220008;
inline constexpr std::uint32_t mmioKeyInfo = 0x22000C;

// The socket's own. The first one is a connection's first request: it is answered by
// the version, or by the error that opening the device fails with.
inline constexpr std::uint32_t open = 0x42530000;
// The fans that this client has forced stay so when it leaves.
inline constexpr std::uint32_t keepFans = 0x42530004;

} // namespace code

enum class Family { Hal, Mmio };
enum class Operation { Open, KeepFans, Read, Write, KeyByIndex, KeyInfo };

// What a client asks for.
struct Call {
    Operation operation = Operation::Open;
    Family family = Family::Hal; // of an operation on keys
    std::size_t room = 0; // bytes that the reply may have, at most longestReply
    Key key {}; // of all operations on keys but the one by index
    std::uint32_t index = 0; // of a key in the controller's table
    std::array<std::uint8_t, longestValue> value {}; // of a write
    std::uint8_t length = 0; // of it, 1 to 32

    [[nodiscard]] Bytes written() const { return Bytes(value).first(length); }
};

struct KeyInfo {
    std::uint8_t length = 0; // bytes; 0: there is no such key
    std::array<char, 4> type {};
    std::uint8_t attributes = 0;
};

struct Reply {
    std::uint32_t error = 0; // the system's number; 0 for success
    Packet data; // empty after an error
};

[[nodiscard]] Packet requestPacket(std::uint32_t code, std::size_t room, Bytes data);
// Checks a packet from a client: that its code is known, its record has the right
// length, its key is four printable characters, and its room takes the answer. Gives
// 0 and fills call, or the error number to answer.
[[nodiscard]] std::uint32_t parseRequest(Bytes packet, Call& call);

[[nodiscard]] Packet replyPacket(const Reply& reply);
// Nothing for a packet that is none, or longer than the room that was asked for.
[[nodiscard]] std::optional<Reply> parseReply(Bytes packet, std::size_t room);

// The records of the answers.
[[nodiscard]] Packet versionRecord();
// A key that doesn't exist has the length 0, and no information from the MMIO driver,
// whose callers take any for that of a key.
[[nodiscard]] Reply infoReply(Family family, const KeyInfo& info);
[[nodiscard]] Packet nameRecord(Family family, const Key& key);
// As much of the value as the call has room for.
[[nodiscard]] Packet valueRecord(const Call& call, Bytes value);
[[nodiscard]] Packet writtenRecord(Family family);

} // namespace smcd::protocol
