#include "core/widgets/widgethelpers.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/presets/barbench.h"

// What the bar shows.
class WidgetProfilesTest : public BarTest {
    Q_OBJECT

private Q_SLOTS:
    void bothButtonsStartDisabled();
    void withoutFansBothButtonsAreDisabled();
    void thePresetsAreListed_data();
    void thePresetsAreListed();
    void aPresetOffersWhatCanBeDoneWithIt();
    void thePresentStateOffersWhatCanBeDoneWithIt_data();
    void thePresentStateOffersWhatCanBeDoneWithIt();
    void theLaterOfTwoEqualPresetsIsTheActiveOne();
    void theButtonIsAsWideAsItsWidestPreset();
    void theButtonKeepsItsSizeBetweenPresets();
    void aLargerFontWidensTheButton();
    void namesAreShownToTheLetter_data();
    void namesAreShownToTheLetter();
    void aLongNameIsShortened();
    void aChangeOfLanguageShowsEverywhere();
    void aChangeOfLanguageBuildsNoMenus();
    void theButtonsHaveAccessibleNames();
    void tabWalksInReadingOrder();
    void theBarIsMirroredForRightToLeft();
    void theBarIsNoHigherThanItsButtons();
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

void WidgetProfilesTest::aChangeOfLanguageShowsEverywhere()
{
    BarBench bench({ quiet });
    bench.activate(automatic());
    texts().translate("<Presets><activePresetLabel>Aktiv:</activePresetLabel>"
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
