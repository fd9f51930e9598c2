#pragma once

#include "smcd/controller.h"

// The same controller, however often a way to it is asked for.
class ControllerRef final : public smcd::Controller {
public:
    explicit ControllerRef(smcd::Controller& target)
        : m_target(target)
    {
    }

    std::uint32_t keyInfo(const smcd::Key& key, smcd::KeyInfo& info) override
    {
        return m_target.keyInfo(key, info);
    }
    std::uint32_t readKey(const smcd::Key& key, std::span<std::uint8_t> value) override
    {
        return m_target.readKey(key, value);
    }
    std::uint32_t writeKey(const smcd::Key& key, smcd::Bytes value) override
    {
        return m_target.writeKey(key, value);
    }
    std::uint32_t keyByIndex(std::uint32_t index, smcd::Key& key) override
    {
        return m_target.keyByIndex(index, key);
    }

private:
    smcd::Controller& m_target;
};
