#include <memory>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

#include "app/fancontrol/fanprofilelist.h"
#include "app/settingskeys.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

// Presets that can't be read at one start and can be at a later one.

namespace {

// One run of the program; fans is 0 when the controller told of none.
class Run {
public:
    explicit Run(const SettingsFile& file, int fans = 2)
        : settings(file.open())
        , list(*settings)
    {
        FanProfile::setFanCount(0);
        if (fans > 0) {
            list.addPredefined(QVector<FanControlMode>(fans, FanControlMode::automatic()),
                               FanProfilePredefined::automaticId);
        }
        list.loadCustom();
        list.loadActive();
    }

    QString active() const { return settings->getString(SettingsKeys::activePreset); }
    QString keptActive() const { return settings->getString(SettingsKeys::activePresetKept); }
    QStringList kept() const { return settings->getStringList(SettingsKeys::customPresetsKept); }
    QStringList customNames() const
    {
        QStringList names;
        for (const FanProfile& profile : list.customProfiles()) {
            names.append(profile.name());
        }
        return names;
    }

    std::unique_ptr<QSettingsCache> settings;
    QFanProfileList list;
};

FanProfile drivePreset(const char* name)
{
    return FanProfile({ FanControlMode::automatic(), followMode("disk") },
                      QString::fromLatin1(name));
}

QStringList names(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* const name : list) {
        result.append(QString::fromLatin1(name));
    }
    return result;
}

} // namespace

class TestFanProfileListKept : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void anUnreadablePresetIsKeptAndComesBack();
    void eachKeptPresetIsLoggedOnce();
    void aMissingPresetDoesNotMakeItsNeighbourActive();
    void anUnsavedActivePresetComesBack();
    void theUsersChoiceEndsTheWaitForTheActivePreset();
    void theFallbackOfAFanDoesNotEndTheWait();
    void aStartWithoutFansLosesNothing();
    void aStartWithoutFansLeavesTheActivePresetStored();
    void whatTookThePlaceOfAKeptPresetDoesNotReplaceIt_data();
    void whatTookThePlaceOfAKeptPresetDoesNotReplaceIt();
    void savingUnderANameEndsTheWaitForTheActivePreset();
    void withoutAChangeNothingIsWritten();
    void whatNeverMeansAnythingIsNotKept();
    void aRunThatWasCutShortBringsNothingBackTwice();
    void unreadableModesOfEarlierReleasesAreKept();
    void modesOfEarlierReleasesStayUntilTheyAreStored();

private:
    void storeThreePresets(const QString& active);

    std::unique_ptr<SettingsFile> m_file;
    std::unique_ptr<KnownSensors> m_sensors;
};

void TestFanProfileListKept::init()
{
    m_file = std::make_unique<SettingsFile>();
    m_sensors.reset();
    m_sensors = std::make_unique<KnownSensors>();
}

void TestFanProfileListKept::storeThreePresets(const QString& active)
{
    m_file->open()->setStringList(SettingsKeys::customPresets,
                                  { constantPreset(1, 2, "One").toString(),
                                    drivePreset("Drive").toString(),
                                    constantPreset(3, 4, "Two").toString() });
    m_file->open()->setString(SettingsKeys::activePreset, active);
}

void TestFanProfileListKept::anUnreadablePresetIsKeptAndComesBack()
{
    const QString drive = drivePreset("Drive").toString();
    storeThreePresets(QStringLiteral("Predefined:0"));
    for (int start = 0; start < 2; ++start) {
        Run run(*m_file);
        QCOMPARE(run.customNames(), names({ "One", "Two" }));
        QCOMPARE(run.kept(), QStringList(drive));
        QVERIFY(!run.settings->getStringList(SettingsKeys::customPresets).contains(drive));
        run.list.setActiveProfile(constantPreset(3, 4, "any"));
    }
    m_sensors->add("disk");
    for (int start = 0; start < 2; ++start) {
        const Run run(*m_file);
        QCOMPARE(run.customNames(), names({ "One", "Two", "Drive" }));
        QCOMPARE(run.kept(), QStringList());
        QCOMPARE(run.active(), QStringLiteral("Custom:1"));
    }
}

void TestFanProfileListKept::eachKeptPresetIsLoggedOnce()
{
    storeThreePresets(QStringLiteral("Predefined:0"));
    LogCapture log;
    {
        const Run run(*m_file);
    }
    QCOMPARE(
        log.take(),
        QStringList(QStringLiteral("warning: The preset \"Drive\" can't be read now and is kept")));
    {
        const Run run(*m_file);
    }
    QCOMPARE(log.take(),
             QStringList(
                 QStringLiteral("warning: The preset \"Drive\" still can't be read and is kept")));
    m_sensors->add("disk");
    {
        const Run run(*m_file);
    }
    QCOMPARE(log.take(),
             QStringList(QStringLiteral("info: The preset \"Drive\" can be read again")));
    {
        const Run run(*m_file);
    }
    QCOMPARE(log.take(), QStringList());
}

void TestFanProfileListKept::aMissingPresetDoesNotMakeItsNeighbourActive()
{
    storeThreePresets(QStringLiteral("Custom:1"));
    {
        const Run run(*m_file);
        QVERIFY(run.list.isActiveAutomatic());
        QCOMPARE(run.keptActive(), QStringLiteral("Unsaved:") + drivePreset("Drive").toString());
    }
    m_sensors->add("disk");
    {
        const Run run(*m_file);
        QCOMPARE(run.list.activeProfile().name(), QStringLiteral("Drive"));
        QCOMPARE(run.active(), QStringLiteral("Custom:2"));
        QCOMPARE(run.keptActive(), QString());
    }

    // The index behind a missing one still means its own preset.
    init();
    storeThreePresets(QStringLiteral("Custom:2"));
    const Run run(*m_file);
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("Two"));
    QCOMPARE(run.active(), QStringLiteral("Custom:1"));
}

void TestFanProfileListKept::anUnsavedActivePresetComesBack()
{
    const QString unsaved = QStringLiteral("Unsaved:") + drivePreset("Mine").toString();
    m_file->open()->setString(SettingsKeys::activePreset, unsaved);
    for (int start = 0; start < 2; ++start) {
        const Run run(*m_file);
        QVERIFY(run.list.isActiveAutomatic());
        QCOMPARE(run.keptActive(), unsaved);
    }
    m_sensors->add("disk");
    const Run run(*m_file);
    QVERIFY(run.list.isUnsaved());
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("Mine"));
    QCOMPARE(run.active(), unsaved);
    QCOMPARE(run.keptActive(), QString());
}

void TestFanProfileListKept::theUsersChoiceEndsTheWaitForTheActivePreset()
{
    m_file->open()->setString(SettingsKeys::activePreset,
                              QStringLiteral("Unsaved:") + drivePreset("Mine").toString());
    {
        Run run(*m_file);
        run.list.setActiveProfile(constantPreset(1, 2, "Chosen"));
        QCOMPARE(run.keptActive(), QString());
    }
    m_sensors->add("disk");
    const Run run(*m_file);
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("Chosen"));
}

void TestFanProfileListKept::theFallbackOfAFanDoesNotEndTheWait()
{
    m_file->open()->setString(SettingsKeys::activePreset,
                              QStringLiteral("Unsaved:") + drivePreset("Mine").toString());
    {
        Run run(*m_file);
        QVERIFY(run.list.replaceActiveMode(0, FanControlMode::automatic(),
                                           FanControlMode::constant(1)));
        QVERIFY(!run.keptActive().isEmpty());
    }
    m_sensors->add("disk");
    const Run run(*m_file);
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("Mine"));
}

void TestFanProfileListKept::aStartWithoutFansLosesNothing()
{
    storeThreePresets(QStringLiteral("Custom:0"));
    m_sensors->add("disk");
    for (int start = 0; start < 2; ++start) {
        const Run run(*m_file, 0);
        QCOMPARE(run.customNames(), QStringList());
        QCOMPARE(run.kept().size(), 3);
    }
    const Run run(*m_file);
    QCOMPARE(run.customNames(), names({ "One", "Drive", "Two" }));
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("One"));
    QCOMPARE(run.kept(), QStringList());
}

void TestFanProfileListKept::aStartWithoutFansLeavesTheActivePresetStored()
{
    m_file->open()->setString(SettingsKeys::activePreset, QStringLiteral("Predefined:0"));
    {
        Run run(*m_file, 0);
        run.list.saveUnsavedProfile(QStringLiteral("Nothing"));
        QCOMPARE(run.customNames(), QStringList());
        QCOMPARE(run.active(), QStringLiteral("Predefined:0"));
    }
    const Run run(*m_file);
    QVERIFY(run.list.isActiveAutomatic());
    QCOMPARE(run.keptActive(), QString());

    // The modes of an earlier release wait for their fans, too.
    init();
    m_file->open()->setString(QStringLiteral("Fan_0"), QStringLiteral("1,2500"));
    m_file->open()->setString(QStringLiteral("Fan_1"), QStringLiteral("0"));
    {
        const Run noFans(*m_file, 0);
        QCOMPARE(noFans.active(), QString());
    }
    const Run withFans(*m_file);
    QCOMPARE(withFans.list.activeProfile().name(), QStringLiteral("old_guy"));
}

void TestFanProfileListKept::whatTookThePlaceOfAKeptPresetDoesNotReplaceIt_data()
{
    QTest::addColumn<QString>("active");
    QTest::addColumn<int>("fans");
    QTest::newRow("predefined, no fans") << QStringLiteral("Predefined:0") << 0;
    QTest::newRow("empty preset") << QStringLiteral("Unsaved:VU5TQVZFRA==") << 2;
    QTest::newRow("custom, out of range") << QStringLiteral("Custom:5") << 2;
}

void TestFanProfileListKept::whatTookThePlaceOfAKeptPresetDoesNotReplaceIt()
{
    QFETCH(QString, active);
    QFETCH(int, fans);
    const QString drive = QStringLiteral("Unsaved:") + drivePreset("Drive").toString();
    m_file->open()->setString(SettingsKeys::activePreset, active);
    m_file->open()->setString(SettingsKeys::activePresetKept, drive);
    {
        const Run run(*m_file, fans);
        QCOMPARE(run.keptActive(), drive);
    }
    m_sensors->add("disk");
    const Run run(*m_file);
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("Drive"));
    QCOMPARE(run.keptActive(), QString());
}

void TestFanProfileListKept::savingUnderANameEndsTheWaitForTheActivePreset()
{
    m_file->open()->setString(SettingsKeys::activePreset,
                              QStringLiteral("Unsaved:") + drivePreset("Mine").toString());
    {
        Run run(*m_file);
        run.list.saveUnsavedProfile(QStringLiteral("Chosen"));
        QCOMPARE(run.keptActive(), QString());
    }
    m_sensors->add("disk");
    const Run run(*m_file);
    QVERIFY(run.list.activeProfile().mode(1).isAutomatic());
}

void TestFanProfileListKept::withoutAChangeNothingIsWritten()
{
    storeThreePresets(QStringLiteral("Custom:0"));
    m_sensors->add("disk");
    Run run(*m_file);
    // Whoever writes what he holds would undo this.
    m_file->open()->setString(SettingsKeys::activePreset, QStringLiteral("Predefined:0"));
    m_file->open()->setStringList(SettingsKeys::customPresets, {});
    run.list.save();
    QCOMPARE(m_file->open()->getString(SettingsKeys::activePreset), QStringLiteral("Predefined:0"));
    QCOMPARE(m_file->open()->getStringList(SettingsKeys::customPresets), QStringList());

    run.list.setActiveProfile(constantPreset(3, 4, "any"));
    QCOMPARE(m_file->open()->getString(SettingsKeys::activePreset), QStringLiteral("Custom:2"));
}

void TestFanProfileListKept::whatNeverMeansAnythingIsNotKept()
{
    for (const char* const text :
         { "Custom:-1", "Custom:0", "Custom", "Other:1", "Predefined:x" }) {
        init();
        m_file->open()->setString(SettingsKeys::activePreset, QString::fromLatin1(text));
        LogCapture log;
        const Run run(*m_file);
        QVERIFY(run.list.isActiveAutomatic());
        QCOMPARE(run.keptActive(), QString());
        QCOMPARE(log.take(),
                 QStringList(QStringLiteral("warning: \"%1\" is no active preset")
                                 .arg(QString::fromLatin1(text))));
    }
}

void TestFanProfileListKept::aRunThatWasCutShortBringsNothingBackTwice()
{
    storeThreePresets(QStringLiteral("Predefined:0"));
    const QString drive = drivePreset("Drive").toString();
    // Kept, but not yet gone from the presets.
    m_file->open()->setStringList(SettingsKeys::customPresetsKept, { drive });
    {
        const Run run(*m_file);
        QCOMPARE(run.kept(), QStringList(drive));
    }
    // Back among the presets, but not yet gone from what is kept.
    storeThreePresets(QStringLiteral("Predefined:0"));
    m_sensors->add("disk");
    const Run run(*m_file);
    QCOMPARE(run.customNames(), names({ "One", "Drive", "Two" }));
    QCOMPARE(run.kept(), QStringList());
}

void TestFanProfileListKept::unreadableModesOfEarlierReleasesAreKept()
{
    m_file->open()->setString(QStringLiteral("Fan_0"), QStringLiteral("1,2500"));
    m_file->open()->setString(QStringLiteral("Fan_1"), QStringLiteral("2,disk,40,70"));
    {
        const Run run(*m_file);
        QVERIFY(run.list.isActiveAutomatic());
        QCOMPARE(m_file->open()->getString(QStringLiteral("Fan_0")), QString());
        QCOMPARE(m_file->open()->getString(QStringLiteral("Fan_1")), QString());
    }
    m_sensors->add("disk");
    const Run run(*m_file);
    QCOMPARE(run.list.activeProfile().name(), QStringLiteral("old_guy"));
    QCOMPARE(run.list.activeProfile().mode(0).rpm(), 2500U);
    QCOMPARE(run.list.activeProfile().mode(1).sensorKey(), QStringLiteral("disk"));
}

void TestFanProfileListKept::modesOfEarlierReleasesStayUntilTheyAreStored()
{
    // A storage that remembers each state in which a crash could have left it.
    static QList<QSettings::SettingsMap> states;
    states.clear();
    const QSettings::Format format = QSettings::registerFormat(
        QStringLiteral("states"), [](QIODevice&, QSettings::SettingsMap&) { return true; },
        [](QIODevice&, const QSettings::SettingsMap& map) {
            states.append(map);
            return true;
        });
    const QTemporaryDir folder;
    QSettingsCache settings(
        std::make_unique<QSettings>(folder.filePath(QStringLiteral("settings.states")), format));
    settings.setString(QStringLiteral("Fan_0"), QStringLiteral("1,2500"));
    settings.setString(QStringLiteral("Fan_1"), QStringLiteral("0"));
    states.clear();
    QFanProfileList list(settings);
    list.addPredefined(QVector<FanControlMode>(2, FanControlMode::automatic()),
                       FanProfilePredefined::automaticId);
    list.loadCustom();
    list.loadActive();

    QVERIFY(states.size() >= 2);
    for (const auto& state : qAsConst(states)) {
        QVERIFY(state.contains(SettingsKeys::activePreset)
                || (state.contains(QStringLiteral("Fan_0"))
                    && state.contains(QStringLiteral("Fan_1"))));
    }
    QVERIFY(!states.last().contains(QStringLiteral("Fan_0")));
    QVERIFY(!states.last().contains(QStringLiteral("Fan_1")));
}

BRISORA_TEST_MAIN(TestFanProfileListKept, QCoreApplication)

#include "test_fanprofilelist_kept.moc"
