#include <QCoreApplication>
#include <QElapsedTimer>

#include "app/smc/port_driver.h"
#include "tests/support/testenvironment.h"

// Run with the loader's path pointing to a port driver library; the library's
// kind is the environment variable PORT_LIBRARY: "whole", "without Out32" or
// "none". The build names the system's errors.
class TestPortDriver : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void libraryIsFoundByTheLoader();
    void functionsOfTheLibraryAreUsed();
    void functionThatIsMissingIsNotResolved();
    void missingLibraryLeavesAnErrorNumber();
    void sleepLastsAtLeastItsTime();

private:
    [[nodiscard]] static QByteArray library() { return qgetenv("PORT_LIBRARY"); }
};

void TestPortDriver::libraryIsFoundByTheLoader()
{
    const auto driver = SMC::makePortDriver();
    QCOMPARE(driver->load(), library() != "none");
}

void TestPortDriver::functionsOfTheLibraryAreUsed()
{
    if (library() != "whole") {
        QSKIP("needs the whole library");
    }
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
    if (library() != "without Out32") {
        QSKIP("needs the library without Out32");
    }
    const auto driver = SMC::makePortDriver();
    QVERIFY(driver->load());
    QVERIFY(driver->resolve(SMC::PortFunction::IsInpOutDriverOpen));
    QVERIFY(!driver->resolve(SMC::PortFunction::Out32));
    QCOMPARE(driver->lastError(), std::uint32_t { MISSING_FUNCTION_ERROR });
    driver->unload();
}

void TestPortDriver::missingLibraryLeavesAnErrorNumber()
{
    if (library() != "none") {
        QSKIP("needs a system without the library");
    }
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
