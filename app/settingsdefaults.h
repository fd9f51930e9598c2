#pragma once

class QSettingsCache;
class SystemInfo;

// Brings the settings into the state that this program expects at a start:
// values that a first run needs, and no keys of earlier releases.
void applySettingsDefaults(QSettingsCache& settings, const SystemInfo& systemInfo);
