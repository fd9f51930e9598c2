#include <memory>

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include "app/fancontrol/fanprofilelist.h"
#include "app/settingskeys.h"
#include "core/application_flags.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/testenvironment.h"

namespace {

// Settings and a list of presets for two fans, with both predefined presets.
struct Presets {
    Presets()
        : ownFile(std::make_unique<SettingsFile>())
        , settings(ownFile->open())
        , list(*settings)
    {
        addPredefined();
    }
    explicit Presets(const SettingsFile& file)
        : settings(file.open())
        , list(*settings)
    {
        addPredefined();
    }

    void addPredefined()
    {
        const FanControlMode automatic = FanControlMode::automatic();
        const FanControlMode full = FanControlMode::constant(6000);
        list.addPredefined({ automatic, automatic }, FanProfilePredefined::automaticId);
        list.addPredefined({ full, full }, FanProfilePredefined::fullBlastId);
    }

    void load()
    {
        list.loadCustom();
        list.loadActive();
    }
    void addCustom(const FanProfile& profile)
    {
        list.setActiveProfile(profile);
        list.saveUnsavedProfile(profile.name());
    }
    QString storedActive() const { return settings->getString(SettingsKeys::activePreset); }
    QStringList customNames() const
    {
        QStringList names;
        for (const FanProfile& profile : list.customProfiles()) {
            names.append(profile.name());
        }
        return names;
    }

    std::unique_ptr<SettingsFile> ownFile;
    std::unique_ptr<QSettingsCache> settings;
    QFanProfileList list;
};

QStringList names(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* const name : list) {
        result.append(QString::fromLatin1(name));
    }
    return result;
}

} // namespace

class TestFanProfileList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anEmptyListGivesEmptyPresets();
    void predefinedPresetsKeepOrderAndName();
    void theCopyOfAnActivePredefinedPresetIsNamedUnsaved();
    void withoutSettingsAutomaticIsActive();
    void anUnknownStateBecomesTheUnsavedPreset();
    void aStateLikeAStoredPresetLandsOnIt();
    void ofTwoEqualPresetsTheLaterIsActivatedAndTheEarlierChanged();
    void theUnsavedPresetSurvivesARestart();
    void customPresetsSurviveARestart();
    void savingUnderANameKeepsTheUnsavedPreset();
    void savingUnderANameInUseOverwrites();
    void savingAStoredPresetCopiesIt();
    void savingWithoutNameOrActivePresetDoesNothing();
    void barsInNamesBecomeDashesHoweverTheyGetIn();
    void renamingWithoutAMatchDoesNothing();
    void deletingTheActivePresetActivatesAutomatic();
    void deletingAnotherPresetKeepsTheActiveOne();
    void deletingWithoutAMatchDoesNothing();
    void activePresetsAreResolved_data();
    void activePresetsAreResolved();
    void nothingIsSavedBeforeBothLoads();
    void withoutSupportTheActivePresetIsNotSaved();
    void eachActivationForcesAWrite();
    void aModeIsReplacedOnlyWhileItIsTheExpectedOne();
    void modesOfEarlierReleasesAreTakenOver();
    void modesOfEarlierReleasesNeedAllFans();
    void modesOfEarlierReleasesMayBeAutomatic();
};

void TestFanProfileList::anEmptyListGivesEmptyPresets()
{
    const SettingsFile file;
    const auto settings = file.open();
    const QFanProfileList list(*settings);
    QCOMPARE(list.activeProfile().modeCount(), 0);
    QCOMPARE(list.activeProfile().name(), QString());
    QCOMPARE(list.defaultProfile().modeCount(), 0);
    QVERIFY(!list.isUnsaved());
    QVERIFY(!list.isActiveCustom());
    QVERIFY(!list.isActiveAutomatic());
    QVERIFY(!list.isActiveFullBlast());
    QCOMPARE(list.activeCustomIndex(), -1);
}

void TestFanProfileList::predefinedPresetsKeepOrderAndName()
{
    FanProfile::setFanCount(0);
    const Presets presets;
    QCOMPARE(int(FanProfile::fanCount()), 2);
    const auto predefined = presets.list.predefinedProfiles();
    QCOMPARE(predefined.size(), std::size_t(2));
    QCOMPARE(predefined[0].name(), QStringLiteral("Presets/presetAutomatic"));
    QCOMPARE(predefined[1].name(), QStringLiteral("Presets/presetFullBlast"));
    QCOMPARE(int(predefined[1].id()), 1);
    QVERIFY(presets.list.defaultProfile().hasSameModes(predefined[0]));
}

void TestFanProfileList::theCopyOfAnActivePredefinedPresetIsNamedUnsaved()
{
    Presets presets;
    presets.load();
    QVERIFY(presets.list.isActiveAutomatic());
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("UNSAVED"));
    QVERIFY(presets.list.activeProfile().isValid());
    QCOMPARE(presets.list.defaultProfile().name(), QStringLiteral("UNSAVED"));
}

void TestFanProfileList::withoutSettingsAutomaticIsActive()
{
    Presets presets;
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);
    presets.load();
    QVERIFY(presets.list.isActiveAutomatic());
    QCOMPARE(presets.storedActive(), QStringLiteral("Predefined:0"));
    QCOMPARE(changes.size(), 1);
}

void TestFanProfileList::anUnknownStateBecomesTheUnsavedPreset()
{
    Presets presets;
    presets.load();
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);

    const FanProfile state = constantPreset(2000, 3000, "Mine");
    presets.list.setActiveProfile(state);

    QVERIFY(presets.list.isUnsaved());
    QVERIFY(!presets.list.isActiveCustom());
    QVERIFY(!presets.list.isActiveAutomatic());
    QVERIFY(presets.list.activeProfile().hasSameModes(state));
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("Mine"));
    QCOMPARE(presets.storedActive(), QStringLiteral("Unsaved:") + state.toString());
    QCOMPARE(presets.customNames(), QStringList());
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().first().value<QFanProfileList*>(), &presets.list);
}

void TestFanProfileList::aStateLikeAStoredPresetLandsOnIt()
{
    Presets presets;
    presets.load();
    presets.addCustom(constantPreset(2000, 3000, "Quiet"));

    presets.list.setActiveProfile(constantPreset(6000, 6000, "any"));
    QVERIFY(presets.list.isActiveFullBlast());
    QVERIFY(!presets.list.isUnsaved());
    QCOMPARE(presets.storedActive(), QStringLiteral("Predefined:1"));

    presets.list.setActiveProfile(constantPreset(2000, 3000, "any"));
    QVERIFY(presets.list.isActiveCustom());
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("Quiet"));
    QCOMPARE(presets.storedActive(), QStringLiteral("Custom:0"));

    FanProfile edited = presets.list.activeProfile();
    edited.setMode(0, FanControlMode::automatic());
    presets.list.setActiveProfile(edited);
    QVERIFY(presets.list.isUnsaved());
    edited.setMode(1, FanControlMode::automatic());
    presets.list.setActiveProfile(edited);
    QVERIFY(presets.list.isActiveAutomatic());
}

void TestFanProfileList::ofTwoEqualPresetsTheLaterIsActivatedAndTheEarlierChanged()
{
    const SettingsFile file;
    file.open()->setStringList(
        SettingsKeys::customPresets,
        { constantPreset(1, 2, "First").toString(), constantPreset(1, 2, "Second").toString() });
    Presets presets(file);
    presets.load();

    presets.list.setActiveProfile(constantPreset(1, 2, "any"));
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("Second"));
    QCOMPARE(presets.list.activeCustomIndex(), 1);

    presets.list.renameProfile(constantPreset(1, 2, "any"), QStringLiteral("Renamed"));
    QCOMPARE(presets.customNames(), names({ "Renamed", "Second" }));

    presets.list.deleteProfile(presets.list.activeProfile());
    QCOMPARE(presets.customNames(), names({ "Second" }));
    QVERIFY(presets.list.isActiveAutomatic());
}

void TestFanProfileList::theUnsavedPresetSurvivesARestart()
{
    const SettingsFile file;
    const FanProfile state = constantPreset(2000, 3000, "Mine");
    {
        Presets presets(file);
        presets.load();
        presets.list.setActiveProfile(state);
    }
    Presets presets(file);
    presets.load();
    QVERIFY(presets.list.isUnsaved());
    QVERIFY(presets.list.activeProfile().hasSameModes(state));
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("Mine"));
    QCOMPARE(presets.customNames(), QStringList());
}

void TestFanProfileList::customPresetsSurviveARestart()
{
    const SettingsFile file;
    {
        Presets presets(file);
        presets.load();
        presets.addCustom(constantPreset(1, 2, "One"));
        presets.addCustom(constantPreset(3, 4, "Two"));
        presets.list.setActiveProfile(constantPreset(1, 2, "any"));
    }
    Presets presets(file);
    presets.load();
    QCOMPARE(presets.customNames(), names({ "One", "Two" }));
    QCOMPARE(presets.list.activeCustomIndex(), 0);
}

void TestFanProfileList::savingUnderANameKeepsTheUnsavedPreset()
{
    Presets presets;
    presets.load();
    presets.list.setActiveProfile(constantPreset(1, 2, "x"));
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);

    presets.list.saveUnsavedProfile(QStringLiteral("Quiet"));

    QVERIFY(!presets.list.isUnsaved());
    QVERIFY(presets.list.isActiveCustom());
    QCOMPARE(presets.customNames(), names({ "Quiet" }));
    QCOMPARE(presets.storedActive(), QStringLiteral("Custom:0"));
    QCOMPARE(presets.settings->getStringList(SettingsKeys::customPresets),
             QStringList(constantPreset(1, 2, "Quiet").toString()));
    QCOMPARE(changes.size(), 1);
}

void TestFanProfileList::savingUnderANameInUseOverwrites()
{
    Presets presets;
    presets.load();
    presets.addCustom(constantPreset(1, 2, "Quiet"));
    presets.addCustom(constantPreset(3, 4, "Loud"));
    presets.list.setActiveProfile(constantPreset(5, 6, "x"));

    presets.list.saveUnsavedProfile(QStringLiteral("Quiet"));

    QCOMPARE(presets.customNames(), names({ "Quiet", "Loud" }));
    QVERIFY(presets.list.customProfiles()[0].hasSameModes(constantPreset(5, 6, "")));
    QCOMPARE(presets.list.activeCustomIndex(), 0);
    // Once more changes nothing.
    presets.list.saveUnsavedProfile(QStringLiteral("Quiet"));
    QCOMPARE(presets.customNames(), names({ "Quiet", "Loud" }));
    QCOMPARE(presets.list.activeCustomIndex(), 0);
}

void TestFanProfileList::savingAStoredPresetCopiesIt()
{
    Presets presets;
    presets.load();
    presets.list.saveUnsavedProfile(QStringLiteral("My automatic"));
    QCOMPARE(presets.list.predefinedProfiles().size(), std::size_t(2));
    QCOMPARE(presets.customNames(), names({ "My automatic" }));
    QCOMPARE(presets.list.activeCustomIndex(), 0);

    presets.addCustom(constantPreset(1, 2, "Quiet"));
    presets.list.saveUnsavedProfile(QStringLiteral("Quiet too"));
    QCOMPARE(presets.customNames(), names({ "My automatic", "Quiet", "Quiet too" }));
    QVERIFY(presets.list.customProfiles()[2].hasSameModes(constantPreset(1, 2, "")));

    presets.list.saveUnsavedProfile(QStringLiteral("My automatic"));
    QVERIFY(presets.list.customProfiles()[0].hasSameModes(constantPreset(1, 2, "")));
    QCOMPARE(presets.list.activeCustomIndex(), 0);
}

void TestFanProfileList::savingWithoutNameOrActivePresetDoesNothing()
{
    Presets presets;
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);
    presets.list.saveUnsavedProfile(QStringLiteral("Quiet"));
    QCOMPARE(changes.size(), 0);
    presets.load();
    presets.list.setActiveProfile(constantPreset(1, 2, "x"));
    presets.list.saveUnsavedProfile(QString());
    QCOMPARE(presets.customNames(), QStringList());
    QVERIFY(presets.list.isUnsaved());
    QCOMPARE(changes.size(), 2);
}

void TestFanProfileList::barsInNamesBecomeDashesHoweverTheyGetIn()
{
    Presets presets;
    presets.load();
    presets.list.setActiveProfile(constantPreset(1, 2, "x"));
    presets.list.saveUnsavedProfile(QStringLiteral("a|b"));
    QCOMPARE(presets.customNames(), names({ "a-b" }));

    // The same name once more is the same preset.
    presets.list.setActiveProfile(constantPreset(3, 4, "x"));
    presets.list.saveUnsavedProfile(QStringLiteral("a|b"));
    QCOMPARE(presets.customNames(), names({ "a-b" }));

    presets.list.renameProfile(constantPreset(3, 4, "x"), QStringLiteral("c|d"));
    QCOMPARE(presets.customNames(), names({ "c-d" }));
    QCOMPARE(presets.settings->getStringList(SettingsKeys::customPresets),
             QStringList(constantPreset(3, 4, "c-d").toString()));
}

void TestFanProfileList::renamingWithoutAMatchDoesNothing()
{
    Presets presets;
    presets.load();
    presets.addCustom(constantPreset(1, 2, "Quiet"));
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);
    presets.list.renameProfile(constantPreset(1, 3, "Quiet"), QStringLiteral("Loud"));
    presets.list.renameProfile(constantPreset(1, 2, "Quiet"), QString());
    QCOMPARE(presets.customNames(), names({ "Quiet" }));
    QCOMPARE(changes.size(), 0);
    presets.list.renameProfile(constantPreset(1, 2, "any"), QStringLiteral("Loud"));
    QCOMPARE(presets.customNames(), names({ "Loud" }));
    QCOMPARE(changes.size(), 1);
}

void TestFanProfileList::deletingTheActivePresetActivatesAutomatic()
{
    Presets presets;
    presets.load();
    presets.addCustom(constantPreset(1, 2, "Quiet"));
    int changes = 0;
    int customAtChange = -1;
    connect(&presets.list, &QFanProfileList::profilesChanged, &presets.list,
            [&](QFanProfileList* list) {
                ++changes;
                customAtChange = static_cast<int>(list->customProfiles().size());
            });
    static_cast<void>(presets.list.takeForceWrite());

    presets.list.deleteProfile(constantPreset(1, 2, "any"));

    QVERIFY(presets.list.isActiveAutomatic());
    QVERIFY(presets.list.isForceWrite());
    QCOMPARE(presets.customNames(), QStringList());
    QCOMPARE(presets.storedActive(), QStringLiteral("Predefined:0"));
    QCOMPARE(changes, 1);
    QCOMPARE(customAtChange, 0); // after the removal
}

void TestFanProfileList::deletingAnotherPresetKeepsTheActiveOne()
{
    Presets presets;
    presets.load();
    presets.addCustom(constantPreset(1, 2, "One"));
    presets.addCustom(constantPreset(3, 4, "Two"));
    presets.list.deleteProfile(constantPreset(1, 2, "any"));
    QCOMPARE(presets.customNames(), names({ "Two" }));
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("Two"));
    QCOMPARE(presets.storedActive(), QStringLiteral("Custom:0"));
}

void TestFanProfileList::deletingWithoutAMatchDoesNothing()
{
    Presets presets;
    presets.load();
    presets.list.setActiveProfile(constantPreset(1, 2, "Mine"));
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);
    presets.list.deleteProfile(constantPreset(1, 2, "Mine")); // unsaved, not custom
    presets.list.deleteProfile(constantPreset(6000, 6000, "Full"));
    QVERIFY(presets.list.isUnsaved());
    QCOMPARE(presets.list.predefinedProfiles().size(), std::size_t(2));
    QCOMPARE(changes.size(), 0);
}

void TestFanProfileList::activePresetsAreResolved_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("active");
    const QString automatic = QStringLiteral("Predefined:0");
    QTest::newRow("automatic") << automatic << automatic;
    QTest::newRow("full blast") << "Predefined:1"
                                << "Predefined:1";
    QTest::newRow("no such predefined one") << "Predefined:2" << automatic;
    QTest::newRow("negative predefined one") << "Predefined:-1" << automatic;
    QTest::newRow("custom") << "Custom:1"
                            << "Custom:1";
    QTest::newRow("custom, out of range") << "Custom:2" << automatic;
    QTest::newRow("custom, negative") << "Custom:-1" << automatic;
    QTest::newRow("custom, no number") << "Custom:x" << automatic;
    QTest::newRow("custom, huge") << "Custom:99999999999999999999" << automatic;
    QTest::newRow("no colon") << "Custom1" << automatic;
    QTest::newRow("no word") << ":1" << automatic;
    QTest::newRow("other word") << "Other:1" << automatic;
    QTest::newRow("other case") << "custom:1" << automatic;
    const QString unsaved = QStringLiteral("Unsaved:") + constantPreset(7, 8, "x").toString();
    QTest::newRow("unsaved") << unsaved << unsaved;
    QTest::newRow("unsaved, like a custom one")
        << QStringLiteral("Unsaved:") + constantPreset(3, 4, "x").toString() << "Custom:1";
    QTest::newRow("unsaved, unreadable") << "Unsaved:eA==" << automatic;
}

void TestFanProfileList::activePresetsAreResolved()
{
    QFETCH(QString, stored);
    const SettingsFile file;
    file.open()->setString(SettingsKeys::activePreset, stored);
    file.open()->setStringList(
        SettingsKeys::customPresets,
        { constantPreset(1, 2, "One").toString(), constantPreset(3, 4, "Two").toString() });
    Presets presets(file);

    presets.load();

    QTEST(presets.storedActive(), "active");
}

void TestFanProfileList::nothingIsSavedBeforeBothLoads()
{
    const SettingsFile file;
    const QStringList custom { constantPreset(1, 2, "One").toString() };
    file.open()->setStringList(SettingsKeys::customPresets, custom);
    file.open()->setString(SettingsKeys::activePreset, QStringLiteral("Custom:0"));
    Presets presets(file);

    presets.list.save();
    presets.list.setActiveProfile(constantPreset(5, 6, "x"));
    presets.list.loadCustom();
    presets.list.save();

    QCOMPARE(file.open()->getStringList(SettingsKeys::customPresets), custom);
    QCOMPARE(file.open()->getString(SettingsKeys::activePreset), QStringLiteral("Custom:0"));
}

void TestFanProfileList::withoutSupportTheActivePresetIsNotSaved()
{
    const SettingsFile file;
    Presets presets(file);
    presets.load();
    core::flags::set(core::flags::noSupport);

    presets.addCustom(constantPreset(1, 2, "One"));

    core::flags::clear(core::flags::noSupport);
    QCOMPARE(file.open()->getStringList(SettingsKeys::customPresets).size(), 1);
    QCOMPARE(file.open()->getString(SettingsKeys::activePreset), QStringLiteral("Predefined:0"));
}

void TestFanProfileList::eachActivationForcesAWrite()
{
    Presets presets;
    QVERIFY(!presets.list.isForceWrite());
    presets.load();
    QVERIFY(presets.list.takeForceWrite());
    QVERIFY(!presets.list.isForceWrite());
    QVERIFY(!presets.list.takeForceWrite());
    presets.list.putBackForceWrite();
    QVERIFY(presets.list.takeForceWrite());
    presets.list.setActiveProfile(presets.list.activeProfile());
    QVERIFY(presets.list.isForceWrite());
}

void TestFanProfileList::aModeIsReplacedOnlyWhileItIsTheExpectedOne()
{
    Presets presets;
    const FanControlMode automatic = FanControlMode::automatic();
    QVERIFY(!presets.list.replaceActiveMode(0, automatic, automatic)); // none is active
    presets.load();
    presets.addCustom(constantPreset(1, 2, "Quiet"));
    const QSignalSpy changes(&presets.list, &QFanProfileList::profilesChanged);

    QVERIFY(!presets.list.replaceActiveMode(0, FanControlMode::constant(2), automatic));
    QVERIFY(!presets.list.replaceActiveMode(2, FanControlMode::constant(1), automatic));
    QCOMPARE(presets.list.activeCustomIndex(), 0);
    QCOMPARE(changes.size(), 0);

    QVERIFY(presets.list.replaceActiveMode(0, FanControlMode::constant(1), automatic));
    QVERIFY(presets.list.isUnsaved());
    QVERIFY(presets.list.activeProfile().mode(0).isAutomatic());
    QCOMPARE(presets.list.activeProfile().mode(1).rpm(), 2U);
    QVERIFY(presets.storedActive().startsWith(QLatin1String("Unsaved:")));
    QCOMPARE(changes.size(), 1);

    QVERIFY(presets.list.replaceActiveMode(1, FanControlMode::constant(2), automatic));
    QVERIFY(presets.list.isActiveAutomatic());
}

void TestFanProfileList::modesOfEarlierReleasesAreTakenOver()
{
    const SettingsFile file;
    file.open()->setString(QStringLiteral("Fan_0"), QStringLiteral("1,2500"));
    file.open()->setString(QStringLiteral("Fan_1"), QStringLiteral("0"));
    file.open()->setString(QStringLiteral("Fan_2"), QStringLiteral("0"));
    Presets presets(file);

    presets.load();

    QVERIFY(presets.list.isUnsaved());
    QCOMPARE(presets.list.activeProfile().name(), QStringLiteral("old_guy"));
    QCOMPARE(presets.list.activeProfile().mode(0).rpm(), 2500U);
    QCOMPARE(file.open()->getString(QStringLiteral("Fan_0")), QString());
    QCOMPARE(file.open()->getString(QStringLiteral("Fan_1")), QString());
    QCOMPARE(file.open()->getString(QStringLiteral("Fan_2")), QStringLiteral("0")); // no such fan
}

void TestFanProfileList::modesOfEarlierReleasesNeedAllFans()
{
    const SettingsFile file;
    file.open()->setString(QStringLiteral("Fan_1"), QStringLiteral("1,2500"));
    Presets presets(file);
    presets.load();
    QVERIFY(presets.list.isActiveAutomatic());
}

void TestFanProfileList::modesOfEarlierReleasesMayBeAutomatic()
{
    const SettingsFile file;
    file.open()->setString(QStringLiteral("Fan_0"), QStringLiteral("0"));
    file.open()->setString(QStringLiteral("Fan_1"), QStringLiteral("0"));
    Presets presets(file);
    presets.load();
    QVERIFY(presets.list.isActiveAutomatic());
    QCOMPARE(presets.storedActive(), QStringLiteral("Predefined:0"));
}

BRISORA_TEST_MAIN(TestFanProfileList, QCoreApplication)

#include "test_fanprofilelist.moc"
