#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace smcd {

// The files by which a driver of the kernel's is asked and told. Operations give 0 or
// the system's error number.
class AttributeFiles {
public:
    AttributeFiles() = default;
    AttributeFiles(const AttributeFiles&) = delete;
    AttributeFiles& operator=(const AttributeFiles&) = delete;
    virtual ~AttributeFiles() = default;

    // At most a page.
    [[nodiscard]] virtual std::uint32_t read(const std::string& name, std::string& contents) = 0;
    [[nodiscard]] virtual std::uint32_t write(const std::string& name, const std::string& text) = 0;
};

// Those of a folder.
[[nodiscard]] std::unique_ptr<AttributeFiles> makeAttributeFiles(std::filesystem::path folder);

} // namespace smcd
