#include "smcd/service.h"

#include <array>
#include <cerrno>
#include <utility>

namespace smcd {

namespace {

using protocol::Operation;

ControlBits bitsOf(const std::vector<std::uint8_t>& mask)
{
    return mask.size() == maskLength ? ControlBits(mask[1]) : ControlBits();
}

} // namespace

Service::Access::Access(std::unique_ptr<Controller> way)
    : controller(std::move(way))
    , reader(*controller)
    , rules(reader)
{
}

Service::Service(ControllerFactory factory, ForcedFans& note, Journal journal)
    : m_factory(std::move(factory))
    , m_note(note)
    , m_journal(std::move(journal))
{
}

void Service::start()
{
    const std::optional<ControlBits> left = m_note.read();
    m_isNoteLost = !left;
    if (left) {
        m_noted = *left;
        m_holders.owe(*left);
    } else {
        m_journal("The note of the forced fans can't be understood: all of them are given back");
    }
}

Service::Access* Service::access()
{
    if (m_access) {
        return m_access.get();
    }
    std::string reason;
    std::unique_ptr<Controller> controller = m_factory(reason);
    if (controller) {
        m_access = std::make_unique<Access>(std::move(controller));
    } else if (reason != m_lastReason) {
        m_lastReason = reason;
        m_journal("There is no way to the controller: " + reason);
    }
    return m_access.get();
}

protocol::Packet Service::answer(ClientId client, Bytes packet)
{
    return protocol::replyPacket(execute(client, packet));
}

void Service::hearLast(ClientId client, Bytes packet)
{
    protocol::Call call;
    if (protocol::parseRequest(packet, call) == 0 && call.operation == Operation::KeepFans) {
        m_holders.keep(client);
    }
}

protocol::Reply Service::execute(ClientId client, Bytes packet)
{
    protocol::Call call;
    if (const std::uint32_t error = protocol::parseRequest(packet, call); error != 0) {
        return { error, {} };
    }
    if (call.operation == Operation::Open) {
        return access() != nullptr ? protocol::Reply { 0, protocol::versionRecord() }
                                   : protocol::Reply { ENODEV, {} };
    }
    if (call.operation == Operation::KeepFans) {
        m_holders.keep(client);
        return note() ? protocol::Reply {} : protocol::Reply { EIO, {} };
    }
    return executeOnKey(client, call);
}

protocol::Reply Service::executeOnKey(ClientId client, const protocol::Call& call)
{
    Access* const way = access();
    if (way == nullptr) {
        return { ENODEV, {} };
    }
    protocol::Reply reply;
    switch (call.operation) {
    case Operation::Read: {
        std::vector<std::uint8_t> value;
        reply.error = way->reader.read(call.key, value);
        reply.data = protocol::valueRecord(call, value);
        break;
    }
    case Operation::Write:
        reply.error = write(*way, client, call);
        reply.data = protocol::writtenRecord(call.family);
        break;
    case Operation::KeyByIndex: {
        Key key {};
        reply.error = way->controller->keyByIndex(call.index, key);
        reply.data = protocol::nameRecord(call.family, key);
        break;
    }
    case Operation::KeyInfo: {
        KeyInfo info;
        reply.error = way->controller->keyInfo(call.key, info);
        if (reply.error == 0) {
            reply = protocol::infoReply(call.family, info);
        }
        break;
    }
    case Operation::Open:
    case Operation::KeepFans:
        break;
    }
    if (reply.error != 0) {
        reply.data.clear();
    }
    if (reply.error == ENODEV) {
        m_access.reset(); // there may be another way by now
    }
    return reply;
}

std::uint32_t Service::write(Access& access, ClientId client, const protocol::Call& call)
{
    WriteEffect effect;
    if (const std::uint32_t error = access.rules.check(call.key, call.written(), effect);
        error != 0) {
        return error;
    }
    // Noted before it is done: nothing is forced that couldn't be given back.
    m_holders.hold(client, effect.sets);
    if (!note()) {
        return EIO;
    }
    const std::uint32_t error = access.controller->writeKey(call.key, call.written());
    if (error == 0) {
        m_holders.clear(effect.clears);
        static_cast<void>(note()); // a note of too much does no harm
    }
    return error;
}

bool Service::note()
{
    const ControlBits bits = m_holders.atRisk();
    if (bits == m_noted) {
        return true;
    }
    if (!m_note.write(bits)) {
        m_journal("The note of the forced fans can't be written");
        return false;
    }
    m_noted = bits;
    return true;
}

void Service::left(ClientId client)
{
    m_holders.leave(client);
    static_cast<void>(note());
}

void Service::leaveAll()
{
    m_holders.leaveAll();
    static_cast<void>(note());
}

bool Service::owes() const { return m_isNoteLost || m_holders.owed().any(); }

void Service::giveBack()
{
    Access* const way = owes() ? access() : nullptr;
    if (way == nullptr) {
        return;
    }
    if (m_isNoteLost) {
        findForced(*way);
        m_isNoteLost = false;
    }
    const ControlBits owed = m_holders.owed();
    for (std::size_t fan = 0; fan < mostFans; ++fan) {
        if (owed[modePlace(fan)] && giveModeBack(*way, fan)) {
            m_holders.clear(ControlBits().set(modePlace(fan)));
        }
    }
    const ControlBits mask = owed & ControlBits((1U << maskFans) - 1);
    if (mask.any() && giveMaskBack(*way)) {
        m_holders.clear(mask);
    }
    static_cast<void>(note());
    if (owed.any() && m_holders.owed().none()) {
        m_journal("The fans are given back to the controller");
    }
}

void Service::findForced(Access& access)
{
    std::vector<std::uint8_t> value;
    if (access.reader.read(maskKey, value) == 0) {
        m_holders.owe(bitsOf(value));
    }
    for (std::size_t fan = 0; fan < mostFans; ++fan) {
        if (access.reader.read(fanKey(fan, 'M', 'd'), value) != 0) {
            break;
        }
        m_holders.owe(ControlBits().set(modePlace(fan), value.front() != 0));
    }
}

bool Service::giveMaskBack(Access& access)
{
    std::vector<std::uint8_t> value;
    if (access.reader.read(maskKey, value) != 0 || value.size() != maskLength) {
        return false;
    }
    const ControlBits kept = bitsOf(value) & ~m_holders.owed();
    value = { 0, static_cast<std::uint8_t>(kept.to_ulong()) };
    return access.controller->writeKey(maskKey, value) == 0;
}

bool Service::giveModeBack(Access& access, std::size_t fan)
{
    constexpr std::array<std::uint8_t, 1> automatic { 0 };
    return access.controller->writeKey(fanKey(fan, 'M', 'd'), automatic) == 0;
}

} // namespace smcd
