#include <memory>

#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/fanprofile.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class TestFanProfile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aBarInANameBecomesADash();
    void aCopyOfANamelessPresetIsNamed();
    void predefinedPresetsAreNamedByTheLanguage_data();
    void predefinedPresetsAreNamedByTheLanguage();
    void aCopyOfAPredefinedPresetIsAValidPresetOfItsOwn();
    void validityNeedsAllModesAndAName_data();
    void validityNeedsAllModesAndAName();
    void presetsAreComparedByModesAlone();
    void modesAreSetPerFan();
    void copiesAreIndependent();
    void theStoredFormIsNameAndModes();
    void storedFormsAreRead_data();
    void storedFormsAreRead();
    void presetsSurviveTheRoundTrip();
    void aPresetOfAMachineWithMoreFansIsDroppedWithAWarning();
};

void TestFanProfile::init() { FanProfile::setFanCount(2); }

void TestFanProfile::aBarInANameBecomesADash()
{
    FanProfile profile({}, QStringLiteral("a|b||c"));
    QCOMPARE(profile.name(), QStringLiteral("a-b--c"));
    profile.setName(QStringLiteral("|x"));
    QCOMPARE(profile.name(), QStringLiteral("-x"));
}

void TestFanProfile::aCopyOfANamelessPresetIsNamed()
{
    FanProfile profile;
    QCOMPARE(profile.name(), QString());
    profile.assign(FanProfile({ FanControlMode::automatic() }, QString()));
    QCOMPARE(profile.name(), QStringLiteral("UNSAVED"));
    QCOMPARE(profile.modeCount(), 1);
    profile.assign(constantPreset(1, 2, "Quiet"));
    QCOMPARE(profile.name(), QStringLiteral("Quiet"));
    QCOMPARE(profile.modeCount(), 2);
}

void TestFanProfile::predefinedPresetsAreNamedByTheLanguage_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("name");
    QTest::newRow("automatic") << 0 << "Presets/presetAutomatic";
    QTest::newRow("full blast") << 1 << "Presets/presetFullBlast";
    QTest::newRow("other") << 2 << "Invalid";
    QTest::newRow("default") << 255 << "Invalid";
}

void TestFanProfile::predefinedPresetsAreNamedByTheLanguage()
{
    QFETCH(int, id);
    const FanProfilePredefined profile({}, static_cast<std::uint8_t>(id));
    QTEST(profile.name(), "name");
    QCOMPARE(int(profile.id()), id);
}

void TestFanProfile::aCopyOfAPredefinedPresetIsAValidPresetOfItsOwn()
{
    const FanProfilePredefined predefined(
        { FanControlMode::automatic(), FanControlMode::automatic() }, 0);

    const FanProfile copy = predefined;
    FanProfile assigned;
    assigned = predefined;

    for (const FanProfile& profile : { copy, assigned }) {
        QCOMPARE(profile.name(), QStringLiteral("UNSAVED"));
        QVERIFY(profile.isValid());
        QVERIFY(profile.hasSameModes(predefined));
    }
    // A copy of the whole stays what it is.
    const FanProfilePredefined whole = predefined;
    QCOMPARE(whole.name(), QStringLiteral("Presets/presetAutomatic"));
}

void TestFanProfile::validityNeedsAllModesAndAName_data()
{
    QTest::addColumn<QVector<FanControlMode>>("modes");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("valid");
    const FanControlMode automatic = FanControlMode::automatic();
    using Modes = QVector<FanControlMode>;
    QTest::newRow("valid") << Modes { automatic, FanControlMode::constant(1) } << "x" << true;
    QTest::newRow("not assigned") << Modes { automatic, FanControlMode::notAssigned() } << "x"
                                  << true;
    QTest::newRow("no name") << Modes { automatic, automatic } << "" << false;
    QTest::newRow("too few") << Modes { automatic } << "x" << false;
    QTest::newRow("too many") << Modes { automatic, automatic, automatic } << "x" << false;
    QTest::newRow("an invalid mode") << Modes { automatic, FanControlMode() } << "x" << false;
}

void TestFanProfile::validityNeedsAllModesAndAName()
{
    QFETCH(QVector<FanControlMode>, modes);
    QFETCH(QString, name);
    QTEST(FanProfile(modes, name).isValid(), "valid");
}

void TestFanProfile::presetsAreComparedByModesAlone()
{
    QVERIFY(constantPreset(1, 2, "a").hasSameModes(constantPreset(1, 2, "b")));
    QVERIFY(!constantPreset(1, 2, "a").hasSameModes(constantPreset(1, 3, "a")));
    QVERIFY(!constantPreset(1, 2, "a").hasSameModes(FanProfile()));
    QVERIFY(FanProfile().hasSameModes(FanProfile({}, QStringLiteral("x"))));
    const FanProfile one({ FanControlMode::constant(1) }, QStringLiteral("a"));
    QVERIFY(!constantPreset(1, 1, "a").hasSameModes(one));
    QVERIFY(!one.hasSameModes(constantPreset(1, 1, "a")));
}

void TestFanProfile::modesAreSetPerFan()
{
    FanProfile profile = constantPreset(1000, 2000, "x");
    profile.setMode(1, FanControlMode::automatic());
    profile.setMode(2, FanControlMode::automatic()); // no such fan
    QCOMPARE(profile.modeCount(), 2);
    QCOMPARE(profile.mode(0).rpm(), 1000U);
    QVERIFY(profile.mode(1).isAutomatic());
    QCOMPARE(profile.mode(2).type(), FanControlInvalid);
    QCOMPARE(profile.mode(255).type(), FanControlInvalid);
}

void TestFanProfile::copiesAreIndependent()
{
    const FanProfile original = constantPreset(1000, 2000, "x");
    FanProfile copy = original;
    copy.setMode(0, FanControlMode::automatic());
    copy.setName(QStringLiteral("y"));
    QCOMPARE(original.mode(0).rpm(), 1000U);
    QCOMPARE(original.name(), QStringLiteral("x"));
}

void TestFanProfile::theStoredFormIsNameAndModes()
{
    const FanProfile profile({ FanControlMode::automatic(), followMode("TC0P") },
                             QStringLiteral("K\u00FChl"));
    QCOMPARE(profile.toString(), base64("K\xC3\xBChl|0|2,TC0P,40,70"));
    QCOMPARE(FanProfile({}, QStringLiteral("x")).toString(), base64("x"));
    // The standard alphabet.
    QCOMPARE(FanProfile({}, QString::fromUtf8("\xC3\xBF\xC3\xBE~~?")).toString(),
             QStringLiteral("w7/Dvn5+Pw=="));
}

void TestFanProfile::storedFormsAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("modes");
    QTest::newRow("readable") << base64("Quiet|0|1,2500") << "Quiet"
                              << "0 1,2500";
    QTest::newRow("known sensor") << base64("K\xC3\xBChl|1,7|2,TC0P,40,70")
                                  << QStringLiteral("K\u00FChl") << "1,7 2,TC0P,40,70";
    QTest::newRow("empty parts are left out") << base64("|Quiet||0|0|") << "Quiet"
                                              << "0 0";
    QTest::newRow("no name") << base64("|0|0") << ""
                             << "";
    QTest::newRow("too few modes") << base64("Quiet|0") << ""
                                   << "";
    QTest::newRow("too many modes") << base64("Quiet|0|0|0") << ""
                                    << "";
    QTest::newRow("an invalid mode") << base64("Quiet|0|3,100") << ""
                                     << "";
    QTest::newRow("unknown sensor") << base64("Quiet|0|2,TC1P,40,70") << ""
                                    << "";
    QTest::newRow("empty") << ""
                           << ""
                           << "";
    QTest::newRow("no base64") << "!!!"
                               << ""
                               << "";
    QTest::newRow("no text") << base64("\xFF\xFE\xFD") << ""
                             << "";
}

void TestFanProfile::storedFormsAreRead()
{
    KnownSensors sensors;
    sensors.add("TC0P");
    QFETCH(QString, text);

    const FanProfile profile = FanProfile::fromString(text);

    QTEST(profile.name(), "name");
    QStringList modes;
    for (int fan = 0; fan < profile.modeCount(); ++fan) {
        modes.append(profile.mode(static_cast<std::uint8_t>(fan)).toString());
    }
    QTEST(modes.join(QLatin1Char(' ')), "modes");
    QCOMPARE(profile.isValid(), profile.modeCount() == 2);
}

void TestFanProfile::presetsSurviveTheRoundTrip()
{
    KnownSensors sensors;
    sensors.add("TC0P");
    const FanProfile profile({ followMode("TC0P", 45, 80), FanControlMode::constant(3000) },
                             QStringLiteral("A %1 name, with |bars| and \u4E16"));

    const FanProfile read = FanProfile::fromString(profile.toString());

    QVERIFY(read.isValid());
    QVERIFY(read.hasSameModes(profile));
    QCOMPARE(read.name(), QStringLiteral("A %1 name, with -bars- and \u4E16"));
}

void TestFanProfile::aPresetOfAMachineWithMoreFansIsDroppedWithAWarning()
{
    const QString text = constantPreset(1000, 2000, "Two").toString();
    FanProfile::setFanCount(1);
    LogCapture log;

    QVERIFY(!FanProfile::fromString(text).isValid());

    QCOMPARE(log.take(), QStringList(QStringLiteral("warning: Unexpected profile string: %1")));
}

BRISORA_TEST_MAIN(TestFanProfile, QCoreApplication)

#include "test_fanprofile.moc"
