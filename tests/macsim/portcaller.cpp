// A program that speaks to the controller through the port driver, as programs
// inside a machine do: it loads the driver by its plain name and sleeps between
// its looks at the status. Its arguments are operations:
//
//     read KEY LENGTH      prints the value in hexadecimal digits
//     write KEY HEX
//     repeat-read KEY LENGTH SECONDS   reads without a break
//     status               prints the status, whatever it is
//     fork-status          the same from a child process
//
// It ends with 0, or with 1 at the first operation that fails.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Query = std::int32_t (*)();
using Write = void (*)(short, short);
using Read = short (*)(short);

Query isOpen = nullptr;
Write out = nullptr;
Read in = nullptr;

constexpr short dataPort = 0x300;
constexpr short commandPort = 0x304;

bool load()
{
    void* library = dlopen("libinpout32.so", RTLD_NOW);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return false;
    }
    isOpen = reinterpret_cast<Query>(dlsym(library, "IsInpOutDriverOpen"));
    out = reinterpret_cast<Write>(dlsym(library, "Out32"));
    in = reinterpret_cast<Read>(dlsym(library, "Inp32"));
    return isOpen != nullptr && out != nullptr && in != nullptr;
}

// Looks at the status after 1, 2, 4 ... milliseconds, up to half a second.
template <typename Test> bool waitFor(Test test)
{
    for (int delay = 1; delay <= 512; delay *= 2) {
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        if (test(in(commandPort)&0x0F)) {
            return true;
        }
    }
    return false;
}

bool send(short port, int byte)
{
    out(port, static_cast<short>(byte));
    return waitFor([&](int status) {
        if ((status & 0x06) == 0) {
            out(port, static_cast<short>(byte));
        }
        return (status & 0x06) == 0x04;
    });
}

bool start(int command, const std::string& key, int length)
{
    bool taken = send(commandPort, command);
    for (const char character : key) {
        taken = taken && send(dataPort, static_cast<unsigned char>(character));
    }
    return taken && send(dataPort, length);
}

bool readKey(const std::string& key, int length, bool print)
{
    if (!start(0x10, key, length)) {
        return false;
    }
    for (int index = 0; index < length; ++index) {
        if (!waitFor([](int status) { return status == 0x05; })) {
            return false;
        }
        const int byte = in(dataPort)&0xFF;
        if (print) {
            std::printf("%02X", static_cast<unsigned>(byte));
        }
    }
    if (print) {
        std::printf("\n");
    }
    return true;
}

bool writeKey(const std::string& key, const std::string& digits)
{
    if (!start(0x11, key, static_cast<int>(digits.size() / 2))) {
        return false;
    }
    for (std::size_t place = 0; place + 1 < digits.size(); place += 2) {
        if (!waitFor([](int status) { return status == 0x04; })) {
            return false;
        }
        out(dataPort, static_cast<short>(std::stoi(digits.substr(place, 2), nullptr, 16)));
    }
    return true;
}

bool repeatRead(const std::string& key, int length, int seconds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (std::chrono::steady_clock::now() < end) {
        if (!readKey(key, length, false)) {
            return false;
        }
        std::puts("read");
        std::fflush(stdout);
    }
    return true;
}

void printStatus()
{
    std::printf("open %d status %d\n", isOpen(), in(commandPort));
    std::fflush(stdout);
}

bool forkStatus()
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        printStatus();
        _exit(0);
    }
    int result = 0;
    return waitpid(child, &result, 0) == child && result == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    if (!load()) {
        return 1;
    }
    bool ok = true;
    for (int index = 1; ok && index < argc; ++index) {
        const std::string operation = argv[index];
        const auto next = [&] { return std::string(index + 1 < argc ? argv[++index] : ""); };
        if (operation == "read") {
            const std::string key = next();
            ok = readKey(key, std::atoi(next().c_str()), true);
        } else if (operation == "write") {
            const std::string key = next();
            ok = writeKey(key, next());
        } else if (operation == "repeat-read") {
            const std::string key = next();
            const int length = std::atoi(next().c_str());
            ok = repeatRead(key, length, std::atoi(next().c_str()));
        } else if (operation == "status") {
            printStatus();
        } else if (operation == "fork-status") {
            ok = forkStatus();
        } else {
            ok = false;
        }
    }
    return ok ? 0 : 1;
}
