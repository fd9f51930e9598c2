#include "macsim/model/simulateddrive.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "macsim/model/driveblocks.h"

namespace macsim {

namespace {

// Places in ATA PASS-THROUGH (16).
constexpr int commandSize = 16;
constexpr int operationPlace = 0;
constexpr int featuresPlace = 4;
constexpr int lbaMidPlace = 10;
constexpr int lbaHighPlace = 12;
constexpr int ataCommandPlace = 14;
constexpr quint8 passThrough16 = 0x85;

// ATA commands, and the features of SMART.
constexpr quint8 identifyDevice = 0xEC;
constexpr quint8 checkPowerMode = 0xE5;
constexpr quint8 standbyImmediate = 0xE0;
constexpr quint8 idleImmediate = 0xE1;
constexpr quint8 smartCommand = 0xB0;
constexpr quint8 smartReadData = 0xD0;
constexpr quint8 smartEnable = 0xD8;
constexpr quint8 smartDisable = 0xD9;
constexpr quint8 smartLbaMid = 0x4F;
constexpr quint8 smartLbaHigh = 0xC2;

constexpr quint8 checkCondition = 2;

quint8 byteAt(const QByteArray& bytes, int place)
{
    return place < bytes.size() ? static_cast<quint8>(bytes.at(place)) : quint8 { 0 };
}

// Sense bytes with the drive's registers in a descriptor.
QByteArray senseWithRegisters(quint8 key, quint8 error, quint8 sectorCount, quint8 status)
{
    QByteArray sense(22, '\0');
    sense[0] = 0x72;
    sense[1] = static_cast<char>(key);
    sense[3] = 0x1D; // the registers are there
    sense[7] = 14;
    sense[8] = 0x09;
    sense[9] = 12;
    sense[11] = static_cast<char>(error);
    sense[13] = static_cast<char>(sectorCount);
    sense[20] = static_cast<char>(0xA0);
    sense[21] = static_cast<char>(status);
    return sense;
}

SimulatedDrive::Answer aborted()
{
    constexpr quint8 abortedCommand = 0x0B;
    SimulatedDrive::Answer answer;
    answer.status = checkCondition;
    answer.sense = senseWithRegisters(abortedCommand, 0x04, 0, 0x51);
    answer.word = "aborted";
    return answer;
}

SimulatedDrive::Answer refused(int error)
{
    SimulatedDrive::Answer answer;
    answer.error = error;
    answer.word = error == ENODEV ? "gone" : "refused";
    return answer;
}

SimulatedDrive::Answer block(const QByteArray& data)
{
    SimulatedDrive::Answer answer;
    answer.data = data;
    return answer;
}

} // namespace

SimulatedDrive::SimulatedDrive(DriveDescription description)
    : m_description(std::move(description))
{
}

QString SimulatedDrive::commandName(const QByteArray& command)
{
    switch (byteAt(command, ataCommandPlace)) {
    case identifyDevice:
        return QStringLiteral("identify");
    case checkPowerMode:
        return QStringLiteral("check-power");
    case standbyImmediate:
        return QStringLiteral("standby");
    case idleImmediate:
        return QStringLiteral("idle");
    case smartCommand:
        switch (byteAt(command, featuresPlace)) {
        case smartReadData:
            return QStringLiteral("read-smart");
        case smartEnable:
            return QStringLiteral("enable-smart");
        case smartDisable:
            return QStringLiteral("disable-smart");
        default:
            break;
        }
        break;
    default:
        break;
    }
    return QStringLiteral("command-%1")
        .arg(byteAt(command, ataCommandPlace), 2, 16, QLatin1Char('0'));
}

int SimulatedDrive::open() const
{
    if (m_faults.unplugged || m_description.bus == DriveBus::Nvme) {
        return ENOENT;
    }
    return m_faults.mayNotBeOpened ? EACCES : 0;
}

SimulatedDrive::Answer SimulatedDrive::execute(const QByteArray& command, double celsius)
{
    if (m_faults.unplugged) {
        return refused(ENODEV);
    }
    if (m_faults.mayNotBeCommanded) {
        return refused(EPERM);
    }
    if (command.size() != commandSize || byteAt(command, operationPlace) != passThrough16) {
        return refused(EINVAL);
    }
    ++m_counters.commands;
    return m_faults.failing ? aborted() : dispatch(command, celsius);
}

SimulatedDrive::Answer SimulatedDrive::dispatch(const QByteArray& command, double celsius)
{
    m_highest = std::max(m_highest, celsius);
    switch (byteAt(command, ataCommandPlace)) {
    case identifyDevice:
        ++m_counters.identifies;
        return block(identifyBlock(m_description, m_isSmartEnabled));
    case checkPowerMode:
        ++m_counters.powerChecks;
        return powerMode();
    case standbyImmediate:
    case idleImmediate:
        m_isInStandby = byteAt(command, ataCommandPlace) == standbyImmediate;
        return {};
    case smartCommand:
        return smart(command, celsius);
    default:
        return aborted();
    }
}

SimulatedDrive::Answer SimulatedDrive::smart(const QByteArray& command, double celsius)
{
    if (byteAt(command, lbaMidPlace) != smartLbaMid
        || byteAt(command, lbaHighPlace) != smartLbaHigh) {
        return aborted();
    }
    if (std::exchange(m_isInStandby, false)) {
        ++m_counters.wakeUps;
    }
    switch (byteAt(command, featuresPlace)) {
    case smartReadData:
        ++m_counters.reads;
        return m_isSmartEnabled ? block(smartBlock(m_description, celsius, m_highest)) : aborted();
    case smartEnable:
    case smartDisable:
        m_isSmartEnabled = byteAt(command, featuresPlace) == smartEnable;
        return {};
    default:
        return aborted();
    }
}

SimulatedDrive::Answer SimulatedDrive::powerMode() const
{
    constexpr quint8 recoveredError = 0x01;
    constexpr quint8 standby = 0x00;
    constexpr quint8 activeOrIdle = 0xFF;
    Answer answer;
    answer.status = checkCondition;
    answer.sense
        = senseWithRegisters(recoveredError, 0, m_isInStandby ? standby : activeOrIdle, 0x50);
    answer.word = m_isInStandby ? "standby" : "awake";
    return answer;
}

} // namespace macsim
