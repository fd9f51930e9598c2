#pragma once

#include <random>
#include <vector>

#include "macsim/model/machinedescription.h"

namespace macsim {

// Heat and air: the temperatures of a machine's heat sources and the speeds of
// its fans. Knows nothing of keys. A fan follows the automatic control, a curve
// over the hottest of its sources, until it is forced; then it follows its
// target, within its limits. Either way it gets there with inertia.
class ThermalModel {
public:
    struct FanCommand {
        double minimum = 0.0; // RPM
        double maximum = 0.0; // RPM
        double target = 0.0; // RPM, heeded when forced
        bool forced = false;
    };

    struct Fan {
        double speed = 0.0; // RPM
        double measured = 0.0; // RPM, as a sensor with a little noise shows it
        double automaticTarget = 0.0; // RPM that the automatic control wants
    };

    struct Source {
        double temperature = 0.0; // degrees Celsius
        double highest = 0.0; // since the start
    };

    // Starts warmed up: at rest with the given load. The description must
    // outlive the model; equal seeds give equal noise.
    ThermalModel(const MachineDescription& machine, double load, quint32 seed);

    // The number of commands must be that of the fans. Steps of more than a
    // quarter of a second lose precision.
    void step(double seconds, double load, const std::vector<FanCommand>& commands);

    void setAmbient(double celsius) { m_ambient = celsius; }
    [[nodiscard]] double ambient() const { return m_ambient; }
    [[nodiscard]] const std::vector<Fan>& fans() const { return m_fans; }
    [[nodiscard]] const std::vector<Source>& sources() const { return m_sources; }

private:
    const MachineDescription& m_machine;
    double m_ambient;
    std::vector<Fan> m_fans;
    std::vector<Source> m_sources;
    std::vector<int> m_neighbours; // index of each source's neighbour, or -1
    std::mt19937 m_random;
    double m_untilNoise = 0.0; // seconds until the measured speeds waver again

    [[nodiscard]] int sourceIndex(const QString& name) const;
    [[nodiscard]] double automaticTarget(const FanDescription& fan,
                                         const FanCommand& command) const;
    void stepFans(double seconds, const std::vector<FanCommand>& commands);
    void stepSources(double seconds, double load);
    void measureFans(double seconds);
};

} // namespace macsim
