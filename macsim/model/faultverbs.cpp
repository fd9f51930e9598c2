#include "macsim/model/faultverbs.h"

#include <algorithm>
#include <vector>

#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

constexpr int longestByteTime = 60000; // milliseconds
constexpr int mostBytesBetweenLosses = 1000000;

struct Target {
    SimulatedMac& mac;
    PortController::Faults faults; // as they shall become
};

// Applies one fault to the target; false when an argument is wrong.
using Apply = bool (*)(const QStringList& arguments, Target& target);

struct Fault {
    const char* name;
    int arguments;
    Apply apply;
    const char* help;
};

KeyEntry* entryOf(const QString& text, Target& target)
{
    const auto key = smcvalue::keyFromText(text);
    return key ? target.mac.keys().findAny(*key) : nullptr;
}

// A whole number from lowest to highest, or -1.
int number(const QString& text, int lowest, int highest)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    return isNumber && value >= lowest && value <= highest ? value : -1;
}

bool applyNone(const QStringList&, Target& target)
{
    target.faults = {};
    target.mac.keys().clearFaults();
    target.mac.setGpuDriversFailing(false);
    target.mac.setDriverFaults({});
    return true;
}

bool applyMute(const QStringList&, Target& target)
{
    target.faults.mute = true;
    return true;
}

bool applyBusy(const QStringList&, Target& target)
{
    target.faults.busy = true;
    return true;
}

bool applyLose(const QStringList& arguments, Target& target)
{
    const int every = number(arguments.at(0), 1, mostBytesBetweenLosses);
    if (every < 0) {
        return false;
    }
    target.faults.loseEvery = static_cast<quint32>(every);
    return true;
}

bool applySlow(const QStringList& arguments, Target& target)
{
    const int milliseconds = number(arguments.at(0), 0, longestByteTime);
    if (milliseconds < 0) {
        return false;
    }
    target.faults.byteTime = std::chrono::milliseconds(milliseconds);
    return true;
}

bool applyLength(const QStringList& arguments, Target& target)
{
    KeyEntry* entry = entryOf(arguments.at(0), target);
    const int length = number(arguments.at(1), 0, 255);
    if (entry == nullptr || length < 0) {
        return false;
    }
    entry->claimedLength = static_cast<quint8>(length);
    return true;
}

bool applyVanish(const QStringList& arguments, Target& target)
{
    KeyEntry* entry = entryOf(arguments.at(0), target);
    if (entry == nullptr) {
        return false;
    }
    target.mac.keys().setVanished(*entry, true);
    return true;
}

bool applyError(const QStringList& arguments, Target& target)
{
    KeyEntry* entry = entryOf(arguments.at(0), target);
    if (entry == nullptr) {
        return false;
    }
    entry->failing = true;
    return true;
}

bool applyGpus(const QStringList&, Target& target)
{
    target.mac.setGpuDriversFailing(true);
    return true;
}

bool applyDriverGone(const QStringList&, Target& target)
{
    DriverFaults faults = target.mac.driverFaults();
    faults.gone = true;
    target.mac.setDriverFaults(faults);
    return true;
}

bool applyDriverSlow(const QStringList& arguments, Target& target)
{
    const int milliseconds = number(arguments.at(0), 0, longestByteTime);
    if (milliseconds < 0) {
        return false;
    }
    DriverFaults faults = target.mac.driverFaults();
    faults.delay = std::chrono::milliseconds(milliseconds);
    target.mac.setDriverFaults(faults);
    return true;
}

template <DriverFaults::Reply reply> bool applyDriverReply(const QStringList&, Target& target)
{
    DriverFaults faults = target.mac.driverFaults();
    faults.reply = reply;
    target.mac.setDriverFaults(faults);
    return true;
}

const std::vector<Fault>& table()
{
    using Reply = DriverFaults::Reply;
    static const std::vector<Fault> faults {
        { "none", 0, applyNone, "none                    ends all faults" },
        { "mute", 0, applyMute, "mute                    the status is 0, nothing is accepted" },
        { "busy", 0, applyBusy, "busy                    the status is busy for ever" },
        { "lose", 1, applyLose, "lose N                  every Nth byte is lost" },
        { "slow", 1, applySlow, "slow MS                 each byte takes so many milliseconds" },
        { "length", 2, applyLength, "length KEY N            the key's info claims a length of N" },
        { "vanish", 1, applyVanish, "vanish KEY              the key is gone" },
        { "error", 1, applyError, "error KEY               the key is listed but can't be read" },
        { "gpus", 0, applyGpus, "gpus                    their drivers tell no temperature" },
        { "driver-gone", 0, applyDriverGone, "driver-gone             the driver has no device" },
        { "driver-slow", 1, applyDriverSlow,
          "driver-slow MS          each answer takes so many milliseconds" },
        { "driver-short", 0, applyDriverReply<Reply::Short>,
          "driver-short            answers have half their bytes" },
        { "driver-long", 0, applyDriverReply<Reply::Long>,
          "driver-long             answers have more bytes than asked for" },
        { "driver-garbage", 0, applyDriverReply<Reply::Garbage>,
          "driver-garbage          answers are none" },
    };
    return faults;
}

} // namespace

QString applyFault(const QStringList& words, SimulatedMac& mac, PortController& controller)
{
    const QString name = words.value(0);
    const auto found = std::find_if(table().begin(), table().end(), [&name](const Fault& fault) {
        return name == QLatin1String(fault.name);
    });
    if (found == table().end()) {
        return QStringLiteral("Unknown fault \"%1\"").arg(name);
    }
    const QStringList arguments = words.mid(1);
    Target target { mac, controller.faults() };
    if (arguments.size() != found->arguments || !found->apply(arguments, target)) {
        return QStringLiteral("Wrong arguments for the fault \"%1\"").arg(name);
    }
    controller.setFaults(target.faults);
    return {};
}

QString faultHelp()
{
    QString text;
    for (const Fault& fault : table()) {
        text += QStringLiteral("  %1\n").arg(QLatin1String(fault.help));
    }
    return text;
}

} // namespace macsim
