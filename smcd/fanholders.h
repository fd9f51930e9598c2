#pragma once

#include <cstdint>
#include <map>

#include "smcd/controlbits.h"

namespace smcd {

using ClientId = std::uint64_t;

// Which clients hold which fans, and what has to be given back to the controller.
class FanHolders {
public:
    // The client is about to set these bits. It may write again without setting any.
    void hold(ClientId client, const ControlBits& bits);
    // These bits have been cleared, whoever held them.
    void clear(const ControlBits& bits);
    // The client's fans stay as they are when it leaves, unless it writes again.
    void keep(ClientId client);
    // The client is gone. What nobody else holds has to be given back, unless it stays.
    void leave(ClientId client);
    void leaveAll();

    // Has to be given back, since nobody holds it.
    void owe(const ControlBits& bits) { m_owed |= bits; }
    [[nodiscard]] const ControlBits& owed() const { return m_owed; }
    // Would have to be given back if everybody were gone now.
    [[nodiscard]] ControlBits atRisk() const;

private:
    struct Holder {
        ControlBits bits;
        bool keeps = false;
    };

    std::map<ClientId, Holder> m_holders;
    ControlBits m_owed;
};

} // namespace smcd
