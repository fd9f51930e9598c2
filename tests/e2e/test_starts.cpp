#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestStarts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_first_start_writes_the_defaults_and_shows_the_window();
    void a_minimised_start_reads_the_speeds_alone();
    void a_second_start_raises_the_first_ones_window();
    void uninstall_removes_the_settings();
    void uninstall_leaves_a_running_instance_running();
    void a_fan_that_another_program_forced_is_given_back();
};

namespace {

bool hasReadSpeeds(SimulatedRun& run, int times, std::size_t from)
{
    return run.waitFor([&run, times, from] {
        return trace::count(run.traceLog(), trace::read("F1Ac"), from) >= times;
    });
}

} // namespace

void TestStarts::the_first_start_writes_the_defaults_and_shows_the_window()
{
    SimulatedRun run;
    QVERIFY(!QFile::exists(run.settingsFile()));

    QVERIFY(run.start());
    QVERIFY(run.waitUntilLoaded());
    // A shown window has all temperatures read in each pass, not in the first alone.
    QVERIFY(run.waitFor([&run] { return trace::count(run.traceLog(), trace::read("TW0P")) >= 4; }));
    QVERIFY(run.terminate());

    QCOMPARE(run.storedSetting(QStringLiteral("AppFirstRun")).toInt(), 0);
    for (const char* key : { "AppFirstRun", "Fahrenheit", "PreciseTemperature", "ShowSmartDrives",
                             "ShowNVMeDrives", "ShowEGpuTemp", "ActivePreset", "InterfaceLanguage",
                             "WindowGeometry", "WindowSplitterPosition" }) {
        QVERIFY2(run.storedSetting(QLatin1String(key)).isValid(), key);
    }
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Predefined:0"));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestStarts::a_minimised_start_reads_the_speeds_alone()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);

    QVERIFY(run.start({ QStringLiteral("/minimized") }));
    QVERIFY(run.waitUntilLoaded());
    const std::size_t afterFirstPass = run.here();
    QVERIFY(hasReadSpeeds(run, 3, afterFirstPass));

    QCOMPARE(trace::count(run.traceLog(), trace::readTemperature(), afterFirstPass), 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestStarts::a_second_start_raises_the_first_ones_window()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.start({ QStringLiteral("/minimized") }));
    QVERIFY(run.waitUntilLoaded());
    const std::size_t beforeSecond = run.here();

    QCOMPARE(run.runBeside({}), 5);

    // The first one shows its temperatures now; the second has touched nothing.
    QVERIFY(run.waitForLine(trace::readTemperature(), beforeSecond) >= 0);
    QCOMPARE(trace::count(run.traceLog(), trace::belongsToStart(), beforeSecond), 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestStarts::uninstall_removes_the_settings()
{
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("0") });
    QVERIFY(QFile::exists(run.settingsFile()));

    QVERIFY(run.start({ QStringLiteral("/uninstall") }));

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 1);
    QVERIFY(!QFile::exists(run.settingsFile()));
    QVERIFY(!QFile::exists(run.path(QStringLiteral("tmp/Brisora.log"))));
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
}

void TestStarts::uninstall_leaves_a_running_instance_running()
{
    SimulatedRun run;
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("0") });
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);
    const std::size_t beforeUninstall = run.here();

    QCOMPARE(run.runBeside({ QStringLiteral("/uninstall") }), 1);

    QVERIFY(!QFile::exists(run.settingsFile()));
    QVERIFY(hasReadSpeeds(run, 2, beforeUninstall));
    QVERIFY(run.isRunning());
    QCOMPARE(trace::count(run.traceLog(), trace::belongsToStart(), beforeUninstall), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(0), beforeUninstall), 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestStarts::a_fan_that_another_program_forced_is_given_back()
{
    SimulatedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    run.beforeStart({ QStringLiteral("set"), QStringLiteral("FS!"), QStringLiteral("0002") });

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteMask(0)) >= 0);
    QVERIFY(run.terminate());
    QVERIFY(run.log().contains(QLatin1String("Fan 1 mode is set by another program")));
    QVERIFY(!run.log().contains(QLatin1String("Fan 0 mode is set by another program")));
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestStarts, QCoreApplication)

#include "test_starts.moc"
