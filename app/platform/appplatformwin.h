#pragma once

#include <cstdint>
#include <memory>

#include "app/platform/appplatformspecific.h"
#include "app/platform/autostartwin.h"

class AutostartCalls;
class WindowsCalls;
enum class ProcessResult : int;

// Windows: the driver, where one is needed, is installed, tested and removed by
// a tool that lies beside the executable.
class AppPlatformWin final : public AppPlatformSpecific {
public:
    AppPlatformWin(PlatformHost host, std::unique_ptr<WindowsCalls> calls,
                   std::unique_ptr<AutostartCalls> autostartCalls);
    // Gives COM back if the start check has taken it.
    ~AppPlatformWin() override;

    bool startCheck() override;
    void createMainWindow() override;
    void setAutostart(bool enable) override { m_autostart.setEnabled(enable); }
    bool isAutostart() const override { return m_autostart.isEnabled(); }
    bool uninstall() override;
    QString logFilePath() const override;
    bool hasWriteAccess() const override;

private:
    void initializeCom();
    void installDriver();
    void checkDriver();
    // The tool's switch for this machine's kind of driver, if it needs one.
    [[nodiscard]] QStringList driverVariant() const;
    // As runProcess().
    [[nodiscard]] ProcessResult runTool(const QStringList& switches, std::uint32_t timeout,
                                        std::uint32_t* exitCode);

    const std::unique_ptr<WindowsCalls> m_calls;
    AutostartWin m_autostart;
    bool m_comInitialized = false;
};
