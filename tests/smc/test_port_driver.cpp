#include <QCoreApplication>
#include <QElapsedTimer>

#include "app/smc/port_driver.h"
#include "tests/support/testenvironment.h"

// The build runs each function with the loader's path pointing to the library that
// it is about, or to none, and names the system's errors.
class TestPortDriver : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void functionsOfTheLibraryAreUsed();
    void functionThatIsMissingIsNotResolved();
    void missingLibraryLeavesAnErrorNumber();
    void sleepLastsAtLeastItsTime();
};

void TestPortDriver::functionsOfTheLibraryAreUsed()
{
    const auto driver = SMC::makePortDriver();
    QVERIFY(driver->load());
    QVERIFY(driver->resolve(SMC::PortFunction::IsInpOutDriverOpen));
    QVERIFY(driver->resolve(SMC::PortFunction::Out32));
    QVERIFY(driver->resolve(SMC::PortFunction::Inp32));
    QCOMPARE(driver->isInpOutDriverOpen(), 7U);
    driver->out32(0x300, 0x5A);
    driver->out32(0x304, 0xFF);
    QCOMPARE(static_cast<int>(driver->inp32(0x300)), 0x5A);
    QCOMPARE(static_cast<int>(driver->inp32(0x304)), 0xFF);
    driver->unload();
}

void TestPortDriver::functionThatIsMissingIsNotResolved()
{
    const auto driver = SMC::makePortDriver();
    QVERIFY(driver->load());
    QVERIFY(driver->resolve(SMC::PortFunction::IsInpOutDriverOpen));
    QVERIFY(!driver->resolve(SMC::PortFunction::Out32));
    QCOMPARE(driver->lastError(), std::uint32_t { MISSING_FUNCTION_ERROR });
    driver->unload();
}

void TestPortDriver::missingLibraryLeavesAnErrorNumber()
{
    const auto driver = SMC::makePortDriver();
    QVERIFY(!driver->load());
    QCOMPARE(driver->lastError(), std::uint32_t { MISSING_LIBRARY_ERROR });
    const std::string named = REFUSAL_NAMES;
    QVERIFY(driver->refusal().find(named) != std::string::npos);
    QCOMPARE(driver->refusal().empty(), named.empty());
}

void TestPortDriver::sleepLastsAtLeastItsTime()
{
    const auto driver = SMC::makePortDriver();
    QElapsedTimer timer;
    timer.start();
    driver->sleep(20);
    QVERIFY(timer.elapsed() >= 20);
}

BRISORA_TEST_MAIN(TestPortDriver, QCoreApplication)

#include "test_port_driver.moc"
