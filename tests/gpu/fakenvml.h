#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "app/gpu/provider_nvml_api.h"
#include "tests/gpu/fakedriverlibrary.h"

// NVIDIA's driver on Linux as the test describes it. One at a time.
class FakeNvml {
public:
    static constexpr int failure = 999;

    FakeNvml() { s_current = this; }
    FakeNvml(const FakeNvml&) = delete;
    FakeNvml& operator=(const FakeNvml&) = delete;
    ~FakeNvml() { s_current = nullptr; }

    struct Gpu {
        std::string name; // up to the length of the caller's buffer
        unsigned celsius = 0;
        int handleStatus = GPU::NVML_SUCCESS;
        int nameStatus = GPU::NVML_SUCCESS;
        int temperatureStatus = GPU::NVML_SUCCESS;
    };

    int initStatus = GPU::NVML_SUCCESS;
    int countStatus = GPU::NVML_SUCCESS;
    std::vector<Gpu> gpus;
    unsigned claimedCount = 0;

    // What has been asked.
    int sessions = 0; // that go on
    int inits = 0;

    void add(const Gpu& gpu)
    {
        gpus.push_back(gpu);
        claimedCount = static_cast<unsigned>(gpus.size());
    }

    [[nodiscard]] static FakeLoader::Functions functions()
    {
        return {
            { "nvmlInit_v2", FakeLoader::entry(&init) },
            { "nvmlShutdown", FakeLoader::entry(&shutdown) },
            { "nvmlDeviceGetCount_v2", FakeLoader::entry(&getCount) },
            { "nvmlDeviceGetHandleByIndex_v2", FakeLoader::entry(&getHandle) },
            { "nvmlDeviceGetName", FakeLoader::entry(&getName) },
            { "nvmlDeviceGetTemperature", FakeLoader::entry(&getTemperature) },
        };
    }

private:
    static int init()
    {
        ++s_current->inits;
        if (s_current->initStatus == GPU::NVML_SUCCESS) {
            ++s_current->sessions;
        }
        return s_current->initStatus;
    }

    static int shutdown()
    {
        --s_current->sessions;
        return GPU::NVML_SUCCESS;
    }

    static int getCount(unsigned* count)
    {
        *count = s_current->claimedCount;
        return s_current->countStatus;
    }

    static int getHandle(unsigned index, GPU::nvmlDevice* device)
    {
        if (index >= s_current->gpus.size()) {
            return failure;
        }
        *device = &s_current->gpus[index];
        return s_current->gpus[index].handleStatus;
    }

    static int getName(GPU::nvmlDevice device, char* name, unsigned length)
    {
        const Gpu& gpu = *static_cast<Gpu*>(device);
        std::copy_n(gpu.name.c_str(), std::min<std::size_t>(gpu.name.size() + 1, length), name);
        return gpu.nameStatus;
    }

    static int getTemperature(GPU::nvmlDevice device, int sensor, unsigned* celsius)
    {
        const Gpu& gpu = *static_cast<Gpu*>(device);
        *celsius = gpu.celsius;
        return sensor == GPU::NVML_TEMPERATURE_GPU ? gpu.temperatureStatus : failure;
    }

    inline static FakeNvml* s_current = nullptr;
};
