#include <QCoreApplication>

#include "tests/support/testenvironment.h"
#include "tests/wine/winerun.h"

class TestWinePresets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void a_stored_speed_is_held();
    void a_stored_preset_follows_its_sensor();

private:
    VirtualDisplay m_display;
};

void TestWinePresets::initTestCase()
{
    const QString missing = WineRun::missing();
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
    QVERIFY(m_display.start());
}

void TestWinePresets::a_stored_speed_is_held()
{
    WineRun run(m_display);
    run.setSpeed(10);
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("1,4000") });

    QVERIFY(run.start());

    QVERIFY(run.waitForLine(trace::wroteMask(3)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);
    QVERIFY(run.waitForLine(trace::wroteRpm("F1Tg", 4000)) >= 0);
    QVERIFY(run.waitForSpeed(0, 3000));
    QVERIFY(run.waitForSpeed(1, 4000));

    QVERIFY(run.endSession());
    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

void TestWinePresets::a_stored_preset_follows_its_sensor()
{
    WineRun run(m_display);
    run.setSpeed(20);
    run.storeActivePreset({ QStringLiteral("2,TC0P,30,55"), QStringLiteral("0") });
    QVERIFY(run.start());
    const int first = run.waitForLine(trace::wrote("F0Tg"));
    QVERIFY(first >= 0);
    // At rest the fan stands somewhere on the line.
    const int atRest = run.traceLog()[static_cast<std::size_t>(first)].rpm();
    QVERIFY(atRest > 2160);
    QVERIFY(atRest < 4500);

    QVERIFY(run.control({ QStringLiteral("load"), QStringLiteral("heavy") }));

    // Beyond the upper temperature it runs at its most.
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 6156)) >= 0);
    QVERIFY(run.waitForSpeed(0, 6156));

    QVERIFY(run.endSession());
    // The other fan is nobody's business.
    QCOMPARE(trace::count(run.traceLog(), trace::wrote("F1Tg")), 0);
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(3)), 0);
    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(trace::controlFaults(run.traceLog()), QStringList());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestWinePresets, QCoreApplication)

#include "test_wine_presets.moc"
