#include "app/sensors/smckeys.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr int keyLength = 4;

enum class Choice { First, Second, Neither };

bool prefersUpperCase(const QString& key)
{
    constexpr std::array<const char*, 5> keys { "TH0A", "TH1A", "TH1B", "TG0D", "TG1D" };
    return std::any_of(keys.begin(), keys.end(), [&key](const char* candidate) {
        return key.compare(QLatin1String(candidate), Qt::CaseInsensitive) == 0;
    });
}

// Which of two spellings of one key stays.
Choice chooseSpelling(const QString& first, const QString& second)
{
    const QChar firstLetter = first.at(keyLength - 1);
    const QChar secondLetter = second.at(keyLength - 1);
    if (prefersUpperCase(first)) {
        if (firstLetter.isUpper()) {
            return Choice::First;
        }
        if (secondLetter.isUpper()) {
            return Choice::Second;
        }
    }
    if (firstLetter.isLower()) {
        return Choice::First;
    }
    return secondLetter.isLower() ? Choice::Second : Choice::Neither;
}

} // namespace

bool isSmcKeyEqual(const QString& first, const QString& second)
{
    return first.size() == keyLength && first.compare(second, Qt::CaseInsensitive) == 0
        && first.leftRef(keyLength - 1) == second.leftRef(keyLength - 1);
}

QStringList withoutSpellingTwins(const QStringList& keys)
{
    QStringList skipped;
    for (const QString& key : keys) {
        if (skipped.contains(key)) {
            continue;
        }
        const auto twin
            = std::find_if(keys.begin(), keys.end(), [&key, &skipped](const QString& other) {
                  return other != key && isSmcKeyEqual(other, key) && !skipped.contains(other);
              });
        if (twin != keys.end()) {
            skipped.append(chooseSpelling(key, *twin) == Choice::First ? *twin : key);
        }
    }

    QStringList result;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(result),
                 [&skipped](const QString& key) { return !skipped.contains(key); });
    return result;
}
