#include "smcd/forcedfans.h"

#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace smcd {

ForcedFansFile::ForcedFansFile(std::filesystem::path path)
    : m_path(std::move(path))
{
}

std::optional<ControlBits> ForcedFansFile::read()
{
    std::error_code error;
    if (!std::filesystem::exists(m_path, error) && !error) {
        return ControlBits();
    }
    std::ifstream file(m_path);
    unsigned long mask = 0;
    unsigned long modes = 0;
    file >> std::hex >> mask >> modes;
    if (!file || mask >> maskFans != 0 || modes >> mostFans != 0) {
        return std::nullopt;
    }
    return ControlBits(modes << maskFans | mask);
}

bool ForcedFansFile::write(const ControlBits& bits)
{
    std::error_code error;
    if (bits.none()) {
        std::filesystem::remove(m_path, error);
        return !error;
    }
    const std::filesystem::path draft = m_path.string() + ".new";
    {
        std::ofstream file(draft, std::ios::trunc);
        const unsigned long all = bits.to_ulong();
        file << std::hex << (all & ((1UL << maskFans) - 1)) << ' ' << (all >> maskFans) << '\n';
        file.flush();
        if (!file) {
            return false;
        }
    }
    std::filesystem::rename(draft, m_path, error);
    return !error;
}

} // namespace smcd
