#include <cerrno>

#include <QCoreApplication>

#include "smcd/protocol/records.h"
#include "tests/support/testenvironment.h"

using namespace smcd::protocol;

namespace {

Packet packet(const QByteArray& bytes) { return { bytes.begin(), bytes.end() }; }

QByteArray bytes(const Packet& data)
{
    return { static_cast<const char*>(static_cast<const void*>(data.data())),
             static_cast<int>(data.size()) };
}

QByteArray record(const char* digits) { return QByteArray::fromHex(digits); }

} // namespace

class ProtocolTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requestsAreUnderstood_data()
    {
        QTest::addColumn<quint32>("code");
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<int>("room");
        QTest::addColumn<int>("operation");
        QTest::addColumn<int>("family");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("value");
        const auto row
            = [](const char* name, quint32 code, const QByteArray& data, int room,
                 Operation operation, Family family, const char* key, const QByteArray& value) {
                  QTest::newRow(name) << code << data << room << static_cast<int>(operation)
                                      << static_cast<int>(family) << QByteArray(key, 4) << value;
              };
        constexpr const char* none = "\0\0\0";
        row("open", code::open, {}, 4, Operation::Open, Family::Hal, none, {});
        row("keep", code::keepFans, {}, 0, Operation::KeepFans, Family::Hal, none, {});
        row("HAL read", code::halRead, record("4653212000"), 2, Operation::Read, Family::Hal,
            "FS! ", {});
        row("HAL write", code::halWrite, record("46532120000003"), 0, Operation::Write, Family::Hal,
            "FS! ", record("0003"));
        row("HAL longest write", code::halWrite, record("4653212000") + QByteArray(32, 'x'), 0,
            Operation::Write, Family::Hal, "FS! ", QByteArray(32, 'x'));
        row("HAL info", code::halKeyInfo, record("4653212000"), 12, Operation::KeyInfo, Family::Hal,
            "FS! ", {});
        row("HAL name", code::halKeyByIndex, record("78563412"), 5, Operation::KeyByIndex,
            Family::Hal, none, {});
        row("MMIO read", code::mmioRead, "FS! ", 32, Operation::Read, Family::Mmio, "FS! ", {});
        row("MMIO write", code::mmioWrite, record("46532120020003") + QByteArray(30, '\0'), 1,
            Operation::Write, Family::Mmio, "FS! ", record("0003"));
        row("MMIO info", code::mmioKeyInfo, "FS! ", 6, Operation::KeyInfo, Family::Mmio, "FS! ",
            {});
        row("MMIO name", code::mmioKeyByIndex, record("78563412"), 4, Operation::KeyByIndex,
            Family::Mmio, none, {});
    }
    void requestsAreUnderstood()
    {
        QFETCH(quint32, code);
        QFETCH(QByteArray, record);
        QFETCH(int, room);
        QFETCH(int, operation);
        QFETCH(int, family);
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, value);
        Call call;
        const Packet request = requestPacket(code, static_cast<std::size_t>(room), packet(record));
        QCOMPARE(parseRequest(request, call), 0U);
        QCOMPARE(static_cast<int>(call.operation), operation);
        QCOMPARE(static_cast<int>(call.family), family);
        QCOMPARE(call.room, static_cast<std::size_t>(room));
        QCOMPARE(QByteArray(call.key.data(), 4), key);
        QCOMPARE(bytes({ call.written().begin(), call.written().end() }), value);
        if (call.operation == Operation::KeyByIndex) {
            QCOMPARE(call.index, 0x12345678U);
        }
    }

    void whatIsNoRequestIsRefused_data()
    {
        QTest::addColumn<QByteArray>("packet");
        QTest::addColumn<quint32>("error");
        const auto row = [](const char* name, const char* digits, int error) {
            QTest::newRow(name) << record(digits) << static_cast<quint32>(error);
        };
        row("no packet", "", EINVAL);
        row("no room", "5424409C", EINVAL);
        row("unknown code", "5024409C0200000046532120 00", ENOTTY);
        row("code of no family", "1000220002000000", ENOTTY);
        row("HAL read without its end", "5424409C0200000046532120", EINVAL);
        row("HAL read with more", "5424409C0200000046532120 0000", EINVAL);
        row("HAL key without its terminator", "5424409C0200000046532120 20", EINVAL);
        row("HAL write of nothing", "5824409C0000000046532120 00", EINVAL);
        row("HAL info without room", "6024409C0B00000046532120 00", EINVAL);
        row("HAL name without room", "5C24409C0400000000000000", EINVAL);
        row("MMIO read with a terminator", "000022002000000046532120 00", EINVAL);
        row("MMIO info without room", "0C0022000500000046532120", EINVAL);
        row("MMIO name of a short index", "0800220004000000000000", EINVAL);
        row("MMIO write cut short", "04002200010000004653212002 0003", EINVAL);
        row("open without room", "0000534203000000", EINVAL);
        row("keep with a record", "040053420000000000", EINVAL);
        row("key with a zero", "0000220020000000465300 20", EINVAL);
        row("key with a control character", "0000220020000000460A2120", EINVAL);
        row("key beyond ASCII", "000022002000000046FF2120", EINVAL);
        const QByteArray mmioWrite = record("0400220001000000");
        const QByteArray rest(32, '\0');
        QTest::newRow("MMIO write of nothing")
            << QByteArray(mmioWrite + "FS! " + '\0' + rest) << quint32(EINVAL);
        QTest::newRow("MMIO write of more than there is")
            << QByteArray(mmioWrite + "FS! " + char(33) + rest) << quint32(EINVAL);
        QTest::newRow("HAL write of more than a key holds")
            << QByteArray(record("5824409C000000004653212000") + QByteArray(33, '\1'))
            << quint32(EINVAL);
        QTest::newRow("longer than any")
            << QByteArray(record("5424409C02000000") + QByteArray(65, ' ')) << quint32(EMSGSIZE);
    }
    void whatIsNoRequestIsRefused()
    {
        QFETCH(QByteArray, packet);
        QFETCH(quint32, error);
        Call call;
        QCOMPARE(parseRequest(::packet(packet), call), error);
    }

    void repliesComeBackAsTheyWent()
    {
        const Reply reply { 13, { 1, 2, 3 } };
        const Packet sent = replyPacket(reply);
        QCOMPARE(bytes(sent), record("0D000000010203"));
        const auto received = parseReply(sent, 3);
        QVERIFY(received);
        QCOMPARE(received->error, 13U);
        QCOMPARE(received->data, reply.data);
        QVERIFY(!parseReply(sent, 2));
        QVERIFY(!parseReply(Packet(3), 3));
    }

    void aValueIsCutToTheRoom()
    {
        Call call;
        call.room = 2;
        QCOMPARE(valueRecord(call, Packet { 1, 2, 3 }), (Packet { 1, 2 }));
        call.room = 5;
        QCOMPARE(valueRecord(call, Packet { 1, 2, 3 }), (Packet { 1, 2, 3 }));
    }

    void infosHaveTheFormOfTheirFamily()
    {
        const KeyInfo info { 4, { 'f', 'l', 't', ' ' }, 0xD4 };
        QCOMPARE(bytes(infoReply(Family::Hal, info).data), record("04000000666C7420D4000000"));
        QCOMPARE(bytes(infoReply(Family::Mmio, info).data), record("04666C7420D4"));
    }

    void noKeyHasAnInfoFromTheHalDriverAlone()
    {
        const Reply hal = infoReply(Family::Hal, {});
        QCOMPARE(hal.error, 0U);
        QCOMPARE(bytes(hal.data), QByteArray(12, 0));
        const Reply mmio = infoReply(Family::Mmio, {});
        QCOMPARE(mmio.error, static_cast<std::uint32_t>(ENOENT));
        QVERIFY(mmio.data.empty());
    }

    void roomBeyondTheLongestReplyIsNotBelieved()
    {
        Packet request = requestPacket(code::mmioRead, 4, packet("FS! "));
        request[4] = request[5] = request[6] = request[7] = 0xFF;
        Call call;
        QCOMPARE(parseRequest(request, call), 0U);
        QCOMPARE(call.room, longestReply);
    }
};

BRISORA_TEST_MAIN(ProtocolTest, QCoreApplication)

#include "test_smcd_protocol.moc"
