#pragma once

#include <functional>

#include <QByteArray>
#include <QString>

#include "macsim/model/clock.h"

namespace macsim {

// The record of what happened to the machine, one line per key operation and
// event, each passed on as soon as it is complete:
//
//     SECONDS.mmm read "F0Ac" 1F40 ok
//     SECONDS.mmm write "FS! " 0003 ok
//     SECONDS.mmm info "F0Mn" fpe2/2 ok
//     SECONDS.mmm index 17 "F0Ac" ok
//     SECONDS.mmm error "text"             a protocol error of the caller
//     SECONDS.mmm event WORDS...           load, fault, power, sleep, wake, mark ...
//
// SECONDS counts real time from the start. The last word of a key operation is
// "ok", or why it failed: "unknown", "unreadable", "failing", "read-only",
// "bad-length", "aborted"; a value that was never moved is written as "-".
class Trace {
public:
    // Takes one line, without its line break.
    using Sink = std::function<void(const QByteArray& line)>;

    // The clock must outlive the trace. An empty sink drops everything.
    Trace(const Clock& clock, Sink sink);

    void read(const QByteArray& key, const QByteArray& value, const char* result) const;
    void write(const QByteArray& key, const QByteArray& value, const char* result) const;
    void info(const QByteArray& key, const QByteArray& type, int length, const char* result) const;
    void index(quint32 index, const QByteArray& key, const char* result) const;
    void error(const QString& text) const;
    // Line breaks in the text become blanks.
    void event(const QString& text) const;

private:
    const Clock& m_clock;
    Sink m_sink;
    std::chrono::microseconds m_start;

    void line(const QString& text) const;
};

} // namespace macsim
