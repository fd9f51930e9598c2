#pragma once

#include <QIcon>

#include "app/fancontrol/fanrecord.h"
#include "app/sensors/sensortype.h"

// The icon of a fan in this place; the big form is for the fans table.
[[nodiscard]] QIcon fanIcon(FanLocation location, bool big);

// The icon of a sensor of this type; a transparent one for a type without a picture.
[[nodiscard]] QIcon sensorIcon(SensorType type);

// The application's icon at the two sizes of a tray, 16 and 32 pixels.
[[nodiscard]] QIcon applicationTrayIcon();

// An icon that shows nothing, square, of this size in pixels: it keeps the place.
[[nodiscard]] QIcon transparentIcon(int size);

// The program's icon at all sizes that it is drawn for.
[[nodiscard]] QIcon applicationIcon();
