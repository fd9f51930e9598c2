#include <initializer_list>

#include <QAccessible>
#include <QApplication>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionButton>

#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/controlmodebench.h"
#include "tests/ui/dialogs/textfit.h"

namespace {

QStringList stops(std::initializer_list<const char*> names)
{
    QStringList result;
    for (const char* const name : names) {
        result.append(QLatin1String(name));
    }
    return result;
}

} // namespace

// The fan control dialog by keyboard, by screen reader, in other languages and
// other directions.
class ChangeControlModeAccessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_texts.useEnglish(); }
    void cleanup() { QApplication::setLayoutDirection(Qt::LeftToRight); }

    void tabFollowsTheReadingOrder_data();
    void tabFollowsTheReadingOrder();
    void enterApplies_data();
    void enterApplies();
    void enterOnCancelCancels();
    void arrowKeysMoveTheChoice();
    void eachControlTellsItsName_data();
    void eachControlTellsItsName();
    void theSensorsAreNamedAfterTheirChoice();
    void noTextIsCut_data();
    void noTextIsCut();
    void aLongSensorNameDoesNotWidenTheDialogBeyondTheScreen();
    void speedsAndTemperaturesFitIntoTheirFields();
    void controlsBeginWhereTheChoicesTextBegins();
    void theDialogIsMirroredForRightToLeft();

private:
    InterfaceTexts m_texts;
};

void ChangeControlModeAccessTest::tabFollowsTheReadingOrder_data()
{
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<QString>("preset");
    QTest::addColumn<QStringList>("names");

    QTest::newRow("a speed") << FanControlMode::constant(3000) << "Quiet"
                             << stops({ "spinConstant", "checkSaveProfile", "first button",
                                        "second button", "radioConstant", "sliderRPM" });
    QTest::newRow("a sensor") << ControlModeBench::follow("TC0P", 50, 90) << ""
                              << stops({ "comboSensor", "spinIncrease", "spinMax", "first button",
                                         "second button", "radioSensor" });
}

void ChangeControlModeAccessTest::tabFollowsTheReadingOrder()
{
    QFETCH(FanControlMode, mode);
    QFETCH(QString, preset);
    QFETCH(QStringList, names);
    ControlModeBench bench;
    bench.show(mode, preset);
    const bool okIsFirst = bench.ok()->x() < bench.cancel()->x();
    bench.ok()->setObjectName(okIsFirst ? QStringLiteral("first button")
                                        : QStringLiteral("second button"));
    bench.cancel()->setObjectName(okIsFirst ? QStringLiteral("second button")
                                            : QStringLiteral("first button"));

    // Round the whole dialog, and back where it began.
    QStringList reached;
    for (int stop = 0; stop <= names.size(); ++stop) {
        reached.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }

    names.append(names.first());
    QCOMPARE(reached, names);
}

void ChangeControlModeAccessTest::enterApplies_data()
{
    QTest::addColumn<QString>("focus");
    QTest::addColumn<FanControlMode>("result");

    const auto sensor = ControlModeBench::follow("TC0P", 50, 90);
    QTest::newRow("in the speed") << "spinConstant" << FanControlMode::constant(2500);
    QTest::newRow("on the slider") << "sliderRPM" << FanControlMode::constant(2500);
    QTest::newRow("on the choice") << "radioSensor" << sensor;
    QTest::newRow("in the temperature") << "spinMax" << sensor;
}

void ChangeControlModeAccessTest::enterApplies()
{
    QFETCH(QString, focus);
    QFETCH(FanControlMode, result);
    ControlModeBench bench;
    auto& dialog = bench.show(FanControlMode::automatic());
    if (result.type() == FanControlSensor) {
        bench.radioSensor()->click();
    }
    auto* const widget = dialog.findChild<QWidget*>(focus);
    widget->setFocus();

    QTest::keyClick(widget, Qt::Key_Return);

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int { QDialog::Accepted });
    QCOMPARE(dialog.resultMode(), result);
}

void ChangeControlModeAccessTest::enterOnCancelCancels()
{
    ControlModeBench bench;
    bench.show(FanControlMode::automatic());
    bench.cancel()->setFocus();

    QTest::keyClick(bench.cancel(), Qt::Key_Return);

    QVERIFY(!bench.dialog->isVisible());
    QCOMPARE(bench.dialog->result(), int { QDialog::Rejected });
}

void ChangeControlModeAccessTest::arrowKeysMoveTheChoice()
{
    ControlModeBench bench;
    bench.show(FanControlMode::constant(3000));
    bench.radioConstant()->setFocus();

    QTest::keyClick(bench.radioConstant(), Qt::Key_Down);
    QVERIFY(bench.radioSensor()->isChecked());

    QTest::keyClick(bench.radioSensor(), Qt::Key_Up);
    QVERIFY(bench.radioConstant()->isChecked());
    QCOMPARE(bench.spinConstant()->value(), 3000);
}

void ChangeControlModeAccessTest::eachControlTellsItsName_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("name");

    QTest::newRow("slider") << "sliderRPM"
                            << "Constant RPM value";
    QTest::newRow("speed") << "spinConstant"
                           << "Constant RPM value";
    QTest::newRow("start") << "spinIncrease"
                           << "Temperature that the fan speed will start to increase from:";
    QTest::newRow("maximum") << "spinMax"
                             << "Maximum temperature:";
    QTest::newRow("preset") << "checkSaveProfile"
                            << "Save to the current preset ('A & B')";
}

void ChangeControlModeAccessTest::eachControlTellsItsName()
{
    QFETCH(QString, control);
    ControlModeBench bench;
    auto& dialog = bench.show(FanControlMode::automatic(), QStringLiteral("A & B"));

    const auto* const accessible
        = QAccessible::queryAccessibleInterface(dialog.findChild<QWidget*>(control));

    QVERIFY(accessible != nullptr);
    QTEST(accessible->text(QAccessible::Name), "name");
}

void ChangeControlModeAccessTest::theSensorsAreNamedAfterTheirChoice()
{
    ControlModeBench bench;

    bench.make(FanControlMode::automatic());

    // Some systems tell the selected sensor in place of it.
    QCOMPARE(bench.combo()->accessibleName(), QStringLiteral("Sensor-based value"));
}

void ChangeControlModeAccessTest::noTextIsCut_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("equalLimits");

    for (const char* language : { "English", "German" }) {
        QTest::addRow("%s", language) << language << false;
        QTest::addRow("%s, with the warning", language) << language << true;
    }
}

void ChangeControlModeAccessTest::noTextIsCut()
{
    QFETCH(QString, language);
    QFETCH(bool, equalLimits);
    m_texts.load(language);
    ControlModeBench bench;
    if (equalLimits) {
        bench.machine.fans[0].min = bench.machine.fans[0].max;
    }

    const auto& dialog = bench.show(ControlModeBench::follow("TC0P", 50, 90),
                                    QStringLiteral("A preset with a name of many words"));

    QCOMPARE(cutText(dialog), QString());
}

void ChangeControlModeAccessTest::aLongSensorNameDoesNotWidenTheDialogBeyondTheScreen()
{
    ControlModeBench bench;
    const QByteArray name(400, 'W');
    bench.machine.sensors.push_back(ControlModeBench::sensor(name.constData(), "TX0P", 40, 60));

    const auto& dialog = bench.show(ControlModeBench::follow("TC0P", 50, 90));

    QVERIFY(dialog.width() < dialog.screen()->availableGeometry().width());
}

void ChangeControlModeAccessTest::speedsAndTemperaturesFitIntoTheirFields()
{
    ControlModeBench bench;
    bench.machine.fans[0].max = 65534;
    bench.setFahrenheit(true);

    bench.show(ControlModeBench::follow("TC0P", 95, 100));

    for (const QSpinBox* const spin : { bench.spinConstant(), bench.spinMax() }) {
        QCOMPARE(spin->minimumWidth(), spin->maximumWidth());
        QVERIFY(spin->width() >= spin->sizeHint().width());
    }
}

void ChangeControlModeAccessTest::controlsBeginWhereTheChoicesTextBegins()
{
    ControlModeBench bench;
    bench.show(FanControlMode::automatic());
    QStyleOptionButton option;
    option.initFrom(bench.radioSensor());
    option.text = bench.radioSensor()->text();
    const int text
        = bench.radioSensor()
              ->style()
              ->subElementRect(QStyle::SE_RadioButtonContents, &option, bench.radioSensor())
              .left();

    QCOMPARE(bench.combo()->x(), bench.radioSensor()->x() + text);
}

void ChangeControlModeAccessTest::theDialogIsMirroredForRightToLeft()
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    ControlModeBench bench;

    const auto& dialog = bench.show(ControlModeBench::follow("TC0P", 50, 90));

    QVERIFY(bench.slider()->x() > bench.spinConstant()->x());
    QVERIFY(bench.find<QLabel>("labelMax")->x() > bench.spinMax()->x());
    QVERIFY(bench.spinMax()->x() > bench.find<QLabel>("labelDegree2")->x());
    QCOMPARE(cutText(dialog), QString());
}

BRISORA_TEST_MAIN(ChangeControlModeAccessTest, QApplication)
#include "test_changecontrolmode_access.moc"
