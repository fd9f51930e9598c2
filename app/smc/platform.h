#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <QObject>

namespace SMC {

// What the controller tells about a key.
struct KeyInfo {
    std::uint8_t length = 0; // bytes of the value; 0: no such key
    std::array<char, 4> type = {}; // such as "sp78"; not terminated
    std::uint8_t attributes = 0; // carried, never interpreted
};

// A way to the controller. It moves opaque bytes of four-character keys and
// knows nothing of fans or temperatures. Not thread-safe: the service lets one
// caller in at a time. Failures are false results with a log line of the
// transport's own; nothing is thrown.
class Platform : public QObject {
    Q_OBJECT

public:
    // Acquires the transport. After a false result the object can only be
    // destroyed.
    [[nodiscard]] virtual bool open() = 0;
    // Releases what open() acquired; called once, at the end of the program.
    virtual void close() = 0;
    // The name of the entry of the sorted key table at index.
    [[nodiscard]] virtual bool getKeyByIndex(std::uint32_t index, std::string& key) = 0;
    [[nodiscard]] virtual bool getKeyInfo(const char* key, KeyInfo& info) = 0;
    // Fills buffer with length bytes of the key's value. The driver transport
    // with memory-mapped access may fill up to 32 bytes whatever the length is:
    // buffer must have that room.
    [[nodiscard]] virtual bool readKey(const char* key, void* buffer, std::uint8_t length) = 0;
    // Sends length bytes, at most 32. The driver transports give true on
    // success; the port transport gives false on success.
    [[nodiscard]] virtual bool writeKey(const char* key, const void* data, std::uint8_t length) = 0;

    // Fans that are under manual control now are to stay so after close(), against
    // what else would give them back.
    virtual void leaveFans() { }

Q_SIGNALS:
    void error_unexpected_disconnect();

protected:
    Platform() = default;
};

} // namespace SMC
