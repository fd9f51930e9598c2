#include "core/application/applicationlook.h"

QString systemLightStyle() { return {}; }
