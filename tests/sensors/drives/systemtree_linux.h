#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

// A folder that holds what a test wants to be seen of /sys and /dev, and that takes
// their place while this lives.
class SystemTree {
public:
    SystemTree() { qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root.path())); }
    SystemTree(const SystemTree&) = delete;
    SystemTree& operator=(const SystemTree&) = delete;
    ~SystemTree() { qunsetenv("BRISORA_SYSROOT"); }

    // Folders on the way are made.
    void addFile(const QString& path, const QByteArray& contents)
    {
        QFile file(prepared(path));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size()) {
            qFatal("%s can't be written", qPrintable(path));
        }
    }

    void addFolder(const QString& path) { QDir().mkpath(m_root.path() + path); }

    // The target is a path in the tree too.
    void addLink(const QString& path, const QString& target)
    {
        if (!QFile::link(m_root.path() + target, prepared(path))) {
            qFatal("%s can't be linked", qPrintable(path));
        }
    }

    // A disk or a device of another kind, at its place in the machine; the number is
    // its last part's.
    void addDevice(const QString& place, const QByteArray& number, const char* removable = "0")
    {
        addFile(place + QStringLiteral("/dev"), number + '\n');
        addFile(place + QStringLiteral("/removable"), QByteArray(removable) + '\n');
        list(place);
    }

    void addPartition(const QString& place, const QByteArray& number)
    {
        addFile(place + QStringLiteral("/dev"), number + '\n');
        addFile(place + QStringLiteral("/partition"), "1\n");
        list(place);
    }

    // What a device of several layers lies on.
    void addLayer(const QString& place, const QString& below)
    {
        addLink(place + QStringLiteral("/slaves/") + QFileInfo(below).fileName(), below);
    }

    [[nodiscard]] QString path() const { return m_root.path(); }

private:
    QTemporaryDir m_root;

    QString prepared(const QString& path)
    {
        const QString whole = m_root.path() + path;
        QDir().mkpath(QFileInfo(whole).path());
        return whole;
    }

    void list(const QString& place)
    {
        addLink(QStringLiteral("/sys/class/block/") + QFileInfo(place).fileName(), place);
    }
};
