#include "app/platform/autostartlinux.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "build_config.h"
#include "core/log/log.h"

namespace {

// A path as one argument of a command: in quotes, with the characters escaped that
// keep a meaning in them, once for the command and once for the entry's text.
QString quoted(const QString& path)
{
    QString result;
    for (const QChar character : path) {
        if (character == QLatin1Char('%')) {
            result += QLatin1String("%%");
        } else if (character == QLatin1Char('\\')) {
            result += QLatin1String("\\\\\\\\");
        } else if (character == QLatin1Char('"') || character == QLatin1Char('`')
                   || character == QLatin1Char('$')) {
            result += QLatin1String("\\\\") + character;
        } else {
            result += character;
        }
    }
    return QLatin1Char('"') + result + QLatin1Char('"');
}

} // namespace

AutostartLinux::AutostartLinux(const QString& configurationFolder, const QString& executablePath)
    : m_file(QDir(configurationFolder).filePath(QStringLiteral("autostart/brisora.desktop")))
    , m_executablePath(executablePath)
{
}

QByteArray AutostartLinux::entry(const QString& executablePath)
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=%1\n"
                          "Exec=%2 /minimized\n"
                          "Terminal=false\n")
        .arg(QLatin1String(BuildConfig::productName), quoted(executablePath))
        .toUtf8();
}

void AutostartLinux::setEnabled(bool enable)
{
    if (!enable) {
        if (QFile::exists(m_file) && !QFile::remove(m_file)) {
            LOG_WARN("The start at logon can't be switched off: {} stays", m_file);
        }
        return;
    }
    QDir().mkpath(QFileInfo(m_file).path());
    QSaveFile file(m_file);
    if (!file.open(QIODevice::WriteOnly) || file.write(entry(m_executablePath)) < 0
        || !file.commit()) {
        LOG_WARN("The start at logon can't be switched on: {}: {}", m_file, file.errorString());
    }
}

bool AutostartLinux::isEnabled() const
{
    QFile file(m_file);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QList<QByteArray> lines = file.readAll().toLower().split('\n');
    for (const QByteArray& line : lines) {
        const QByteArray setting = line.simplified().replace(" ", "");
        if (setting == "hidden=true" || setting == "x-gnome-autostart-enabled=false") {
            return false;
        }
    }
    return true;
}
