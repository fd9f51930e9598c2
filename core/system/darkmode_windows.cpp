#include "core/system/darkmode.h"

#include <QSettings>

bool isDarkModeEnabled()
{
    const QSettings theme(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\"
                                         "CurrentVersion\\Themes\\Personalize"),
                          QSettings::NativeFormat);
    const QVariant light = theme.value(QStringLiteral("AppsUseLightTheme"));
    return light.isValid() && light.toInt() == 0;
}
