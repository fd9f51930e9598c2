#pragma once

#include <filesystem>
#include <optional>

#include "smcd/controlbits.h"

namespace smcd {

// The note of the control bits that would have to be given back. It outlives the
// service, also when it is killed.
class ForcedFans {
public:
    ForcedFans() = default;
    ForcedFans(const ForcedFans&) = delete;
    ForcedFans& operator=(const ForcedFans&) = delete;
    virtual ~ForcedFans() = default;

    // None when there is no note; nothing when it can't be understood.
    [[nodiscard]] virtual std::optional<ControlBits> read() = 0;
    [[nodiscard]] virtual bool write(const ControlBits& bits) = 0;
};

// A file that holds a line with two hexadecimal numbers, of the bits in "FS! " and of
// the fans' modes. There is none while there is nothing to note.
class ForcedFansFile final : public ForcedFans {
public:
    explicit ForcedFansFile(std::filesystem::path path);

    std::optional<ControlBits> read() override;
    // Either the old note or the new one is there at any time.
    bool write(const ControlBits& bits) override;

private:
    const std::filesystem::path m_path;
};

} // namespace smcd
