#include "smcd/attributefiles.h"

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace smcd {

namespace {

constexpr std::size_t page = 4096; // bytes

class AttributeFilesLinux final : public AttributeFiles {
public:
    explicit AttributeFilesLinux(std::filesystem::path folder)
        : m_folder(std::move(folder))
    {
    }

    std::uint32_t read(const std::string& name, std::string& contents) override
    {
        const int file = ::open((m_folder / name).c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) {
            return static_cast<std::uint32_t>(errno);
        }
        std::array<char, page> buffer {};
        const ssize_t size = ::read(file, buffer.data(), buffer.size());
        const int error = size < 0 ? errno : 0;
        ::close(file);
        contents.assign(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
        return static_cast<std::uint32_t>(error);
    }

    std::uint32_t write(const std::string& name, const std::string& text) override
    {
        const int file = ::open((m_folder / name).c_str(), O_WRONLY | O_CLOEXEC | O_TRUNC);
        if (file < 0) {
            return static_cast<std::uint32_t>(errno);
        }
        const ssize_t size = ::write(file, text.data(), text.size());
        const int error = size < 0 ? errno : 0;
        ::close(file);
        return static_cast<std::uint32_t>(error);
    }

private:
    const std::filesystem::path m_folder;
};

} // namespace

std::unique_ptr<AttributeFiles> makeAttributeFiles(std::filesystem::path folder)
{
    return std::make_unique<AttributeFilesLinux>(std::move(folder));
}

} // namespace smcd
