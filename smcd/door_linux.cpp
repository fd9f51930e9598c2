#include "smcd/door.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace smcd {

namespace {

constexpr int firstHandedDescriptor = 3;
constexpr int queueLength = 16;
constexpr mode_t socketMode = 0660;
constexpr mode_t lockMode = 0600;
constexpr mode_t folderMode = 0755;

std::string reason(const std::string& what) { return what + ": " + std::strerror(errno); }

int option(int socket, int name)
{
    int value = -1;
    socklen_t size = sizeof(value);
    return ::getsockopt(socket, SOL_SOCKET, name, &value, &size) == 0 ? value : -1;
}

bool isOwnNumber(const char* text) { return text != nullptr && text == std::to_string(::getpid()); }

std::optional<Descriptor> lockFolder(const std::filesystem::path& folder, std::string& error)
{
    std::error_code failure;
    if (std::filesystem::create_directories(folder, failure)) {
        ::chmod(folder.c_str(), folderMode);
    }
    const std::filesystem::path path = folder / "lock";
    Descriptor lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, lockMode));
    if (!lock.isOpen()) {
        error = reason(path.string());
        return std::nullopt;
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        error = "Another one runs already";
        return std::nullopt;
    }
    return lock;
}

} // namespace

std::optional<Door> doorFromSystem(const std::filesystem::path& folder, std::string& error)
{
    const char* const count = std::getenv("LISTEN_FDS");
    const bool isHanded = isOwnNumber(std::getenv("LISTEN_PID")) && count != nullptr
        && std::strcmp(count, "1") == 0;
    const bool isUsable = isHanded && option(firstHandedDescriptor, SO_ACCEPTCONN) == 1
        && option(firstHandedDescriptor, SO_DOMAIN) == AF_UNIX
        && option(firstHandedDescriptor, SO_TYPE) == SOCK_SEQPACKET;
    if (!isUsable) {
        error = "The system hands over no socket; --foreground makes one";
        return std::nullopt;
    }
    Door door { Descriptor(firstHandedDescriptor), Descriptor() };
    ::fcntl(firstHandedDescriptor, F_SETFD, FD_CLOEXEC);
    ::fcntl(firstHandedDescriptor, F_SETFL, ::fcntl(firstHandedDescriptor, F_GETFL) | O_NONBLOCK);
    ::unsetenv("LISTEN_PID");
    ::unsetenv("LISTEN_FDS");
    auto lock = lockFolder(folder, error);
    if (!lock) {
        return std::nullopt;
    }
    door.lock = std::move(*lock);
    return door;
}

std::optional<Door> makeDoor(const std::filesystem::path& folder, const std::string& name,
                             std::optional<std::uint32_t> group, std::string& error)
{
    auto lock = lockFolder(folder, error);
    if (!lock) {
        return std::nullopt;
    }
    const std::string path = (folder / name).string();
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) {
        error = path + " is too long for a socket's path";
        return std::nullopt;
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    ::unlink(path.c_str());
    Door door { Descriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
                std::move(*lock) };
    const auto* const place = static_cast<const sockaddr*>(static_cast<const void*>(&address));
    const auto owner = static_cast<uid_t>(-1); // stays
    const bool isMade = door.listener.isOpen()
        && ::bind(door.listener.get(), place, sizeof(address)) == 0
        && (!group || ::chown(path.c_str(), owner, *group) == 0)
        && ::chmod(path.c_str(), socketMode) == 0
        && ::listen(door.listener.get(), queueLength) == 0;
    if (!isMade) {
        error = reason(path);
        return std::nullopt;
    }
    return door;
}

} // namespace smcd
