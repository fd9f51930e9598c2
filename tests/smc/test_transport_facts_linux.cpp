#include <QCoreApplication>

#include "app/smc/transport_facts.h"
#include "tests/support/testenvironment.h"

class TestTransportFactsLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thereAreNone();
};

void TestTransportFactsLinux::thereAreNone()
{
    const auto facts = SMC::makeTransportFacts();
    QCOMPARE(facts->releaseId(), QString());
    QVERIFY(!facts->halDriverExists());
    QVERIFY(!facts->halDriverSigningYear().has_value());
    QVERIFY(!facts->halDriverSize().has_value());
    QVERIFY(!facts->softwareKeyExists(
        QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Riot Vanguard")));
}

BRISORA_TEST_MAIN(TestTransportFactsLinux, QCoreApplication)
#include "test_transport_facts_linux.moc"
