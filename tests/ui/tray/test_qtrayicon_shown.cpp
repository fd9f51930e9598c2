#include <memory>

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include "app/settingskeys.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tray/traybench.h"

namespace {

const QString key = QStringLiteral("TC0P");

// The sensor TC0P, chosen for the tray.
void choose(TrayBench& bench, const QString& sensor = key)
{
    bench.machine.settings.setString(SettingsKeys::traySensor, sensor);
}

// It reads this.
void read(TrayBench& bench, double celsius)
{
    bench.machine.smc->setTemperature("TC0P", celsius);
    bench.machine.sensor("TC0P")->UpdateValue();
}

// The engine reads these speeds.
void readSpeeds(TrayBench& bench, std::uint16_t left, std::uint16_t right)
{
    bench.machine.smc->setFanSpeed("F0Ac", left);
    bench.machine.smc->setFanSpeed("F1Ac", right);
    bench.machine.hasWriteAccess = false; // the update task alone
    bench.machine.start(1);
}

} // namespace

// Picture and tool tip.
class QTrayIconShownTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theIconIsShownInOrder();
    void hidingIsTold();
    void withoutAChoiceNoReadingIsShown();
    void theChosenSensorIsShown();
    void theFlagsCarryThePrecision();
    void aSensorThatIsGoneIsNotShown();
    void aSensorThatWasNeverReadIsNoReading();
    void theSelectedSensorIsTheSettings();
    void thePictureChangesWithTheDegreesOnly();
    void thePictureChangesWithTheChoice();
    void theReservedSettingsHaveNoEffect();
    void theToolTipHasALineForEachFan();
    void anUnreadSpeedIsADash();
    void aPercentSignInANameStays();
    void withoutFansTheToolTipIsEmpty();
    void theToolTipChangesWithItsText();
    void anIconThatCameBackIsShownAnew();
    void anIconThatIsShownAgainIsShownAnew();
    void activatingTheIconShowsTheWindow();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void QTrayIconShownTest::initTestCase()
{
    EngineMachine::prepareProcess();
    m_texts = std::make_unique<InterfaceTexts>();
}

void QTrayIconShownTest::theIconIsShownInOrder()
{
    TrayBench bench;
    bench.make();
    QCOMPARE(bench.record.told,
             QStringList({ QStringLiteral("menu"), QStringLiteral("visible"),
                           QStringLiteral("icon 1 -1"),
                           QStringLiteral("tip Left - 2500 RPM\nRight - 3000 RPM") }));
    QCOMPARE(bench.record.menu, bench.menu());
    QVERIFY(!bench.menu()->actions().isEmpty());
}

void QTrayIconShownTest::hidingIsTold()
{
    TrayBench bench;
    bench.make();
    static_cast<void>(bench.record.take());
    bench.tray->setVisible(false);
    QCOMPARE(bench.record.take(), QStringList { QStringLiteral("hidden") });
}

void QTrayIconShownTest::withoutAChoiceNoReadingIsShown()
{
    TrayBench bench;
    bench.make();
    static_cast<void>(bench.record.take());
    read(bench, 60.0);
    bench.tray->updateIcon();
    QCOMPARE(bench.record.take(), QStringList());
    QVERIFY(bench.tray->selectedSensor() == nullptr);
}

void QTrayIconShownTest::theChosenSensorIsShown()
{
    TrayBench bench;
    choose(bench);
    bench.machine.load();
    read(bench, 45.5);
    bench.make();
    QCOMPARE(bench.record.told[2], QStringLiteral("icon 5 45.5"));
}

void QTrayIconShownTest::theFlagsCarryThePrecision()
{
    TrayBench bench;
    bench.make();
    bench.machine.settings.setInt(SettingsKeys::preciseTemperature, 1);
    static_cast<void>(bench.record.take());
    bench.tray->updateIcon();
    QCOMPARE(bench.record.take(), QStringList { QStringLiteral("icon 17 -1") });
}

void QTrayIconShownTest::aSensorThatIsGoneIsNotShown()
{
    TrayBench bench;
    choose(bench);
    bench.make();
    read(bench, 45.0);
    bench.tray->updateIcon();
    static_cast<void>(bench.record.take());

    bench.machine.engine->sensorProvider()->unload();
    bench.tray->updateIcon();

    QCOMPARE(bench.record.take(), QStringList { QStringLiteral("icon 1 -1") });
    QVERIFY(bench.tray->selectedSensor() == nullptr);
}

void QTrayIconShownTest::aSensorThatWasNeverReadIsNoReading()
{
    TrayBench bench;
    choose(bench);
    bench.make();
    // The value alone would be shown as a temperature of 0 degrees.
    QCOMPARE(bench.machine.sensor("TC0P")->value(), 0.0);
    QCOMPARE(bench.record.told[2], QStringLiteral("icon 5 0"));
    QCOMPARE(trayReadingText(5, 0.0), QString());
}

void QTrayIconShownTest::theSelectedSensorIsTheSettings()
{
    TrayBench bench;
    bench.make();
    choose(bench);
    QCOMPARE(bench.tray->selectedSensor(), bench.machine.sensor("TC0P"));
    choose(bench, QStringLiteral("TG0P"));
    QCOMPARE(bench.tray->selectedSensor(), bench.machine.sensor("TG0P"));
    choose(bench, QStringLiteral("none such"));
    QVERIFY(bench.tray->selectedSensor() == nullptr);
}

void QTrayIconShownTest::thePictureChangesWithTheDegreesOnly()
{
    TrayBench bench;
    choose(bench);
    bench.make();
    static_cast<void>(bench.record.take());
    for (const double celsius : { 45.5, 45.5, 46.0, 46.25, 46.5, 46.5, 46.25 }) {
        read(bench, celsius);
        bench.tray->updateIcon();
    }
    QCOMPARE(bench.record.take(),
             QStringList({ QStringLiteral("icon 5 45.5"), QStringLiteral("icon 5 46.5"),
                           QStringLiteral("icon 5 46.25") }));
}

void QTrayIconShownTest::thePictureChangesWithTheChoice()
{
    TrayBench bench;
    bench.make();
    read(bench, 45.0);
    static_cast<void>(bench.record.take());

    choose(bench);
    bench.tray->updateIcon();
    choose(bench, QString());
    bench.tray->updateIcon();

    QCOMPARE(bench.record.take(),
             QStringList({ QStringLiteral("icon 5 45"), QStringLiteral("icon 1 -1") }));
}

void QTrayIconShownTest::theReservedSettingsHaveNoEffect()
{
    TrayBench bench;
    choose(bench);
    bench.make();
    read(bench, 45.0);
    bench.tray->updateIcon();
    // They have been read: the default of the first reader is in force.
    QCOMPARE(bench.machine.settings.getInt(SettingsKeys::trayFan, 7), -1);
    QCOMPARE(bench.machine.settings.getInt(SettingsKeys::fahrenheit, 7), 0);
    static_cast<void>(bench.record.take());

    bench.machine.settings.setInt(SettingsKeys::fahrenheit, 1);
    bench.machine.settings.setInt(SettingsKeys::trayFan, 1);
    bench.tray->updateIcon();
    QCOMPARE(bench.record.take(), QStringList());
    read(bench, 50.0);
    bench.tray->updateIcon();
    QCOMPARE(bench.record.take(), QStringList { QStringLiteral("icon 5 50") });
}

void QTrayIconShownTest::theToolTipHasALineForEachFan()
{
    TrayBench bench;
    bench.make();
    static_cast<void>(bench.record.take());
    readSpeeds(bench, 0, 6200);
    bench.tray->updateToolTip();
    QCOMPARE(bench.record.take(),
             QStringList { QStringLiteral("tip Left - 0 RPM\nRight - 6200 RPM") });
}

void QTrayIconShownTest::anUnreadSpeedIsADash()
{
    TrayBench bench;
    bench.make();
    static_cast<void>(bench.record.take());
    bench.machine.smc->setFailing("F0Ac", true);
    readSpeeds(bench, 2500, 3000);
    bench.tray->updateToolTip();
    QCOMPARE(bench.record.take(),
             QStringList { QStringLiteral("tip Left - \u2013 RPM\nRight - 3000 RPM") });
}

void QTrayIconShownTest::aPercentSignInANameStays()
{
    TrayBench bench;
    bench.machine.smc->addFan(0, "At %2 & %1", 2500, 2000, 6000);
    bench.machine.smc->addFan(1, "Right", 3000, 2000, 6000);
    bench.make();
    QCOMPARE(bench.record.told[3], QStringLiteral("tip At %2 & %1 - 2500 RPM\nRight - 3000 RPM"));
    QCOMPARE(bench.entries().filter(QStringLiteral("At %2 && %1 - Auto")).size(), 1);
}

void QTrayIconShownTest::withoutFansTheToolTipIsEmpty()
{
    TrayBench bench;
    bench.machine.removeFans();
    bench.make();
    QCOMPARE(bench.record.told[3], QStringLiteral("tip "));
}

void QTrayIconShownTest::theToolTipChangesWithItsText()
{
    TrayBench bench;
    bench.make();
    static_cast<void>(bench.record.take());
    bench.tray->updateToolTip();
    QCOMPARE(bench.record.take(), QStringList());
    readSpeeds(bench, 2600, 3000);
    bench.tray->updateToolTip();
    bench.tray->updateToolTip();
    QCOMPARE(bench.record.take().size(), 1);
}

void QTrayIconShownTest::anIconThatCameBackIsShownAnew()
{
    TrayBench bench;
    choose(bench);
    bench.make();
    read(bench, 45.0);
    bench.tray->updateIcon();
    static_cast<void>(bench.record.take());

    Q_EMIT bench.record.platform->iconRestored();
    QCOMPARE(bench.record.take(), QStringList { QStringLiteral("icon 5 45") });

    // The tool tip comes back with the next update of a fan.
    bench.tray->updateToolTip();
    QCOMPARE(bench.record.take(),
             QStringList { QStringLiteral("tip Left - 2500 RPM\nRight - 3000 RPM") });
}

void QTrayIconShownTest::anIconThatIsShownAgainIsShownAnew()
{
    TrayBench bench;
    bench.make();
    bench.tray->setVisible(false);
    bench.tray->setVisible(true);
    static_cast<void>(bench.record.take());
    bench.tray->updateIcon();
    bench.tray->updateToolTip();
    QCOMPARE(bench.record.take().size(), 2);
}

void QTrayIconShownTest::activatingTheIconShowsTheWindow()
{
    TrayBench bench;
    bench.make();
    const QSignalSpy shows(bench.tray, &QTrayIcon::showMainWindow);
    Q_EMIT bench.record.platform->activated();
    QCOMPARE(shows.count(), 1);
}

BRISORA_TEST_MAIN(QTrayIconShownTest, QApplication)
#include "test_qtrayicon_shown.moc"
