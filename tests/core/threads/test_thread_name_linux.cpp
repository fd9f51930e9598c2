#include <QFile>
#include <QtTest>

#include "core/threads/task.h"
#include "tests/support/testenvironment.h"

using core::threads::Task;

class ThreadNameTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThreadHasTheTasksName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        QTest::newRow("short") << QStringLiteral("update") << QStringLiteral("update");
        QTest::newRow("just fits")
            << QStringLiteral("123456789012345") << QStringLiteral("123456789012345");
        QTest::newRow("too long") << QStringLiteral("1234567890123456")
                                  << QStringLiteral("123456789012345");
    }
    void theThreadHasTheTasksName()
    {
        QFETCH(QString, name);
        QFETCH(QString, shown);
        QString found;
        Task task;
        QVERIFY(task.start(name.toStdString(), [&] {
            QFile file(QStringLiteral("/proc/thread-self/comm"));
            if (file.open(QIODevice::ReadOnly)) {
                found = QString::fromLatin1(file.readAll()).trimmed();
            }
        }));
        task.join();
        QCOMPARE(found, shown);
    }
};

BRISORA_TEST_MAIN(ThreadNameTest, QCoreApplication)
#include "test_thread_name_linux.moc"
