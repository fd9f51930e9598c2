#include <QCoreApplication>
#include <QSignalSpy>

#include "app/gpu/provider_win.h"
#include "app/gpu/provider_win_wmi.h"
#include "tests/gpu/fakegpuprovider.h"
#include "tests/support/testenvironment.h"

namespace {

// A facade over fakes, which it owns.
struct Bench {
    FakeGpuProvider* amd = nullptr;
    FakeGpuProvider* nvidia = nullptr;
    FakeGpuProvider* names = nullptr;
    std::unique_ptr<GPU::ProviderWindows> provider;

    Bench()
    {
        provider = std::make_unique<GPU::ProviderWindows>(make(amd), make(nvidia), make(names));
    }

    static std::unique_ptr<GPU::Provider> make(FakeGpuProvider*& fake)
    {
        auto made = std::make_unique<FakeGpuProvider>();
        fake = made.get();
        return made;
    }

    [[nodiscard]] QStringList found() const
    {
        QStringList result;
        for (int i = 0; i < provider->getCount(); ++i) {
            result.append(provider->getGpu(i)->name);
        }
        return result;
    }
};

const QString radeon = QStringLiteral("Radeon");
const QString geForce = QStringLiteral("GeForce");
const QString intel = QStringLiteral("Intel");

} // namespace

class TestProviderWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void gpusOfDriversComeBeforeNames_data();
    void gpusOfDriversComeBeforeNames();
    void machineWithoutGpusHasNone();
    void indexesBeyondTheListAreNull();
    void knownGpusAreNotLookedForAgain();
    void clearedListIsFilledAnew();
    void temperatureIsThatOfTheGpusOwnProvider();
    void reloadIsPassedOn();
    void providersBelongToTheFacade();
    void namesBecomeGpusWithoutTemperature();
    void noNamesAreNoGpus();
};

void TestProviderWindows::gpusOfDriversComeBeforeNames_data()
{
    QTest::addColumn<QStringList>("amd");
    QTest::addColumn<QStringList>("nvidia");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("found");
    QTest::newRow("all") << QStringList { radeon, radeon + intel } << QStringList { geForce }
                         << QStringList { intel }
                         << QStringList { radeon, radeon + intel, geForce };
    QTest::newRow("AMD") << QStringList { radeon } << QStringList() << QStringList { intel }
                         << QStringList { radeon };
    QTest::newRow("NVIDIA") << QStringList() << QStringList { geForce } << QStringList { intel }
                            << QStringList { geForce };
    QTest::newRow("names") << QStringList() << QStringList() << QStringList { intel, radeon }
                           << QStringList { intel, radeon };
}

void TestProviderWindows::gpusOfDriversComeBeforeNames()
{
    QFETCH(QStringList, amd);
    QFETCH(QStringList, nvidia);
    QFETCH(QStringList, names);
    Bench bench;
    const auto fill = [](FakeGpuProvider& fake, const QStringList& gpus) {
        for (const QString& gpu : gpus) {
            fake.machine.push_back({ gpu });
        }
    };
    fill(*bench.amd, amd);
    fill(*bench.nvidia, nvidia);
    fill(*bench.names, names);

    QVERIFY(bench.provider->discoverGPUs());

    QTEST(bench.found(), "found");
    QCOMPARE(bench.names->discoveries, amd.isEmpty() && nvidia.isEmpty() ? 1 : 0);
}

void TestProviderWindows::machineWithoutGpusHasNone()
{
    const Bench bench;
    QVERIFY(!bench.provider->discoverGPUs());
    QCOMPARE(bench.provider->getCount(), 0);
    QVERIFY(bench.provider->getGpu(0) == nullptr);
}

void TestProviderWindows::indexesBeyondTheListAreNull()
{
    const Bench bench;
    bench.amd->machine = { { radeon } };
    bench.nvidia->machine = { { geForce } };
    QVERIFY(bench.provider->discoverGPUs());

    QVERIFY(bench.provider->getGpu(1) != nullptr);
    QVERIFY(bench.provider->getGpu(2) == nullptr);
    QVERIFY(bench.provider->getGpu(-1) == nullptr);
}

void TestProviderWindows::knownGpusAreNotLookedForAgain()
{
    const Bench bench;
    bench.names->machine = { { intel } };
    QVERIFY(bench.provider->discoverGPUs());
    bench.amd->machine = { { radeon } };

    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.found(), QStringList { intel });
    QCOMPARE(bench.amd->discoveries, 1);
}

void TestProviderWindows::clearedListIsFilledAnew()
{
    const Bench bench;
    bench.names->machine = { { intel } };
    QVERIFY(bench.provider->discoverGPUs());
    bench.amd->machine = { { radeon } };

    bench.provider->clear();
    QCOMPARE(bench.provider->getCount(), 0);
    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.found(), QStringList { radeon });
    for (const FakeGpuProvider* fake : { bench.amd, bench.nvidia, bench.names }) {
        QCOMPARE(fake->clears, 1);
    }
}

void TestProviderWindows::temperatureIsThatOfTheGpusOwnProvider()
{
    const Bench bench;
    bench.amd->machine = { { radeon, 50.5 } };
    bench.nvidia->machine = { { geForce, 60.0 } };
    QVERIFY(bench.provider->discoverGPUs());

    QCOMPARE(bench.provider->getTemperature(bench.provider->getGpu(0)), 50.5);
    QCOMPARE(bench.provider->getTemperature(bench.provider->getGpu(1)), 60.0);
    QCOMPARE(bench.provider->getTemperature(nullptr), 0.0);
    QCOMPARE(bench.amd->reads, 1);
    QCOMPARE(bench.nvidia->reads, 1);
}

void TestProviderWindows::reloadIsPassedOn()
{
    const Bench bench;
    QSignalSpy spy(bench.provider.get(), &GPU::Provider::gpuListReloadRequired);

    Q_EMIT bench.nvidia->gpuListReloadRequired();

    QCOMPARE(spy.size(), 1);
}

void TestProviderWindows::providersBelongToTheFacade()
{
    Bench bench;
    QSignalSpy spy(bench.amd, &QObject::destroyed);
    QCOMPARE(bench.amd->parent(), bench.provider.get());

    bench.provider.reset();

    QCOMPARE(spy.size(), 1);
}

void TestProviderWindows::namesBecomeGpusWithoutTemperature()
{
    GPU::ProviderWindowsWMI provider({ intel, radeon });

    QVERIFY(provider.discoverGPUs());

    QCOMPARE(provider.getCount(), 2);
    QCOMPARE(provider.getGpu(0)->name, intel);
    QCOMPARE(provider.getGpu(1)->name, radeon);
    QCOMPARE(provider.getGpu(1)->provider, &provider);
    QVERIFY(provider.getGpu(1)->handle == nullptr);
    QVERIFY(!provider.getGpu(1)->noSmcMatch);
    QCOMPARE(provider.getTemperature(provider.getGpu(1)), 0.0);
}

void TestProviderWindows::noNamesAreNoGpus()
{
    GPU::ProviderWindowsWMI provider({});
    QVERIFY(!provider.discoverGPUs());
    QCOMPARE(provider.getCount(), 0);
}

BRISORA_TEST_MAIN(TestProviderWindows, QCoreApplication)
#include "test_provider_win.moc"
