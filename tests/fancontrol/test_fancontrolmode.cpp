#include <functional>
#include <limits>
#include <memory>
#include <type_traits>

#include <QCoreApplication>
#include <QFile>
#include <QTest>

#include "app/fancontrol/fancontrolmode.h"
#include "core/language/languagestrings.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class TestFanControlMode : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void modesBecomeText_data();
    void modesBecomeText();
    void notAssignedIsToldToTheDebugStream();
    void textBecomesAMode_data();
    void textBecomesAMode();
    void modesSurviveTheRoundTrip_data();
    void modesSurviveTheRoundTrip();
    void aSensorModeNeedsItsSensor();
    void readingASensorModeWithoutTheNameFunctionThrows();
    void modesAreComparedByTheFieldsOfTheirType_data();
    void modesAreComparedByTheFieldsOfTheirType();
    void aTypeThatDoesNotExistEqualsNothing();
    void modesAreShownAsTexts_data();
    void modesAreShownAsTexts();
    void withoutALanguageTheKeyIsShown();
    void aPercentSignInASensorNameStays();
    void aKeyThatCantBeReadBackIsLogged_data();
    void aKeyThatCantBeReadBackIsLogged();

private:
    std::unique_ptr<KnownSensors> m_sensors;
};

void TestFanControlMode::init()
{
    m_sensors = std::make_unique<KnownSensors>();
    m_sensors->add("TC0P");
}

void TestFanControlMode::cleanup()
{
    LanguageStrings::setActive(nullptr);
    m_sensors.reset();
}

void TestFanControlMode::modesBecomeText_data()
{
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<QString>("text");
    QTest::newRow("invalid") << FanControlMode() << "INVALID";
    QTest::newRow("not assigned") << FanControlMode::notAssigned() << "";
    QTest::newRow("automatic") << FanControlMode::automatic() << "0";
    QTest::newRow("constant") << FanControlMode::constant(2500) << "1,2500";
    QTest::newRow("constant, highest")
        << FanControlMode::constant(std::numeric_limits<std::uint32_t>::max()) << "1,4294967295";
    QTest::newRow("sensor") << followMode("TC0P") << "2,TC0P,40,70";
    QTest::newRow("negative") << followMode("TC0P", -10, -1) << "2,TC0P,-10,-1";
    QTest::newRow("percent sign") << followMode("T%2%1", 40, 70) << "2,T%2%1,40,70";
}

void TestFanControlMode::modesBecomeText()
{
    QFETCH(FanControlMode, mode);
    QTEST(mode.toString(), "text");
}

void TestFanControlMode::notAssignedIsToldToTheDebugStream()
{
    QTest::ignoreMessage(QtDebugMsg, "FanControlMode::toString() - FanControlNotAssigned!");
    QCOMPARE(FanControlMode::notAssigned().toString(), QString());
}

void TestFanControlMode::textBecomesAMode_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");
    QTest::addColumn<quint32>("rpm");
    const int invalid = FanControlInvalid;
    const int automatic = FanControlAutomatic;
    const int constant = FanControlConstant;

    QTest::newRow("empty") << "" << invalid << 0U;
    QTest::newRow("automatic") << "0" << automatic << 0U;
    QTest::newRow("any single character") << "x" << automatic << 0U;
    QTest::newRow("a single 1 is no constant mode") << "1" << automatic << 0U;
    QTest::newRow("a single 2 is no sensor mode") << "2" << automatic << 0U;
    QTest::newRow("constant") << "1,2500" << constant << 2500U;
    QTest::newRow("constant with more parts") << "1,2500,7" << constant << 2500U;
    QTest::newRow("constant, no number") << "1,fast" << constant << 0U;
    QTest::newRow("constant, no speed") << "12" << invalid << 0U;
    QTest::newRow("sensor, three parts") << "2,TC0P,40" << invalid << 0U;
    QTest::newRow("sensor, five parts") << "2,TC0P,40,70,1" << invalid << 0U;
    QTest::newRow("sensor, one part") << "22" << invalid << 0U;
    QTest::newRow("sensor, unknown") << "2,TC1P,40,70" << invalid << 0U;
    QTest::newRow("sensor, no key") << "2,,40,70" << invalid << 0U;
    QTest::newRow("sensor") << "2,TC0P,40,70" << int(FanControlSensor) << 0U;
    QTest::newRow("unknown type") << "3,100" << invalid << 0U;
    QTest::newRow("long automatic") << "00" << invalid << 0U;
    QTest::newRow("the text of an invalid mode") << "INVALID" << invalid << 0U;
}

void TestFanControlMode::textBecomesAMode()
{
    QFETCH(QString, text);
    const FanControlMode mode = FanControlMode::fromString(text);
    QTEST(int(mode.type()), "type");
    QTEST(quint32(mode.rpm()), "rpm");
    QCOMPARE(mode.isAutomatic(), mode.type() == FanControlAutomatic);
}

void TestFanControlMode::modesSurviveTheRoundTrip_data()
{
    QTest::addColumn<FanControlMode>("mode");
    QTest::newRow("automatic") << FanControlMode::automatic();
    QTest::newRow("constant") << FanControlMode::constant(6500);
    QTest::newRow("sensor") << followMode("TC0P");
    QTest::newRow("sensor, negative") << followMode("TC0P", -40, -7);
}

void TestFanControlMode::modesSurviveTheRoundTrip()
{
    QFETCH(FanControlMode, mode);

    const FanControlMode read = FanControlMode::fromString(mode.toString());

    QVERIFY(read == mode);
    QCOMPARE(read.type(), mode.type());
    QCOMPARE(read.rpm(), mode.rpm());
    QCOMPARE(read.sensorKey(), mode.sensorKey());
    QCOMPARE(read.tempLow(), mode.tempLow());
    QCOMPARE(read.tempHigh(), mode.tempHigh());
}

void TestFanControlMode::aSensorModeNeedsItsSensor()
{
    const QString text = QStringLiteral("2,TC0P,40,70");
    QCOMPARE(FanControlMode::fromString(text).type(), FanControlSensor);

    m_sensors->remove("TC0P");

    QCOMPARE(FanControlMode::fromString(text).type(), FanControlInvalid);
}

void TestFanControlMode::readingASensorModeWithoutTheNameFunctionThrows()
{
    m_sensors.reset();
    QVERIFY_EXCEPTION_THROWN(
        static_cast<void>(FanControlMode::fromString(QStringLiteral("2,TC0P,40,70"))),
        std::bad_function_call);
    QVERIFY_EXCEPTION_THROWN(static_cast<void>(followMode("TC0P").displayText(false)),
                             std::bad_function_call);
    QCOMPARE(FanControlMode::fromString(QStringLiteral("1,2000")).rpm(), 2000U);
}

void TestFanControlMode::modesAreComparedByTheFieldsOfTheirType_data()
{
    QTest::addColumn<FanControlMode>("left");
    QTest::addColumn<FanControlMode>("right");
    QTest::addColumn<bool>("equal");
    const FanControlMode automatic = FanControlMode::automatic();
    const FanControlMode constant = FanControlMode::constant(2000);
    const FanControlMode sensor = followMode("TC0P");
    QTest::newRow("invalid") << FanControlMode() << FanControlMode() << true;
    QTest::newRow("not assigned") << FanControlMode::notAssigned() << FanControlMode::notAssigned()
                                  << true;
    QTest::newRow("automatic") << automatic << FanControlMode::automatic() << true;
    QTest::newRow("other type") << automatic << constant << false;
    QTest::newRow("invalid and not assigned")
        << FanControlMode() << FanControlMode::notAssigned() << false;
    QTest::newRow("constant") << constant << FanControlMode::constant(2000) << true;
    QTest::newRow("other speed") << constant << FanControlMode::constant(2001) << false;
    QTest::newRow("sensor") << sensor << followMode("TC0P") << true;
    QTest::newRow("other sensor") << sensor << followMode("TC1P") << false;
    QTest::newRow("other lower temperature") << sensor << followMode("TC0P", 41, 70) << false;
    QTest::newRow("other upper temperature") << sensor << followMode("TC0P", 40, 71) << false;
}

void TestFanControlMode::modesAreComparedByTheFieldsOfTheirType()
{
    QFETCH(FanControlMode, left);
    QFETCH(FanControlMode, right);
    QTEST(left == right, "equal");
    QTEST(right == left, "equal");
}

void TestFanControlMode::aTypeThatDoesNotExistEqualsNothing()
{
    static_assert(std::is_standard_layout_v<FanControlMode>, "the type is at the start");
    FanControlMode mode = FanControlMode::automatic();
    *reinterpret_cast<FanControlType*>(&mode) = static_cast<FanControlType>(5);
    const FanControlMode copy = mode;

    QVERIFY(!(mode == copy));
    QVERIFY(!(mode == mode));
}

void TestFanControlMode::modesAreShownAsTexts_data()
{
    QTest::addColumn<FanControlMode>("mode");
    QTest::addColumn<bool>("shortForm");
    QTest::addColumn<QString>("text");
    QTest::newRow("invalid") << FanControlMode() << false << "n/a";
    QTest::newRow("not assigned") << FanControlMode::notAssigned() << false << "Unknown!";
    QTest::newRow("automatic") << FanControlMode::automatic() << false << "Auto";
    QTest::newRow("constant") << FanControlMode::constant(2500) << false
                              << "Constant value of 2500";
    QTest::newRow("constant, short")
        << FanControlMode::constant(2500) << true << "Constant value of 2500";
    QTest::newRow("sensor") << followMode("TC0P") << false << "Based on Name of TC0P";
    QTest::newRow("sensor, short") << followMode("TC0P") << true << "Sensor-based";
}

namespace {

// The English texts of modes.
class English {
public:
    explicit English(const QTemporaryDir& folder)
        : m_language(write(folder.filePath(QStringLiteral("English.xml"))), folder.path())
    {
        m_language.load(QStringLiteral("English"));
        LanguageStrings::setActive(&m_language);
    }
    English(const English&) = delete;
    English& operator=(const English&) = delete;
    ~English() { LanguageStrings::setActive(nullptr); }

private:
    static QString write(const QString& path)
    {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write("<LanguageStrings><MainWindow>"
                       "<fanControlUnknown>Unknown!</fanControlUnknown>"
                       "<fanControlAutomatic>Auto</fanControlAutomatic>"
                       "<fanControlConstant>Constant value of %1</fanControlConstant>"
                       "<fanControlSensor>Based on %1</fanControlSensor></MainWindow>"
                       "<TrayMenu><itemSensorBased>Sensor-based</itemSensorBased></TrayMenu>"
                       "</LanguageStrings>");
        }
        return path;
    }

    LanguageStrings m_language;
};

} // namespace

void TestFanControlMode::modesAreShownAsTexts()
{
    const QTemporaryDir folder;
    const English english(folder);
    QFETCH(FanControlMode, mode);
    QFETCH(bool, shortForm);
    QTEST(mode.displayText(shortForm), "text");
}

void TestFanControlMode::withoutALanguageTheKeyIsShown()
{
    QCOMPARE(FanControlMode::automatic().displayText(false),
             QStringLiteral("MainWindow/fanControlAutomatic"));
    QCOMPARE(followMode("TC0P").displayText(true), QStringLiteral("TrayMenu/itemSensorBased"));
}

void TestFanControlMode::aPercentSignInASensorNameStays()
{
    const QTemporaryDir folder;
    const English english(folder);
    FanControlMode::setSensorNameFunction([](const QString&) { return QStringLiteral("A %1 %2"); });

    QCOMPARE(followMode("TC0P").displayText(false), QStringLiteral("Based on A %1 %2"));
}

void TestFanControlMode::aKeyThatCantBeReadBackIsLogged_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("lines");
    QTest::newRow("plain") << "TC0P" << 0;
    QTest::newRow("comma") << "disk, first" << 1;
    QTest::newRow("bar") << "disk|first" << 1;
    QTest::newRow("line feed and comma") << "disk,\nfirst" << 1;
}

void TestFanControlMode::aKeyThatCantBeReadBackIsLogged()
{
    QFETCH(QString, key);
    LogCapture log;

    const FanControlMode mode = FanControlMode::sensor(key, 40, 70);

    QCOMPARE(mode.sensorKey(), key);
    const QStringList lines = log.take();
    QTEST(int(lines.size()), "lines");
    for (const QString& line : lines) {
        QVERIFY(line.startsWith(QLatin1String("warning: ")));
        QVERIFY(!line.contains(QLatin1Char('\n')));
    }
}

BRISORA_TEST_MAIN(TestFanControlMode, QCoreApplication)

#include "test_fancontrolmode.moc"
