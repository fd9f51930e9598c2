#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <utility>

#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/sensorcontrol.h"
#include "tests/support/manualclock.h"
#include "tests/support/testenvironment.h"

// Long random walks of the temperature, with rules that each single call must
// keep. The rules are stated from what can be seen outside: temperatures, times,
// results and the tendency.

namespace {

constexpr int walkCount = 200;
constexpr int stepCount = 5000;

class Random {
public:
    explicit Random(std::uint64_t seed)
        : m_engine(seed)
    {
    }
    // Both ends included.
    std::int64_t between(std::int64_t least, std::int64_t most)
    {
        const auto width = static_cast<std::uint64_t>(most - least) + 1;
        return least + static_cast<std::int64_t>(m_engine() % width);
    }
    bool chance(int percent) { return between(1, 100) <= percent; }

private:
    std::mt19937_64 m_engine;
};

// A temperature that rests, wanders and jumps around a range.
class Walk {
public:
    Walk(Random& random, int low, int high)
        : m_random(random)
        , m_least(low - 6)
        , m_most(high + 6)
        , m_value(static_cast<double>(random.between(m_least, m_most)))
    {
    }

    double next()
    {
        if (m_steps-- <= 0) {
            m_steps = static_cast<int>(m_random.between(5, 150));
            m_kind = static_cast<int>(m_random.between(0, 5));
        }
        const double wobble = static_cast<double>(m_random.between(-100, 100)) / 100.0;
        switch (m_kind) {
        case 0: // rests
        case 1:
            break;
        case 2: // rises
            m_value += 0.3 + wobble * 0.3;
            break;
        case 3: // falls
            m_value -= 0.3 + wobble * 0.3;
            break;
        case 4: // flickers
            m_value += wobble;
            break;
        default: // jumps, now and then
            m_value += m_random.chance(10) ? wobble * 25 : 0.0;
            break;
        }
        m_value = std::clamp(m_value, static_cast<double>(m_least), static_cast<double>(m_most));
        return m_random.chance(1) ? 0.0 : m_value;
    }

private:
    Random& m_random;
    const int m_least;
    const int m_most;
    double m_value;
    int m_steps = 0;
    int m_kind = 0;
};

// The rules for a fan with sane limits. One object watches one walk.
class Rules {
public:
    Rules(int low, int high, int min, int max, std::int64_t start)
        : m_low(low)
        , m_high(high)
        , m_min(min)
        , m_max(max)
        , m_step((max - min) / (high - low))
        , m_restBegan(start)
        , m_increaseBegan(start)
        , m_lastFall(start)
    {
    }

    // Checks one call; an empty text when all rules were kept. now in
    // milliseconds.
    QString check(int degrees, int current, std::int64_t now, Tendency after, int result)
    {
        const Tendency before = m_tendency;
        m_tendency = after;
        ++seen[{ before, after }];
        if (degrees == 0) {
            return result == -1 && after == before ? QString() : broken("no reading");
        }
        const int rpm = result == -1 ? m_rpm : result;
        QString trouble = checkRange(rpm);
        trouble += checkMove(degrees, current, now, before, after, rpm);
        trouble += checkRepetition(now, result, rpm);
        m_rpm = rpm;
        return trouble;
    }

    static std::map<std::pair<Tendency, Tendency>, int> seen;

private:
    enum class Cause { Start, Still, Fall, Rise };

    static QString broken(const char* rule) { return QString::fromLatin1(rule) + QLatin1Char(' '); }

    // Whole seconds, as the timers count them.
    static std::int64_t seconds(std::int64_t from, std::int64_t to) { return (to - from) / 1000; }

    int foot(int degrees) const
    {
        return std::clamp(m_min + m_step * (degrees - m_low - 1), m_min, m_max - m_step);
    }
    int top(int degrees) const { return foot(degrees) + m_step; }

    QString checkRange(int rpm) const
    {
        return rpm >= m_min && rpm <= m_max ? QString() : broken("out of the limits");
    }

    QString checkMove(int degrees, int current, std::int64_t now, Tendency before, Tendency after,
                      int rpm)
    {
        if (degrees < m_low) {
            if (m_rpm != m_min) {
                m_lastDegrees = -1;
            }
            return rpm == m_min && after == before ? QString() : broken("below the range");
        }
        const Cause cause = m_lastDegrees == -1 ? Cause::Start
            : degrees == m_lastDegrees          ? Cause::Still
            : degrees < m_lastDegrees           ? Cause::Fall
                                                : Cause::Rise;
        const bool ignored = (cause == Cause::Fall && before == TendencyIncrease
                              && seconds(m_increaseBegan, now) <= 10)
            || (cause == Cause::Rise && before == TendencyDecrease
                && seconds(m_lastFall, now) <= 10)
            || (cause == Cause::Rise && before == TendencyDoNothing
                && seconds(m_restBegan, now) <= 10);
        const int onLine = ignored ? m_lastDegrees : degrees;
        const Tendency turned = turn(cause, ignored, degrees, current, now, before);
        QString trouble = checkEnd(turned, after, degrees, onLine, rpm)
            + checkStep(turned, cause, degrees, onLine, current, rpm);
        if (before == TendencyIncrease && after == TendencyDecrease) {
            trouble += broken("from increase to decrease");
        }

        const bool increaseStops
            = before == TendencyIncrease && turned == TendencyDoNothing && cause == Cause::Fall;
        const bool bandEnds = turned != TendencyDoNothing && after == TendencyDoNothing;
        if (increaseStops || bandEnds) {
            m_restBegan = now;
        }
        if (cause == Cause::Start
            || (cause == Cause::Rise && before != TendencyIncrease && !ignored)) {
            m_increaseBegan = now;
        }
        if (cause == Cause::Fall && before != TendencyIncrease) {
            m_lastFall = now;
        }
        m_lastDegrees = onLine;
        return trouble;
    }

    // The tendency that a temperature leads to, before the speed is moved.
    Tendency turn(Cause cause, bool ignored, int degrees, int current, std::int64_t now,
                  Tendency before) const
    {
        if (cause == Cause::Start) {
            const bool inBand = foot(degrees) < current && current < top(degrees);
            return inBand ? TendencyDoNothing : TendencyIncrease;
        }
        if (ignored) {
            return before;
        }
        if (cause == Cause::Rise) {
            return TendencyIncrease;
        }
        if (cause == Cause::Fall) {
            return before == TendencyIncrease ? TendencyDoNothing : TendencyDecrease;
        }
        if (before == TendencyDoNothing && seconds(m_restBegan, now) >= 60) {
            return degrees > m_low + (m_high - m_low) / 2 ? TendencyIncrease : TendencyDecrease;
        }
        return before;
    }

    // A moving fan rests at the end of its band, and nowhere else.
    QString checkEnd(Tendency turned, Tendency after, int degrees, int onLine, int rpm) const
    {
        const bool moves = degrees <= m_high;
        const bool ends = moves
            && ((turned == TendencyIncrease && rpm == top(onLine))
                || (turned == TendencyDecrease && rpm == foot(onLine)));
        return after == (ends ? TendencyDoNothing : turned) ? QString() : broken("tendency");
    }

    QString checkStep(Tendency turned, Cause cause, int degrees, int onLine, int current,
                      int rpm) const
    {
        if (degrees > m_high) {
            return rpm == m_max ? QString() : broken("above the range");
        }
        int from = m_rpm;
        if (cause == Cause::Start) {
            from = turned == TendencyDoNothing ? current : foot(degrees);
        }
        if (turned == TendencyDoNothing) {
            return rpm == from ? QString() : broken("moved at rest");
        }
        if (turned == TendencyIncrease) {
            const int catchUp = foot(onLine) - from > 2 * m_step ? m_step / 3 : 0;
            for (const int creep : { 1, 2, 4 }) {
                if (rpm == std::min(from + catchUp + creep, top(onLine))) {
                    return {};
                }
            }
            return broken("step up");
        }
        const int catchDown = from - top(onLine) > m_step ? m_step / 3 : 0;
        for (const int creep : { 1, 2 }) {
            if (rpm == std::max(from - catchDown - creep, foot(onLine))) {
                return {};
            }
        }
        return broken("step down");
    }

    // A speed is written when it is new, and again after more than 30 seconds.
    QString checkRepetition(std::int64_t now, int result, int rpm)
    {
        const bool due = rpm != m_rpm || now / 1000 - m_written / 1000 > 30;
        if (result != -1) {
            m_written = now;
        }
        return due == (result != -1) ? QString() : broken("repetition");
    }

    const int m_low;
    const int m_high;
    const int m_min;
    const int m_max;
    const int m_step;
    Tendency m_tendency = TendencyUnknown;
    int m_rpm = -1;
    int m_lastDegrees = -1;
    std::int64_t m_written = 0;
    std::int64_t m_restBegan;
    std::int64_t m_increaseBegan;
    std::int64_t m_lastFall;
};

std::map<std::pair<Tendency, Tendency>, int> Rules::seen;

} // namespace

class TestSensorControlWalks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyCallKeepsTheRules();
    void everyTurnHasBeenSeen();
    void hostileLimitsAreKept();
    void equalStateAndEqualInputGiveEqualResults();
};

void TestSensorControlWalks::everyCallKeepsTheRules()
{
    Rules::seen.clear();
    for (int walkNumber = 0; walkNumber < walkCount; ++walkNumber) {
        Random random(static_cast<std::uint64_t>(walkNumber) + 1);
        const int low = static_cast<int>(random.between(20, 70));
        const int high = low + static_cast<int>(random.between(1, 60));
        const int min = static_cast<int>(random.between(0, 3000));
        const int max = min + static_cast<int>(random.between(0, 6000));
        ManualClock clock;
        SensorBasedControl_Simple control(QStringLiteral("Main"), clock);
        const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), low, high);
        Rules rules(low, high, min, max, 0);
        Walk walk(random, low, high);
        int current = static_cast<int>(random.between(min, max));
        std::int64_t elapsed = 0;

        for (int step = 0; step < stepCount; ++step) {
            const std::int64_t pause
                = random.chance(90) ? random.between(1500, 1600) : random.between(0, 12000);
            clock.advance(pause);
            elapsed += pause;
            const double temperature = walk.next();
            const FanSpeeds speeds { static_cast<std::uint16_t>(current),
                                     static_cast<std::uint16_t>(min),
                                     static_cast<std::uint16_t>(max) };

            const int result = control.update(speeds, mode, temperature);

            const QString trouble = rules.check(static_cast<int>(temperature), current, elapsed,
                                                control.tendency(), result);
            QVERIFY2(
                trouble.isEmpty(),
                qPrintable(
                    QStringLiteral("walk %1, step %2: %3").arg(walkNumber).arg(step).arg(trouble)));
            if (result != -1) {
                current = random.chance(1) ? int(FanSpeeds::unread) : result;
            }
        }
    }
}

// Without this the walks might have checked nothing.
void TestSensorControlWalks::everyTurnHasBeenSeen()
{
    const std::pair<Tendency, Tendency> turns[] {
        { TendencyUnknown, TendencyIncrease },    { TendencyUnknown, TendencyDoNothing },
        { TendencyIncrease, TendencyIncrease },   { TendencyIncrease, TendencyDoNothing },
        { TendencyDoNothing, TendencyIncrease },  { TendencyDoNothing, TendencyDecrease },
        { TendencyDoNothing, TendencyDoNothing }, { TendencyDecrease, TendencyDecrease },
        { TendencyDecrease, TendencyIncrease },   { TendencyDecrease, TendencyDoNothing },
    };
    for (const auto& turn : turns) {
        const QString name = QString::fromLatin1(TendencyToString(turn.first))
            + QLatin1String(" to ") + QString::fromLatin1(TendencyToString(turn.second));
        QVERIFY2(Rules::seen[turn] >= 10, qPrintable(name));
    }
    QCOMPARE(Rules::seen.count({ TendencyIncrease, TendencyDecrease }), std::size_t(0));
}

void TestSensorControlWalks::hostileLimitsAreKept()
{
    for (int walkNumber = 0; walkNumber < walkCount; ++walkNumber) {
        Random random(static_cast<std::uint64_t>(walkNumber) + 1000);
        const auto anyTemperature = [&random] {
            constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
            constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
            return static_cast<std::int32_t>(random.chance(50) ? random.between(-20, 120)
                                                               : random.between(least, most));
        };
        const auto anySpeed = [&random] {
            return static_cast<std::uint16_t>(random.chance(10) ? 65535 : random.between(0, 65535));
        };
        ManualClock clock;
        SensorBasedControl_Simple control(QStringLiteral("Main"), clock);
        const FanControlMode mode
            = FanControlMode::sensor(QStringLiteral("TC0P"), anyTemperature(), anyTemperature());
        FanSpeeds speeds { anySpeed(), anySpeed(), anySpeed() };

        for (int step = 0; step < stepCount; ++step) {
            if (random.chance(2)) {
                speeds = { anySpeed(), anySpeed(), anySpeed() };
            }
            clock.advance(random.between(0, 20000));
            const Tendency before = control.tendency();
            const double temperature = static_cast<double>(
                random.chance(90) ? random.between(-30, 130) : anyTemperature());

            const int result = control.update(speeds, mode, temperature);

            const auto [least, most] = std::minmax(speeds.min, speeds.max);
            QVERIFY2(result == -1 || (result >= least && result <= most),
                     qPrintable(QStringLiteral("walk %1, step %2: %3 is not in %4 to %5")
                                    .arg(walkNumber)
                                    .arg(step)
                                    .arg(result)
                                    .arg(least)
                                    .arg(most)));
            QVERIFY(before != TendencyIncrease || control.tendency() != TendencyDecrease);
        }
    }
}

void TestSensorControlWalks::equalStateAndEqualInputGiveEqualResults()
{
    for (int walkNumber = 0; walkNumber < walkCount / 10; ++walkNumber) {
        Random random(static_cast<std::uint64_t>(walkNumber) + 2000);
        ManualClock clock;
        SensorBasedControl_Simple control(QStringLiteral("Main"), clock);
        auto twin = std::make_unique<SensorBasedControl_Simple>(control);
        const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);
        const FanSpeeds speeds { 3900, 2000, 6000 };
        Walk walk(random, 40, 70);

        for (int step = 0; step < stepCount; ++step) {
            clock.advance(random.between(1000, 3000));
            const double temperature = walk.next();
            QCOMPARE(twin->update(speeds, mode, temperature),
                     control.update(speeds, mode, temperature));
            QCOMPARE(twin->tendency(), control.tendency());
            if (random.chance(1)) {
                // The state is all in the object: a copy goes on alike.
                twin = std::make_unique<SensorBasedControl_Simple>(control);
            }
        }
    }
}

BRISORA_TEST_MAIN(TestSensorControlWalks, QCoreApplication)

#include "test_sensorcontrol_walks.moc"
