#include "macsim/model/controllerdriver.h"

#include <algorithm>
#include <cerrno>

#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

namespace protocol = smcd::protocol;

constexpr int excess = 16; // bytes that a long reply has too many
constexpr int garbageSize = 3; // too short for any reply

QByteArray bytes(protocol::Bytes data)
{
    return { static_cast<const char*>(static_cast<const void*>(data.data())),
             static_cast<int>(data.size()) };
}

protocol::Packet packet(const QByteArray& data) { return { data.begin(), data.end() }; }

QByteArray keyOf(const protocol::Call& call)
{
    return { call.key.data(), static_cast<int>(call.key.size()) };
}

std::uint32_t errorOf(KeyOutcome outcome)
{
    switch (outcome) {
    case KeyOutcome::Ok:
        return 0;
    case KeyOutcome::Unknown:
        return ENOENT;
    case KeyOutcome::Failing:
        return EIO;
    case KeyOutcome::Unreadable:
    case KeyOutcome::ReadOnly:
        return EACCES;
    case KeyOutcome::BadLength:
        return EINVAL;
    }
    return EIO;
}

} // namespace

ControllerDriver::ControllerDriver(SimulatedMac& mac, const PortController& controller,
                                   const Trace& trace)
    : m_mac(mac)
    , m_controller(controller)
    , m_trace(trace)
{
}

QByteArray ControllerDriver::answer(const QByteArray& request)
{
    protocol::Reply reply = execute(request);
    const DriverFaults& faults = m_mac.driverFaults();
    if (faults.reply == DriverFaults::Reply::Short) {
        reply.data.resize(reply.data.size() / 2);
    }
    QByteArray result = bytes(protocol::replyPacket(reply));
    if (faults.reply == DriverFaults::Reply::Long) {
        const int most = static_cast<int>(protocol::longestReplyPacket);
        result += QByteArray(most - static_cast<int>(result.size()) + excess, '\xA5');
    } else if (faults.reply == DriverFaults::Reply::Garbage) {
        result = QByteArray(garbageSize, '\xA5');
    }
    return result;
}

protocol::Reply ControllerDriver::execute(const QByteArray& request)
{
    protocol::Call call;
    const protocol::Packet data = packet(request);
    if (m_mac.driverFaults().gone) {
        return { ENODEV, {} };
    }
    if (const std::uint32_t error = protocol::parseRequest(data, call); error != 0) {
        m_trace.error(QStringLiteral("driver request %1").arg(smcvalue::hex(request.left(64))));
        return { error, {} };
    }
    const PortController::Faults& faults = m_controller.faults();
    const bool isSilent = faults.mute || faults.busy || m_mac.isAsleep();
    switch (call.operation) {
    case protocol::Operation::Open:
        m_trace.event(QStringLiteral("driver open"));
        return { 0, protocol::versionRecord() };
    case protocol::Operation::KeepFans:
        m_trace.event(QStringLiteral("driver keep"));
        return {};
    case protocol::Operation::Read:
        return isSilent ? protocol::Reply { EIO, {} } : read(call);
    case protocol::Operation::Write:
        return isSilent ? protocol::Reply { EIO, {} } : write(call);
    case protocol::Operation::KeyByIndex:
        return isSilent ? protocol::Reply { EIO, {} } : name(call);
    case protocol::Operation::KeyInfo:
        return isSilent ? protocol::Reply { EIO, {} } : info(call);
    }
    return { EIO, {} };
}

protocol::Reply ControllerDriver::read(const protocol::Call& call)
{
    const QByteArray key = keyOf(call);
    const SimulatedMac::Reading reading = m_mac.readKey(key);
    m_trace.read(key, reading.value, outcomeText(reading.outcome));
    if (reading.outcome != KeyOutcome::Ok) {
        return { errorOf(reading.outcome), {} };
    }
    // Only the HAL driver's callers say how long they think the value is.
    const auto room = static_cast<int>(call.room);
    if (call.family == protocol::Family::Hal && room != reading.value.size()
        && room != m_mac.keyInfo(key).length) {
        m_trace.error(QStringLiteral("length %1 for %2 of %3")
                          .arg(QString::number(room), smcvalue::printable(key),
                               QString::number(reading.value.size())));
    }
    return { 0, protocol::valueRecord(call, packet(reading.value)) };
}

protocol::Reply ControllerDriver::write(const protocol::Call& call)
{
    const QByteArray key = keyOf(call);
    const QByteArray value = bytes(call.written());
    const KeyOutcome outcome = m_mac.writeKey(key, value);
    m_trace.write(key, value, outcomeText(outcome));
    return outcome == KeyOutcome::Ok ? protocol::Reply { 0, protocol::writtenRecord(call.family) }
                                     : protocol::Reply { errorOf(outcome), {} };
}

protocol::Reply ControllerDriver::info(const protocol::Call& call)
{
    const QByteArray key = keyOf(call);
    const SimulatedMac::Info told = m_mac.keyInfo(key);
    const bool isKnown = !told.type.isEmpty();
    m_trace.info(key, told.type, told.length,
                 outcomeText(isKnown ? KeyOutcome::Ok : KeyOutcome::Unknown));
    protocol::KeyInfo info;
    info.length = told.length;
    info.attributes = told.attributes;
    std::copy_n(told.type.begin(), std::min<std::size_t>(info.type.size(), told.type.size()),
                info.type.begin());
    return protocol::infoReply(call.family, info);
}

protocol::Reply ControllerDriver::name(const protocol::Call& call)
{
    const auto key = m_mac.keyAt(call.index);
    m_trace.index(call.index, key.value_or(QByteArray()),
                  outcomeText(key ? KeyOutcome::Ok : KeyOutcome::Unknown));
    if (!key) {
        return { ENOENT, {} };
    }
    protocol::Key name {};
    std::copy_n(key->begin(), std::min<std::size_t>(name.size(), key->size()), name.begin());
    return { 0, protocol::nameRecord(call.family, name) };
}

} // namespace macsim
