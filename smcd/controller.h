#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "smcd/protocol/records.h"

namespace smcd {

using protocol::Bytes;
using protocol::Key;
using protocol::KeyInfo;

// A way to the controller. Operations give 0 or the system's error number; each
// may take some seconds with a controller that is silent. One thread.
class Controller {
public:
    Controller() = default;
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    virtual ~Controller() = default;

    // A length of 0 means that there is no such key.
    [[nodiscard]] virtual std::uint32_t keyInfo(const Key& key, KeyInfo& info) = 0;
    // value must be as long as the key's.
    [[nodiscard]] virtual std::uint32_t readKey(const Key& key, std::span<std::uint8_t> value) = 0;
    [[nodiscard]] virtual std::uint32_t writeKey(const Key& key, Bytes value) = 0;
    [[nodiscard]] virtual std::uint32_t keyByIndex(std::uint32_t index, Key& key) = 0;
};

// Null when there is none within reach now; reason says why, for a person.
using ControllerFactory = std::function<std::unique_ptr<Controller>(std::string& reason)>;

} // namespace smcd
