#include "core/threads/thread_name.h"

#include <pthread.h>

namespace core::threads {

void setCurrentThreadName(const std::string& name)
{
    // The kernel takes 15 characters and a terminator, and refuses more.
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
}

} // namespace core::threads
