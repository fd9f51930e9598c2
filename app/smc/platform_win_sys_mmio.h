#pragma once

#include "app/smc/platform.h"

namespace SMC {

// The way to the controller through the program's own driver. There is no
// channel to that driver's device: open() fails with the error number of a file
// that does not exist, and key operations refuse.
class PlatformWinProviderMMIO final : public Platform {
public:
    bool open() override;
    void close() override;
    bool getKeyByIndex(std::uint32_t index, std::string& key) override;
    bool getKeyInfo(const char* key, KeyInfo& info) override;
    bool readKey(const char* key, void* buffer, std::uint8_t length) override;
    bool writeKey(const char* key, const void* data, std::uint8_t length) override;
};

} // namespace SMC
