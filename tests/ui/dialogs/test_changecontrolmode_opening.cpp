#include <limits>
#include <stdexcept>

#include <QApplication>

#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/controlmodebench.h"

// What the fan control dialog shows when it opens.
class ChangeControlModeOpeningTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_texts.useEnglish(); }

    void anAutomaticFanOpensAtItsCurrentSpeed();
    void whatWasAppliedLastIsForThisFanAndForAnAutomaticOne_data();
    void whatWasAppliedLastIsForThisFanAndForAnAutomaticOne();
    void aConstantSpeedStaysWithinTheFansLimits_data();
    void aConstantSpeedStaysWithinTheFansLimits();
    void aFollowedSensorOpensWithItsStoredTemperatures_data();
    void aFollowedSensorOpensWithItsStoredTemperatures();
    void aSensorThatIsGoneGivesWayToTheFirst_data();
    void aSensorThatIsGoneGivesWayToTheFirst();
    void withNeitherChoiceNothingCanBeApplied_data();
    void withNeitherChoiceNothingCanBeApplied();
    void temperaturesSpeakTheUsersScale_data();
    void temperaturesSpeakTheUsersScale();
    void sensorsAreOfferedInTheirOrder();
    void eachPartHasItsText();
    void thePresetIsNamedToTheLetter_data();
    void thePresetIsNamedToTheLetter();
    void theFanIsInTheTitleBar_data();
    void theFanIsInTheTitleBar();
    void theSnapshotIsTakenOnce();
    void aFanThatIsNotThereIsRefused_data();
    void aFanThatIsNotThereIsRefused();
    void theWindowIsAPlainDialogOfFixedSize();

private:
    InterfaceTexts m_texts;
};

void ChangeControlModeOpeningTest::anAutomaticFanOpensAtItsCurrentSpeed()
{
    ControlModeBench bench;

    bench.show(FanControlMode::automatic());

    QVERIFY(bench.radioConstant()->isChecked());
    QCOMPARE(bench.spinConstant()->value(), 2500);
    QCOMPARE(bench.slider()->value(), 2500);
    QCOMPARE(bench.spinConstant()->minimum(), 1200);
    QCOMPARE(bench.spinConstant()->maximum(), 6000);
    QCOMPARE(bench.slider()->minimum(), 1200);
    QCOMPARE(bench.slider()->maximum(), 6000);
    QVERIFY(bench.ok()->isEnabled());
    QVERIFY(!bench.footer()->isVisible());
}

void ChangeControlModeOpeningTest::whatWasAppliedLastIsForThisFanAndForAnAutomaticOne_data()
{
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<FanControlMode>("applied");
    QTest::addColumn<quint32>("appliedFan");
    QTest::addColumn<QString>("expected");

    const auto automatic = FanControlMode::automatic();
    const auto constant = FanControlMode::constant(4000);
    const auto sensor = ControlModeBench::follow("TG0P", 52, 73);
    QTest::newRow("a speed") << automatic << constant << 0U << "4000";
    QTest::newRow("a sensor") << automatic << sensor << 0U << "TG0P 52-73";
    QTest::newRow("nothing") << automatic << FanControlMode() << 0U << "2500";
    QTest::newRow("to another fan") << automatic << constant << 1U << "2500";
    QTest::newRow("before a speed") << FanControlMode::constant(3000) << sensor << 0U << "3000";
    QTest::newRow("before a sensor")
        << ControlModeBench::follow("TC0P", 41, 61) << constant << 0U << "TC0P 41-61";
    QTest::newRow("before no choice") << FanControlMode() << constant << 0U << "none";
}

void ChangeControlModeOpeningTest::whatWasAppliedLastIsForThisFanAndForAnAutomaticOne()
{
    QFETCH(FanControlMode, mode);
    QFETCH(FanControlMode, applied);
    QFETCH(quint32, appliedFan);
    ControlModeBench bench;
    bench.lastApplied.setMode(appliedFan, applied);

    bench.make(mode);

    QString shown = QStringLiteral("none");
    if (bench.radioConstant()->isChecked()) {
        shown = QString::number(bench.spinConstant()->value());
    } else if (bench.radioSensor()->isChecked()) {
        shown = bench.sensorKey() + QLatin1Char(' ') + bench.temperatures();
    }
    QTEST(shown, "expected");
}

void ChangeControlModeOpeningTest::aConstantSpeedStaysWithinTheFansLimits_data()
{
    QTest::addColumn<quint32>("stored");
    QTest::addColumn<int>("shown");

    QTest::newRow("within") << 3210U << 3210;
    QTest::newRow("least") << 1200U << 1200;
    QTest::newRow("below") << 0U << 1200;
    QTest::newRow("above") << 6001U << 6000;
    QTest::newRow("beyond an int") << 0xFFFFFFFFU << 6000;
}

void ChangeControlModeOpeningTest::aConstantSpeedStaysWithinTheFansLimits()
{
    QFETCH(quint32, stored);
    ControlModeBench bench;

    bench.make(FanControlMode::constant(stored));

    QVERIFY(bench.radioConstant()->isChecked());
    QTEST(bench.spinConstant()->value(), "shown");
    QTEST(bench.slider()->value(), "shown");
}

void ChangeControlModeOpeningTest::aFollowedSensorOpensWithItsStoredTemperatures_data()
{
    QTest::addColumn<bool>("fahrenheit");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("max");
    QTest::addColumn<QString>("shown");

    const int farthest = std::numeric_limits<int>::max();
    QTest::newRow("Celsius") << false << 55 << 77 << "55-77";
    QTest::newRow("Fahrenheit") << true << 55 << 77 << "131-170";
    QTest::newRow("too close to each other") << false << 55 << 56 << "55-63";
    QTest::newRow("too close in Fahrenheit") << true << 55 << 56 << "131-145";
    QTest::newRow("below the range") << false << -5 << 40 << "20-40";
    QTest::newRow("above the range") << false << 50 << 140 << "50-100";
    QTest::newRow("beyond any scale") << true << -farthest << farthest << "68-212";
}

void ChangeControlModeOpeningTest::aFollowedSensorOpensWithItsStoredTemperatures()
{
    QFETCH(bool, fahrenheit);
    QFETCH(int, start);
    QFETCH(int, max);
    ControlModeBench bench;
    bench.setFahrenheit(fahrenheit);

    bench.show(ControlModeBench::follow("TG0P", start, max));

    QVERIFY(bench.radioSensor()->isChecked());
    QVERIFY(!bench.radioConstant()->isChecked());
    QCOMPARE(bench.sensorKey(), QStringLiteral("TG0P"));
    QTEST(bench.temperatures(), "shown");
    QCOMPARE(bench.spinConstant()->value(), 2500);
    QVERIFY(bench.ok()->isEnabled());
}

void ChangeControlModeOpeningTest::aSensorThatIsGoneGivesWayToTheFirst_data()
{
    QTest::addColumn<QString>("key");

    QTest::newRow("unknown") << "TX0P";
    QTest::newRow("other case") << "tC0P";
    QTest::newRow("part of a key") << "G0";
    QTest::newRow("empty") << "";
}

void ChangeControlModeOpeningTest::aSensorThatIsGoneGivesWayToTheFirst()
{
    QFETCH(QString, key);
    ControlModeBench bench;

    bench.make(FanControlMode::sensor(key, 61, 82));

    QVERIFY(bench.radioSensor()->isChecked());
    QCOMPARE(bench.sensorKey(), QStringLiteral("TC0P"));
    QCOMPARE(bench.temperatures(), QStringLiteral("50-90"));
}

void ChangeControlModeOpeningTest::withNeitherChoiceNothingCanBeApplied_data()
{
    QTest::addColumn<FanControlMode>("mode");

    QTest::newRow("invalid") << FanControlMode();
    QTest::newRow("not assigned") << FanControlMode::notAssigned();
}

void ChangeControlModeOpeningTest::withNeitherChoiceNothingCanBeApplied()
{
    QFETCH(FanControlMode, mode);
    ControlModeBench bench;

    bench.show(mode);

    QVERIFY(!bench.radioConstant()->isChecked());
    QVERIFY(!bench.radioSensor()->isChecked());
    QVERIFY(!bench.ok()->isEnabled());
    QTest::keyClick(bench.dialog.get(), Qt::Key_Return);
    QVERIFY(bench.dialog->isVisible());
    ControlModeBench::choose(bench.radioConstant());
    QVERIFY(bench.ok()->isEnabled());
    QCOMPARE(bench.spinConstant()->value(), 2500);
}

void ChangeControlModeOpeningTest::temperaturesSpeakTheUsersScale_data()
{
    QTest::addColumn<bool>("fahrenheit");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::addColumn<QString>("unit");

    QTest::newRow("Celsius") << false << 20 << 100 << QStringLiteral("\u00B0C");
    QTest::newRow("Fahrenheit") << true << 68 << 212 << QStringLiteral("\u00B0F");
}

void ChangeControlModeOpeningTest::temperaturesSpeakTheUsersScale()
{
    QFETCH(bool, fahrenheit);
    QFETCH(int, lowest);
    ControlModeBench bench;
    bench.setFahrenheit(fahrenheit);

    bench.make(FanControlMode::automatic());

    QCOMPARE(bench.spinIncrease()->minimum(), lowest);
    QTEST(bench.spinIncrease()->maximum(), "highest");
    QCOMPARE(bench.spinMax()->minimum(), lowest);
    QTEST(bench.spinMax()->maximum(), "highest");
    QTEST(bench.find<QLabel>("labelDegree1")->text(), "unit");
    QTEST(bench.find<QLabel>("labelDegree2")->text(), "unit");
}

void ChangeControlModeOpeningTest::sensorsAreOfferedInTheirOrder()
{
    ControlModeBench bench;

    bench.make(FanControlMode::automatic());

    QCOMPARE(bench.combo()->count(), 3);
    for (int index = 0; index < bench.combo()->count(); ++index) {
        const auto& sensor = bench.machine.sensors[static_cast<std::size_t>(index)];
        QCOMPARE(bench.combo()->itemText(index), sensor.name);
        QCOMPARE(bench.combo()->itemData(index).toString(), sensor.key);
        QCOMPARE(bench.combo()->itemIcon(index).cacheKey(), sensor.icon.cacheKey());
    }
}

void ChangeControlModeOpeningTest::eachPartHasItsText()
{
    ControlModeBench bench;

    bench.show(FanControlMode::automatic());

    QCOMPARE(bench.radioConstant()->text(), QStringLiteral("Constant RPM value"));
    QCOMPARE(bench.radioSensor()->text(), QStringLiteral("Sensor-based value"));
    QCOMPARE(bench.find<QLabel>("labelIncrease")->text(),
             QStringLiteral("Temperature that the fan speed will start to increase from:"));
    QCOMPARE(bench.find<QLabel>("labelMax")->text(), QStringLiteral("Maximum temperature:"));
    QCOMPARE(bench.ok()->text(), QStringLiteral("OK"));
    QCOMPARE(bench.cancel()->text(), QStringLiteral("Cancel"));
    QVERIFY(!bench.find<QLabel>("labelTitle")->isVisible());
}

void ChangeControlModeOpeningTest::thePresetIsNamedToTheLetter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "Quiet"
                           << "Save to the current preset ('Quiet')";
    QTest::newRow("ampersand") << "Work & play"
                               << "Save to the current preset ('Work && play')";
    QTest::newRow("placeholder") << "%1 %2"
                                 << "Save to the current preset ('%1 %2')";
    QTest::newRow("none") << ""
                          << "";
}

void ChangeControlModeOpeningTest::thePresetIsNamedToTheLetter()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    ControlModeBench bench;

    bench.show(FanControlMode::automatic(), name);

    QCOMPARE(bench.checkSave()->isVisible(), !name.isEmpty());
    QVERIFY(!bench.checkSave()->isChecked());
    if (!name.isEmpty()) {
        QCOMPARE(bench.checkSave()->text(), text);
    }
}

void ChangeControlModeOpeningTest::theFanIsInTheTitleBar_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("title");

    QTest::newRow("English") << "English"
                             << "Exhaust"
                             << "Change fan control for the 'Exhaust' fan";
    QTest::newRow("placeholder") << "English"
                                 << "A %1 B"
                                 << "Change fan control for the 'A %1 B' fan";
    QTest::newRow("German") << "German"
                            << "Exhaust"
                            << QStringLiteral("Steuerung des L\u00FCfters \u201EExhaust\u201C "
                                              "\u00E4ndern");
}

void ChangeControlModeOpeningTest::theFanIsInTheTitleBar()
{
    QFETCH(QString, language);
    QFETCH(QString, name);
    m_texts.load(language);
    ControlModeBench bench;
    bench.machine.fans[1].name = name;

    bench.make(FanControlMode::automatic(), QString(), 1);

    QTEST(bench.dialog->windowTitle(), "title");
    QCOMPARE(bench.dialog->windowIcon().cacheKey(), bench.machine.fans[1].icon.cacheKey());
    QCOMPARE(bench.spinConstant()->value(), 900);
}

void ChangeControlModeOpeningTest::theSnapshotIsTakenOnce()
{
    ControlModeBench bench;
    int snapshots = 0;
    QChangeControlModeDialog dialog(
        nullptr, 0,
        [&] {
            ++snapshots;
            return bench.machine;
        },
        FanControlMode::automatic(), QString(), bench.settings, bench.lastApplied);
    dialog.show();
    dialog.findChild<QRadioButton*>(QStringLiteral("radioSensor"))->click();

    QCOMPARE(snapshots, 1);
}

void ChangeControlModeOpeningTest::aFanThatIsNotThereIsRefused_data()
{
    QTest::addColumn<quint32>("fan");

    QTest::newRow("one past the last") << 2U;
    QTest::newRow("past what is remembered") << 100U;
    QTest::newRow("farthest") << 0xFFFFFFFFU;
}

void ChangeControlModeOpeningTest::aFanThatIsNotThereIsRefused()
{
    QFETCH(quint32, fan);
    ControlModeBench bench;

    QVERIFY_EXCEPTION_THROWN(bench.make(FanControlMode::automatic(), QString(), fan),
                             std::out_of_range);
}

void ChangeControlModeOpeningTest::theWindowIsAPlainDialogOfFixedSize()
{
    ControlModeBench bench;

    const auto& dialog = bench.show(FanControlMode::automatic());

    QVERIFY(!dialog.testAttribute(Qt::WA_QuitOnClose));
    QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QCOMPARE(dialog.windowType(), Qt::Sheet);
    QCOMPARE(dialog.minimumSize(), dialog.size());
    QCOMPARE(dialog.maximumSize(), dialog.size());
}

BRISORA_TEST_MAIN(ChangeControlModeOpeningTest, QApplication)
#include "test_changecontrolmode_opening.moc"
