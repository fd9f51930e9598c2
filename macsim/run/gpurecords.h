#pragma once

#include "macsim/model/simulatedmac.h"

namespace macsim {

// Answers the records of the driver face of NVIDIA's GPUs.
class GpuRecords {
public:
    // The machine must outlive this object.
    explicit GpuRecords(SimulatedMac& mac);

    // 0 for what is no such record, and for a GPU that there isn't.
    [[nodiscard]] quint8 answer(quint8 operation, quint16 gpu, quint8 value);

private:
    [[nodiscard]] quint8 temperature(std::size_t index);

    SimulatedMac& m_mac;
    std::vector<std::size_t> m_gpus; // their places in the machine's list
};

} // namespace macsim
