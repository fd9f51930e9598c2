#pragma once

#include <filesystem>
#include <map>
#include <optional>

#include "smcd/attributefiles.h"
#include "smcd/controller.h"

namespace smcd {

// The controller behind the kernel's driver "applesmc". All keys are read through its
// view of the key table; the three that may be written have files per fan.
class AppleSmcController final : public Controller {
public:
    // The folder of the driver's files, wherever the kernel has put them; nothing when
    // the driver isn't loaded. sysroot stands before /sys.
    [[nodiscard]] static std::optional<std::filesystem::path>
    findFolder(const std::filesystem::path& sysroot);

    explicit AppleSmcController(std::unique_ptr<AttributeFiles> files);

    // The driver doesn't tell the attributes: they are 0.
    std::uint32_t keyInfo(const Key& key, KeyInfo& info) override;
    std::uint32_t readKey(const Key& key, std::span<std::uint8_t> value) override;
    std::uint32_t writeKey(const Key& key, Bytes value) override;
    std::uint32_t keyByIndex(std::uint32_t index, Key& key) override;

private:
    const std::unique_ptr<AttributeFiles> m_files;
    std::map<Key, std::uint32_t> m_indexes;

    [[nodiscard]] std::uint32_t keyCount(std::uint32_t& count);
    [[nodiscard]] std::uint32_t indexOf(const Key& key, std::uint32_t& index);
    [[nodiscard]] std::uint32_t readAt(std::uint32_t index, const char* file,
                                       std::string& contents);
    [[nodiscard]] std::uint32_t readOf(const Key& key, const char* file, std::string& contents);
    [[nodiscard]] std::uint32_t writeMask(std::uint8_t bits);
    [[nodiscard]] std::uint32_t writeMode(std::size_t fan, bool isManual);
    [[nodiscard]] std::uint32_t writeTarget(std::size_t fan, Bytes value);
};

} // namespace smcd
