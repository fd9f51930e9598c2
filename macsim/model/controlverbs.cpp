#include "macsim/model/controlverbs.h"

#include <algorithm>
#include <utility>

#include <QJsonDocument>

#include "macsim/model/faultverbs.h"
#include "macsim/model/machinestate.h"
#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

constexpr double coldestAmbient = -20.0;
constexpr double hottestAmbient = 60.0;

ControlReply failure(const QString& text) { return { false, text }; }

} // namespace

ControlVerbs::ControlVerbs(SimulatedMac& mac, PortController& controller, const Trace& trace,
                           PowerSwitch powerSwitch, DriveSwitch driveSwitch)
    : m_mac(mac)
    , m_controller(controller)
    , m_trace(trace)
    , m_powerSwitch(std::move(powerSwitch))
    , m_driveSwitch(std::move(driveSwitch))
{
}

const std::vector<ControlVerbs::Verb>& ControlVerbs::verbs()
{
    static const std::vector<Verb> table {
        { "load", 1, &ControlVerbs::load, "load PROFILE|PERCENT    how busy the machine is" },
        { "ambient", 1, &ControlVerbs::ambient, "ambient C               temperature of the room" },
        { "power", 1, &ControlVerbs::power, "power ac|battery        power source of a portable" },
        { "sleep", 0, &ControlVerbs::sleep,
          "sleep                   time stands still, the controller is silent" },
        { "wake", 0, &ControlVerbs::wake, "wake                    ends the sleep" },
        { "fault", -1, &ControlVerbs::fault,
          "fault NAME [ARGS]       see below; \"fault none\" ends them all" },
        { "drive", -1, &ControlVerbs::drive,
          "drive NAME WHAT [ARG]   does something to a drive, see below" },
        { "get", 1, &ControlVerbs::get, "get KEY                 value in hexadecimal digits" },
        { "set", 2, &ControlVerbs::set,
          "set KEY HEX             writes a value, whatever the key's attributes" },
        { "freeze", 1, &ControlVerbs::freeze,
          "freeze KEY              the machine no longer changes the value" },
        { "thaw", 1, &ControlVerbs::thaw, "thaw KEY                ends the freeze" },
        { "vanish", 1, &ControlVerbs::vanish,
          "vanish KEY              takes the key out of the table" },
        { "restore", 1, &ControlVerbs::restore, "restore KEY             puts it back" },
        { "state", 0, &ControlVerbs::state,
          "state                   everything about the machine, as JSON" },
        { "mark", -1, &ControlVerbs::mark, "mark TEXT               a line in the trace" },
    };
    return table;
}

QString ControlVerbs::help()
{
    QString text;
    for (const Verb& verb : verbs()) {
        text += QStringLiteral("  %1\n").arg(QLatin1String(verb.help));
    }
    return text + QStringLiteral("Faults:\n") + faultHelp() + QStringLiteral("Drives:\n")
        + driveHelp();
}

ControlReply ControlVerbs::execute(const QStringList& words)
{
    if (words.isEmpty()) {
        return failure(QStringLiteral("No verb"));
    }
    const auto found = std::find_if(verbs().begin(), verbs().end(), [&words](const Verb& verb) {
        return words.first() == QLatin1String(verb.name);
    });
    if (found == verbs().end()) {
        return failure(QStringLiteral("Unknown verb \"%1\"").arg(words.first()));
    }
    const QStringList arguments = words.mid(1);
    if (found->arguments >= 0 && arguments.size() != found->arguments) {
        return failure(QStringLiteral("\"%1\" takes %2 arguments")
                           .arg(words.first(), QString::number(found->arguments)));
    }
    return (this->*found->handler)(arguments);
}

ControlReply ControlVerbs::load(const QStringList& arguments)
{
    const auto profile = LoadProfile::fromText(arguments.first());
    if (!profile) {
        return failure(QStringLiteral("\"%1\" is neither a percentage nor one of: %2")
                           .arg(arguments.first(), LoadProfile::names().join(QLatin1Char(' '))));
    }
    m_mac.setLoad(*profile);
    m_trace.event(QStringLiteral("load %1").arg(profile->name()));
    return {};
}

ControlReply ControlVerbs::ambient(const QStringList& arguments)
{
    bool isNumber = false;
    const double celsius = arguments.first().toDouble(&isNumber);
    if (!isNumber || !(celsius >= coldestAmbient && celsius <= hottestAmbient)) {
        return failure(QStringLiteral("The ambient temperature is a number from %1 to %2")
                           .arg(coldestAmbient)
                           .arg(hottestAmbient));
    }
    m_mac.setAmbient(celsius);
    m_trace.event(QStringLiteral("ambient %1").arg(celsius));
    return {};
}

void ControlVerbs::pokeFlag(const char* key, bool value)
{
    if (m_mac.keys().find(key) != nullptr) {
        static_cast<void>(m_mac.poke(key, QByteArray(1, value ? '\1' : '\0')));
    }
}

ControlReply ControlVerbs::power(const QStringList& arguments)
{
    const bool onBattery = arguments.first() == QLatin1String("battery");
    if (!onBattery && arguments.first() != QLatin1String("ac")) {
        return failure(QStringLiteral("The power source is \"ac\" or \"battery\""));
    }
    if (!m_mac.description().portable) {
        return failure(QStringLiteral("This machine has no battery"));
    }
    if (!m_powerSwitch || !m_powerSwitch(onBattery)) {
        return failure(QStringLiteral("The power supply's files can't be written"));
    }
    pokeFlag("BATP", onBattery);
    pokeFlag("ACIN", !onBattery);
    m_trace.event(QStringLiteral("power %1").arg(arguments.first()));
    return {};
}

ControlReply ControlVerbs::sleep(const QStringList&)
{
    m_mac.setAsleep(true);
    m_trace.event(QStringLiteral("sleep"));
    return {};
}

ControlReply ControlVerbs::wake(const QStringList&)
{
    m_mac.setAsleep(false);
    m_controller.reset();
    m_trace.event(QStringLiteral("wake"));
    return {};
}

ControlReply ControlVerbs::fault(const QStringList& arguments)
{
    const QString problem = applyFault(arguments, m_mac, m_controller);
    if (!problem.isEmpty()) {
        return failure(problem);
    }
    m_trace.event(QStringLiteral("fault %1").arg(arguments.join(QLatin1Char(' '))));
    return {};
}

ControlReply ControlVerbs::drive(const QStringList& arguments)
{
    const QString problem = applyToDrive(arguments, m_mac, m_driveSwitch);
    if (!problem.isEmpty()) {
        return failure(problem);
    }
    m_trace.event(QStringLiteral("drive %1").arg(arguments.join(QLatin1Char(' '))));
    return {};
}

ControlReply ControlVerbs::get(const QStringList& arguments)
{
    const auto key = smcvalue::keyFromText(arguments.first());
    m_mac.advance();
    const KeyEntry* entry = key ? m_mac.keys().find(*key) : nullptr;
    if (entry == nullptr) {
        return failure(QStringLiteral("There is no key \"%1\"").arg(arguments.first()));
    }
    return { true, smcvalue::hex(entry->value) };
}

ControlReply ControlVerbs::set(const QStringList& arguments)
{
    const auto key = smcvalue::keyFromText(arguments.first());
    const auto value = smcvalue::bytesFromHex(arguments.at(1));
    const KeyEntry* entry = key ? m_mac.keys().find(*key) : nullptr;
    if (entry == nullptr) {
        return failure(QStringLiteral("There is no key \"%1\"").arg(arguments.first()));
    }
    if (!value || !m_mac.poke(*key, *value)) {
        return failure(QStringLiteral("The value must have %1 hexadecimal digits")
                           .arg(entry->value.size() * 2));
    }
    m_trace.event(
        QStringLiteral("set \"%1\" %2").arg(smcvalue::printable(*key), smcvalue::hex(*value)));
    return {};
}

ControlReply ControlVerbs::changeKey(const QStringList& arguments, const char* word,
                                     const std::function<void(KeyEntry&)>& change)
{
    const auto key = smcvalue::keyFromText(arguments.first());
    KeyEntry* entry = key ? m_mac.keys().findAny(*key) : nullptr;
    if (entry == nullptr) {
        return failure(QStringLiteral("There is no key \"%1\"").arg(arguments.first()));
    }
    m_mac.advance();
    change(*entry);
    m_trace.event(QStringLiteral("%1 \"%2\"").arg(QLatin1String(word), smcvalue::printable(*key)));
    return {};
}

ControlReply ControlVerbs::freeze(const QStringList& arguments)
{
    return changeKey(arguments, "freeze", [](KeyEntry& entry) { entry.frozen = true; });
}

ControlReply ControlVerbs::thaw(const QStringList& arguments)
{
    return changeKey(arguments, "thaw", [](KeyEntry& entry) { entry.frozen = false; });
}

ControlReply ControlVerbs::vanish(const QStringList& arguments)
{
    return changeKey(arguments, "vanish",
                     [this](KeyEntry& entry) { m_mac.keys().setVanished(entry, true); });
}

ControlReply ControlVerbs::restore(const QStringList& arguments)
{
    return changeKey(arguments, "restore",
                     [this](KeyEntry& entry) { m_mac.keys().setVanished(entry, false); });
}

ControlReply ControlVerbs::state(const QStringList&)
{
    const QJsonDocument document(machineState(m_mac, m_controller));
    return { true, QString::fromUtf8(document.toJson()).trimmed() };
}

ControlReply ControlVerbs::mark(const QStringList& arguments)
{
    m_trace.event(QStringLiteral("mark %1").arg(arguments.join(QLatin1Char(' '))));
    return {};
}

} // namespace macsim
