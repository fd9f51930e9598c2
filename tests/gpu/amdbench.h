#pragma once

#include <memory>

#include "app/gpu/provider_win_amd.h"
#include "tests/gpu/fakeadl.h"
#include "tests/support/logcapture.h"

// A driver, a loader that finds it, and the provider over them.
struct AmdBench {
    FakeAdl driver;
    FakeLoader loader;
    LogCapture log;
    std::unique_ptr<GPU::ProviderWindowsAMD> provider;

    AmdBench()
        : AmdBench("atiadlxx.dll")
    {
    }

    // With a library of this name.
    explicit AmdBench(const char* library)
    {
        loader.libraries[library] = FakeAdl::functions();
        provider = std::make_unique<GPU::ProviderWindowsAMD>(loader.make());
    }

    [[nodiscard]] QStringList names() const
    {
        QStringList result;
        for (int i = 0; i < provider->getCount(); ++i) {
            result.append(provider->getGpu(i)->name);
        }
        return result;
    }

    // The only GPU's temperature.
    [[nodiscard]] double temperature() const
    {
        return provider->getTemperature(provider->getGpu(0));
    }
};
