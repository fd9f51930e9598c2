#pragma once

#include <string>

namespace core::threads {

// Names the calling thread for debuggers and process viewers. Best effort.
void setCurrentThreadName(const std::string& name);

} // namespace core::threads
