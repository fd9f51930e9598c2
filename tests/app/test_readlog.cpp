#include <QFile>
#include <QtTest>

#include "app/app.h"
#include "core/log/log.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

class ReadLogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutALogThereIsNothing();
    void aLogIsReadAsUtf8();
    void theLogIsCompleteWhileItIsWritten();

private:
    static const QBrisoraApp& application() { return *QBrisoraApp::instance(); }
};

void ReadLogTest::withoutALogThereIsNothing()
{
    QVERIFY(!core::log::isStarted());
    QVERIFY(!QFile::exists(application().logFilePath()));
    QCOMPARE(application().readLog(), QString());
}

void ReadLogTest::aLogIsReadAsUtf8()
{
    QVERIFY(!core::log::isStarted());
    QFile file(application().logFilePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("L\xC3\xBC"
               "fter 2\xE2\x80\x93"
               "3\r\nend\r\n");
    file.close();

    QCOMPARE(application().readLog(), QStringLiteral("Lüfter 2–3\nend\n"));
}

void ReadLogTest::theLogIsCompleteWhileItIsWritten()
{
    QVERIFY(core::log::initLogger(application().logFilePath().toStdWString()));
    LOG_INFO("{}", QStringLiteral("Lüfter"));

    const QString log = application().readLog();

    QVERIFY2(log.endsWith(QStringLiteral("] Lüfter\n")), qPrintable(log));
    QCOMPARE(log.count(QLatin1Char('\n')), 1);
    QVERIFY(!log.contains(QLatin1Char('\r')));
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    initResources();
    QBrisoraApp application(argc, argv);
    ReadLogTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_readlog.moc"
