// The system calls with which programs reach drives, in the way of the C library.
// Device files of the simulated machine lead to the simulator, and the list of
// mounted file systems is the machine's. All other calls are passed on.

#include <array>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "macsim/driveface/simulateddevice_linux.h"

#define DRIVEFACE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

using Path = std::array<char, PATH_MAX>;

// The C library's function of this name.
template <typename Function> Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

const char* machineRoot()
{
    const char* root = std::getenv("BRISORA_SYSROOT");
    return root != nullptr && *root != '\0' ? root : nullptr;
}

// The rest of the path after the prefix, or null.
const char* after(const char* prefix, const char* path)
{
    const std::size_t length = std::strlen(prefix);
    return std::strncmp(path, prefix, length) == 0 ? path + length : nullptr;
}

// The name of the device in the machine's folder that the path leads to, or null.
const char* deviceName(const char* root, const char* path)
{
    const char* const inside = after(root, path);
    const char* const name = inside != nullptr ? after("/dev/", inside) : nullptr;
    return name != nullptr && *name != '\0' && std::strchr(name, '/') == nullptr ? name : nullptr;
}

// What is to be opened in the path's stead, in buffer if need be. Null, with errno,
// when it can't be opened.
const char* redirected(const char* path, Path& buffer)
{
    const char* const root = machineRoot();
    if (root == nullptr || path == nullptr) {
        return path;
    }
    if (std::strcmp(path, "/proc/self/mountinfo") == 0) {
        const int length = std::snprintf(buffer.data(), buffer.size(), "%s%s", root, path);
        return length > 0 && static_cast<std::size_t>(length) < buffer.size() ? buffer.data()
                                                                              : path;
    }
    const char* const name = deviceName(root, path);
    // Everything else in that folder is a file like others.
    if (name != nullptr && std::strncmp(name, "sd", 2) == 0) {
        if (const int error = macsim::SimulatedDevice(name).open(); error != 0) {
            errno = error;
            return nullptr;
        }
    }
    return path;
}

// The path of the open file; false when it has none.
bool pathOf(int descriptor, Path& path)
{
    std::array<char, 64> link {};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", descriptor);
    const ssize_t length = ::readlink(link.data(), path.data(), path.size() - 1);
    if (length <= 0) {
        return false;
    }
    path[static_cast<std::size_t>(length)] = '\0';
    return true;
}

// Done by the simulator; false when the descriptor is no drive of the machine.
bool executeOnDrive(int descriptor, sg_io_hdr_t& header, int& error)
{
    Path root {};
    Path path {};
    if (machineRoot() == nullptr || ::realpath(machineRoot(), root.data()) == nullptr
        || !pathOf(descriptor, path)) {
        return false;
    }
    // A device that is gone stays open.
    if (char* const mark = std::strstr(path.data(), " (deleted)"); mark != nullptr) {
        *mark = '\0';
    }
    const char* const name = deviceName(root.data(), path.data());
    if (name == nullptr) {
        return false;
    }
    error = macsim::SimulatedDevice(name).execute(header);
    return true;
}

bool needsMode(int flags) { return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE; }

// The optional argument of the functions that open, read as they do.
mode_t modeFrom(int flags, std::va_list arguments)
{
    return needsMode(flags) ? va_arg(arguments, mode_t) : 0;
}

using Open = int(const char*, int, ...);
using OpenAt = int(int, const char*, int, ...);
using Ioctl = int(int, unsigned long, ...);

int openWith(const char* function, const char* path, int flags, mode_t mode)
{
    Path buffer {};
    const char* const target = redirected(path, buffer);
    return path != nullptr && target == nullptr ? -1 : next<Open>(function)(target, flags, mode);
}

int openAtWith(const char* function, int folder, const char* path, int flags, mode_t mode)
{
    Path buffer {};
    const char* const target = redirected(path, buffer);
    return path != nullptr && target == nullptr
        ? -1
        : next<OpenAt>(function)(folder, target, flags, mode);
}

} // namespace

DRIVEFACE_EXPORT int open(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openWith("open", path, flags, mode);
}

DRIVEFACE_EXPORT int open64(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openWith("open64", path, flags, mode);
}

DRIVEFACE_EXPORT int openat(int folder, const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openAtWith("openat", folder, path, flags, mode);
}

DRIVEFACE_EXPORT int openat64(int folder, const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openAtWith("openat64", folder, path, flags, mode);
}

DRIVEFACE_EXPORT int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    std::va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    int error = 0;
    if (request == SG_IO && argument != nullptr
        && executeOnDrive(descriptor, *static_cast<sg_io_hdr_t*>(argument), error)) {
        errno = error;
        return error == 0 ? 0 : -1;
    }
    return next<Ioctl>("ioctl")(descriptor, request, argument);
}
