#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "app/sensors/drives/storagecalls.h"
#include "tests/sensors/drives/driveblocks.h"

// A Windows whose volumes and drives the test lays out. It notes every call, control
// calls with the bytes that were sent.
class FakeStorageCalls final : public StorageCalls {
public:
    struct Volume {
        std::uint32_t driveType = 3;
        bool opens = true;
        bool hasExtents = true;
        std::uint32_t extentsError = 1; // when it has none, or more than fit
        bool hasMoreExtents = false;
        std::uint32_t disk = 0;
    };
    struct Drive {
        bool opens = true;
        bool answersProperty = true;
        std::uint32_t busType = 11; // SATA
        bool answersVersion = true;
        std::uint32_t capabilities = 7;
        bool enables = true;
        bool identifies = true;
        DriveBlock identify = identifyBlock("Model", "Serial");
        bool reads = true;
        DriveBlock smart = smartBlock(38);
        std::optional<bool> isOn = true;
        bool isInStandby = false; // and any read wakes it
        int wakeUps = 0;
    };

    std::map<char, Volume> volumes;
    std::map<std::int32_t, Drive> drives;
    // Each call, such as "open \\.\C:" or "control PHYSICALDRIVE0 0007C088 in.. out 528".
    QStringList calls;
    // Called in each read of a drive, on the thread that reads.
    std::function<void()> onRead;
    bool notesCalls = true;

    // What is open, in the order of opening.
    [[nodiscard]] QStringList openHandles() const
    {
        QStringList result;
        for (const auto& handle : m_handles) {
            if (handle->isOpen) {
                result.append(handle->path);
            }
        }
        return result;
    }

    [[nodiscard]] QStringList takeCalls() { return std::exchange(calls, {}); }

    std::uint32_t getLogicalDrives() override
    {
        std::uint32_t mask = 0;
        for (const auto& [letter, volume] : volumes) {
            mask |= 1U << (letter - 'A');
        }
        return mask;
    }

    std::uint32_t getDriveType(const QString& rootPath) override
    {
        calls.append(QStringLiteral("type ") + rootPath);
        return volumes.at(rootPath.at(0).toLatin1()).driveType;
    }

    Handle createFile(const QString& path, std::uint32_t desiredAccess, std::uint32_t shareMode,
                      std::uint32_t creationDisposition, std::uint32_t flagsAndAttributes) override
    {
        calls.append(QStringLiteral("open %1 %2 %3 %4 %5")
                         .arg(path, hex(desiredAccess), QString::number(shareMode),
                              QString::number(creationDisposition),
                              QString::number(flagsAndAttributes)));
        Opened opened { path, true, volumeAt(path), driveAt(path) };
        const bool opens = (opened.volume != nullptr && opened.volume->opens)
            || (opened.drive != nullptr && opened.drive->opens);
        if (!opens) {
            m_error = 2;
            return nullptr;
        }
        m_handles.push_back(std::make_unique<Opened>(opened));
        return m_handles.back().get();
    }

    std::optional<std::size_t> deviceIoControl(Handle device, std::uint32_t code,
                                               std::span<const std::uint8_t> request,
                                               std::span<std::uint8_t> reply) override
    {
        const Opened& opened = *static_cast<Opened*>(device);
        if (notesCalls) {
            calls.append(
                QStringLiteral("control %1 %2 [%3] %4")
                    .arg(opened.path, hex(code), hexBytes(request), QString::number(reply.size())));
        }
        return opened.isOpen && answer(opened, code, request, reply) ? std::optional(reply.size())
                                                                     : std::nullopt;
    }

    std::optional<bool> getDevicePowerState(Handle device) override
    {
        const Opened& opened = *static_cast<Opened*>(device);
        if (notesCalls) {
            calls.append(QStringLiteral("power ") + opened.path);
        }
        return opened.drive->isOn;
    }

    void closeHandle(Handle handle) override
    {
        auto& opened = *static_cast<Opened*>(handle);
        calls.append(QStringLiteral("close ") + opened.path);
        if (!opened.isOpen) {
            qFatal("A handle is closed twice");
        }
        opened.isOpen = false;
    }

    std::uint32_t lastError() override { return m_error; }

    // What the sizes in a query's reply were when it was asked.
    QByteArray propertyReplyBefore;

private:
    struct Opened {
        QString path;
        bool isOpen;
        Volume* volume; // null for a drive
        Drive* drive; // null for a volume
    };

    static QString hex(std::uint32_t number)
    {
        return QStringLiteral("%1").arg(number, 8, 16, QLatin1Char('0')).toUpper();
    }

    static QString hexBytes(std::span<const std::uint8_t> bytes)
    {
        return QString::fromLatin1(
            QByteArray(static_cast<const char*>(static_cast<const void*>(bytes.data())),
                       static_cast<int>(bytes.size()))
                .toHex(' ')
                .toUpper());
    }

    // Null when there is none.
    Drive* driveAt(const QString& path)
    {
        const QString prefix = QStringLiteral("\\\\.\\PHYSICALDRIVE");
        const auto found = drives.find(path.mid(prefix.size()).toInt());
        return path.startsWith(prefix) && found != drives.end() ? &found->second : nullptr;
    }

    Volume* volumeAt(const QString& path)
    {
        const auto found = volumes.find(path.at(path.size() - 2).toLatin1());
        return path.endsWith(QLatin1Char(':')) && found != volumes.end() ? &found->second : nullptr;
    }

    bool fail(std::uint32_t error)
    {
        m_error = error;
        return false;
    }

    static void put(std::span<std::uint8_t> reply, std::size_t place, std::uint32_t number)
    {
        for (std::size_t index = 0; index < sizeof(number); ++index) {
            reply[place + index] = static_cast<std::uint8_t>(number >> (8 * index));
        }
    }

    bool answer(const Opened& opened, std::uint32_t code, std::span<const std::uint8_t> request,
                std::span<std::uint8_t> reply)
    {
        if (opened.volume != nullptr) {
            return answerExtents(*opened.volume, reply);
        }
        Drive& drive = *opened.drive;
        switch (code) {
        case 0x002D1400:
            propertyReplyBefore
                = QByteArray(static_cast<const char*>(static_cast<const void*>(reply.data())), 32);
            // Even a call that fails may have written.
            put(reply, 28, drive.busType);
            return drive.answersProperty || fail(50);
        case 0x00074080:
            put(reply, 4, drive.capabilities);
            return drive.answersVersion || fail(1);
        case 0x0007C084:
            return drive.enables || fail(31);
        case 0x0007C088:
            return answerData(drive, request, reply);
        default:
            return fail(87);
        }
    }

    bool answerExtents(const Volume& volume, std::span<std::uint8_t> reply)
    {
        if (!volume.hasExtents) {
            return fail(volume.extentsError);
        }
        put(reply, 0, volume.hasMoreExtents ? 2 : 1);
        put(reply, 8, volume.disk);
        return !volume.hasMoreExtents || fail(234);
    }

    bool answerData(Drive& drive, std::span<const std::uint8_t> request,
                    std::span<std::uint8_t> reply)
    {
        constexpr std::size_t commandRegister = 10;
        constexpr std::uint8_t identify = 0xEC;
        const bool asksIdentity = request[commandRegister] == identify;
        if (!asksIdentity) {
            if (drive.isInStandby) {
                ++drive.wakeUps;
            }
            if (onRead) {
                onRead();
            }
        }
        if (!(asksIdentity ? drive.identifies : drive.reads)) {
            return fail(1117);
        }
        const DriveBlock& block = asksIdentity ? drive.identify : drive.smart;
        std::copy(block.begin(), block.end(), reply.begin() + 16);
        return true;
    }

    std::vector<std::unique_ptr<Opened>> m_handles;
    std::uint32_t m_error = 0;
};
