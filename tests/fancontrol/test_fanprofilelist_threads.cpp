#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/fanprofilelist.h"
#include "tests/fancontrol/presetfixture.h"
#include "tests/support/testenvironment.h"

// The user changes presets while a control task reads them and falls back.
class TestFanProfileListThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readersSeeWholePresetsWhileTheUserChangesThem();
    void theListMayBeUsedWhenItsSignalArrives();
    void aFallbackNeverUndoesTheUsersChange();
};

namespace {

struct Presets {
    Presets()
        : settings(file.open())
        , list(*settings)
    {
        list.addPredefined({ FanControlMode::automatic(), FanControlMode::automatic() }, 0);
        list.loadCustom();
        list.loadActive();
    }

    SettingsFile file;
    std::unique_ptr<QSettingsCache> settings;
    QFanProfileList list;
};

} // namespace

void TestFanProfileListThreads::readersSeeWholePresetsWhileTheUserChangesThem()
{
    Presets presets;
    std::atomic<bool> stop { false };
    std::atomic<int> torn { 0 };
    std::atomic<int> reads { 0 };
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i) {
        readers.emplace_back([&] {
            while (!stop) {
                const FanProfile active = presets.list.activeProfile();
                const bool whole = active.isValid()
                    && (active.mode(0).isAutomatic()
                        || active.mode(0).rpm() == active.mode(1).rpm());
                torn += whole ? 0 : 1;
                static_cast<void>(presets.list.isUnsaved());
                static_cast<void>(presets.list.customProfiles());
                static_cast<void>(presets.list.takeForceWrite());
                ++reads;
            }
        });
    }

    unsigned round = 0;
    for (; round < 30 || (reads < 100 && round < 1000); ++round) {
        const unsigned rpm = 1000 + round % 7;
        const FanProfile state = constantPreset(rpm, rpm, "state");
        presets.list.setActiveProfile(state);
        presets.list.saveUnsavedProfile(QString::number(round % 5));
        presets.list.renameProfile(state, QStringLiteral("renamed"));
        presets.list.deleteProfile(state);
    }
    stop = true;
    for (std::thread& reader : readers) {
        reader.join();
    }

    QVERIFY(reads >= 100);
    QCOMPARE(torn.load(), 0);
}

void TestFanProfileListThreads::theListMayBeUsedWhenItsSignalArrives()
{
    Presets presets;
    int calls = 0;
    // With the lock held, each of these would wait for ever.
    connect(&presets.list, &QFanProfileList::profilesChanged, &presets.list,
            [&calls](QFanProfileList* list) {
                ++calls;
                static_cast<void>(list->activeProfile());
                list->save();
            });
    const FanProfile state = constantPreset(1, 2, "x");
    presets.list.setActiveProfile(state);
    presets.list.saveUnsavedProfile(QStringLiteral("a"));
    presets.list.renameProfile(state, QStringLiteral("b"));
    QVERIFY(presets.list.replaceActiveMode(0, FanControlMode::constant(1),
                                           FanControlMode::constant(5)));
    presets.list.deleteProfile(state);
    presets.list.loadActive();
    QCOMPARE(calls, 6);
}

void TestFanProfileListThreads::aFallbackNeverUndoesTheUsersChange()
{
    Presets presets;
    const FanControlMode followed = followMode("gone");
    constexpr int enough = 20;
    std::atomic<bool> stop { false };
    std::atomic<int> fallbacks { 0 };
    std::thread task([&] {
        while (!stop) {
            fallbacks
                += presets.list.replaceActiveMode(0, followed, FanControlMode::automatic()) ? 1 : 0;
        }
    });

    int undone = 0;
    for (unsigned round = 1; round <= 100 || (fallbacks < enough && round <= 20000); ++round) {
        presets.list.setActiveProfile(
            FanProfile({ followed, FanControlMode::automatic() }, QStringLiteral("x")));
        presets.list.setActiveProfile(constantPreset(round, round, "chosen"));
        undone += presets.list.activeProfile().mode(0).rpm() == round ? 0 : 1;
    }
    stop = true;
    task.join();

    QVERIFY(fallbacks >= enough);
    QCOMPARE(undone, 0);
}

BRISORA_TEST_MAIN(TestFanProfileListThreads, QCoreApplication)

#include "test_fanprofilelist_threads.moc"
