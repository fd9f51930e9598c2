#include "core/tasks/windowstasks.h"

#include <string>
#include <utility>

#include <windows.h>
#include <taskschd.h>

#include "core/tasks/taskexception.h"

// Not declared by every compiler's headers. COM objects end by Release().
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
struct ILogonTrigger : public ITrigger {
    virtual HRESULT STDMETHODCALLTYPE get_Delay(BSTR* delay) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Delay(BSTR delay) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_UserId(BSTR* user) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_UserId(BSTR user) = 0;
};
__CRT_UUID_DECL(ILogonTrigger, 0x72dade38, 0xfae4, 0x4b3e, 0xba, 0xf4, 0x5d, 0x00, 0x9a, 0xf0, 0x2b,
                0x1c)
#pragma GCC diagnostic pop

namespace WindowsTasks {

namespace {

// The scheduler's collections count from 1.
constexpr int firstItem = 1;

class ComText {
public:
    ComText() = default;
    explicit ComText(const QString& text)
        : m_text(SysAllocString(text.toStdWString().c_str()))
    {
    }
    ComText(const ComText&) = delete;
    ComText& operator=(const ComText&) = delete;
    ~ComText() { SysFreeString(m_text); }

    [[nodiscard]] BSTR get() const { return m_text; }
    // For a call that gives a text.
    [[nodiscard]] BSTR* out() { return &m_text; }
    [[nodiscard]] QString text() const
    {
        return m_text != nullptr ? QString::fromWCharArray(m_text) : QString();
    }

private:
    BSTR m_text = nullptr;
};

VARIANT emptyVariant()
{
    VARIANT variant;
    VariantInit(&variant);
    return variant;
}

VARIANT_BOOL asVariantBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

void check(HRESULT result, const char* what)
{
    if (FAILED(result)) {
        throw TaskException(std::string(what) + " failed: "
                            + qt_error_string(static_cast<int>(result)).toStdString());
    }
}

template <typename Interface>
Interface& object(const core::ComPointer<Interface>& pointer, const char* operation)
{
    if (!pointer) {
        throw TaskException(std::string(operation) + " empty m_pComPtr");
    }
    return *pointer;
}

template <typename Target, typename Source> Target* queryInterface(Source& source, const char* what)
{
    void* target = nullptr;
    check(source.QueryInterface(__uuidof(Target), &target), what);
    return static_cast<Target*>(target);
}

} // namespace

TaskTrigger::~TaskTrigger() = default;

void TaskTrigger::setID(const QString& id)
{
    check(object(m_pComPtr, "TaskTrigger::setID").put_Id(ComText(id).get()), "ITrigger::put_Id");
}

TaskTriggerLogon::TaskTriggerLogon(const TaskTrigger& trigger)
    : Wrapper(queryInterface<ILogonTrigger>(
        object(trigger.m_pComPtr, "TaskTriggerLogon::TaskTriggerLogon"),
        "ITrigger::QueryInterface"))
{
}

TaskTriggerLogon::~TaskTriggerLogon() = default;

QString TaskTriggerLogon::getUserID() const
{
    ComText user;
    check(object(m_pComPtr, "TaskTriggerLogon::getUserID").get_UserId(user.out()),
          "ILogonTrigger::get_UserId");
    return user.text();
}

void TaskTriggerLogon::setUserID(const QString& user)
{
    check(object(m_pComPtr, "TaskTriggerLogon::setUserID").put_UserId(ComText(user).get()),
          "ILogonTrigger::put_UserId");
}

TaskTriggers::~TaskTriggers() = default;

TaskTrigger TaskTriggers::createTrigger(int type)
{
    ITrigger* trigger = nullptr;
    check(object(m_pComPtr, "TaskTriggers::createTrigger")
              .Create(static_cast<TASK_TRIGGER_TYPE2>(type), &trigger),
          "ITriggerCollection::Create");
    return TaskTrigger(trigger);
}

TaskTrigger TaskTriggers::getItem(int index) const
{
    ITrigger* trigger = nullptr;
    check(object(m_pComPtr, "TaskTriggers::getItem").get_Item(index + firstItem, &trigger),
          "ITriggerCollection::get_Item");
    return TaskTrigger(trigger);
}

int TaskTriggers::getCount() const
{
    LONG count = 0;
    check(object(m_pComPtr, "TaskTriggers::getCount").get_Count(&count),
          "ITriggerCollection::get_Count");
    return count;
}

TaskSettings::~TaskSettings() = default;

void TaskSettings::setDisallowStartIfOnBatteries(bool disallow)
{
    check(object(m_pComPtr, "TaskSettings::setDisallowStartIfOnBatteries")
              .put_DisallowStartIfOnBatteries(asVariantBool(disallow)),
          "ITaskSettings::put_DisallowStartIfOnBatteries");
}

void TaskSettings::bStopIfOnBatteries(bool stop)
{
    check(object(m_pComPtr, "TaskSettings::bStopIfOnBatteries")
              .put_StopIfGoingOnBatteries(asVariantBool(stop)),
          "ITaskSettings::put_StopIfGoingOnBatteries");
}

void TaskSettings::setInstancePolicy(int policy)
{
    check(object(m_pComPtr, "TaskSettings::setInstancePolicy")
              .put_MultipleInstances(static_cast<TASK_INSTANCES_POLICY>(policy)),
          "ITaskSettings::put_MultipleInstances");
}

void TaskSettings::setPriority(int priority)
{
    check(object(m_pComPtr, "TaskSettings::setPriority").put_Priority(priority),
          "ITaskSettings::put_Priority");
}

void TaskSettings::setStartWhenAvailable(bool start)
{
    check(object(m_pComPtr, "TaskSettings::setStartWhenAvailable")
              .put_StartWhenAvailable(asVariantBool(start)),
          "ITaskSettings::put_StartWhenAvailable");
}

void TaskSettings::setExecutionTimeLimit(const QString& duration)
{
    check(object(m_pComPtr, "TaskSettings::setExecutionTimeLimit")
              .put_ExecutionTimeLimit(ComText(duration).get()),
          "ITaskSettings::put_ExecutionTimeLimit");
}

QString TaskSettings::getExecutionTimeLimit() const
{
    ComText duration;
    check(object(m_pComPtr, "TaskSettings::getExecutionTimeLimit")
              .get_ExecutionTimeLimit(duration.out()),
          "ITaskSettings::get_ExecutionTimeLimit");
    return duration.text();
}

bool TaskSettings::isStartDisallowedOnBatteries() const
{
    VARIANT_BOOL value = VARIANT_FALSE;
    check(object(m_pComPtr, "TaskSettings::isStartDisallowedOnBatteries")
              .get_DisallowStartIfOnBatteries(&value),
          "ITaskSettings::get_DisallowStartIfOnBatteries");
    return value != VARIANT_FALSE;
}

bool TaskSettings::isStoppedOnBatteries() const
{
    VARIANT_BOOL value = VARIANT_FALSE;
    check(
        object(m_pComPtr, "TaskSettings::isStoppedOnBatteries").get_StopIfGoingOnBatteries(&value),
        "ITaskSettings::get_StopIfGoingOnBatteries");
    return value != VARIANT_FALSE;
}

TaskAction::~TaskAction() = default;

TaskActionExec::TaskActionExec(const TaskAction& action)
    : Wrapper(queryInterface<IExecAction>(
        object(action.m_pComPtr, "TaskActionExec::TaskActionExec"), "IAction::QueryInterface"))
{
}

TaskActionExec::~TaskActionExec() = default;

void TaskActionExec::setExe(const QString& path)
{
    check(object(m_pComPtr, "TaskActionExec::setExe").put_Path(ComText(path).get()),
          "IExecAction::put_Path");
}

void TaskActionExec::setArguments(const QString& arguments)
{
    check(object(m_pComPtr, "TaskActionExec::setArguments").put_Arguments(ComText(arguments).get()),
          "IExecAction::put_Arguments");
}

void TaskActionExec::setWorkingDir(const QString& folder)
{
    check(object(m_pComPtr, "TaskActionExec::setWorkingDir")
              .put_WorkingDirectory(ComText(folder).get()),
          "IExecAction::put_WorkingDirectory");
}

QString TaskActionExec::getExe() const
{
    ComText path;
    check(object(m_pComPtr, "TaskActionExec::getExe").get_Path(path.out()),
          "IExecAction::get_Path");
    return path.text();
}

QString TaskActionExec::getArgs() const
{
    ComText arguments;
    check(object(m_pComPtr, "TaskActionExec::getArgs").get_Arguments(arguments.out()),
          "IExecAction::get_Arguments");
    return arguments.text();
}

TaskActions::~TaskActions() = default;

TaskAction TaskActions::addAction(int type)
{
    IAction* action = nullptr;
    check(object(m_pComPtr, "TaskActions::addAction")
              .Create(static_cast<TASK_ACTION_TYPE>(type), &action),
          "IActionCollection::Create");
    return TaskAction(action);
}

TaskAction TaskActions::getAction(int index) const
{
    IAction* action = nullptr;
    check(object(m_pComPtr, "TaskActions::getAction").get_Item(index + firstItem, &action),
          "IActionCollection::get_Item");
    return TaskAction(action);
}

int TaskActions::getCount() const
{
    LONG count = 0;
    check(object(m_pComPtr, "TaskActions::getCount").get_Count(&count),
          "IActionCollection::get_Count");
    return count;
}

TaskDefinition::~TaskDefinition() = default;

TaskActions TaskDefinition::getActions() const
{
    IActionCollection* actions = nullptr;
    check(object(m_pComPtr, "TaskDefinition::getActions").get_Actions(&actions),
          "ITaskDefinition::get_Actions");
    return TaskActions(actions);
}

TaskSettings TaskDefinition::getSettings() const
{
    ITaskSettings* settings = nullptr;
    check(object(m_pComPtr, "TaskDefinition::getSettings").get_Settings(&settings),
          "ITaskDefinition::get_Settings");
    return TaskSettings(settings);
}

TaskTriggers TaskDefinition::getTriggers() const
{
    ITriggerCollection* triggers = nullptr;
    check(object(m_pComPtr, "TaskDefinition::getTriggers").get_Triggers(&triggers),
          "ITaskDefinition::get_Triggers");
    return TaskTriggers(triggers);
}

namespace {

core::ComPointer<IRegistrationInfo> registrationInfo(ITaskDefinition& definition)
{
    IRegistrationInfo* info = nullptr;
    check(definition.get_RegistrationInfo(&info), "ITaskDefinition::get_RegistrationInfo");
    return core::ComPointer<IRegistrationInfo>(info);
}

core::ComPointer<IPrincipal> principal(ITaskDefinition& definition)
{
    IPrincipal* result = nullptr;
    check(definition.get_Principal(&result), "ITaskDefinition::get_Principal");
    return core::ComPointer<IPrincipal>(result);
}

} // namespace

void TaskDefinition::setAuthor(const QString& author)
{
    auto& definition = object(m_pComPtr, "TaskDefinition::setAuthor");
    check(registrationInfo(definition)->put_Author(ComText(author).get()),
          "IRegistrationInfo::put_Author");
}

void TaskDefinition::setDescription(const QString& description)
{
    auto& definition = object(m_pComPtr, "TaskDefinition::setDescription");
    check(registrationInfo(definition)->put_Description(ComText(description).get()),
          "IRegistrationInfo::put_Description");
}

void TaskDefinition::setLogonType(int type)
{
    auto& definition = object(m_pComPtr, "TaskDefinition::setLogonType");
    check(principal(definition)->put_LogonType(static_cast<TASK_LOGON_TYPE>(type)),
          "IPrincipal::put_LogonType");
}

void TaskDefinition::setHighestPriviledges(bool highest)
{
    auto& definition = object(m_pComPtr, "TaskDefinition::setHighestPriviledges");
    check(principal(definition)->put_RunLevel(highest ? TASK_RUNLEVEL_HIGHEST : TASK_RUNLEVEL_LUA),
          "IPrincipal::put_RunLevel");
}

QString TaskDefinition::getAuthor() const
{
    ComText author;
    check(
        registrationInfo(object(m_pComPtr, "TaskDefinition::getAuthor"))->get_Author(author.out()),
        "IRegistrationInfo::get_Author");
    return author.text();
}

Task::~Task() = default;

QString Task::getName() const
{
    ComText name;
    check(object(m_pComPtr, "Task::getName").get_Name(name.out()), "IRegisteredTask::get_Name");
    return name.text();
}

bool Task::isEnabled() const
{
    VARIANT_BOOL enabled = VARIANT_FALSE;
    check(object(m_pComPtr, "Task::isEnabled").get_Enabled(&enabled),
          "IRegisteredTask::get_Enabled");
    return enabled != VARIANT_FALSE;
}

void Task::setEnabled(bool enabled)
{
    check(object(m_pComPtr, "Task::setEnabled").put_Enabled(asVariantBool(enabled)),
          "IRegisteredTask::put_Enabled");
}

TaskDefinition Task::getDefinition() const
{
    ITaskDefinition* definition = nullptr;
    check(object(m_pComPtr, "Task::getDefinition").get_Definition(&definition),
          "IRegisteredTask::get_Definition");
    return TaskDefinition(definition);
}

namespace {

ITaskService* createService()
{
    // Whether it has been done before in this process, or can't be done, doesn't
    // matter.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, 0, nullptr);
    void* service = nullptr;
    check(CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER,
                           __uuidof(ITaskService), &service),
          "CoCreateInstance");
    return static_cast<ITaskService*>(service);
}

} // namespace

TaskService::TaskService()
    : Wrapper(createService())
{
    check(m_pComPtr->Connect(emptyVariant(), emptyVariant(), emptyVariant(), emptyVariant()),
          "ITaskService::Connect");
    ITaskFolder* folder = nullptr;
    check(m_pComPtr->GetFolder(ComText(QStringLiteral("\\")).get(), &folder),
          "ITaskService::GetFolder");
    m_rootFolder.reset(folder);
}

TaskService::~TaskService() = default;

TaskDefinition TaskService::newTaskDefinition() const
{
    ITaskDefinition* definition = nullptr;
    check(object(m_pComPtr, "TaskService::newTaskDefinition").NewTask(0, &definition),
          "ITaskService::NewTask");
    return TaskDefinition(definition);
}

void TaskService::registerTask(const QString& name, const TaskDefinition& definition)
{
    if (name.isEmpty()) {
        throw TaskException("TaskService::registerTask - invalid task name");
    }
    if (definition.isEmpty()) {
        throw TaskException("TaskService::registerTask - no task definition");
    }
    if (!m_rootFolder) {
        throw TaskException("TaskService::registerTask - no root folder");
    }
    const ComText empty { QString() };
    VARIANT noUser = emptyVariant();
    VARIANT noDescriptor = emptyVariant();
    noUser.vt = noDescriptor.vt = VT_BSTR;
    noUser.bstrVal = noDescriptor.bstrVal = empty.get();
    IRegisteredTask* task = nullptr;
    check(m_rootFolder->RegisterTaskDefinition(ComText(name).get(), definition.m_pComPtr.get(),
                                               TASK_CREATE_OR_UPDATE, noUser, emptyVariant(),
                                               TASK_LOGON_INTERACTIVE_TOKEN, noDescriptor, &task),
          "RegisterTaskDefinition");
    // What was given out under this name is another task's now.
    m_tasks[name] = std::make_unique<Task>(task);
}

void TaskService::deleteTask(const QString& name)
{
    m_tasks.erase(name);
    check(m_rootFolder->DeleteTask(ComText(name).get(), 0), "ITaskFolder::DeleteTask");
}

Task* TaskService::getTask(const QString& name)
{
    IRegisteredTask* task = nullptr;
    if (!m_rootFolder || FAILED(m_rootFolder->GetTask(ComText(name).get(), &task))) {
        return nullptr;
    }
    auto& kept = m_tasks[name];
    kept = std::make_unique<Task>(task);
    return kept.get();
}

} // namespace WindowsTasks
