#include <functional>

#include <QCoreApplication>
#include <QRegularExpression>

#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

constexpr quint16 data = PortController::dataPort;
constexpr quint16 command = PortController::commandPort;

} // namespace

using Provocation = std::function<void(MacBench&)>;

Q_DECLARE_METATYPE(macsim::ProtocolError)
Q_DECLARE_METATYPE(Provocation)

class PortControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aReadGivesTheValue()
    {
        MacBench bench;
        QCOMPARE(bench.read("FNum", 1), QByteArray(1, '\2'));
        QCOMPARE(bench.read("F0ID", 16), QByteArray("\0\0\x0C\0Left side  \0", 16));
        QCOMPARE(bench.allErrors(), 0U);
        QCOMPARE(bench.controller.counters().operations(ProtocolCounters::Operation::Read), 2U);
    }

    void aWriteSetsTheValue()
    {
        MacBench bench;
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0003")));
        QCOMPARE(bench.read("FS! ", 2), QByteArray::fromHex("0003"));
        QCOMPARE(bench.allErrors(), 0U);
        QCOMPARE(bench.events(),
                 QStringList({ QStringLiteral("write \"FS! \" 0003 ok"),
                               QStringLiteral("read \"FS! \" 0003 ok") }));
    }

    void infoTellsLengthTypeAndAttributes()
    {
        MacBench bench;
        QCOMPARE(bench.info("F0Mn"), QByteArray("\2fpe2\xC0", 6));
        QCOMPARE(bench.events().last(), QStringLiteral("info \"F0Mn\" fpe2/2 ok"));
    }

    void infoOfAnUnknownKeyIsZeros()
    {
        MacBench bench;
        QCOMPARE(bench.info("ZZZZ"), QByteArray(6, '\0'));
        QCOMPARE(bench.allErrors(), 0U);
        QCOMPARE(bench.events().last(), QStringLiteral("info \"ZZZZ\" - unknown"));
    }

    void anIndexTakesItsHighestByteFirst()
    {
        MacBench bench;
        const QByteArray key = bench.mac.keyAt(0x0102).value();
        QCOMPARE(bench.exchange(PortController::indexCommand, QByteArray::fromHex("00000102"), 4),
                 key);
        QCOMPARE(bench.exchange(PortController::indexCommand, QByteArray(4, '\0'), 4),
                 QByteArray("#KEY"));
        QCOMPARE(bench.events().last(), QStringLiteral("index 0 \"#KEY\" ok"));
    }

    void anIndexBeyondTheTableIsRefused()
    {
        MacBench bench;
        QVERIFY(bench.start(PortController::indexCommand, QByteArray::fromHex("0000FFFF")));
        QVERIFY(!bench.send(data, 4));
        QCOMPARE(bench.events().last(), QStringLiteral("index 65535 - unknown"));
        QCOMPARE(bench.allErrors(), 0U);
    }

    void theLengthForAnUnknownKeyIsNeverAccepted_data()
    {
        QTest::addColumn<quint8>("command");
        QTest::newRow("read") << PortController::readCommand;
        QTest::newRow("write") << PortController::writeCommand;
    }
    void theLengthForAnUnknownKeyIsNeverAccepted()
    {
        QFETCH(quint8, command);
        MacBench bench;
        QVERIFY(bench.start(command, "ZZZZ"));
        for (int count = 0; count < 11; ++count) { // a patient caller sends it again
            QVERIFY(!bench.send(data, 2));
            QCOMPARE(bench.controller.read(PortController::commandPort) & 0x06, 0);
        }
        QCOMPARE(bench.allErrors(), 0U);
        QCOMPARE(bench.read("FNum", 1), QByteArray(1, '\2')); // and all is well after it
        QCOMPARE(bench.allErrors(), 0U);
    }

    void anUnreadableKeyIsRefused()
    {
        MacBench bench;
        QVERIFY(!bench.mac.keys().find("NTOK")->isReadable());
        QVERIFY(bench.start(PortController::readCommand, "NTOK"));
        QVERIFY(!bench.send(data, 1));
        QCOMPARE(bench.events().last(), QStringLiteral("read \"NTOK\" - unreadable"));
    }

    void theStatusIsBusyUntilAByteIsTaken()
    {
        MacBench bench;
        QCOMPARE(bench.controller.read(command), quint8 { 0 });
        bench.controller.write(command, PortController::readCommand);
        QCOMPARE(bench.controller.read(command), quint8 { 0x06 });
        bench.clock.advance(PortController::normalByteTime);
        QCOMPARE(bench.controller.read(command), quint8 { 0x04 });
        for (const char byte : QByteArray("FNum")) {
            QVERIFY(bench.send(data, static_cast<quint8>(byte)));
        }
        bench.controller.write(data, 1);
        QCOMPARE(bench.controller.read(command), quint8 { 0x06 });
        bench.clock.advance(PortController::normalByteTime);
        QCOMPARE(bench.controller.read(command), quint8 { 0x05 });
        QCOMPARE(bench.controller.read(data), quint8 { 2 });
        QCOMPARE(bench.controller.read(command), quint8 { 0 });
    }

    void theStatusSays04WhileValueBytesAreWanted()
    {
        MacBench bench;
        QVERIFY(bench.start(PortController::writeCommand, "FS! "));
        QVERIFY(bench.send(data, 2));
        QCOMPARE(bench.controller.read(command), quint8 { 0x04 });
        bench.controller.write(data, 0);
        QCOMPARE(bench.controller.read(command), quint8 { 0x06 });
        bench.clock.advance(PortController::normalByteTime);
        QCOMPARE(bench.controller.read(command), quint8 { 0x04 });
        bench.controller.write(data, 1);
        bench.clock.advance(PortController::normalByteTime);
        QCOMPARE(bench.controller.read(command), quint8 { 0 });
        QCOMPARE(bench.mac.forcedMask(), 1U);
    }

    void aCommandMayFollowTheLastValueByteAtOnce()
    {
        MacBench bench;
        QVERIFY(bench.start(PortController::writeCommand, "FS! "));
        QVERIFY(bench.send(data, 2));
        bench.controller.write(data, 0);
        bench.clock.advance(PortController::normalByteTime);
        bench.controller.write(data, 1);
        QCOMPARE(bench.read("FS! ", 2), QByteArray::fromHex("0001")); // no pause before it
        QCOMPARE(bench.allErrors(), 0U);
    }

    void aReadOfNoBytesIsCompleteWithItsLength()
    {
        MacBench bench;
        QVERIFY(bench.start(PortController::readCommand, "FNum"));
        QVERIFY(bench.send(data, 0));
        QCOMPARE(bench.read("FNum", 1), QByteArray(1, '\2'));
        QCOMPARE(bench.errors(ProtocolError::WrongLength), 1U);
        QCOMPARE(bench.allErrors(), 1U);
    }

    void aCommandStartsAfreshFromEveryState_data()
    {
        QTest::addColumn<int>("bytes"); // sent of a write before the command
        QTest::addColumn<quint64>("errors");
        for (int bytes = 0; bytes <= 8; ++bytes) {
            const bool unfinished = bytes > 0 && bytes < 8;
            QTest::newRow(qPrintable(QString::number(bytes)))
                << bytes << quint64 { unfinished ? 1U : 0U };
        }
    }
    void aCommandStartsAfreshFromEveryState()
    {
        QFETCH(int, bytes);
        QFETCH(quint64, errors);
        const QByteArray exchange
            = QByteArray::fromHex("11") + "FS! " + QByteArray::fromHex("020003");
        MacBench bench;
        for (int index = 0; index < bytes; ++index) {
            const auto byte = static_cast<quint8>(exchange.at(index));
            bench.controller.write(index == 0 ? command : data, byte);
            bench.clock.advance(PortController::normalByteTime);
        }
        QCOMPARE(bench.read("FNum", 1), QByteArray(1, '\2'));
        QCOMPARE(bench.errors(ProtocolError::CommandInExchange), errors);
        QCOMPARE(bench.allErrors(), errors);
        QCOMPARE(bench.mac.forcedMask(), bytes == 8 ? 3U : 0U);
    }

    void anAbortedReadIsTraced()
    {
        MacBench bench;
        QVERIFY(bench.start(PortController::readCommand, "F0ID"));
        QVERIFY(bench.send(data, 16));
        bench.controller.write(command, PortController::readCommand);
        QVERIFY(bench.events().contains(
            QStringLiteral("read \"F0ID\" 00000C004C6566742073696465202000 aborted")));
    }

    void protocolErrorsAreCountedAndTraced_data()
    {
        QTest::addColumn<ProtocolError>("error");
        QTest::addColumn<Provocation>("provoke");
        const auto row = [](const char* name, ProtocolError error, const Provocation& provoke) {
            QTest::newRow(name) << error << provoke;
        };
        row("byte outside an exchange", ProtocolError::ByteOutsideExchange,
            [](MacBench& bench) { bench.controller.write(data, 0x46); });
        row("byte after a complete exchange", ProtocolError::ByteOutsideExchange,
            [](MacBench& bench) {
                bench.read("FNum", 1);
                bench.controller.write(data, 0x46);
            });
        row("byte instead of a read", ProtocolError::ByteOutsideExchange, [](MacBench& bench) {
            bench.start(PortController::readCommand, "FNum");
            bench.send(data, 1);
            bench.controller.write(data, 0x46);
        });
        row("byte while busy", ProtocolError::ByteWhileBusy, [](MacBench& bench) {
            bench.controller.write(command, PortController::readCommand);
            bench.controller.write(data, 0x46);
        });
        row("short length for a read", ProtocolError::WrongLength,
            [](MacBench& bench) { bench.read("F0Ac", 1); });
        row("long length for a read", ProtocolError::WrongLength,
            [](MacBench& bench) { QCOMPARE(bench.read("F0Ac", 4).size(), 2); });
        row("wrong length for a write", ProtocolError::WrongLength,
            [](MacBench& bench) { QVERIFY(!bench.write("F0Tg", QByteArray(4, '\0'))); });
        row("wrong length for an info", ProtocolError::WrongLength,
            [](MacBench& bench) { bench.exchange(PortController::infoCommand, "F0Ac", 5); });
        row("wrong length for an index", ProtocolError::WrongLength, [](MacBench& bench) {
            bench.exchange(PortController::indexCommand, QByteArray(4, '\0'), 3);
        });
        row("read with nothing to read", ProtocolError::ReadNotReady,
            [](MacBench& bench) { QCOMPARE(bench.controller.read(data), quint8 { 0 }); });
        row("read too early", ProtocolError::ReadNotReady, [](MacBench& bench) {
            bench.start(PortController::readCommand, "FNum");
            bench.controller.write(data, 1);
            QCOMPARE(bench.controller.read(data), quint8 { 0 });
        });
        row("write to a read-only key", ProtocolError::WriteToReadOnly,
            [](MacBench& bench) { QVERIFY(!bench.write("F0Ac", QByteArray(2, '\0'))); });
        row("command in an exchange", ProtocolError::CommandInExchange, [](MacBench& bench) {
            bench.send(command, PortController::readCommand);
            bench.send(command, PortController::readCommand);
        });
        row("write to another port", ProtocolError::OtherPort,
            [](MacBench& bench) { bench.controller.write(0x301, 1); });
        row("read of another port", ProtocolError::OtherPort,
            [](MacBench& bench) { QCOMPARE(bench.controller.read(0x310), quint8 { 0xFF }); });
        row("unknown command", ProtocolError::UnknownCommand,
            [](MacBench& bench) { QVERIFY(!bench.send(command, 0x14)); });
        row("command below the known ones", ProtocolError::UnknownCommand,
            [](MacBench& bench) { QVERIFY(!bench.send(command, 0x0F)); });
    }
    void protocolErrorsAreCountedAndTraced()
    {
        QFETCH(ProtocolError, error);
        QFETCH(Provocation, provoke);
        MacBench bench;
        provoke(bench);
        QCOMPARE(bench.errors(error), 1U);
        QCOMPARE(bench.allErrors(), 1U);
        QCOMPARE(bench.events().filter(QRegularExpression(QStringLiteral("^error \".+\"$"))).size(),
                 1);
    }

    void aMachineWithoutAControllerHasNoneOfItsPorts()
    {
        MacBench bench(QStringLiteral("Generic-PC"));
        bench.controller.write(command, PortController::readCommand);
        QCOMPARE(bench.controller.read(command), quint8 { 0xFF });
        QCOMPARE(bench.errors(ProtocolError::OtherPort), 2U);
    }

    void twinsAreDifferentKeys()
    {
        MacBench bench(QStringLiteral("Macmini6,2"));
        QVERIFY(bench.ask({ QStringLiteral("freeze"), QStringLiteral("TC0p") }));
        QVERIFY(
            bench.ask({ QStringLiteral("set"), QStringLiteral("TC0p"), QStringLiteral("1234") }));
        QCOMPARE(bench.read("TC0p", 2), QByteArray::fromHex("1234"));
        QVERIFY(bench.read("TC0P", 2) != QByteArray::fromHex("1234"));
    }
};

BRISORA_TEST_MAIN(PortControllerTest, QCoreApplication)

#include "test_macsim_portcontroller.moc"
