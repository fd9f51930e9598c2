#include "tests/support/fakemachineregistry.h"

#include <windows.h>

#include <QCoreApplication>

namespace {

HKEY makeKey(HKEY parent, const QString& path)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(parent, path.toStdWString().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr)
        != ERROR_SUCCESS) {
        qFatal("Can't make the registry key %s", qPrintable(path));
    }
    return key;
}

} // namespace

FakeMachineRegistry::FakeMachineRegistry()
    : m_root(makeKey(HKEY_CURRENT_USER, place()))
{
    if (RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root.get()) != ERROR_SUCCESS) {
        qFatal("Can't replace the machine-wide registry");
    }
}

FakeMachineRegistry::~FakeMachineRegistry()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    m_root.reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, place().toStdWString().c_str());
}

void FakeMachineRegistry::addKey(const QString& key) { RegCloseKey(makeKey(m_root.get(), key)); }

void FakeMachineRegistry::setText(const QString& key, const QString& name, const QString& value)
{
    const std::wstring text = value.toStdWString();
    setValue(key, name, REG_SZ,
             QByteArray(reinterpret_cast<const char*>(text.c_str()),
                        static_cast<int>((text.size() + 1) * sizeof(wchar_t))));
}

void FakeMachineRegistry::setValue(const QString& key, const QString& name, std::uint32_t type,
                                   const QByteArray& value)
{
    const std::unique_ptr<HKEY__, Close> opened(makeKey(m_root.get(), key));
    if (RegSetValueExW(opened.get(), name.toStdWString().c_str(), 0, type,
                       reinterpret_cast<const BYTE*>(value.constData()),
                       static_cast<DWORD>(value.size()))
        != ERROR_SUCCESS) {
        qFatal("Can't set the registry value %s", qPrintable(name));
    }
}

QString FakeMachineRegistry::place()
{
    return QStringLiteral("Software\\BrisoraTest%1").arg(QCoreApplication::applicationPid());
}

void FakeMachineRegistry::Close::operator()(HKEY__* key) const { RegCloseKey(key); }
