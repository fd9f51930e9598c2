#include "macsim/model/loadprofile.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace macsim {

namespace {

struct NamedProfile {
    const char* name;
    std::vector<LoadProfile::Point> points;
    bool repeats;
};

constexpr double idleLoad = 0.03;

const std::vector<NamedProfile>& profiles()
{
    static const std::vector<NamedProfile> table {
        { "idle", { { 0, idleLoad } }, false },
        { "light", { { 0, 0.25 } }, false },
        { "heavy", { { 0, 1.0 } }, false },
        { "step", { { 0, idleLoad }, { 10, idleLoad }, { 10, 1.0 } }, false },
        { "wave", { { 0, 0.1 }, { 60, 0.9 }, { 120, 0.1 } }, true },
        { "ramp", { { 0, idleLoad }, { 300, 1.0 } }, false },
    };
    return table;
}

} // namespace

LoadProfile::LoadProfile(QString name, std::vector<Point> points, bool repeats)
    : m_name(std::move(name))
    , m_points(std::move(points))
    , m_repeats(repeats)
{
}

QStringList LoadProfile::names()
{
    QStringList result;
    for (const NamedProfile& profile : profiles()) {
        result.append(QLatin1String(profile.name));
    }
    return result;
}

std::optional<LoadProfile> LoadProfile::fromText(const QString& text)
{
    for (const NamedProfile& profile : profiles()) {
        if (text == QLatin1String(profile.name)) {
            return LoadProfile(text, profile.points, profile.repeats);
        }
    }
    QString number = text;
    if (number.endsWith(QLatin1Char('%'))) {
        number.chop(1);
    }
    bool isNumber = false;
    const double percent = number.toDouble(&isNumber);
    if (!isNumber || !(percent >= 0.0 && percent <= 100.0)) {
        return std::nullopt;
    }
    return LoadProfile(number + QLatin1Char('%'), { { 0, percent / 100.0 } }, false);
}

double LoadProfile::at(double seconds) const
{
    const double length = m_points.back().seconds;
    const double time = m_repeats && length > 0.0 ? std::fmod(seconds, length) : seconds;
    const auto next = std::upper_bound(
        m_points.begin(), m_points.end(), time,
        [](double wanted, const Point& point) { return wanted < point.seconds; });
    if (next == m_points.begin()) {
        return next->load;
    }
    const Point& before = *std::prev(next);
    if (next == m_points.end()) {
        return before.load;
    }
    const double share = (time - before.seconds) / (next->seconds - before.seconds);
    return before.load + share * (next->load - before.load);
}

} // namespace macsim
