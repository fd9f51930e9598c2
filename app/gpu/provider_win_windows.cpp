#include "app/gpu/provider_win.h"

#include "app/gpu/provider_win_amd.h"
#include "app/gpu/provider_win_nvidia.h"
#include "app/gpu/provider_win_wmi.h"

namespace GPU {

std::unique_ptr<ProviderWindows> ProviderWindows::create(const QStringList& deviceNames)
{
    return std::make_unique<ProviderWindows>(
        std::make_unique<ProviderWindowsAMD>(makeDriverLibrary()),
        std::make_unique<ProviderWindowsNVIDIA>(makeDriverLibrary()),
        std::make_unique<ProviderWindowsWMI>(deviceNames));
}

} // namespace GPU
