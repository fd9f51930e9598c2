#include <QCoreApplication>

#include "tests/support/testenvironment.h"
#include "tests/wine/winerun.h"

class TestWineGpus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void a_fan_follows_the_driver_of_the_gpu();

private:
    VirtualDisplay m_display;
};

void TestWineGpus::initTestCase()
{
    const QString missing = WineRun::missing();
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
    QVERIFY(m_display.start());
}

void TestWineGpus::a_fan_follows_the_driver_of_the_gpu()
{
    WineRun run(m_display);
    run.storeActivePreset({ QStringLiteral("2,TG0D,25,30"), QStringLiteral("0") });
    run.beforeStart({ QStringLiteral("freeze"), QStringLiteral("TG0D") });
    run.beforeStart({ QStringLiteral("set"), QStringLiteral("TG0D"), QStringLiteral("1400") });

    QVERIFY(run.start());

    // The controller tells 20 degrees, the driver more than the upper 30.
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156)) >= 0);
    QVERIFY(run.endSession());
    const QByteArray log = run.log();
    QVERIFY(log.contains("nvapi.dll loaded"));
    QVERIFY(log.contains("NvAPI_EnumPhysicalGPUs 1"));
    QVERIFY(log.contains("Discrete GPU: GPU NVIDIA GeForce GT 750M, matching SMC - yes"));
    QVERIFY(!log.contains("Reading of GPU temperature failed"));
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestWineGpus, QCoreApplication)

#include "test_wine_gpus.moc"
