#include <limits>

#include <QCoreApplication>
#include <QSettings>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/temperaturescale.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/testenvironment.h"

namespace {

// What is stored when nothing is.
constexpr int nothing = -2;

class Settings {
public:
    explicit Settings(int fahrenheit)
        : cache(std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("settings.ini")),
                                            QSettings::IniFormat))
    {
        if (fahrenheit != nothing) {
            cache.setInt(SettingsKeys::fahrenheit, fahrenheit);
        }
    }

private:
    QTemporaryDir m_folder;

public:
    QSettingsCache cache;
};

} // namespace

class TemperatureScaleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyAStoredZeroIsCelsius_data();
    void onlyAStoredZeroIsCelsius();
    void exactDegreesAreConverted_data();
    void exactDegreesAreConverted();
    void wholeDegreesAreCut_data();
    void wholeDegreesAreCut();
    void degreesOfTheUserAreRounded_data();
    void degreesOfTheUserAreRounded();
    void aChangeOfTheSettingShowsAtOnce();
};

void TemperatureScaleTest::onlyAStoredZeroIsCelsius_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<bool>("isFahrenheit");
    QTest::addColumn<QString>("unit");
    QTest::newRow("0") << 0 << false << QStringLiteral("\u00B0C");
    QTest::newRow("1") << 1 << true << QStringLiteral("\u00B0F");
    QTest::newRow("another number") << 7 << true << QStringLiteral("\u00B0F");
    QTest::newRow("nothing") << nothing << true << QStringLiteral("\u00B0F");
}

void TemperatureScaleTest::onlyAStoredZeroIsCelsius()
{
    QFETCH(int, stored);
    Settings settings(stored);
    const TemperatureScale scale(settings.cache);
    QTEST(scale.isFahrenheit(), "isFahrenheit");
    QTEST(scale.temperatureUnit(), "unit");
}

void TemperatureScaleTest::exactDegreesAreConverted_data()
{
    QTest::addColumn<int>("fahrenheit");
    QTest::addColumn<double>("celsius");
    QTest::addColumn<double>("shown");
    QTest::newRow("Celsius stays") << 0 << 45.44 << 45.44;
    QTest::newRow("Celsius below 0") << 0 << -3.5 << -3.5;
    QTest::newRow("boiling water") << 1 << 100.0 << 212.0;
    QTest::newRow("ice") << 1 << 0.0 << 32.0;
    QTest::newRow("a part of a degree") << 1 << 36.6 << 97.88;
    QTest::newRow("where the scales meet") << 1 << -40.0 << -40.0;
}

void TemperatureScaleTest::exactDegreesAreConverted()
{
    QFETCH(int, fahrenheit);
    QFETCH(double, celsius);
    Settings settings(fahrenheit);
    QTEST(TemperatureScale(settings.cache).toDisplayScale(celsius), "shown");
}

void TemperatureScaleTest::wholeDegreesAreCut_data()
{
    QTest::addColumn<int>("fahrenheit");
    QTest::addColumn<int>("celsius");
    QTest::addColumn<int>("shown");
    const int most = std::numeric_limits<int>::max();
    const int least = std::numeric_limits<int>::min();
    QTest::newRow("Celsius stays") << 0 << 45 << 45;
    QTest::newRow("the highest Celsius stays") << 0 << most << most;
    QTest::newRow("without a rest") << 1 << 40 << 104;
    QTest::newRow("114.8") << 1 << 46 << 114;
    QTest::newRow("116.6") << 1 << 47 << 116;
    QTest::newRow("-0.4") << 1 << -18 << 0;
    QTest::newRow("-2.2") << 1 << -19 << -2;
    QTest::newRow("above every number") << 1 << most << most;
    QTest::newRow("below every number") << 1 << least << least;
}

void TemperatureScaleTest::wholeDegreesAreCut()
{
    QFETCH(int, fahrenheit);
    QFETCH(int, celsius);
    Settings settings(fahrenheit);
    QTEST(TemperatureScale(settings.cache).toDisplayScale(celsius), "shown");
}

void TemperatureScaleTest::degreesOfTheUserAreRounded_data()
{
    QTest::addColumn<int>("fahrenheit");
    QTest::addColumn<int>("degrees");
    QTest::addColumn<int>("celsius");
    const int least = std::numeric_limits<int>::min();
    QTest::newRow("Celsius stays") << 0 << 45 << 45;
    QTest::newRow("the lowest Celsius stays") << 0 << least << least;
    QTest::newRow("without a rest") << 1 << 104 << 40;
    QTest::newRow("46.11") << 1 << 115 << 46;
    QTest::newRow("46.67") << 1 << 116 << 47;
    QTest::newRow("-17.78") << 1 << 0 << -18;
    QTest::newRow("the lowest number") << 1 << least << -1193046489;
}

void TemperatureScaleTest::degreesOfTheUserAreRounded()
{
    QFETCH(int, fahrenheit);
    QFETCH(int, degrees);
    Settings settings(fahrenheit);
    QTEST(TemperatureScale(settings.cache).fromDisplayScale(degrees), "celsius");
}

void TemperatureScaleTest::aChangeOfTheSettingShowsAtOnce()
{
    Settings settings(0);
    const TemperatureScale scale(settings.cache);
    QCOMPARE(scale.toDisplayScale(10.0), 10.0);

    settings.cache.setInt(SettingsKeys::fahrenheit, 1);

    QVERIFY(scale.isFahrenheit());
    QCOMPARE(scale.temperatureUnit(), QStringLiteral("\u00B0F"));
    QCOMPARE(scale.toDisplayScale(10.0), 50.0);
    QCOMPARE(scale.toDisplayScale(10), 50);
    QCOMPARE(scale.fromDisplayScale(50), 10);
}

BRISORA_TEST_MAIN(TemperatureScaleTest, QCoreApplication)

#include "test_temperaturescale.moc"
