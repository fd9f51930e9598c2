#include "smcd/keyreader.h"

#include <cerrno>

namespace smcd {

KeyReader::KeyReader(Controller& controller)
    : m_controller(controller)
{
}

std::uint32_t KeyReader::length(const Key& key, std::size_t& length)
{
    if (const auto known = m_lengths.find(key); known != m_lengths.end()) {
        length = known->second;
        return 0;
    }
    KeyInfo info;
    if (const std::uint32_t error = m_controller.keyInfo(key, info); error != 0) {
        return error;
    }
    if (info.length == 0) {
        return ENOENT;
    }
    if (info.length > protocol::longestValue) {
        return EIO;
    }
    length = info.length;
    m_lengths.emplace(key, length);
    return 0;
}

std::uint32_t KeyReader::read(const Key& key, std::vector<std::uint8_t>& value)
{
    std::size_t size = 0;
    if (const std::uint32_t error = length(key, size); error != 0) {
        return error;
    }
    value.assign(size, 0);
    return m_controller.readKey(key, value);
}

} // namespace smcd
