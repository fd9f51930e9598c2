#pragma once

#include <memory>

#include <QString>
#include <QStringList>

// Takes the place of the program's logger while it lives and keeps what is
// logged. Each line is the level, a colon, a blank and the text, such as
// "error: Unable to read number of fans"; levels are "info", "warning" and
// "error". Any thread may log meanwhile. One at a time.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    [[nodiscard]] QStringList lines() const;
    // The lines so far, which are then forgotten.
    [[nodiscard]] QStringList take();
    [[nodiscard]] int count(const QString& line) const;
    [[nodiscard]] bool contains(const QString& line) const { return count(line) > 0; }
    void clear();

private:
    class Sink;
    const std::shared_ptr<Sink> m_sink;
};
