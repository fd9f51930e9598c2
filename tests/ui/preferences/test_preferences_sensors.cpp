#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

#include "tests/support/testenvironment.h"
#include "tests/ui/preferences/preferencesbench.h"

// The choice of sensors: in the table, and in the tray.
class PreferencesSensorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void boxesStartAsTheSettingsSay_data();
    void boxesStartAsTheSettingsSay();
    void aBoxIsWrittenAtOnce_data();
    void aBoxIsWrittenAtOnce();
    void externalGpusAreOnlyTold_data();
    void externalGpusAreOnlyTold();
    void theTraySensorIsChosen();
    void theTraySensorKeepsItsChoice();
    void aTraySensorThatIsGoneIsNotRewritten();
    void choicesWithoutEffectAreHidden();
};

void PreferencesSensorsTest::boxesStartAsTheSettingsSay_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("checked");
    const struct {
        const char* box;
        QLatin1String key;
        bool anyNumber; // other numbers than 1 switch it on as well
    } boxes[] = {
        { "checkPrecise", SettingsKeys::preciseTemperature, true },
        { "checkFahrenheit", SettingsKeys::fahrenheit, false },
        { "checkDrivesSmart", SettingsKeys::showSmartDrives, false },
        { "checkDrivesNVMe", SettingsKeys::showNvmeDrives, false },
    };
    for (const auto& box : boxes) {
        for (const int value : { 0, 1, 2 }) {
            QTest::addRow("%s %d", box.box, value)
                << QString(QLatin1String(box.box)) << QString(box.key) << value
                << (value == 1 || (value == 2 && box.anyNumber));
        }
    }
}

void PreferencesSensorsTest::boxesStartAsTheSettingsSay()
{
    QFETCH(QString, box);
    QFETCH(QString, key);
    QFETCH(int, value);
    PreferencesBench bench;
    bench.settings.setInt(key, value);
    bench.make();
    QTEST(bench.dialog->findChild<QCheckBox*>(box)->isChecked(), "checked");
}

void PreferencesSensorsTest::aBoxIsWrittenAtOnce_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("reloads");
    QTest::newRow("precision") << QStringLiteral("checkPrecise")
                               << QString(SettingsKeys::preciseTemperature) << false;
    QTest::newRow("scale") << QStringLiteral("checkFahrenheit") << QString(SettingsKeys::fahrenheit)
                           << false;
    QTest::newRow("SATA drives") << QStringLiteral("checkDrivesSmart")
                                 << QString(SettingsKeys::showSmartDrives) << true;
    QTest::newRow("NVMe drives") << QStringLiteral("checkDrivesNVMe")
                                 << QString(SettingsKeys::showNvmeDrives) << true;
}

void PreferencesSensorsTest::aBoxIsWrittenAtOnce()
{
    QFETCH(QString, box);
    QFETCH(QString, key);
    QFETCH(bool, reloads);
    PreferencesBench bench;
    bench.settings.setInt(key, 0);
    auto& dialog = bench.make();
    const QSignalSpy changed(&dialog, &QPreferencesDialog::preferencesChanged);
    const QSignalSpy reload(&dialog, &QPreferencesDialog::sensorsReloadRequired);

    dialog.findChild<QCheckBox*>(box)->setChecked(true);

    QCOMPARE(bench.settings.getInt(key, -1), 1);
    QCOMPARE(changed.count(), reloads ? 0 : 1);
    QCOMPARE(reload.count(), reloads ? 1 : 0);
    dialog.findChild<QCheckBox*>(box)->setChecked(false);
    QCOMPARE(bench.settings.getInt(key, -1), 0);
}

void PreferencesSensorsTest::externalGpusAreOnlyTold_data()
{
    QTest::addColumn<bool>("capable");
    QTest::newRow("a machine that can have one") << true;
    QTest::newRow("a machine that can't") << false;
}

void PreferencesSensorsTest::externalGpusAreOnlyTold()
{
    QFETCH(bool, capable);
    PreferencesBench bench;
    bench.host.isEGpuCapable = capable;
    bench.settings.setInt(SettingsKeys::showEGpuTemp, 5);
    bench.make();
    const auto* const box = bench.find<QCheckBox>("checkGPUThunderbolt");
    QVERIFY(!box->isEnabled());
    QCOMPARE(box->isChecked(), capable);
    QCOMPARE(bench.settings.getInt(SettingsKeys::showEGpuTemp, -1), 5);
}

void PreferencesSensorsTest::theTraySensorIsChosen()
{
    PreferencesBench bench;
    bench.parameters.sensors = { sensor("CPU", "TC0P"), sensor("GPU", "TG0P") };
    auto& dialog = bench.make();
    const QSignalSpy changed(&dialog, &QPreferencesDialog::preferencesChanged);
    auto* const combo = bench.find<QComboBox>("comboSensor");
    QCOMPARE(combo->count(), 3);
    QCOMPARE(combo->currentIndex(), 0);
    QCOMPARE(combo->itemText(0), QStringLiteral("None"));

    combo->setCurrentIndex(2);
    QCOMPARE(bench.settings.getString(SettingsKeys::traySensor), QStringLiteral("TG0P"));
    QCOMPARE(changed.count(), 1);

    combo->setCurrentIndex(0);
    QCOMPARE(bench.settings.getString(SettingsKeys::traySensor), QString());
    QCOMPARE(changed.count(), 2);
}

void PreferencesSensorsTest::theTraySensorKeepsItsChoice()
{
    PreferencesBench bench;
    bench.parameters.sensors = { sensor("CPU", "TC0P"), sensor("GPU", "TG0P") };
    bench.settings.setString(SettingsKeys::traySensor, QStringLiteral("TG0P"));
    auto& dialog = bench.make();
    const QSignalSpy changed(&dialog, &QPreferencesDialog::preferencesChanged);
    const auto* const combo = bench.find<QComboBox>("comboSensor");
    QCOMPARE(combo->currentText(), QStringLiteral("GPU"));

    // The page is visited again, with other sensors.
    bench.parameters.sensors.insert(bench.parameters.sensors.begin(), sensor("Air", "TA0P"));
    dialog.setCurrentPage(0, false);
    dialog.setCurrentPage(2, false);

    QCOMPARE(combo->currentText(), QStringLiteral("GPU"));
    QCOMPARE(combo->currentIndex(), 3);
    QCOMPARE(changed.count(), 0);
}

void PreferencesSensorsTest::aTraySensorThatIsGoneIsNotRewritten()
{
    PreferencesBench bench;
    bench.parameters.sensors = { sensor("CPU", "TC0P") };
    bench.settings.setString(SettingsKeys::traySensor, QStringLiteral("tc0p"));
    auto& dialog = bench.make();
    dialog.setCurrentPage(2, false);
    QCOMPARE(bench.find<QComboBox>("comboSensor")->currentIndex(), 0);
    QCOMPARE(bench.settings.getString(SettingsKeys::traySensor), QStringLiteral("tc0p"));
}

void PreferencesSensorsTest::choicesWithoutEffectAreHidden()
{
    PreferencesBench bench;
    auto& dialog = bench.make();
    dialog.setCurrentPage(2, false);
    for (const char* name : { "labelIcon", "comboIcon", "labelFan", "comboFan", "checkTwoLines" }) {
        QVERIFY2(bench.find<QWidget>(name)->isHidden(), name);
    }
    QCOMPARE(bench.find<QLabel>("staticCelsius")->text(), QStringLiteral("(Celsius only)"));
}

BRISORA_TEST_MAIN(PreferencesSensorsTest, QApplication)

#include "test_preferences_sensors.moc"
