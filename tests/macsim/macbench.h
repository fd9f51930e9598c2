#pragma once

#include <QStringList>

#include "macsim/model/controlverbs.h"
#include "macsim/model/portcontroller.h"

// A clock that moves only when a test says so.
class BenchClock final : public macsim::Clock {
public:
    [[nodiscard]] std::chrono::microseconds now() const override { return m_now; }
    void advance(std::chrono::microseconds duration) { m_now += duration; }

private:
    std::chrono::microseconds m_now { 0 };
};

// A machine with its controller on a bench: a clock to drive, the trace as a list
// of lines, and a caller of the byte protocol that gives up at once instead of
// waiting, since time stands still unless it is moved.
class MacBench {
public:
    // A machine that comes with the program. Ends the test program if there is none.
    explicit MacBench(const QString& machine = QStringLiteral("MacBookPro11,3"),
                      const QString& load = QStringLiteral("idle"));

    BenchClock clock;
    QStringList lines; // of the trace
    macsim::Trace trace;
    macsim::SimulatedMac mac;
    macsim::PortController controller;
    QStringList powerSwitches; // "ac" or "battery", as the verbs asked
    macsim::ControlVerbs verbs;

    // Sends a byte and lets it be taken; false when it was not.
    bool send(quint16 port, quint8 byte);
    // Sends a command and the four bytes after it.
    bool start(quint8 command, const QByteArray& argument);
    // A whole exchange; the bytes that came, fewer than the length if it stalled.
    QByteArray exchange(quint8 command, const QByteArray& argument, quint8 length);
    QByteArray read(const QByteArray& key, quint8 length);
    bool write(const QByteArray& key, const QByteArray& value);
    QByteArray info(const QByteArray& key);

    // RPM and degrees Celsius, straight from the machine.
    double fanSpeed(int fan);
    double temperature(const QString& source);
    void passSeconds(double seconds);

    quint64 errors(macsim::ProtocolError error) const;
    quint64 allErrors() const { return controller.counters().allErrors(); }
    bool ask(const QStringList& words) { return verbs.execute(words).ok; }
    // The trace's lines without their time.
    QStringList events() const;
};
