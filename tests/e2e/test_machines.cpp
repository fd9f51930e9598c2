#include <cmath>

#include <QCoreApplication>
#include <QJsonObject>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestMachines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_machine_comes_up_with_its_fans_and_sensors_data();
    void a_machine_comes_up_with_its_fans_and_sensors();
    void a_passive_machine_has_no_fan_traffic();
    void inverted_temperatures_are_shown_right();
};

namespace {

// "KEY text" parts, separated by semicolons.
QString answerFor(const QString& answer, const QString& key)
{
    const QStringList parts = answer.split(QLatin1Char(';'));
    for (const QString& part : parts) {
        if (part.startsWith(key + QLatin1Char(' '))) {
            return part.mid(key.size() + 1);
        }
    }
    return {};
}

} // namespace

void TestMachines::a_machine_comes_up_with_its_fans_and_sensors_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QStringList>("fans");
    QTest::addColumn<QStringList>("sensors");
    QTest::addColumn<QStringList>("missing");

    const auto row
        = [](const char* machine, const char* fans, const char* sensors, const char* missing) {
              const auto list = [](const char* text) {
                  return QString::fromLatin1(text).split(QLatin1Char(';'), Qt::SkipEmptyParts);
              };
              QTest::newRow(machine)
                  << QString::fromLatin1(machine) << list(fans) << list(sensors) << list(missing);
          };
    row("MacBookPro11,3", "Left side;Right side",
        "TC0P CPU Proximity;TC1C CPU Core 1;TG0D GPU NVIDIA GeForce GT 750M;Ts0P Palm Rest",
        "TC0E;TH0A");
    // Of two spellings the one with the small last letter stays.
    row("Macmini6,2", "Exhaust",
        "TC0c CPU Core 1;TC0p CPU Proximity;TA0p Ambient;TI0p Thunderbolt Proximity",
        "TC0P;TA0P;TH0A");
    row("iMac14,2", "Main",
        "TL0p LCD Proximity;TM0p DIMM Module 1 Proximity;TG0D GPU NVIDIA GeForce GTX 775M",
        "TL0P;TG0d");
}

void TestMachines::a_machine_comes_up_with_its_fans_and_sensors()
{
    QFETCH(QString, machine);
    QFETCH(QStringList, fans);
    QFETCH(QStringList, sensors);
    QFETCH(QStringList, missing);
    SimulatedRun run(machine);
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);

    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitUntilLoaded());

    const QString found = run.ask(QStringLiteral("sensors"));
    for (const QString& sensor : qAsConst(sensors)) {
        QCOMPARE(answerFor(found, sensor.left(4)), sensor.mid(5));
    }
    for (const QString& sensor : qAsConst(missing)) {
        QCOMPARE(answerFor(found, sensor), QString());
    }
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QStringLiteral("Fans count - %1\r\n").arg(fans.size())));
    for (int fan = 0; fan < fans.size(); ++fan) {
        QVERIFY(run.log().contains(
            QStringLiteral("Fan %1: %2\r\n").arg(QString::number(fan), fans[fan])));
    }
    QCOMPARE(run.leftovers(), QStringList());
}

void TestMachines::a_passive_machine_has_no_fan_traffic()
{
    SimulatedRun run(QStringLiteral("MacBook10,1"));
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    // A preset of another machine, to be left alone.
    run.storeSetting(QStringLiteral("ActivePreset"), QStringLiteral("Predefined:1"));

    QVERIFY(run.start());
    QVERIFY(run.waitFor([&run] { return trace::count(run.traceLog(), trace::read("TW0P")) >= 4; }));
    QVERIFY(run.terminate());

    QCOMPARE(trace::count(run.traceLog(), trace::readOrWroteFanKey()), 0);
    QVERIFY(!run.log().contains(QLatin1String("No fans detected!")));
    QVERIFY(run.log().contains(QLatin1String("stopAndWaitForFinished: Quit OK")));
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Predefined:1"));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestMachines::inverted_temperatures_are_shown_right()
{
    SimulatedRun run(QStringLiteral("MacPro5,1"));
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start({}, SimulatedRun::steeredProgram()));
    QVERIFY(run.waitUntilLoaded());

    QString raw;
    QVERIFY(run.control({ QStringLiteral("get"), QStringLiteral("TCAC") }, &raw));
    const QString values = run.ask(QStringLiteral("values"));
    const double shown = answerFor(values, QStringLiteral("TCAC")).toDouble();
    const double heat
        = run.state()[QLatin1String("temperatures")].toObject()[QLatin1String("cpuA")].toDouble();
    // The controller tells how far it is to 100 degrees.
    QVERIFY(std::abs(raw.left(2).toInt(nullptr, 16) - (100.0 - heat)) < 2.0);
    QVERIFY2(std::abs(shown - heat) < 2.0, qPrintable(values));
    // Another key of the same processor is not turned round.
    const double diode = answerFor(values, QStringLiteral("TCAD")).toDouble();
    QVERIFY(std::abs(diode - (heat + 2.0)) < 2.0);
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("Fans count - 6\r\n")));
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestMachines, QCoreApplication)

#include "test_machines.moc"
