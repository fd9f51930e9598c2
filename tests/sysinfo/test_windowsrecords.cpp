#include <cstring>
#include <sstream>

#include <QCoreApplication>

#include "app/sysinfo/smbios.h"
#include "app/sysinfo/windowsrecords.h"
#include "tests/support/testenvironment.h"
#include "tests/sysinfo/smbiosblock.h"

namespace {

using Relations = std::vector<std::uint32_t>;

// The brand's bytes as the processor gives them: in registers of four bytes, the
// first one lowest.
std::array<std::uint32_t, 12> registersOf(const QByteArray& brand)
{
    std::array<std::uint32_t, 12> registers {};
    for (int i = 0; i < brand.size(); ++i) {
        registers.at(static_cast<std::size_t>(i / 4))
            |= static_cast<std::uint32_t>(static_cast<unsigned char>(brand.at(i))) << 8 * (i % 4);
    }
    return registers;
}

} // namespace

Q_DECLARE_METATYPE(Relations)

class TestWindowsRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void coresAreCounted_data();
    void coresAreCounted();
    void brandIsRead_data();
    void brandIsRead();
    void operatingSystemIsNamed_data();
    void operatingSystemIsNamed();
    void blockWithHeaderStaysAsItIs();
    void structuresGetAHeader();
    void noDataGiveNoBlock();
};

void TestWindowsRecords::coresAreCounted_data()
{
    QTest::addColumn<Relations>("relations");
    QTest::addColumn<int>("cores");
    QTest::addColumn<int>("messages");

    QTest::newRow("none") << Relations {} << 0 << 0;
    QTest::newRow("two cores") << Relations { 0, 0 } << 2 << 0;
    QTest::newRow("package passed over") << Relations { 0, 3, 0 } << 2 << 0;
    QTest::newRow("nodes and caches reported") << Relations { 0, 2, 2, 1, 0, 3 } << 2 << 3;
    QTest::newRow("unknown kind reported") << Relations { 0, 7 } << 1 << 1;
    QTest::newRow("most") << Relations(255, 0) << 255 << 0;
    QTest::newRow("more than fit") << Relations(256, 0) << 255 << 0;
}

void TestWindowsRecords::coresAreCounted()
{
    QFETCH(Relations, relations);
    QFETCH(int, messages);
    std::ostringstream printed;

    const std::uint8_t cores = WindowsRecords::coreCount(relations, printed);

    QTEST(int(cores), "cores");
    std::string expected;
    for (int i = 0; i < messages; ++i) {
        expected += "\nError: Unsupported LOGICAL_PROCESSOR_RELATIONSHIP value.\n";
    }
    QCOMPARE(printed.str(), expected);
}

void TestWindowsRecords::brandIsRead_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("brand");

    QTest::newRow("terminated") << QByteArray("Intel(R) Core(TM) i7-4850HQ CPU @ 2.30GHz")
                                << QStringLiteral("Intel(R) Core(TM) i7-4850HQ CPU @ 2.30GHz");
    QTest::newRow("blanks stay") << QByteArray("  Intel  CPU ") << QStringLiteral("  Intel  CPU ");
    QTest::newRow("whole length") << QByteArray(48, 'x') << QString(48, QLatin1Char('x'));
    QTest::newRow("ends at the terminator")
        << QByteArray("short\0rest", 10) << QStringLiteral("short");
    QTest::newRow("Latin-1") << QByteArray("CPU\xAE") << QStringLiteral("CPU\u00AE");
    QTest::newRow("none") << QByteArray() << QString();
}

void TestWindowsRecords::brandIsRead()
{
    QFETCH(QByteArray, bytes);
    QTEST(WindowsRecords::processorBrand(registersOf(bytes)), "brand");
}

void TestWindowsRecords::operatingSystemIsNamed_data()
{
    QTest::addColumn<bool>("isWow64");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("name");

    QTest::newRow("64 bits") << true << QStringLiteral("10") << QStringLiteral("Windows 10 x64");
    QTest::newRow("32 bits") << false << QStringLiteral("7") << QStringLiteral("Windows 7 x86");
    QTest::newRow("percent sign stays")
        << true << QStringLiteral("%2") << QStringLiteral("Windows %2 x64");
}

void TestWindowsRecords::operatingSystemIsNamed()
{
    QFETCH(bool, isWow64);
    QFETCH(QString, version);
    QTEST(WindowsRecords::operatingSystemName(version, isWow64), "name");
}

void TestWindowsRecords::blockWithHeaderStaysAsItIs()
{
    const QByteArray block
        = SmbiosBlock::block(SmbiosBlock::machine("Apple Inc.", "MacPro5,1") + SmbiosBlock::end());
    QCOMPARE(WindowsRecords::firmwareBlock(block), block);
}

void TestWindowsRecords::structuresGetAHeader()
{
    const QByteArray structures
        = SmbiosBlock::machine("Apple Inc.", "MacPro5,1") + SmbiosBlock::end();

    const SMBIOS smbios(WindowsRecords::firmwareBlock(structures));

    QCOMPARE(smbios.system().manufacturer.value_or(QString()), QStringLiteral("Apple Inc."));
    QCOMPARE(smbios.system().product.value_or(QString()), QStringLiteral("MacPro5,1"));
}

void TestWindowsRecords::noDataGiveNoBlock()
{
    QCOMPARE(WindowsRecords::firmwareBlock(QByteArray()), QByteArray());
}

BRISORA_TEST_MAIN(TestWindowsRecords, QCoreApplication)
#include "test_windowsrecords.moc"
