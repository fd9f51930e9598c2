#pragma once

#include <cstdint>

#include <QString>

#include "app/sysinfo/machine_identity.h"

enum class ModelFamily : std::uint8_t {
    MacBook = 0,
    MacBookAir = 1,
    MacBookPro = 2,
    iMac = 3,
    iMacPro = 4,
    Macmini = 5,
    MacPro = 6,
    Xserve = 7,
    ADP = 8,
    Undefined = 9,
};

// Which Mac this is. Built once, by the application's constructor, and only read
// afterwards, from any thread. Nothing here fails: what can't be found out stays
// empty, and an empty model identifier means that this is no Apple hardware.
class SystemInfo {
public:
    // Identifies the machine through the given source, which is used during
    // construction only.
    explicit SystemInfo(MachineIdentity& identity);

    [[nodiscard]] ModelFamily family() const { return m_family; }
    // The digits of the identifier as one number: MacBookPro15,1 is 151.
    [[nodiscard]] std::uint16_t modelNumber() const { return m_modelNumber; }
    // The model identifier, such as "MacBookPro15,1".
    [[nodiscard]] QString machineName() const { return m_machineName; }
    [[nodiscard]] QString osName() const { return m_osName; }
    [[nodiscard]] QString cpuName() const { return m_cpuName; }
    [[nodiscard]] std::uint8_t coreCount() const { return m_coreCount; }
    // The first source's record, as it was read at construction.
    [[nodiscard]] const WmiSystemData& wmiSystemData() const { return m_wmiSystemData; }

    // The family by the name's prefix, the number by its digits. False when there
    // is no such family, which leaves family as it was, or no number above 0.
    [[nodiscard]] static bool parseModelName(const QString& name, ModelFamily& family,
                                             std::uint16_t& number);

    // Whether a models attribute of the databases applies to this machine: "all",
    // or a list with ";" of identifiers, where a "+" means that model and all
    // later ones of its family.
    [[nodiscard]] bool isModelMatch(const char* models) const;

    // The controller can only be reached through this program's own driver.
    [[nodiscard]] bool needsMmioDriver() const;
    // The machine has no fan.
    [[nodiscard]] bool isPassive() const;
    [[nodiscard]] bool isEGpuCapable() const;
    // These keep their fans as they are when the user logs off.
    [[nodiscard]] bool isLogoutSensitiveIMac() const;

private:
    ModelFamily m_family = ModelFamily::Undefined;
    std::uint16_t m_modelNumber = 0;
    QString m_machineName;
    QString m_osName;
    QString m_cpuName;
    std::uint8_t m_coreCount = 0;
    WmiSystemData m_wmiSystemData;
};
