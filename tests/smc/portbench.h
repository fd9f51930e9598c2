#pragma once

#include <memory>

#include <QTest>

#include "app/smc/platform_win_inpout32.h"
#include "tests/smc/fakeportdriver.h"
#include "tests/support/logcapture.h"

inline constexpr std::uint8_t accepted = 0x04;
inline constexpr std::uint8_t busy = 0x02;
inline constexpr std::uint8_t busyAndAccepted = 0x06;
inline constexpr std::uint8_t ready = 0x05;

// The statuses of a controller that takes command, key and length at once and
// then gives value bytes.
inline std::deque<std::uint8_t> promptAnswer(int valueBytes)
{
    std::deque<std::uint8_t> statuses(6, accepted);
    statuses.insert(statuses.end(), static_cast<std::size_t>(valueBytes), ready);
    return statuses;
}

inline QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QStringLiteral(", "));
}

inline const char* const backOff
    = "sleep 2, sleep 4, sleep 8, sleep 16, sleep 32, sleep 64, sleep 128, "
      "sleep 256, sleep 512, sleep 1024";

// An open transport over a scripted controller.
struct PortBench {
    LogCapture log;
    FakePortDriver* driver = nullptr;
    std::unique_ptr<SMC::PlatformWinProviderInpOut32> platform;

    PortBench()
    {
        auto fake = std::make_unique<FakePortDriver>();
        driver = fake.get();
        platform = std::make_unique<SMC::PlatformWinProviderInpOut32>(std::move(fake));
    }

    void open()
    {
        QVERIFY(platform->open());
        driver->calls.clear();
        log.clear();
    }
};
