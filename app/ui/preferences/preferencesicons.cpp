#include "app/ui/preferences/preferencesicons.h"

QIcon preferencesIcon(PreferencesPageNumber page)
{
    switch (page) {
    case PreferencesPageNumber::General:
        return QIcon(QStringLiteral(":/Resources/preferences_general.png"));
    case PreferencesPageNumber::Sensors:
        return QIcon(QStringLiteral(":/Resources/preferences_sensors.png"));
    case PreferencesPageNumber::Menubar:
        return QIcon(QStringLiteral(":/Resources/preferences_menubar.png"));
    }
    return {};
}
