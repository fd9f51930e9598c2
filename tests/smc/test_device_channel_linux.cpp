#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include "app/smc/device_channel_linux.h"
#include "app/smc/driver_calls.h"
#include "smcd/protocol/records.h"
#include "tests/support/testenvironment.h"

namespace {

namespace protocol = smcd::protocol;
using protocol::Packet;

// What the far side does with each connection, given its number from 0.
using Script = std::function<void(int connection, int socket)>;

Packet received(int socket)
{
    Packet packet(protocol::longestRequestPacket + 1);
    const ssize_t size = ::recv(socket, packet.data(), packet.size(), 0);
    packet.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return packet;
}

void give(int socket, const Packet& packet)
{
    ::send(socket, packet.data(), packet.size(), MSG_NOSIGNAL);
}

void giveReply(int socket, std::uint32_t error, const Packet& data = {})
{
    give(socket, protocol::replyPacket({ error, data }));
}

// Takes the first request of a connection as it should be.
void welcome(int socket)
{
    static_cast<void>(received(socket));
    giveReply(socket, 0, protocol::versionRecord());
}

// The far side of the channel, one connection at a time in a thread of its own.
class FarSide {
public:
    explicit FarSide(Script script)
        : m_script(std::move(script))
    {
        const QString path = qEnvironmentVariable("BRISORA_SYSROOT")
            + QString::fromLatin1(protocol::socketPath.data(),
                                  static_cast<int>(protocol::socketPath.size()));
        QDir().mkpath(QFileInfo(path).path());
        QFile::remove(path);
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path);
        std::copy(name.begin(), name.end(), address.sun_path);
        m_listener = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        const auto* const place = static_cast<const sockaddr*>(static_cast<const void*>(&address));
        if (::bind(m_listener, place, sizeof(address)) != 0 || ::listen(m_listener, 8) != 0) {
            qFatal("The far side can't listen");
        }
        m_thread = std::thread([this] { serve(); });
    }
    FarSide(const FarSide&) = delete;
    FarSide& operator=(const FarSide&) = delete;
    ~FarSide()
    {
        ::shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        ::close(m_listener);
    }

    [[nodiscard]] int connections() const { return m_connections; }

private:
    Script m_script;
    int m_listener = -1;
    std::atomic_int m_connections = 0;
    std::thread m_thread;

    void serve()
    {
        for (int socket = 0; (socket = ::accept(m_listener, nullptr, nullptr)) >= 0;) {
            m_script(m_connections++, socket);
            ::close(socket);
        }
    }
};

const Packet readOfKeyCount { '#', 'K', 'E', 'Y', 0 };

struct Result {
    std::optional<std::size_t> filled;
    Packet reply;
    std::uint32_t error = 0;
};

Result control(SMC::DeviceChannel& channel, DeviceCalls::Handle device, std::size_t room = 4)
{
    Result result;
    result.reply.resize(room);
    result.filled = channel.control(device, protocol::code::halRead, readOfKeyCount, result.reply);
    result.error = channel.lastError();
    return result;
}

} // namespace

class DeviceChannelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        qputenv("BRISORA_SYSROOT", m_folder->path().toUtf8());
    }

    void theDeviceCannotBeOpenedWithoutAService()
    {
        SMC::DeviceChannel channel;
        QCOMPARE(channel.open(), nullptr);
        QCOMPARE(channel.lastError(), std::uint32_t(ENOENT));
    }

    void aPathTooLongForASocketIsAnError()
    {
        qputenv("BRISORA_SYSROOT", QByteArray(120, 'x'));
        SMC::DeviceChannel channel;
        QCOMPARE(channel.open(), nullptr);
        QCOMPARE(channel.lastError(), std::uint32_t(ENAMETOOLONG));
    }

    void theDeviceCannotBeOpenedWhenTheServiceRefuses_data()
    {
        QTest::addColumn<bool>("isAsked");
        QTest::newRow("after the request") << true;
        QTest::newRow("before the request") << false;
    }
    void theDeviceCannotBeOpenedWhenTheServiceRefuses()
    {
        QFETCH(bool, isAsked);
        FarSide farSide([isAsked](int, int socket) {
            if (isAsked) {
                static_cast<void>(received(socket));
            }
            giveReply(socket, EBUSY);
        });
        SMC::DeviceChannel channel;
        QCOMPARE(channel.open(), nullptr);
        QCOMPARE(channel.lastError(), std::uint32_t(EBUSY));
    }

    void codeRoomAndRecordGoOutAndTheReplyComesBack()
    {
        Packet seen;
        FarSide farSide([&seen](int, int socket) {
            welcome(socket);
            seen = received(socket);
            giveReply(socket, 0, { 0, 0, 4, 0xD2 });
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        QVERIFY(device != nullptr);
        const Result result = control(channel, device, 7);
        QCOMPARE(result.filled, std::optional<std::size_t>(4));
        QCOMPARE(result.reply, (Packet { 0, 0, 4, 0xD2, 0, 0, 0 }));
        channel.close(device);
        QCOMPARE(seen, (Packet { 0x54, 0x24, 0x40, 0x9C, 7, 0, 0, 0, '#', 'K', 'E', 'Y', 0 }));
    }

    void anErrorNumberFailsTheCallAndNothingElse()
    {
        FarSide farSide([](int, int socket) {
            welcome(socket);
            static_cast<void>(received(socket));
            giveReply(socket, ENOENT);
            static_cast<void>(received(socket));
            giveReply(socket, 0, { 1, 2 });
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        const Result refused = control(channel, device);
        QVERIFY(!refused.filled);
        QCOMPARE(refused.error, std::uint32_t(ENOENT));
        QCOMPARE(control(channel, device).filled, std::optional<std::size_t>(2));
        QCOMPARE(farSide.connections(), 1);
    }

    void aReplyThatIsNoneFailsTheCallAndFillsNothing_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("too short") << QByteArray(3, '\0');
        QTest::newRow("longer than the room") << QByteArray(4 + 5, '\0');
        QTest::newRow("longer than any") << QByteArray(1000, '\0');
    }
    void aReplyThatIsNoneFailsTheCallAndFillsNothing()
    {
        QFETCH(QByteArray, reply);
        FarSide farSide([&reply](int, int socket) {
            welcome(socket);
            static_cast<void>(received(socket));
            give(socket, { reply.begin(), reply.end() });
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        const Result result = control(channel, device);
        QVERIFY(!result.filled);
        QCOMPARE(result.error, std::uint32_t(EPROTO));
        QCOMPARE(result.reply, Packet(4, 0));
    }

    void aBrokenConnectionIsMadeAnewWithinTheCall()
    {
        FarSide farSide([](int connection, int socket) {
            welcome(socket);
            if (connection == 1) {
                static_cast<void>(received(socket));
                giveReply(socket, 0, { 9 });
            }
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        QVERIFY(device != nullptr);
        const Result result = control(channel, device);
        QCOMPARE(result.filled, std::optional<std::size_t>(1));
        QCOMPARE(farSide.connections(), 2);
    }

    void aConnectionThatBreaksAgainFailsTheCall()
    {
        FarSide farSide([](int, int socket) {
            welcome(socket);
            static_cast<void>(received(socket));
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        const Result result = control(channel, device);
        QVERIFY(!result.filled);
        QCOMPARE(result.error, std::uint32_t(ECONNRESET));
        QCOMPARE(farSide.connections(), 2);
    }

    void aServiceThatIsGoneFailsTheCallsUntilItIsBack()
    {
        SMC::DeviceChannel channel;
        DeviceCalls::Handle device = nullptr;
        {
            FarSide farSide([](int, int socket) { welcome(socket); });
            device = channel.open();
            QVERIFY(device != nullptr);
        }
        QCOMPARE(control(channel, device).error, std::uint32_t(ECONNREFUSED));
        FarSide farSide([](int, int socket) {
            welcome(socket);
            static_cast<void>(received(socket));
            giveReply(socket, 0, { 9 });
        });
        QCOMPARE(control(channel, device).filled, std::optional<std::size_t>(1));
    }

    void aServiceThatIsSilentFailsTheCallInTime()
    {
        std::atomic_bool isOver = false;
        FarSide farSide([&isOver](int connection, int socket) {
            welcome(socket);
            if (connection == 0) {
                static_cast<void>(received(socket));
                while (!isOver) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
                // The late answer isn't taken for the next one.
                giveReply(socket, 0, { 1 });
                static_cast<void>(received(socket));
                giveReply(socket, 0, { 2 });
                static_cast<void>(received(socket));
            }
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        QElapsedTimer timer;
        timer.start();
        const Result silent = control(channel, device);
        const qint64 elapsed = timer.elapsed();
        isOver = true;
        QVERIFY(!silent.filled);
        QCOMPARE(silent.error, std::uint32_t(ETIMEDOUT));
        QVERIFY2(elapsed >= 2900 && elapsed < 4000, qPrintable(QString::number(elapsed)));

        const Result answered = control(channel, device);
        QCOMPARE(answered.filled, std::optional<std::size_t>(1));
        QCOMPARE(answered.reply.front(), std::uint8_t(2));
        channel.close(device);
        QCOMPARE(farSide.connections(), 1);
    }

    void aRequestThatIsTooLongIsRefused()
    {
        FarSide farSide([](int, int socket) {
            welcome(socket);
            static_cast<void>(received(socket));
        });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        const Packet request(protocol::longestRequest + 1);
        Packet reply(4);
        QVERIFY(!channel.control(device, protocol::code::halRead, request, reply));
        QCOMPARE(channel.lastError(), std::uint32_t(EMSGSIZE));
        channel.close(device);
    }

    void aClosedHandleIsRefused()
    {
        FarSide farSide([](int, int socket) { welcome(socket); });
        SMC::DeviceChannel channel;
        const DeviceCalls::Handle device = channel.open();
        channel.close(device);
        QVERIFY(!control(channel, device).filled);
        QCOMPARE(channel.lastError(), std::uint32_t(EBADF));
    }

    void theSeamOpensTheSameDeviceByAnyName()
    {
        FarSide farSide([](int, int socket) {
            welcome(socket);
            static_cast<void>(received(socket));
            giveReply(socket, 0, { 9 });
        });
        const auto calls = SMC::makeDriverCalls();
        for (const char* name : { "\\\\.\\One", "another" }) {
            const DeviceCalls::Handle device
                = calls->createFile(QLatin1String(name), 0x80000000, 0, 3, 0x80);
            QVERIFY(device != nullptr);
            Packet reply(1);
            QCOMPARE(calls->deviceIoControl(device, protocol::code::halRead, readOfKeyCount, reply),
                     std::optional<std::size_t>(1));
            calls->closeHandle(device);
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

BRISORA_TEST_MAIN(DeviceChannelTest, QCoreApplication)

#include "test_device_channel_linux.moc"
