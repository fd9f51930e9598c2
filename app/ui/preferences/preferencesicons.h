#pragma once

#include <QIcon>

// The pages that have a button.
enum class PreferencesPageNumber { General = 0, Sensors = 1, Menubar = 2 };

[[nodiscard]] QIcon preferencesIcon(PreferencesPageNumber page);
