#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "app/smc/transport_facts_windows.h"
#include "tests/support/fakemachineregistry.h"
#include "tests/support/testenvironment.h"

using SMC::TransportFactsWindows;

namespace {

const QString systemKey = QStringLiteral("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion");

QByteArray signedIn2012()
{
    QFile file(QStringLiteral(":/signed_in_2012.bin"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestTransportFactsWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void releaseIsRead();
    void missingReleaseIsEmpty();
    void releaseThatIsNoTextIsEmpty();
    void driverOfThatSizeIsFound();
    void missingDriverHasNoFacts();
    void folderIsNoDriver();
    void yearOfTheTimeStampIsRead();
    void driverWithoutSignatureHasNoYear_data();
    void driverWithoutSignatureHasNoYear();
    void blockingSoftwareIsFound_data();
    void blockingSoftwareIsFound();
    void systemsOwnFactsAreReadFromTheRegistry();

private:
    // The driver's path, with a file of those contents.
    QString driver(const QByteArray& contents);

    const QTemporaryDir m_folder;
};

void TestTransportFactsWindows::init() { QVERIFY(m_folder.isValid()); }

QString TestTransportFactsWindows::driver(const QByteArray& contents)
{
    const QString path = m_folder.filePath(QStringLiteral("driver.sys"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size()) {
        qFatal("Can't write %s", qPrintable(path));
    }
    return path;
}

void TestTransportFactsWindows::releaseIsRead()
{
    FakeMachineRegistry registry;
    registry.setText(systemKey, QStringLiteral("ReleaseId"), QStringLiteral("1903"));

    QCOMPARE(TransportFactsWindows(QString()).releaseId(), QStringLiteral("1903"));
}

void TestTransportFactsWindows::missingReleaseIsEmpty()
{
    FakeMachineRegistry registry;
    QCOMPARE(TransportFactsWindows(QString()).releaseId(), QString());

    registry.setText(systemKey, QStringLiteral("CurrentVersion"), QStringLiteral("6.3"));
    QCOMPARE(TransportFactsWindows(QString()).releaseId(), QString());
}

void TestTransportFactsWindows::releaseThatIsNoTextIsEmpty()
{
    constexpr std::uint32_t number = 4;
    FakeMachineRegistry registry;
    registry.setValue(systemKey, QStringLiteral("ReleaseId"), number, QByteArray("9\0\0\0", 4));

    QCOMPARE(TransportFactsWindows(QString()).releaseId(), QString());
}

void TestTransportFactsWindows::driverOfThatSizeIsFound()
{
    TransportFactsWindows facts(driver(QByteArray(22872, 'x')));

    QVERIFY(facts.halDriverExists());
    QCOMPARE(facts.halDriverSize().value_or(0), std::uint64_t(22872));
}

void TestTransportFactsWindows::missingDriverHasNoFacts()
{
    TransportFactsWindows facts(m_folder.filePath(QStringLiteral("none.sys")));

    QVERIFY(!facts.halDriverExists());
    QVERIFY(!facts.halDriverSize().has_value());
    QVERIFY(!facts.halDriverSigningYear().has_value());
}

void TestTransportFactsWindows::folderIsNoDriver()
{
    TransportFactsWindows facts(m_folder.path());

    QVERIFY(!facts.halDriverExists());
    QVERIFY(!facts.halDriverSize().has_value());
}

void TestTransportFactsWindows::yearOfTheTimeStampIsRead()
{
    TransportFactsWindows facts(driver(signedIn2012()));

    QCOMPARE(facts.halDriverSigningYear().value_or(0), 2012);
}

void TestTransportFactsWindows::driverWithoutSignatureHasNoYear_data()
{
    QTest::addColumn<QByteArray>("contents");

    QFile program(QCoreApplication::applicationFilePath());
    QVERIFY(program.open(QIODevice::ReadOnly));
    QTest::newRow("a program") << program.readAll();
    QTest::newRow("no program") << QByteArray(22872, 'x');
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("signature cut off") << signedIn2012().left(4000);
}

void TestTransportFactsWindows::driverWithoutSignatureHasNoYear()
{
    QFETCH(QByteArray, contents);
    TransportFactsWindows facts(driver(contents));

    QVERIFY(facts.halDriverExists());
    QVERIFY(!facts.halDriverSigningYear().has_value());
}

void TestTransportFactsWindows::blockingSoftwareIsFound_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("first product") << QStringLiteral("Riot Vanguard");
    QTest::newRow("second product") << QStringLiteral("{1419E44C-0EF4-4822-9194-9F1A4D43973D}_is1");
}

void TestTransportFactsWindows::blockingSoftwareIsFound()
{
    QFETCH(QString, name);
    const QString folder
        = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\");
    FakeMachineRegistry registry;
    registry.addKey(folder + QStringLiteral("Another product"));
    TransportFactsWindows facts { QString() };
    QVERIFY(!facts.softwareKeyExists(folder + name));

    registry.addKey(folder + name);

    QVERIFY(facts.softwareKeyExists(folder + name));
}

void TestTransportFactsWindows::systemsOwnFactsAreReadFromTheRegistry()
{
    FakeMachineRegistry registry;
    registry.setText(systemKey, QStringLiteral("ReleaseId"), QStringLiteral("2009"));

    QCOMPARE(SMC::makeTransportFacts()->releaseId(), QStringLiteral("2009"));
}

BRISORA_TEST_MAIN(TestTransportFactsWindows, QCoreApplication)
#include "test_transport_facts_windows.moc"
