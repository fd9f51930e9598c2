// The first and only program of a virtual machine: meets the controller that
// QEMU offers on the two ports, through the port driver and the byte exchange,
// and says on the console how it went. Linked statically, without Qt.

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/mount.h>
#include <sys/reboot.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/smc/port_protocol.h"
#include "inpout32/inpout32.h"

using SMC::PortProtocol;
using SMC::PortResult;

namespace {

int failures = 0;

void check(bool condition, const std::string& what)
{
    std::printf("vm-test: %s %s\n", condition ? "ok  " : "FAIL", what.c_str());
    failures += condition ? 0 : 1;
}

std::string hex(const std::vector<std::uint8_t>& bytes)
{
    std::string text;
    char digits[4] = {};
    for (const std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02X ", byte);
        text += digits;
    }
    return text.empty() ? text : text.substr(0, text.size() - 1);
}

// The port driver's ports, with a record of the bytes that went out and of the
// tests of the status.
class DriverPorts final : public SMC::PortAccess {
public:
    void out32(std::uint16_t port, std::uint16_t value) override
    {
        sent.push_back(static_cast<std::uint8_t>(value & 0xFF));
        Out32(static_cast<short>(port), static_cast<short>(value));
    }

    std::uint16_t inp32(std::uint16_t port) override
    {
        return static_cast<std::uint16_t>(Inp32(static_cast<short>(port)));
    }

    void sleep(std::uint32_t milliseconds) override
    {
        ++sleeps;
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }

    std::vector<std::uint8_t> sent;
    int sleeps = 0;
};

void expectValue(const char* key, const std::vector<std::uint8_t>& expected)
{
    DriverPorts ports;
    PortProtocol protocol(ports);
    std::vector<std::uint8_t> value(expected.size(), 0xEE);
    const PortResult result
        = protocol.readKey(key, value.data(), static_cast<std::uint8_t>(value.size()));
    check(result == PortResult::Done && value == expected,
          std::string(key) + " reads " + hex(value));
    check(ports.sleeps == 6 + static_cast<int>(expected.size()), "without a byte lost or late");
}

void expectOneByte(const char* key)
{
    DriverPorts ports;
    PortProtocol protocol(ports);
    std::uint8_t value = 0;
    const PortResult result = protocol.readKey(key, &value, 1);
    check(result == PortResult::Done, std::string(key) + " reads one byte, " + hex({ value }));
}

void expectUnknownKey(const char* key)
{
    constexpr std::uint8_t length = 2;

    DriverPorts ports;
    PortProtocol protocol(ports);
    std::uint8_t value[length] = {};
    const PortResult result = protocol.readKey(key, value, length);
    check(result == PortResult::ByteLost && ports.sent.back() == length,
          std::string(key) + " refuses the length byte");
    std::printf("vm-test:      bytes sent: %s\n", hex(ports.sent).c_str());
}

void expectAccessInAnotherThread()
{
    std::thread([] { expectValue("REV ", { 0x01, 0x13, 0x0F, 0x00, 0x00, 0x03 }); }).join();
}

// A process without the privilege gets neither permission nor bytes.
void expectRefusalWithoutPrivilege()
{
    constexpr uid_t nobody = 65534;

    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const bool refused = setuid(nobody) == 0 && IsInpOutDriverOpen() == 0 && Inp32(0x304) == 0;
        _exit(refused ? 0 : 1);
    }
    int status = 1;
    check(child > 0 && waitpid(child, &status, 0) == child && status == 0,
          "a process without the privilege is refused");
}

// What the kernel lists at the controller's ports; for the reader of a failure.
void printPortTable()
{
    std::ifstream table("/proc/ioports");
    std::string line;
    while (std::getline(table, line)) {
        if (line.find("03") != std::string::npos) {
            std::printf("vm-test:      %s\n", line.c_str());
        }
    }
}

} // namespace

int main()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    mkdir("/proc", 0755);
    mkdir("/sys", 0755);
    check(mount("proc", "/proc", "proc", 0, nullptr) == 0
              && mount("sysfs", "/sys", "sysfs", 0, nullptr) == 0,
          "the machine is up");
    printPortTable();

    check(IsInpOutDriverOpen() == 1, "the port driver opens");
    expectValue("REV ", { 0x01, 0x13, 0x0F, 0x00, 0x00, 0x03 });
    expectOneByte("NATJ");
    expectOneByte("MSSP");
    expectUnknownKey("XXXX");
    // A command begins a new exchange, whatever came before.
    expectValue("REV ", { 0x01, 0x13, 0x0F, 0x00, 0x00, 0x03 });
    expectAccessInAnotherThread();
    expectRefusalWithoutPrivilege();

    std::printf("vm-test: %s\n", failures == 0 ? "PASSED" : "FAILED");
    std::fflush(stdout);
    sync();
    reboot(RB_AUTOBOOT);
    return EXIT_FAILURE;
}
