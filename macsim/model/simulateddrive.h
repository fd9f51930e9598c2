#pragma once

#include <chrono>
#include <optional>

#include <QByteArray>

#include "macsim/model/drivedescription.h"

namespace macsim {

// One drive, as the SCSI layer of a kernel sees it: takes ATA commands within ATA
// PASS-THROUGH (16).
class SimulatedDrive {
public:
    // What is wrong with it. They add up.
    struct Faults {
        bool failing = false; // every command is aborted
        bool hanging = false; // commands are answered late, or never
        std::chrono::milliseconds delay { 0 }; // of the answers; 0 for never
        bool unplugged = false;
        bool mayNotBeOpened = false; // the caller lacks the privilege
        bool mayNotBeCommanded = false;
    };

    struct Counters {
        quint64 commands = 0;
        quint64 identifies = 0;
        quint64 powerChecks = 0;
        quint64 reads = 0; // of the attributes
        quint64 wakeUps = 0; // by a command that came in standby
    };

    // What became of a command.
    struct Answer {
        int error = 0; // errno: nothing reached the drive
        quint8 status = 0; // SCSI status
        QByteArray sense;
        QByteArray data;
        const char* word = "ok"; // for the trace
    };

    explicit SimulatedDrive(DriveDescription description);

    [[nodiscard]] const DriveDescription& description() const { return m_description; }
    [[nodiscard]] const Faults& faults() const { return m_faults; }
    void setFaults(const Faults& faults) { m_faults = faults; }
    [[nodiscard]] bool isInStandby() const { return m_isInStandby; }
    void setInStandby(bool isInStandby) { m_isInStandby = isInStandby; }
    [[nodiscard]] const Counters& counters() const { return m_counters; }

    // 0, or errno of why it can't be opened.
    [[nodiscard]] int open() const;
    // A command of 16 bytes, at this temperature of the drive. Delays are the
    // caller's affair.
    [[nodiscard]] Answer execute(const QByteArray& command, double celsius);
    // What the command is called in the trace.
    [[nodiscard]] static QString commandName(const QByteArray& command);

private:
    DriveDescription m_description;
    Faults m_faults;
    Counters m_counters;
    bool m_isInStandby = false;
    bool m_isSmartEnabled = true;
    double m_highest = 0.0; // degrees Celsius

    [[nodiscard]] Answer dispatch(const QByteArray& command, double celsius);
    [[nodiscard]] Answer smart(const QByteArray& command, double celsius);
    [[nodiscard]] Answer powerMode() const;
};

} // namespace macsim
