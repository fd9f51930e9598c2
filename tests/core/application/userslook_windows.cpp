#include "tests/core/application/userslook.h"

#include <QSettings>

class UsersLook::Keeper {
public:
    Keeper() { setDark(false); }

    void setDark(bool dark)
    {
        m_theme.setValue(QStringLiteral("AppsUseLightTheme"), dark ? 0 : 1);
        m_theme.sync();
    }

private:
    QSettings m_theme { QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\"
                                       "CurrentVersion\\Themes\\Personalize"),
                        QSettings::NativeFormat };
};

UsersLook::UsersLook()
    : m_keeper(std::make_unique<Keeper>())
{
}

UsersLook::~UsersLook() = default;

void UsersLook::setDark(bool dark) { m_keeper->setDark(dark); }
