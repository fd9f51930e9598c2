#pragma once

#include <memory>

namespace core {

struct ReleaseComObject {
    template <typename Interface> void operator()(Interface* object) const { object->Release(); }
};

// Owns one reference to a COM object. The interface must be complete where the
// pointer is reset or destroyed.
template <typename Interface> using ComPointer = std::unique_ptr<Interface, ReleaseComObject>;

} // namespace core
