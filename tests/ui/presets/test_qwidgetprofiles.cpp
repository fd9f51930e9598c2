#include <functional>

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QtTest>

#include "app/fancontrol/fanprofilelist.h"
#include "app/ui/presets/qwidgetprofiles.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qcocoabutton.h"
#include "core/widgets/widgethelpers.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/interfacetexts.h"
#include "tests/support/testenvironment.h"

namespace {

const FanProfile fullBlast = constantPreset(6000, 6000, "Full blast");
const FanProfile unsaved = constantPreset(3333, 3333, "");

FanProfile automatic()
{
    return FanProfile({ FanControlMode::automatic(), FanControlMode::automatic() }, QString());
}

// What a menu shows, an entry after the other: "-" for a separator, a disabled entry
// in brackets, "*" before a checked one, ">" after one with a submenu.
QStringList contents(const QMenu* menu)
{
    QStringList result;
    const QList<QAction*> entries = menu->actions();
    for (const QAction* const entry : entries) {
        QString text = entry->text();
        if (entry->isSeparator()) {
            text = QStringLiteral("-");
        } else if (!entry->isEnabled()) {
            text = QStringLiteral("(%1)").arg(text);
        } else if (entry->isCheckable() && entry->isChecked()) {
            text.prepend(QLatin1Char('*'));
        }
        if (entry->menu() != nullptr) {
            text.append(QLatin1Char('>'));
        }
        result.append(text);
    }
    return result;
}

QAction* entryOf(const QMenu* menu, const char* text)
{
    const QList<QAction*> entries = menu->actions();
    for (QAction* const entry : entries) {
        if (entry->text() == QString::fromUtf8(text)) {
            return entry;
        }
    }
    qFatal("No entry '%s' in %s", text, qPrintable(contents(menu).join(QLatin1Char('|'))));
}

void clickOn(QMenu* menu, QAction* entry)
{
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
}

// The bar in a window, on a list of presets for two fans, wired as the main window
// does it.
class BarBench {
public:
    explicit BarBench(const std::vector<FanProfile>& custom = {})
        : settings(settingsFile.open())
        , list(*settings)
        , bar(new QWidgetProfiles(&window))
    {
        const FanProfile predefined[] = { automatic(), fullBlast };
        for (std::uint8_t id = 0; id < 2; ++id) {
            list.addPredefined({ predefined[id].mode(0), predefined[id].mode(1) }, id);
        }
        list.loadCustom();
        list.loadActive();
        for (const FanProfile& preset : custom) {
            list.setActiveProfile(preset);
            list.saveUnsavedProfile(preset.name());
        }
        list.setActiveProfile(list.defaultProfile());

        (new QHBoxLayout(&window))->addWidget(bar);
        bar->setProfiles(list);
        bar->setNameCallback([this](const QStringList& names, const QString& current) {
            askedNames = names;
            askedName = current;
            ++asked;
            return answer;
        });
        bar->translate();
        QObject::connect(&list, &QFanProfileList::profilesChanged, bar,
                         &QWidgetProfiles::slotProfilesChanged);
        QObject::connect(bar, &QWidgetProfiles::setActiveProfile, &list,
                         &QFanProfileList::setActiveProfile);
        QObject::connect(bar, &QWidgetProfiles::deleteProfile, &list,
                         &QFanProfileList::deleteProfile);
        QObject::connect(bar, &QWidgetProfiles::saveUnsavedProfile, &list,
                         &QFanProfileList::saveUnsavedProfile);
        QObject::connect(bar, &QWidgetProfiles::renameProfile, &list,
                         &QFanProfileList::renameProfile);
    }

    // The list with this preset active, shown by the bar.
    void activate(const FanProfile& preset) { list.setActiveProfile(preset); }

    void show()
    {
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window)) {
            qFatal("The window gets no keyboard");
        }
    }

    [[nodiscard]] QCocoaButtonActionMenu* buttonPresets() const
    {
        return bar->findChild<QCocoaButtonActionMenu*>(QStringLiteral("buttonPresets"));
    }
    [[nodiscard]] QCocoaButtonActionMenu* buttonActions() const
    {
        return bar->findChild<QCocoaButtonActionMenu*>(QStringLiteral("buttonActions"));
    }
    // What the user clicks on.
    [[nodiscard]] static QPushButton* inside(const QCocoaButtonActionMenu* button)
    {
        return button->findChild<QPushButton*>();
    }
    [[nodiscard]] QMenu* menuPresets() const
    {
        return bar->findChild<QMenu*>(QStringLiteral("menuPresets"));
    }
    [[nodiscard]] QMenu* menuActions() const
    {
        return bar->findChild<QMenu*>(QStringLiteral("menuActions"));
    }
    [[nodiscard]] QMenu* presetMenu(const char* name) const
    {
        return entryOf(menuPresets(), name)->menu();
    }
    [[nodiscard]] QStringList customNames() const
    {
        QStringList names;
        for (const FanProfile& preset : list.customProfiles()) {
            names.append(preset.name());
        }
        return names;
    }

    SettingsFile settingsFile;
    std::unique_ptr<QSettingsCache> settings;
    QFanProfileList list;
    QWidget window;
    QWidgetProfiles* const bar;
    QString answer; // to the question for a name
    QStringList askedNames;
    QString askedName;
    int asked = 0;
};

const FanProfile quiet = constantPreset(2000, 2100, "Quiet");
const FanProfile loud = constantPreset(5000, 5100, "Loud");

} // namespace

class WidgetProfilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_texts = std::make_unique<InterfaceTexts>();
        m_sensors = std::make_unique<KnownSensors>();
    }
    void cleanup()
    {
        m_sensors.reset();
        m_texts.reset();
    }

    void bothButtonsStartDisabled();
    void withoutFansBothButtonsAreDisabled();
    void thePresetsAreListed_data();
    void thePresetsAreListed();
    void aPresetOffersWhatCanBeDoneWithIt();
    void thePresentStateOffersWhatCanBeDoneWithIt_data();
    void thePresentStateOffersWhatCanBeDoneWithIt();
    void theLaterOfTwoEqualPresetsIsTheActiveOne();

    void choosingAPredefinedPresetActivatesIt();
    void choosingTheActivePresetKeepsItsMark();
    void applyingACustomPresetActivatesIt();
    void deletingAPresetAsksForItsRemoval_data();
    void deletingAPresetAsksForItsRemoval();
    void renamingAPresetAsksForItsNewName_data();
    void renamingAPresetAsksForItsNewName();
    void aCancelledRenameEmitsNothing();
    void aNewPresetIsExplained();
    void savingAsksForAName();
    void savingUnderAnExistingNameOverwrites();
    void aCancelledSaveEmitsNothing();
    void discardingGoesBackToAutomatic();
    void withoutACallbackANameCannotBeAskedFor();
    void saveHasAShortcutWhileThereIsSomethingToSave();

    void theButtonIsAsWideAsItsWidestPreset();
    void theButtonKeepsItsSizeBetweenPresets();
    void aLargerFontWidensTheButton();
    void namesAreShownToTheLetter_data();
    void namesAreShownToTheLetter();
    void aLongNameIsShortened();
    void anOpenMenuStaysAsItIs_data();
    void anOpenMenuStaysAsItIs();
    void aClickOnAnEntryTakesEffect();
    void anEntryTakesEffectOnceItsMenuIsDone();
    void presetsMayChangeWhileANameIsAskedFor();
    void submenusAreFreed();
    void aChangeOfLanguageShowsEverywhere();
    void aChangeOfLanguageBuildsNoMenus();
    void theButtonsHaveAccessibleNames();
    void tabWalksInReadingOrder();
    void theBarIsMirroredForRightToLeft();
    void theBarIsNoHigherThanItsButtons();

private:
    std::unique_ptr<InterfaceTexts> m_texts;
    std::unique_ptr<KnownSensors> m_sensors;
};

void WidgetProfilesTest::bothButtonsStartDisabled()
{
    const BarBench bench;
    QVERIFY(!bench.buttonPresets()->isEnabled());
    QVERIFY(!bench.buttonActions()->isEnabled());
    QVERIFY(bench.menuPresets()->isEmpty());
    QVERIFY(bench.menuActions()->isEmpty());
}

void WidgetProfilesTest::withoutFansBothButtonsAreDisabled()
{
    BarBench bench;
    bench.activate(unsaved);
    QVERIFY(bench.buttonPresets()->isEnabled());
    QVERIFY(bench.buttonActions()->isEnabled());

    FanProfile::setFanCount(0);
    bench.bar->slotProfilesChanged();

    QVERIFY(!bench.buttonPresets()->isEnabled());
    QVERIFY(!bench.buttonActions()->isEnabled());
}

void WidgetProfilesTest::thePresetsAreListed_data()
{
    QTest::addColumn<int>("customCount");
    QTest::addColumn<FanProfile>("active");
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* name, int customCount, const FanProfile& active,
                        const char* entries, const char* shown) {
        QTest::newRow(name) << customCount << active
                            << QString::fromLatin1(entries).split(QLatin1Char('|'))
                            << QString::fromLatin1(shown);
    };
    row("automatic, none of the user's", 0, automatic(),
        "(Predefined presets:)|*Automatic|Full blast|-|(Custom presets:)|New...", "Automatic");
    row("full blast, none of the user's", 0, fullBlast,
        "(Predefined presets:)|Automatic|*Full blast|-|(Custom presets:)|New...", "Full blast");
    row("unsaved, none of the user's", 0, unsaved,
        "(Predefined presets:)|Automatic|Full blast|-|(Custom presets:)|*Custom*>", "Custom*");
    row("automatic, one of the user's", 1, automatic(),
        "(Predefined presets:)|*Automatic|Full blast|-|(Custom presets:)|Quiet>", "Automatic");
    row("the user's only one", 1, quiet,
        "(Predefined presets:)|Automatic|Full blast|-|(Custom presets:)|*Quiet>", "Quiet");
    row("one of the user's two", 2, loud,
        "(Predefined presets:)|Automatic|Full blast|-|(Custom presets:)|Quiet>|*Loud>", "Loud");
    row("unsaved, two of the user's", 2, unsaved,
        "(Predefined presets:)|Automatic|Full blast|-|(Custom presets:)|Quiet>|Loud>|*Custom*>",
        "Custom*");
}

void WidgetProfilesTest::thePresetsAreListed()
{
    QFETCH(int, customCount);
    QFETCH(FanProfile, active);
    QFETCH(QString, shown);
    std::vector<FanProfile> custom { quiet, loud };
    custom.resize(static_cast<std::size_t>(customCount));
    BarBench bench(custom);

    bench.activate(active);

    QTEST(contents(bench.menuPresets()), "entries");
    QCOMPARE(bench.buttonPresets()->text(), shown);
    QVERIFY(bench.buttonPresets()->isEnabled());
    QVERIFY(BarBench::inside(bench.buttonPresets())->menu() == bench.menuPresets());
    QCOMPARE(bench.menuPresets()->title(), QStringLiteral("Preset - ") + shown);
}

void WidgetProfilesTest::aPresetOffersWhatCanBeDoneWithIt()
{
    BarBench bench({ quiet, loud });
    bench.activate(loud);

    QCOMPARE(contents(bench.presetMenu("Quiet")),
             QStringList({ QStringLiteral("Apply"), QStringLiteral("-"), QStringLiteral("Rename"),
                           QStringLiteral("Delete") }));
    QCOMPARE(contents(bench.presetMenu("Loud")),
             QStringList({ QStringLiteral("Rename"), QStringLiteral("Delete") }));
}

void WidgetProfilesTest::thePresentStateOffersWhatCanBeDoneWithIt_data()
{
    QTest::addColumn<FanProfile>("active");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("predefined") << fullBlast << QStringList();
    QTest::newRow("custom") << quiet
                            << QStringList({ QStringLiteral("Rename"), QStringLiteral("Delete") });
    QTest::newRow("unsaved") << unsaved
                             << QStringList({ QStringLiteral("Save...\tCtrl+S"),
                                              QStringLiteral("-"),
                                              QStringLiteral("Discard (reset all fans to auto)") });
}

void WidgetProfilesTest::thePresentStateOffersWhatCanBeDoneWithIt()
{
    QFETCH(FanProfile, active);
    QFETCH(QStringList, entries);
    BarBench bench({ quiet });
    // From the other states, so that nothing of them stays.
    bench.activate(quiet);
    bench.activate(constantPreset(4444, 4444, ""));

    bench.activate(active);

    QCOMPARE(contents(bench.menuActions()), entries);
    QCOMPARE(bench.buttonActions()->isEnabled(), !entries.isEmpty());
    QVERIFY(BarBench::inside(bench.buttonActions())->menu() == bench.menuActions());
    // The unsaved state has the same menu in the list.
    const bool inList = bench.menuPresets()->actions().contains(bench.menuActions()->menuAction());
    QCOMPARE(inList, bench.list.isUnsaved());
}

void WidgetProfilesTest::theLaterOfTwoEqualPresetsIsTheActiveOne()
{
    // Two presets become equal when the second one's name is saved over.
    const FanProfile other = constantPreset(4000, 4000, "Other");
    BarBench bench({ quiet, other });
    bench.activate(quiet);
    bench.list.saveUnsavedProfile(QStringLiteral("Other"));

    QCOMPARE(contents(bench.menuPresets()).mid(5),
             QStringList({ QStringLiteral("Quiet>"), QStringLiteral("*Other>") }));
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Other"));
}

void WidgetProfilesTest::choosingAPredefinedPresetActivatesIt()
{
    BarBench bench;
    bench.activate(unsaved);
    const QSignalSpy chosen(bench.bar, &QWidgetProfiles::setActiveProfile);

    entryOf(bench.menuPresets(), "Full blast")->trigger();

    QTRY_COMPARE(chosen.count(), 1);
    QVERIFY(chosen[0][0].value<FanProfile>().hasSameModes(fullBlast));
    QVERIFY(bench.list.isActiveFullBlast());
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Full blast"));
}

void WidgetProfilesTest::choosingTheActivePresetKeepsItsMark()
{
    BarBench bench;
    bench.activate(automatic());
    QObject::disconnect(bench.bar, nullptr, &bench.list, nullptr); // nothing is changed
    const QSignalSpy chosen(bench.bar, &QWidgetProfiles::setActiveProfile);
    auto* const entry = entryOf(bench.menuPresets(), "Automatic");

    entry->trigger();

    QTRY_COMPARE(chosen.count(), 1);
    QVERIFY(chosen[0][0].value<FanProfile>().hasSameModes(automatic()));
    QVERIFY(entry->isChecked());
}

void WidgetProfilesTest::applyingACustomPresetActivatesIt()
{
    BarBench bench({ quiet, loud });
    bench.activate(automatic());
    const QSignalSpy chosen(bench.bar, &QWidgetProfiles::setActiveProfile);

    entryOf(bench.presetMenu("Loud"), "Apply")->trigger();

    QTRY_COMPARE(chosen.count(), 1);
    QVERIFY(chosen[0][0].value<FanProfile>().hasSameModes(loud));
    QCOMPARE(chosen[0][0].value<FanProfile>().name(), QStringLiteral("Loud"));
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Loud"));
}

void WidgetProfilesTest::deletingAPresetAsksForItsRemoval_data()
{
    QTest::addColumn<bool>("fromActions");
    QTest::newRow("in the list") << false;
    QTest::newRow("as the active one") << true;
}

void WidgetProfilesTest::deletingAPresetAsksForItsRemoval()
{
    QFETCH(bool, fromActions);
    BarBench bench({ quiet, loud });
    bench.activate(fromActions ? loud : automatic());
    const QSignalSpy deleted(bench.bar, &QWidgetProfiles::deleteProfile);

    entryOf(fromActions ? bench.menuActions() : bench.presetMenu("Loud"), "Delete")->trigger();

    QTRY_COMPARE(deleted.count(), 1);
    QCOMPARE(deleted[0][0].value<FanProfile>().name(), QStringLiteral("Loud"));
    QCOMPARE(bench.customNames(), QStringList(QStringLiteral("Quiet")));
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Automatic"));
    QCOMPARE(contents(bench.menuPresets()).last(), QStringLiteral("Quiet>"));
}

void WidgetProfilesTest::renamingAPresetAsksForItsNewName_data()
{
    QTest::addColumn<bool>("fromActions");
    QTest::newRow("in the list") << false;
    QTest::newRow("as the active one") << true;
}

void WidgetProfilesTest::renamingAPresetAsksForItsNewName()
{
    QFETCH(bool, fromActions);
    BarBench bench({ quiet, loud });
    bench.activate(fromActions ? loud : automatic());
    bench.answer = QStringLiteral("Storm");
    const QSignalSpy renamed(bench.bar, &QWidgetProfiles::renameProfile);

    entryOf(fromActions ? bench.menuActions() : bench.presetMenu("Loud"), "Rename")->trigger();

    QTRY_COMPARE(renamed.count(), 1);
    QCOMPARE(bench.asked, 1);
    QCOMPARE(bench.askedNames, QStringList({ QStringLiteral("Quiet"), QStringLiteral("Loud") }));
    QCOMPARE(bench.askedName, QStringLiteral("Loud"));
    QVERIFY(renamed[0][0].value<FanProfile>().hasSameModes(loud));
    QCOMPARE(renamed[0][1].toString(), QStringLiteral("Storm"));
    QCOMPARE(bench.customNames(),
             QStringList({ QStringLiteral("Quiet"), QStringLiteral("Storm") }));
    QVERIFY(bench.presetMenu("Storm") != nullptr);
}

void WidgetProfilesTest::aCancelledRenameEmitsNothing()
{
    BarBench bench({ quiet });
    bench.activate(quiet);
    const QSignalSpy renamed(bench.bar, &QWidgetProfiles::renameProfile);

    bench.bar->slotRename(quiet);

    QCOMPARE(bench.asked, 1);
    QCOMPARE(renamed.count(), 0);
}

void WidgetProfilesTest::aNewPresetIsExplained()
{
    BarBench bench;
    bench.activate(fullBlast);
    const QSignalSpy explained(bench.bar, &QWidgetProfiles::showCreateNewPresetMessage);

    entryOf(bench.menuPresets(), "New...")->trigger();

    QTRY_COMPARE(explained.count(), 1);
    QCOMPARE(bench.asked, 0);
}

void WidgetProfilesTest::savingAsksForAName()
{
    BarBench bench({ quiet });
    bench.activate(unsaved);
    bench.answer = QStringLiteral("Storm");
    const QSignalSpy saved(bench.bar, &QWidgetProfiles::saveUnsavedProfile);

    entryOf(bench.menuActions(), "Save...\tCtrl+S")->trigger();

    QTRY_COMPARE(saved.count(), 1);
    QCOMPARE(bench.askedNames, QStringList(QStringLiteral("Quiet")));
    QCOMPARE(bench.askedName, QString());
    QCOMPARE(saved[0][0].toString(), QStringLiteral("Storm"));
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Storm"));
    QCOMPARE(contents(bench.menuPresets()).mid(5),
             QStringList({ QStringLiteral("Quiet>"), QStringLiteral("*Storm>") }));
}

void WidgetProfilesTest::savingUnderAnExistingNameOverwrites()
{
    BarBench bench({ quiet });
    bench.activate(unsaved);
    bench.answer = QStringLiteral("Quiet");

    bench.bar->slotSave();

    QCOMPARE(bench.customNames(), QStringList(QStringLiteral("Quiet")));
    QVERIFY(bench.list.customProfiles()[0].hasSameModes(unsaved));
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Quiet"));
}

void WidgetProfilesTest::aCancelledSaveEmitsNothing()
{
    BarBench bench;
    bench.activate(unsaved);
    const QSignalSpy saved(bench.bar, &QWidgetProfiles::saveUnsavedProfile);

    bench.bar->slotSave();

    QCOMPARE(bench.asked, 1);
    QCOMPARE(saved.count(), 0);
    QVERIFY(bench.list.isUnsaved());
}

void WidgetProfilesTest::discardingGoesBackToAutomatic()
{
    BarBench bench;
    bench.activate(unsaved);
    const QSignalSpy chosen(bench.bar, &QWidgetProfiles::setActiveProfile);

    entryOf(bench.menuActions(), "Discard (reset all fans to auto)")->trigger();

    QTRY_COMPARE(chosen.count(), 1);
    QVERIFY(chosen[0][0].value<FanProfile>().hasSameModes(automatic()));
    QVERIFY(bench.list.isActiveAutomatic());
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Automatic"));
}

void WidgetProfilesTest::withoutACallbackANameCannotBeAskedFor()
{
    BarBench bench({ quiet });
    bench.bar->setNameCallback({});
    QVERIFY_EXCEPTION_THROWN(bench.bar->slotSave(), std::bad_function_call);
    QVERIFY_EXCEPTION_THROWN(bench.bar->slotRename(quiet), std::bad_function_call);
}

void WidgetProfilesTest::saveHasAShortcutWhileThereIsSomethingToSave()
{
    BarBench bench({ quiet });
    bench.activate(quiet);
    bench.show();
    const auto ask = [&bench] {
        QTest::keyClick(&bench.window, Qt::Key_S, Qt::ControlModifier);
        QCoreApplication::processEvents();
        return bench.asked;
    };
    QCOMPARE(ask(), 0);

    bench.activate(unsaved);
    QCOMPARE(ask(), 1);
    bench.activate(constantPreset(3456, 3456, ""));
    QCOMPARE(ask(), 2);

    bench.bar->setEnabled(false);
    QCOMPARE(ask(), 2);
    bench.bar->setEnabled(true);
    bench.activate(automatic());
    QCOMPARE(ask(), 2);
}

void WidgetProfilesTest::theButtonIsAsWideAsItsWidestPreset()
{
    BarBench bench;
    const QFontMetrics metrics = bench.buttonPresets()->fontMetrics();
    const auto widthFor = [&metrics](const char* text) {
        return metrics.horizontalAdvance(QString::fromUtf8(text)) + scaled(30);
    };
    // The headings are wider and don't count.
    bench.activate(automatic());
    QCOMPARE(bench.buttonPresets()->width(), widthFor("Automatic"));
    QVERIFY(widthFor("Predefined presets:") > widthFor("Automatic"));

    // One "&", as it is seen.
    bench.activate(unsaved);
    bench.list.saveUnsavedProfile(QStringLiteral("A rather long name & its end"));
    QCOMPARE(bench.buttonPresets()->width(), widthFor("A rather long name & its end"));

    bench.activate(quiet);
    bench.list.saveUnsavedProfile(QString::fromUtf8("ערכה שקטה מאוד ללילות ארוכים וחמים"));
    QCOMPARE(bench.buttonPresets()->width(), widthFor("ערכה שקטה מאוד ללילות ארוכים וחמים"));
}

void WidgetProfilesTest::theButtonKeepsItsSizeBetweenPresets()
{
    BarBench bench({ constantPreset(2500, 2500, "A rather long name"), quiet });
    bench.activate(automatic());
    const int width = bench.buttonPresets()->width();
    for (const FanProfile& preset :
         { constantPreset(2500, 2500, ""), quiet, unsaved, fullBlast, automatic() }) {
        bench.activate(preset);
        QCOMPARE(bench.buttonPresets()->width(), width);
    }
}

void WidgetProfilesTest::aLargerFontWidensTheButton()
{
    BarBench bench;
    bench.activate(automatic());
    const int before = bench.buttonPresets()->width();
    QFont font = bench.window.font();
    font.setPointSize(font.pointSize() * 2);

    bench.window.setFont(font);

    QVERIFY(bench.buttonPresets()->width() > before);
    QCOMPARE(bench.buttonPresets()->width(),
             QFontMetrics(font).horizontalAdvance(QStringLiteral("Automatic")) + scaled(30));
}

void WidgetProfilesTest::namesAreShownToTheLetter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* text) {
        QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(text);
    };
    row("Day & night", "Day && night");
    row("&&", "&&&&");
    row("%1 %2", "%1 %2");
    row("<b>bold</b>", "<b>bold</b>");
    row("a|b", "a-b");
    row("Ctrl\tS\nx", "Ctrl S x");
    row("Größe 🌀", "Größe 🌀");
}

void WidgetProfilesTest::namesAreShownToTheLetter()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    BarBench bench;
    bench.activate(unsaved);

    bench.list.saveUnsavedProfile(name);
    QString storedName = bench.customNames().value(0);

    QCOMPARE(bench.buttonPresets()->text(), text);
    QCOMPARE(contents(bench.menuPresets()).last(), QLatin1Char('*') + text + QLatin1Char('>'));
    QCOMPARE(bench.menuPresets()->title(),
             QStringLiteral("Preset - ")
                 + storedName.replace(QLatin1Char('&'), QLatin1String("&&")));
}

void WidgetProfilesTest::aLongNameIsShortened()
{
    const QString longName
        = QStringLiteral("First ") + QString(300, QLatin1Char('W')) + QStringLiteral(" & last");
    BarBench bench;
    bench.activate(unsaved);

    bench.list.saveUnsavedProfile(longName);

    auto* const button = bench.buttonPresets();
    const QString shown = button->text();
    QVERIFY(shown.startsWith(QLatin1String("First ")));
    QVERIFY(shown.endsWith(QLatin1String(" && last")));
    QVERIFY(shown.size() < longName.size());
    QVERIFY(button->width() <= scaled(320) + scaled(30));
    QVERIFY(button->width() > scaled(300));
    QVERIFY(bench.menuPresets()->sizeHint().width() < 2 * scaled(320));
    // The whole name can still be read, and is no markup.
    auto* const entry = bench.menuPresets()->actions().last();
    QVERIFY(bench.menuPresets()->toolTipsVisible());
    QVERIFY(entry->toolTip().contains(longName.toHtmlEscaped()));
    QCOMPARE(BarBench::inside(button)->toolTip(), entry->toolTip());

    bench.activate(automatic());
    QCOMPARE(BarBench::inside(button)->toolTip(), QString());
}

void WidgetProfilesTest::anOpenMenuStaysAsItIs_data()
{
    QTest::addColumn<QString>("menu");
    QTest::newRow("the presets") << QStringLiteral("menuPresets");
    QTest::newRow("the actions") << QStringLiteral("menuActions");
}

void WidgetProfilesTest::anOpenMenuStaysAsItIs()
{
    QFETCH(QString, menu);
    BarBench bench({ quiet });
    bench.activate(quiet);
    bench.show();
    auto* const open = bench.bar->findChild<QMenu*>(menu);
    open->popup(QPoint(0, 0));
    QVERIFY(open->isVisible());
    const QStringList presets = contents(bench.menuPresets());
    const QStringList actions = contents(bench.menuActions());
    const QList<QAction*> entries = bench.menuPresets()->actions();

    bench.activate(unsaved);
    QCoreApplication::processEvents();
    QCOMPARE(contents(bench.menuPresets()), presets);
    QCOMPARE(contents(bench.menuActions()), actions);
    QCOMPARE(bench.menuPresets()->actions(), entries);

    open->close();
    QTRY_COMPARE(contents(bench.menuPresets()).last(), QStringLiteral("*Custom*>"));
    QCOMPARE(contents(bench.menuActions()).size(), 3);
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Custom*"));

    // A menu that closes after no change is left alone.
    const QList<QAction*> rebuilt = bench.menuPresets()->actions();
    open->popup(QPoint(0, 0));
    open->close();
    QCoreApplication::processEvents();
    QCOMPARE(bench.menuPresets()->actions(), rebuilt);
}

void WidgetProfilesTest::aClickOnAnEntryTakesEffect()
{
    BarBench bench({ quiet });
    bench.activate(automatic());
    bench.show();
    QTimer look;
    int looks = 0;
    QObject::connect(&look, &QTimer::timeout, &look, [&bench, &looks] {
        if (!bench.menuPresets()->isVisible()) {
            return;
        }
        auto* const submenu = bench.presetMenu("Quiet");
        if (submenu->isVisible()) {
            clickOn(submenu, entryOf(submenu, "Apply"));
        } else if (looks++ == 0) {
            clickOn(bench.menuPresets(), submenu->menuAction());
        } else if (looks > 500) {
            bench.menuPresets()->close(); // it never came
        }
    });
    look.start(5);

    QTest::mouseClick(BarBench::inside(bench.buttonPresets()), Qt::LeftButton);

    QTRY_COMPARE(bench.buttonPresets()->text(), QStringLiteral("Quiet"));
    QVERIFY(bench.list.isActiveCustom());
    QVERIFY(!bench.menuPresets()->isVisible());
}

// Whatever follows may free the menus.
void WidgetProfilesTest::anEntryTakesEffectOnceItsMenuIsDone()
{
    const FanProfile states[] = { automatic(), quiet, unsaved };
    for (const FanProfile& active : states) {
        BarBench bench({ quiet, loud });
        bench.activate(active);
        QObject::disconnect(bench.bar, nullptr, &bench.list, nullptr);
        const QSignalSpy activated(bench.bar, &QWidgetProfiles::setActiveProfile);
        const QSignalSpy deleted(bench.bar, &QWidgetProfiles::deleteProfile);
        const auto effects = [&] { return activated.count() + deleted.count() + bench.asked; };

        int entries = 0;
        const QList<QMenu*> menus = bench.bar->findChildren<QMenu*>();
        for (const QMenu* const menu : menus) {
            const QList<QAction*> actions = menu->actions();
            for (QAction* const entry : actions) {
                if (entry->isEnabled() && !entry->isSeparator() && entry->menu() == nullptr) {
                    entry->trigger();
                    ++entries;
                }
            }
        }

        QVERIFY(entries > 2);
        QCOMPARE(effects(), 0);
        QTRY_COMPARE(effects(), entries);
    }
}

// The entry that was chosen goes while its own effect takes place.
void WidgetProfilesTest::presetsMayChangeWhileANameIsAskedFor()
{
    BarBench bench({ quiet, loud });
    bench.activate(automatic());
    bench.bar->setNameCallback([&bench](const QStringList&, const QString&) {
        bench.list.deleteProfile(quiet);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return QStringLiteral("Storm");
    });
    const QSignalSpy renamed(bench.bar, &QWidgetProfiles::renameProfile);

    entryOf(bench.presetMenu("Loud"), "Rename")->trigger();

    QTRY_COMPARE(renamed.count(), 1);
    QCOMPARE(bench.customNames(), QStringList(QStringLiteral("Storm")));
    QCOMPARE(contents(bench.menuPresets()).mid(5), QStringList(QStringLiteral("Storm>")));
}

void WidgetProfilesTest::submenusAreFreed()
{
    BarBench bench({ quiet, loud });
    bench.activate(automatic());
    const auto count = [&bench] { return bench.bar->findChildren<QObject*>().size(); };
    const int before = count();
    QCOMPARE(bench.bar->findChildren<QMenu*>().size(), 4);

    for (int round = 0; round < 5; ++round) {
        bench.activate(unsaved);
        bench.activate(automatic());
    }

    QCOMPARE(count(), before);
}

void WidgetProfilesTest::aChangeOfLanguageShowsEverywhere()
{
    BarBench bench({ quiet });
    bench.activate(automatic());
    m_texts->translate("<Presets><activePresetLabel>Aktiv:</activePresetLabel>"
                       "<presetAutomatic>Von selbst, wie es dem Rechner gefällt</presetAutomatic>"
                       "<presetMenuCustom>Eigene:</presetMenuCustom>"
                       "<presetMenuApply>Los</presetMenuApply>"
                       "<presetMenuCurrent>%1 gilt</presetMenuCurrent></Presets>");

    bench.bar->translate();

    const QString active = QStringLiteral("Von selbst, wie es dem Rechner gefällt");
    QCOMPARE(bench.bar->findChild<QLabel*>(QStringLiteral("labelActive"))->text(),
             QStringLiteral("Aktiv:"));
    QCOMPARE(bench.buttonPresets()->text(), active);
    QCOMPARE(bench.menuPresets()->title(), active + QStringLiteral(" gilt"));
    QCOMPARE(bench.buttonPresets()->width(),
             bench.buttonPresets()->fontMetrics().horizontalAdvance(active) + scaled(30));
    QCOMPARE(contents(bench.menuPresets()),
             QStringList({ QStringLiteral("(Predefined presets:)"), QLatin1Char('*') + active,
                           QStringLiteral("Full blast"), QStringLiteral("-"),
                           QStringLiteral("(Eigene:)"), QStringLiteral("Quiet>") }));
    QCOMPARE(contents(bench.presetMenu("Quiet")).first(), QStringLiteral("Los"));
}

void WidgetProfilesTest::aChangeOfLanguageBuildsNoMenus()
{
    BarBench bench;

    bench.bar->translate();

    QCOMPARE(bench.bar->findChild<QLabel*>(QStringLiteral("labelActive"))->text(),
             QStringLiteral("Active preset:"));
    QVERIFY(bench.menuPresets()->isEmpty());
    QVERIFY(!bench.buttonPresets()->isEnabled());
}

void WidgetProfilesTest::theButtonsHaveAccessibleNames()
{
    BarBench bench;
    bench.activate(unsaved);
    bench.list.saveUnsavedProfile(QStringLiteral("Day & %1"));

    QCOMPARE(BarBench::inside(bench.buttonPresets())->accessibleName(),
             QStringLiteral("Active preset: Day & %1"));
    QCOMPARE(BarBench::inside(bench.buttonActions())->accessibleName(),
             QStringLiteral("Preset - Day & %1"));
    QVERIFY(bench.bar->findChild<QLabel*>(QStringLiteral("labelActive"))->buddy()
            == bench.buttonPresets());
}

void WidgetProfilesTest::tabWalksInReadingOrder()
{
    BarBench bench;
    bench.activate(unsaved);
    bench.show();
    auto* const presets = BarBench::inside(bench.buttonPresets());
    auto* const actions = BarBench::inside(bench.buttonActions());
    presets->setFocus();

    QTest::keyClick(presets, Qt::Key_Tab);
    QVERIFY(actions->hasFocus());
    QTest::keyClick(actions, Qt::Key_Tab);
    QVERIFY(presets->hasFocus());
}

void WidgetProfilesTest::theBarIsMirroredForRightToLeft()
{
    BarBench bench;
    bench.activate(automatic());
    bench.window.setLayoutDirection(Qt::RightToLeft);
    bench.window.resize(800, 60);
    bench.show();

    const auto* const label = bench.bar->findChild<QLabel*>(QStringLiteral("labelActive"));
    QVERIFY(label->x() > bench.buttonPresets()->x());
    QVERIFY(bench.buttonPresets()->x() > bench.buttonActions()->x());
    // In the middle all the same.
    const int left = bench.buttonActions()->x();
    const int right = bench.bar->width() - label->geometry().right() - 1;
    QVERIFY(qAbs(left - right) <= 1);
}

void WidgetProfilesTest::theBarIsNoHigherThanItsButtons()
{
    BarBench bench;
    bench.activate(automatic());
    QCOMPARE(bench.bar->sizeHint().height(),
             qMax(bench.buttonPresets()->sizeHint().height(),
                  bench.buttonActions()->sizeHint().height()));
    QCOMPARE(BarBench::inside(bench.buttonActions())->styleSheet(),
             QStringLiteral("QPushButton { text-align: left; }"));
}

BRISORA_TEST_MAIN(WidgetProfilesTest, QApplication)

#include "test_qwidgetprofiles.moc"
