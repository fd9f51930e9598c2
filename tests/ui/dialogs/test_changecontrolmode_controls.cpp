#include <QApplication>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/controlmodebench.h"

namespace {

// What the user can't see leaves its place empty.
bool isBlank(QWidget* widget)
{
    const QRect place(widget->mapTo(widget->window(), QPoint()), widget->size());
    const QImage image = widget->window()->grab(place).toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != image.pixel(0, 0)) {
                return false;
            }
        }
    }
    return true;
}

QPoint handleOf(const QSlider* slider)
{
    QStyleOptionSlider option;
    option.initFrom(slider);
    option.orientation = slider->orientation();
    option.minimum = slider->minimum();
    option.maximum = slider->maximum();
    option.sliderPosition = slider->sliderPosition();
    option.sliderValue = slider->value();
    return slider->style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider)
        .center();
}

void turnWheel(QWidget* widget)
{
    const QPointF centre = widget->rect().center();
    QWheelEvent event(centre, widget->mapToGlobal(centre.toPoint()), QPoint(), QPoint(0, -360),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

// Replaces the text as a user does who types over it.
void type(QSpinBox* spin, const char* text)
{
    spin->setFocus();
    spin->selectAll();
    QTest::keyClicks(spin, QLatin1String(text));
}

const QStringList constantControls { QStringLiteral("sliderRPM"), QStringLiteral("spinConstant") };
const QStringList sensorControls {
    QStringLiteral("comboSensor"),  QStringLiteral("labelIncrease"), QStringLiteral("labelMax"),
    QStringLiteral("spinIncrease"), QStringLiteral("spinMax"),       QStringLiteral("labelDegree1"),
    QStringLiteral("labelDegree2"),
};

} // namespace

// What the controls of the fan control dialog do to each other.
class ChangeControlModeControlsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void draggingTheSliderMovesTheSpeedAndTheFocus();
    void typingASpeedMovesTheSlider();
    void aSpeedThatIsTypedInPartIsNotTaken();
    void theChoiceShowsWhatBelongsToIt_data();
    void theChoiceShowsWhatBelongsToIt();
    void nothingMovesWhenTheChoiceChanges();
    void theWheelReachesNothingHidden();
    void theStartPushesTheMaximum_data();
    void theStartPushesTheMaximum();
    void aLowerStartLeavesTheMaximumAlone();
    void anotherSensorBringsItsOwnLimits_data();
    void anotherSensorBringsItsOwnLimits();
    void theOpeningSensorKeepsWhatIsOnScreen();
    void onlyTheOpeningSensorOutlivesTheOtherChoice();
    void limitsThatAreTooCloseArePushedApart();

private:
    InterfaceTexts m_texts;
};

void ChangeControlModeControlsTest::draggingTheSliderMovesTheSpeedAndTheFocus()
{
    ControlModeBench bench;
    bench.show(FanControlMode::constant(1200));
    bench.radioConstant()->setFocus();
    const QPoint start = handleOf(bench.slider());
    const QPoint middle(bench.slider()->width() / 2, start.y());

    QTest::mousePress(bench.slider(), Qt::LeftButton, Qt::NoModifier, start);
    QMouseEvent move(QEvent::MouseMove, middle, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(bench.slider(), &move);
    QTest::mouseRelease(bench.slider(), Qt::LeftButton, Qt::NoModifier, middle);

    QVERIFY(bench.slider()->value() > 2500 && bench.slider()->value() < 4700);
    QCOMPARE(bench.spinConstant()->value(), bench.slider()->value());
    QCOMPARE(QApplication::focusWidget(), bench.spinConstant());
}

void ChangeControlModeControlsTest::typingASpeedMovesTheSlider()
{
    ControlModeBench bench;
    bench.show(FanControlMode::automatic());

    // The value is selected, so that the user can type at once.
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("4321"));

    QCOMPARE(bench.slider()->value(), 4321);
    QCOMPARE(bench.spinConstant()->text(), QStringLiteral("4321"));
}

void ChangeControlModeControlsTest::aSpeedThatIsTypedInPartIsNotTaken()
{
    ControlModeBench bench;
    bench.show(FanControlMode::constant(2000));

    type(bench.spinConstant(), "43");
    QTest::keyClick(bench.spinConstant(), Qt::Key_Return);

    QCOMPARE(bench.dialog->resultMode(), FanControlMode::constant(2000));
    QCOMPARE(bench.slider()->value(), 2000);
}

void ChangeControlModeControlsTest::theChoiceShowsWhatBelongsToIt_data()
{
    QTest::addColumn<QString>("radio");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    QTest::addColumn<QString>("focus");

    QTest::newRow("a speed") << "radioConstant" << constantControls << sensorControls
                             << "spinConstant";
    QTest::newRow("a sensor") << "radioSensor" << sensorControls << constantControls
                              << "comboSensor";
    QTest::newRow("neither") << "" << QStringList() << constantControls + sensorControls << "";
}

void ChangeControlModeControlsTest::theChoiceShowsWhatBelongsToIt()
{
    QFETCH(QString, radio);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    QFETCH(QString, focus);
    ControlModeBench bench;
    bench.show(FanControlMode());

    if (!radio.isEmpty()) {
        ControlModeBench::choose(bench.dialog->findChild<QRadioButton*>(radio));
    }

    for (const QString& name : shown) {
        QVERIFY2(!isBlank(bench.dialog->findChild<QWidget*>(name)), qPrintable(name));
    }
    for (const QString& name : hidden) {
        auto* const widget = bench.dialog->findChild<QWidget*>(name);
        QVERIFY2(isBlank(widget), qPrintable(name));
        QCOMPARE(widget->focusPolicy(), Qt::NoFocus);
    }
    if (!focus.isEmpty()) {
        QCOMPARE(QApplication::focusWidget()->objectName(), focus);
    }
}

void ChangeControlModeControlsTest::nothingMovesWhenTheChoiceChanges()
{
    ControlModeBench bench;
    bench.show(FanControlMode::automatic());
    const QStringList names = constantControls + sensorControls;
    const auto places = [&] {
        QVector<QRect> result;
        for (const QString& name : names) {
            result.append(bench.dialog->findChild<QWidget*>(name)->geometry());
        }
        return result;
    };
    const QVector<QRect> before = places();

    ControlModeBench::choose(bench.radioSensor());
    QApplication::processEvents();
    QCOMPARE(places(), before);

    ControlModeBench::choose(bench.radioConstant());
    QApplication::processEvents();
    QCOMPARE(places(), before);
}

void ChangeControlModeControlsTest::theWheelReachesNothingHidden()
{
    ControlModeBench bench;
    bench.show(FanControlMode::constant(3000));
    turnWheel(bench.combo());
    turnWheel(bench.spinIncrease());
    turnWheel(bench.spinMax());
    QCOMPARE(bench.combo()->currentIndex(), 0);
    QCOMPARE(bench.temperatures(), QStringLiteral("20-20"));
    turnWheel(bench.slider());
    QVERIFY(bench.slider()->value() != 3000);

    ControlModeBench::choose(bench.radioSensor());
    const int rpm = bench.slider()->value();
    turnWheel(bench.slider());
    turnWheel(bench.spinConstant());

    QCOMPARE(bench.slider()->value(), rpm);
    QCOMPARE(bench.spinConstant()->value(), rpm);
    QCOMPARE(QApplication::focusWidget(), bench.combo());
}

void ChangeControlModeControlsTest::theStartPushesTheMaximum_data()
{
    QTest::addColumn<bool>("fahrenheit");
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<int>("least");
    QTest::addColumn<QString>("shown");

    QTest::newRow("room enough") << false << QByteArray("60") << 68 << "60-80";
    QTest::newRow("just enough") << false << QByteArray("72") << 80 << "72-80";
    QTest::newRow("one too much") << false << QByteArray("73") << 81 << "73-81";
    QTest::newRow("near the top") << false << QByteArray("92") << 100 << "92-100";
    QTest::newRow("past the top") << false << QByteArray("97") << 105 << "97-105";
    QTest::newRow("Fahrenheit") << true << QByteArray("150") << 164 << "150-176";
    QTest::newRow("near the top in Fahrenheit") << true << QByteArray("198") << 212 << "198-212";
    QTest::newRow("past the top in Fahrenheit") << true << QByteArray("212") << 226 << "212-226";
}

void ChangeControlModeControlsTest::theStartPushesTheMaximum()
{
    QFETCH(bool, fahrenheit);
    QFETCH(QByteArray, start);
    ControlModeBench bench;
    bench.setFahrenheit(fahrenheit);
    bench.show(ControlModeBench::follow("TC0P", 50, 80));

    type(bench.spinIncrease(), start.constData());

    QTEST(bench.spinMax()->minimum(), "least");
    QTEST(bench.temperatures(), "shown");
}

void ChangeControlModeControlsTest::aLowerStartLeavesTheMaximumAlone()
{
    ControlModeBench bench;
    bench.show(ControlModeBench::follow("TC0P", 50, 80));
    type(bench.spinIncrease(), "92");
    QCOMPARE(bench.temperatures(), QStringLiteral("92-100"));

    type(bench.spinIncrease(), "40");

    QCOMPARE(bench.temperatures(), QStringLiteral("40-100"));
    QCOMPARE(bench.spinMax()->minimum(), 48);
}

void ChangeControlModeControlsTest::anotherSensorBringsItsOwnLimits_data()
{
    QTest::addColumn<bool>("fahrenheit");
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<QString>("shown");

    QTest::newRow("from its own") << false << ControlModeBench::follow("TC0P", 61, 82) << "45-85";
    QTest::newRow("from a speed") << false << FanControlMode::constant(3000) << "45-85";
    QTest::newRow("from a sensor that is gone")
        << false << ControlModeBench::follow("TX0P", 61, 82) << "45-85";
    QTest::newRow("Fahrenheit") << true << ControlModeBench::follow("TC0P", 61, 82) << "113-185";
}

void ChangeControlModeControlsTest::anotherSensorBringsItsOwnLimits()
{
    QFETCH(bool, fahrenheit);
    QFETCH(FanControlMode, mode);
    ControlModeBench bench;
    bench.setFahrenheit(fahrenheit);
    bench.show(mode);
    bench.radioSensor()->click();

    QTest::keyClick(bench.combo(), Qt::Key_Down);

    QCOMPARE(bench.sensorKey(), QStringLiteral("TG0P"));
    QTEST(bench.temperatures(), "shown");
}

void ChangeControlModeControlsTest::theOpeningSensorKeepsWhatIsOnScreen()
{
    ControlModeBench bench;
    bench.show(ControlModeBench::follow("TC0P", 61, 82));
    QTest::keyClick(bench.combo(), Qt::Key_Down);
    QCOMPARE(bench.temperatures(), QStringLiteral("45-85"));

    QTest::keyClick(bench.combo(), Qt::Key_Up);

    QCOMPARE(bench.sensorKey(), QStringLiteral("TC0P"));
    QCOMPARE(bench.temperatures(), QStringLiteral("45-85"));
    QCOMPARE(bench.spinMax()->minimum(), 53);
}

void ChangeControlModeControlsTest::onlyTheOpeningSensorOutlivesTheOtherChoice()
{
    ControlModeBench bench;
    bench.show(ControlModeBench::follow("TC0P", 61, 82));
    const auto changeAndReturn = [&] {
        type(bench.spinIncrease(), "66");
        bench.radioConstant()->click();
        bench.radioSensor()->click();
        return bench.temperatures();
    };

    QCOMPARE(changeAndReturn(), QStringLiteral("66-82"));

    bench.combo()->setCurrentIndex(1);
    QCOMPARE(changeAndReturn(), QStringLiteral("45-85"));
}

void ChangeControlModeControlsTest::limitsThatAreTooCloseArePushedApart()
{
    ControlModeBench bench;
    // The start of the first is where the dialog begins anyway.
    bench.machine.sensors = { ControlModeBench::sensor("Ambient", "TA0P", 20, 20),
                              ControlModeBench::sensor("Drive", "TH0P", 60, 62) };
    bench.show(FanControlMode::automatic());

    bench.radioSensor()->click();
    QCOMPARE(bench.temperatures(), QStringLiteral("20-28"));

    bench.combo()->setCurrentIndex(1);
    QCOMPARE(bench.temperatures(), QStringLiteral("60-68"));
}

BRISORA_TEST_MAIN(ChangeControlModeControlsTest, QApplication)
#include "test_changecontrolmode_controls.moc"
