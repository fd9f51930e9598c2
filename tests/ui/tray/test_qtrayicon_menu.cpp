#include <map>
#include <memory>

#include <QActionGroup>
#include <QApplication>
#include <QMetaMethod>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include "app/ui/tray/qtrayicon.h"
#include "core/application_flags.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/tray/traybench.h"

namespace {

const QString more = QStringLiteral("More");
const QString unsaved = QStringLiteral("Custom*");

// Keeps the fans at these speeds, as a preset of its own with this name.
void addPreset(TrayBench& bench, unsigned left, const QString& name)
{
    bench.machine.engine->setFanMode(0, FanControlMode::constant(left), false);
    bench.machine.engine->profiles()->saveUnsavedProfile(name);
}

// What shows in the menu for the first fan.
QString leftFan(const TrayBench& bench)
{
    return bench.entries().filter(QStringLiteral("Left - ")).value(0);
}

int countSubmenus(const TrayBench& bench) { return bench.menu()->findChildren<QMenu*>().size(); }

void freeWhatIsToBeFreed() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

} // namespace

class QTrayIconMenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void theMenuHasItsOrder();
    void theMenuHasTheMoreEntries();
    void showIsTheDefault();
    void headersCannotBeChosen();
    void withoutFansThereAreNeitherPresetsNorFans();
    void withoutWritingThereAreNoPresets();
    void theActivePresetIsChecked();
    void customPresetsFollow();
    void anUnsavedStateCanBeSavedOrDiscarded();
    void anAmpersandInANameIsShown();
    void aCommandIsASignal_data();
    void aCommandIsASignal();
    void aPresetIsActivated();
    void theActivePresetStaysChecked();
    void aFanOnAutomaticControlHasNoReset();
    void aFanOfItsOwnControlHasAReset();
    void aFanIsControlledAndReset();
    void otherFanActionsAreIgnored_data();
    void otherFanActionsAreIgnored();
    void missingAddressesAreLeftOut_data();
    void missingAddressesAreLeftOut();
    void whatIsNotAvailableIsDisabled();
    void anotherLanguageGivesOtherTexts();
    void theSameMenuIsNotBuiltAgain();
    void aChangedPresetIsBuiltAgain();
    void anOpenMenuStaysAsItIs();
    void submenusAreFreed();
    void anEntryMayChangeTheMenu();
    void theMenuGoesWithTheIcon();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
};

void QTrayIconMenuTest::initTestCase()
{
    EngineMachine::prepareProcess();
    m_texts = std::make_unique<InterfaceTexts>();
}

void QTrayIconMenuTest::cleanup() { core::flags::clear(core::flags::noSmcWrite); }

void QTrayIconMenuTest::theMenuHasItsOrder()
{
    TrayBench bench;
    bench.make();
    const QString line = QStringLiteral("-");
    QCOMPARE(bench.entries(),
             QStringList({ QStringLiteral("Show Brisora"), line, QStringLiteral("Fan presets:"),
                           QStringLiteral("Automatic"), QStringLiteral("Full blast"),
                           QStringLiteral("Available fans:"), QStringLiteral("Left - Auto"),
                           QStringLiteral("Right - Auto"), line, QStringLiteral("Preferences..."),
                           line, more, line, QStringLiteral("Exit") }));
}

void QTrayIconMenuTest::theMenuHasTheMoreEntries()
{
    TrayBench bench;
    bench.make();
    const QString line = QStringLiteral("-");
    QCOMPARE(bench.entries(more),
             QStringList(
                 { QStringLiteral("About..."), QStringLiteral("Check for updates..."),
                   QStringLiteral("Copy technical info"), line, QStringLiteral("Rate on MacUpdate"),
                   QStringLiteral("Follow @OrvaneSoftware"), line, QStringLiteral("Website") }));
}

void QTrayIconMenuTest::showIsTheDefault()
{
    TrayBench bench;
    bench.make();
    QCOMPARE(bench.menu()->defaultAction(), bench.entry(QStringLiteral("Show Brisora")));
    bench.tray->setUpdatesAvailable(false);
    QCOMPARE(bench.menu()->defaultAction(), bench.entry(QStringLiteral("Show Brisora")));
}

void QTrayIconMenuTest::headersCannotBeChosen()
{
    TrayBench bench;
    bench.make();
    for (const QAction* action : bench.menu()->actions()) {
        const bool isHeader = action->text().endsWith(QLatin1Char(':'));
        QVERIFY(action->isSeparator() || action->isEnabled() == !isHeader);
    }
}

void QTrayIconMenuTest::withoutFansThereAreNeitherPresetsNorFans()
{
    TrayBench bench;
    bench.machine.removeFans();
    bench.make();
    const QString line = QStringLiteral("-");
    QCOMPARE(bench.entries(),
             QStringList({ QStringLiteral("Show Brisora"), line, QStringLiteral("Preferences..."),
                           line, more, line, QStringLiteral("Exit") }));
}

void QTrayIconMenuTest::withoutWritingThereAreNoPresets()
{
    core::flags::set("no-smc-write");
    TrayBench bench;
    bench.make();
    QVERIFY(bench.entry(QStringLiteral("Automatic")) == nullptr);
    QCOMPARE(bench.entries().mid(1, 3),
             QStringList({ QStringLiteral("-"), QStringLiteral("Available fans:"),
                           QStringLiteral("Left - Auto") }));
}

void QTrayIconMenuTest::theActivePresetIsChecked()
{
    TrayBench bench;
    bench.make();
    const auto isChecked = [&bench](const char* text) {
        const QAction* action = bench.entry(QString::fromLatin1(text));
        return action->isCheckable() && action->isChecked();
    };
    QVERIFY(isChecked("Automatic"));
    QVERIFY(!bench.entry(QStringLiteral("Full blast"))->isCheckable());

    bench.machine.engine->changeActiveProfile(
        bench.machine.engine->profiles()->predefinedProfiles()[1]);
    bench.tray->rebuildMenu();

    QVERIFY(isChecked("Full blast"));
    QVERIFY(!bench.entry(QStringLiteral("Automatic"))->isCheckable());
}

void QTrayIconMenuTest::customPresetsFollow()
{
    TrayBench bench;
    bench.machine.load();
    addPreset(bench, 3000, QStringLiteral("Work"));
    addPreset(bench, 4000, QStringLiteral("Games"));
    bench.make();
    QCOMPARE(bench.entries().mid(2, 6),
             QStringList({ QStringLiteral("Fan presets:"), QStringLiteral("Automatic"),
                           QStringLiteral("Full blast"), QStringLiteral("Work"),
                           QStringLiteral("Games"), QStringLiteral("Available fans:") }));
    QVERIFY(bench.entry(QStringLiteral("Games"))->isChecked());
    QVERIFY(!bench.entry(QStringLiteral("Work"))->isCheckable());
    QVERIFY(!bench.entry(QStringLiteral("Automatic"))->isCheckable());
}

void QTrayIconMenuTest::anUnsavedStateCanBeSavedOrDiscarded()
{
    TrayBench bench;
    bench.make();
    QVERIFY(bench.entry(unsaved) == nullptr);

    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    bench.tray->rebuildMenu();

    QCOMPARE(
        bench.entries().mid(4, 3),
        QStringList({ QStringLiteral("Full blast"), unsaved, QStringLiteral("Available fans:") }));
    QCOMPARE(bench.entries(unsaved),
             QStringList({ QStringLiteral("Save..."),
                           QStringLiteral("Discard (reset all fans to auto)") }));
    QVERIFY(!bench.entry(QStringLiteral("Automatic"))->isCheckable());
}

void QTrayIconMenuTest::anAmpersandInANameIsShown()
{
    TrayBench bench;
    bench.machine.smc->addFan(0, "Left & top", 2500, 2000, 6000);
    bench.machine.load();
    addPreset(bench, 3000, QStringLiteral("Cool & quiet"));
    bench.make();
    // Doubled, it is no mark of a shortcut.
    QVERIFY(bench.entry(QStringLiteral("Cool && quiet")) != nullptr);
    QVERIFY(bench.entry(QStringLiteral("Left && top - Constant value of 3000")) != nullptr);
}

void QTrayIconMenuTest::aCommandIsASignal_data()
{
    using Signal = void (QTrayIcon::*)();
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("signal");
    const auto row = [](const QString& title, const char* text, Signal signal) {
        QTest::newRow(text) << title << QString::fromLatin1(text)
                            << QMetaMethod::fromSignal(signal).methodSignature();
    };
    row({}, "Show Brisora", &QTrayIcon::showMainWindow);
    row({}, "Preferences...", &QTrayIcon::showPreferences);
    row({}, "Exit", &QTrayIcon::exit);
    row(unsaved, "Save...", &QTrayIcon::unsavedSave);
    row(unsaved, "Discard (reset all fans to auto)", &QTrayIcon::unsavedDiscard);
    row(more, "About...", &QTrayIcon::showAboutDialog);
    row(more, "Check for updates...", &QTrayIcon::checkForUpdates);
    row(more, "Copy technical info", &QTrayIcon::copyTechInfo);
    row(more, "Rate on MacUpdate", &QTrayIcon::rateApp);
    row(more, "Follow @OrvaneSoftware", &QTrayIcon::followTwitter);
    row(more, "Website", &QTrayIcon::gotoWebsite);
}

void QTrayIconMenuTest::aCommandIsASignal()
{
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(QByteArray, signal);
    TrayBench bench;
    bench.machine.load();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    bench.make();
    std::map<QByteArray, std::unique_ptr<QSignalSpy>> spies;
    const QMetaObject& meta = QTrayIcon::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == QMetaMethod::Signal) {
            spies[method.methodSignature()] = std::make_unique<QSignalSpy>(bench.tray, method);
        }
    }
    QCOMPARE(spies.size(), std::size_t { 14 });

    bench.trigger(text, title);

    for (const auto& [signature, spy] : spies) {
        QVERIFY2(spy->count() == (signature == signal ? 1 : 0), signature.constData());
    }
}

void QTrayIconMenuTest::aPresetIsActivated()
{
    TrayBench bench;
    bench.machine.load();
    addPreset(bench, 3000, QStringLiteral("Work"));
    auto& tray = bench.make();
    QVector<FanProfile> activated;
    connect(&tray, &QTrayIcon::setActiveProfile, &tray,
            [&activated](const FanProfile& preset) { activated.append(preset); });

    bench.trigger(QStringLiteral("Full blast"));
    bench.trigger(QStringLiteral("Work"));

    const auto* profiles = bench.machine.engine->profiles();
    QCOMPARE(activated.size(), 2);
    QVERIFY(activated[0].hasSameModes(profiles->predefinedProfiles()[1]));
    QVERIFY(activated[1].hasSameModes(profiles->customProfiles()[0]));
    QVERIFY(activated[0].isValid());
    QVERIFY(activated[1].isValid());
}

void QTrayIconMenuTest::theActivePresetStaysChecked()
{
    TrayBench bench;
    auto& tray = bench.make();
    const QSignalSpy activated(&tray, &QTrayIcon::setActiveProfile);
    bench.trigger(QStringLiteral("Automatic"));
    QCOMPARE(activated.count(), 1);
    QVERIFY(bench.entry(QStringLiteral("Automatic"))->isChecked());
    bench.trigger(QStringLiteral("Full blast"));
    QVERIFY(!bench.entry(QStringLiteral("Full blast"))->isChecked());
}

void QTrayIconMenuTest::aFanOnAutomaticControlHasNoReset()
{
    TrayBench bench;
    bench.make();
    QCOMPARE(bench.entries(QStringLiteral("Left - Auto")),
             QStringList { QStringLiteral("Change control...") });
}

void QTrayIconMenuTest::aFanOfItsOwnControlHasAReset()
{
    TrayBench bench;
    bench.make();
    const QStringList expected { QStringLiteral("Change control..."), QStringLiteral("-"),
                                 QStringLiteral("Reset to automatic control") };
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    bench.machine.engine->setFanMode(1, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70),
                                     false);
    bench.tray->rebuildMenu();
    QCOMPARE(bench.entries(QStringLiteral("Left - Constant value of 3000")), expected);
    QCOMPARE(bench.entries(QStringLiteral("Right - Sensor-based")), expected);
}

void QTrayIconMenuTest::aFanIsControlledAndReset()
{
    TrayBench bench;
    bench.machine.load();
    bench.machine.engine->setFanMode(1, FanControlMode::constant(3000), false);
    auto& tray = bench.make();
    QVector<int> controlled;
    QVector<int> reset;
    connect(&tray, &QTrayIcon::showFanDialog, &tray,
            [&controlled](uint8_t fan) { controlled.append(fan); });
    connect(&tray, &QTrayIcon::resetFanMode, &tray, [&reset](uint8_t fan) { reset.append(fan); });

    const QString left = QStringLiteral("Left - Auto");
    const QString right = QStringLiteral("Right - Constant value of 3000");
    bench.trigger(QStringLiteral("Change control..."), left);
    QCOMPARE(controlled, QVector<int> { 0 });
    bench.trigger(QStringLiteral("Change control..."), right);
    QCOMPARE(controlled, QVector<int>({ 0, 1 }));
    QCOMPARE(reset, QVector<int>());
    bench.trigger(QStringLiteral("Reset to automatic control"), right);
    QCOMPARE(reset, QVector<int> { 1 });
    QCOMPARE(controlled.size(), 2);

    const QAction* action = bench.entry(QStringLiteral("Reset to automatic control"), right);
    QCOMPARE(action->data().toString(), QStringLiteral("1:reset"));
    QVERIFY(action->actionGroup() != nullptr);
}

void QTrayIconMenuTest::otherFanActionsAreIgnored_data()
{
    QTest::addColumn<QVariant>("data");
    for (const char* data : { "0control", "", ":", "0:", ":control", "0:control:more", "0:other",
                              "2:control", "256:control", "-1:control", "x:control" }) {
        QTest::newRow(data) << QVariant(QString::fromLatin1(data));
    }
    QTest::newRow("nothing") << QVariant();
}

void QTrayIconMenuTest::otherFanActionsAreIgnored()
{
    QFETCH(QVariant, data);
    TrayBench bench;
    auto& tray = bench.make();
    const QSignalSpy controlled(&tray, &QTrayIcon::showFanDialog);
    const QSignalSpy reset(&tray, &QTrayIcon::resetFanMode);
    QAction* action
        = bench.entry(QStringLiteral("Change control..."), QStringLiteral("Left - Auto"));

    action->setData(data);
    action->trigger();
    QCOMPARE(controlled.count() + reset.count(), 0);

    action->setData(QStringLiteral("1:reset"));
    action->trigger();
    QCOMPARE(reset.count(), 1);
}

void QTrayIconMenuTest::missingAddressesAreLeftOut_data()
{
    QTest::addColumn<bool>("website");
    QTest::addColumn<bool>("rating");
    QTest::addColumn<bool>("social");
    QTest::addColumn<QStringList>("expected");
    const QString line = QStringLiteral("-");
    const QString rate = QStringLiteral("Rate on MacUpdate");
    const QString follow = QStringLiteral("Follow @OrvaneSoftware");
    const QString site = QStringLiteral("Website");
    QTest::newRow("none") << false << false << false << QStringList();
    QTest::newRow("website") << true << false << false << QStringList { line, site };
    QTest::newRow("rating") << false << true << false << QStringList { line, rate };
    QTest::newRow("social") << false << false << true << QStringList { line, follow };
    QTest::newRow("all but the website")
        << false << true << true << QStringList { line, rate, follow };
    QTest::newRow("all but the rating")
        << true << false << true << QStringList { line, follow, line, site };
}

void QTrayIconMenuTest::missingAddressesAreLeftOut()
{
    QFETCH(bool, website);
    QFETCH(bool, rating);
    QFETCH(bool, social);
    QFETCH(QStringList, expected);
    TrayMenuOptions options;
    options.hasWebsite = website;
    options.hasRatingPage = rating;
    options.hasSocialPage = social;
    TrayBench bench;
    bench.make(options);
    QCOMPARE(bench.entries(more).mid(3), expected);
}

void QTrayIconMenuTest::whatIsNotAvailableIsDisabled()
{
    TrayBench bench;
    auto& tray = bench.make();
    const auto isEnabled = [&bench](const char* text, const QString& title = {}) {
        return bench.entry(QString::fromLatin1(text), title)->isEnabled();
    };
    QVERIFY(isEnabled("Check for updates...", more));

    tray.setUpdatesAvailable(false);
    QVERIFY(!isEnabled("Check for updates...", more));
    QVERIFY(isEnabled("Exit"));

    tray.setUpdatesAvailable(true);
    QVERIFY(isEnabled("Check for updates...", more));
}

void QTrayIconMenuTest::anotherLanguageGivesOtherTexts()
{
    TrayBench bench;
    auto& tray = bench.make();
    QCOMPARE(bench.entries().last(), QStringLiteral("Exit"));

    m_texts->translate("<TrayMenu><itemExit>Beenden</itemExit></TrayMenu>");
    tray.rebuildMenu();
    QCOMPARE(bench.entries().last(), QStringLiteral("Beenden"));

    m_texts->useEnglish();
}

void QTrayIconMenuTest::theSameMenuIsNotBuiltAgain()
{
    TrayBench bench;
    bench.machine.load();
    addPreset(bench, 3000, QStringLiteral("Work"));
    auto& tray = bench.make();
    const QList<QAction*> before = bench.menu()->actions();
    tray.rebuildMenu();
    tray.setUpdatesAvailable(true);
    QCOMPARE(bench.menu()->actions(), before);
}

void QTrayIconMenuTest::aChangedPresetIsBuiltAgain()
{
    TrayBench bench;
    bench.machine.load();
    addPreset(bench, 3000, QStringLiteral("Work"));
    bench.machine.engine->changeActiveProfile(
        bench.machine.engine->profiles()->predefinedProfiles()[0]);
    auto& tray = bench.make();
    QVector<FanProfile> activated;
    connect(&tray, &QTrayIcon::setActiveProfile, &tray,
            [&activated](const FanProfile& preset) { activated.append(preset); });

    // The same texts, but another speed under that name.
    auto* profiles = bench.machine.engine->profiles();
    bench.machine.engine->setFanMode(0, FanControlMode::constant(4000), false);
    profiles->saveUnsavedProfile(QStringLiteral("Work"));
    bench.machine.engine->changeActiveProfile(profiles->predefinedProfiles()[0]);
    tray.rebuildMenu();
    bench.trigger(QStringLiteral("Work"));

    QCOMPARE(activated.size(), 1);
    QCOMPARE(activated[0].mode(0).rpm(), 4000U);
}

void QTrayIconMenuTest::anOpenMenuStaysAsItIs()
{
    TrayBench bench;
    auto& tray = bench.make();
    const QList<QAction*> before = bench.menu()->actions();
    bench.menu()->popup(QPoint(10, 10));
    QVERIFY(bench.menu()->isVisible());

    bench.machine.engine->setFanMode(0, FanControlMode::constant(3000), false);
    tray.rebuildMenu();
    QCOMPARE(bench.menu()->actions(), before);
    // Another call doesn't make it forget the first.
    bench.machine.engine->setFanMode(0, FanControlMode::constant(3500), false);
    tray.rebuildMenu();
    QCOMPARE(bench.menu()->actions(), before);

    bench.menu()->close();
    QTRY_COMPARE(leftFan(bench), QStringLiteral("Left - Constant value of 3500"));
}

void QTrayIconMenuTest::submenusAreFreed()
{
    TrayBench bench;
    auto& tray = bench.make();
    freeWhatIsToBeFreed();
    const int submenus = countSubmenus(bench);
    QCOMPARE(submenus, 3);
    const int children = bench.menu()->children().size();
    for (unsigned rpm = 3000; rpm < 3010; ++rpm) {
        bench.machine.engine->setFanMode(0, FanControlMode::constant(rpm), false);
        tray.rebuildMenu();
    }
    bench.machine.engine->setFanMode(0, FanControlMode::automatic(), false);
    tray.rebuildMenu();
    freeWhatIsToBeFreed();
    QCOMPARE(countSubmenus(bench), submenus);
    QCOMPARE(bench.menu()->children().size(), children);
}

void QTrayIconMenuTest::anEntryMayChangeTheMenu()
{
    TrayBench bench;
    auto& tray = bench.make();
    connect(&tray, &QTrayIcon::setActiveProfile, &tray, [&](const FanProfile& preset) {
        bench.machine.engine->changeActiveProfile(preset);
        tray.rebuildMenu();
    });
    connect(&tray, &QTrayIcon::resetFanMode, &tray, [&](uint8_t fan) {
        bench.machine.engine->setFanMode(fan, FanControlMode::automatic(), false);
        tray.rebuildMenu();
    });
    bench.trigger(QStringLiteral("Full blast"));
    QVERIFY(bench.entry(QStringLiteral("Full blast"))->isChecked());
    QVERIFY(!leftFan(bench).endsWith(QLatin1String("Auto")));

    bench.trigger(QStringLiteral("Reset to automatic control"), leftFan(bench));
    QCOMPARE(leftFan(bench), QStringLiteral("Left - Auto"));

    // By the mouse, whose click closes the menu first.
    bench.menu()->popup(QPoint(10, 10));
    const QRect place = bench.menu()->actionGeometry(bench.entry(QStringLiteral("Full blast")));
    QTest::mouseClick(bench.menu(), Qt::LeftButton, Qt::NoModifier, place.center());
    QTRY_VERIFY(bench.entry(QStringLiteral("Full blast"))->isChecked());
    QVERIFY(!bench.menu()->isVisible());
}

void QTrayIconMenuTest::theMenuGoesWithTheIcon()
{
    TrayBench bench;
    auto* tray = &bench.make();
    const QPointer<QMenu> menu = bench.menu();
    delete tray;
    freeWhatIsToBeFreed();
    QVERIFY(menu.isNull());

    // Or with the window.
    auto window = std::make_unique<QWidget>();
    new QTrayIcon(window.get(), *bench.machine.engine, bench.machine.settings,
                  std::make_unique<FakeTrayPlatform>(bench.record), {});
    const QPointer<QMenu> other = bench.record.menu;
    QVERIFY(!other.isNull());
    window.reset();
    QVERIFY(other.isNull());
}

BRISORA_TEST_MAIN(QTrayIconMenuTest, QApplication)
#include "test_qtrayicon_menu.moc"
