#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include <QtTest>

#include "tests/support/modalboxdriver.h"
#include "tests/support/modaldialogdriver.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"

namespace {

using End = void (*)(QFanControlMainWindow& window);

// Holds up every read of the controller while it lives, so that no task can end.
class DeafController {
public:
    explicit DeafController(EngineMachine& machine)
    {
        // The machine may read on once this object is gone.
        machine.platform->onRead
            = [state = m_state, isDone = m_end.get_future().share()](const std::string&) {
                  if (state->isDeaf) {
                      state->isWaitedFor = true;
                      isDone.wait();
                  }
              };
    }
    DeafController(const DeafController&) = delete;
    DeafController& operator=(const DeafController&) = delete;
    ~DeafController() { m_end.set_value(); }

    void becomeDeaf() { m_state->isDeaf = true; }
    [[nodiscard]] bool isWaitedFor() const { return m_state->isWaitedFor; }

private:
    struct State {
        std::atomic<bool> isDeaf { false };
        std::atomic<bool> isWaitedFor { false };
    };

    std::promise<void> m_end;
    const std::shared_ptr<State> m_state = std::make_shared<State>();
};

// Lets the clock run on while the GUI thread waits for the engine's end, as long as
// that may take.
class PassingTime {
public:
    explicit PassingTime(SteppingClock& clock)
        : m_thread([&clock] {
            constexpr int waits = 40;
            constexpr int eachWait = 200; // milliseconds
            for (int wait = 1; wait <= waits && clock.waitForGuiWaitsBegun(wait); ++wait) {
                clock.advance(eachWait);
            }
        })
    {
    }
    PassingTime(const PassingTime&) = delete;
    PassingTime& operator=(const PassingTime&) = delete;
    ~PassingTime() { m_thread.join(); }

private:
    std::thread m_thread;
};

} // namespace

Q_DECLARE_METATYPE(End)

// The ways in which the window closes for good.
class MainWindowEndsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup() { WindowProcess::takeQuitRequest(); }

    void openDialogsAreClosedBeforeTheEngineStops_data();
    void openDialogsAreClosedBeforeTheEngineStops();
    void aStopThatFailsIsToldUnlessTheSystemEndsTheProgram_data();
    void aStopThatFailsIsToldUnlessTheSystemEndsTheProgram();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowEndsTest::openDialogsAreClosedBeforeTheEngineStops_data()
{
    QTest::addColumn<End>("end");
    QTest::newRow("exit") << End { [](QFanControlMainWindow& window) { window.slotExit(); } };
    QTest::newRow("end of the session")
        << End { [](QFanControlMainWindow& window) { window.realClose(); } };
    QTest::newRow("termination") << End { [](QFanControlMainWindow& window) {
        window.closeForTermination();
    } };
}

void MainWindowEndsTest::openDialogsAreClosedBeforeTheEngineStops()
{
    QFETCH(End, end);
    WindowBench bench;
    auto& window = bench.makeLoaded();
    window.show();
    const auto hasStopped = [&bench] {
        return bench.machine.log.contains(QStringLiteral("info: stopAndWaitForFinished: Quit OK"));
    };
    QStringList closed;
    const auto watch = [&](QDialog& dialog, const QString& name) {
        connect(&dialog, &QDialog::finished, &window, [&closed, hasStopped, name] {
            closed.append(hasStopped() ? name + QLatin1String(", too late") : name);
        });
    };
    ModalDialogDriver driver([&](QDialog& dialog) {
        watch(dialog, QStringLiteral("first"));
        QDialog second(&dialog);
        second.setModal(true);
        watch(second, QStringLiteral("second"));
        second.show();
        QCOMPARE(QApplication::activeModalWidget(), &second);

        end(window);

        QVERIFY(!dialog.isVisible());
        QVERIFY(!second.isVisible());
    });

    window.slotPreferences();

    QCOMPARE(closed, QStringList({ QStringLiteral("second"), QStringLiteral("first") }));
    QVERIFY(hasStopped());
    QVERIFY(!window.isVisible());
}

void MainWindowEndsTest::aStopThatFailsIsToldUnlessTheSystemEndsTheProgram_data()
{
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("boxes");
    QTest::newRow("exit") << End { [](QFanControlMainWindow& window) { window.slotExit(); } } << 1;
    QTest::newRow("termination") << End { [](QFanControlMainWindow& window) {
        window.closeForTermination();
    } } << 0;
}

void MainWindowEndsTest::aStopThatFailsIsToldUnlessTheSystemEndsTheProgram()
{
    QFETCH(End, end);
    QFETCH(int, boxes);
    WindowBench bench;
    const auto controller = std::make_unique<DeafController>(bench.machine);
    auto& window = bench.makeLoaded();
    window.show();
    controller->becomeDeaf();
    QTRY_VERIFY(bench.letTimePass() && controller->isWaitedFor());
    ModalBoxDriver driver([&window](QMessageBox& box) {
        QVERIFY(!window.isVisible());
        QVERIFY(box.parentWidget() == nullptr);
        QCOMPARE(box.icon(), QMessageBox::Warning);
        QCOMPARE(box.windowTitle(), QStringLiteral("Brisora 1.2.3"));
        QCOMPARE(box.text(),
                 QStringLiteral("Unable to terminate the app in the right way, \nplease contact "
                                "support for assistance and resolving the problem."));
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
    });

    {
        const PassingTime time(bench.machine.clock);
        end(window);
    }

    QCOMPARE(driver.boxCount(), boxes);
    QCOMPARE(bench.machine.log.lines()
                 .filter(QStringLiteral("error: stopAndWaitForFinished ERROR"))
                 .size(),
             1);
}

BRISORA_TEST_MAIN(MainWindowEndsTest, QApplication)

#include "test_mainwindow_ends.moc"
