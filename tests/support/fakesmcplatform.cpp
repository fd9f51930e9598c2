#include "tests/support/fakesmcplatform.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

std::string keyName(const char* key) { return std::string(key).substr(0, 4); }

std::vector<std::uint8_t> fpe2(std::uint16_t rpm)
{
    const auto raw = static_cast<std::uint16_t>(rpm << 2);
    return { static_cast<std::uint8_t>(raw >> 8), static_cast<std::uint8_t>(raw & 0xFF) };
}

} // namespace

bool FakeSmcPlatform::open()
{
    const std::lock_guard lock(m_mutex);
    m_open = m_opens;
    return m_opens;
}

void FakeSmcPlatform::close()
{
    const std::lock_guard lock(m_mutex);
    m_open = false;
}

bool FakeSmcPlatform::getKeyByIndex(std::uint32_t index, std::string& key)
{
    const std::lock_guard lock(m_mutex);
    ++m_indexCount;
    if (m_mute || index >= m_keys.size()) {
        return false;
    }
    key = std::next(m_keys.begin(), static_cast<std::ptrdiff_t>(index))->first;
    return true;
}

bool FakeSmcPlatform::getKeyInfo(const char* key, SMC::KeyInfo& info)
{
    const std::lock_guard lock(m_mutex);
    const std::string name = keyName(key);
    ++m_infos[name];
    const auto found = m_keys.find(name);
    if (m_mute || m_failing.count(name) != 0 || found == m_keys.end()) {
        return false;
    }
    info.length = static_cast<std::uint8_t>(found->second.value.size());
    std::copy_n(found->second.type.begin(), 4, info.type.begin());
    info.attributes = 0x80;
    return true;
}

bool FakeSmcPlatform::readKey(const char* key, void* buffer, std::uint8_t length)
{
    const std::lock_guard lock(m_mutex);
    const std::string name = keyName(key);
    m_reads.push_back(name);
    if (m_mute || m_failing.count(name) != 0) {
        return false;
    }
    const auto found = m_keys.find(name);
    if (found == m_keys.end() && name != "#KEY") {
        return false;
    }
    const auto value = found == m_keys.end() ? keyCountValue() : found->second.value;
    if (length > value.size()) {
        return false;
    }
    std::copy_n(value.begin(), length, static_cast<std::uint8_t*>(buffer));
    return true;
}

bool FakeSmcPlatform::writeKey(const char* key, const void* data, std::uint8_t length)
{
    const std::lock_guard lock(m_mutex);
    const std::string name = keyName(key);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    std::vector<std::uint8_t> value(bytes, bytes + length);
    m_writes.push_back({ name, value });
    const auto found = m_keys.find(name);
    const bool written = !m_mute && m_failing.count(name) == 0 && found != m_keys.end();
    if (written && m_lostWrites > 0) {
        --m_lostWrites;
    } else if (written) {
        found->second.value = std::move(value);
    }
    return written != m_invertedWrites;
}

void FakeSmcPlatform::setKey(const std::string& name, const std::string& type,
                             std::vector<std::uint8_t> value)
{
    const std::lock_guard lock(m_mutex);
    m_keys[name] = { type, std::move(value) };
}

void FakeSmcPlatform::removeKey(const std::string& name)
{
    const std::lock_guard lock(m_mutex);
    m_keys.erase(name);
}

std::vector<std::uint8_t> FakeSmcPlatform::keyValue(const std::string& name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_keys.find(name);
    return found == m_keys.end() ? std::vector<std::uint8_t>() : found->second.value;
}

void FakeSmcPlatform::setFanSpeed(const std::string& name, std::uint16_t rpm)
{
    setKey(name, "fpe2", fpe2(rpm));
}

void FakeSmcPlatform::setTemperature(const std::string& name, double celsius)
{
    const auto raw = static_cast<std::uint16_t>(celsius * 256.0);
    setKey(name, "sp78",
           { static_cast<std::uint8_t>(raw >> 8), static_cast<std::uint8_t>(raw & 0xFF) });
}

void FakeSmcPlatform::addFan(int index, const std::string& fanName, std::uint16_t current,
                             std::uint16_t min, std::uint16_t max)
{
    const std::string prefix = 'F' + std::to_string(index);
    setFanSpeed(prefix + "Ac", current);
    setFanSpeed(prefix + "Mn", min);
    setFanSpeed(prefix + "Mx", max);
    setFanSpeed(prefix + "Tg", min);
    std::vector<std::uint8_t> identifier(16, 0);
    std::copy_n(fanName.begin(), std::min<std::size_t>(fanName.size(), 12), identifier.begin() + 4);
    setKey(prefix + "ID", "{fds", identifier);
    setKey("FNum", "ui8 ", { static_cast<std::uint8_t>(index + 1) });
    if (keyValue("FS! ").empty()) {
        setKey("FS! ", "ui16", { 0, 0 });
    }
}

void FakeSmcPlatform::setOpens(bool opens)
{
    const std::lock_guard lock(m_mutex);
    m_opens = opens;
}

void FakeSmcPlatform::setInvertedWrites(bool inverted)
{
    const std::lock_guard lock(m_mutex);
    m_invertedWrites = inverted;
}

void FakeSmcPlatform::setFailing(const std::string& name, bool failing)
{
    const std::lock_guard lock(m_mutex);
    if (failing) {
        m_failing.insert(name);
    } else {
        m_failing.erase(name);
    }
}

void FakeSmcPlatform::loseWrites(int count)
{
    const std::lock_guard lock(m_mutex);
    m_lostWrites = count;
}

void FakeSmcPlatform::setMute(bool mute)
{
    const std::lock_guard lock(m_mutex);
    m_mute = mute;
}

std::vector<FakeSmcPlatform::Write> FakeSmcPlatform::writes() const
{
    const std::lock_guard lock(m_mutex);
    return m_writes;
}

std::vector<FakeSmcPlatform::Write> FakeSmcPlatform::writesOf(const std::string& name) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<Write> result;
    std::copy_if(m_writes.begin(), m_writes.end(), std::back_inserter(result),
                 [&name](const Write& write) { return write.key == name; });
    return result;
}

std::vector<std::string> FakeSmcPlatform::reads() const
{
    const std::lock_guard lock(m_mutex);
    return m_reads;
}

int FakeSmcPlatform::infoCount(const std::string& name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_infos.find(name);
    return found == m_infos.end() ? 0 : found->second;
}

int FakeSmcPlatform::indexCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_indexCount;
}

bool FakeSmcPlatform::isOpen() const
{
    const std::lock_guard lock(m_mutex);
    return m_open;
}

void FakeSmcPlatform::clearRecord()
{
    const std::lock_guard lock(m_mutex);
    m_writes.clear();
    m_reads.clear();
    m_infos.clear();
    m_indexCount = 0;
}

std::vector<std::uint8_t> FakeSmcPlatform::keyCountValue() const
{
    const auto count = static_cast<std::uint32_t>(m_keys.size());
    return { static_cast<std::uint8_t>(count >> 24), static_cast<std::uint8_t>(count >> 16),
             static_cast<std::uint8_t>(count >> 8), static_cast<std::uint8_t>(count) };
}
