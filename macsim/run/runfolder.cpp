#include "macsim/run/runfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "smcd/protocol/records.h"

namespace macsim {

namespace {

constexpr int longestSocketPath = 107; // bytes

struct Subfolder {
    const char* name;
    const char* variable;
};

constexpr Subfolder subfolders[] {
    { "sysroot", "BRISORA_SYSROOT" },
    { "config", "XDG_CONFIG_HOME" },
    { "data", "XDG_DATA_HOME" },
    { "cache", "XDG_CACHE_HOME" },
    { "run", "XDG_RUNTIME_DIR" },
    { "tmp", "TMPDIR" },
    { "home", "HOME" },
};

bool makePrivate(const QString& folder)
{
    return QDir().mkpath(folder)
        && QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// HOME and XDG_RUNTIME_DIR change, and with them the places where the display's
// secrets and sockets are looked up.
void keepDisplay(QProcessEnvironment& environment)
{
    const QString authority = QStringLiteral("XAUTHORITY");
    if (!environment.contains(authority)) {
        const QString usual
            = environment.value(QStringLiteral("HOME")) + QStringLiteral("/.Xauthority");
        if (QFileInfo::exists(usual)) {
            environment.insert(authority, usual);
        }
    }
    const QString wayland = QStringLiteral("WAYLAND_DISPLAY");
    const QString display = environment.value(wayland);
    const QString runtime = environment.value(QStringLiteral("XDG_RUNTIME_DIR"));
    if (!display.isEmpty() && QFileInfo(display).isRelative() && !runtime.isEmpty()) {
        environment.insert(wayland, runtime + QLatin1Char('/') + display);
    }
}

void prepend(QProcessEnvironment& environment, const QString& variable, const QString& folder,
             QLatin1Char separator)
{
    const QString before = environment.value(variable);
    environment.insert(variable, before.isEmpty() ? folder : folder + separator + before);
}

} // namespace

std::optional<RunFolder> RunFolder::create(const QString& path, QString& error)
{
    RunFolder folder;
    if (path.isEmpty()) {
        folder.m_temporary
            = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/macsim-XXXXXX"));
        if (!folder.m_temporary->isValid()) {
            error = folder.m_temporary->errorString();
            return std::nullopt;
        }
        folder.m_path = folder.m_temporary->path();
    } else {
        folder.m_path = QFileInfo(path).absoluteFilePath();
    }
    for (const QString& socket : { folder.socket(), folder.driverSocket() }) {
        if (QFile::encodeName(socket).size() > longestSocketPath) {
            error = QStringLiteral("%1 is too long for a socket's path").arg(socket);
            return std::nullopt;
        }
    }
    bool ok = QDir().mkpath(folder.m_path);
    for (const Subfolder& subfolder : subfolders) {
        ok = ok && makePrivate(folder.inside(QLatin1String(subfolder.name)));
    }
    if (!ok) {
        error = QStringLiteral("%1 can't be written").arg(folder.m_path);
        return std::nullopt;
    }
    return folder;
}

QString RunFolder::driverSocket() const
{
    constexpr std::string_view path = smcd::protocol::socketPath;
    return sysroot() + QString::fromLatin1(path.data(), static_cast<int>(path.size()));
}

QString RunFolder::inside(const QString& name) const { return m_path + QLatin1Char('/') + name; }

QProcessEnvironment RunFolder::environment(const QProcessEnvironment& own,
                                           const QString& portFaceFolder) const
{
    QProcessEnvironment result = own;
    keepDisplay(result);
    for (const Subfolder& subfolder : subfolders) {
        result.insert(QLatin1String(subfolder.variable), inside(QLatin1String(subfolder.name)));
    }
    prepend(result, QStringLiteral("LD_LIBRARY_PATH"), portFaceFolder, QLatin1Char(':'));
    result.insert(QStringLiteral("MACSIM_SOCKET"), socket());
    result.remove(QStringLiteral("MACSIM_TCP")); // of a run around this one
    return result;
}

void RunFolder::addDriveFace(QProcessEnvironment& environment, const QString& library)
{
    prepend(environment, QStringLiteral("LD_PRELOAD"), library, QLatin1Char(':'));
}

void RunFolder::addWine(QProcessEnvironment& environment, const QString& portFaceFolder,
                        const QString& tcpAddress)
{
    // Wine shows the whole file system as this drive.
    QString folder = QStringLiteral("Z:") + QFileInfo(portFaceFolder).absoluteFilePath();
    folder.replace(QLatin1Char('/'), QLatin1Char('\\'));
    prepend(environment, QStringLiteral("WINEPATH"), folder, QLatin1Char(';'));
    environment.insert(QStringLiteral("MACSIM_TCP"), tcpAddress);
}

} // namespace macsim
