#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include <QStringList>

#include "app/gpu/driver_library.h"

// A loader that finds the libraries which the test has put into it, and what was
// asked of it. It must outlive what it makes.
class FakeLoader {
public:
    using Functions = std::map<std::string, GPU::DriverLibrary::Function>;

    std::map<std::string, Functions> libraries; // by file name
    std::uint32_t missingLibrary = 126; // error numbers
    std::uint32_t missingFunction = 127;
    QStringList loads; // file names, found or not
    int unloads = 0;

    [[nodiscard]] std::unique_ptr<GPU::DriverLibrary> make()
    {
        return std::make_unique<Library>(*this);
    }

    // A function as libraries are given it.
    template <typename Type> [[nodiscard]] static GPU::DriverLibrary::Function entry(Type* function)
    {
        return reinterpret_cast<GPU::DriverLibrary::Function>(function);
    }

private:
    class Library final : public GPU::DriverLibrary {
    public:
        explicit Library(FakeLoader& loader)
            : m_loader(loader)
        {
        }

        bool load(const char* fileName) override
        {
            m_loader.loads.append(QString::fromLatin1(fileName));
            const auto found = m_loader.libraries.find(fileName);
            m_functions = found == m_loader.libraries.end() ? nullptr : &found->second;
            m_error = m_loader.missingLibrary;
            return m_functions != nullptr;
        }

        Function find(const char* name) override
        {
            m_error = m_loader.missingFunction;
            const auto found = m_functions->find(name);
            return found == m_functions->end() ? nullptr : found->second;
        }

        void unload() override
        {
            ++m_loader.unloads;
            m_functions = nullptr;
        }

        std::uint32_t lastError() override { return m_error; }

    private:
        FakeLoader& m_loader;
        const Functions* m_functions = nullptr;
        std::uint32_t m_error = 0;
    };
};
