#pragma once

#include <algorithm>
#include <atomic>
#include <memory>

#include <QStringList>

#include "tests/support/fakesmcplatform.h"

// A transport over a controller in memory that writes down every call, such as
// "read F0Ac 2", and notices callers that come in at the same time. With
// fillsWholeBuffer it behaves as memory-mapped access may: a read fills 32 bytes
// whatever was asked for.
class SpyPlatform final : public SMC::Platform {
public:
    explicit SpyPlatform(FakeSmcPlatform& smc)
        : m_smc(smc)
    {
    }

    bool open() override { return m_smc.open(); }

    void close() override { m_smc.close(); }

    bool getKeyByIndex(std::uint32_t index, std::string& key) override
    {
        const Visit visit(*this, QStringLiteral("index %1").arg(index));
        return std::find(failingIndexes.begin(), failingIndexes.end(), index)
            == failingIndexes.end()
            && m_smc.getKeyByIndex(index, key);
    }

    bool getKeyInfo(const char* key, SMC::KeyInfo& info) override
    {
        const Visit visit(*this, QStringLiteral("info %1").arg(QLatin1String(key)));
        return m_smc.getKeyInfo(key, info);
    }

    bool readKey(const char* key, void* buffer, std::uint8_t length) override
    {
        const Visit visit(*this, QStringLiteral("read %1 %2").arg(QLatin1String(key)).arg(length));
        if (fillsWholeBuffer) {
            std::fill_n(static_cast<std::uint8_t*>(buffer), 32, std::uint8_t { 'x' });
        }
        return m_smc.readKey(key, buffer, length);
    }

    bool writeKey(const char* key, const void* data, std::uint8_t length) override
    {
        const Visit visit(*this, QStringLiteral("write %1 %2").arg(QLatin1String(key)).arg(length));
        return m_smc.writeKey(key, data, length);
    }

    QStringList calls; // in order; look at it when no other thread calls
    std::atomic<bool> overlapped = false;
    bool fillsWholeBuffer = false;
    std::vector<std::uint32_t> failingIndexes;

private:
    class Visit {
    public:
        Visit(SpyPlatform& platform, const QString& call)
            : m_platform(platform)
        {
            if (m_platform.m_visitors.fetch_add(1) != 0) {
                m_platform.overlapped = true;
            } else {
                m_platform.calls << call;
            }
        }
        ~Visit() { m_platform.m_visitors.fetch_sub(1); }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        SpyPlatform& m_platform;
    };

    FakeSmcPlatform& m_smc;
    std::atomic<int> m_visitors = 0;
};
