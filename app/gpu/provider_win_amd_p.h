#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <QString>

#include "app/gpu/provider_win_amd_api.h"

namespace GPU {

// How the driver addresses one GPU.
struct AdapterHandle {
    int adapterIndex = 0;
    int overdriveVersion = 0; // -1 when the driver doesn't tell
};

// A session with AMD's driver.
class ProviderWindowsAMDPrivate : public amdGPUAPI {
public:
    struct Adapter {
        QString name;
        AdapterHandle handle;
    };

    // Loads the driver's library. The seam must outlive this object.
    explicit ProviderWindowsAMDPrivate(DriverLibrary& library);
    ~ProviderWindowsAMDPrivate();

    // Starts the session, in the place of one before; false without a driver that
    // can be used.
    [[nodiscard]] bool initADL();
    // One adapter for each GPU of AMD's that wasn't found since forgetAdapters().
    // The session must have been started.
    [[nodiscard]] std::vector<Adapter> findAdapters();
    void forgetAdapters() { m_adaptersByLocation.clear(); }
    // Degrees Celsius, 0 when the driver gives none.
    [[nodiscard]] double getCoreTemperature(const AdapterHandle& adapter) const;

private:
    [[nodiscard]] bool startSession();
    void endSession();
    [[nodiscard]] int adapterCount() const;
    [[nodiscard]] int primaryAdapter() const;
    [[nodiscard]] std::vector<AdapterInfo> readAdapterList(int count) const;
    [[nodiscard]] int overdriveVersion(int adapter) const;
    [[nodiscard]] double readPMLog(int adapter) const;
    [[nodiscard]] double readOverdriveN(int adapter) const;
    [[nodiscard]] double readOverdrive5(int adapter) const;

    bool m_isCreated = false;
    Context m_context = nullptr; // of ADL2
    // A GPU shows up as one adapter for each display; the first one counts.
    std::map<std::uint32_t, int> m_adaptersByLocation;
};

} // namespace GPU
