#pragma once

#include <memory>

#include "core/system/powersourcewatcher.h"

struct HWND__;

namespace System {

// Hears of the power source by a hidden window of its own. GUI thread.
class WindowsPowerSourceWatcher final : public PowerSourceWatcher {
    Q_OBJECT

public:
    using PowerSourceWatcher::PowerSourceWatcher;
    ~WindowsPowerSourceWatcher() override;

    // Without effect where the system has no such notifications.
    void start();
    void stop();

private:
    struct DestroyWindow {
        void operator()(HWND__* window) const;
    };
    struct Unregister {
        void operator()(void* notification) const;
    };

    [[nodiscard]] bool makeWindow();

    std::unique_ptr<HWND__, DestroyWindow> m_window;
    std::unique_ptr<void, Unregister> m_notification;
};

} // namespace System
