#pragma once

#include <cstdint>

namespace System {

// What a message of Windows to a window means for this program.
enum class MessageMeaning {
    None,
    EnterSleepMode,
    WakeUp,
    LogOff, // the question whether the session may end by a log-off
    SessionEnd, // the same for any other end
    PowerSettingChange, // of those that the window has registered for
};

[[nodiscard]] MessageMeaning meaningOfMessage(std::uint32_t message, std::uintptr_t wParam,
                                              std::intptr_t lParam);

} // namespace System
