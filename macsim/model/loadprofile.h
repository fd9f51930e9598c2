#pragma once

#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

namespace macsim {

// How busy the machine is over time: points joined by straight lines.
class LoadProfile {
public:
    struct Point {
        double seconds; // simulated, since the profile was chosen
        double load; // 0 (nothing to do) to 1 (all cores busy)
    };

    // One of names(), or a constant percentage: "40" or "40%". Nothing for
    // anything else.
    [[nodiscard]] static std::optional<LoadProfile> fromText(const QString& text);
    [[nodiscard]] static QStringList names();

    [[nodiscard]] QString name() const { return m_name; }
    [[nodiscard]] double at(double seconds) const;

private:
    LoadProfile(QString name, std::vector<Point> points, bool repeats);

    QString m_name;
    std::vector<Point> m_points;
    bool m_repeats; // starts over after the last point instead of staying there
};

} // namespace macsim
