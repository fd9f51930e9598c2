#include <memory>

#include <QSettings>
#include <QtTest>

#include "app/platform/autostartcalls.h"
#include "tests/support/testenvironment.h"

class AutostartCallsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thisWindowsHasATaskScheduler() { QVERIFY(m_calls->hasTaskScheduler()); }

    void runValuesComeAndGo()
    {
        const QString name = QStringLiteral("Brisora");
        const QString command = QString::fromUtf8("\"C:\\Lüfter\\Brisora.exe\" /minimized");
        QVERIFY(!m_calls->hasRunValue(name));
        m_calls->deleteRunValue(name);

        m_calls->setRunValue(name, command);

        QVERIFY(m_calls->hasRunValue(name));
        const QSettings run(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\"
                                           "CurrentVersion\\Run"),
                            QSettings::NativeFormat);
        QCOMPARE(run.value(name).toString(), command);
        m_calls->deleteRunValue(name);
        QVERIFY(!m_calls->hasRunValue(name));
    }

private:
    const std::unique_ptr<AutostartCalls> m_calls = makeAutostartCalls();
};

BRISORA_TEST_MAIN(AutostartCallsTest, QCoreApplication)
#include "test_autostartcalls_windows.moc"
