#include <cmath>

#include <QCoreApplication>

#include "tests/e2e/gpurun.h"
#include "tests/support/testenvironment.h"

class TestGpus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_gpu_is_shown_as_its_driver_tells_it_data();
    void a_gpu_is_shown_as_its_driver_tells_it();
    void a_machine_without_gpus_shows_none();
    void a_fan_follows_the_driver_by_the_controllers_key();
};

namespace {

QString word(const char* text) { return QString::fromLatin1(text); }

} // namespace

void TestGpus::a_gpu_is_shown_as_its_driver_tells_it_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("hasControllersKey");
    const QString tg0d = word("TG0D");
    QTest::newRow("NVIDIA") << word("MacBookPro11,3") << tg0d << word("GPU NVIDIA GeForce GT 750M")
                            << true;
    // Names of AMD's come from a file that not every system has.
    QTest::newRow("AMD") << word("iMac12,2") << tg0d << word("GPU AMD ") << true;
    QTest::newRow("AMD, unknown to the controller")
        << word("MacPro5,1") << word("GPU AMD ") << word("(0)") << false;
}

void TestGpus::a_gpu_is_shown_as_its_driver_tells_it()
{
    QFETCH(QString, machine);
    QFETCH(QString, key);
    QFETCH(QString, name);
    QFETCH(bool, hasControllersKey);
    GpuRun run(machine);
    run.setSpeed(20);
    QVERIFY(run.startSteered());
    if (hasControllersKey) {
        QVERIFY(run.freezeKey("TG0D"));
    }
    QVERIFY2(run.sensor(key).contains(name), qPrintable(run.sensor(key)));

    const auto isShownAsTold = [&run, &key] { return std::abs(run.shown(key) - run.told()) < 2.0; };
    QVERIFY(run.waitFor(isShownAsTold));
    const double atRest = run.told();
    QVERIFY(atRest > 30.0);

    QVERIFY(run.control({ word("load"), word("heavy") }));

    QVERIFY(run.waitFor([&run, atRest] { return run.told() > atRest + 8.0; }));
    QVERIFY(run.waitFor(isShownAsTold));
    QVERIFY(run.terminate());
    QVERIFY(!run.log().contains(QLatin1String("Reading of GPU temperature failed")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestGpus::a_machine_without_gpus_shows_none()
{
    GpuRun run(word("Xserve3,1"));
    QVERIFY(run.startSteered());

    QVERIFY(!run.ask(word("sensors")).contains(word("GPU")));

    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("number of supported GPU sensors: 0")));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestGpus::a_fan_follows_the_driver_by_the_controllers_key()
{
    SimulatedRun run;
    run.storeActivePreset({ word("2,TG0D,25,30"), word("0") });
    run.beforeStart({ word("freeze"), word("TG0D") });
    run.beforeStart({ word("set"), word("TG0D"), word("1400") });

    // Hidden, so that only what a fan needs is read.
    QVERIFY(run.start({ word("/minimized") }));

    // The driver tells more than the upper one, the controller less than the lower.
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156)) >= 0);
    const std::size_t fromHere = run.here();
    QVERIFY(run.waitFor([&run, fromHere] {
        return trace::count(run.traceLog(), trace::read("F1Ac"), fromHere) >= 3;
    }));
    QCOMPARE(trace::count(run.traceLog(), trace::read("TG0D"), fromHere), 0);
    QVERIFY(run.terminate());
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestGpus, QCoreApplication)

#include "test_gpus.moc"
