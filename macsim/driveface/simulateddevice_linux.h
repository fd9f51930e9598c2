#pragma once

#include <cstdint>

#include <scsi/sg.h>

namespace macsim {

// A drive of the simulated machine, by its name, such as "sda". Every operation is
// an exchange of its own with the simulator, so that a drive that hangs delays
// nobody else. Nothing is allocated.
class SimulatedDevice {
public:
    // The name must outlive the object.
    explicit SimulatedDevice(const char* name);

    // 0, or errno of why the device can't be opened.
    [[nodiscard]] int open() const;
    // As the kernel's SG_IO: 0, or errno of why nothing was done. A drive that
    // doesn't answer in the header's time is told in its host status.
    [[nodiscard]] int execute(sg_io_hdr_t& header) const;

private:
    const char* const m_name;
};

} // namespace macsim
