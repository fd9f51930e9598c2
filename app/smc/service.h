#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <QObject>

namespace SMC {

class Platform;

enum class FanKeyKind { Actual = 0, Min = 1, Max = 2, Target = 3, Safe = 4 };

// The one object through which the program touches the controller: turns keys
// and bytes into fans, speeds (RPM), control modes and temperatures (degrees
// Celsius), and serialises all access. After open() every operation may be
// called from any thread. What is detected (fan count, encodings, control
// scheme, temperature keys) is read once and kept.
//
// Failures are false results with a log line. A false result of a write is no
// reason to stop: on the port transport a successful write gives false.
class Service : public QObject {
    Q_OBJECT

public:
    explicit Service(std::unique_ptr<Platform> platform);
    ~Service() override;

    // Opens the transport and, on success, detects encoding and scheme.
    [[nodiscard]] bool open();
    void close();
    // Fans that are forced now stay so after close().
    void leaveFans();

    // 0 when the count can't be read, which is remembered too.
    [[nodiscard]] std::uint8_t getFanCount();
    // Never empty: "Fan {}" with the index when the controller gives no name.
    [[nodiscard]] std::string getFanName(std::uint8_t fan);
    // rpm is untouched on failure.
    [[nodiscard]] bool getFanRPM(std::uint8_t fan, FanKeyKind kind, std::uint16_t& rpm);
    // Writes the target speed.
    [[nodiscard]] bool setFanRPM(std::uint8_t fan, std::uint16_t rpm);

    // Appends one element per fan; true means forced. A partial vector can come
    // back with true.
    [[nodiscard]] bool getFansControlModes(std::vector<bool>& modes);
    // One element per fan; true forces the fan, false leaves it to the SMC.
    [[nodiscard]] bool setFansControlModes(const std::vector<bool>& modes);

    // The keys of all temperature sensors, in the controller's order.
    [[nodiscard]] bool getTemperatureKeys(std::vector<std::string>& keys);
    // Degrees Celsius, above 0 and below 127; anything else counts as a failed
    // read. rawValue, which may be null, gets the reading before any correction.
    [[nodiscard]] bool getTemperature(const char* key, double& value, double* rawValue);

    [[nodiscard]] bool setKeyboardBacklight(std::uint8_t level);
    [[nodiscard]] bool getKeyboardBacklight(std::uint8_t& level);

Q_SIGNALS:
    void error_unexpected_disconnect();

private:
    class ServicePrivate;
    const std::unique_ptr<ServicePrivate> d;
};

} // namespace SMC
