#include <QCoreApplication>

#include "app/sysinfo/machinefiles.h"
#include "app/sysinfo/smbios.h"
#include "tests/support/testenvironment.h"
#include "tests/sysinfo/smbiosblock.h"

namespace {

// A processor's paragraph of /proc/cpuinfo.
QByteArray processor(int number, const QByteArray& moreLines)
{
    return "processor\t: " + QByteArray::number(number)
        + "\nmodel name\t: Intel(R) Core(TM) i7-4850HQ CPU @ 2.30GHz\n" + moreLines + '\n';
}

QByteArray place(int package, int core)
{
    return "physical id\t: " + QByteArray::number(package)
        + "\ncore id\t\t: " + QByteArray::number(core) + "\ncpu cores\t: 4\n";
}

} // namespace

class TestMachineFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void brandIsTheFirstProcessors();
    void missingBrandIsEmpty();
    void coresAreCounted_data();
    void coresAreCounted();
    void blockCarriesTheVersion_data();
    void blockCarriesTheVersion();
    void blockWithoutStructuresIsEmpty();
    void displayClassIsKnown_data();
    void displayClassIsKnown();
    void deviceIsNamed_data();
    void deviceIsNamed();
};

void TestMachineFiles::brandIsTheFirstProcessors()
{
    QCOMPARE(MachineFiles::processorBrand("processor\t: 0\nmodel\t\t: 70\n"
                                          "model name\t: First: CPU @ 2 GHz \n\n"
                                          "processor\t: 1\nmodel name\t: Second\n"),
             QStringLiteral("First: CPU @ 2 GHz"));
}

void TestMachineFiles::missingBrandIsEmpty()
{
    QCOMPARE(MachineFiles::processorBrand("processor\t: 0\nBogoMIPS\t: 48.00\n"), QString());
    QCOMPARE(MachineFiles::processorBrand(QByteArray()), QString());
}

void TestMachineFiles::coresAreCounted_data()
{
    QTest::addColumn<QByteArray>("cpuInfo");
    QTest::addColumn<int>("expected");

    QByteArray threads;
    QByteArray twoPackages;
    QByteArray many;
    for (int i = 0; i < 8; ++i) {
        threads += processor(i, place(0, i % 4));
        twoPackages += processor(i, place(i / 4, i % 4));
    }
    for (int i = 0; i < 300; ++i) {
        many += processor(i, QByteArray());
    }
    QTest::newRow("two threads a core") << threads << 4;
    QTest::newRow("two packages") << twoPackages << 8;
    QTest::newRow("no places, but cores")
        << processor(0, "cpu cores\t: 6\n") + processor(1, "cpu cores\t: 6\n") << 6;
    QTest::newRow("core without package")
        << processor(0, "core id\t: 0\n") + processor(1, "core id\t: 0\n") << 2;
    QTest::newRow("processors only")
        << processor(0, QByteArray()) + processor(1, QByteArray()) << 2;
    QTest::newRow("cores is no number") << processor(0, "cpu cores\t: many\n") << 1;
    QTest::newRow("more than fit") << many << 255;
    QTest::newRow("nothing") << QByteArray() << 0;
}

void TestMachineFiles::coresAreCounted()
{
    QFETCH(QByteArray, cpuInfo);
    QTEST(static_cast<int>(MachineFiles::coreCount(cpuInfo)), "expected");
}

void TestMachineFiles::blockCarriesTheVersion_data()
{
    QTest::addColumn<QByteArray>("entryPoint");
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<int>("revision");

    QByteArray old = QByteArray("_SM_") + QByteArray(27, '\0');
    old[6] = 2;
    old[7] = 4;
    old[30] = 0x24;
    const QByteArray fresh = QByteArray("_SM3_") + SmbiosBlock::bytes({ 0, 24, 3, 2, 1 });
    QTest::newRow("32 bits") << old << 2 << 4 << 0x24;
    QTest::newRow("64 bits") << fresh << 3 << 2 << 0;
    QTest::newRow("cut short") << QByteArray("_SM_") << 0 << 0 << 0;
    QTest::newRow("unknown") << QByteArray(31, '\x07') << 0 << 0 << 0;
    QTest::newRow("missing") << QByteArray() << 0 << 0 << 0;
}

void TestMachineFiles::blockCarriesTheVersion()
{
    QFETCH(QByteArray, entryPoint);

    const SMBIOS smbios(MachineFiles::firmwareBlock(
        entryPoint, SmbiosBlock::machine("Apple Inc.", "iMac7,1") + SmbiosBlock::end()));

    QTEST(static_cast<int>(smbios.majorVersion()), "major");
    QTEST(static_cast<int>(smbios.minorVersion()), "minor");
    QTEST(static_cast<int>(smbios.dmiRevision()), "revision");
    QCOMPARE(smbios.system().product.value_or(QString()), QStringLiteral("iMac7,1"));
}

void TestMachineFiles::blockWithoutStructuresIsEmpty()
{
    QVERIFY(MachineFiles::firmwareBlock("_SM3_ and so on", QByteArray()).isEmpty());
}

void TestMachineFiles::displayClassIsKnown_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isDisplay");

    QTest::newRow("VGA") << QByteArray("0x030000\n") << true;
    QTest::newRow("3D") << QByteArray("0x030200\n") << true;
    QTest::newRow("network") << QByteArray("0x028000\n") << false;
    QTest::newRow("audio of a GPU") << QByteArray("0x040300\n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestMachineFiles::displayClassIsKnown()
{
    QFETCH(QByteArray, text);
    QTEST(MachineFiles::isDisplayClass(text), "isDisplay");
}

void TestMachineFiles::deviceIsNamed_data()
{
    QTest::addColumn<QByteArray>("vendor");
    QTest::addColumn<QByteArray>("device");
    QTest::addColumn<QString>("expected");

    const auto row
        = [](const char* name, const char* vendor, const char* device, const char* expected) {
              QTest::newRow(name) << QByteArray(vendor) << QByteArray(device)
                                  << QString::fromUtf8(expected);
          };
    row("market name", "0x1002\n", "0x6821\n", "AMD Radeon R9 M370X");
    row("chip name", "0x8086\n", "0x0d26\n", "Intel Crystal Well Graphics");
    row("upper case", "0x8086\n", "0x0D26\n", "Intel Crystal Well Graphics");
    row("maker in the name", "0x8086\n", "0x0d28\n", "Old Intel Graphics");
    row("empty brackets", "0x8086\n", "0x0d27\n", "Intel Odd []");
    row("maker of other things", "0x15ad\n", "0x0405\n", "SVGA II Adapter");
    row("same device number of the next vendor", "0x1002\n", "0x0d26\n", "AMD 1002:0d26");
    row("subsystem is no device", "0x1002\n", "0x106b\n", "AMD 1002:106b");
    row("unknown device", "0x8086\n", "0xffff\n", "Intel 8086:ffff");
    row("unknown device of a maker without entries", "0x10de\n", "0x0fe9\n", "NVIDIA 10de:0fe9");
    row("unknown vendor", "0x1234\n", "0x1111\n", "1234:1111");
}

void TestMachineFiles::deviceIsNamed()
{
    const QByteArray pciIds = "# A comment\n"
                              "\n"
                              "1002  Advanced Micro Devices, Inc.\n"
                              "\t6821  Venus XT [Radeon R9 M370X]\n"
                              "\t\t106b 0149  MacBook Pro\n"
                              "8086  Intel Corporation\n"
                              "\t0d26  Crystal Well Graphics\n"
                              "\t0d27  Odd []\n"
                              "\t0d28  Old Intel Graphics\n"
                              "15ad  VMware\n"
                              "\t0405  SVGA II Adapter\n"
                              "C 03  Display controller\n";
    QFETCH(QByteArray, vendor);
    QFETCH(QByteArray, device);
    QTEST(MachineFiles::pciDeviceName(vendor, device, pciIds), "expected");
}

BRISORA_TEST_MAIN(TestMachineFiles, QCoreApplication)
#include "test_machinefiles.moc"
