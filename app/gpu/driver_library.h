#pragma once

#include <cstdint>
#include <memory>

namespace GPU {

// A driver's library, where this system keeps drivers. The destructor leaves it
// loaded.
class DriverLibrary {
public:
    using Function = void (*)();

    DriverLibrary() = default;
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;
    virtual ~DriverLibrary() = default;

    // By its plain file name.
    [[nodiscard]] virtual bool load(const char* fileName) = 0;
    // Null when the library, which must be loaded, has no such function.
    [[nodiscard]] virtual Function find(const char* name) = 0;
    // Ends all use of the functions.
    virtual void unload() = 0;
    // The system's error number of the last load() or find() that failed.
    [[nodiscard]] virtual std::uint32_t lastError() = 0;

    // The same, as a function of the given type; whether there is one.
    template <typename Type> bool resolve(const char* name, Type*& function)
    {
        function = reinterpret_cast<Type*>(find(name));
        return function != nullptr;
    }
};

// The system's loader.
[[nodiscard]] std::unique_ptr<DriverLibrary> makeDriverLibrary();

} // namespace GPU
