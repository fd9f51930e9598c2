#include "tests/support/testenvironment.h"

#include <cstdlib>

#include <QDir>
#include <spdlog/spdlog.h>

// The system keeps everything in folders that variables name.
class TestEnvironment::Surroundings {
public:
    explicit Surroundings(const QTemporaryDir& folder)
    {
        const auto provide = [&folder](const char* variable, const QString& name) {
            const QString path = folder.filePath(name);
            QDir().mkpath(path);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            qputenv(variable, QFile::encodeName(path));
        };
        provide("HOME", QStringLiteral("home"));
        provide("XDG_CONFIG_HOME", QStringLiteral("config"));
        provide("XDG_DATA_HOME", QStringLiteral("data"));
        provide("XDG_CACHE_HOME", QStringLiteral("cache"));
        provide("XDG_RUNTIME_DIR", QStringLiteral("run"));
        provide("TMPDIR", QStringLiteral("tmp"));
        qunsetenv("BRISORA_SYSROOT");
        // Buses that nobody is on: what a test wants to meet there, it starts itself.
        const QByteArray nowhere
            = "unix:path=" + QFile::encodeName(folder.filePath(QStringLiteral("no-bus")));
        qputenv("DBUS_SESSION_BUS_ADDRESS", nowhere);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", nowhere);
    }
};

TestEnvironment::TestEnvironment()
{
    if (!m_folder.isValid()) {
        qFatal("No temporary folder: %s", qPrintable(m_folder.errorString()));
    }
    m_surroundings = std::make_unique<Surroundings>(m_folder);
}

// A log that is still open could not be removed with its folder everywhere.
TestEnvironment::~TestEnvironment() { spdlog::drop_all(); }
