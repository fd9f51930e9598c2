#include "tests/gpu/installeddrivers.h"

// The loader's path leads to them.
InstalledDrivers::InstalledDrivers() = default;
InstalledDrivers::~InstalledDrivers() = default;
