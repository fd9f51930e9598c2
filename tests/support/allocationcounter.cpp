#include "tests/support/allocationcounter.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<long> allocations { 0 };

} // namespace

long allocationCount() { return allocations; }

// The C library's own, under the name that it keeps for replacements. Qt's
// containers and the new operator both end here.
extern "C" void* __libc_malloc(std::size_t size);

extern "C" void* malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
