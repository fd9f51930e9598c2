#include "tests/support/testenvironment.h"
#include "tests/ui/presets/barbench.h"

// Its menus while they are open, and what becomes of them.
class ProfileMenusTest : public BarTest {
    Q_OBJECT

private Q_SLOTS:
    void anOpenMenuStaysAsItIs_data();
    void anOpenMenuStaysAsItIs();
    void aClickOnAnEntryTakesEffect();
    void anEntryTakesEffectOnceItsMenuIsDone();
    void presetsMayChangeWhileANameIsAskedFor();
    void submenusAreFreed();
};

void ProfileMenusTest::anOpenMenuStaysAsItIs_data()
{
    QTest::addColumn<QString>("menu");
    QTest::newRow("the presets") << QStringLiteral("menuPresets");
    QTest::newRow("the actions") << QStringLiteral("menuActions");
}

void ProfileMenusTest::anOpenMenuStaysAsItIs()
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

void ProfileMenusTest::aClickOnAnEntryTakesEffect()
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
void ProfileMenusTest::anEntryTakesEffectOnceItsMenuIsDone()
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
void ProfileMenusTest::presetsMayChangeWhileANameIsAskedFor()
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

void ProfileMenusTest::submenusAreFreed()
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

BRISORA_TEST_MAIN(ProfileMenusTest, QApplication)

#include "test_qwidgetprofiles_menus.moc"
