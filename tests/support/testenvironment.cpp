#include "tests/support/testenvironment.h"

#include <cstdlib>

#include <QDir>

TestEnvironment::TestEnvironment()
{
    if (!m_folder.isValid()) {
        qFatal("No temporary folder: %s", qPrintable(m_folder.errorString()));
    }
    const auto provide = [this](const char* variable, const QString& name) {
        const QString folder = m_folder.filePath(name);
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, QFile::encodeName(folder));
    };
    provide("HOME", QStringLiteral("home"));
    provide("XDG_CONFIG_HOME", QStringLiteral("config"));
    provide("XDG_DATA_HOME", QStringLiteral("data"));
    provide("XDG_CACHE_HOME", QStringLiteral("cache"));
    provide("XDG_RUNTIME_DIR", QStringLiteral("run"));
    provide("TMPDIR", QStringLiteral("tmp"));
    qunsetenv("BRISORA_SYSROOT");
}
