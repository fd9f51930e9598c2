#pragma once

#include <QString>

// The start at logon on Linux: an entry in the user's autostart folder, as desktops
// read it. GUI thread.
class AutostartLinux {
public:
    // The folder is the user's configuration folder.
    AutostartLinux(const QString& configurationFolder, const QString& executablePath);

    // A failure is logged.
    void setEnabled(bool enable);
    // An entry that the desktop has switched off doesn't count.
    [[nodiscard]] bool isEnabled() const;

    // The entry's content for a program, with its path quoted as such entries want
    // it.
    [[nodiscard]] static QByteArray entry(const QString& executablePath);

private:
    const QString m_file;
    const QString m_executablePath;
};
