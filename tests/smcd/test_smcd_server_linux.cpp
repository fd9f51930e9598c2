#include <atomic>
#include <cerrno>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "smcd/door.h"
#include "smcd/server.h"
#include "tests/smcd/fakecontroller.h"
#include "tests/support/testenvironment.h"

using namespace smcd;

namespace {

namespace code = protocol::code;

constexpr int patience = 5000; // milliseconds

// One client's end of the socket.
class Client {
public:
    explicit Client(const QString& path)
        : m_socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path);
        std::copy(name.begin(), name.end(), address.sun_path);
        const auto* const place = static_cast<const sockaddr*>(static_cast<const void*>(&address));
        m_isConnected = ::connect(m_socket.get(), place, sizeof(address)) == 0;
    }

    [[nodiscard]] bool isConnected() const { return m_isConnected; }

    bool send(const protocol::Packet& packet) const
    {
        return ::send(m_socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL) >= 0;
    }

    // The next reply; nothing when the connection ends or none comes in time.
    [[nodiscard]] std::optional<protocol::Reply> receive() const
    {
        pollfd state { m_socket.get(), POLLIN, 0 };
        protocol::Packet packet(protocol::longestReplyPacket + 1);
        ssize_t size = -1;
        // A reset is told once, before what was sent before it.
        for (int attempt = 0; size < 0 && attempt < 2; ++attempt) {
            size = ::poll(&state, 1, patience) > 0
                ? ::recv(m_socket.get(), packet.data(), packet.size(), 0)
                : -1;
        }
        packet.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return protocol::parseReply(packet, protocol::longestReply);
    }

    [[nodiscard]] std::uint32_t ask(std::uint32_t wanted, const Value& record = {}) const
    {
        // Who is refused finds the reason also where his request got nowhere.
        static_cast<void>(send(protocol::requestPacket(wanted, protocol::longestReply, record)));
        const auto reply = receive();
        return reply ? reply->error : std::uint32_t { ECONNRESET };
    }

    [[nodiscard]] std::uint32_t write(const char* key, const Value& value) const
    {
        const Key name = keyOf(key);
        Value record(name.begin(), name.end());
        record.push_back(0);
        record.insert(record.end(), value.begin(), value.end());
        return ask(code::halWrite, record);
    }

    void close() { m_socket = Descriptor(); }

private:
    Descriptor m_socket;
    bool m_isConnected = false;
};

// A server in a thread of its own.
class Bench {
public:
    explicit Bench(std::optional<std::uint32_t> group = std::nullopt)
        : m_note(m_folder.filePath(QStringLiteral("note")).toStdString())
        , m_service([this](std::string&) { return std::make_unique<ControllerRef>(controller); },
                    m_note, [](const std::string&) {})
    {
        addMaskFans(controller);
        std::string error;
        door = makeDoor(m_folder.path().toStdString(), "smc.sock", std::nullopt, error);
        int ends[2] {};
        if (!door || ::pipe2(ends, O_CLOEXEC) != 0) {
            qFatal("%s", error.c_str());
        }
        m_stopRead = Descriptor(ends[0]);
        m_stopWrite = Descriptor(ends[1]);
        m_thread = std::thread([this, group] {
            Server server(m_service, door->listener.get(), m_stopRead.get(), group);
            m_result = server.run();
        });
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;
    ~Bench() { static_cast<void>(end()); }

    // Asks the server to end and waits for it.
    bool end()
    {
        if (m_thread.joinable()) {
            static_cast<void>(::write(m_stopWrite.get(), "x", 1));
            m_thread.join();
        }
        return m_result;
    }

    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("smc.sock")); }

    FakeController controller;
    std::optional<Door> door;

private:
    QTemporaryDir m_folder;
    ForcedFansFile m_note;
    Service m_service;
    Descriptor m_stopRead;
    Descriptor m_stopWrite;
    std::thread m_thread;
    std::atomic_bool m_result = false;
};

constexpr unsigned strangerId = 65534; // of user and group, when the test is root's

// Lets a child without privileges do something, in that folder; gives its exit code.
template <typename Work> int asStranger(const QString& folder, const Work& work)
{
    const QByteArray place = QFile::encodeName(folder);
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isReady = ::chdir(place.constData()) == 0
            && (::geteuid() != 0
                || (::setgroups(0, nullptr) == 0 && ::setgid(strangerId) == 0
                    && ::setuid(strangerId) == 0));
        ::_exit(isReady ? work() : 255);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// What a write of a connection that is made for it is answered with.
int answerToWrite()
{
    const Client client(QStringLiteral("smc.sock"));
    if (!client.isConnected()) {
        return 254;
    }
    // A refusal comes before the request.
    return static_cast<int>(client.write("FS! ", { 0, 3 }));
}

const Value automatic { 0, 0 };
const Value bothForced { 0, 3 };

} // namespace

class ServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clientsAreServed()
    {
        Bench bench;
        const Client first(bench.path());
        const Client second(bench.path());
        QCOMPARE(first.ask(code::open), 0U);
        QCOMPARE(second.ask(code::open), 0U);
        QCOMPARE(first.write("FS! ", bothForced), 0U);
        QCOMPARE(second.write("F0Tg", { 0xFF, 0xFF }), std::uint32_t(ERANGE));
        QCOMPARE(bench.controller.value("FS! "), bothForced);
    }

    void theFansAreGivenBackWhenTheClientIsGone()
    {
        Bench bench;
        Client client(bench.path());
        QCOMPARE(client.write("FS! ", bothForced), 0U);
        QElapsedTimer timer;
        timer.start();
        client.close();
        QTRY_COMPARE(bench.controller.value("FS! "), automatic);
        QVERIFY(timer.elapsed() < 3000);
    }

    void aFanIsGivenBackAfterAControllerThatWasSilent()
    {
        Bench bench;
        Client client(bench.path());
        QCOMPARE(client.write("FS! ", bothForced), 0U);
        bench.controller.fail(EIO);
        client.close();
        const Client other(bench.path());
        QCOMPARE(other.ask(code::mmioRead, { 'F', 'N', 'u', 'm' }), std::uint32_t(EIO));
        bench.controller.fail(0);
        QTRY_COMPARE(bench.controller.value("FS! "), automatic);
    }

    void keptFansStay_data()
    {
        QTest::addColumn<bool>("waits");
        QTest::newRow("answered") << true;
        QTest::newRow("said and gone") << false;
    }
    void keptFansStay()
    {
        QFETCH(bool, waits);
        Bench bench;
        Client client(bench.path());
        QCOMPARE(client.write("FS! ", bothForced), 0U);
        if (waits) {
            QCOMPARE(client.ask(code::keepFans), 0U);
        } else {
            QVERIFY(client.send(protocol::requestPacket(code::keepFans, 0, {})));
        }
        client.close();
        // Another client's fan is given back: by then this one was seen to be gone.
        Client other(bench.path());
        QCOMPARE(other.ask(code::open), 0U);
        QVERIFY(bench.end());
        QCOMPARE(bench.controller.value("FS! "), bothForced);
    }

    void theFansAreGivenBackAtTheEnd()
    {
        Bench bench;
        const Client client(bench.path());
        QCOMPARE(client.write("FS! ", bothForced), 0U);
        QVERIFY(bench.end());
        QCOMPARE(bench.controller.value("FS! "), automatic);
    }

    void clientsBeyondTheLimitAreRefused()
    {
        Bench bench;
        std::vector<std::unique_ptr<Client>> clients;
        for (std::size_t count = 0; count < Server::mostClients; ++count) {
            clients.push_back(std::make_unique<Client>(bench.path()));
            QCOMPARE(clients.back()->ask(code::open), 0U);
        }
        const Client late(bench.path());
        const auto refusal = late.receive();
        QVERIFY(refusal);
        QCOMPARE(refusal->error, std::uint32_t(EBUSY));
        QVERIFY(!late.receive());
        QCOMPARE(clients.front()->ask(code::open), 0U);

        clients.pop_back();
        QTRY_COMPARE(Client(bench.path()).ask(code::open), 0U);
    }

    void aClientThatSendsNonsenseIsAnsweredAndOthersAreServed()
    {
        Bench bench;
        const Client fool(bench.path());
        const Client other(bench.path());
        for (std::size_t length = 1; length < 200; ++length) {
            QVERIFY(fool.send(protocol::Packet(length, static_cast<std::uint8_t>(length))));
            const auto reply = fool.receive();
            QVERIFY(reply);
            QVERIFY(reply->error != 0);
            QCOMPARE(other.ask(code::open), 0U);
        }
        QCOMPARE(bench.controller.writes().size(), std::size_t(0));
    }

    void anEmptyPacketEndsTheConnection()
    {
        Bench bench;
        const Client client(bench.path());
        QCOMPARE(client.write("FS! ", bothForced), 0U);
        QVERIFY(client.send({}));
        QVERIFY(!client.receive());
        QTRY_COMPARE(bench.controller.value("FS! "), automatic);
    }

    void aClientThatTakesNoReplyIsDropped()
    {
        Bench bench;
        const Client deaf(bench.path());
        QCOMPARE(deaf.write("FS! ", bothForced), 0U);
        const Client other(bench.path());
        const protocol::Packet request = protocol::requestPacket(code::open, 4, {});
        bool isDropped = false;
        for (int count = 0; count < 100000 && !isDropped; ++count) {
            isDropped = !deaf.send(request);
        }
        QVERIFY(isDropped);
        QCOMPARE(other.ask(code::open), 0U);
        QTRY_COMPARE(bench.controller.value("FS! "), automatic);
    }

    void aClientThatSaysNothingStopsNobody()
    {
        Bench bench;
        std::vector<std::unique_ptr<Client>> silent;
        for (std::size_t count = 0; count + 1 < Server::mostClients; ++count) {
            silent.push_back(std::make_unique<Client>(bench.path()));
        }
        const Client client(bench.path());
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(client.ask(code::open), 0U);
        QVERIFY(timer.elapsed() < 1000);
    }

    void aClientThatNeverPausesDoesNotStarveOthers()
    {
        Bench bench;
        std::atomic_bool isOver = false;
        std::thread greedy([&bench, &isOver] {
            const Client client(bench.path());
            const protocol::Packet request = protocol::requestPacket(code::open, 4, {});
            while (!isOver) {
                client.send(request);
                client.send(request);
                static_cast<void>(client.receive());
                static_cast<void>(client.receive());
            }
        });
        const Client client(bench.path());
        bool isServed = true;
        QElapsedTimer timer;
        timer.start();
        for (int count = 0; count < 200; ++count) {
            isServed = client.ask(code::open) == 0 && isServed;
        }
        isOver = true;
        greedy.join();
        QVERIFY(isServed);
        QVERIFY2(timer.elapsed() < patience, qPrintable(QString::number(timer.elapsed())));
    }

    void strangersAreRefusedAndMembersServed_data()
    {
        QTest::addColumn<bool>("isMember");
        QTest::newRow("stranger") << false;
        QTest::newRow("member") << true;
    }
    void strangersAreRefusedAndMembersServed()
    {
        QFETCH(bool, isMember);
        const std::uint32_t own = ::geteuid() == 0 ? strangerId : ::getegid();
        Bench bench(isMember ? own : own + 1);
        const QByteArray socket = QFile::encodeName(bench.path());
        const QByteArray folder = QFile::encodeName(QFileInfo(bench.path()).path());
        // The system would keep strangers out by itself.
        QCOMPARE(::chmod(folder.constData(), 0755), 0);
        QCOMPARE(::chmod(socket.constData(), 0666), 0);
        const int answer = asStranger(QFileInfo(bench.path()).path(), answerToWrite);
        QCOMPARE(answer, isMember ? 0 : EACCES);
        QCOMPARE(bench.controller.writes().empty(), !isMember);
    }

    void theDoorKeepsStrangersOutByItself()
    {
        const Bench bench;
        if (::geteuid() == 0) {
            const QByteArray folder = QFile::encodeName(QFileInfo(bench.path()).path());
            QCOMPARE(::chmod(folder.constData(), 0755), 0);
            QCOMPARE(asStranger(QFileInfo(bench.path()).path(), answerToWrite), 254);
        } else {
            QCOMPARE(asStranger(QFileInfo(bench.path()).path(), answerToWrite), EACCES);
        }
    }

    void thePeersGroupsAreKnown()
    {
        int ends[2] {};
        QCOMPARE(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
        const Descriptor one(ends[0]);
        const Descriptor other(ends[1]);
        const auto peer = peerOf(one.get());
        QVERIFY(peer);
        QCOMPARE(peer->user, ::geteuid());
        QVERIFY(isServed(*peer, ::getegid()));
        QVERIFY(!peerOf(::fileno(stdin)));
    }

    void theDoorIsForTheOwnerAndTheGroup()
    {
        const Bench bench;
        struct stat state { };
        QCOMPARE(::stat(QFile::encodeName(bench.path()).constData(), &state), 0);
        QCOMPARE(state.st_mode & 0777, mode_t(0660));
    }

    void aFolderHasOneServiceOnly()
    {
        const QTemporaryDir folder;
        std::string error;
        auto first = makeDoor(folder.path().toStdString(), "smc.sock", std::nullopt, error);
        QVERIFY(first);
        QVERIFY(!makeDoor(folder.path().toStdString(), "smc.sock", std::nullopt, error));
        QVERIFY(!error.empty());
        first.reset();
        QVERIFY(makeDoor(folder.path().toStdString(), "smc.sock", std::nullopt, error));
    }

    void thereIsNoDoorWithoutOneFromTheSystem()
    {
        const QTemporaryDir folder;
        std::string error;
        QVERIFY(!doorFromSystem(folder.path().toStdString(), error));
        QVERIFY(error.find("--foreground") != std::string::npos);
    }
};

BRISORA_TEST_MAIN(ServerTest, QCoreApplication)

#include "test_smcd_server_linux.moc"
