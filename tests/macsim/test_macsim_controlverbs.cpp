#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class ControlVerbsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aChangeLeavesAnEvent_data()
    {
        QTest::addColumn<QStringList>("request");
        QTest::addColumn<QString>("event");
        const auto row = [](const char* request, const char* event) {
            QTest::newRow(request) << words(request) << QString::fromLatin1(event);
        };
        row("load heavy", "event load heavy");
        row("load 40", "event load 40%");
        row("ambient 30", "event ambient 30");
        row("power battery", "event power battery");
        row("sleep", "event sleep");
        row("wake", "event wake");
        row("fault lose 5", "event fault lose 5");
        row("fault none", "event fault none");
        row("set FS! 0001", "event set \"FS! \" 0001");
        row("freeze TC1C", "event freeze \"TC1C\"");
        row("thaw TC1C", "event thaw \"TC1C\"");
        row("vanish TC1C", "event vanish \"TC1C\"");
        row("restore TC1C", "event restore \"TC1C\"");
        row("mark one two", "event mark one two");
    }
    void aChangeLeavesAnEvent()
    {
        QFETCH(QStringList, request);
        QFETCH(QString, event);
        MacBench bench;
        const ControlReply reply = bench.verbs.execute(request);
        QVERIFY2(reply.ok, qPrintable(reply.text));
        QCOMPARE(bench.events(), QStringList(event));
    }

    void nonsenseIsRefused_data()
    {
        QTest::addColumn<QStringList>("request");
        for (const char* request :
             { "",          "dance",       "load",         "load busy",   "load 101",
               "load 1 2",  "ambient hot", "ambient 99",   "ambient nan", "power gas",
               "sleep now", "fault",       "get",          "get ZZZZ",    "get TOOLONG",
               "set FS!",   "set FS! 01",  "set FS! 0x01", "set ZZZZ 00", "freeze ZZZZ",
               "thaw ZZZZ", "vanish ZZZZ", "restore ZZZZ", "state all" }) {
            QTest::newRow(request) << words(request);
        }
    }
    void nonsenseIsRefused()
    {
        QFETCH(QStringList, request);
        MacBench bench;
        const ControlReply reply = bench.verbs.execute(request);
        QVERIFY(!reply.ok);
        QVERIFY(!reply.text.isEmpty());
        QVERIFY(bench.lines.isEmpty());
    }

    void getAndSetMoveBytes()
    {
        MacBench bench;
        QCOMPARE(bench.verbs.execute(words("get FNum")).text, QStringLiteral("02"));
        QVERIFY(bench.ask(words("set F0Mn 2710"))); // 2500 RPM
        QCOMPARE(bench.verbs.execute(words("get F0Mn")).text, QStringLiteral("2710"));
        QCOMPARE(bench.mac.fan(0).minimum, 2500.0);
    }

    void aFrozenKeyStandsStill()
    {
        MacBench bench;
        QVERIFY(bench.ask(words("freeze TC1C")));
        QVERIFY(bench.ask(words("set TC1C 4B00")));
        QVERIFY(bench.ask(words("load heavy")));
        bench.passSeconds(60);
        QCOMPARE(bench.read("TC1C", 2), QByteArray::fromHex("4B00"));
        QVERIFY(bench.ask(words("thaw TC1C")));
        bench.passSeconds(1);
        QVERIFY(bench.read("TC1C", 2) != QByteArray::fromHex("4B00"));
    }

    void aPokedMeasurementLastsUntilTheNextMoment()
    {
        MacBench bench;
        QVERIFY(bench.ask(words("set TC1C 4B00")));
        bench.passSeconds(1);
        QVERIFY(bench.read("TC1C", 2) != QByteArray::fromHex("4B00"));
    }

    void aVanishedKeyComesBack()
    {
        MacBench bench;
        QVERIFY(bench.ask(words("vanish TC1C")));
        QVERIFY(!bench.ask(words("get TC1C")));
        QVERIFY(bench.ask(words("restore TC1C")));
        QVERIFY(bench.ask(words("get TC1C")));
    }

    void powerReachesFilesAndKeys()
    {
        MacBench bench;
        QVERIFY(bench.ask(words("power battery")));
        QCOMPARE(bench.read("BATP", 1), QByteArray(1, '\1'));
        QVERIFY(bench.ask(words("power ac")));
        QCOMPARE(bench.read("BATP", 1), QByteArray(1, '\0'));
        QCOMPARE(bench.powerSwitches,
                 QStringList({ QStringLiteral("battery"), QStringLiteral("ac") }));
    }

    void aDesktopHasNoBattery()
    {
        MacBench bench(QStringLiteral("Macmini6,2"));
        QVERIFY(!bench.ask(words("power battery")));
        QVERIFY(bench.powerSwitches.isEmpty());
    }

    void timeStandsStillForASleepingMachine()
    {
        MacBench bench;
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0001")));
        QVERIFY(bench.ask(words("sleep")));
        const double before = bench.mac.simulatedSeconds();
        bench.passSeconds(3600);
        QCOMPARE(bench.mac.simulatedSeconds(), before);
        QVERIFY(!bench.send(PortController::commandPort, PortController::readCommand));
        QCOMPARE(bench.controller.read(PortController::commandPort), quint8 { 0xFF });
        QCOMPARE(bench.events().last(), QStringLiteral("event asleep 0304 10"));
        QVERIFY(bench.ask(words("wake")));
        bench.passSeconds(1);
        QVERIFY(qAbs(bench.mac.simulatedSeconds() - before - 1) < 0.01);
        QCOMPARE(bench.read("FS! ", 2),
                 QByteArray::fromHex("0001")); // the controller stays powered
        QCOMPARE(bench.allErrors(), 0U);
    }

    void anExchangeDoesNotOutliveASleep()
    {
        MacBench bench;
        QVERIFY(bench.start(PortController::readCommand, "FNum"));
        QVERIFY(bench.ask(words("sleep")));
        QVERIFY(bench.ask(words("wake")));
        QCOMPARE(bench.read("FNum", 1), QByteArray(1, '\2'));
        QCOMPARE(bench.allErrors(), 0U);
    }

    void stateTellsEverything()
    {
        MacBench bench;
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0002")));
        QVERIFY(bench.write("F1Tg", QByteArray::fromHex("2EE0"))); // 3000 RPM
        QVERIFY(bench.write("F1Tg", QByteArray::fromHex("7D00"))); // 8000 RPM, too fast
        bench.controller.write(0x301, 1);
        const QJsonObject state
            = QJsonDocument::fromJson(bench.verbs.execute(words("state")).text.toUtf8()).object();
        QCOMPARE(state[QLatin1String("machine")].toString(), QStringLiteral("MacBookPro11,3"));
        QCOMPARE(state[QLatin1String("controlBits")].toInt(), 2);
        QCOMPARE(state[QLatin1String("load")].toDouble(), 3.0);
        QCOMPARE(state[QLatin1String("protocolErrors")].toObject()[QLatin1String("total")].toInt(),
                 1);
        QCOMPARE(state[QLatin1String("operations")].toObject()[QLatin1String("write")].toInt(), 3);
        const double cpu
            = state[QLatin1String("temperatures")].toObject()[QLatin1String("cpu")].toDouble();
        QVERIFY(cpu > 40 && cpu < 50);
        const QJsonObject fan = state[QLatin1String("fans")].toArray().at(1).toObject();
        QCOMPARE(fan[QLatin1String("name")].toString(), QStringLiteral("Right side"));
        QCOMPARE(fan[QLatin1String("forced")].toBool(), true);
        QCOMPARE(fan[QLatin1String("min")].toDouble(), 2000.0);
        QCOMPARE(fan[QLatin1String("max")].toDouble(), 5700.0);
        QCOMPARE(fan[QLatin1String("target")].toDouble(), 8000.0);
        QCOMPARE(fan[QLatin1String("targetWrites")].toInt(), 2);
        QCOMPARE(fan[QLatin1String("targetsOutsideLimits")].toInt(), 1);
        QCOMPARE(fan[QLatin1String("lowestTarget")].toDouble(), 3000.0);
        QCOMPARE(fan[QLatin1String("highestTarget")].toDouble(), 8000.0);
    }

    void theHelpTellsEveryVerb()
    {
        const QString help = ControlVerbs::help();
        for (const char* verb : { "load", "ambient", "power", "sleep",  "wake",    "fault", "get",
                                  "set",  "freeze",  "thaw",  "vanish", "restore", "state", "mark",
                                  "mute", "busy",    "lose",  "slow",   "length",  "error" }) {
            QVERIFY2(help.contains(QStringLiteral("\n  %1 ").arg(QLatin1String(verb)))
                         || help.startsWith(QStringLiteral("  %1 ").arg(QLatin1String(verb))),
                     verb);
        }
    }
};

BRISORA_TEST_MAIN(ControlVerbsTest, QCoreApplication)

#include "test_macsim_controlverbs.moc"
