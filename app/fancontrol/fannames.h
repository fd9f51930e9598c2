#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class SystemInfo;

// The names that this machine's fans have in the program's own data, by fan,
// four at most; fans without an entry are named by the controller. Empty for a
// machine that the data doesn't know.
[[nodiscard]] QStringList loadFanNames(const SystemInfo& systemInfo);

// The same from the text of the data file. Empty when it can't be parsed.
[[nodiscard]] QStringList parseFanNames(const QByteArray& xml, const SystemInfo& systemInfo);
