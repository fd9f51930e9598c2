#pragma once

#include <memory>

#include <QString>

struct HKEY__;

namespace core {

// A key of the machine-wide registry, opened for reading for as long as the object
// lives. Windows only. Programs of 32 bits see the system's own values too, not
// those that are kept apart for them.
class MachineRegistryKey {
public:
    // The path such as "SYSTEM\\CurrentControlSet".
    explicit MachineRegistryKey(const QString& path);

    // Whether there is such a key and it may be read.
    [[nodiscard]] bool isOpen() const { return m_key != nullptr; }
    // The value; empty when it can't be read, is no text, or is longer than 2048
    // bytes.
    [[nodiscard]] QString text(const QString& name) const;

private:
    struct Close {
        void operator()(HKEY__* key) const;
    };
    std::unique_ptr<HKEY__, Close> m_key;
};

} // namespace core
