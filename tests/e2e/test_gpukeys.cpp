#include <QCoreApplication>

#include "tests/e2e/gpurun.h"
#include "tests/support/testenvironment.h"

class TestGpuKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void an_integrated_gpu_is_read_from_the_controller();
    void the_controller_serves_once_the_driver_has_failed_data();
    void the_controller_serves_once_the_driver_has_failed();
};

namespace {

QString word(const char* text) { return QString::fromLatin1(text); }

} // namespace

void TestGpuKeys::an_integrated_gpu_is_read_from_the_controller()
{
    GpuRun run(word("Macmini6,2"));
    QVERIFY(run.startSteered());

    // Of the two spellings that the controller has the other one is gone.
    QVERIFY(run.sensor(word("TCGc")).startsWith(word("GPU Intel ")));

    QVERIFY(run.freezeKey("TCGc"));
    QVERIFY(run.waitFor([&run] { return run.shown(word("TCGc")) == GpuRun::frozen; }));
    QVERIFY(run.terminate());
    QCOMPARE(run.log().count(QLatin1String("matching SMC - yes")), 1);
    QCOMPARE(run.leftovers(), QStringList());
}

void TestGpuKeys::the_controller_serves_once_the_driver_has_failed_data()
{
    QTest::addColumn<QString>("machine");
    QTest::newRow("NVIDIA") << word("MacBookPro11,3");
    QTest::newRow("AMD") << word("iMac12,2");
}

void TestGpuKeys::the_controller_serves_once_the_driver_has_failed()
{
    QFETCH(QString, machine);
    GpuRun run(machine);
    QVERIFY(run.startSteered());
    QVERIFY(run.freezeKey("TG0D"));
    QVERIFY(run.waitFor([&run] { return run.shown(word("TG0D")) > GpuRun::frozen + 5.0; }));

    QVERIFY(run.control({ word("fault"), word("gpus") }));

    QVERIFY(run.waitFor([&run] { return run.shown(word("TG0D")) == GpuRun::frozen; }));

    // The driver comes back, and is not asked.
    QVERIFY(run.control({ word("fault"), word("none") }));
    const std::size_t fromHere = run.here();
    QVERIFY(run.waitFor([&run, fromHere] {
        return trace::count(run.traceLog(), trace::read("TG0D"), fromHere) >= 3;
    }));
    QCOMPARE(run.shown(word("TG0D")), GpuRun::frozen);
    QVERIFY(run.terminate());
    QCOMPARE(run.log().count(QLatin1String("Reading of GPU temperature failed")), 1);
    QCOMPARE(run.log().count(QLatin1String("Trying SMC instead")), 1);
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestGpuKeys, QCoreApplication)

#include "test_gpukeys.moc"
