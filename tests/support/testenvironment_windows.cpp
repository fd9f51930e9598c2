#include "tests/support/testenvironment.h"

#include <string>

#include <windows.h>

#include <QDir>
#include <spdlog/spdlog.h>

// The temporary folder is one that variables name; the user's part of the
// registry is put in the place of a key of the program's own.
class TestEnvironment::Surroundings {
public:
    explicit Surroundings(const QTemporaryDir& folder)
        : m_keyName(L"Software\\BrisoraTests\\" + std::to_wstring(GetCurrentProcessId()))
    {
        const QString temporary = folder.filePath(QStringLiteral("tmp"));
        QDir().mkpath(temporary);
        qputenv("TMP", QDir::toNativeSeparators(temporary).toLocal8Bit());
        qputenv("TEMP", QDir::toNativeSeparators(temporary).toLocal8Bit());

        HKEY key = nullptr;
        if (RegCreateKeyExW(HKEY_CURRENT_USER, m_keyName.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &key, nullptr)
                != ERROR_SUCCESS
            || RegOverridePredefKey(HKEY_CURRENT_USER, key) != ERROR_SUCCESS) {
            qFatal("No registry key of the test's own");
        }
        RegCloseKey(key);
    }

    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    ~Surroundings()
    {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, m_keyName.c_str());
    }

private:
    const std::wstring m_keyName;
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
