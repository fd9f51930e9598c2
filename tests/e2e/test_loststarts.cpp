#include <QCoreApplication>

#include "tests/e2e/simulatedrun.h"
#include "tests/support/testenvironment.h"

class TestLostStarts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_preset_outlives_a_start_without_its_sensor();
    void a_refused_start_changes_no_preset();
};

namespace {

const QStringList followingPreset { QStringLiteral("2,TC0P,20,90"), QStringLiteral("0") };

} // namespace

void TestLostStarts::a_preset_outlives_a_start_without_its_sensor()
{
    SimulatedRun run;
    run.storeActivePreset(followingPreset);
    const QString preset = SimulatedRun::presetText(QStringLiteral("Mine"), followingPreset);

    // The sensor can't be read: Automatic is active, the preset is kept.
    run.beforeStart({ QStringLiteral("vanish"), QStringLiteral("TC0P") });
    QVERIFY(run.start());
    QVERIFY(run.waitUntilLoaded());
    QVERIFY(run.terminate());
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(0)),
             trace::count(run.traceLog(), trace::wrote("FS! ")));
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F0Tg")), 0);
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Predefined:0"));
    QCOMPARE(run.storedSetting(QStringLiteral("CustomPresets")).toStringList(), QStringList());
    QCOMPARE(run.storedSetting(QStringLiteral("CustomPresetsKept")).toStringList(),
             QStringList { preset });
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePresetKept")).toString(),
             QStringLiteral("Unsaved:") + preset);
    QVERIFY(run.log().contains(QLatin1String("The preset \"Mine\" can't be read now")));
    QVERIFY(run.log().contains(QLatin1String("The active preset can't be read now")));
    QCOMPARE(run.leftovers(), QStringList());

    // It reads again: everything is back.
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wroteMask(1)) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F0Tg")) >= 0);
    QVERIFY(run.terminate());
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Custom:0"));
    QCOMPARE(run.storedSetting(QStringLiteral("CustomPresets")).toStringList(),
             QStringList { preset });
    QVERIFY(!run.storedSetting(QStringLiteral("CustomPresetsKept")).isValid());
    QVERIFY(!run.storedSetting(QStringLiteral("ActivePresetKept")).isValid());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestLostStarts::a_refused_start_changes_no_preset()
{
    SimulatedRun run;
    run.storeActivePreset(followingPreset);

    QVERIFY(run.start({ QStringLiteral("/init") }));

    QVERIFY(run.waitForEnd());
    QCOMPARE(run.exitCode(), 3);
    QCOMPARE(run.storedSetting(QStringLiteral("ActivePreset")).toString(),
             QStringLiteral("Custom:0"));
    QCOMPARE(run.storedSetting(QStringLiteral("CustomPresets")).toStringList(),
             QStringList { SimulatedRun::presetText(QStringLiteral("Mine"), followingPreset) });
    QCOMPARE(trace::count(run.traceLog(), trace::usedController()), 0);
}

BRISORA_TEST_MAIN(TestLostStarts, QCoreApplication)

#include "test_loststarts.moc"
