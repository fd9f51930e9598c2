#include "core/system/systemmessages.h"

namespace System {

namespace {

constexpr std::uint32_t queryEndSession = 17; // WM_QUERYENDSESSION
constexpr std::uint32_t powerBroadcast = 536; // WM_POWERBROADCAST

constexpr std::uintptr_t suspend = 4; // PBT_APMSUSPEND
constexpr std::uintptr_t resumeAutomatic = 18; // PBT_APMRESUMEAUTOMATIC
constexpr std::uintptr_t powerSettingChange = 32787; // PBT_POWERSETTINGCHANGE

constexpr std::uint32_t logOff = 0x80000000; // ENDSESSION_LOGOFF

} // namespace

MessageMeaning meaningOfMessage(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam)
{
    if (message == queryEndSession) {
        // The highest of 32 bits makes the parameter negative on some systems.
        return static_cast<std::uint32_t>(lParam) == logOff ? MessageMeaning::LogOff
                                                            : MessageMeaning::SessionEnd;
    }
    if (message != powerBroadcast) {
        return MessageMeaning::None;
    }
    switch (wParam) {
    case suspend:
        return MessageMeaning::EnterSleepMode;
    case resumeAutomatic: // comes with every resume, unlike PBT_APMRESUMESUSPEND
        return MessageMeaning::WakeUp;
    case powerSettingChange:
        return MessageMeaning::PowerSettingChange;
    default:
        return MessageMeaning::None;
    }
}

} // namespace System
