#include "app/fancontrol/fanhardware.h"

#include <algorithm>

#include <QStringList>

#include "app/fancontrol/fannames.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/smc/service.h"
#include "app/sysinfo/sysinfo.h"
#include "core/application_flags.h"
#include "core/log/log.h"
#include "core/threads/clock.h"

namespace {

// Control modes are sent again when they are older than this; milliseconds.
constexpr std::int64_t assertionInterval = 3000;

// How often the fans are given back until the controller shows that it has them.
constexpr int releaseAttempts = 3;
constexpr std::int64_t releasePatience = 3000; // milliseconds

} // namespace

FanHardware::FanHardware(SMC::Service& smc, QFanProfileList& profiles, const SystemInfo& systemInfo,
                         core::threads::Clock& clock)
    : m_smc(smc)
    , m_profiles(profiles)
    , m_systemInfo(systemInfo)
    , m_clock(clock)
{
}

void FanHardware::load()
{
    if (!isUsable()) {
        return;
    }
    LOG_INFO("QFanControl::loadFansFromSMC");
    const std::uint8_t count = m_smc.getFanCount();
    LOG_INFO("Fans count - {}", count);
    if (count == 0) {
        LOG_ERR("No fans detected!");
    } else {
        loadRecords(count);
        addPredefinedProfiles();
    }
    checkFansControlModeFromSMC();
}

const std::vector<FanRecord>& FanHardware::fans() const
{
    static const std::vector<FanRecord> none;
    return m_isLoaded ? m_fans : none;
}

std::uint8_t FanHardware::fanCount() const { return static_cast<std::uint8_t>(fans().size()); }

FanControlMode FanHardware::mode(std::uint8_t id) const
{
    const FanProfile active = m_profiles.activeProfile();
    return active.isValid() ? active.mode(id) : FanControlMode();
}

void FanHardware::updateFan(std::uint8_t id, bool onlyCurrent)
{
    readSpeeds(id, m_fans[id], onlyCurrent);
}

bool FanHardware::ensureLimits(std::uint8_t id)
{
    FanRecord& record = m_fans[id];
    if (hasLimits(record)) {
        return true;
    }
    readLimits(id, record);
    if (hasLimits(record)) {
        LOG_INFO("Fan {}: the speed limits can be read now", id);
        m_missingLimitsReported[id] = false;
        // Until now the fan was left to the controller.
        const std::lock_guard lock(m_driveMutex);
        sendActiveModes();
        return true;
    }
    if (!m_missingLimitsReported[id]) {
        m_missingLimitsReported[id] = true;
        LOG_WARN("Fan {}: the speed limits can't be read, the fan is left to the system", id);
    }
    return false;
}

std::uint16_t FanHardware::clampToLimits(std::uint8_t id, std::uint32_t rpm) const
{
    const FanRecord& record = m_fans[id];
    return static_cast<std::uint16_t>(
        std::clamp<std::uint32_t>(rpm, record.rpmMin(), record.rpmMax()));
}

void FanHardware::applyControlModes()
{
    const std::lock_guard lock(m_driveMutex);
    if (!m_isClosed) {
        sendModes(m_profiles.activeProfile());
    }
}

void FanHardware::writeFanRPM(std::uint8_t id, std::uint32_t rpm)
{
    const std::lock_guard lock(m_driveMutex);
    if (m_isClosed || m_withheld[id] || !hasLimits(m_fans[id])) {
        return;
    }
    if (!m_lastAssertion || m_clock.elapsedMilliseconds() - *m_lastAssertion > assertionInterval) {
        sendActiveModes();
    }
    // On one transport a successful write gives false: nothing depends on it.
    static_cast<void>(m_smc.setFanRPM(id, clampToLimits(id, rpm)));
}

void FanHardware::setWithheld(std::uint8_t id, bool withheld)
{
    const std::lock_guard lock(m_driveMutex);
    m_withheld[id] = withheld;
    sendActiveModes();
}

void FanHardware::withholdNone()
{
    const std::lock_guard lock(m_driveMutex);
    if (std::find(m_withheld.begin(), m_withheld.end(), true) != m_withheld.end()) {
        m_withheld.assign(m_withheld.size(), false);
        sendActiveModes();
    }
}

void FanHardware::forgetAssertion()
{
    const std::lock_guard lock(m_driveMutex);
    m_lastAssertion.reset();
}

void FanHardware::restoreDefaultControl(bool userLoggedOut)
{
    LOG_INFO("restore default control?");
    const std::lock_guard lock(m_driveMutex);
    m_isClosed = true;
    if (userLoggedOut && m_systemInfo.isLogoutSensitiveIMac()) {
        LOG_INFO("no");
        m_smc.leaveFans();
    } else {
        LOG_INFO("yes");
        release();
    }
    m_isReleased = true;
}

// Needs the mutex to be held. Nobody sends the modes again after the last time, so
// that a byte lost on the way would leave the fans forced: the controller is asked
// what it has understood. One that takes its time not to answer is left alone, so
// that the stop ends in time.
void FanHardware::release()
{
    const std::int64_t deadline = m_clock.elapsedMilliseconds() + releasePatience;
    for (int attempt = 0; attempt < releaseAttempts; ++attempt) {
        sendModes(m_profiles.defaultProfile());
        if (m_fans.empty()) {
            return;
        }
        std::vector<bool> forced;
        const bool isAnswered = m_smc.getFansControlModes(forced) && forced.size() >= m_fans.size();
        if (isAnswered && std::find(forced.begin(), forced.end(), true) == forced.end()) {
            return;
        }
        if (m_clock.elapsedMilliseconds() >= deadline) {
            return;
        }
        if (isAnswered) {
            LOG_WARN("The controller still forces fans after they were given back");
        }
    }
}

void FanHardware::claim()
{
    const std::lock_guard lock(m_driveMutex);
    m_lastAssertion.reset();
    m_isReleased = false;
    if (m_isClosed.exchange(false)) {
        ++m_claims;
        sendActiveModes();
    }
}

void FanHardware::loadRecords(std::uint8_t count)
{
    const QStringList names = loadFanNames(m_systemInfo);
    std::vector<FanRecord> fans;
    fans.reserve(count);
    for (std::uint8_t id = 0; id < count; ++id) {
        QString name = names.value(id);
        if (name.isEmpty()) {
            name = QString::fromStdString(m_smc.getFanName(id));
        }
        LOG_INFO("Fan {}: {}", id, core::log::singleLine(name));
        readSpeeds(id, fans.emplace_back(name, m_clock), false);
    }
    const std::lock_guard lock(m_driveMutex);
    m_fans.swap(fans);
    m_withheld.assign(count, false);
    m_missingLimitsReported.assign(count, false);
    m_isLoaded = true;
}

void FanHardware::addPredefinedProfiles()
{
    QVector<FanControlMode> automatic;
    QVector<FanControlMode> fullBlast;
    for (const FanRecord& record : m_fans) {
        automatic.append(FanControlMode::automatic());
        fullBlast.append(FanControlMode::constant(record.rpmMax()));
    }
    m_profiles.addPredefined(automatic, FanProfilePredefined::automaticId);
    m_profiles.addPredefined(fullBlast, FanProfilePredefined::fullBlastId);
}

void FanHardware::checkFansControlModeFromSMC()
{
    LOG_INFO("checkFansControlModeFromSMC");
    std::vector<bool> forced;
    if (!m_smc.getFansControlModes(forced)) {
        LOG_ERR("Unable to query fans control mode!");
        return;
    }
    bool isAnyForced = false;
    for (std::size_t id = 0; id < forced.size(); ++id) {
        if (forced[id]) {
            LOG_WARN("Fan {} mode is set by another program", id);
            isAnyForced = true;
        }
    }
    if (isAnyForced) {
        const std::lock_guard lock(m_driveMutex);
        sendModes(m_profiles.defaultProfile());
    }
}

void FanHardware::readSpeeds(std::uint8_t id, FanRecord& record, bool onlyCurrent)
{
    std::uint16_t current = FanSpeeds::unread;
    static_cast<void>(m_smc.getFanRPM(id, SMC::FanKeyKind::Actual, current));
    if (!onlyCurrent) {
        readLimits(id, record);
    }
    record.setRpmCurrent(current);
}

void FanHardware::readLimits(std::uint8_t id, FanRecord& record)
{
    std::uint16_t min = FanSpeeds::unread;
    std::uint16_t max = FanSpeeds::unread;
    static_cast<void>(m_smc.getFanRPM(id, SMC::FanKeyKind::Min, min));
    static_cast<void>(m_smc.getFanRPM(id, SMC::FanKeyKind::Max, max));
    if (min < FanSpeeds::unread) {
        record.setRpmMin(min);
    }
    if (max < FanSpeeds::unread) {
        record.setRpmMax(max);
    }
}

bool FanHardware::isUsable() const
{
    return !m_systemInfo.isPassive() && !core::flags::isSet(core::flags::noSupport);
}

// A range without a speed in it is no better than none.
bool FanHardware::hasLimits(const FanRecord& fan)
{
    const FanSpeeds speeds = fan.speeds();
    return speeds.min != FanSpeeds::unread && speeds.max != FanSpeeds::unread
        && speeds.min <= speeds.max && speeds.max > 0;
}

// Needs the mutex to be held. A load that has failed may have told of no fan yet:
// those that the controller knows are sent as automatic.
void FanHardware::sendModes(const FanProfile& profile)
{
    const std::uint8_t count = isUsable() ? m_smc.getFanCount() : std::uint8_t(0);
    if (count == 0) {
        return;
    }
    std::vector<bool> forced(count, false);
    for (std::size_t i = 0; i < std::min(forced.size(), m_fans.size()); ++i) {
        const auto id = static_cast<std::uint8_t>(i);
        forced[i] = id < profile.modeCount() && !profile.mode(id).isAutomatic() && !m_withheld[i]
            && hasLimits(m_fans[i]);
    }
    static_cast<void>(m_smc.setFansControlModes(forced));
}

// Needs the mutex to be held.
void FanHardware::sendActiveModes()
{
    if (!m_isClosed) {
        sendModes(m_profiles.activeProfile());
        m_lastAssertion = m_clock.elapsedMilliseconds();
    }
}
