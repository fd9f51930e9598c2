#pragma once

#include <cstdint>
#include <memory>

#include <QByteArray>
#include <QString>

struct HKEY__;

// Stands in for the machine-wide registry of this process for as long as it lives:
// empty at first, kept under the user's own keys, and removed at the end. Windows
// only.
class FakeMachineRegistry {
public:
    FakeMachineRegistry();
    FakeMachineRegistry(const FakeMachineRegistry&) = delete;
    FakeMachineRegistry& operator=(const FakeMachineRegistry&) = delete;
    ~FakeMachineRegistry();

    void addKey(const QString& key);
    // A text with its terminator, as well-behaved programs write it.
    void setText(const QString& key, const QString& name, const QString& value);
    // The bytes as they are, under the type's number.
    void setValue(const QString& key, const QString& name, std::uint32_t type,
                  const QByteArray& value);

    // Where the keys really lie, under the user's own.
    [[nodiscard]] static QString place();

private:
    struct Close {
        void operator()(HKEY__* key) const;
    };
    std::unique_ptr<HKEY__, Close> m_root;
};
