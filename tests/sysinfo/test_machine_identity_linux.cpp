#include <memory>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>

#include "app/sysinfo/machine_identity_linux.h"
#include "app/sysinfo/smbios.h"
#include "app/sysinfo/sysinfo.h"
#include "tests/support/testenvironment.h"
#include "tests/sysinfo/smbiosblock.h"

class TestMachineIdentityLinux : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void identityFilesAreTheFirstSource();
    void missingFilesGiveEmptyTexts();
    void displayDevicesAreListedByAddress();
    void displayDevicesAreNamedByNumberWithoutNames();
    void firmwareTableIsReadAsOneBlock();
    void thereIsNoRegistry();
    void operatingSystemIsTheDistribution();
    void processorIsRead();
    void unreadableProcessorIsNone();
    void systemInfoIsBuiltFromTheFiles();
    void systemInfoFallsBackToTheFirmwareTable();
    void systemIdentityReadsTheSameFiles();

private:
    void write(const QString& path, const QByteArray& contents);
    void addPciDevice(const QString& address, const QByteArray& deviceClass,
                      const QByteArray& vendor, const QByteArray& device);
    MachineIdentityLinux makeIdentity()
    {
        return MachineIdentityLinux({ m_root->filePath(QStringLiteral("none")),
                                      m_root->filePath(QStringLiteral("pci.ids")) });
    }

    std::unique_ptr<QTemporaryDir> m_root;
};

void TestMachineIdentityLinux::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    QVERIFY(m_root->isValid());
    qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root->path()));
}

void TestMachineIdentityLinux::cleanup()
{
    qunsetenv("BRISORA_SYSROOT");
    m_root.reset();
}

void TestMachineIdentityLinux::write(const QString& path, const QByteArray& contents)
{
    const QString fullPath = m_root->path() + QLatin1Char('/') + path;
    QVERIFY(QDir().mkpath(QFileInfo(fullPath).path()));
    QFile file(fullPath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), qint64(contents.size()));
}

void TestMachineIdentityLinux::addPciDevice(const QString& address, const QByteArray& deviceClass,
                                            const QByteArray& vendor, const QByteArray& device)
{
    const QString folder = QStringLiteral("sys/bus/pci/devices/%1/").arg(address);
    write(folder + QStringLiteral("class"), deviceClass + '\n');
    write(folder + QStringLiteral("vendor"), vendor + '\n');
    write(folder + QStringLiteral("device"), device + '\n');
}

void TestMachineIdentityLinux::identityFilesAreTheFirstSource()
{
    write(QStringLiteral("sys/class/dmi/id/sys_vendor"), "Apple Inc.\n");
    write(QStringLiteral("sys/class/dmi/id/product_name"), "MacBookPro11,3\n");
    MachineIdentityLinux identity = makeIdentity();

    const WmiSystemData data = identity.managementData();

    QCOMPARE(data.manufacturer, QStringLiteral("Apple Inc."));
    QCOMPARE(data.model, QStringLiteral("MacBookPro11,3"));
    QCOMPARE(identity.systemManufacturer(), QStringLiteral("Apple Inc."));
}

void TestMachineIdentityLinux::missingFilesGiveEmptyTexts()
{
    MachineIdentityLinux identity = makeIdentity();

    const WmiSystemData data = identity.managementData();

    QCOMPARE(data.manufacturer, QString());
    QCOMPARE(data.model, QString());
    QCOMPARE(data.videoControllers, QStringList());
    QCOMPARE(identity.firmwareTable(), QByteArray());
    QCOMPARE(identity.operatingSystemCoreCount(), std::uint8_t(0));
}

void TestMachineIdentityLinux::displayDevicesAreListedByAddress()
{
    addPciDevice(QStringLiteral("0000:01:00.0"), "0x030000", "0x1002", "0x6821");
    addPciDevice(QStringLiteral("0000:00:02.0"), "0x038000", "0x8086", "0x0d26");
    addPciDevice(QStringLiteral("0000:00:1f.0"), "0x060100", "0x8086", "0x8c4b");
    write(QStringLiteral("pci.ids"),
          "1002  AMD\n\t6821  Venus XT [Radeon R9 M370X]\n8086  Intel\n\t0d26  Crystal Well\n");

    QCOMPARE(makeIdentity().managementData().videoControllers,
             QStringList(
                 { QStringLiteral("Intel Crystal Well"), QStringLiteral("AMD Radeon R9 M370X") }));
}

void TestMachineIdentityLinux::displayDevicesAreNamedByNumberWithoutNames()
{
    addPciDevice(QStringLiteral("0000:00:02.0"), "0x030000", "0x8086", "0x0d26");

    QCOMPARE(makeIdentity().managementData().videoControllers,
             QStringList { QStringLiteral("Intel 8086:0d26") });
}

void TestMachineIdentityLinux::firmwareTableIsReadAsOneBlock()
{
    write(QStringLiteral("sys/firmware/dmi/tables/smbios_entry_point"),
          QByteArray("_SM3_") + SmbiosBlock::bytes({ 0, 24, 3, 1, 0 }));
    write(QStringLiteral("sys/firmware/dmi/tables/DMI"),
          SmbiosBlock::machine("Apple Inc.", "Macmini8,1") + SmbiosBlock::end());

    const SMBIOS smbios(makeIdentity().firmwareTable());

    QCOMPARE(smbios.majorVersion(), std::uint8_t(3));
    QCOMPARE(smbios.minorVersion(), std::uint8_t(1));
    QCOMPARE(smbios.system().product.value_or(QString()), QStringLiteral("Macmini8,1"));
}

void TestMachineIdentityLinux::thereIsNoRegistry()
{
    MachineIdentityLinux identity = makeIdentity();
    QVERIFY(!identity.hasRegistry());
    QVERIFY(!identity.registryValues().has_value());
}

void TestMachineIdentityLinux::operatingSystemIsTheDistribution()
{
    const QString name = makeIdentity().operatingSystemName();

    QVERIFY(name.startsWith(QSysInfo::prettyProductName() + QLatin1Char(' ')));
    const QString architecture = name.mid(QSysInfo::prettyProductName().size() + 1);
    QCOMPARE(architecture == QLatin1String("x64"),
             QSysInfo::currentCpuArchitecture() == QLatin1String("x86_64"));
    QVERIFY(!architecture.isEmpty());
}

void TestMachineIdentityLinux::processorIsRead()
{
    write(QStringLiteral("proc/cpuinfo"),
          "processor\t: 0\nmodel name\t: Test CPU\ncpu cores\t: 3\n\n");
    MachineIdentityLinux identity = makeIdentity();

    const auto processor = identity.processor();

    QVERIFY(processor.has_value());
    QCOMPARE(processor->brand, QStringLiteral("Test CPU"));
    QVERIFY(!processor->coreCount.has_value());
    QCOMPARE(identity.operatingSystemCoreCount(), std::uint8_t(3));
}

void TestMachineIdentityLinux::unreadableProcessorIsNone()
{
    QVERIFY(!makeIdentity().processor().has_value());
}

void TestMachineIdentityLinux::systemInfoIsBuiltFromTheFiles()
{
    write(QStringLiteral("sys/class/dmi/id/sys_vendor"), "Apple Inc.\n");
    write(QStringLiteral("sys/class/dmi/id/product_name"), "iMac19,2\n");
    write(QStringLiteral("proc/cpuinfo"),
          "processor\t: 0\nmodel name\t: Intel(R) Core(TM)  i5   CPU\ncpu cores\t: 6\n\n");
    MachineIdentityLinux identity = makeIdentity();

    const SystemInfo info(identity);

    QCOMPARE(info.machineName(), QStringLiteral("iMac19,2"));
    QCOMPARE(info.family(), ModelFamily::iMac);
    QCOMPARE(info.cpuName(), QStringLiteral("Intel(R) Core(TM) i5 CPU"));
    QCOMPARE(info.coreCount(), std::uint8_t(6));
}

void TestMachineIdentityLinux::systemInfoFallsBackToTheFirmwareTable()
{
    write(QStringLiteral("sys/firmware/dmi/tables/DMI"),
          SmbiosBlock::machine("Apple Inc.", "Macmini8,1") + SmbiosBlock::end());
    MachineIdentityLinux identity = makeIdentity();

    QCOMPARE(SystemInfo(identity).machineName(), QStringLiteral("Macmini8,1"));
}

void TestMachineIdentityLinux::systemIdentityReadsTheSameFiles()
{
    write(QStringLiteral("sys/class/dmi/id/product_name"), "MacBook10,1\n");

    const auto identity = systemMachineIdentity();

    QVERIFY(identity != nullptr);
    QCOMPARE(identity->managementData().model, QStringLiteral("MacBook10,1"));
}

BRISORA_TEST_MAIN(TestMachineIdentityLinux, QCoreApplication)
#include "test_machine_identity_linux.moc"
