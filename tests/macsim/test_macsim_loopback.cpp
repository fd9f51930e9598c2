#include <QCoreApplication>
#include <QSignalSpy>
#include <QTcpSocket>

#include "macsim/portrecord.h"
#include "macsim/run/simulatorserver.h"
#include "macsim/tcpaddress.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

const QByteArray token("0123456789abcdef0123456789abcdef");

// A caller at a server's second door.
class Caller {
public:
    explicit Caller(const TcpAddress& address)
    {
        m_socket.connectToHost(QString::fromStdString(std::string(TcpAddress::host)), address.port);
    }

    bool isConnected() { return m_socket.waitForConnected(); }
    bool isRefused()
    {
        return QTest::qWaitFor(
            [this] { return m_socket.state() == QAbstractSocket::UnconnectedState; });
    }
    void send(const QByteArray& bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }
    void sendRecord(quint8 operation, quint16 port, quint8 value)
    {
        const auto record = portrecord::request(operation, port, value);
        send(QByteArray(static_cast<const char*>(static_cast<const void*>(record.data())),
                        static_cast<int>(record.size())));
    }
    // As many bytes as came, up to the count.
    QByteArray answers(int count)
    {
        static_cast<void>(
            QTest::qWaitFor([this, count] { return m_socket.bytesAvailable() >= count; }));
        return m_socket.readAll();
    }
    void leave() { m_socket.disconnectFromHost(); }

private:
    QTcpSocket m_socket;
};

// A server whose second door is open.
struct OpenServer {
    OpenServer()
    {
        QString error;
        const auto text = server.listenOnLoopback(error);
        address = TcpAddress::parse(text.value_or(QString()).toStdString()).value_or(TcpAddress {});
    }

    MacBench bench;
    DriveServer drives { bench.mac, bench.trace };
    SimulatorServer server { bench.controller, drives, bench.verbs, bench.mac };
    TcpAddress address;
};

} // namespace

class LoopbackTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAddressIsReadBack()
    {
        const TcpAddress address { 40123, token.toStdString() };

        QCOMPARE(QString::fromStdString(address.text()),
                 QStringLiteral("127.0.0.1:40123/") + QString::fromLatin1(token));
        const auto parsed = TcpAddress::parse(address.text());
        QVERIFY(parsed.has_value());
        QCOMPARE(parsed->port, quint16(40123));
        QCOMPARE(QByteArray::fromStdString(parsed->token), token);
    }

    void anythingElseIsNoAddress_data()
    {
        QTest::addColumn<QByteArray>("text");
        const auto row
            = [](const char* name, const QByteArray& text) { QTest::newRow(name) << text; };
        row("nothing", "");
        row("host alone", "127.0.0.1");
        row("another host", "127.0.0.2:4000/" + token);
        row("a longer host", "127.0.0.10:4000/" + token);
        row("no token", "127.0.0.1:4000");
        row("a short token", "127.0.0.1:4000/" + token.chopped(1));
        row("a long token", "127.0.0.1:4000/" + token + '0');
        row("no port", "127.0.0.1:/" + token);
        row("port 0", "127.0.0.1:0/" + token);
        row("port 65536", "127.0.0.1:65536/" + token);
        row("a port of six digits", "127.0.0.1:004000/" + token);
        row("a port that is no number", "127.0.0.1:4o00/" + token);
        row("a negative port", "127.0.0.1:-400/" + token);
    }
    void anythingElseIsNoAddress()
    {
        QFETCH(QByteArray, text);
        QVERIFY(!TcpAddress::parse(text.toStdString()).has_value());
    }

    void everyServerHasATokenOfItsOwn()
    {
        const OpenServer one;
        const OpenServer other;
        QVERIFY(one.address.port != 0);
        QVERIFY(one.address.token != other.address.token);
    }

    void recordsAreServedBehindTheToken()
    {
        OpenServer open;
        Caller caller(open.address);
        QVERIFY(caller.isConnected());

        caller.send(QByteArray::fromStdString(open.address.token));
        caller.sendRecord(portrecord::openQuery, 0, 0);

        QCOMPARE(caller.answers(1), QByteArray("\x01"));
        QCOMPARE(open.server.portFaces(), 1);
        // The first byte of an exchange is taken by the controller.
        caller.sendRecord(portrecord::out, PortController::commandPort, 0x10);
        QCOMPARE(caller.answers(1), QByteArray("\x01"));
        open.bench.clock.advance(open.bench.controller.faults().byteTime);
        caller.sendRecord(portrecord::in, PortController::commandPort, 0);
        const QByteArray status = caller.answers(1);
        QCOMPARE(status.size(), 1);
        QVERIFY((static_cast<quint8>(status.at(0)) & PortController::statusAccepted) != 0);
        QCOMPARE(open.bench.allErrors(), quint64(0));
    }

    void aTokenMayComeInPieces()
    {
        OpenServer open;
        Caller caller(open.address);
        QVERIFY(caller.isConnected());
        const QByteArray own = QByteArray::fromStdString(open.address.token);

        caller.send(own.left(10));
        QTest::qWait(50); // until the first piece has been seen alone
        QCOMPARE(open.server.portFaces(), 0);
        caller.send(own.mid(10));
        caller.sendRecord(portrecord::openQuery, 0, 0);

        QCOMPARE(caller.answers(1), QByteArray("\x01"));
    }

    void aWrongTokenIsRefused_data()
    {
        QTest::addColumn<QByteArray>("first");
        const auto record = portrecord::request(portrecord::out, PortController::commandPort, 0x10);
        QByteArray records;
        while (records.size() < token.size()) {
            records.append(static_cast<const char*>(static_cast<const void*>(record.data())),
                           static_cast<int>(record.size()));
        }
        QTest::newRow("another token") << token;
        QTest::newRow("records") << records;
        QTest::newRow("a control request")
            << QByteArray("[\"set\",\"FS! \",\"0003\"]\n            ");
    }
    void aWrongTokenIsRefused()
    {
        QFETCH(QByteArray, first);
        OpenServer open;
        Caller caller(open.address);
        QVERIFY(caller.isConnected());

        caller.send(first);
        caller.sendRecord(portrecord::out, PortController::commandPort, 0x10);

        QVERIFY(caller.isRefused());
        QCOMPARE(caller.answers(0), QByteArray());
        QCOMPARE(open.server.portFaces(), 0);
        QCOMPARE(open.bench.controller.read(PortController::commandPort), quint8(0));
        QCOMPARE(open.bench.lines, QStringList());
    }

    void controlRequestsAreNotServedBehindTheToken()
    {
        OpenServer open;
        Caller caller(open.address);
        QVERIFY(caller.isConnected());

        caller.send(QByteArray::fromStdString(open.address.token)
                    + "[\"set\",\"FS! \",\"0003\"]\n  ");

        // Answered as six records with an unknown operation.
        QCOMPARE(caller.answers(6), QByteArray(6, '\0'));
        QCOMPARE(open.bench.mac.forcedMask(), 0);
        QCOMPARE(open.bench.lines, QStringList());
    }

    void aDisconnectIsCounted()
    {
        OpenServer open;
        QSignalSpy left(&open.server, &SimulatorServer::portFaceLeft);
        Caller first(open.address);
        Caller second(open.address);
        QVERIFY(first.isConnected() && second.isConnected());
        first.send(QByteArray::fromStdString(open.address.token));
        second.send(QByteArray::fromStdString(open.address.token));
        QTRY_COMPARE(open.server.portFaces(), 2);

        first.leave();

        QTRY_COMPARE(left.count(), 1);
        QCOMPARE(open.server.portFaces(), 1);
    }
};

BRISORA_TEST_MAIN(LoopbackTest, QCoreApplication)

#include "test_macsim_loopback.moc"
