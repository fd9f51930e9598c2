#include "macsim/model/protocolcounters.h"

#include <numeric>

namespace macsim {

namespace {

// In the order of the enumerations.
constexpr std::array<const char*, protocolErrorCount> errorNames {
    "byteOutsideExchange", "byteWhileBusy",     "wrongLength", "readNotReady",
    "writeToReadOnly",     "commandInExchange", "otherPort",   "unknownCommand",
};
constexpr std::array<const char*, 4> operationNames { "read", "write", "info", "index" };

} // namespace

void ProtocolCounters::count(ProtocolError error)
{
    ++m_errors.at(static_cast<std::size_t>(error));
}

void ProtocolCounters::count(Operation operation)
{
    ++m_operations.at(static_cast<std::size_t>(operation));
}

quint64 ProtocolCounters::errors(ProtocolError error) const
{
    return m_errors.at(static_cast<std::size_t>(error));
}

quint64 ProtocolCounters::allErrors() const
{
    return std::accumulate(m_errors.begin(), m_errors.end(), quint64 { 0 });
}

quint64 ProtocolCounters::operations(Operation operation) const
{
    return m_operations.at(static_cast<std::size_t>(operation));
}

QJsonObject ProtocolCounters::errorsAsJson() const
{
    QJsonObject object { { QStringLiteral("total"), static_cast<qint64>(allErrors()) } };
    for (std::size_t index = 0; index < m_errors.size(); ++index) {
        object.insert(QLatin1String(errorNames.at(index)), static_cast<qint64>(m_errors.at(index)));
    }
    return object;
}

QJsonObject ProtocolCounters::operationsAsJson() const
{
    QJsonObject object;
    for (std::size_t index = 0; index < m_operations.size(); ++index) {
        object.insert(QLatin1String(operationNames.at(index)),
                      static_cast<qint64>(m_operations.at(index)));
    }
    return object;
}

} // namespace macsim
