#pragma once

#include <memory>

#include "core/system/darkmodewatcher.h"
#include "core/threads/task.h"

struct HKEY__;

namespace System {

// Follows the user's choice in the registry on a task of its own, which emits the
// signal; the object lives on the GUI thread.
class WindowsDarkModeWatcher final : public DarkModeWatcher {
    Q_OBJECT

public:
    WindowsDarkModeWatcher() = default;
    ~WindowsDarkModeWatcher() override;

    // Without effect where the system knows no looks.
    void start();
    void stop();

private:
    struct CloseKey {
        void operator()(HKEY__* key) const;
    };
    struct CloseEvent {
        void operator()(void* event) const;
    };
    using Event = std::unique_ptr<void, CloseEvent>;

    void run();
    [[nodiscard]] bool awaitChange() const;

    std::unique_ptr<HKEY__, CloseKey> m_key;
    Event m_changeEvent;
    Event m_stopEvent;
    core::threads::Task m_task;
};

} // namespace System
