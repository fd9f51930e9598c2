// The service that touches the controller for programs without the privilege.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include <sys/signalfd.h>
#include <sys/stat.h>

#include "smcd/applesmccontroller.h"
#include "smcd/door.h"
#include "smcd/options.h"
#include "smcd/portcontroller.h"
#include "smcd/server.h"

namespace {

// What a restart doesn't mend.
constexpr int usageFailure = 2;
constexpr int doorFailure = 3;

void tell(const std::string& line) { std::fprintf(stderr, "smcd: %s\n", line.c_str()); }

int fail(const std::string& line, int code)
{
    tell(line);
    return code;
}

// The kernel's driver where it is loaded, since it has the ports then.
std::unique_ptr<smcd::Controller> findController(const std::filesystem::path& sysroot,
                                                 std::string& reason)
{
    if (const auto folder = smcd::AppleSmcController::findFolder(sysroot)) {
        return std::make_unique<smcd::AppleSmcController>(smcd::makeAttributeFiles(*folder));
    }
    return smcd::PortController::open(SMC::makePortDriver(), reason);
}

// Becomes readable with the first signal that asks for the end.
smcd::Descriptor endSignals()
{
    sigset_t signals {};
    ::sigemptyset(&signals);
    for (const int number : { SIGTERM, SIGINT, SIGHUP }) {
        ::sigaddset(&signals, number);
    }
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    return smcd::Descriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
}

int run(const smcd::Options& options)
{
    const char* const root = std::getenv("BRISORA_SYSROOT");
    const std::string sysroot = root != nullptr ? root : "";
    const std::filesystem::path socket = sysroot + std::string(smcd::protocol::socketPath);
    const smcd::Descriptor stop = endSignals();
    const auto group = smcd::groupNamed(options.group);
    if (!group) {
        tell("There is no group " + options.group + ": root alone is served");
    }

    std::string error;
    const auto door = options.isForeground
        ? smcd::makeDoor(socket.parent_path(), socket.filename().string(), group, error)
        : smcd::doorFromSystem(socket.parent_path(), error);
    if (!door) {
        return fail(error, doorFailure);
    }
    smcd::ForcedFansFile note(socket.parent_path() / "forced-fans");
    smcd::Service service(
        [&sysroot](std::string& reason) { return findController(sysroot, reason); }, note, tell);
    service.start();
    smcd::Server server(service, door->listener.get(), stop.get(), group);
    const bool isDone = server.run();
    if (options.isForeground) {
        std::error_code ignored;
        std::filesystem::remove(socket, ignored);
    }
    return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char* argv[])
{
    ::umask(S_IRWXG | S_IRWXO);
    std::string error;
    const auto arguments = std::span<const char* const>(argv, static_cast<std::size_t>(argc));
    const auto options = smcd::Options::parse(arguments.subspan(argc > 0 ? 1 : 0), error);
    if (!options) {
        return fail(error, usageFailure);
    }
    if (options->wantsHelp) {
        std::fputs(smcd::Options::help().c_str(), stdout);
        return EXIT_SUCCESS;
    }
    return run(*options);
}
