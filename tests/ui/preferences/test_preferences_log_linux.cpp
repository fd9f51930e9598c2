#include <QApplication>
#include <QFile>
#include <QtTest>

#include "tests/support/openedaddresses.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/preferences/diagnosticsbench.h"

// A desktop without a file manager, where the folder stands for the log.
class PreferencesLogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLinkShowsTheLog_data();
    void theLinkShowsTheLog();
};

void PreferencesLogTest::theLinkShowsTheLog_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("the link") << QStringLiteral("browse") << true;
    QTest::newRow("another link") << QStringLiteral("other") << false;
}

void PreferencesLogTest::theLinkShowsTheLog()
{
    QFETCH(QString, link);
    QFETCH(bool, isShown);
    const OpenedAddresses opened;
    DiagnosticsBench bench;
    QFile log(bench.logFile);
    QVERIFY(log.open(QIODevice::WriteOnly));
    bench.make();

    Q_EMIT bench.find<QLabel>("labelBrowseLog")->linkActivated(link);

    const QVector<QUrl> folder { QUrl::fromLocalFile(bench.folder.path()) };
    QCOMPARE(opened.addresses, isShown ? folder : QVector<QUrl>());
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    // Before anything connects to it: no bus, and so nobody on it.
    qputenv("DBUS_SESSION_BUS_ADDRESS",
            "unix:path=" + QFile::encodeName(environment.path()) + "/none");
    QApplication application(argc, argv);
    PreferencesLogTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_preferences_log_linux.moc"
