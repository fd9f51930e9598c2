#include "tests/e2e/tracelog.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QRegularExpression>

namespace {

constexpr qint64 assertionInterval = 3000; // milliseconds
// A speed is written this long after the bits at the latest: the interval, and
// what the exchanges between two assertions take on a loaded machine.
constexpr qint64 oldestAssertion = assertionInterval + 2500;

using Kind = TraceLine::Kind;

constexpr std::array<std::pair<const char*, Kind>, 6> kinds { {
    { "read", Kind::Read },
    { "write", Kind::Write },
    { "info", Kind::Info },
    { "index", Kind::Index },
    { "error", Kind::Error },
    { "event", Kind::Event },
} };

std::optional<Kind> kindOf(const QString& word)
{
    for (const auto& [name, kind] : kinds) {
        if (word == QLatin1String(name)) {
            return kind;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<TraceLine> TraceLine::parse(const QString& line)
{
    static const QRegularExpression frame(QStringLiteral("^(\\d+)\\.(\\d{3}) ([a-z]+) (.+)$"));
    static const QRegularExpression exchange(
        QStringLiteral("^(?:\\d+ )?(?:\"(.{4})\"|-)(?: (\\S+))? (\\S+)$"));

    const auto outer = frame.match(line);
    const auto kind = kindOf(outer.captured(3));
    if (!outer.hasMatch() || !kind) {
        return std::nullopt;
    }
    TraceLine result;
    result.milliseconds = outer.captured(1).toLongLong() * 1000 + outer.captured(2).toLongLong();
    result.kind = *kind;
    if (*kind == Kind::Error || *kind == Kind::Event) {
        result.text = outer.captured(4);
        return result;
    }
    const auto inner = exchange.match(outer.captured(4));
    if (!inner.hasMatch()) {
        return std::nullopt;
    }
    result.key = inner.captured(1).toLatin1();
    if (*kind == Kind::Read || *kind == Kind::Write) {
        const QString value = inner.captured(2);
        result.value
            = QByteArray::fromHex(value == QLatin1String("-") ? QByteArray() : value.toLatin1());
    }
    result.result = inner.captured(3);
    return result;
}

bool TraceLine::isRead(const char* of) const { return kind == Kind::Read && key == of; }

bool TraceLine::isWrite(const char* of) const { return kind == Kind::Write && key == of; }

int TraceLine::rpm() const
{
    if (value.size() != 2) {
        return -1;
    }
    return (static_cast<quint8>(value[0]) << 6) | (static_cast<quint8>(value[1]) >> 2);
}

int TraceLine::mask() const { return value.size() == 2 ? static_cast<quint8>(value[1]) : -1; }

namespace trace {

LineTest read(const char* key)
{
    return [key](const TraceLine& line) { return line.isRead(key) && line.isOk(); };
}

LineTest wrote(const char* key)
{
    return [key](const TraceLine& line) { return line.isWrite(key) && line.isOk(); };
}

LineTest wroteRpm(const char* key, int rpm)
{
    return
        [test = wrote(key), rpm](const TraceLine& line) { return test(line) && line.rpm() == rpm; };
}

LineTest wroteMask(int mask)
{
    return [test = wrote("FS! "), mask](const TraceLine& line) {
        return test(line) && line.mask() == mask;
    };
}

LineTest readTemperature()
{
    return [](const TraceLine& line) {
        return line.kind == Kind::Read && line.isOk() && line.key.startsWith('T');
    };
}

LineTest readOrWroteFanKey()
{
    return [](const TraceLine& line) {
        const bool isFans = line.key == "FNum" || line.key == "FS! ";
        const bool isFan = line.key.size() == 4 && line.key[0] == 'F' && line.key[1] >= '0'
            && line.key[1] <= '9';
        return (line.kind == Kind::Read || line.kind == Kind::Write) && (isFans || isFan);
    };
}

LineTest usedController()
{
    return [](const TraceLine& line) { return line.kind != Kind::Event; };
}

LineTest belongsToStart()
{
    return [](const TraceLine& line) {
        return line.kind == Kind::Info || line.kind == Kind::Index || line.isRead("FNum")
            || line.isRead("#KEY") || line.isRead("FS! ");
    };
}

int count(const TraceLog& log, const LineTest& test, std::size_t from)
{
    const auto begin = log.begin() + static_cast<std::ptrdiff_t>(std::min(from, log.size()));
    return static_cast<int>(std::count_if(begin, log.end(), test));
}

int indexOf(const TraceLog& log, const LineTest& test, std::size_t from)
{
    const auto begin = log.begin() + static_cast<std::ptrdiff_t>(std::min(from, log.size()));
    const auto found = std::find_if(begin, log.end(), test);
    return found == log.end() ? -1 : static_cast<int>(found - log.begin());
}

int lastIndexOf(const TraceLog& log, const LineTest& test)
{
    const auto found = std::find_if(log.rbegin(), log.rend(), test);
    return found == log.rend() ? -1 : static_cast<int>(log.rend() - found) - 1;
}

bool givesBackLast(const TraceLog& log)
{
    const int last
        = lastIndexOf(log, [](const TraceLine& line) { return line.kind == Kind::Write; });
    return last >= 0 && wroteMask(0)(log[static_cast<std::size_t>(last)]);
}

qint64 serviceProcess(const TraceLog& log)
{
    qint64 number = -1;
    for (const TraceLine& line : log) {
        const QStringList words = line.text.split(QLatin1Char(' '));
        if (words.first() == QLatin1String("service")) {
            number = words.at(1) == QLatin1String("start") ? words.at(2).toLongLong() : -1;
        }
    }
    return number;
}

QStringList controlFaults(const TraceLog& log)
{
    QStringList faults;
    std::optional<qint64> lastAssertion;
    int mask = 0;
    int assertionsOfMask = 0;
    for (const TraceLine& line : log) {
        if (line.isWrite("FS! ") && line.isOk()) {
            // The first repetition belongs to the first speed of a preset.
            assertionsOfMask = line.mask() == mask ? assertionsOfMask + 1 : 1;
            if (assertionsOfMask > 2 && mask != 0
                && line.milliseconds - *lastAssertion < assertionInterval) {
                faults.append(QStringLiteral("%1 ms: bits %2 again after %3 ms")
                                  .arg(line.milliseconds)
                                  .arg(mask)
                                  .arg(line.milliseconds - *lastAssertion));
            }
            mask = line.mask();
            lastAssertion = line.milliseconds;
        }
        const bool isTarget = line.kind == Kind::Write && line.isOk() && line.key.endsWith("Tg");
        if (!isTarget) {
            continue;
        }
        const int fan = line.key[1] - '0';
        if (((mask >> fan) & 1) == 0) {
            faults.append(QStringLiteral("%1 ms: a speed for fan %2, which isn't forced")
                              .arg(line.milliseconds)
                              .arg(fan));
        } else if (line.milliseconds - *lastAssertion > oldestAssertion) {
            faults.append(QStringLiteral("%1 ms: a speed for fan %2, the bits are %3 ms old")
                              .arg(line.milliseconds)
                              .arg(fan)
                              .arg(line.milliseconds - *lastAssertion));
        }
    }
    return faults;
}

} // namespace trace
