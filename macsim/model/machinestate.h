#pragma once

#include <QJsonObject>

#include "macsim/model/portcontroller.h"
#include "macsim/model/simulatedmac.h"

namespace macsim {

// The machine at this moment, for "ctl state" and the final report. Speeds are in
// RPM, temperatures in degrees Celsius, the load in percent:
//
//     machine, asleep, load, loadProfile, ambient, simulatedSeconds,
//     temperatures { source: now }, highestTemperatures { source: since the start },
//     fans [ { name, actual, min, max, target, forced, targetWrites,
//              targetsOutsideLimits, lowestTarget, highestTarget } ],
//     drives [ { name, model, celsius, standby, unplugged, commands, identifies,
//                powerChecks, reads, wakeUps } ],
//     gpus [ { name, temperature: what the driver tells, or null } ],
//     controlBits (bit i for fan i), protocolErrors { total, ... }, operations { read ... }
[[nodiscard]] QJsonObject machineState(SimulatedMac& mac, const PortController& controller);

} // namespace macsim
