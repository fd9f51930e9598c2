#include <QCoreApplication>

#include "core/system_path.h"
#include "tests/support/testenvironment.h"

class TestSystemPath : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("BRISORA_SYSROOT"); }

    void thePathIsTheSystemsUnlessAFolderIsNamed_data()
    {
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no folder") << QByteArray() << QStringLiteral("/sys/class/dmi/id");
        QTest::newRow("a folder") << QByteArray("/tmp/mac")
                                  << QStringLiteral("/tmp/mac/sys/class/dmi/id");
        QTest::newRow("other letters") << QByteArray("/tmp/m\xC3\xA4"
                                                     "c")
                                       << QStringLiteral("/tmp/mäc/sys/class/dmi/id");
    }
    void thePathIsTheSystemsUnlessAFolderIsNamed()
    {
        QFETCH(QByteArray, folder);
        QFETCH(QString, expected);
        if (!folder.isEmpty()) {
            qputenv("BRISORA_SYSROOT", folder);
        }
        QCOMPARE(core::systemPath(QStringLiteral("/sys/class/dmi/id")), expected);
    }

    void theVariableIsReadAtEachCall()
    {
        const QString path = QStringLiteral("/run/x");
        qputenv("BRISORA_SYSROOT", "/a");
        QCOMPARE(core::systemPath(path), QStringLiteral("/a/run/x"));
        qputenv("BRISORA_SYSROOT", "/b");
        QCOMPARE(core::systemPath(path), QStringLiteral("/b/run/x"));
        qputenv("BRISORA_SYSROOT", "");
        QCOMPARE(core::systemPath(path), path);
    }
};

BRISORA_TEST_MAIN(TestSystemPath, QCoreApplication)

#include "test_system_path.moc"
