#pragma once

#include <memory>
#include <optional>

#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

namespace macsim {

// The folder of one run, so that the command meets nobody's real files:
//
//     sysroot/      the machine's files, BRISORA_SYSROOT
//     config/       XDG_CONFIG_HOME
//     data/         XDG_DATA_HOME
//     cache/        XDG_CACHE_HOME
//     run/          XDG_RUNTIME_DIR
//     tmp/          TMPDIR
//     home/         HOME
//     macsim.sock   MACSIM_SOCKET
//
// All of it is open to its owner alone. A folder of its own is removed with the
// object; one that was given stays.
class RunFolder {
public:
    // An empty path makes a temporary folder. On failure nothing, and error says
    // why.
    [[nodiscard]] static std::optional<RunFolder> create(const QString& path, QString& error);

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString sysroot() const { return inside(QStringLiteral("sysroot")); }
    [[nodiscard]] QString socket() const { return inside(QStringLiteral("macsim.sock")); }
    // Of the controller's driver.
    [[nodiscard]] QString driverSocket() const;

    // The surroundings of the command: those of the simulator with the folders
    // above, and portFaceFolder first in the loader's path. What the command needs
    // to reach the display stays valid.
    [[nodiscard]] QProcessEnvironment environment(const QProcessEnvironment& own,
                                                  const QString& portFaceFolder) const;

    // Has the library with the drives' system calls loaded before all others.
    static void addDriveFace(QProcessEnvironment& environment, const QString& library);

    // Adds what a program under Wine needs: the simulator's address for MACSIM_TCP,
    // and the folder of inpout32.dll first in Wine's search path.
    static void addWine(QProcessEnvironment& environment, const QString& portFaceFolder,
                        const QString& tcpAddress);

private:
    QString m_path;
    std::unique_ptr<QTemporaryDir> m_temporary; // null for a folder that was given

    [[nodiscard]] QString inside(const QString& name) const;
};

} // namespace macsim
