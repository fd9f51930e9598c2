#include <QCoreApplication>

#include "app/smc/reversed_name.h"
#include "build_config.h"
#include "tests/support/testenvironment.h"

class TestReversedName : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nameIsTurnedRound_data();
    void nameIsTurnedRound();
    void namesOfTheBuildAreReadableOnceTurned();
};

void TestReversedName::nameIsTurnedRound_data()
{
    QTest::addColumn<QString>("kept");
    QTest::addColumn<QString>("name");

    QTest::newRow("even length") << QStringLiteral("dcba") << QStringLiteral("abcd");
    QTest::newRow("odd length") << QStringLiteral("cba") << QStringLiteral("abc");
    QTest::newRow("one character") << QStringLiteral("a") << QStringLiteral("a");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("path") << QStringLiteral("sys.a\\:C") << QStringLiteral("C:\\a.sys");
}

void TestReversedName::nameIsTurnedRound()
{
    QFETCH(QString, kept);
    QTEST(SMC::turnedRound(kept.toStdWString()), "name");
}

void TestReversedName::namesOfTheBuildAreReadableOnceTurned()
{
    QVERIFY(SMC::turnedRound(BuildConfig::halDeviceReversed).startsWith(QLatin1String("\\\\.\\")));
    QVERIFY(SMC::turnedRound(BuildConfig::halToolReversed).endsWith(QLatin1String(".exe")));
    QVERIFY(SMC::turnedRound(BuildConfig::halDriverReversed).endsWith(QLatin1String(".sys")));
}

BRISORA_TEST_MAIN(TestReversedName, QCoreApplication)
#include "test_reversed_name.moc"
