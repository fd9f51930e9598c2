#include <QCoreApplication>

#include "macsim/model/smcvalue.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

QByteArray speed(double rpm) { return smcvalue::encode("fpe2", rpm); }

void addMacRows()
{
    QTest::addColumn<QString>("machine");
    const QStringList machines = MachineDescription::names();
    for (const QString& machine : machines) {
        QTest::newRow(qPrintable(machine)) << machine;
    }
}

} // namespace

class PhysicsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void temperaturesRiseWithTheLoadAndFallAfterIt()
    {
        MacBench bench;
        const double cool = bench.temperature(QStringLiteral("cpu"));
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
        double last = cool;
        for (int count = 0; count < 10; ++count) {
            bench.passSeconds(2);
            const double now = bench.temperature(QStringLiteral("cpu"));
            QVERIFY2(now > last, "a busy processor must get warmer");
            last = now;
        }
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("idle") }));
        bench.passSeconds(1800);
        QVERIFY(qAbs(bench.temperature(QStringLiteral("cpu")) - cool) < 1.0);
    }

    void moreAirMeansALowerTemperature()
    {
        double last = 1000;
        for (const double rpm : { 2160.0, 3000.0, 4000.0, 5000.0, 6000.0 }) {
            MacBench bench(QStringLiteral("MacBookPro11,3"), QStringLiteral("50"));
            QVERIFY(bench.write("FS! ", QByteArray::fromHex("0003")));
            QVERIFY(bench.write("F0Tg", speed(rpm)));
            QVERIFY(bench.write("F1Tg", speed(rpm)));
            bench.passSeconds(900);
            const double now = bench.temperature(QStringLiteral("cpu"));
            QVERIFY2(now < last, qPrintable(QStringLiteral("%1 at %2 RPM").arg(now).arg(rpm)));
            last = now;
        }
    }

    void aHotterRoomMeansAHotterMachine()
    {
        MacBench bench;
        const double before = bench.temperature(QStringLiteral("case"));
        QVERIFY(bench.ask({ QStringLiteral("ambient"), QStringLiteral("34") }));
        bench.passSeconds(7200);
        QVERIFY(bench.temperature(QStringLiteral("case")) > before + 5.0);
    }

    void aForcedFanReachesItsTargetWithInertia()
    {
        MacBench bench;
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0001")));
        QVERIFY(bench.write("F0Tg", speed(5000)));
        bench.passSeconds(1);
        const double early = bench.fanSpeed(0);
        QVERIFY2(early > 2400 && early < 4000, qPrintable(QString::number(early)));
        bench.passSeconds(30);
        QVERIFY(qAbs(bench.fanSpeed(0) - 5000) < 20);
        QVERIFY(qAbs(bench.fanSpeed(1) - 2000) < 20); // nobody forced this one
    }

    void aTargetIsKeptWithinTheFansLimits_data()
    {
        QTest::addColumn<double>("target");
        QTest::addColumn<double>("reached");
        QTest::newRow("too fast") << 16000.0 << 6156.0;
        QTest::newRow("too slow") << 100.0 << 2160.0;
        QTest::newRow("within") << 3210.0 << 3210.0;
    }
    void aTargetIsKeptWithinTheFansLimits()
    {
        QFETCH(double, target);
        QFETCH(double, reached);
        MacBench bench;
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0001")));
        QVERIFY(bench.write("F0Tg", speed(target)));
        bench.passSeconds(60);
        QVERIFY(qAbs(bench.fanSpeed(0) - reached) < 20);
        QCOMPARE(bench.mac.fan(0).targetsOutsideLimits, target == reached ? 0U : 1U);
    }

    void limitsThatWerePokedCount()
    {
        MacBench bench;
        QVERIFY(bench.mac.poke("F0Mn", speed(3500)));
        bench.passSeconds(60);
        QVERIFY(qAbs(bench.fanSpeed(0) - 3500) < 20); // automatic
        QVERIFY(bench.mac.poke("F0Mx", speed(4000)));
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0001")));
        QVERIFY(bench.write("F0Tg", speed(6000)));
        bench.passSeconds(60);
        QVERIFY(qAbs(bench.fanSpeed(0) - 4000) < 20);
    }

    void aFanThatIsGivenBackFollowsTheAutomaticAgain()
    {
        MacBench bench;
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0003")));
        QVERIFY(bench.write("F0Tg", speed(6000)));
        bench.passSeconds(60);
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("0000")));
        bench.passSeconds(120);
        QVERIFY(qAbs(bench.fanSpeed(0) - 2160) < 20);
        QVERIFY(smcvalue::decode("fpe2", bench.read("F0Tg", 2)).value() < 2200);
    }

    void theAutomaticFollowsTheTemperature()
    {
        MacBench bench(QStringLiteral("MacBookPro11,3"), QStringLiteral("heavy"));
        bench.passSeconds(600);
        const double busy = bench.fanSpeed(0);
        QVERIFY2(busy > 3000, qPrintable(QString::number(busy)));
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("idle") }));
        bench.passSeconds(600);
        QVERIFY(bench.fanSpeed(0) < 2300);
    }

    void aModeKeyForcesItsFan()
    {
        MacBench bench(QStringLiteral("MacBookPro16,1"));
        QVERIFY(bench.write("F1Md", QByteArray(1, '\1')));
        QVERIFY(bench.write("F1Tg", smcvalue::encode("flt ", 4000)));
        bench.passSeconds(60);
        QVERIFY(qAbs(bench.fanSpeed(1) - 4000) < 20);
        QVERIFY(bench.fanSpeed(0) < 2000);
        QCOMPARE(bench.mac.forcedMask(), 2U);
    }

    void aFanMayParkWhenItsSourceIsCool()
    {
        MacBench bench(QStringLiteral("Xserve3,1"));
        QCOMPARE(bench.fanSpeed(7), 0.0);
        QCOMPARE(bench.read("F7Ac", 2), QByteArray(2, '\0'));
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
        bench.passSeconds(1800);
        QVERIFY(bench.fanSpeed(7) > 1700);
    }

    void theActualSpeedWaversAroundTheTrueOne()
    {
        MacBench bench;
        QSet<QByteArray> seen;
        bool below = false;
        for (int count = 0; count < 60; ++count) {
            bench.passSeconds(1);
            seen.insert(bench.read("F0Ac", 2));
            below = below || bench.fanSpeed(0) < 2160;
            QVERIFY(qAbs(bench.fanSpeed(0) - 2160) < 15);
        }
        QVERIFY(seen.size() > 10);
        QVERIFY(below);
    }

    void equalSeedsGiveEqualNoise()
    {
        MacBench first;
        MacBench second;
        first.passSeconds(10);
        second.passSeconds(10);
        QCOMPARE(first.fanSpeed(0), second.fanSpeed(0));
    }

    void everyMachineIsPlausibleAtRest_data() { addMacRows(); }
    void everyMachineIsPlausibleAtRest()
    {
        QFETCH(QString, machine);
        MacBench bench(machine);
        const double hottest = hottestNow(bench);
        QVERIFY2(hottest >= 40 && hottest <= 50, qPrintable(QString::number(hottest)));
    }

    void everyMachineStaysBelow100DegreesOnAutomatic_data() { addMacRows(); }
    void everyMachineStaysBelow100DegreesOnAutomatic()
    {
        QFETCH(QString, machine);
        MacBench bench(machine, QStringLiteral("idle"));
        const double cool = hottestNow(bench);
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
        bench.passSeconds(1800);
        double highest = 0;
        for (const ThermalModel::Source& source : bench.mac.sources()) {
            highest = std::max(highest, source.highest);
        }
        qInfo("%s: %.1f at rest, %.1f at most", qPrintable(machine), cool, highest);
        QVERIFY(highest > cool + 15);
        QVERIFY(highest < 100);
    }

    void aFanHeldAtItsMinimumCooksTheMachine_data()
    {
        QTest::addColumn<QString>("machine");
        for (const char* machine : { "MacBookPro11,3", "Macmini6,2", "iMac14,2", "MacPro5,1" }) {
            QTest::newRow(machine) << QString::fromLatin1(machine);
        }
    }
    void aFanHeldAtItsMinimumCooksTheMachine()
    {
        QFETCH(QString, machine);
        MacBench bench(machine, QStringLiteral("heavy"));
        QVERIFY(bench.write("FS! ", QByteArray::fromHex("00FF")));
        for (int fan = 0; fan < static_cast<int>(bench.mac.description().fans.size()); ++fan) {
            QVERIFY(bench.write(fanKey(fan, "Tg"), speed(bench.mac.fan(fan).minimum)));
        }
        bench.passSeconds(1800);
        QVERIFY2(hottestNow(bench) > 100, qPrintable(QString::number(hottestNow(bench))));
    }

    void invertedKeysReportTheDistanceTo100()
    {
        MacBench bench(QStringLiteral("MacPro5,1"));
        const double core = bench.temperature(QStringLiteral("cpuA"));
        const double shown = smcvalue::decode("sp78", bench.read("TCAC", 2)).value();
        const double heatSink = smcvalue::decode("sp78", bench.read("TCAH", 2)).value();
        QVERIFY(qAbs(shown - (100 - core)) < 0.1);
        QVERIFY(qAbs(heatSink - bench.temperature(QStringLiteral("sinkA"))) < 0.1);
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
        bench.passSeconds(300);
        QVERIFY(smcvalue::decode("sp78", bench.read("TCAC", 2)).value() < shown - 10);
    }

    void keysOfOneSourceShareItsTemperature()
    {
        MacBench bench;
        const double core = smcvalue::decode("sp78", bench.read("TC1C", 2)).value();
        const double diode = smcvalue::decode("sp78", bench.read("TC0F", 2)).value();
        QVERIFY(qAbs(diode - core - 3.0) < 0.1);
    }

    void aSourceIsWarmedByItsNeighbour()
    {
        MacBench bench; // the heat sink has no power of its own
        const double cool = bench.temperature(QStringLiteral("heatsink"));
        QVERIFY(cool > bench.mac.ambient() + 8);
        QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("heavy") }));
        bench.passSeconds(600);
        const double warm = bench.temperature(QStringLiteral("heatsink"));
        QVERIFY(warm > cool + 15);
        QVERIFY(warm < bench.temperature(QStringLiteral("cpu")));
    }

    void timeRunsFasterWhenAsked()
    {
        BenchClock clock;
        QString error;
        const auto machine = MachineDescription::load(QStringLiteral("MacBookPro11,3"), error);
        SimulatedMac mac(machine.value(), clock,
                         { LoadProfile::fromText(QStringLiteral("heavy")).value(), 60.0, 1 });
        clock.advance(std::chrono::seconds(10));
        mac.advance();
        QVERIFY(qAbs(mac.simulatedSeconds() - 600) < 0.01);
    }

private:
    static double hottestNow(MacBench& bench)
    {
        bench.mac.advance();
        double hottest = 0;
        for (const ThermalModel::Source& source : bench.mac.sources()) {
            hottest = std::max(hottest, source.temperature);
        }
        return hottest;
    }
};

BRISORA_TEST_MAIN(PhysicsTest, QCoreApplication)

#include "test_macsim_physics.moc"
