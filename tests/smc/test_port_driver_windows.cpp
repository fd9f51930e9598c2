#include <windows.h>

#include <QCoreApplication>
#include <QtTest>

#include "app/smc/port_driver_windows.h"
#include "tests/smc/portlibrary/processinformation_windows.h"
#include "tests/support/testenvironment.h"

// The loader's path points to the tests' own library, which plays the system's as
// well where a test says so.
class PortDriverWindowsTest : public QObject {
    Q_OBJECT

private:
    // What the library has been told so far; it keeps that while it is loaded.
    static ProcessInformation received()
    {
        const auto address = reinterpret_cast<void (*)()>(
            GetProcAddress(GetModuleHandleW(L"inpout32.dll"), "receivedProcessInformation"));
        return *reinterpret_cast<const ProcessInformation* (*)()>(address)();
    }

private Q_SLOTS:
    void theTimerStaysFineWhileWindowsAreHidden()
    {
        const auto driver = SMC::makePortDriver(L"inpout32.dll");
        QVERIFY(driver->load());

        const ProcessInformation information = received();
        driver->unload();

        QCOMPARE(information.calls, 1);
        QCOMPARE(information.process, GetCurrentProcess());
        QCOMPARE(information.informationClass, static_cast<int>(ProcessPowerThrottling));
        QCOMPARE(information.size, unsigned { sizeof(PROCESS_POWER_THROTTLING_STATE) });
        QCOMPARE(information.powerThrottling.version, 1U);
        QCOMPARE(information.powerThrottling.controlMask,
                 unsigned { PROCESS_POWER_THROTTLING_IGNORE_TIMER_RESOLUTION });
        QCOMPARE(information.powerThrottling.stateMask, 0U);
    }

    void aSystemWithoutTheFunctionIsLeftAlone()
    {
        const auto driver = SMC::makePortDriver(L"user32.dll");

        QVERIFY(driver->load());

        QCOMPARE(received().calls, 0);
        QVERIFY(driver->resolve(SMC::PortFunction::Out32));
        driver->unload();
    }
};

BRISORA_TEST_MAIN(PortDriverWindowsTest, QCoreApplication)
#include "test_port_driver_windows.moc"
