#include "app/gpu/provider_win.h"

#include "app/gpu/provider_hwmon.h"
#include "app/gpu/provider_nvml.h"
#include "app/gpu/provider_win_wmi.h"
#include "app/sysinfo/pciids.h"

namespace GPU {

std::unique_ptr<ProviderWindows> ProviderWindows::create(const QStringList& deviceNames)
{
    return std::make_unique<ProviderWindows>(std::make_unique<ProviderHwmon>(PciIds::paths()),
                                             std::make_unique<ProviderNvml>(makeDriverLibrary()),
                                             std::make_unique<ProviderWindowsWMI>(deviceNames));
}

} // namespace GPU
