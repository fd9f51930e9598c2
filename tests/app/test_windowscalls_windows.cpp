#include <array>
#include <memory>
#include <string>
#include <thread>

#include <windows.h>
#include <objbase.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include "app/platform/processrun.h"
#include "app/platform/windowscalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr std::uint32_t untouched = 1234;
constexpr DWORD deadline = 10000; // milliseconds

// An event that the helper tool knows by its name.
class NamedEvent {
public:
    explicit NamedEvent(const QString& name)
        : m_handle(CreateEventW(nullptr, TRUE, FALSE, name.toStdWString().c_str()))
    {
    }
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;
    // Whatever happened, the tool ends.
    ~NamedEvent()
    {
        set();
        CloseHandle(m_handle);
    }

    void set() { SetEvent(m_handle); }
    [[nodiscard]] bool isSetInTime() { return WaitForSingleObject(m_handle, deadline) == 0; }

private:
    const HANDLE m_handle;
};

// Answers the system's message box with the given title as soon as it is there,
// on a thread of its own.
class BoxAnswer {
public:
    explicit BoxAnswer(std::wstring title)
        : m_thread([this, boxTitle = std::move(title)] { answer(boxTitle); })
    {
    }

    struct Box {
        std::wstring text;
        HICON icon = nullptr;
    };
    [[nodiscard]] Box box()
    {
        m_thread.join();
        return m_box;
    }

private:
    void answer(const std::wstring& title)
    {
        constexpr DWORD pause = 20; // milliseconds
        for (DWORD waited = 0; waited < deadline; waited += pause) {
            const HWND box = FindWindowW(nullptr, title.c_str());
            if (box != nullptr && IsWindowVisible(box) != 0) {
                look(box);
                PostMessageW(box, WM_COMMAND, IDOK, 0);
                return;
            }
            Sleep(pause);
        }
    }

    // The text and the icon have a field each, of the same class.
    void look(HWND box)
    {
        HWND field = nullptr;
        while ((field = FindWindowExW(box, field, L"Static", nullptr)) != nullptr) {
            if ((GetWindowLongW(field, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
                m_box.icon = reinterpret_cast<HICON>(SendMessageW(field, STM_GETICON, 0, 0));
            } else {
                std::array<wchar_t, 200> text {};
                GetWindowTextW(field, text.data(), static_cast<int>(text.size()));
                m_box.text += text.data();
            }
        }
    }

    Box m_box;
    std::thread m_thread;
};

} // namespace

class WindowsCallsTest : public QObject {
    Q_OBJECT

private:
    const std::unique_ptr<WindowsCalls> m_calls = makeWindowsCalls();
    const QString m_tool = QDir::toNativeSeparators(QCoreApplication::applicationDirPath()
                                                    + QLatin1String("/helpertool.exe"));

    int run(const QString& program, const QString& arguments, std::uint32_t timeout,
            std::uint32_t* exitCode)
    {
        return static_cast<int>(runProcess(*m_calls, program, arguments, 0, timeout, exitCode));
    }

    static QVector<unsigned> takeThreadMessages()
    {
        const auto threadMessages = reinterpret_cast<HWND>(INT_PTR { -1 });
        QVector<unsigned> taken;
        MSG message {};
        while (PeekMessageW(&message, threadMessages, 0, 0, PM_REMOVE) != 0) {
            taken.append(message.message);
        }
        return taken;
    }

private Q_SLOTS:
    void theExitCodeIsKept_data()
    {
        QTest::addColumn<unsigned>("code");
        QTest::newRow("zero") << 0U;
        QTest::newRow("one") << 1U;
        QTest::newRow("large") << 123456U;
    }
    void theExitCodeIsKept()
    {
        QFETCH(unsigned, code);
        std::uint32_t exitCode = untouched;
        QCOMPARE(
            run(m_tool, QStringLiteral("exit %1").arg(code), WindowsCalls::noTimeout, &exitCode),
            0);
        QCOMPARE(exitCode, code);
    }

    void theExitCodeNeedNotBeAsked()
    {
        QCOMPARE(run(m_tool, QStringLiteral("exit 5"), WindowsCalls::noTimeout, nullptr), 0);
    }

    void aMissingProgramIsNotStarted()
    {
        const QString missing = m_tool + QStringLiteral(".missing.exe");
        QVERIFY(
            !m_calls->createProcess(missing, commandLineOf(missing, QStringLiteral("exit 5")), 0));
        QCOMPARE(m_calls->lastError(), ERROR_FILE_NOT_FOUND);
    }

    void withoutATimeoutItDoesNotWait()
    {
        NamedEvent end(QStringLiteral("brisora-unawaited"));
        NamedEvent started(QStringLiteral("brisora-unawaited-started"));
        std::uint32_t exitCode = untouched;
        QCOMPARE(run(m_tool, QStringLiteral("wait brisora-unawaited"), 0, &exitCode), 1);
        QCOMPARE(exitCode, untouched);
        QVERIFY(started.isSetInTime());
    }

    void aLongRunTimesOut()
    {
        NamedEvent end(QStringLiteral("brisora-timeout"));
        NamedEvent started(QStringLiteral("brisora-timeout-started"));
        std::uint32_t exitCode = untouched;
        QCOMPARE(run(m_tool, QStringLiteral("wait brisora-timeout"), 50, &exitCode), 258);
        QCOMPARE(exitCode, std::uint32_t { STILL_ACTIVE });
        QVERIFY(started.isSetInTime());
    }

    void anEndInTimeIsNoTimeout()
    {
        NamedEvent end(QStringLiteral("brisora-in-time"));
        NamedEvent started(QStringLiteral("brisora-in-time-started"));
        end.set();
        std::uint32_t exitCode = untouched;
        QCOMPARE(run(m_tool, QStringLiteral("wait brisora-in-time"), deadline, &exitCode), 0);
        QCOMPARE(exitCode, 3U);
    }

    void theLongestCommandLineArrivesWhole()
    {
        std::uint32_t exitCode = untouched;
        QCOMPARE(run(m_tool, QStringLiteral("length ") + QString(5000, QLatin1Char('x')),
                     WindowsCalls::noTimeout, &exitCode),
                 0);
        QCOMPARE(exitCode, 2047U);
    }

    void aBlankInThePathLeadsToNoOtherProgram()
    {
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("a folder")));
        const QString program
            = QDir::toNativeSeparators(folder.filePath(QStringLiteral("a folder/tool.exe")));
        QVERIFY(QFile::copy(m_tool, program));
        QVERIFY(QFile::copy(m_tool, folder.filePath(QStringLiteral("a.exe"))));

        std::uint32_t exitCode = untouched;
        QCOMPARE(run(program, QStringLiteral("exit 7"), WindowsCalls::noTimeout, &exitCode), 0);
        QCOMPARE(exitCode, 7U);

        // The other one isn't taken in its place either.
        QVERIFY(QFile::remove(program));
        exitCode = untouched;
        QCOMPARE(run(program, QStringLiteral("exit 7"), WindowsCalls::noTimeout, &exitCode), 0);
        QCOMPARE(exitCode, untouched);
    }

    void aPathMayHaveAnyLetters()
    {
        QTemporaryDir folder;
        const QString program
            = QDir::toNativeSeparators(folder.filePath(QString::fromUtf8("Lüfter ж.exe")));
        QVERIFY(QFile::copy(m_tool, program));
        std::uint32_t exitCode = untouched;
        QCOMPARE(run(program, QStringLiteral("exit 8"), WindowsCalls::noTimeout, &exitCode), 0);
        QCOMPARE(exitCode, 8U);
    }

    void theBusyCursorEndsWithOneMessageOfTheThread_data()
    {
        using Messages = QVector<unsigned>;
        QTest::addColumn<Messages>("waiting");
        QTest::addColumn<Messages>("left");
        QTest::newRow("none") << Messages {} << Messages {};
        QTest::newRow("one") << Messages { WM_APP } << Messages { WM_NULL };
        QTest::newRow("two") << Messages { WM_APP, WM_USER } << Messages { WM_USER, WM_NULL };
    }
    void theBusyCursorEndsWithOneMessageOfTheThread()
    {
        QFETCH(QVector<unsigned>, waiting);
        QCOMPARE(takeThreadMessages(), QVector<unsigned>());
        for (const unsigned message : waiting) {
            QVERIFY(PostThreadMessageW(GetCurrentThreadId(), message, 0, 0) != 0);
        }

        m_calls->endBusyCursor();

        QTEST(takeThreadMessages(), "left");
    }

    void theMessagesOfWindowsStay()
    {
        const HWND window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                            nullptr, nullptr);
        QVERIFY(window != nullptr);
        QVERIFY(PostMessageW(window, WM_APP, 5, 6) != 0);

        m_calls->endBusyCursor();

        MSG message {};
        QVERIFY(PeekMessageW(&message, window, WM_APP, WM_APP, PM_REMOVE) != 0);
        QCOMPARE(message.wParam, WPARAM { 5 });
        QCOMPARE(takeThreadMessages(), QVector<unsigned>());
        DestroyWindow(window);
    }

    void comIsTakenPerThread()
    {
        std::array<std::int32_t, 3> results { -1, -1, -1 };
        std::thread([this, &results] {
            results[0] = m_calls->initializeCom();
            results[1] = m_calls->initializeCom();
            m_calls->uninitializeCom();
            m_calls->uninitializeCom();
            // Nothing is left of it: another mode is free.
            results[2] = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            CoUninitialize();
        }).join();
        QCOMPARE(results[0], 0);
        QCOMPARE(results[1], 1);
        QCOMPARE(results[2], 0);
    }

    void comOfAnotherModeIsTold()
    {
        std::int32_t result = 0;
        std::thread([this, &result] {
            CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            result = m_calls->initializeCom();
            CoUninitialize();
        }).join();
        QCOMPARE(result, WindowsCalls::comChangedMode);
    }

    void aWarningIsABoxOfTheSystems()
    {
        BoxAnswer answer(L"Brisora test 1.5.9");
        m_calls->showWarning(QStringLiteral("Brisora test 1.5.9"),
                             QString::fromUtf8("Kein Lüfter."));
        const auto box = answer.box();
        QCOMPARE(QString::fromStdWString(box.text), QString::fromUtf8("Kein Lüfter."));
        // The system's own icons are shared: each has one handle.
        QVERIFY(box.icon != nullptr);
        QCOMPARE(box.icon, LoadIconA(nullptr, IDI_WARNING));
        QVERIFY(box.icon != LoadIconA(nullptr, IDI_ERROR));
    }
};

BRISORA_TEST_MAIN(WindowsCallsTest, QCoreApplication)
#include "test_windowscalls_windows.moc"
