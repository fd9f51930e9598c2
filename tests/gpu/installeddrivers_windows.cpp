#include "tests/gpu/installeddrivers.h"

#include <array>
#include <string>

#include <windows.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

InstalledDrivers::InstalledDrivers()
{
    std::array<wchar_t, MAX_PATH> system {};
    GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size()));
    const QDir folder(QString::fromWCharArray(system.data()));
    const QDir drivers(QStringLiteral(DRIVERS_FOLDER));
    const QStringList names = drivers.entryList({ QStringLiteral("*.dll") }, QDir::Files);
    for (const QString& name : names) {
        if (!QFile::copy(drivers.filePath(name), folder.filePath(name))) {
            qFatal("%s can't be installed", qPrintable(name));
        }
        m_files.append(folder.filePath(name));
    }
}

InstalledDrivers::~InstalledDrivers()
{
    for (const QString& file : qAsConst(m_files)) {
        // One that is in use can't be removed.
        const std::wstring name = QFileInfo(file).fileName().toStdWString();
        while (const HMODULE library = GetModuleHandleW(name.c_str())) {
            FreeLibrary(library);
        }
        QFile::remove(file);
    }
}
