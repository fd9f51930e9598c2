#include <cerrno>
#include <future>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "app/smc/device_channel_linux.h"
#include "macsim/model/controllerdriver.h"
#include "macsim/run/driversocket.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

namespace protocol = smcd::protocol;
namespace code = protocol::code;

const QString machine = QStringLiteral("iMacPro1,1");

// A machine with its driver on a bench.
struct DriverBench : MacBench {
    DriverBench()
        : MacBench(machine)
        , driver(mac, controller, trace)
    {
    }

    ControllerDriver driver;

    // The reply, or its error number alone.
    protocol::Reply ask(std::uint32_t code, const QByteArray& record, std::size_t room = 32)
    {
        const protocol::Packet request
            = protocol::requestPacket(code, room, protocol::Packet(record.begin(), record.end()));
        const QByteArray packet(static_cast<const char*>(static_cast<const void*>(request.data())),
                                static_cast<int>(request.size()));
        const QByteArray reply = driver.answer(packet);
        return protocol::parseReply(protocol::Packet(reply.begin(), reply.end()), room)
            .value_or(protocol::Reply { EPROTO, {} });
    }
};

QByteArray terminated(const char* key) { return QByteArray(key, 4) + '\0'; }

QByteArray bytes(const protocol::Packet& packet)
{
    return { static_cast<const char*>(static_cast<const void*>(packet.data())),
             static_cast<int>(packet.size()) };
}

QByteArray mmioWrite(const char* key, const QByteArray& value)
{
    return QByteArray(key, 4) + static_cast<char>(value.size()) + value
        + QByteArray(32 - static_cast<int>(value.size()), '\0');
}

} // namespace

class DriverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bothFamiliesAnswerInTheirOwnRecords_data()
    {
        QTest::addColumn<quint32>("code");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("HAL read") << code::halRead << terminated("FNum") << QByteArray("\x02");
        QTest::newRow("HAL info") << code::halKeyInfo << terminated("F0Mn")
                                  << QByteArray("\x04\0\0\0flt \xC0\0\0\0", 12);
        QTest::newRow("HAL info of nothing")
            << code::halKeyInfo << terminated("ZZZZ") << QByteArray(12, '\0');
        QTest::newRow("HAL name") << code::halKeyByIndex << QByteArray(4, '\0')
                                  << QByteArray("#KEY\0", 5);
        QTest::newRow("MMIO read") << code::mmioRead << QByteArray("FNum") << QByteArray("\x02");
        QTest::newRow("MMIO info") << code::mmioKeyInfo << QByteArray("F0Mn")
                                   << QByteArray("\x04"
                                                 "flt \xC0");
        QTest::newRow("MMIO name")
            << code::mmioKeyByIndex << QByteArray(4, '\0') << QByteArray("#KEY");
        QTest::newRow("MMIO write")
            << code::mmioWrite << mmioWrite("F0Md", QByteArray(1, '\1')) << QByteArray(1, '\0');
        QTest::newRow("HAL write") << code::halWrite << terminated("F0Md") + '\1' << QByteArray();
    }
    void bothFamiliesAnswerInTheirOwnRecords()
    {
        QFETCH(quint32, code);
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, reply);
        DriverBench bench;
        QVERIFY(bench.mac.keys().find("F0Mn") != nullptr);
        bench.mac.keys().find("F0Mn")->attributes = 0xC0;
        const protocol::Reply answer = bench.ask(code, request);
        QCOMPARE(answer.error, 0U);
        QCOMPARE(bytes(answer.data), reply);
    }

    void whatTheControllerRefusesIsAnError_data()
    {
        QTest::addColumn<quint32>("code");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<quint32>("error");
        const auto row = [](const char* name, quint32 code, const QByteArray& request, int error) {
            QTest::newRow(name) << code << request << static_cast<quint32>(error);
        };
        row("unknown key", code::halRead, terminated("ZZZZ"), ENOENT);
        row("MMIO info of nothing", code::mmioKeyInfo, "ZZZZ", ENOENT);
        row("index beyond the table", code::mmioKeyByIndex, QByteArray("\xFF\xFF\0\0", 4), ENOENT);
        row("read-only key", code::halWrite, terminated("FNum") + '\1', EACCES);
        row("unreadable key", code::mmioRead, "gP01", EACCES);
        row("wrong length", code::halWrite, terminated("F0Tg") + '\1', EINVAL);
        row("unknown code", 0x9C402464, terminated("FNum"), ENOTTY);
        row("record too short", code::halRead, "FNum", EINVAL);
    }
    void whatTheControllerRefusesIsAnError()
    {
        QFETCH(quint32, code);
        QFETCH(QByteArray, request);
        QFETCH(quint32, error);
        DriverBench bench;
        const protocol::Reply answer = bench.ask(code, request);
        QCOMPARE(answer.error, error);
        QVERIFY(answer.data.empty());
    }

    void writesRuleTheFansAndLeaveALine()
    {
        DriverBench bench;
        QCOMPARE(bench.ask(code::halWrite, terminated("F1Md") + '\1').error, 0U);
        QVERIFY(bench.mac.fan(1).forced);
        QVERIFY(bench.events().contains(QStringLiteral("write \"F1Md\" 01 ok")));
    }

    void aReadWithAForeignLengthIsTheCallersError()
    {
        DriverBench bench;
        QCOMPARE(bytes(bench.ask(code::halRead, terminated("FNum"), 4).data), QByteArray("\x02"));
        QVERIFY(bench.events().contains(QStringLiteral("error \"length 4 for FNum of 1\"")));
    }

    void faultsSpoilTheAnswers_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<quint32>("error");
        QTest::addColumn<int>("length");
        QTest::newRow("gone") << QStringLiteral("driver-gone") << quint32(ENODEV) << 0;
        QTest::newRow("short") << QStringLiteral("driver-short") << quint32(0) << 2;
        QTest::newRow("long") << QStringLiteral("driver-long") << quint32(EPROTO) << 0;
        QTest::newRow("garbage") << QStringLiteral("driver-garbage") << quint32(EPROTO) << 0;
        QTest::newRow("mute controller") << QStringLiteral("mute") << quint32(EIO) << 0;
        QTest::newRow("none") << QStringLiteral("none") << quint32(0) << 4;
    }
    void faultsSpoilTheAnswers()
    {
        QFETCH(QString, fault);
        QFETCH(quint32, error);
        QFETCH(int, length);
        DriverBench bench;
        QVERIFY(bench.MacBench::ask({ QStringLiteral("fault"), fault }));
        const protocol::Reply answer = bench.ask(code::mmioRead, "F0Ac");
        QCOMPARE(answer.error, error);
        QCOMPARE(static_cast<int>(answer.data.size()), length);
        QVERIFY(bench.MacBench::ask({ QStringLiteral("fault"), QStringLiteral("none") }));
        QCOMPARE(bytes(bench.ask(code::mmioRead, "F0Ac").data).size(), 4);
    }

    void theSocketServesTheProgramsChannel_data()
    {
        QTest::addColumn<int>("delay");
        QTest::newRow("at once") << 0;
        QTest::newRow("slow driver") << 200;
    }
    void theSocketServesTheProgramsChannel()
    {
        QFETCH(int, delay);
        const QTemporaryDir folder;
        qputenv("BRISORA_SYSROOT", folder.path().toUtf8());
        DriverBench bench;
        if (delay > 0) {
            QVERIFY(bench.MacBench::ask({ QStringLiteral("fault"), QStringLiteral("driver-slow"),
                                          QString::number(delay) }));
        }
        DriverSocket socket(bench.driver, bench.mac);
        QString error;
        QVERIFY2(socket.listen(folder.path() + QStringLiteral("/run/brisora/smc.sock"), error),
                 qPrintable(error));
        auto caller = std::async(std::launch::async, [] {
            SMC::DeviceChannel channel;
            const DeviceCalls::Handle device = channel.open();
            std::array<std::uint8_t, 1> reply {};
            const protocol::Packet request { 'F', 'N', 'u', 'm' };
            const bool isRead = channel.control(device, code::mmioRead, request, reply) == 1U;
            return isRead ? int(reply[0]) : -1;
        });
        QTRY_VERIFY(caller.wait_for(std::chrono::seconds(0)) == std::future_status::ready);
        QCOMPARE(caller.get(), 2);
    }
};

BRISORA_TEST_MAIN(DriverTest, QCoreApplication)

#include "test_macsim_driver.moc"
