#include "app/sensors/drives/drivecalls.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "core/system/kernelfile.h"

namespace {

class DriveCallsLinux final : public DriveCalls {
public:
    Opened open(const QByteArray& path) override
    {
        const int descriptor = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        return descriptor < 0 ? Opened { -1, errno } : Opened { descriptor, 0 };
    }

    ScsiOutcome execute(int descriptor, const ScsiCommand& command) override
    {
        ScsiOutcome outcome;
        auto bytes = command.bytes;
        sg_io_hdr_t header {};
        header.interface_id = 'S';
        header.cmdp = bytes.data();
        header.cmd_len = static_cast<unsigned char>(bytes.size());
        header.dxfer_direction = command.data.empty() ? SG_DXFER_NONE : SG_DXFER_FROM_DEV;
        header.dxferp = command.data.data();
        header.dxfer_len = static_cast<unsigned int>(command.data.size());
        header.sbp = outcome.sense.data();
        header.mx_sb_len = static_cast<unsigned char>(outcome.sense.size());
        header.timeout = command.timeout;
        if (::ioctl(descriptor, SG_IO, &header) != 0) {
            outcome.error = errno;
            return outcome;
        }
        outcome.status = header.status;
        outcome.hostStatus = header.host_status;
        outcome.driverStatus = header.driver_status;
        outcome.senseSize
            = std::min(static_cast<std::size_t>(header.sb_len_wr), outcome.sense.size());
        return outcome;
    }

    void close(int descriptor) override { ::close(descriptor); }

    std::string_view readFile(const QByteArray& path, std::span<char> buffer) override
    {
        return readKernelFile(path, buffer);
    }
};

} // namespace

std::shared_ptr<DriveCalls> makeDriveCalls() { return std::make_shared<DriveCallsLinux>(); }
