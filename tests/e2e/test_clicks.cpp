#include <QCoreApplication>
#include <QPoint>

#include "tests/e2e/simulatedrun.h"
#include "tests/e2e/virtualdisplay.h"
#include "tests/support/testenvironment.h"

namespace {

// The program on a display of its own, steered by a mouse and a keyboard.
class ClickedRun : public SimulatedRun {
public:
    [[nodiscard]] bool startShown()
    {
        if (!display.start()) {
            return false;
        }
        setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        setVariable(QStringLiteral("DISPLAY"), display.name());
        return start({}, SimulatedRun::steeredProgram()) && waitUntilLoaded();
    }

    // Clicks the middle of a widget once it takes clicks.
    [[nodiscard]] bool click(const QString& widget)
    {
        QStringList place;
        return waitFor([this, &widget, &place] {
                   place = ask(QStringLiteral("where ") + widget).split(QLatin1Char(' '));
                   return place.size() == 2;
               })
            && display.click(QPoint(place[0].toInt(), place[1].toInt()));
    }

    [[nodiscard]] bool isGone(const QString& widget)
    {
        return waitFor([this, &widget] {
            return ask(QStringLiteral("where ") + widget) == QLatin1String("none");
        });
    }

    // Replaces what stands in a field that is open.
    [[nodiscard]] bool fill(const QString& field, const QString& text)
    {
        return click(field) && display.pressKeys({ QStringLiteral("ctrl+a") }) && display.type(text)
            && display.pressKeys({ QStringLiteral("Tab") });
    }

    VirtualDisplay display;
};

} // namespace

class TestClicks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void the_road_of_one_change();
};

void TestClicks::initTestCase()
{
    QVERIFY2(VirtualDisplay::missingProgram().isEmpty(),
             qPrintable(VirtualDisplay::missingProgram()));
}

void TestClicks::the_road_of_one_change()
{
    ClickedRun run;
    run.storeSetting(QStringLiteral("AppFirstRun"), 0);
    QVERIFY(run.startShown());
    QVERIFY(!run.ask(QStringLiteral("stall")).isNull());

    // The fan follows the sensor that was chosen in the dialog.
    std::size_t before = run.here();
    QVERIFY(run.click(QStringLiteral("segment 0 1")));
    QVERIFY(run.click(QStringLiteral("radioSensor")));
    QVERIFY(run.click(QStringLiteral("comboSensor")));
    QVERIFY(run.display.pressKeys(
        { QStringLiteral("Home"), QStringLiteral("Down"), QStringLiteral("Return") }));
    QVERIFY(run.fill(QStringLiteral("spinIncrease"), QStringLiteral("30")));
    QVERIFY(run.fill(QStringLiteral("spinMax"), QStringLiteral("90")));
    const QString sensor = run.ask(QStringLiteral("shows comboSensor"));
    QCOMPARE(run.ask(QStringLiteral("stall")).toInt() < 100, true);
    QVERIFY(run.click(QStringLiteral("buttonOK")));

    QVERIFY(run.waitForLine(trace::wroteMask(1), before, 2000) >= 0);
    QVERIFY(run.waitForLine(trace::wrote("F0Tg"), before, 8000) >= 0);
    QVERIFY(run.isGone(QStringLiteral("buttonOK")));
    const QString active = run.ask(QStringLiteral("active"));
    QVERIFY2(active.startsWith(QLatin1String("UNSAVED|2,"))
                 && active.endsWith(QLatin1String(",30,90|0")),
             qPrintable(active));
    const QString key = active.section(QLatin1Char(','), 1, 1);
    QVERIFY2(run.ask(QStringLiteral("sensors"))
                 .split(QLatin1Char(';'))
                 .contains(key + QLatin1Char(' ') + sensor),
             qPrintable(sensor));

    // A second click gives the fan back.
    before = run.here();
    QVERIFY(run.click(QStringLiteral("segment 0 0")));
    QVERIFY(run.waitForLine(trace::wroteMask(0), before, 4000) >= 0);
    const int stall = run.ask(QStringLiteral("stall")).toInt();
    qInfo("The event loop stood still for %d ms at most over two changes", stall);

    QVERIFY(run.terminate());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestClicks, QCoreApplication)

#include "test_clicks.moc"
