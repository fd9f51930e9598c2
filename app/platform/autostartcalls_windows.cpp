#include "app/platform/autostartcalls.h"

#include <windows.h>

#include "core/log/log.h"
#include "core/tasks/windowstasks.h"

namespace {

const wchar_t* const runKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";

class AutostartCallsSystem final : public AutostartCalls {
public:
    bool hasTaskScheduler() override
    {
        OSVERSIONINFOEXW version {};
        version.dwOSVersionInfoSize = sizeof(version);
        version.dwMajorVersion = 6;
        DWORDLONG conditions = 0;
        for (const DWORD field : { VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR }) {
            conditions = VerSetConditionMask(conditions, field, VER_GREATER_EQUAL);
        }
        return VerifyVersionInfoW(
                   &version, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, conditions)
            != 0;
    }

    void registerTask(const LogonTask& task) override
    {
        WindowsTasks::TaskService service;
        auto definition = service.newTaskDefinition();
        definition.setAuthor(task.author);
        definition.setHighestPriviledges(task.highestRunLevel);
        definition.setLogonType(task.logonType);
        definition.getTriggers().createTrigger(task.triggerType);
        auto settings = definition.getSettings();
        settings.setDisallowStartIfOnBatteries(task.disallowStartIfOnBatteries);
        settings.bStopIfOnBatteries(task.stopIfGoingOnBatteries);
        settings.setExecutionTimeLimit(task.timeLimit);
        WindowsTasks::TaskActionExec action(definition.getActions().addAction(task.actionType));
        action.setExe(task.program);
        action.setArguments(task.arguments);
        service.registerTask(task.name, definition);
    }

    void deleteTask(const QString& name) override { WindowsTasks::TaskService().deleteTask(name); }

    bool taskExists(const QString& name) override
    {
        return WindowsTasks::TaskService().taskExists(name);
    }

    void setRunValue(const QString& name, const QString& command) override
    {
        const std::wstring text = command.toStdWString();
        const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
        const LSTATUS status = RegSetKeyValueW(
            HKEY_CURRENT_USER, runKey, name.toStdWString().c_str(), REG_SZ, text.c_str(), size);
        if (status != ERROR_SUCCESS) {
            LOG_WARN("The start at logon can't be stored: error {}", status);
        }
    }

    void deleteRunValue(const QString& name) override
    {
        const LSTATUS status
            = RegDeleteKeyValueW(HKEY_CURRENT_USER, runKey, name.toStdWString().c_str());
        if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
            LOG_WARN("The start at logon can't be removed: error {}", status);
        }
    }

    bool hasRunValue(const QString& name) override
    {
        return RegGetValueW(HKEY_CURRENT_USER, runKey, name.toStdWString().c_str(), RRF_RT_ANY,
                            nullptr, nullptr, nullptr)
            == ERROR_SUCCESS;
    }
};

} // namespace

std::unique_ptr<AutostartCalls> makeAutostartCalls()
{
    return std::make_unique<AutostartCallsSystem>();
}
