#include "tests/support/testenvironment.h"
#include "tests/ui/presets/barbench.h"

// What the entries of its menus do.
class ProfileCommandsTest : public BarTest {
    Q_OBJECT

private Q_SLOTS:
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
};

void ProfileCommandsTest::choosingAPredefinedPresetActivatesIt()
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

void ProfileCommandsTest::choosingTheActivePresetKeepsItsMark()
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

void ProfileCommandsTest::applyingACustomPresetActivatesIt()
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

void ProfileCommandsTest::deletingAPresetAsksForItsRemoval_data()
{
    QTest::addColumn<bool>("fromActions");
    QTest::newRow("in the list") << false;
    QTest::newRow("as the active one") << true;
}

void ProfileCommandsTest::deletingAPresetAsksForItsRemoval()
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

void ProfileCommandsTest::renamingAPresetAsksForItsNewName_data()
{
    QTest::addColumn<bool>("fromActions");
    QTest::newRow("in the list") << false;
    QTest::newRow("as the active one") << true;
}

void ProfileCommandsTest::renamingAPresetAsksForItsNewName()
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

void ProfileCommandsTest::aCancelledRenameEmitsNothing()
{
    BarBench bench({ quiet });
    bench.activate(quiet);
    const QSignalSpy renamed(bench.bar, &QWidgetProfiles::renameProfile);

    bench.bar->slotRename(quiet);

    QCOMPARE(bench.asked, 1);
    QCOMPARE(renamed.count(), 0);
}

void ProfileCommandsTest::aNewPresetIsExplained()
{
    BarBench bench;
    bench.activate(fullBlast);
    const QSignalSpy explained(bench.bar, &QWidgetProfiles::showCreateNewPresetMessage);

    entryOf(bench.menuPresets(), "New...")->trigger();

    QTRY_COMPARE(explained.count(), 1);
    QCOMPARE(bench.asked, 0);
}

void ProfileCommandsTest::savingAsksForAName()
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

void ProfileCommandsTest::savingUnderAnExistingNameOverwrites()
{
    BarBench bench({ quiet });
    bench.activate(unsaved);
    bench.answer = QStringLiteral("Quiet");

    bench.bar->slotSave();

    QCOMPARE(bench.customNames(), QStringList(QStringLiteral("Quiet")));
    QVERIFY(bench.list.customProfiles()[0].hasSameModes(unsaved));
    QCOMPARE(bench.buttonPresets()->text(), QStringLiteral("Quiet"));
}

void ProfileCommandsTest::aCancelledSaveEmitsNothing()
{
    BarBench bench;
    bench.activate(unsaved);
    const QSignalSpy saved(bench.bar, &QWidgetProfiles::saveUnsavedProfile);

    bench.bar->slotSave();

    QCOMPARE(bench.asked, 1);
    QCOMPARE(saved.count(), 0);
    QVERIFY(bench.list.isUnsaved());
}

void ProfileCommandsTest::discardingGoesBackToAutomatic()
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

void ProfileCommandsTest::withoutACallbackANameCannotBeAskedFor()
{
    BarBench bench({ quiet });
    bench.bar->setNameCallback({});
    QVERIFY_EXCEPTION_THROWN(bench.bar->slotSave(), std::bad_function_call);
    QVERIFY_EXCEPTION_THROWN(bench.bar->slotRename(quiet), std::bad_function_call);
}

void ProfileCommandsTest::saveHasAShortcutWhileThereIsSomethingToSave()
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

BRISORA_TEST_MAIN(ProfileCommandsTest, QApplication)

#include "test_qwidgetprofiles_commands.moc"
