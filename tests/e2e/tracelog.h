#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

// One line of the simulated Mac's trace.
struct TraceLine {
    enum class Kind { Read, Write, Info, Index, Error, Event };

    qint64 milliseconds = 0; // since the machine was started
    Kind kind = Kind::Event;
    QByteArray key; // four characters; empty for errors and events
    QByteArray value; // of reads and writes that have one
    QString result; // "ok" or the reason
    QString text; // of errors and events

    // Nothing for a line that is none of the trace's.
    [[nodiscard]] static std::optional<TraceLine> parse(const QString& line);

    [[nodiscard]] bool isOk() const { return result == QLatin1String("ok"); }
    [[nodiscard]] bool isRead(const char* of) const;
    [[nodiscard]] bool isWrite(const char* of) const;
    // A two-byte fan speed in RPM; -1 without such a value.
    [[nodiscard]] int rpm() const;
    // The fans under forced control, of a mask's value; -1 without such a value.
    [[nodiscard]] int mask() const;
};

using TraceLog = std::vector<TraceLine>;
using LineTest = std::function<bool(const TraceLine&)>;

namespace trace {

[[nodiscard]] LineTest read(const char* key);
[[nodiscard]] LineTest wrote(const char* key);
[[nodiscard]] LineTest wroteRpm(const char* key, int rpm);
// The control bits of all fans.
[[nodiscard]] LineTest wroteMask(int mask);
// Any temperature.
[[nodiscard]] LineTest readTemperature();
// Any fan key.
[[nodiscard]] LineTest readOrWroteFanKey();
// Any access to the controller.
[[nodiscard]] LineTest usedController();
// What the program does at its start alone.
[[nodiscard]] LineTest belongsToStart();

[[nodiscard]] int count(const TraceLog& log, const LineTest& test, std::size_t from = 0);
// The first, or the last, line from an index on; -1 when there is none.
[[nodiscard]] int indexOf(const TraceLog& log, const LineTest& test, std::size_t from = 0);
[[nodiscard]] int lastIndexOf(const TraceLog& log, const LineTest& test);

// Whether the last write of all clears the control bits.
[[nodiscard]] bool givesBackLast(const TraceLog& log);

// The number of the process of the service that runs in the machine, or -1 while
// there is none.
[[nodiscard]] qint64 serviceProcess(const TraceLog& log);

// What is wrong with the order of control bits and speeds on a machine with a
// control mask: a speed for a fan that isn't forced, a speed without a recent
// assertion of the bits before it, bits asserted again within 3 seconds. Empty
// when nothing is.
[[nodiscard]] QStringList controlFaults(const TraceLog& log);

} // namespace trace
