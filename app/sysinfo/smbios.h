#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include <QByteArray>
#include <QString>

// What the firmware's tables tell about the machine: made from a block of bytes,
// which is a header of 8 bytes (one reserved, major version, minor version, DMI
// revision, and the length of the rest, 32 bits, low byte first) followed by the
// structures. Any bytes are survived.
//
// A text is absent when no structure has it, and empty when its structure names
// no text for it.
class SMBIOS {
public:
    using Text = std::optional<QString>;

    struct Bios {
        Text vendor;
        Text version;
        Text releaseDate;
    };
    struct System {
        Text manufacturer;
        Text product;
        Text version;
        Text serialNumber;
        std::optional<std::array<std::uint8_t, 16>> uuid;
        Text sku;
        Text family;
    };
    struct Baseboard {
        Text manufacturer;
        Text product;
        Text version;
        Text serialNumber;
        Text assetTag;
    };

    explicit SMBIOS(const QByteArray& block);

    [[nodiscard]] std::uint8_t majorVersion() const { return m_majorVersion; }
    [[nodiscard]] std::uint8_t minorVersion() const { return m_minorVersion; }
    [[nodiscard]] std::uint8_t dmiRevision() const { return m_dmiRevision; }
    [[nodiscard]] const Bios& bios() const { return m_bios; }
    [[nodiscard]] const System& system() const { return m_system; }
    [[nodiscard]] const Baseboard& baseboard() const { return m_baseboard; }

private:
    class Structure;

    void readStructures(const QByteArray& structures);
    void readStructure(const Structure& structure);

    std::uint8_t m_majorVersion = 0;
    std::uint8_t m_minorVersion = 0;
    std::uint8_t m_dmiRevision = 0;
    Bios m_bios;
    System m_system;
    Baseboard m_baseboard;
};
