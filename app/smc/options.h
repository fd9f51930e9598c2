#pragma once

#include <string>

namespace SMC {

// Choices about the controller and its transport that the start-up makes.
enum class Option {
    ForceInpOut32 = 0, // use the port transport only
    UseMMIO = 1, // the machine needs this program's own driver
    ExtraDelay = 2, // milliseconds before the HAL driver is opened, decimal
    NonPnpDriver = 3, // the driver is a service, not a plug-and-play device
    InvertCoreTemps = 4, // core temperatures count down from 100 degrees
    DualFan = 5, // two synchronised fans that appear as one
    XserveFanLimit = 6, // the fan count is always 10
};

// The process-wide set of options: filled at start-up on the GUI thread, before
// the transport is opened, then only read, from any thread. What counts is
// whether an option is set; only ExtraDelay has a value.
class Options {
public:
    static void set(Option option, const std::string& value = {});
    static void clear();
    [[nodiscard]] static bool isSet(Option option);
    // The option's value; empty when it is not set.
    [[nodiscard]] static std::string value(Option option);
};

} // namespace SMC
