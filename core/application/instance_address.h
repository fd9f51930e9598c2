#pragma once

#include <QString>

namespace core {

// The name of the local server under which an instance with the given key
// answers: one of the user's own where the system has a place for that.
[[nodiscard]] QString instanceServerName(const QString& instanceKey);

// The file that starting instances of this user lock while they look for one
// another.
[[nodiscard]] QString instanceLockPath(const QString& instanceKey);

} // namespace core
