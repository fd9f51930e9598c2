#include <windows.h>

#include <QtTest>

#include "core/threads/task.h"
#include "tests/support/testenvironment.h"

using core::threads::Task;

namespace {

using GetDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*);

GetDescription getDescription()
{
    const auto address = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetThreadDescription");
    return reinterpret_cast<GetDescription>(reinterpret_cast<void (*)()>(address));
}

} // namespace

class ThreadNameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThreadHasTheTasksName()
    {
        QVERIFY(getDescription() != nullptr);
        QString found;
        Task task;
        QVERIFY(task.start("control of the fans", [&found] {
            PWSTR description = nullptr;
            if (SUCCEEDED(getDescription()(GetCurrentThread(), &description))) {
                found = QString::fromWCharArray(description);
                LocalFree(description);
            }
        }));
        task.join();
        QCOMPARE(found, QStringLiteral("control of the fans"));
    }
};

BRISORA_TEST_MAIN(ThreadNameTest, QCoreApplication)
#include "test_thread_name_windows.moc"
