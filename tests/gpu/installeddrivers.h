#pragma once

#include <QStringList>

// The tests' own drivers where the system's loader looks for drivers, while this
// lives.
class InstalledDrivers {
public:
    InstalledDrivers();
    InstalledDrivers(const InstalledDrivers&) = delete;
    InstalledDrivers& operator=(const InstalledDrivers&) = delete;
    ~InstalledDrivers();

private:
    QStringList m_files;
};
