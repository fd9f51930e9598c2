#pragma once

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "smcd/controller.h"
#include "tests/smcd/controllerref.h"

// A key from its name.
[[nodiscard]] inline smcd::Key keyOf(const char* name)
{
    smcd::Key key {};
    std::copy_n(name, std::min(std::strlen(name), key.size()), key.begin());
    return key;
}

using Value = std::vector<std::uint8_t>;

// A controller that holds what a test puts in it. May be looked at from any thread.
class FakeController final : public smcd::Controller {
public:
    void set(const char* name, const Value& value, const char* type = "ui8 ")
    {
        const std::lock_guard lock(m_mutex);
        m_keys[keyOf(name)] = { value, keyOf(type) };
    }

    [[nodiscard]] Value value(const char* name)
    {
        const std::lock_guard lock(m_mutex);
        return m_keys[keyOf(name)].value;
    }

    // Operations fail with this number, if it isn't 0.
    void fail(std::uint32_t error)
    {
        const std::lock_guard lock(m_mutex);
        m_error = error;
    }

    // What was written: the key, a blank and the value, such as "F0Md 01".
    [[nodiscard]] std::vector<std::string> writes()
    {
        const std::lock_guard lock(m_mutex);
        return m_writes;
    }

    [[nodiscard]] int infoRequests()
    {
        const std::lock_guard lock(m_mutex);
        return m_infoRequests;
    }

    std::uint32_t keyInfo(const smcd::Key& key, smcd::KeyInfo& info) override
    {
        const std::lock_guard lock(m_mutex);
        ++m_infoRequests;
        const auto found = m_keys.find(key);
        info = {};
        if (m_error == 0 && found != m_keys.end()) {
            info.length = static_cast<std::uint8_t>(found->second.value.size());
            info.type = found->second.type;
        }
        return m_error;
    }

    std::uint32_t readKey(const smcd::Key& key, std::span<std::uint8_t> value) override
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_keys.find(key);
        if (m_error != 0 || found == m_keys.end() || found->second.value.size() != value.size()) {
            return m_error != 0 ? m_error : EIO;
        }
        std::copy(found->second.value.begin(), found->second.value.end(), value.begin());
        return 0;
    }

    std::uint32_t writeKey(const smcd::Key& key, smcd::Bytes value) override
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_keys.find(key);
        if (m_error != 0 || found == m_keys.end()) {
            return m_error != 0 ? m_error : EIO;
        }
        found->second.value.assign(value.begin(), value.end());
        std::string line(key.begin(), key.end());
        for (const std::uint8_t byte : value) {
            constexpr const char* digits = "0123456789ABCDEF";
            line += std::string(line.size() == key.size() ? " " : "") + digits[byte >> 4]
                + digits[byte & 0xF];
        }
        m_writes.push_back(line);
        return 0;
    }

    std::uint32_t keyByIndex(std::uint32_t index, smcd::Key& key) override
    {
        const std::lock_guard lock(m_mutex);
        if (m_error != 0 || index >= m_keys.size()) {
            return m_error != 0 ? m_error : ENOENT;
        }
        key = std::next(m_keys.begin(), static_cast<std::ptrdiff_t>(index))->first;
        return 0;
    }

private:
    struct Entry {
        Value value;
        std::array<char, 4> type;
    };

    std::mutex m_mutex;
    std::map<smcd::Key, Entry> m_keys;
    std::vector<std::string> m_writes;
    std::uint32_t m_error = 0;
    int m_infoRequests = 0;
};

// Two fans of a machine with "FS! ", in "fpe2": 2000 to 6156.25 RPM.
inline void addMaskFans(FakeController& controller)
{
    controller.set("FNum", { 2 });
    controller.set("FS! ", { 0, 0 }, "ui16");
    for (const char* name : { "F0Mn", "F1Mn", "F0Tg", "F1Tg" }) {
        controller.set(name, { 0x1F, 0x42 }, "fpe2"); // 2000.5
    }
    for (const char* name : { "F0Mx", "F1Mx" }) {
        controller.set(name, { 0x60, 0x31 }, "fpe2"); // 6156.25
    }
}

// Two fans of a machine with "F{}Md", in "flt ": 1100 to 2500 RPM.
inline void addModeFans(FakeController& controller)
{
    controller.set("FNum", { 2 });
    for (const char* name : { "F0Md", "F1Md" }) {
        controller.set(name, { 0 });
    }
    for (const char* name : { "F0Mn", "F1Mn", "F0Tg", "F1Tg" }) {
        controller.set(name, { 0x00, 0x80, 0x89, 0x44 }, "flt ");
    }
    for (const char* name : { "F0Mx", "F1Mx" }) {
        controller.set(name, { 0x00, 0x40, 0x1C, 0x45 }, "flt ");
    }
}
