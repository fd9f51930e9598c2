#include <stdexcept>

#include <QApplication>
#include <QTimer>
#include <QToolBar>
#include <QtTest>

#include "core/settings/qsettingscache.h"
#include "core/widgets/qmainwindowex.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr int patience = 20000; // milliseconds

class TestWindow final : public QMainWindowEx {
public:
    TestWindow(QSettingsCache& settings, bool toTray)
        : QMainWindowEx(settings)
        , m_toTray(toTray)
    {
        tools.setObjectName(QStringLiteral("tools"));
        addToolBar(&tools);
    }

    using QMainWindowEx::restoreWindow;
    using QMainWindowEx::saveWindow;

    int closeCount = 0;
    int hideCount = 0;
    bool throwOnce = false;
    QToolBar tools; // has a place in the window's state

protected:
    bool closeToTray() const override { return m_toTray; }

    void onClose() override
    {
        ++closeCount;
        if (throwOnce) {
            throwOnce = false;
            throw std::runtime_error("no");
        }
    }

    void hideToTray() override
    {
        ++hideCount;
        QMainWindowEx::hideToTray();
    }

private:
    const bool m_toTray;
};

} // namespace

class MainWindowExTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // As the program does: its end is always explicit.
    void initTestCase() { QApplication::setQuitOnLastWindowClosed(false); }

    void aPlainCloseHidesToTheTray();
    void withoutATrayACloseIsReal();
    void theRealCloseRunsOnce();
    void theRealCloseReachesAHiddenWindow();
    void theRealCloseEndsTheEventLoop();
    void theEndOfTheEventLoopIsARealClose();
    void anExceptionLeavesTheCloseOpen();
    void placeIsRestored();
    void nothingIsRestoredFromNothing();
    void nothingIsRestoredFromGarbage_data();
    void nothingIsRestoredFromGarbage();

private:
    QSettingsCache m_settings { QStringLiteral("Orvane Software"), QStringLiteral("Brisora") };
};

void MainWindowExTest::aPlainCloseHidesToTheTray()
{
    TestWindow window(m_settings, true);
    window.show();

    QVERIFY(!window.close());

    QVERIFY(!window.isVisible());
    QCOMPARE(window.hideCount, 1);
    QCOMPARE(window.closeCount, 0);
}

void MainWindowExTest::withoutATrayACloseIsReal()
{
    TestWindow window(m_settings, false);
    window.show();

    QVERIFY(window.close());

    QCOMPARE(window.closeCount, 1);
}

void MainWindowExTest::theRealCloseRunsOnce()
{
    TestWindow window(m_settings, true);
    window.show();

    window.realClose();
    window.realClose();
    QVERIFY(window.close());

    QCOMPARE(window.closeCount, 1);
    QCOMPARE(window.hideCount, 0);
}

void MainWindowExTest::theRealCloseReachesAHiddenWindow()
{
    TestWindow window(m_settings, true);

    window.realClose();

    QCOMPARE(window.closeCount, 1);
}

void MainWindowExTest::theRealCloseEndsTheEventLoop()
{
    TestWindow window(m_settings, true);
    window.show();
    QTimer::singleShot(0, &window, [&window] { window.realClose(); });
    QTimer::singleShot(patience, &window, [] { QApplication::exit(1); });

    QCOMPARE(QApplication::exec(), 0);

    QCOMPARE(window.closeCount, 1);
}

void MainWindowExTest::theEndOfTheEventLoopIsARealClose()
{
    TestWindow window(m_settings, true);
    window.show();
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);

    QCOMPARE(QApplication::exec(), 0);

    QCOMPARE(window.closeCount, 1);
    QVERIFY(!window.isVisible());
}

void MainWindowExTest::anExceptionLeavesTheCloseOpen()
{
    TestWindow window(m_settings, true);
    window.throwOnce = true;
    QVERIFY_EXCEPTION_THROWN(window.realClose(), std::runtime_error);

    window.realClose();

    QCOMPARE(window.closeCount, 2);
}

void MainWindowExTest::placeIsRestored()
{
    {
        TestWindow window(m_settings, false);
        window.resize(432, 321);
        window.addToolBar(Qt::LeftToolBarArea, &window.tools);
        window.saveWindow();
    }
    TestWindow window(m_settings, false);

    QVERIFY(window.restoreWindow());

    QCOMPARE(window.size(), QSize(432, 321));
    QCOMPARE(window.toolBarArea(&window.tools), Qt::LeftToolBarArea);
}

void MainWindowExTest::nothingIsRestoredFromNothing()
{
    QSettingsCache empty(QStringLiteral("Orvane Software"), QStringLiteral("Other"));
    TestWindow window(empty, false);

    QVERIFY(!window.restoreWindow());
}

void MainWindowExTest::nothingIsRestoredFromGarbage_data()
{
    QTest::addColumn<QStringList>("keys");
    const QString geometry = QStringLiteral("WindowGeometry");
    const QString state = QStringLiteral("WindowState");
    QTest::newRow("both") << QStringList { geometry, state };
    QTest::newRow("the geometry alone") << QStringList { geometry };
    QTest::newRow("the state alone") << QStringList { state };
}

void MainWindowExTest::nothingIsRestoredFromGarbage()
{
    QFETCH(QStringList, keys);
    TestWindow(m_settings, false).saveWindow();
    for (const QString& key : keys) {
        QVERIFY(!m_settings.getByteArray(key).isEmpty());
        m_settings.setByteArray(key, QByteArrayLiteral("\x01\xD9 no place at all"));
    }
    TestWindow window(m_settings, false);

    QVERIFY(!window.restoreWindow());
}

BRISORA_TEST_MAIN(MainWindowExTest, QApplication)
#include "test_mainwindowex.moc"
