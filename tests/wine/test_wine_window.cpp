#include <QCoreApplication>
#include <QDir>
#include <QImage>

#include "tests/support/testenvironment.h"
#include "tests/wine/winerun.h"

class TestWineWindow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void the_first_start_writes_the_defaults_and_shows_the_window();
    void a_closed_window_lets_the_control_run_on();

private:
    VirtualDisplay m_display;
};

namespace {

const QString windowTitle = QStringLiteral("Brisora 1.5.9 ()");

} // namespace

void TestWineWindow::initTestCase()
{
    const QString missing = WineRun::missing();
    QVERIFY2(missing.isEmpty(), qPrintable(missing));
    QVERIFY(m_display.start());
}

void TestWineWindow::the_first_start_writes_the_defaults_and_shows_the_window()
{
    WineRun run(m_display);

    QVERIFY(run.startFirst());

    const QString window = run.waitForWindow(windowTitle);
    QVERIFY(!window.isEmpty());
    QVERIFY(run.waitUntilLoaded());
    // A shown window has all temperatures read in each pass, not in the first alone.
    QVERIFY(run.waitFor([&run] { return trace::count(run.traceLog(), trace::read("TW0P")) >= 3; }));
    QVERIFY(QDir().mkpath(QStringLiteral(SCREENSHOT_FOLDER)));
    const QString file = QStringLiteral(SCREENSHOT_FOLDER "/windows.png");
    QFile::remove(file);
    QVERIFY(m_display.saveScreenshot(window, file));
    const QImage picture(file);
    QVERIFY(picture.width() > 500);
    // More than an empty frame.
    QVERIFY(picture.convertToFormat(QImage::Format_Indexed8).colorCount() > 16);

    QVERIFY(run.endSession());
    const auto settings = run.storedSettings();
    QCOMPARE(settings[QStringLiteral("AppFirstRun")], QStringLiteral("00000000"));
    QCOMPARE(settings[QStringLiteral("ActivePreset")], QStringLiteral("Predefined:0"));
    for (const char* name :
         { "Fahrenheit", "PreciseTemperature", "ShowSmartDrives", "ShowNVMeDrives", "ShowEGpuTemp",
           "InterfaceLanguage", "WindowGeometry", "WindowSplitterPosition" }) {
        QVERIFY2(settings.contains(QLatin1String(name)), name);
    }
    QCOMPARE(run.leftovers(), QStringList());
}

void TestWineWindow::a_closed_window_lets_the_control_run_on()
{
    WineRun run(m_display);
    run.storeActivePreset({ QStringLiteral("1,3000"), QStringLiteral("0") });
    QVERIFY(run.start());
    QVERIFY(!run.waitForWindow(windowTitle).isEmpty());
    QVERIFY(run.waitForLine(trace::wroteRpm("F0Tg", 3000)) >= 0);

    QVERIFY(run.closeWindows());

    QVERIFY(run.waitFor([&run] { return !run.isWindowVisible(windowTitle); }));
    const std::size_t afterClose = run.here();
    // The bits are asserted again, which the control does every few seconds.
    QVERIFY(run.waitForLine(trace::wroteMask(1), afterClose) >= 0);
    QVERIFY(run.isRunning());
    QCOMPARE(trace::count(run.traceLog(), trace::wroteMask(0), afterClose), 0);
    QVERIFY(run.endSession());
    QCOMPARE(run.leftovers(), QStringList());
}

BRISORA_TEST_MAIN(TestWineWindow, QCoreApplication)

#include "test_wine_window.moc"
