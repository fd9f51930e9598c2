#include "app/sensors/drives/mounteddisks.h"

#include <utility>

#include <QByteArrayList>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include "core/system_path.h"

namespace {

// What a file system lies on.
struct Mount {
    QByteArray device; // "major:minor"
    QByteArray source; // a path, or what the file system calls it
};

// Blanks and the like are written as octal numbers: "\040".
QByteArray unescaped(const QByteArray& text)
{
    constexpr int digits = 3;
    constexpr int base = 8;
    QByteArray result;
    for (int place = 0; place < text.size(); ++place) {
        bool isNumber = false;
        const int code
            = text.at(place) == '\\' ? text.mid(place + 1, digits).toInt(&isNumber, base) : 0;
        if (isNumber && code > 0 && code <= 0xFF) {
            result.append(static_cast<char>(code));
            place += digits;
        } else {
            result.append(text.at(place));
        }
    }
    return result;
}

// A line is "36 35 8:2 / /home rw,noatime shared:1 - ext4 /dev/sda2 rw", with any
// number of words before the dash.
std::vector<Mount> parseMounts(const QByteArray& mountInfo)
{
    constexpr int deviceWord = 2;
    std::vector<Mount> mounts;
    const QByteArrayList lines = mountInfo.split('\n');
    for (const QByteArray& line : lines) {
        const QByteArrayList words = line.split(' ');
        const int dash = words.indexOf("-");
        if (words.size() > deviceWord && dash > deviceWord) {
            mounts.push_back({ words.at(deviceWord), unescaped(words.value(dash + 2)) });
        }
    }
    return mounts;
}

// The block devices as the kernel lists them.
class BlockDevices {
public:
    BlockDevices()
        : m_root(core::systemPath(QStringLiteral("/sys/class/block")))
    {
        const QStringList names = m_root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString& name : names) {
            m_names.insert(attribute(name, "dev"), name);
        }
    }

    [[nodiscard]] QStringList namesOf(const Mount& mount) const
    {
        const QString name = m_names.value(mount.device);
        if (!name.isEmpty()) {
            return QStringList(name);
        }
        // Some file systems have a number of their own; the source is a device's path.
        const QFileInfo source(core::systemPath(QFile::decodeName(mount.source)));
        const QString device = QFileInfo(source.canonicalFilePath()).fileName();
        return mount.source.startsWith("/dev/") && !device.isEmpty() && m_root.exists(device)
            ? withCompanions(device)
            : QStringList();
    }

    [[nodiscard]] QStringList layersBelow(const QString& name) const
    {
        return QDir(m_root.filePath(name + QStringLiteral("/slaves")))
            .entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    }

    // The disk of a partition; empty for what is none.
    [[nodiscard]] QString wholeOf(const QString& name) const
    {
        return m_root.exists(name + QStringLiteral("/partition"))
            ? QFileInfo(QFileInfo(place(name)).path()).fileName()
            : QString();
    }

    [[nodiscard]] MountedDisk disk(const QString& name) const
    {
        static const QRegularExpression usb(QStringLiteral("/usb\\d+/"));
        return { name, core::systemPath(QStringLiteral("/dev/") + name),
                 attribute(name, "removable") == "0", usb.match(place(name)).hasMatch(),
                 m_root.filePath(name + QStringLiteral("/device/power/runtime_status")) };
    }

private:
    const QDir m_root;
    QHash<QByteArray, QString> m_names; // of a device number

    // With the other devices of a btrfs, of which the list of mounts names one.
    [[nodiscard]] QStringList withCompanions(const QString& device) const
    {
        const QDir volumes(core::systemPath(QStringLiteral("/sys/fs/btrfs")));
        const QStringList ids = volumes.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString& id : ids) {
            const QDir devices(volumes.filePath(id + QStringLiteral("/devices")));
            const QStringList names
                = devices.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
            if (names.contains(device)) {
                return names;
            }
        }
        return QStringList(device);
    }

    // Where the device hangs in the machine.
    [[nodiscard]] QString place(const QString& name) const
    {
        return QFileInfo(m_root.filePath(name)).canonicalFilePath();
    }

    [[nodiscard]] QByteArray attribute(const QString& name, const char* file) const
    {
        QFile contents(m_root.filePath(name + QLatin1Char('/') + QLatin1String(file)));
        return contents.open(QIODevice::ReadOnly) ? contents.readAll().trimmed() : QByteArray();
    }
};

class DiskSearch {
public:
    void descend(const QString& name)
    {
        if (m_seen.contains(name)) {
            return;
        }
        m_seen.insert(name);
        const QStringList layers = m_devices.layersBelow(name);
        for (const QString& layer : layers) {
            descend(layer);
        }
        const QString whole = m_devices.wholeOf(name);
        if (!whole.isEmpty()) {
            descend(whole);
        } else if (layers.isEmpty() && name.startsWith(QLatin1String("sd"))) {
            m_disks.push_back(m_devices.disk(name));
        }
    }

    void add(const Mount& mount)
    {
        const QStringList names = m_devices.namesOf(mount);
        for (const QString& name : names) {
            descend(name);
        }
    }

    [[nodiscard]] std::vector<MountedDisk> takeDisks() { return std::move(m_disks); }

private:
    const BlockDevices m_devices;
    QSet<QString> m_seen;
    std::vector<MountedDisk> m_disks;
};

} // namespace

std::vector<MountedDisk> findMountedDisks(const QByteArray& mountInfo)
{
    DiskSearch search;
    for (const Mount& mount : parseMounts(mountInfo)) {
        search.add(mount);
    }
    return search.takeDisks();
}
