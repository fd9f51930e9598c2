#include <QCoreApplication>
#include <QTest>
#include <QVariant>

#include "core/application_flags.h"
#include "tests/support/testenvironment.h"

namespace flags = core::flags;

class TestApplicationFlags : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFlagIsSetUntilItIsCleared()
    {
        QVERIFY(!flags::isSet(flags::firstStart));
        flags::set(flags::firstStart);
        QVERIFY(flags::isSet(flags::firstStart));
        QVERIFY(!flags::isSet(flags::logFile));
        flags::clear(flags::firstStart);
        QVERIFY(!flags::isSet(flags::firstStart));
    }

    void aFlagIsAPropertyOfTheApplication()
    {
        flags::set(flags::smcDump);
        // As text: variants of other types would compare equal.
        QCOMPARE(QCoreApplication::instance()->property("smc-dump").toString(),
                 QStringLiteral("yes"));
        flags::clear(flags::smcDump);
        QVERIFY(!QCoreApplication::instance()->property("smc-dump").isValid());
    }

    void presenceIsWhatCounts()
    {
        QCoreApplication::instance()->setProperty("log-file", false);
        QVERIFY(flags::isSet(flags::logFile));
        QCoreApplication::instance()->setProperty("log-file", QVariant());
        QVERIFY(!flags::isSet(flags::logFile));
    }

    void theFlagsHaveTheirNames()
    {
        QCOMPARE(flags::firstStart, "first-start");
        QCOMPARE(flags::logFile, "log-file");
        QCOMPARE(flags::smcDump, "smc-dump");
        QCOMPARE(flags::noSupport, "win-no-support");
        QCOMPARE(flags::smcWriteInstalled, "smc-write-installed");
    }
};

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    // Without an application object no flag can be set.
    flags::set(flags::firstStart);
    flags::clear(flags::firstStart);
    if (flags::isSet(flags::firstStart)) {
        return 1;
    }
    QCoreApplication application(argc, argv);
    TestApplicationFlags test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_application_flags.moc"
