#include "core/application/applicationlook.h"

QString systemLightStyle() { return QStringLiteral("WindowsVista"); }
