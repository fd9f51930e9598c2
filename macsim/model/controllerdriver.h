#pragma once

#include <QByteArray>

#include "macsim/model/portcontroller.h"
#include "macsim/model/simulatedmac.h"
#include "macsim/model/trace.h"
#include "smcd/protocol/records.h"

namespace macsim {

// The controller's driver as its callers see it: both families of records, answered
// straight from the machine. It gives no fan back to the machine when a caller
// leaves; a driver knows nothing of callers.
class ControllerDriver {
public:
    // All three must outlive the driver. The port controller lends its faults: a
    // driver can't read a controller that is mute.
    ControllerDriver(SimulatedMac& mac, const PortController& controller, const Trace& trace);

    // The packet that answers a packet.
    [[nodiscard]] QByteArray answer(const QByteArray& request);

private:
    SimulatedMac& m_mac;
    const PortController& m_controller;
    const Trace& m_trace;

    [[nodiscard]] smcd::protocol::Reply execute(const QByteArray& request);
    [[nodiscard]] smcd::protocol::Reply read(const smcd::protocol::Call& call);
    [[nodiscard]] smcd::protocol::Reply write(const smcd::protocol::Call& call);
    [[nodiscard]] smcd::protocol::Reply info(const smcd::protocol::Call& call);
    [[nodiscard]] smcd::protocol::Reply name(const smcd::protocol::Call& call);
};

} // namespace macsim
