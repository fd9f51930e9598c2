#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QString>

#include "macsim/model/controllerdriver.h"

class QSocketNotifier;

namespace macsim {

// The local socket on which the machine's driver answers.
class DriverSocket : public QObject {
    Q_OBJECT

public:
    // Both must outlive the socket; the machine's faults delay answers.
    DriverSocket(ControllerDriver& driver, const SimulatedMac& mac, QObject* parent = nullptr);
    ~DriverSocket() override;

    // Only the user may connect. A stale socket of the same path is replaced, and
    // the folder is made.
    [[nodiscard]] bool listen(const QString& path, QString& error);

private:
    class Connection;

    ControllerDriver& m_driver;
    const SimulatedMac& m_mac;
    int m_listener = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;

    void accept();
};

} // namespace macsim
