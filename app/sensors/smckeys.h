#pragma once

#include <QString>
#include <QStringList>

// Whether two SMC keys name the same sensor: keys of four characters in which
// only the case of the fourth may differ.
[[nodiscard]] bool isSmcKeyEqual(const QString& first, const QString& second);

// The keys without those that are another spelling of one that is kept. Of two
// spellings the one with a lower-case last letter stays, except for some drive
// and GPU keys, where the upper-case one does.
[[nodiscard]] QStringList withoutSpellingTwins(const QStringList& keys);
