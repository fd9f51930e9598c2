#pragma once

#include <QByteArray>
#include <QString>
#include <spdlog/common.h>

namespace core::log {

// The file that a log is written to, claimed so that nobody else's file or link
// can be put in its place.
class LogFile {
public:
    explicit LogFile(const QString& path);
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile();

    [[nodiscard]] bool isUsable() const { return m_usable; }
    // Why the file can't be used; for a person.
    [[nodiscard]] QString errorText() const { return m_errorText; }
    // The name under which a sink opens the claimed file; valid as long as this
    // object.
    [[nodiscard]] spdlog::filename_t sinkName() const;

private:
    const QString m_path;
    int m_descriptor = -1;
    bool m_usable = false;
    QString m_errorText;
};

// The content of a log file; empty when it can't be read, or is not a plain file
// of this user.
[[nodiscard]] QByteArray readLogFile(const QString& path);

} // namespace core::log
