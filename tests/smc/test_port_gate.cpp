#include <cerrno>
#include <sstream>

#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibrary>

#include "inpout32/port_gate.h"
#include "inpout32/port_owner.h"
#include "tests/support/testenvironment.h"

namespace {

class FakePortSystem final : public inpout32::PortSystem {
public:
    std::string kernelOwner() override { return owner; }

    int grant(std::uint16_t port) override
    {
        calls << QStringLiteral("grant %1").arg(port, 0, 16);
        return port == refusedPort ? EPERM : 0;
    }

    void write(std::uint16_t port, std::uint8_t byte) override
    {
        calls << QStringLiteral("write %1 %2").arg(port, 0, 16).arg(byte, 2, 16, QLatin1Char('0'));
    }

    std::uint8_t read(std::uint16_t port) override
    {
        calls << QStringLiteral("read %1").arg(port, 0, 16);
        return 0x5A;
    }

    void complain(const std::string& text) override { complaints << QString::fromStdString(text); }

    std::string owner;
    std::uint16_t refusedPort = 0;
    QStringList calls;
    QStringList complaints;
};

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QStringLiteral(", "));
}

// Standard error into a file while it lives.
class CapturedErrors {
public:
    explicit CapturedErrors(const QString& path)
        : m_file(path)
        , m_standardError(dup(STDERR_FILENO))
    {
        if (!m_file.open(QFile::ReadWrite | QFile::Truncate)) {
            qFatal("no file for standard error");
        }
        dup2(m_file.handle(), STDERR_FILENO);
    }
    ~CapturedErrors()
    {
        dup2(m_standardError, STDERR_FILENO);
        ::close(m_standardError);
    }
    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;

    [[nodiscard]] QByteArray text()
    {
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    QFile m_file;
    const int m_standardError;
};

} // namespace

class TestPortGate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void openGrantsTheTwoPorts();
    void firstUseAsksForThePermission();
    void permissionIsAskedForOncePerGate();
    void otherPortsAreRefused_data();
    void otherPortsAreRefused();
    void missingPrivilegeIsToldAndRefused_data();
    void missingPrivilegeIsToldAndRefused();
    void kernelDriverIsToldAndRefused();
    void openLooksAgain();
    void refusalIsTheLastRequests();
    void ownerOfThePortsIsFound_data();
    void ownerOfThePortsIsFound();
    void libraryRefusesBesideTheKernelDriver();
};

void TestPortGate::openGrantsTheTwoPorts()
{
    FakePortSystem system;
    inpout32::PortGate gate(system);
    QVERIFY(gate.open());
    QCOMPARE(system.calls, words("grant 300, grant 304"));
    QCOMPARE(system.complaints, QStringList());
}

void TestPortGate::firstUseAsksForThePermission()
{
    FakePortSystem system;
    inpout32::PortGate gate(system);
    QCOMPARE(static_cast<int>(gate.read(0x304)), 0x5A);
    QCOMPARE(system.calls, words("grant 300, grant 304, read 304"));
}

void TestPortGate::permissionIsAskedForOncePerGate()
{
    FakePortSystem system;
    inpout32::PortGate gate(system);
    QVERIFY(gate.open());
    gate.write(0x304, 0x10);
    gate.write(0x300, 0x46);
    QCOMPARE(static_cast<int>(gate.read(0x300)), 0x5A);
    QCOMPARE(system.calls, words("grant 300, grant 304, write 304 10, write 300 46, read 300"));
}

void TestPortGate::otherPortsAreRefused_data()
{
    QTest::addColumn<int>("port");
    for (const int port : { 0x000, 0x064, 0x2FF, 0x301, 0x303, 0x305, 0x31E, 0x3F8, 0xFFFF }) {
        QTest::addRow("%x", port) << port;
    }
}

void TestPortGate::otherPortsAreRefused()
{
    QFETCH(int, port);
    FakePortSystem system;
    inpout32::PortGate gate(system);
    gate.write(static_cast<std::uint16_t>(port), 1);
    QCOMPARE(static_cast<int>(gate.read(static_cast<std::uint16_t>(port))), 0);
    QCOMPARE(system.calls, QStringList());
}

void TestPortGate::missingPrivilegeIsToldAndRefused_data()
{
    QTest::addColumn<int>("port");
    QTest::newRow("first port") << 0x300;
    QTest::newRow("second port") << 0x304;
}

void TestPortGate::missingPrivilegeIsToldAndRefused()
{
    QFETCH(int, port);
    FakePortSystem system;
    system.refusedPort = static_cast<std::uint16_t>(port);
    inpout32::PortGate gate(system);
    QVERIFY(!gate.open());
    system.calls.clear();
    gate.write(0x300, 1);
    QCOMPARE(static_cast<int>(gate.read(0x304)), 0);
    QCOMPARE(system.calls, QStringList());
    QCOMPARE(system.complaints,
             QStringList({ QStringLiteral(
                 "no access to the ports 0x300 and 0x304 (Operation not permitted): the "
                 "capability CAP_SYS_RAWIO is missing, or the kernel is locked down") }));
}

void TestPortGate::kernelDriverIsToldAndRefused()
{
    FakePortSystem system;
    system.owner = "applesmc";
    inpout32::PortGate gate(system);
    gate.write(0x304, 0x10);
    QVERIFY(!gate.open());
    QCOMPARE(system.calls, QStringList());
    QCOMPARE(system.complaints.first(),
             QStringLiteral("the ports 0x300 and 0x304 belong to the kernel driver applesmc and "
                            "can't be used beside it: unload that driver first"));
}

void TestPortGate::openLooksAgain()
{
    FakePortSystem system;
    system.owner = "applesmc";
    inpout32::PortGate gate(system);
    QVERIFY(!gate.open());
    system.owner.clear();
    QVERIFY(gate.open());
    system.owner = "applesmc";
    QVERIFY(!gate.open());
    system.calls.clear();
    gate.write(0x304, 0x10);
    QCOMPARE(system.calls, QStringList());
}

void TestPortGate::refusalIsTheLastRequests()
{
    FakePortSystem system;
    inpout32::PortGate gate(system);
    QCOMPARE(QString::fromStdString(gate.refusal()), QString());
    system.owner = "applesmc";
    QVERIFY(!gate.open());
    QCOMPARE(QString::fromStdString(gate.refusal()),
             QStringLiteral("the ports 0x300 and 0x304 belong to the kernel driver applesmc and "
                            "can't be used beside it: unload that driver first"));
    system.owner.clear();
    system.refusedPort = 0x304;
    QVERIFY(!gate.open());
    QCOMPARE(system.complaints.size(), 2);
    QCOMPARE(QString::fromStdString(gate.refusal()), system.complaints.last());
    QVERIFY(gate.refusal().find("CAP_SYS_RAWIO") != std::string::npos);
    system.refusedPort = 0;
    QVERIFY(gate.open());
    QCOMPARE(QString::fromStdString(gate.refusal()), QString());
}

void TestPortGate::ownerOfThePortsIsFound_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("owner");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("numbers hidden from us")
        << QStringLiteral("0000-0000 : applesmc\n") << QStringLiteral("applesmc");
    QTest::newRow("somebody else's hidden numbers")
        << QStringLiteral("0000-0000 : keyboard\n") << QString();
    QTest::newRow("bus and firmware only")
        << QStringLiteral("0000-0cf7 : PCI Bus 0000:00\n  0300-031f : APP0001:00\n"
                          "  0300-031f : pnp 00:03\n  0060-0060 : keyboard\n")
        << QString();
    QTest::newRow("driver below the firmware's entry")
        << QStringLiteral("0000-0cf7 : PCI Bus 0000:00\n  0300-031f : APP0001:00\n"
                          "    0300-031f : applesmc\n")
        << QStringLiteral("applesmc");
    QTest::newRow("other driver") << QStringLiteral("0300-030f : ne2k\n") << QStringLiteral("ne2k");
    QTest::newRow("last port") << QStringLiteral("031f-0320 : x\n") << QStringLiteral("x");
    QTest::newRow("below") << QStringLiteral("02f8-02ff : serial\n") << QString();
    QTest::newRow("above") << QStringLiteral("0320-0327 : x\n") << QString();
    QTest::newRow("nearly a firmware device")
        << QStringLiteral("0300-031f : APP0001:0\n") << QStringLiteral("APP0001:0");
    QTest::newRow("lower case before a colon")
        << QStringLiteral("0300-031f : drv0001:00\n") << QStringLiteral("drv0001:00");
    QTest::newRow("nonsense") << QStringLiteral("what\n- :\n0300-zz : x\n") << QString();
}

void TestPortGate::ownerOfThePortsIsFound()
{
    QFETCH(QString, table);
    std::istringstream stream(table.toStdString());
    QTEST(QString::fromStdString(inpout32::portOwner(stream)), "owner");
}

void TestPortGate::libraryRefusesBesideTheKernelDriver()
{
    QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkpath(QStringLiteral("sys/module/applesmc")));
    qputenv("BRISORA_SYSROOT", QFile::encodeName(root.path()));

    QLibrary library(QString::fromLocal8Bit(PORT_DRIVER_LIBRARY));
    const auto isOpen = reinterpret_cast<unsigned (*)()>(library.resolve("IsInpOutDriverOpen"));
    const auto out = reinterpret_cast<void (*)(short, short)>(library.resolve("Out32"));
    const auto in = reinterpret_cast<short (*)(short)>(library.resolve("Inp32"));
    const auto refusal = reinterpret_cast<const char* (*)()>(library.resolve("InpOutRefusal"));
    QVERIFY2(isOpen != nullptr && out != nullptr && in != nullptr && refusal != nullptr,
             qPrintable(library.errorString()));
    QCOMPARE(QByteArray(refusal()), QByteArray());
    {
        CapturedErrors errors(root.filePath(QStringLiteral("errors")));
        QCOMPARE(isOpen(), 0U);
        QCOMPARE(isOpen(), 0U);
        out(0x304, 0x10);
        QCOMPARE(static_cast<int>(in(0x304)), 0);
        QCOMPARE(errors.text(),
                 QByteArray("libinpout32: the ports 0x300 and 0x304 belong to the kernel driver "
                            "applesmc and can't be used beside it: unload that driver first\n"));
    }

    QCOMPARE(QByteArray(refusal()),
             QByteArray("the ports 0x300 and 0x304 belong to the kernel driver applesmc and can't "
                        "be used beside it: unload that driver first"));

    QVERIFY(QDir(root.path()).removeRecursively());
    QVERIFY(QDir(root.path()).mkpath(QStringLiteral("proc")));
    QFile table(root.filePath(QStringLiteral("proc/ioports")));
    QVERIFY(table.open(QFile::WriteOnly));
    table.write("0300-031f : some driver\n");
    table.close();
    QCOMPARE(isOpen(), 0U);
    QVERIFY(QByteArray(refusal()).contains("the kernel driver some driver and"));
    qunsetenv("BRISORA_SYSROOT");
}

BRISORA_TEST_MAIN(TestPortGate, QCoreApplication)

#include "test_port_gate.moc"
