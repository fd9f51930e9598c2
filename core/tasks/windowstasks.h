#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include <QString>

#include "core/compointer.h"

struct IAction;
struct IActionCollection;
struct IExecAction;
struct ILogonTrigger;
struct IRegisteredTask;
struct ITaskDefinition;
struct ITaskFolder;
struct ITaskService;
struct ITaskSettings;
struct ITrigger;
struct ITriggerCollection;

// Windows' task scheduler: thin wrappers, each around one of its COM interfaces.
// The calling thread has COM. Whatever fails throws a TaskException, an operation
// on an empty wrapper too. Windows only.
namespace WindowsTasks {

template <typename Interface> class Wrapper {
public:
    explicit Wrapper(Interface* object) // takes the reference; null makes an empty one
        : m_pComPtr(object)
    {
    }

    [[nodiscard]] bool isEmpty() const { return m_pComPtr == nullptr; }

protected:
    core::ComPointer<Interface> m_pComPtr;
};

class TaskTrigger : public Wrapper<ITrigger> {
public:
    using Wrapper::Wrapper;
    ~TaskTrigger();
    TaskTrigger(TaskTrigger&&) noexcept = default;

    void setID(const QString& id);

private:
    friend class TaskTriggerLogon;
};

class TaskTriggerLogon : public Wrapper<ILogonTrigger> {
public:
    // Throws when the trigger is of another type.
    explicit TaskTriggerLogon(const TaskTrigger& trigger);
    ~TaskTriggerLogon();

    // Empty for any user's logon.
    [[nodiscard]] QString getUserID() const;
    void setUserID(const QString& user);
};

class TaskTriggers : public Wrapper<ITriggerCollection> {
public:
    using Wrapper::Wrapper;
    ~TaskTriggers();
    TaskTriggers(TaskTriggers&&) noexcept = default;

    // The types are the scheduler's: 9 is a logon.
    TaskTrigger createTrigger(int type);
    // From 0.
    [[nodiscard]] TaskTrigger getItem(int index) const;
    [[nodiscard]] int getCount() const;
};

class TaskSettings : public Wrapper<ITaskSettings> {
public:
    using Wrapper::Wrapper;
    ~TaskSettings();
    TaskSettings(TaskSettings&&) noexcept = default;

    void setDisallowStartIfOnBatteries(bool disallow);
    void bStopIfOnBatteries(bool stop);
    void setInstancePolicy(int policy);
    void setPriority(int priority);
    void setStartWhenAvailable(bool start);
    // An ISO 8601 duration; PT0S is no limit.
    void setExecutionTimeLimit(const QString& duration);
    [[nodiscard]] bool isStartDisallowedOnBatteries() const;
    [[nodiscard]] bool isStoppedOnBatteries() const;
    [[nodiscard]] QString getExecutionTimeLimit() const;
};

class TaskAction : public Wrapper<IAction> {
public:
    using Wrapper::Wrapper;
    ~TaskAction();
    TaskAction(TaskAction&&) noexcept = default;

private:
    friend class TaskActionExec;
};

class TaskActionExec : public Wrapper<IExecAction> {
public:
    // Throws when the action is of another type.
    explicit TaskActionExec(const TaskAction& action);
    ~TaskActionExec();

    void setExe(const QString& path);
    void setArguments(const QString& arguments);
    void setWorkingDir(const QString& folder);
    [[nodiscard]] QString getExe() const;
    [[nodiscard]] QString getArgs() const;
};

class TaskActions : public Wrapper<IActionCollection> {
public:
    using Wrapper::Wrapper;
    ~TaskActions();
    TaskActions(TaskActions&&) noexcept = default;

    // The types are the scheduler's: 0 runs a program.
    TaskAction addAction(int type);
    // From 0.
    [[nodiscard]] TaskAction getAction(int index) const;
    [[nodiscard]] int getCount() const;
};

class TaskDefinition : public Wrapper<ITaskDefinition> {
public:
    using Wrapper::Wrapper;
    ~TaskDefinition();
    TaskDefinition(TaskDefinition&&) noexcept = default;

    [[nodiscard]] TaskActions getActions() const;
    [[nodiscard]] TaskSettings getSettings() const;
    [[nodiscard]] TaskTriggers getTriggers() const;
    void setAuthor(const QString& author);
    void setDescription(const QString& description);
    // The scheduler's: 3 is the token of the user who is logged on.
    void setLogonType(int type);
    void setHighestPriviledges(bool highest);
    [[nodiscard]] QString getAuthor() const;

private:
    friend class TaskService;
};

// A task that is registered.
class Task : public Wrapper<IRegisteredTask> {
public:
    using Wrapper::Wrapper;
    ~Task();

    [[nodiscard]] QString getName() const;
    [[nodiscard]] bool isEnabled() const;
    void setEnabled(bool enabled);
    [[nodiscard]] TaskDefinition getDefinition() const;
};

// The scheduler and its root folder.
class TaskService : public Wrapper<ITaskService> {
public:
    // Connects.
    TaskService();
    ~TaskService();

    [[nodiscard]] TaskDefinition newTaskDefinition() const;
    // For the user who is logged on, in place of a task of the same name.
    void registerTask(const QString& name, const TaskDefinition& definition);
    void deleteTask(const QString& name);
    // Null when there is none. The service owns it; it is valid until the task is
    // asked for, registered or deleted again.
    [[nodiscard]] Task* getTask(const QString& name);
    // The tasks that were given out.
    [[nodiscard]] const std::map<QString, std::unique_ptr<Task>>& getTasks() const
    {
        return m_tasks;
    }
    [[nodiscard]] bool taskExists(const QString& name) { return getTask(name) != nullptr; }

private:
    core::ComPointer<ITaskFolder> m_rootFolder;
    std::map<QString, std::unique_ptr<Task>> m_tasks;
};

} // namespace WindowsTasks
