#include <QCoreApplication>
#include <QRegularExpression>

#include "tests/support/testenvironment.h"
#include "tests/wine/winerun.h"

class TestWineEnds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void the_end_of_the_session_leaves_everything_in_order();
    void the_end_of_the_session_reaches_a_program_that_was_never_shown();
    void a_log_off_that_terminates_the_program_gives_the_fans_back();

private:
    VirtualDisplay m_display;
};

namespace {

const QStringList preset { QStringLiteral("1,3000"), QStringLiteral("2,TC0P,30,80") };

} // namespace

void TestWineEnds::initTestCase()
{
    const QString missing = WineRun::missing();
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
    QVERIFY(m_display.start());
}

void TestWineEnds::the_end_of_the_session_leaves_everything_in_order()
{
    WineRun run(m_display);
    run.storeActivePreset(preset);
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wroteMask(3)) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F1Tg")) >= 0);

    QVERIFY(run.endSession());

    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(run.leftovers(), QStringList());
    const auto settings = run.storedSettings();
    QCOMPARE(settings[QStringLiteral("ActivePreset")], QStringLiteral("Custom:0"));
    QVERIFY(settings.contains(QStringLiteral("WindowGeometry")));

    QByteArray log = run.log();
    QVERIFY(log.count('\n') > 5);
    QCOMPARE(log.count("\r\n"), log.count('\n'));
    const QStringList lines = QString::fromUtf8(log.replace("\r\n", "\n")).split(QLatin1Char('\n'));
    // After the time and the level.
    for (const auto& [line, pattern] : {
             std::pair(0, "Brisora \\d+\\.\\d+\\.\\d+$"),
             std::pair(1, "Windows .* (x86|x64)$"),
             std::pair(3, "\\[\\d+ cores\\]$"),
             std::pair(4, "Qt 5\\.15\\.\\d+$"),
         }) {
        QVERIFY2(lines.at(line).contains(QRegularExpression(QLatin1String(pattern))),
                 qPrintable(lines.at(line)));
    }
    // The log-off is known before the fans are given back.
    QVERIFY(log.contains("slotUserLoggedOut"));
    QVERIFY(log.indexOf("slotUserLoggedOut") < log.indexOf("restore default control?"));
    for (const char* line : { "Using inpout32 module", "restore default control?", "yes",
                              "stopAndWaitForFinished: Quit OK" }) {
        QVERIFY2(log.contains(line), line);
    }
}

void TestWineEnds::the_end_of_the_session_reaches_a_program_that_was_never_shown()
{
    WineRun run(m_display);
    run.storeActivePreset(preset);
    QVERIFY(run.start(WineRun::toThePorts() << QStringLiteral("/minimized")));
    QVERIFY(run.waitForLine(trace::wroteMask(3)) >= 0);

    QVERIFY(run.endSession());

    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(run.leftovers(), QStringList());
}

void TestWineEnds::a_log_off_that_terminates_the_program_gives_the_fans_back()
{
    WineRun run(m_display);
    run.storeActivePreset(preset);
    QVERIFY(run.start());
    QVERIFY(run.waitForLine(trace::wrote("F0Tg")) >= 0);

    QVERIFY(run.logOff());

    QVERIFY(trace::givesBackLast(run.traceLog()));
    QCOMPARE(run.leftovers(), QStringList());
    QCOMPARE(run.storedSettings()[QStringLiteral("ActivePreset")], QStringLiteral("Custom:0"));
    QVERIFY(run.log().contains("stopAndWaitForFinished: Quit OK\r\n"));
}

BRISORA_TEST_MAIN(TestWineEnds, QCoreApplication)

#include "test_wine_ends.moc"
