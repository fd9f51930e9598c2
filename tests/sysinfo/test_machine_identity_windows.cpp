#include <thread>

#include <windows.h>
#include <objbase.h>

#include <QCoreApplication>
#include <QSysInfo>

#include "app/sysinfo/machine_identity.h"
#include "app/sysinfo/smbios.h"
#include "app/sysinfo/sysinfo.h"
#include "core/machine_registry.h"
#include "tests/support/fakemachineregistry.h"
#include "tests/support/testenvironment.h"

namespace {

const QString informationKey
    = QStringLiteral("SYSTEM\\CurrentControlSet\\Control\\SystemInformation");
const QString manufacturerName = QStringLiteral("SystemManufacturer");
const QString modelName = QStringLiteral("SystemProductName");

// The characters of a text as the registry keeps them, without a terminator.
QByteArray characters(const QString& text)
{
    return QByteArray(reinterpret_cast<const char*>(text.utf16()),
                      text.size() * static_cast<int>(sizeof(char16_t)));
}

// What COM says about the calling thread: the apartment's type, or -1 where COM has
// not been started.
int apartmentOfThread()
{
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    return SUCCEEDED(CoGetApartmentType(&type, &qualifier)) ? static_cast<int>(type) : -1;
}

} // namespace

class TestMachineIdentityWindows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void registryTellsManufacturerAndModel();
    void missingKeyIsNothing();
    void missingValuesAreEmpty();
    void valueIsRead_data();
    void valueIsRead();
    void registryIsLeftAsItWas();
    void managementInterfaceTellsTheMachine();
    void managementInterfaceLeavesComAsItWas_data();
    void managementInterfaceLeavesComAsItWas();
    void managementInterfaceCanBeAskedAgain();
    void firmwareTableIsWhole();
    void operatingSystemIsNamed();
    void processorIsNamedAndItsCoresLeftToTheSystem();
    void coresAreNoMoreThanProcessors();
    void systemInfoIsBuilt();

private:
    const std::unique_ptr<MachineIdentity> m_identity = systemMachineIdentity();
};

void TestMachineIdentityWindows::registryTellsManufacturerAndModel()
{
    FakeMachineRegistry registry;
    registry.setText(informationKey, manufacturerName, QStringLiteral("Apple Inc."));
    registry.setText(informationKey, modelName, QStringLiteral("iMac20,1"));

    const auto values = m_identity->registryValues();

    QVERIFY(m_identity->hasRegistry());
    QVERIFY(values.has_value());
    QCOMPARE(values->manufacturer, QStringLiteral("Apple Inc."));
    QCOMPARE(values->model, QStringLiteral("iMac20,1"));
    QCOMPARE(m_identity->systemManufacturer(), QStringLiteral("Apple Inc."));
}

void TestMachineIdentityWindows::missingKeyIsNothing()
{
    const FakeMachineRegistry registry;

    QVERIFY(!m_identity->registryValues().has_value());
    QCOMPARE(m_identity->systemManufacturer(), QString());
}

void TestMachineIdentityWindows::missingValuesAreEmpty()
{
    FakeMachineRegistry registry;
    registry.addKey(informationKey);

    const auto values = m_identity->registryValues();

    QVERIFY(values.has_value());
    QCOMPARE(values->manufacturer, QString());
    QCOMPARE(values->model, QString());
    QCOMPARE(m_identity->systemManufacturer(), QString());
}

void TestMachineIdentityWindows::valueIsRead_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");

    const quint32 text = REG_SZ;
    const QByteArray end(2, '\0');
    const QString longest(1023, QLatin1Char('x'));
    QTest::newRow("text") << text << characters(QStringLiteral("Apple Inc.")) + end
                          << QStringLiteral("Apple Inc.");
    QTest::newRow("no terminator")
        << text << characters(QStringLiteral("Apple Inc.")) << QStringLiteral("Apple Inc.");
    QTest::newRow("ends at the first terminator")
        << text << characters(QStringLiteral("Apple")) + end + characters(QStringLiteral("Inc."))
        << QStringLiteral("Apple");
    QTest::newRow("empty") << text << end << QString();
    QTest::newRow("no bytes") << text << QByteArray() << QString();
    QTest::newRow("longest") << text << characters(longest) + end << longest;
    QTest::newRow("over-long") << text << characters(longest + QLatin1Char('x')) + end << QString();
    QTest::newRow("over-long, no terminator")
        << text << characters(longest + QStringLiteral("xx")) << QString();
    QTest::newRow("number") << quint32(REG_DWORD) << QByteArray("A\0p\0", 4) << QString();
    QTest::newRow("bytes") << quint32(REG_BINARY) << characters(QStringLiteral("Apple")) + end
                           << QString();
}

void TestMachineIdentityWindows::valueIsRead()
{
    QFETCH(quint32, type);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    FakeMachineRegistry registry;
    registry.setValue(informationKey, manufacturerName, type, bytes);
    registry.setText(informationKey, modelName, QStringLiteral("iMac20,1"));

    const auto values = m_identity->registryValues();

    QVERIFY(values.has_value());
    QCOMPARE(values->manufacturer, expected);
    QCOMPARE(values->model, QStringLiteral("iMac20,1"));
    QCOMPARE(m_identity->systemManufacturer(), expected);
}

void TestMachineIdentityWindows::registryIsLeftAsItWas()
{
    const auto isSystemsOwn
        = [] { return core::MachineRegistryKey(QStringLiteral("SOFTWARE\\Microsoft")).isOpen(); };
    QVERIFY(isSystemsOwn());
    {
        const FakeMachineRegistry registry;
        QVERIFY(!isSystemsOwn());
    }

    QVERIFY(isSystemsOwn());
    HKEY key = nullptr;
    QCOMPARE(RegOpenKeyExW(HKEY_CURRENT_USER, FakeMachineRegistry::place().toStdWString().c_str(),
                           0, KEY_READ, &key),
             LSTATUS(ERROR_FILE_NOT_FOUND));
}

void TestMachineIdentityWindows::managementInterfaceTellsTheMachine()
{
    const WmiSystemData data = m_identity->managementData();

    QVERIFY(!data.manufacturer.isEmpty());
    QVERIFY(!data.model.isEmpty());
    QVERIFY(!data.videoControllers.isEmpty());
    QVERIFY(!data.videoControllers.contains(QString()));
}

void TestMachineIdentityWindows::managementInterfaceLeavesComAsItWas_data()
{
    QTest::addColumn<int>("model");

    QTest::newRow("not started") << -1;
    QTest::newRow("apartment") << int(COINIT_APARTMENTTHREADED);
    QTest::newRow("other model") << int(COINIT_MULTITHREADED);
}

void TestMachineIdentityWindows::managementInterfaceLeavesComAsItWas()
{
    QFETCH(int, model);
    int before = 0;
    int after = 0;
    WmiSystemData data;

    std::thread thread([&] {
        if (model >= 0) {
            CoInitializeEx(nullptr, static_cast<DWORD>(model));
        }
        before = apartmentOfThread();
        data = m_identity->managementData();
        after = apartmentOfThread();
        if (model >= 0) {
            CoUninitialize();
        }
    });
    thread.join();

    QCOMPARE(before == -1, model == -1);
    QCOMPARE(after, before);
    QVERIFY(!data.manufacturer.isEmpty());
}

void TestMachineIdentityWindows::managementInterfaceCanBeAskedAgain()
{
    const WmiSystemData first = m_identity->managementData();
    const WmiSystemData second = m_identity->managementData();

    QVERIFY(!first.manufacturer.isEmpty());
    QCOMPARE(second.manufacturer, first.manufacturer);
    QCOMPARE(second.videoControllers, first.videoControllers);
}

void TestMachineIdentityWindows::firmwareTableIsWhole()
{
    const QByteArray table = m_identity->firmwareTable();

    const SMBIOS smbios(table);

    QVERIFY(table.size() > 8);
    QVERIFY(smbios.majorVersion() >= 2);
    QVERIFY(smbios.system().manufacturer.has_value());
    QVERIFY(smbios.system().product.has_value());
}

void TestMachineIdentityWindows::operatingSystemIsNamed()
{
    const bool is64Bit = QSysInfo::currentCpuArchitecture() == QLatin1String("x86_64");

    QCOMPARE(m_identity->operatingSystemName(),
             QStringLiteral("Windows ") + QSysInfo::productVersion()
                 + (is64Bit ? QStringLiteral(" x64") : QStringLiteral(" x86")));
}

void TestMachineIdentityWindows::processorIsNamedAndItsCoresLeftToTheSystem()
{
    const auto processor = m_identity->processor();

    QVERIFY(processor.has_value());
    QVERIFY(!processor->brand.trimmed().isEmpty());
    QVERIFY(processor->brand.size() <= 48);
    QVERIFY(!processor->coreCount.has_value());
}

void TestMachineIdentityWindows::coresAreNoMoreThanProcessors()
{
    const std::uint8_t cores = m_identity->operatingSystemCoreCount();

    QVERIFY(cores > 0);
    QVERIFY(cores <= std::thread::hardware_concurrency());
}

void TestMachineIdentityWindows::systemInfoIsBuilt()
{
    const SystemInfo info(*m_identity);

    QCOMPARE(info.osName(), m_identity->operatingSystemName());
    QVERIFY(!info.cpuName().isEmpty());
    QCOMPARE(info.coreCount(), m_identity->operatingSystemCoreCount());
    QCOMPARE(info.wmiSystemData().manufacturer, m_identity->managementData().manufacturer);
}

BRISORA_TEST_MAIN(TestMachineIdentityWindows, QCoreApplication)
#include "test_machine_identity_windows.moc"
