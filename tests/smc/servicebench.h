#pragma once

#include <algorithm>
#include <bit>

#include <QTest>

#include "app/smc/options.h"
#include "app/smc/service.h"
#include "tests/smc/spyplatform.h"
#include "tests/support/logcapture.h"

using Bytes = std::vector<std::uint8_t>;

Q_DECLARE_METATYPE(Bytes)

inline Bytes single(float value)
{
    const auto bits = std::bit_cast<std::uint32_t>(value);
    return { static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
             static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 24) };
}

inline Bytes identifier(const std::string& name)
{
    Bytes bytes(16, 0);
    const Bytes first = { 1, 2, 3, 4 };
    std::copy(name.begin(), name.end(), std::copy(first.begin(), first.end(), bytes.begin()));
    return bytes;
}

// A service over a controller in memory. Set the controller up, then call open().
struct ServiceBench {
    FakeSmcPlatform smc;
    SpyPlatform* spy = nullptr;
    std::unique_ptr<SMC::Service> service;
    LogCapture log;

    ServiceBench()
    {
        auto platform = std::make_unique<SpyPlatform>(smc);
        spy = platform.get();
        service = std::make_unique<SMC::Service>(std::move(platform));
    }

    ~ServiceBench() { SMC::Options::clear(); }
    ServiceBench(const ServiceBench&) = delete;
    ServiceBench& operator=(const ServiceBench&) = delete;

    void open()
    {
        QVERIFY(service->open());
        spy->calls.clear();
        log.clear();
    }

    // Two fans under the mask of forced fans.
    void addTwoFans()
    {
        smc.addFan(0, "Left side", 2000, 1200, 5900);
        smc.addFan(1, "Right side", 2100, 1300, 5500);
    }

    // Two "flt " fans with a mode key each.
    void addTwoFloatFans()
    {
        for (const std::string fan : { "F0", "F1" }) {
            smc.setKey(fan + "Mn", "flt ", single(1200));
            smc.setKey(fan + "Ac", "flt ", single(2000.9F));
            smc.setKey(fan + "Tg", "flt ", single(1200));
            smc.setKey(fan + "Md", "ui8 ", { 0 });
        }
        smc.setKey("FNum", "ui8 ", { 2 });
    }

    // A table with keys before and after the temperatures.
    void addSensors()
    {
        smc.setKey("BALG", "ui16", { 0, 0 });
        smc.setKey("MSSP", "ui8 ", { 5 });
        smc.setTemperature("TC0C", 40);
        smc.setTemperature("TC0D", 40);
        smc.setTemperature("TG0D", 55.5);
        smc.setKey("TCAD", "ui8 ", { 7 });
        smc.setKey("VP0R", "sp4b", { 0, 0 });
        smc.setKey("zDBG", "ui8 ", { 0 });
    }

    void findSensors()
    {
        std::vector<std::string> keys;
        QVERIFY(service->getTemperatureKeys(keys));
        spy->calls.clear();
        log.clear();
    }
};
