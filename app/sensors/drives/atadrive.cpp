#include "app/sensors/drives/atadrive.h"

#include <cerrno>
#include <utility>

#include "app/sensors/drives/atapassthrough.h"
#include "core/system/kernelfile.h"

namespace {

// The power modes in which the disks stand still; in all others they turn.
constexpr std::uint8_t standbyZ = 0x00;
constexpr std::uint8_t standbyY = 0x01;
constexpr std::uint8_t spunDownWithCache = 0x40;

bool isStandby(std::uint8_t powerMode)
{
    return powerMode == standbyZ || powerMode == standbyY || powerMode == spunDownWithCache;
}

} // namespace

AtaDrive::AtaDrive(std::shared_ptr<DriveCalls> calls, int descriptor, QByteArray runtimeStatusFile)
    : m_calls(std::move(calls))
    , m_descriptor(descriptor)
    , m_runtimeStatusFile(std::move(runtimeStatusFile))
{
}

AtaDrive::~AtaDrive() { m_calls->close(m_descriptor); }

AtaDrive::Power AtaDrive::power()
{
    // Any command would wake the device, even this question.
    std::array<char, 16> buffer {};
    if (isRuntimeSuspended(m_calls->readFile(m_runtimeStatusFile, buffer))) {
        return Power::standby;
    }
    const auto powerMode = AtaPassThrough::returnedSectorCount(
        m_calls->execute(m_descriptor, AtaPassThrough::asking(AtaCommands::checkPowerMode)));
    if (!powerMode) {
        return Power::unknown;
    }
    return isStandby(*powerMode) ? Power::standby : Power::awake;
}

int AtaDrive::identify(Block& data)
{
    return execute(AtaPassThrough::reading(AtaCommands::identifyDevice, data));
}

int AtaDrive::enableSmart() { return execute(AtaPassThrough::plain(AtaCommands::smartEnable)); }

int AtaDrive::readSmartData(Block& data)
{
    return execute(AtaPassThrough::reading(AtaCommands::smartReadData, data));
}

int AtaDrive::execute(const ScsiCommand& command)
{
    const ScsiOutcome outcome = m_calls->execute(m_descriptor, command);
    if (outcome.error != 0) {
        return outcome.error;
    }
    return AtaPassThrough::succeeded(outcome) ? 0 : EIO;
}
