#pragma once

#include <deque>

#include <QStringList>

#include "app/smc/port_driver.h"

// A port driver whose controller follows a script: statuses and value bytes come
// in the order given, and the last status stays. It writes down what happens,
// such as "out 304 10", "sleep 2" and "in 300"; reads of the status port are not
// written down.
class FakePortDriver final : public SMC::PortDriver {
public:
    bool load() override
    {
        calls << QStringLiteral("load");
        return loads;
    }

    bool resolve(SMC::PortFunction function) override
    {
        switch (function) {
        case SMC::PortFunction::IsInpOutDriverOpen:
            calls << QStringLiteral("resolve IsInpOutDriverOpen");
            error = hasIsInpOutDriverOpen ? error : 127;
            return hasIsInpOutDriverOpen;
        case SMC::PortFunction::Out32:
            calls << QStringLiteral("resolve Out32");
            error = hasOut32 ? error : 128;
            return hasOut32;
        case SMC::PortFunction::Inp32:
            calls << QStringLiteral("resolve Inp32");
            return hasInp32;
        }
        return false;
    }

    std::uint32_t isInpOutDriverOpen() override
    {
        calls << QStringLiteral("IsInpOutDriverOpen");
        const std::uint32_t answer = ready.empty() ? 0 : ready.front();
        if (!ready.empty()) {
            ready.pop_front();
        }
        return answer;
    }

    void out32(std::uint16_t port, std::uint16_t value) override
    {
        calls << QStringLiteral("out %1 %2").arg(port, 0, 16).arg(value, 2, 16, QLatin1Char('0'));
    }

    std::uint16_t inp32(std::uint16_t port) override
    {
        constexpr std::uint16_t noise = 0xA500; // only the low byte means anything
        if (port == 0x304) {
            const std::uint8_t status = statuses.empty() ? 0 : statuses.front();
            if (statuses.size() > 1) {
                statuses.pop_front();
            }
            return static_cast<std::uint16_t>(noise | status);
        }
        calls << QStringLiteral("in %1").arg(port, 0, 16);
        const std::uint8_t byte = values.empty() ? 0 : values.front();
        if (!values.empty()) {
            values.pop_front();
        }
        return static_cast<std::uint16_t>(noise | byte);
    }

    void beginExchange() override
    {
        ++exchanges;
        ++openExchanges;
    }
    void endExchange() override { --openExchanges; }

    void sleep(std::uint32_t milliseconds) override
    {
        sleepsOutside += openExchanges == 1 ? 0 : 1;
        calls << QStringLiteral("sleep %1").arg(milliseconds);
    }

    void unload() override { calls << QStringLiteral("unload"); }

    std::uint32_t lastError() override { return error; }

    std::string refusal() override { return reason; }

    // The calls of one kind: "out", "sleep", "in".
    [[nodiscard]] QStringList callsOf(const QString& kind) const
    {
        QStringList result;
        for (const QString& call : calls) {
            if (call.startsWith(kind + QLatin1Char(' '))) {
                result << call;
            }
        }
        return result;
    }

    QStringList calls;
    std::deque<std::uint8_t> statuses;
    std::deque<std::uint8_t> values;
    std::deque<std::uint32_t> ready = { 1 };
    std::string reason;
    int exchanges = 0;
    int openExchanges = 0;
    int sleepsOutside = 0; // of the one exchange that may be open
    std::uint32_t error = 0;
    bool loads = true;
    bool hasIsInpOutDriverOpen = true;
    bool hasOut32 = true;
    bool hasInp32 = true;
};
