#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "app/gpu/provider_win_nvidia_api.h"
#include "tests/gpu/fakedriverlibrary.h"

// NVIDIA's driver on Windows as the test describes it. One at a time.
class FakeNvApi {
public:
    static constexpr int failure = -1;

    FakeNvApi() { s_current = this; }
    FakeNvApi(const FakeNvApi&) = delete;
    FakeNvApi& operator=(const FakeNvApi&) = delete;
    ~FakeNvApi() { s_current = nullptr; }

    struct Gpu {
        int nameStatus = GPU::NVAPI_OK;
        std::string name; // up to the length of the caller's buffer
    };

    std::vector<std::uint32_t> missing; // functions that it lacks, by number
    int initializeStatus = GPU::NVAPI_OK;
    int listStatus = GPU::NVAPI_OK;
    std::vector<Gpu> gpus;
    std::uint32_t claimedCount = 0;
    int temperatureStatus = GPU::NVAPI_OK;
    std::uint32_t sensorCount = 3;
    std::vector<GPU::NV_GPU_THERMAL_SETTINGS_V1::Sensor> sensors;

    // What has been asked.
    int initialized = 0;
    std::uint32_t askedSensors = 0;
    GPU::NV_GPU_THERMAL_SETTINGS_V1 askedSettings {};
    int askedGpu = -1;

    void add(const std::string& name)
    {
        gpus.push_back({ GPU::NVAPI_OK, name });
        claimedCount = static_cast<std::uint32_t>(gpus.size());
    }

    void addSensor(std::int32_t target, std::uint32_t celsius)
    {
        sensors.push_back({ 0, 0, 100, celsius, target });
    }

    [[nodiscard]] static FakeLoader::Functions functions()
    {
        return { { "nvapi_QueryInterface", FakeLoader::entry(&queryInterface) } };
    }

private:
    static void* queryInterface(std::uint32_t id)
    {
        const auto& missing = s_current->missing;
        if (std::find(missing.begin(), missing.end(), id) != missing.end()) {
            return nullptr;
        }
        switch (id) {
        case 0x0150E828:
            return reinterpret_cast<void*>(&initialize);
        case 0xE5AC921F:
            return reinterpret_cast<void*>(&list);
        case 0xCEEE8E9F:
            return reinterpret_cast<void*>(&getName);
        case 0xE3640A56:
            return reinterpret_cast<void*>(&getThermalSettings);
        default:
            return nullptr;
        }
    }

    static int initialize()
    {
        ++s_current->initialized;
        return s_current->initializeStatus;
    }

    static int list(GPU::NvPhysicalGpuHandle* handles, std::uint32_t* count)
    {
        const std::size_t room = GPU::NVAPI_MAX_PHYSICAL_GPUS;
        for (std::size_t i = 0; i < std::min(room, s_current->gpus.size()); ++i) {
            handles[i] = &s_current->gpus[i];
        }
        *count = s_current->claimedCount;
        return s_current->listStatus;
    }

    static int getName(GPU::NvPhysicalGpuHandle gpu, char* name)
    {
        if (gpu == nullptr) {
            return failure;
        }
        const Gpu& known = *static_cast<Gpu*>(gpu);
        std::copy_n(known.name.c_str(),
                    std::min(known.name.size() + 1, GPU::NVAPI_SHORT_STRING_MAX), name);
        return known.nameStatus;
    }

    static int getThermalSettings(GPU::NvPhysicalGpuHandle gpu, std::uint32_t sensors,
                                  GPU::NV_GPU_THERMAL_SETTINGS_V1* settings)
    {
        s_current->askedSensors = sensors;
        s_current->askedSettings = *settings;
        s_current->askedGpu = static_cast<int>(static_cast<Gpu*>(gpu) - s_current->gpus.data());
        settings->count = s_current->sensorCount;
        std::copy_n(s_current->sensors.begin(),
                    std::min(s_current->sensors.size(), settings->sensor.size()),
                    settings->sensor.begin());
        return s_current->temperatureStatus;
    }

    inline static FakeNvApi* s_current = nullptr;
};
