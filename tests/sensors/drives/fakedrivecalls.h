#pragma once

#include <algorithm>
#include <cerrno>
#include <functional>
#include <map>
#include <utility>

#include <QByteArray>
#include <QStringList>

#include "app/sensors/drives/drivecalls.h"
#include "tests/sensors/drives/driveblocks.h"

// A Linux whose drives and files the test lays out. It notes every call, commands
// with the bytes that were sent.
class FakeDriveCalls final : public DriveCalls {
public:
    struct Drive {
        int openError = 0;
        int commandError = 0; // of the kernel, for every command
        int identifyError = 0; // EIO: the drive refuses; others: the kernel does
        int enableError = 0;
        int readError = 0;
        DriveBlock identify = identifyBlock("Model", "Serial");
        DriveBlock smart = smartBlock(38);
        std::uint8_t powerMode = 0xFF;
        bool tellsPowerMode = true;
        bool usesFixedSense = false;
        int wakeUps = 0; // by commands that it got in standby
        int commands = 0;
    };

    std::map<QByteArray, Drive> drives; // by path
    std::map<QByteArray, QByteArray> files;
    // Each call, such as "open /dev/sda".
    QStringList calls;
    bool notesCalls = true;
    // Called in each SMART READ DATA, on the thread that reads.
    std::function<void()> onRead;
    // Called in each question for the power mode.
    std::function<void()> onPowerCheck;

    [[nodiscard]] QStringList takeCalls() { return std::exchange(calls, {}); }
    [[nodiscard]] int openDrives() const { return static_cast<int>(m_open.size()); }

    Opened open(const QByteArray& path) override
    {
        note("open " + path);
        const auto found = drives.find(path);
        const int error = found == drives.end() ? ENOENT : found->second.openError;
        if (error != 0) {
            return { -1, error };
        }
        m_open[++m_lastDescriptor] = path;
        return { m_lastDescriptor, 0 };
    }

    ScsiOutcome execute(int descriptor, const ScsiCommand& command) override
    {
        const QByteArray& path = m_open.at(descriptor);
        if (notesCalls) {
            const auto* bytes = static_cast<const char*>(static_cast<const void*>(&command.bytes));
            note("command " + path + " ["
                 + QByteArray(bytes, static_cast<int>(command.bytes.size())).toHex(' ').toUpper()
                 + "] " + QByteArray::number(static_cast<int>(command.data.size())));
        }
        Drive& drive = drives.at(path);
        ++drive.commands;
        ScsiOutcome outcome;
        outcome.error = drive.commandError;
        return outcome.error != 0 ? outcome : answer(drive, command);
    }

    void close(int descriptor) override
    {
        note("close " + m_open.at(descriptor));
        m_open.erase(descriptor);
    }

    std::string_view readFile(const QByteArray& path, std::span<char> buffer) override
    {
        if (notesCalls) {
            note("file " + path);
        }
        const auto found = files.find(path);
        if (found == files.end()) {
            return {};
        }
        const std::size_t size
            = std::min(static_cast<std::size_t>(found->second.size()), buffer.size());
        std::copy_n(found->second.begin(), size, buffer.begin());
        return { buffer.data(), size };
    }

private:
    void note(const QByteArray& call) { calls.append(QString::fromUtf8(call)); }

    [[nodiscard]] static bool isStandby(const Drive& drive) { return drive.powerMode < 2; }

    ScsiOutcome answer(Drive& drive, const ScsiCommand& command)
    {
        constexpr std::uint8_t identify = 0xEC;
        constexpr std::uint8_t checkPowerMode = 0xE5;
        constexpr std::uint8_t smartEnable = 0xD8;
        switch (command.bytes[14]) {
        case checkPowerMode:
            if (onPowerCheck) {
                onPowerCheck();
            }
            return powerMode(drive);
        case identify:
            return data(drive.identify, drive.identifyError, command);
        default:
            drive.wakeUps += isStandby(drive) ? 1 : 0;
            if (command.bytes[4] == smartEnable) {
                return data({}, drive.enableError, command);
            }
            if (onRead) {
                onRead();
            }
            return data(drive.smart, drive.readError, command);
        }
    }

    static ScsiOutcome data(const DriveBlock& block, int error, const ScsiCommand& command)
    {
        ScsiOutcome outcome;
        if (error == EIO) {
            outcome.status = 2;
            outcome.sense[0] = 0x72;
            outcome.sense[1] = 0x0B;
            outcome.senseSize = 22;
        } else {
            outcome.error = error;
        }
        std::copy_n(block.begin(), command.data.size(), command.data.begin());
        return outcome;
    }

    // As the kernel hands on the drive's registers.
    static ScsiOutcome powerMode(const Drive& drive)
    {
        ScsiOutcome outcome;
        outcome.status = 2;
        outcome.driverStatus = 8;
        if (drive.tellsPowerMode && drive.usesFixedSense) {
            outcome.sense = { 0x70, 0, 1, 0, 0x50, 0, drive.powerMode, 10, 0, 0, 0, 0, 0, 0x1D };
            outcome.senseSize = 18;
        } else if (drive.tellsPowerMode) {
            outcome.sense
                = { 0x72, 0x01, 0x00, 0x1D, 0, 0, 0,    14,  0x09, 12, 0, 0, 0, drive.powerMode,
                    0,    0,    0,    0,    0, 0, 0xA0, 0x50 };
            outcome.senseSize = 22;
        }
        return outcome;
    }

    std::map<int, QByteArray> m_open;
    int m_lastDescriptor = 100;
};
