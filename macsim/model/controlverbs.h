#pragma once

#include <functional>

#include <QStringList>

#include "macsim/model/driveverbs.h"
#include "macsim/model/portcontroller.h"
#include "macsim/model/simulatedmac.h"
#include "macsim/model/trace.h"

namespace macsim {

// What a control request brought.
struct ControlReply {
    bool ok = true;
    QString text; // the answer, or what was wrong
};

// The requests that change or ask a running machine. Everything that changes it
// leaves an event in the trace.
class ControlVerbs {
public:
    // Switches the machine face to battery (true) or AC; false when it can't.
    using PowerSwitch = std::function<bool(bool onBattery)>;

    // All of them must outlive the verbs.
    ControlVerbs(SimulatedMac& mac, PortController& controller, const Trace& trace,
                 PowerSwitch powerSwitch, DriveSwitch driveSwitch = {});

    // A verb and its arguments.
    [[nodiscard]] ControlReply execute(const QStringList& words);

    // The verbs with their arguments and what they do, a line each.
    [[nodiscard]] static QString help();

private:
    SimulatedMac& m_mac;
    PortController& m_controller;
    const Trace& m_trace;
    PowerSwitch m_powerSwitch;
    DriveSwitch m_driveSwitch;

    using Handler = ControlReply (ControlVerbs::*)(const QStringList&);
    struct Verb {
        const char* name;
        int arguments; // how many it takes, or -1 for any number
        Handler handler;
        const char* help;
    };
    [[nodiscard]] static const std::vector<Verb>& verbs();

    // Arguments as told by help().
    [[nodiscard]] ControlReply load(const QStringList& arguments);
    [[nodiscard]] ControlReply ambient(const QStringList& arguments);
    [[nodiscard]] ControlReply power(const QStringList& arguments);
    [[nodiscard]] ControlReply sleep(const QStringList& arguments);
    [[nodiscard]] ControlReply wake(const QStringList& arguments);
    [[nodiscard]] ControlReply fault(const QStringList& arguments);
    [[nodiscard]] ControlReply drive(const QStringList& arguments);
    [[nodiscard]] ControlReply get(const QStringList& arguments);
    [[nodiscard]] ControlReply set(const QStringList& arguments);
    [[nodiscard]] ControlReply freeze(const QStringList& arguments);
    [[nodiscard]] ControlReply thaw(const QStringList& arguments);
    [[nodiscard]] ControlReply vanish(const QStringList& arguments);
    [[nodiscard]] ControlReply restore(const QStringList& arguments);
    [[nodiscard]] ControlReply state(const QStringList& arguments);
    [[nodiscard]] ControlReply mark(const QStringList& arguments);

    void pokeFlag(const char* key, bool value);
    [[nodiscard]] ControlReply changeKey(const QStringList& arguments, const char* word,
                                         const std::function<void(KeyEntry&)>& change);
};

} // namespace macsim
