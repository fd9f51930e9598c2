#include "smcd/descriptor.h"

#include <unistd.h>

namespace smcd {

Descriptor::~Descriptor()
{
    if (m_number >= 0) {
        ::close(m_number);
    }
}

} // namespace smcd
