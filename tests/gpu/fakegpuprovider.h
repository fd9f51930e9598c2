#pragma once

#include <memory>
#include <vector>

#include "app/gpu/provider.h"

// A provider that finds the GPUs which the test has put into it, and what was
// asked of it.
class FakeGpuProvider final : public GPU::Provider {
public:
    struct Gpu {
        QString name;
        double celsius = 0.0;
        bool noSmcMatch = false;
    };

    std::vector<Gpu> machine;
    int discoveries = 0;
    int clears = 0;
    int reads = 0;

    FakeGpuProvider() = default;
    explicit FakeGpuProvider(const std::vector<Gpu>& gpus)
        : machine(gpus)
    {
    }

    void clear() override
    {
        ++clears;
        Provider::clear();
    }

    bool discoverGPUs() override
    {
        ++discoveries;
        for (Gpu& gpu : machine) {
            addGpu(gpu.name, &gpu);
            getGpu(getCount() - 1)->noSmcMatch = gpu.noSmcMatch;
        }
        return getCount() > 0;
    }

    double getTemperature(const GPU::Info* gpu) override
    {
        ++reads;
        return static_cast<const Gpu*>(gpu->handle)->celsius;
    }
};
