#include "tests/wine/wineprefix.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace {

constexpr int copyTimeout = 60000; // milliseconds

const QString copyScript = QStringLiteral(
    "set -e; cd \"$1\"; cp -al drive_c \"$2\"; rm -r \"$2/drive_c/users\"; "
    "cp -a drive_c/users \"$2/drive_c\"; cp -a dosdevices .update-timestamp *.reg \"$2\"");

QString model() { return qEnvironmentVariable("BRISORA_WINE_PREFIX"); }

} // namespace

QString WinePrefix::missing()
{
    for (const char* program : { "wine", "wineserver" }) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty()) {
            return QStringLiteral("%1 is not installed").arg(QLatin1String(program));
        }
    }
    if (model().isEmpty()) {
        return QStringLiteral("BRISORA_WINE_PREFIX names no Wine prefix to copy");
    }
    if (!QFile::exists(model() + QStringLiteral("/system.reg"))) {
        return QStringLiteral("%1 is no Wine prefix").arg(model());
    }
    return {};
}

WinePrefix::WinePrefix()
    // Files can be shared within one file system only.
    : m_folder(std::make_unique<QTemporaryDir>(model() + QStringLiteral("-XXXXXX")))
{
    if (!m_folder->isValid()) {
        qFatal("No folder for a Wine prefix: %s", qPrintable(m_folder->errorString()));
    }
    QProcess copy;
    copy.start(QStringLiteral("sh"),
               { QStringLiteral("-c"), copyScript, QStringLiteral("sh"), model(), path() });
    if (!copy.waitForFinished(copyTimeout) || copy.exitCode() != 0) {
        qFatal("The Wine prefix can't be copied: %s", copy.readAllStandardError().constData());
    }
}

QStringList WinePrefix::variables() const
{
    return { QStringLiteral("WINEPREFIX=") + path(), QStringLiteral("WINEARCH=win32"),
             QStringLiteral("WINEDEBUG=-all"),
             // No entries in the desktop's menus, no offers to install add-ons.
             QStringLiteral("WINEDLLOVERRIDES=winemenubuilder.exe=d;mscoree=d;mshtml=d") };
}

void WinePrefix::installLibrary(const QString& file) const
{
    const QString folder = path() + QStringLiteral("/drive_c/windows/system32/");
    if (!QFile::copy(file, folder + QFileInfo(file).fileName())) {
        qFatal("%s can't be installed in the Wine prefix", qPrintable(file));
    }
}

QString WinePrefix::usersFile(const QString& name) const
{
    QDirIterator files(path() + QStringLiteral("/drive_c/users"), { name }, QDir::Files,
                       QDirIterator::Subdirectories);
    return files.hasNext() ? files.next() : QString();
}
