#include "macsim/model/portcontroller.h"

#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

constexpr int argumentSize = 4;
constexpr quint8 infoSize = 6;
constexpr quint8 indexSize = 4;
constexpr quint8 openBus = 0xFF; // what a port reads that nobody drives

QString hexByte(quint8 value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

QString hexPort(quint16 port)
{
    return QStringLiteral("%1").arg(port, 4, 16, QLatin1Char('0')).toUpper();
}

quint32 indexFrom(const QByteArray& argument)
{
    quint32 index = 0;
    for (const char byte : argument) {
        index = (index << 8) | static_cast<quint8>(byte);
    }
    return index;
}

} // namespace

PortController::PortController(SimulatedMac& mac, const Clock& clock, const Trace& trace)
    : m_mac(mac)
    , m_clock(clock)
    , m_trace(trace)
{
}

bool PortController::answers() const
{
    return m_mac.description().hasController() && !m_mac.isAsleep();
}

bool PortController::isBusy() const { return m_clock.now() < m_busyUntil; }

bool PortController::isUnderWay() const
{
    return m_state == State::Argument || m_state == State::Length || m_state == State::Sending
        || m_state == State::Receiving;
}

bool PortController::losesThisByte()
{
    ++m_bytesSeen;
    return m_faults.loseEvery != 0 && m_bytesSeen % m_faults.loseEvery == 0;
}

void PortController::countError(ProtocolError error, const QString& text)
{
    m_counters.count(error);
    m_trace.error(text);
}

void PortController::write(quint16 port, quint8 value)
{
    if (!m_mac.description().hasController() || (port != dataPort && port != commandPort)) {
        countError(ProtocolError::OtherPort,
                   QStringLiteral("byte %1 to port %2").arg(hexByte(value), hexPort(port)));
        return;
    }
    if (m_mac.isAsleep()) {
        m_trace.event(QStringLiteral("asleep %1 %2").arg(hexPort(port), hexByte(value)));
        return;
    }
    // What a silent controller is sent is lost, also once it speaks again.
    if (m_faults.mute || m_faults.busy || losesThisByte()) {
        m_lost = true;
        m_disturbed = true;
        return;
    }
    m_lost = false;
    if (port == commandPort) {
        takeCommand(value);
    } else {
        takeData(value);
    }
}

quint8 PortController::read(quint16 port)
{
    if (!m_mac.description().hasController() || (port != dataPort && port != commandPort)) {
        countError(ProtocolError::OtherPort, QStringLiteral("read of port %1").arg(hexPort(port)));
        return openBus;
    }
    if (!answers()) {
        return openBus;
    }
    return port == commandPort ? status() : giveData();
}

quint8 PortController::status() const
{
    if (m_faults.mute) {
        return 0;
    }
    if (m_faults.busy) {
        return statusBusy;
    }
    if (m_lost) {
        return 0;
    }
    const quint8 underWay = isUnderWay() || m_state == State::Empty ? statusAccepted : quint8 { 0 };
    if (isBusy()) {
        return static_cast<quint8>(underWay | statusBusy);
    }
    return m_state == State::Sending ? static_cast<quint8>(underWay | statusDataReady) : underWay;
}

void PortController::setFaults(const Faults& faults)
{
    m_faults = faults;
    m_disturbed = true;
    m_bytesSeen = 0;
}

void PortController::reset()
{
    m_state = State::Idle;
    m_lost = false;
    m_disturbed = false;
    m_busyUntil = std::chrono::microseconds { 0 };
}

void PortController::becomeBusy() { m_busyUntil = m_clock.now() + m_faults.byteTime; }

void PortController::abandon()
{
    if (!isUnderWay()) {
        return;
    }
    if (!m_disturbed && m_faults.byteTime == normalByteTime) {
        countError(ProtocolError::CommandInExchange,
                   QStringLiteral("command in the middle of an exchange"));
    }
    if (m_state == State::Sending || m_state == State::Receiving) {
        traceExchange("aborted");
    }
}

void PortController::takeCommand(quint8 command)
{
    abandon();
    m_command = command;
    m_argument.clear();
    m_payload.clear();
    m_length = 0;
    m_sent = 0;
    m_disturbed = false;
    if (command < readCommand || command > infoCommand) {
        countError(ProtocolError::UnknownCommand,
                   QStringLiteral("unknown command %1").arg(hexByte(command)));
        m_state = State::Refused;
        return;
    }
    m_state = State::Argument;
    becomeBusy();
}

void PortController::takeData(quint8 byte)
{
    if (m_state == State::Refused) {
        return; // whoever sees the status send it again does nothing wrong
    }
    if (!isUnderWay() || m_state == State::Sending) {
        countError(ProtocolError::ByteOutsideExchange,
                   QStringLiteral("byte %1 outside an exchange").arg(hexByte(byte)));
        return;
    }
    if (isBusy()) {
        countError(ProtocolError::ByteWhileBusy,
                   QStringLiteral("byte %1 while busy").arg(hexByte(byte)));
        return;
    }
    becomeBusy();
    if (m_state == State::Argument) {
        m_argument.append(static_cast<char>(byte));
        if (m_argument.size() == argumentSize) {
            m_state = State::Length;
        }
    } else if (m_state == State::Length) {
        takeLength(byte);
    } else {
        m_payload.append(static_cast<char>(byte));
        if (m_payload.size() == m_length) {
            finishWrite();
        }
    }
}

void PortController::takeLength(quint8 length)
{
    m_state = State::Refused; // until the command takes it
    switch (m_command) {
    case readCommand:
        startRead(length);
        break;
    case writeCommand:
        startWrite(length);
        break;
    case indexCommand:
        startIndex(length);
        break;
    default:
        startInfo(length);
        break;
    }
    if (m_state == State::Refused) {
        m_busyUntil = m_clock.now();
    }
}

void PortController::startRead(quint8 length)
{
    m_counters.count(ProtocolCounters::Operation::Read);
    const SimulatedMac::Reading reading = m_mac.readKey(m_argument);
    if (reading.outcome != KeyOutcome::Ok) {
        m_trace.read(m_argument, {}, outcomeText(reading.outcome));
        return;
    }
    // A caller that believes a lie about the length does nothing wrong.
    const bool misled = m_mac.keyInfo(m_argument).length == length;
    if (length != reading.value.size() && !misled) {
        countError(ProtocolError::WrongLength,
                   QStringLiteral("length %1 for %2 of %3")
                       .arg(QString::number(length), smcvalue::printable(m_argument),
                            QString::number(reading.value.size())));
    }
    send(reading.value, length);
}

void PortController::startInfo(quint8 length)
{
    m_counters.count(ProtocolCounters::Operation::Info);
    if (length != infoSize) {
        countError(ProtocolError::WrongLength, QStringLiteral("length %1 for info").arg(length));
    }
    const SimulatedMac::Info info = m_mac.keyInfo(m_argument);
    QByteArray answer(infoSize, '\0');
    if (!info.type.isEmpty()) {
        answer[0] = static_cast<char>(info.length);
        answer.replace(1, 4, info.type);
        answer[5] = static_cast<char>(info.attributes);
    }
    send(answer, length);
}

void PortController::startIndex(quint8 length)
{
    m_counters.count(ProtocolCounters::Operation::Index);
    const auto key = m_mac.keyAt(indexFrom(m_argument));
    if (!key) {
        m_trace.index(indexFrom(m_argument), {}, outcomeText(KeyOutcome::Unknown));
        return;
    }
    if (length != indexSize) {
        countError(ProtocolError::WrongLength, QStringLiteral("length %1 for index").arg(length));
    }
    send(*key, length);
}

void PortController::startWrite(quint8 length)
{
    m_counters.count(ProtocolCounters::Operation::Write);
    const KeyOutcome outcome = m_mac.checkWrite(m_argument, length);
    const QString key = smcvalue::printable(m_argument);
    if (outcome == KeyOutcome::ReadOnly) {
        countError(ProtocolError::WriteToReadOnly,
                   QStringLiteral("write to read-only %1").arg(key));
    } else if (outcome == KeyOutcome::BadLength && m_mac.keyInfo(m_argument).length != length) {
        countError(ProtocolError::WrongLength,
                   QStringLiteral("length %1 for writing %2").arg(QString::number(length), key));
    }
    if (outcome != KeyOutcome::Ok) {
        m_trace.write(m_argument, {}, outcomeText(outcome));
        return;
    }
    m_length = length;
    m_state = State::Receiving;
}

void PortController::send(const QByteArray& bytes, quint8 length)
{
    m_payload = bytes.left(length);
    m_length = static_cast<int>(m_payload.size());
    m_state = m_payload.isEmpty() ? State::Empty : State::Sending;
    if (m_payload.isEmpty()) {
        traceExchange("ok");
    }
}

quint8 PortController::giveData()
{
    if (m_faults.mute || m_faults.busy) {
        return 0;
    }
    if (m_state != State::Sending || isBusy()) {
        countError(ProtocolError::ReadNotReady, QStringLiteral("data read without a byte ready"));
        return 0;
    }
    const auto byte = static_cast<quint8>(m_payload.at(m_sent));
    ++m_sent;
    if (m_sent == m_length) {
        m_state = State::Idle;
        traceExchange("ok");
    } else {
        becomeBusy();
    }
    return byte;
}

void PortController::finishWrite()
{
    const KeyOutcome outcome = m_mac.writeKey(m_argument, m_payload);
    m_state = State::Idle;
    traceExchange(outcomeText(outcome));
}

void PortController::traceExchange(const char* result) const
{
    switch (m_command) {
    case readCommand:
        m_trace.read(m_argument, m_payload, result);
        break;
    case writeCommand:
        m_trace.write(m_argument, m_payload, result);
        break;
    case indexCommand:
        m_trace.index(indexFrom(m_argument), m_payload, result);
        break;
    default: {
        const SimulatedMac::Info info = m_mac.keyInfo(m_argument);
        const bool unknown = info.type.isEmpty();
        m_trace.info(m_argument, info.type, info.length,
                     unknown ? outcomeText(KeyOutcome::Unknown) : result);
        break;
    }
    }
}

} // namespace macsim
