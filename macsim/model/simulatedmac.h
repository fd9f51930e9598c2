#pragma once

#include <optional>
#include <vector>

#include "macsim/model/clock.h"
#include "macsim/model/keytable.h"
#include "macsim/model/loadprofile.h"
#include "macsim/model/machinedescription.h"
#include "macsim/model/simulateddrive.h"
#include "macsim/model/thermalmodel.h"

namespace macsim {

// How a key operation ended.
enum class KeyOutcome { Ok, Unknown, Unreadable, Failing, ReadOnly, BadLength };

// The word for it in the trace.
[[nodiscard]] const char* outcomeText(KeyOutcome outcome);

// What is wrong with the controller's driver.
struct DriverFaults {
    enum class Reply { Right, Short, Long, Garbage };

    bool gone = false; // no device, no answer but an error
    std::chrono::milliseconds delay { 0 }; // before each answer
    Reply reply = Reply::Right;
};

// One machine: its key table and its physics, and what lies between them. The
// machine fills in its measurements ("F{}Ac", the temperatures, "#KEY", and
// "F{}Tg" of fans that are not forced); what is written to "FS! ", "F{}Md",
// "F{}Tg", "F{}Mn" and "F{}Mx" rules the fans. Time passes by the clock, scaled,
// and is caught up with at each call that looks at the machine.
class SimulatedMac {
public:
    struct Settings {
        LoadProfile load;
        double speed = 1.0; // simulated seconds per second of the clock, above 0
        quint32 seed = 1; // of the noise
    };

    struct Reading {
        KeyOutcome outcome = KeyOutcome::Ok;
        QByteArray value; // when ok
    };

    // What an info request answers; a length of 0 means that there is no such key.
    struct Info {
        quint8 length = 0;
        QByteArray type;
        quint8 attributes = 0;
    };

    struct FanState {
        double actual = 0.0; // RPM, also below
        double minimum = 0.0;
        double maximum = 0.0;
        double target = 0.0;
        bool forced = false;
        quint64 targetWrites = 0;
        quint64 targetsOutsideLimits = 0;
        double lowestTarget = 0.0; // of the written ones
        double highestTarget = 0.0;
    };

    // The clock must outlive the machine.
    SimulatedMac(MachineDescription description, const Clock& clock, Settings settings);
    SimulatedMac(const SimulatedMac&) = delete;
    SimulatedMac& operator=(const SimulatedMac&) = delete;

    [[nodiscard]] const MachineDescription& description() const { return m_description; }

    // The controller's operations.
    [[nodiscard]] Reading readKey(const QByteArray& key);
    [[nodiscard]] KeyOutcome checkWrite(const QByteArray& key, int length) const;
    [[nodiscard]] KeyOutcome writeKey(const QByteArray& key, const QByteArray& value);
    [[nodiscard]] Info keyInfo(const QByteArray& key) const;
    [[nodiscard]] std::optional<QByteArray> keyAt(quint32 index) const;

    // What happens to the machine from outside.
    void setLoad(const LoadProfile& load);
    void setAmbient(double celsius);
    // Time stands still for a sleeping machine; the fans stay as they are.
    void setAsleep(bool asleep);
    // The drivers of the GPUs no longer tell their temperatures.
    void setGpuDriversFailing(bool failing) { m_gpuDriversFail = failing; }
    void setDriverFaults(const DriverFaults& faults) { m_driverFaults = faults; }
    [[nodiscard]] const DriverFaults& driverFaults() const { return m_driverFaults; }
    // Writes a value past the attributes. False without such a key or when the
    // length is wrong. A value that the machine fills in stays only when frozen.
    [[nodiscard]] bool poke(const QByteArray& key, const QByteArray& value);
    [[nodiscard]] KeyTable& keys() { return m_keys; }

    // Null when there is no such drive. Unplugged ones are there, too.
    [[nodiscard]] SimulatedDrive* drive(const QString& name);
    [[nodiscard]] const std::vector<SimulatedDrive>& drives() const { return m_drives; }

    // What it is like now. All of these reflect the time of the last advance().
    void advance();
    [[nodiscard]] bool isAsleep() const { return m_asleep; }
    [[nodiscard]] double load() const;
    [[nodiscard]] QString loadName() const { return m_load.name(); }
    [[nodiscard]] double simulatedSeconds() const { return m_simulated; }
    [[nodiscard]] double ambient() const { return m_physics.ambient(); }
    [[nodiscard]] FanState fan(int index) const;
    [[nodiscard]] const std::vector<ThermalModel::Source>& sources() const;
    // In degrees Celsius.
    [[nodiscard]] double temperature(const DriveDescription& drive) const;
    // What a GPU's driver tells, in degrees Celsius; nothing while the drivers fail.
    [[nodiscard]] std::optional<double> gpuTemperature(std::size_t index) const;
    // Bit i is set when fan i is forced.
    [[nodiscard]] quint32 forcedMask() const;

private:
    struct TargetUse {
        quint64 writes = 0;
        quint64 outsideLimits = 0;
        double lowest = 0.0;
        double highest = 0.0;
    };

    MachineDescription m_description;
    const Clock& m_clock;
    KeyTable m_keys;
    LoadProfile m_load;
    ThermalModel m_physics;
    std::vector<SimulatedDrive> m_drives;
    double m_speed;
    bool m_asleep = false;
    bool m_gpuDriversFail = false;
    DriverFaults m_driverFaults;
    std::chrono::microseconds m_advancedTo;
    double m_simulated = 0.0; // seconds
    double m_loadStart = 0.0; // m_simulated when the profile was chosen
    std::vector<TargetUse> m_targetUse;

    // The ambient temperature where there is no such source.
    [[nodiscard]] double sourceTemperature(const QString& name) const;
    [[nodiscard]] double number(const QByteArray& key, double fallback) const;
    [[nodiscard]] bool isForced(int fan) const;
    [[nodiscard]] ThermalModel::FanCommand command(int fan) const;
    void fill(const QByteArray& key, double number);
    void fillMeasurements();
    void noteTargetWrite(const QByteArray& key);
};

} // namespace macsim
