#pragma once

#include <array>
#include <cstddef>

#include <QJsonObject>

namespace macsim {

// What a caller of the byte protocol can do wrong.
enum class ProtocolError {
    ByteOutsideExchange, // a data byte that no command asked for
    ByteWhileBusy, // a data byte before the last one was taken
    WrongLength, // a length that isn't the key's
    ReadNotReady, // the data port read without a byte being ready
    WriteToReadOnly,
    CommandInExchange, // a command before the last exchange was complete
    OtherPort, // a port that isn't the controller's
    UnknownCommand,
};

constexpr std::size_t protocolErrorCount = 8;

// What the callers did, in numbers.
class ProtocolCounters {
public:
    enum class Operation { Read, Write, Info, Index };

    void count(ProtocolError error);
    // Refused operations count too, and those that failed for another reason.
    void count(Operation operation);

    [[nodiscard]] quint64 errors(ProtocolError error) const;
    [[nodiscard]] quint64 allErrors() const;
    [[nodiscard]] quint64 operations(Operation operation) const;

    // { "total": n, "byteOutsideExchange": n, ... }
    [[nodiscard]] QJsonObject errorsAsJson() const;
    // { "read": n, "write": n, "info": n, "index": n }
    [[nodiscard]] QJsonObject operationsAsJson() const;

private:
    std::array<quint64, protocolErrorCount> m_errors {};
    std::array<quint64, 4> m_operations {};
};

} // namespace macsim
