#include <QCoreApplication>

#include "tests/support/testenvironment.h"
#include "tests/wine/winerun.h"

class TestWineInstances : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void a_start_without_a_controller_tells_why();
    void a_second_start_raises_the_first_ones_window();
    void uninstall_removes_the_settings();
    void uninstall_leaves_a_running_instance_running();

private:
    VirtualDisplay m_display;
};

namespace {

const QString windowTitle = QStringLiteral("Brisora 1.5.9 ()");

const QStringList uninstall { QStringLiteral("/uninstall") };

} // namespace

void TestWineInstances::initTestCase()
{
    const QString missing = WineRun::missing();
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
    QVERIFY(m_display.start());
}

void TestWineInstances::a_start_without_a_controller_tells_why()
{
    WineRun run(m_display);
    run.hidePortDriver();

    QVERIFY(run.startFirst());

    // A box of a machine without a name has the program's.
    QVERIFY(!run.waitForWindow(QStringLiteral("Brisora")).isEmpty());
    QVERIFY(run.isRunning());
    // A box that has just appeared may not have the keyboard yet.
    QVERIFY(run.waitFor([this, &run] { return !run.isRunning() || !m_display.acceptBox(); }));
    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 4);
    QVERIFY(run.log().contains("inpout32 loading failed with 126"));
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
    const auto settings = run.storedSettings();
    QVERIFY(settings.contains(QStringLiteral("AppFirstRun")));
    QVERIFY(!settings.contains(QStringLiteral("ActivePreset")));
}

void TestWineInstances::a_second_start_raises_the_first_ones_window()
{
    WineRun run(m_display);
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start(WineRun::toThePorts() << QStringLiteral("/minimized")));
    QVERIFY(run.waitUntilLoaded());
    QVERIFY(!run.isWindowVisible(windowTitle));
    const std::size_t beforeSecond = run.here();

    QCOMPARE(run.runBeside(WineRun::toThePorts()), 5);

    // The second one has touched nothing; the first one shows its temperatures now.
    QCOMPARE(trace::count(run.traceLog(), trace::belongsToStart(), beforeSecond), 0);
    QVERIFY(!run.waitForWindow(windowTitle).isEmpty());
    QVERIFY(run.waitForLine(trace::readTemperature(), beforeSecond) >= 0);
    QVERIFY(run.endSession());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestWineInstances::uninstall_removes_the_settings()
{
    WineRun run(m_display);
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("0") });

    QVERIFY(run.start(uninstall));

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 1);
    QVERIFY(run.hasRegistryKey(QStringLiteral("HKEY_CURRENT_USER\\Software\\Orvane Software")));
    QVERIFY(!run.hasSettings());
    QCOMPARE(run.log(), QByteArray());
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
}

void TestWineInstances::uninstall_leaves_a_running_instance_running()
{
    WineRun run(m_display);
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("0") });
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);
    QVERIFY(run.storedSettings().contains(QStringLiteral("CustomPresets")));
    const std::size_t beforeUninstall = run.here();

    QCOMPARE(run.runBeside(uninstall), 1);

    QCOMPARE(run.storedSettings(), (QMap<QString, QString>()));
    const std::size_t afterUninstall = run.here();
    QVERIFY(run.waitFor([&run, afterUninstall] {
        return trace::count(run.traceLog(), trace::read("F1Ac"), afterUninstall) >= 2;
    }));
    QVERIFY(run.isRunning());
    QCOMPARE(trace::count(run.traceLog(), trace::belongsToStart(), beforeUninstall), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(0), beforeUninstall), 0);
    QVERIFY(run.endSession());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestWineInstances, QCoreApplication)

#include "test_wine_instances.moc"
