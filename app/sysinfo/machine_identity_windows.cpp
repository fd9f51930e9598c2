#include "app/sysinfo/machine_identity.h"

#include <array>
#include <iostream>
#include <vector>

#include <windows.h>
#include <cpuid.h>

#include <QSysInfo>

#include "app/sysinfo/windowsrecords.h"
#include "app/sysinfo/wmi.h"
#include "core/machine_registry.h"

namespace {

constexpr DWORD rawFirmwareTables = 0x52534D42; // "RSMB"

static_assert(RelationProcessorCore == WindowsRecords::relationCore);
static_assert(RelationProcessorPackage == WindowsRecords::relationPackage);
static_assert(sizeof(void*) != 4 || sizeof(SYSTEM_LOGICAL_PROCESSOR_INFORMATION) == 24);

// A function of the system that not every Windows has; null where it lacks.
template <typename Function> Function* systemFunction(const char* name)
{
    const auto address
        = reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"kernel32"), name));
    return reinterpret_cast<Function*>(address);
}

core::MachineRegistryKey systemInformationKey()
{
    return core::MachineRegistryKey(
        QStringLiteral("SYSTEM\\CurrentControlSet\\Control\\SystemInformation"));
}

QString manufacturerIn(const core::MachineRegistryKey& key)
{
    return key.text(QStringLiteral("SystemManufacturer"));
}

class MachineIdentityWindows final : public MachineIdentity {
public:
    [[nodiscard]] WmiSystemData managementData() override { return readManagementData(); }

    [[nodiscard]] bool hasRegistry() const override { return true; }

    [[nodiscard]] std::optional<ManufacturerAndModel> registryValues() override
    {
        const core::MachineRegistryKey key = systemInformationKey();
        if (!key.isOpen()) {
            return std::nullopt;
        }
        return ManufacturerAndModel { manufacturerIn(key),
                                      key.text(QStringLiteral("SystemProductName")) };
    }

    [[nodiscard]] QByteArray firmwareTable() override
    {
        const auto readTable
            = systemFunction<UINT WINAPI(DWORD, DWORD, void*, DWORD)>("GetSystemFirmwareTable");
        if (readTable == nullptr) {
            return {};
        }
        QByteArray table(static_cast<int>(readTable(rawFirmwareTables, 0, nullptr, 0)), '\0');
        const UINT size
            = readTable(rawFirmwareTables, 0, table.data(), static_cast<DWORD>(table.size()));
        return size == static_cast<UINT>(table.size()) ? table : QByteArray();
    }

    [[nodiscard]] QString systemManufacturer() override
    {
        return manufacturerIn(systemInformationKey());
    }

    [[nodiscard]] QString operatingSystemName() override
    {
        const auto askWow64 = systemFunction<BOOL WINAPI(HANDLE, BOOL*)>("IsWow64Process");
        BOOL isWow64 = FALSE;
        if (askWow64 != nullptr) {
            askWow64(GetCurrentProcess(), &isWow64);
        }
        return WindowsRecords::operatingSystemName(QSysInfo::productVersion(), isWow64 != FALSE);
    }

    // The processor tells its cores in ways that differ by maker and age, so that
    // they are left to the operating system to count.
    [[nodiscard]] std::optional<Processor> processor() override
    {
        constexpr std::array<unsigned int, 3> brandLeaves { 0x80000002, 0x80000003, 0x80000004 };
        std::array<std::uint32_t, 4 * brandLeaves.size()> registers {};
        std::uint32_t* next = registers.data();
        for (const unsigned int leaf : brandLeaves) {
            if (__get_cpuid(leaf, &next[0], &next[1], &next[2], &next[3]) == 0) {
                return std::nullopt;
            }
            next += 4;
        }
        return Processor { WindowsRecords::processorBrand(registers), std::nullopt };
    }

    [[nodiscard]] std::uint8_t operatingSystemCoreCount() override
    {
        using Entry = SYSTEM_LOGICAL_PROCESSOR_INFORMATION;
        DWORD size = 0;
        GetLogicalProcessorInformation(nullptr, &size);
        std::vector<Entry> entries(size / sizeof(Entry));
        if (GetLogicalProcessorInformation(entries.data(), &size) == 0) {
            return 0;
        }
        entries.resize(size / sizeof(Entry)); // as many as it has written
        std::vector<std::uint32_t> relations;
        relations.reserve(entries.size());
        for (const Entry& entry : entries) {
            relations.push_back(static_cast<std::uint32_t>(entry.Relationship));
        }
        return WindowsRecords::coreCount(relations, std::cout);
    }
};

} // namespace

std::unique_ptr<MachineIdentity> systemMachineIdentity()
{
    return std::make_unique<MachineIdentityWindows>();
}
