#include <QApplication>

#include "app/fancontrol/fanspeeds.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/controlmodebench.h"

// What comes out of the fan control dialog.
class ChangeControlModeResultTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsOnScreenIsApplied_data();
    void whatIsOnScreenIsApplied();
    void everyTemperatureSurvivesFahrenheit();
    void anEditedSensorIsApplied();
    void withoutSensorsThereIsNoneToFollow();
    void whatIsAppliedIsRememberedForThatFan();
    void whatIsCancelledLeavesNothing_data();
    void whatIsCancelledLeavesNothing();
    void thePresetIsChangedOnRequestOnly_data();
    void thePresetIsChangedOnRequestOnly();
    void equalLimitsAreReported_data();
    void equalLimitsAreReported();
    void limitsThatAreNotKnownOfferOneSpeed_data();
    void limitsThatAreNotKnownOfferOneSpeed();
    void aLongPresetNameFitsOnTheScreen();
    void anUnreadSpeedStaysWithinTheLimits();

private:
    InterfaceTexts m_texts;
};

void ChangeControlModeResultTest::whatIsOnScreenIsApplied_data()
{
    QTest::addColumn<bool>("fahrenheit");
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<FanControlMode>("result");

    const auto sensor = ControlModeBench::follow("TG0P", 55, 77);
    QTest::newRow("an automatic fan")
        << false << FanControlMode::automatic() << FanControlMode::constant(2500);
    QTest::newRow("a speed") << false << FanControlMode::constant(4000)
                             << FanControlMode::constant(4000);
    QTest::newRow("a sensor") << false << sensor << sensor;
    QTest::newRow("a sensor in Fahrenheit") << true << sensor << sensor;
    QTest::newRow("a sensor that is gone") << false << ControlModeBench::follow("TX0P", 55, 77)
                                           << ControlModeBench::follow("TC0P", 50, 90);
}

void ChangeControlModeResultTest::whatIsOnScreenIsApplied()
{
    QFETCH(bool, fahrenheit);
    QFETCH(FanControlMode, mode);
    ControlModeBench bench;
    bench.setFahrenheit(fahrenheit);
    bench.show(mode);
    QCOMPARE(bench.dialog->resultMode(), FanControlMode());

    QTest::mouseClick(bench.ok(), Qt::LeftButton);

    QCOMPARE(bench.dialog->result(), int { QDialog::Accepted });
    QVERIFY(!bench.dialog->isVisible());
    QTEST(bench.dialog->resultMode(), "result");
    QVERIFY(!bench.dialog->saveToPreset());
}

void ChangeControlModeResultTest::everyTemperatureSurvivesFahrenheit()
{
    ControlModeBench bench;
    bench.setFahrenheit(true);
    for (int start = 20; start + 8 <= 100; ++start) {
        const auto mode = ControlModeBench::follow("TC0P", start, start + 8);
        bench.make(mode);
        bench.ok()->click();
        QCOMPARE(bench.dialog->resultMode().toString(), mode.toString());
    }
}

void ChangeControlModeResultTest::anEditedSensorIsApplied()
{
    ControlModeBench bench;
    bench.show(FanControlMode::constant(3000));
    bench.radioSensor()->click();
    bench.combo()->setCurrentIndex(2);
    bench.spinIncrease()->setValue(33);
    bench.spinMax()->setValue(71);

    bench.ok()->click();

    QCOMPARE(bench.dialog->resultMode(), ControlModeBench::follow("tc0p", 33, 71));
}

void ChangeControlModeResultTest::withoutSensorsThereIsNoneToFollow()
{
    ControlModeBench bench;
    bench.machine.sensors.clear();
    bench.show(FanControlMode::automatic());

    bench.radioSensor()->click();
    bench.ok()->click();

    QCOMPARE(bench.dialog->result(), int { QDialog::Accepted });
    QCOMPARE(bench.dialog->resultMode(), FanControlMode());
}

void ChangeControlModeResultTest::whatIsAppliedIsRememberedForThatFan()
{
    ControlModeBench bench;
    const auto mode = ControlModeBench::follow("TG0P", 55, 77);
    bench.show(mode, QString(), 1);

    bench.ok()->click();

    QCOMPARE(bench.lastApplied.mode(1), mode);
    QCOMPARE(bench.lastApplied.mode(0), FanControlMode());
    bench.show(FanControlMode::automatic(), QString(), 1);
    QCOMPARE(bench.temperatures(), QStringLiteral("55-77"));
}

void ChangeControlModeResultTest::whatIsCancelledLeavesNothing_data()
{
    QTest::addColumn<QString>("way");

    QTest::newRow("button") << "button";
    QTest::newRow("Escape") << "Escape";
    QTest::newRow("Ctrl+W") << "Ctrl+W";
    QTest::newRow("title bar") << "title bar";
}

void ChangeControlModeResultTest::whatIsCancelledLeavesNothing()
{
    QFETCH(QString, way);
    ControlModeBench bench;
    bench.lastApplied.setMode(0, FanControlMode::constant(4000));
    auto& dialog = bench.show(FanControlMode::automatic(), QStringLiteral("Quiet"));
    bench.spinConstant()->setValue(5000);
    bench.checkSave()->setChecked(true);

    if (way == QLatin1String("button")) {
        QTest::mouseClick(bench.cancel(), Qt::LeftButton);
    } else if (way == QLatin1String("Escape")) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    } else if (way == QLatin1String("Ctrl+W")) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_W, Qt::ControlModifier);
    } else {
        dialog.close();
    }

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int { QDialog::Rejected });
    QCOMPARE(dialog.resultMode(), FanControlMode());
    QVERIFY(!dialog.saveToPreset());
    QCOMPARE(bench.lastApplied.mode(0), FanControlMode::constant(4000));
}

void ChangeControlModeResultTest::thePresetIsChangedOnRequestOnly_data()
{
    QTest::addColumn<QString>("preset");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("saved");

    QTest::newRow("requested") << "Quiet" << true << true;
    QTest::newRow("not requested") << "Quiet" << false << false;
    QTest::newRow("no preset") << "" << true << false;
}

void ChangeControlModeResultTest::thePresetIsChangedOnRequestOnly()
{
    QFETCH(QString, preset);
    QFETCH(bool, checked);
    ControlModeBench bench;
    bench.show(FanControlMode::automatic(), preset);
    bench.checkSave()->setChecked(checked);

    bench.ok()->click();

    QTEST(bench.dialog->saveToPreset(), "saved");
}

void ChangeControlModeResultTest::equalLimitsAreReported_data()
{
    QTest::addColumn<quint16>("limit");
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<QString>("told");

    QTest::newRow("a speed") << quint16 { 1200 } << FanControlMode::constant(1200) << "1200";
    QTest::newRow("an automatic fan") << quint16 { 0 } << FanControlMode::automatic() << "0";
    QTest::newRow("a sensor") << quint16 { 1200 } << ControlModeBench::follow("TC0P", 55, 77)
                              << "1200";
}

void ChangeControlModeResultTest::equalLimitsAreReported()
{
    QFETCH(quint16, limit);
    QFETCH(FanControlMode, mode);
    QFETCH(QString, told);
    ControlModeBench bench;
    bench.machine.fans[0].min = limit;
    bench.machine.fans[0].max = limit;

    bench.show(mode);

    QVERIFY(bench.footer()->isVisible());
    const QString expected
        = QStringLiteral("<table><tr><td></td><td><img src=\":/Resources/warning.png\"/></td>"
                         "<td valign=\"middle\">&nbsp;Something is wrong - min/max fan values are "
                         "equal (%1).<br/> Please make sure to uninstall any other fan-controlling "
                         "software and to reset the SMC.</td></tr></table>");
    QCOMPARE(bench.footer()->text(), expected.arg(told));
    // Whatever the user does now, he can only cancel.
    for (auto* const radio : { bench.radioSensor(), bench.radioConstant() }) {
        QVERIFY(!bench.ok()->isEnabled());
        QTest::keyClick(bench.dialog.get(), Qt::Key_Return);
        QVERIFY(bench.dialog->isVisible());
        radio->click();
    }
    QVERIFY(!bench.ok()->isEnabled());
    QTest::mouseClick(bench.cancel(), Qt::LeftButton);
    QVERIFY(!bench.dialog->isVisible());
}

void ChangeControlModeResultTest::limitsThatAreNotKnownOfferOneSpeed_data()
{
    QTest::addColumn<quint16>("min");
    QTest::addColumn<quint16>("current");
    QTest::addColumn<quint16>("max");
    QTest::addColumn<int>("offered");

    const quint16 unread = FanSpeeds::unread;
    QTest::newRow("no minimum") << unread << quint16 { 2500 } << quint16 { 6000 } << 6000;
    QTest::newRow("no maximum") << quint16 { 1200 } << quint16 { 2500 } << unread << 1200;
    QTest::newRow("neither") << unread << quint16 { 2500 } << unread << 2500;
    QTest::newRow("nothing") << unread << unread << unread << 0;
    QTest::newRow("swapped") << quint16 { 6000 } << quint16 { 2500 } << quint16 { 1200 } << 6000;
}

void ChangeControlModeResultTest::limitsThatAreNotKnownOfferOneSpeed()
{
    QFETCH(quint16, min);
    QFETCH(quint16, current);
    QFETCH(quint16, max);
    ControlModeBench bench;
    bench.machine.fans[0] = ControlModeBench::fan("Left side", min, current, max);

    bench.show(FanControlMode::automatic());

    for (const int shown : { bench.spinConstant()->minimum(), bench.spinConstant()->value(),
                             bench.spinConstant()->maximum(), bench.slider()->minimum(),
                             bench.slider()->value(), bench.slider()->maximum() }) {
        QTEST(shown, "offered");
    }
    // They may be known once the fan is controlled.
    bench.radioSensor()->click();
    QVERIFY(bench.ok()->isEnabled());
    bench.radioConstant()->click();
    QVERIFY(bench.ok()->isEnabled());
    QVERIFY(!bench.footer()->isVisible());
}

void ChangeControlModeResultTest::aLongPresetNameFitsOnTheScreen()
{
    ControlModeBench bench;
    const QString name = QString(300, QLatin1Char('w')) + QLatin1String("<end>");
    bench.show(FanControlMode::automatic(), QStringLiteral("short"));
    const int width = bench.dialog->width();

    bench.show(FanControlMode::automatic(), name);

    QVERIFY(bench.dialog->width() < width + 400);
    QVERIFY(!bench.checkSave()->text().contains(name));
    QVERIFY(bench.checkSave()->accessibleName().contains(name));
    QCOMPARE(bench.checkSave()->toolTip(), QStringLiteral("<p>%1</p>").arg(name.toHtmlEscaped()));
}

void ChangeControlModeResultTest::anUnreadSpeedStaysWithinTheLimits()
{
    ControlModeBench bench;
    bench.machine.fans[0].current = FanSpeeds::unread;

    bench.show(FanControlMode::automatic());

    QCOMPARE(bench.spinConstant()->value(), 6000);
    QVERIFY(bench.ok()->isEnabled());
}

BRISORA_TEST_MAIN(ChangeControlModeResultTest, QApplication)
#include "test_changecontrolmode_result.moc"
