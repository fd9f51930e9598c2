#include <QCoreApplication>

#include "app/gpu/driver_library.h"
#include "app/gpu/provider_win.h"
#include "tests/gpu/installeddrivers.h"
#include "tests/support/testenvironment.h"

// The providers of this system with its own loader. The build runs each function
// with drivers of the tests' own where drivers are looked for, or without, and names
// what is found and the system's errors.
class TestDrivers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void driversAreFound();
    void missingFunctionIsNotFound();
    void withoutDriversTheNamesAreUsed();
    void missingLibraryLeavesAnErrorNumber();

private:
    QTemporaryDir m_root;
};

void TestDrivers::initTestCase()
{
    // This machine's own cards are out of sight.
    QVERIFY(m_root.isValid());
    qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root.path()));
}

void TestDrivers::driversAreFound()
{
    const InstalledDrivers drivers;
    const auto provider = GPU::ProviderWindows::create({ QStringLiteral("Intel") });

    QVERIFY(provider->discoverGPUs());

    QStringList found;
    for (int i = 0; i < provider->getCount(); ++i) {
        const GPU::Info* gpu = provider->getGpu(i);
        found.append(gpu->name + QLatin1Char(' ') + QString::number(provider->getTemperature(gpu)));
    }
    QCOMPARE(found.join(QLatin1String(", ")), QString::fromLatin1(FOUND_GPUS));
}

void TestDrivers::missingFunctionIsNotFound()
{
    const InstalledDrivers drivers;
    const auto library = GPU::makeDriverLibrary();
    QVERIFY(library->load(DRIVER_LIBRARY));
    QVERIFY(library->find(DRIVER_FUNCTION) != nullptr);
    QVERIFY(library->find("nothing_of_the_kind") == nullptr);
    QCOMPARE(library->lastError(), std::uint32_t { MISSING_FUNCTION_ERROR });
    library->unload();
}

void TestDrivers::withoutDriversTheNamesAreUsed()
{
    const auto provider = GPU::ProviderWindows::create({ QStringLiteral("Intel") });

    QVERIFY(provider->discoverGPUs());

    QCOMPARE(provider->getCount(), 1);
    QCOMPARE(provider->getGpu(0)->name, QStringLiteral("Intel"));
    QCOMPARE(provider->getTemperature(provider->getGpu(0)), 0.0);
}

void TestDrivers::missingLibraryLeavesAnErrorNumber()
{
    const auto library = GPU::makeDriverLibrary();
    QVERIFY(!library->load("nothing-of-the-kind.so.1"));
    QCOMPARE(library->lastError(), std::uint32_t { MISSING_LIBRARY_ERROR });
}

BRISORA_TEST_MAIN(TestDrivers, QCoreApplication)
#include "test_drivers.moc"
