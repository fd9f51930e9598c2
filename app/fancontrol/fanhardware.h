#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/fanrecord.h"
#include "core/threads/fairmutex.h"

class FanProfile;
class QFanProfileList;
class SystemInfo;

namespace SMC {
class Service;
}

namespace core::threads {
class Clock;
}

// The fans of the machine as the engine reads and drives them. All control modes
// and speeds leave the program here, one at a time, so that the last ones sent
// are always those of the preset that is active by then. Operations may be
// called from any thread once load() is over; a fan id is below the fan count.
class FanHardware {
public:
    // All of them must outlive the object.
    FanHardware(SMC::Service& smc, QFanProfileList& profiles, const SystemInfo& systemInfo,
                core::threads::Clock& clock);

    // False on a machine that has no fans by its model, and where the controller
    // is not to be used.
    [[nodiscard]] bool isUsable() const;
    // Finds the fans, makes the predefined presets, and takes back fans that
    // another program has left forced. Called once; without effect unless
    // isUsable().
    void load();
    // Empty until load() has found them all; fixed from then on.
    [[nodiscard]] const std::vector<FanRecord>& fans() const;
    [[nodiscard]] FanRecord& fan(std::uint8_t id) { return m_fans[id]; }
    [[nodiscard]] std::uint8_t fanCount() const;

    // The fan's mode in the active preset; invalid while that preset is.
    [[nodiscard]] FanControlMode mode(std::uint8_t id) const;

    // Reads the fan's speeds into its record. A failed read leaves the limits as
    // they are and the current speed unread.
    void updateFan(std::uint8_t id, bool onlyCurrent);
    // Whether a speed may be sent to the fan: reads its limits again if they are
    // not known yet. Only for the control task.
    [[nodiscard]] bool ensureLimits(std::uint8_t id);
    // The speed within the fan's limits, which must be known.
    [[nodiscard]] std::uint16_t clampToLimits(std::uint8_t id, std::uint32_t rpm) const;

    // Sends the control modes of the active preset: automatic fans are the
    // controller's, the others are forced.
    void applyControlModes();
    // Sends a target speed, clamped to the limits; before it, if that is more than
    // three seconds ago, the control modes. Without known limits nothing is sent.
    void writeFanRPM(std::uint8_t id, std::uint32_t rpm);
    // A fan that is withheld stays with the controller whatever its preset says.
    // The control modes are sent at once.
    void setWithheld(std::uint8_t id, bool withheld);
    void withholdNone();
    // The controller may have lost its control modes, in sleep for one: they are
    // sent again with the next speed.
    void forgetAssertion();

    // Gives all fans back to the controller, except on models that must keep them
    // when the user logs off. No mode and no speed is sent afterwards until
    // claim() is called, even if this fails with an exception: then isClosed() is
    // true and isReleased() isn't.
    void restoreDefaultControl(bool userLoggedOut);
    // Fans that had been given back are driven again, at once by the control modes
    // of the active preset.
    void claim();
    [[nodiscard]] bool isClosed() const { return m_isClosed; }
    [[nodiscard]] bool isReleased() const { return m_isReleased; }
    // How often claim() has taken fans back: whoever sees another number than
    // before must not go on from what it knew of the fans.
    [[nodiscard]] unsigned claims() const { return m_claims; }

private:
    void loadRecords(std::uint8_t count);
    void addPredefinedProfiles();
    void checkFansControlModeFromSMC();
    void readSpeeds(std::uint8_t id, FanRecord& record, bool onlyCurrent);
    void readLimits(std::uint8_t id, FanRecord& record);
    [[nodiscard]] static bool hasLimits(const FanRecord& fan);
    void sendModes(const FanProfile& profile);
    void sendActiveModes();
    void release();

    SMC::Service& m_smc;
    QFanProfileList& m_profiles;
    const SystemInfo& m_systemInfo;
    core::threads::Clock& m_clock;

    std::vector<FanRecord> m_fans; // made with the mutex below held
    std::atomic<bool> m_isLoaded { false };
    std::vector<bool> m_missingLimitsReported; // the control task's

    // Held while modes or speeds are sent; the lists of presets and the service
    // are locked within it, never the other way round. Fair, so that an order of
    // the user's gets its turn between the control task's.
    core::threads::FairMutex m_driveMutex;
    std::vector<bool> m_withheld;
    std::optional<std::int64_t> m_lastAssertion; // milliseconds of the clock
    // Written with the mutex held.
    std::atomic<bool> m_isClosed { false }; // nothing is sent any more
    std::atomic<bool> m_isReleased { false }; // the fans have been given back
    std::atomic<unsigned> m_claims { 0 };
};
