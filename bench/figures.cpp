#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QCoreApplication>

#include "app/fancontrol/fancontrolmode.h"
#include "app/fancontrol/sensorcontrol.h"
#include "app/settingskeys.h"
#include "app/smc/platform_win_inpout32.h"
#include "app/smc/service.h"
#include "tests/fancontrol/enginemachine.h"
#include "tests/smc/fakeportdriver.h"
#include "tests/support/allocationcounter.h"
#include "tests/support/fakesmcplatform.h"
#include "tests/support/manualclock.h"
#include "tests/support/testenvironment.h"

namespace {

void printPortWaits()
{
    auto driver = std::make_unique<FakePortDriver>();
    FakePortDriver& port = *driver;
    SMC::PlatformWinProviderInpOut32 transport(std::move(driver));
    port.ready = { 1 };
    if (!transport.open()) {
        std::puts("the port transport does not open");
        return;
    }
    port.calls.clear();
    port.statuses = { 4, 4, 4, 4, 4, 4, 5, 5 };
    std::array<std::uint8_t, 32> value {};
    const bool read = transport.readKey("F0Ac", value.data(), 2);
    int waits = 0;
    for (const QString& call : port.calls) {
        waits += call.startsWith(QLatin1String("sleep")) ? 1 : 0;
    }
    std::printf("reading a 2-byte key through the ports: %d waits (%s)\n", waits,
                read ? "read" : "failed");
}

void printTemperatureSearch(int keyCount, int temperatureKeys)
{
    auto platform = std::make_unique<FakeSmcPlatform>();
    FakeSmcPlatform& controller = *platform;
    // A third of the other keys before the temperatures, the rest behind them.
    const int others = keyCount - temperatureKeys;
    for (int index = 0; index < others; ++index) {
        char name[5];
        std::snprintf(name, sizeof name, "%c%03X", index < others / 3 ? 'B' : 'V',
                      static_cast<unsigned>(index) & 0xFFF);
        controller.setKey(name, "ui8 ", { 0 });
    }
    for (int index = 0; index < temperatureKeys; ++index) {
        char name[5];
        std::snprintf(name, sizeof name, "T%03X", static_cast<unsigned>(index) & 0xFFF);
        controller.setTemperature(name, 40.0);
    }
    SMC::Service service(std::move(platform));
    std::vector<std::string> keys;
    const bool found = service.open() && service.getTemperatureKeys(keys);
    const int bound = 2 * static_cast<int>(std::ceil(std::log2(keyCount)));
    std::printf(
        "finding %3zu temperatures among %4d keys: %3d entries read, at most %d + %d (%s)\n",
        keys.size(), keyCount, controller.indexCount(), bound, temperatureKeys,
        found ? "found" : "failed");
}

void printReads(const char* what, EngineMachine& machine)
{
    static_cast<void>(machine.takeReads());
    machine.tick();
    const QStringList reads = machine.takeReads();
    const std::set<QString> distinct(reads.begin(), reads.end());
    std::printf("%s: %d reads of %zu keys: %s\n", what, reads.size(), distinct.size(),
                qPrintable(reads.join(QLatin1Char(' '))));
}

void printPasses()
{
    EngineMachine machine;
    machine.settings.setString(SettingsKeys::traySensor, QStringLiteral("TG0P"));
    machine.load();
    machine.engine->setFanMode(0, FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70), false);
    machine.start();
    printReads("a pass while the window is shown", machine);
    machine.isVisible = false;
    machine.tick();
    printReads("a pass while it is hidden (tray sensor TG0P, fan 0 follows TC0P)", machine);
    static_cast<void>(machine.engine->stopAndWaitForFinished());
}

void printControl()
{
    constexpr int calls = 100000;
    ManualClock clock;
    SensorBasedControl_Simple control(QStringLiteral("Main"), clock);
    const FanSpeeds speeds { 3900, 2000, 6000 };
    const FanControlMode mode = FanControlMode::sensor(QStringLiteral("TC0P"), 40, 70);
    static_cast<void>(control.update(speeds, mode, 55));
    static_cast<void>(clock.takeReadCount());

    int mostClockReads = 0;
    const long before = allocationCount();
    const auto start = std::chrono::steady_clock::now();
    for (int call = 0; call < calls; ++call) {
        static_cast<void>(control.update(speeds, mode, 55));
        mostClockReads = std::max(mostClockReads, clock.takeReadCount());
    }
    const auto elapsed = std::chrono::steady_clock::now() - start;
    std::printf("a quiet call of the control algorithm: %.2f allocations, at most %d clock reads, "
                "%.0f ns\n",
                static_cast<double>(allocationCount() - before) / calls, mostClockReads,
                std::chrono::duration<double, std::nano>(elapsed).count() / calls);
}

} // namespace

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    const QCoreApplication application(argc, argv);
    EngineMachine::prepareProcess();

    printPortWaits();
    for (const auto& [keys, temperatures] :
         { std::pair { 250, 20 }, { 493, 58 }, { 916, 96 }, { 4000, 120 } }) {
        printTemperatureSearch(keys, temperatures);
    }
    printPasses();
    printControl();
    return 0;
}
