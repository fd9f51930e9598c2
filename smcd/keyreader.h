#pragma once

#include <map>
#include <vector>

#include "smcd/controller.h"

namespace smcd {

// Reads keys whose length the reader need not know. Lengths are asked for once.
class KeyReader {
public:
    // The controller must outlive the reader.
    explicit KeyReader(Controller& controller);

    // 0, ENOENT when there is no such key, or another error number.
    [[nodiscard]] std::uint32_t length(const Key& key, std::size_t& length);
    [[nodiscard]] std::uint32_t read(const Key& key, std::vector<std::uint8_t>& value);

private:
    Controller& m_controller;
    std::map<Key, std::size_t> m_lengths; // of keys that exist
};

} // namespace smcd
