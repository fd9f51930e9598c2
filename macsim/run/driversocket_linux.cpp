#include "macsim/run/driversocket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>

namespace macsim {

namespace {

constexpr int queueLength = 16; // of connections that nobody has taken yet

QString reason() { return QString::fromLocal8Bit(std::strerror(errno)); }

} // namespace

// One caller, until it leaves.
class DriverSocket::Connection : public QObject {
public:
    Connection(int socket, DriverSocket& owner)
        : QObject(&owner)
        , m_owner(owner)
        , m_socket(socket)
        , m_notifier(socket, QSocketNotifier::Read)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, [this] { take(); });
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() override { ::close(m_socket); }

private:
    DriverSocket& m_owner;
    int m_socket;
    QSocketNotifier m_notifier;

    void take()
    {
        QByteArray packet(static_cast<int>(smcd::protocol::longestRequestPacket) + 1, '\0');
        const ssize_t size = ::recv(m_socket, packet.data(),
                                    static_cast<std::size_t>(packet.size()), MSG_DONTWAIT);
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        if (size <= 0) {
            m_notifier.setEnabled(false);
            deleteLater();
            return;
        }
        packet.truncate(static_cast<int>(size));
        const std::chrono::milliseconds delay = m_owner.m_mac.driverFaults().delay;
        if (delay.count() > 0) {
            QTimer::singleShot(delay, Qt::PreciseTimer, this, [this, packet] { give(packet); });
        } else {
            give(packet);
        }
    }

    void give(const QByteArray& request)
    {
        const QByteArray reply = m_owner.m_driver.answer(request);
        // A caller who doesn't listen loses the answer.
        ::send(m_socket, reply.constData(), static_cast<std::size_t>(reply.size()),
               MSG_DONTWAIT | MSG_NOSIGNAL);
    }
};

DriverSocket::DriverSocket(ControllerDriver& driver, const SimulatedMac& mac, QObject* parent)
    : QObject(parent)
    , m_driver(driver)
    , m_mac(mac)
{
}

DriverSocket::~DriverSocket()
{
    m_notifier.reset();
    if (m_listener >= 0) {
        ::close(m_listener);
    }
}

bool DriverSocket::listen(const QString& path, QString& error)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(name.size()) >= sizeof(address.sun_path)) {
        error = QStringLiteral("%1 is too long for a socket's path").arg(path);
        return false;
    }
    std::copy(name.begin(), name.end(), address.sun_path);
    if (!QDir().mkpath(QFileInfo(path).path())) {
        error = QStringLiteral("%1 can't be made").arg(QFileInfo(path).path());
        return false;
    }
    QFile::remove(path);
    m_listener = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const bool isListening = m_listener >= 0
        && ::bind(m_listener, static_cast<const sockaddr*>(static_cast<const void*>(&address)),
                  sizeof(address))
            == 0
        && ::chmod(name.constData(), S_IRUSR | S_IWUSR) == 0
        && ::listen(m_listener, queueLength) == 0;
    if (!isListening) {
        error = QStringLiteral("%1: %2").arg(path, reason());
        return false;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_listener, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &DriverSocket::accept);
    return true;
}

void DriverSocket::accept()
{
    for (;;) {
        const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (socket < 0) {
            return;
        }
        new Connection(socket, *this); // which is its parent
    }
}

} // namespace macsim
