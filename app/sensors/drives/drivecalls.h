#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include <QByteArray>

// A command for the kernel's SCSI layer.
struct ScsiCommand {
    std::array<std::uint8_t, 16> bytes {};
    std::span<std::uint8_t> data; // what is read goes there; empty for a command that reads nothing
    std::uint32_t timeout = 0; // milliseconds
};

// What became of a command.
struct ScsiOutcome {
    int error = 0; // errno: the kernel didn't take it; the rest then says nothing
    std::uint8_t status = 0; // of the drive
    std::uint16_t hostStatus = 0; // of the way to the drive, not 0 when it didn't arrive
    std::uint16_t driverStatus = 0;
    std::array<std::uint8_t, 32> sense {};
    std::size_t senseSize = 0; // bytes of it that were filled
};

// The seam to Linux for drives: one operation each, no decisions. A command takes
// as long as the drive does; operations on several drives don't wait for each
// other.
class DriveCalls {
public:
    struct Opened {
        int descriptor = -1; // -1 on failure; the caller owns it
        int error = 0; // errno
    };

    DriveCalls() = default;
    DriveCalls(const DriveCalls&) = delete;
    DriveCalls& operator=(const DriveCalls&) = delete;
    virtual ~DriveCalls() = default;

    // A device for reading, without waiting for it.
    [[nodiscard]] virtual Opened open(const QByteArray& path) = 0;
    [[nodiscard]] virtual ScsiOutcome execute(int descriptor, const ScsiCommand& command) = 0;
    virtual void close(int descriptor) = 0;
    // The beginning of a file of the kernel's, as far as it fits; empty when it can't
    // be read. The kernel may have to ask the drive for it.
    [[nodiscard]] virtual std::string_view readFile(const QByteArray& path, std::span<char> buffer)
        = 0;
};

// The calls of the running system.
[[nodiscard]] std::shared_ptr<DriveCalls> makeDriveCalls();
