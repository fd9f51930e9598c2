#include <QCoreApplication>

#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

constexpr quint16 data = PortController::dataPort;
constexpr quint16 command = PortController::commandPort;

} // namespace

class FaultsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMuteControllerTakesNothing()
    {
        MacBench bench;
        QVERIFY(fault(bench, "mute"));
        QVERIFY(!bench.send(command, PortController::readCommand));
        QCOMPARE(bench.controller.read(command), quint8 { 0 });
        QVERIFY(fault(bench, "none"));
        QCOMPARE(bench.read("FNum", 1), QByteArray(1, '\2'));
        QCOMPARE(bench.allErrors(), 0U);
    }

    void aBusyControllerStaysBusy()
    {
        MacBench bench;
        QVERIFY(fault(bench, "busy"));
        bench.controller.write(command, PortController::readCommand);
        bench.passSeconds(10);
        QCOMPARE(bench.controller.read(command) & 0x02, 0x02);
        QVERIFY(fault(bench, "none"));
        QCOMPARE(bench.controller.read(command), quint8 { 0 });
        QCOMPARE(bench.allErrors(), 0U);
    }

    void aLostByteHasToBeSentAgain()
    {
        MacBench bench;
        QVERIFY(fault(bench, "lose 3"));
        QVERIFY(bench.send(command, PortController::readCommand));
        QVERIFY(bench.send(data, 'F'));
        QVERIFY(!bench.send(data, 'N'));
        QCOMPARE(bench.controller.read(command), quint8 { 0 });
        QVERIFY(bench.send(data, 'N'));
        QVERIFY(bench.send(data, 'u'));
        QVERIFY(!bench.send(data, 'm'));
        QVERIFY(bench.send(data, 'm'));
        QVERIFY(bench.send(data, 1));
        QCOMPARE(bench.controller.read(data), quint8 { 2 });
        QCOMPARE(bench.allErrors(), 0U);
    }

    void aCallerThatGivesUpOnALostByteDoesNothingWrong()
    {
        MacBench bench;
        QVERIFY(fault(bench, "lose 3"));
        QVERIFY(bench.send(command, PortController::readCommand));
        QVERIFY(bench.send(data, 'F'));
        QVERIFY(!bench.send(data, 'N'));
        QVERIFY(bench.send(command, PortController::readCommand));
        QCOMPARE(bench.allErrors(), 0U);
    }

    void aSlowControllerTakesItsTime()
    {
        MacBench bench;
        QVERIFY(fault(bench, "slow 50"));
        bench.controller.write(command, PortController::readCommand);
        bench.clock.advance(std::chrono::milliseconds(49));
        QCOMPARE(bench.controller.read(command), quint8 { 0x06 });
        bench.clock.advance(std::chrono::milliseconds(1));
        QCOMPARE(bench.controller.read(command), quint8 { 0x04 });
    }

    void aLieAboutALengthIsInTheInfoOnly()
    {
        MacBench bench;
        QVERIFY(fault(bench, "length F0Mn 4"));
        QCOMPARE(bench.info("F0Mn"), QByteArray("\4fpe2\xC0", 6));
        QCOMPARE(bench.read("F0Mn", 4).size(), 2); // the last two bytes never come
        QCOMPARE(bench.allErrors(), 0U); // the caller was misled
        QVERIFY(fault(bench, "none"));
        QCOMPARE(bench.info("F0Mn"), QByteArray("\2fpe2\xC0", 6));
    }

    void aVanishedKeyIsNowhere()
    {
        MacBench bench;
        const quint32 size = bench.mac.keys().size();
        quint32 place = 0;
        while (bench.mac.keyAt(place) != QByteArray("TC1C")) {
            ++place;
        }
        QVERIFY(fault(bench, "vanish TC1C"));
        QCOMPARE(bench.info("TC1C"), QByteArray(6, '\0'));
        QVERIFY(bench.start(PortController::readCommand, "TC1C"));
        QVERIFY(!bench.send(data, 2));
        QCOMPARE(bench.mac.keyAt(place), QByteArray("TC2C"));
        QCOMPARE(bench.mac.keys().size(), size - 1);
        QCOMPARE(bench.read("#KEY", 4).toHex().toUInt(nullptr, 16), size - 1);
        QVERIFY(fault(bench, "none"));
        QCOMPARE(bench.mac.keys().size(), size);
        QCOMPARE(bench.read("TC1C", 2).size(), 2);
    }

    void aFailingKeyIsListedButCantBeRead()
    {
        MacBench bench;
        QVERIFY(fault(bench, "error TC1C"));
        QCOMPARE(bench.info("TC1C"), QByteArray("\2sp78\xC0", 6));
        QVERIFY(bench.start(PortController::readCommand, "TC1C"));
        QVERIFY(!bench.send(data, 2));
        QCOMPARE(bench.events().last(), QStringLiteral("read \"TC1C\" - failing"));
        QVERIFY(fault(bench, "none"));
        QCOMPARE(bench.read("TC1C", 2).size(), 2);
    }

    void faultsAddUp()
    {
        MacBench bench;
        QVERIFY(fault(bench, "slow 5"));
        QVERIFY(fault(bench, "lose 100"));
        QCOMPARE(bench.controller.faults().byteTime, std::chrono::microseconds(5000));
        QCOMPARE(bench.controller.faults().loseEvery, 100U);
    }

    void nonsenseIsRefused_data()
    {
        QTest::addColumn<QString>("words");
        for (const char* words :
             { "", "nonsense", "mute now", "lose", "lose 0", "lose -1", "lose x", "slow", "slow -1",
               "slow x", "length", "length F0Mn", "length F0Mn 256", "length ZZZZ 2", "vanish",
               "vanish ZZZZ", "error", "error ZZZZ", "error TOOLONG" }) {
            QTest::newRow(words) << QString::fromLatin1(words);
        }
    }
    void nonsenseIsRefused()
    {
        QFETCH(QString, words);
        MacBench bench;
        QVERIFY(!fault(bench, qPrintable(words)));
        QVERIFY(bench.lines.isEmpty());
        QCOMPARE(bench.read("F0Mn", 2).size(), 2);
    }

private:
    static bool fault(MacBench& bench, const char* words)
    {
        return bench.ask(QStringLiteral("fault %1")
                             .arg(QLatin1String(words))
                             .split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }
};

BRISORA_TEST_MAIN(FaultsTest, QCoreApplication)

#include "test_macsim_faults.moc"
