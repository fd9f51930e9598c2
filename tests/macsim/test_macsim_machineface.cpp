#include <numeric>

#include <QCoreApplication>
#include <QRegularExpression>

#include "macsim/run/dmitable.h"
#include "macsim/run/machineface.h"
#include "macsim/run/runfolder.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

MachineDescription described(const QString& name)
{
    QString error;
    const auto machine = MachineDescription::load(name, error);
    if (!machine) {
        qFatal("%s", qPrintable(error));
    }
    return *machine;
}

struct DmiStructure {
    int type;
    QByteArray formatted;
    QList<QByteArray> strings;

    [[nodiscard]] QString text(int offset) const
    {
        const int number = static_cast<quint8>(formatted.at(offset));
        return number == 0 ? QString() : QString::fromLatin1(strings.value(number - 1));
    }
};

// As a reader walks the table: the formatted part, then strings up to a pair of
// zero bytes.
QList<DmiStructure> walk(const QByteArray& table)
{
    QList<DmiStructure> result;
    int place = 0;
    while (place + 4 <= table.size()) {
        const int length = static_cast<quint8>(table.at(place + 1));
        const int end = static_cast<int>(table.indexOf(QByteArray(2, '\0'), place + length));
        if (length < 4 || end < 0) {
            return {};
        }
        DmiStructure structure { static_cast<quint8>(table.at(place)),
                                 table.mid(place, length),
                                 {} };
        const QByteArray strings = table.mid(place + length, end - place - length);
        if (!strings.isEmpty()) {
            structure.strings = strings.split('\0');
        }
        result.append(structure);
        place = end + 2;
    }
    return result;
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

} // namespace

class MachineFaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirmwareTableTellsTheMachine_data() { addRows(); }
    void theFirmwareTableTellsTheMachine()
    {
        QFETCH(QString, name);
        const MachineDescription machine = described(name);
        const auto text
            = [&machine](const char* file) { return machine.dmi.value(QLatin1String(file)); };
        const QList<DmiStructure> structures = walk(dmiTable(machine));
        QCOMPARE(structures.size(), 4);
        QCOMPARE(structures[0].type, 0);
        QCOMPARE(structures[0].text(4), text("bios_vendor"));
        QCOMPARE(structures[0].text(5), text("bios_version"));
        QCOMPARE(structures[0].text(8), text("bios_date"));
        QCOMPARE(structures[1].type, 1);
        QCOMPARE(structures[1].formatted.size(), 0x1B);
        QCOMPARE(structures[1].text(4), text("sys_vendor"));
        QCOMPARE(structures[1].text(5), text("product_name"));
        QCOMPARE(structures[1].text(6), text("product_version"));
        QCOMPARE(structures[1].text(0x1A), text("product_family"));
        QCOMPARE(structures[2].type, 2);
        QCOMPARE(structures[2].text(4), text("board_vendor"));
        QCOMPARE(structures[2].text(5), text("board_name"));
        QCOMPARE(structures[3].type, 127);
        QCOMPARE(structures[3].formatted.size(), 4);
    }

    void theEntryPointTellsTheTablesSize()
    {
        const QByteArray table = dmiTable(described(QStringLiteral("MacBookPro11,3")));
        const QByteArray entry = dmiEntryPoint(table);
        QCOMPARE(entry.size(), 0x18);
        QVERIFY(entry.startsWith("_SM3_"));
        QCOMPARE(static_cast<quint8>(entry.at(6)), quint8 { 0x18 });
        const int sum = std::accumulate(entry.begin(), entry.end(), 0, [](int total, char byte) {
            return total + static_cast<quint8>(byte);
        });
        QCOMPARE(sum & 0xFF, 0);
        QCOMPARE(static_cast<quint8>(entry.at(12)) | (static_cast<quint8>(entry.at(13)) << 8),
                 table.size());
    }

    void theFilesAreLaidOut_data() { addRows(); }
    void theFilesAreLaidOut()
    {
        QFETCH(QString, name);
        const MachineDescription machine = described(name);
        const QTemporaryDir root;
        const MachineFace face(machine, root.path());
        QVERIFY(face.create());
        const auto file
            = [&root](const char* path) { return contents(root.filePath(QLatin1String(path))); };
        QCOMPARE(file("sys/class/dmi/id/product_name"), name.toUtf8() + '\n');
        QCOMPARE(file("sys/class/dmi/id/sys_vendor"),
                 machine.dmi.value(QStringLiteral("sys_vendor")).toUtf8() + '\n');
        QCOMPARE(file("sys/firmware/dmi/tables/DMI"), dmiTable(machine));
        QVERIFY(file("sys/firmware/dmi/tables/smbios_entry_point").startsWith("_SM3_"));
        QVERIFY(QDir(root.filePath(QStringLiteral("sys/class/hwmon"))).exists());
        const QString processors = QString::fromUtf8(file("proc/cpuinfo"));
        const ProcessorDescription& processor = machine.processor;
        QCOMPARE(processors.count(QRegularExpression(QStringLiteral("(^|\n)processor\t: "))),
                 processor.packages * processor.threads);
        QVERIFY(processors.contains(QStringLiteral("model name\t: %1\n").arg(processor.name)));
        QVERIFY(processors.contains(QStringLiteral("cpu cores\t: %1\n").arg(processor.cores)));
        QCOMPARE(file("sys/class/power_supply/ADP1/online"),
                 machine.portable ? QByteArray("1\n") : QByteArray("(missing)"));
    }

    void thePowerSourceChanges()
    {
        const MachineDescription machine = described(QStringLiteral("MacBookPro11,3"));
        const QTemporaryDir root;
        const MachineFace face(machine, root.path());
        QVERIFY(face.create());
        const QString supply = root.filePath(QStringLiteral("sys/class/power_supply/"));
        QCOMPARE(contents(supply + QStringLiteral("BAT0/type")), QByteArray("Battery\n"));
        QCOMPARE(contents(supply + QStringLiteral("BAT0/status")), QByteArray("Charging\n"));
        QVERIFY(face.setOnBattery(true));
        QCOMPARE(contents(supply + QStringLiteral("ADP1/online")), QByteArray("0\n"));
        QCOMPARE(contents(supply + QStringLiteral("BAT0/status")), QByteArray("Discharging\n"));
        QVERIFY(face.setOnBattery(false));
        QCOMPARE(contents(supply + QStringLiteral("ADP1/online")), QByteArray("1\n"));
    }

    void aFaceThatCantBeWrittenSaysSo()
    {
        const MachineDescription machine = described(QStringLiteral("MacBookPro11,3"));
        QVERIFY(!MachineFace(machine, QStringLiteral("/proc/nowhere")).create());
    }

    void theDisplayStaysReachable()
    {
        const QTemporaryDir given;
        QFile authority(given.filePath(QStringLiteral(".Xauthority")));
        QVERIFY(authority.open(QIODevice::WriteOnly));
        QProcessEnvironment own;
        own.insert(QStringLiteral("HOME"), given.path());
        own.insert(QStringLiteral("XDG_RUNTIME_DIR"), QStringLiteral("/run/user/7"));
        own.insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-0"));
        own.insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral("/opt/lib"));
        QString error;
        const auto folder = RunFolder::create(given.filePath(QStringLiteral("run")), error);
        QVERIFY2(folder.has_value(), qPrintable(error));
        const QProcessEnvironment inside = folder->environment(own, QStringLiteral("/face"));
        QCOMPARE(inside.value(QStringLiteral("XAUTHORITY")), authority.fileName());
        QCOMPARE(inside.value(QStringLiteral("WAYLAND_DISPLAY")),
                 QStringLiteral("/run/user/7/wayland-0"));
        QCOMPARE(inside.value(QStringLiteral("LD_LIBRARY_PATH")), QStringLiteral("/face:/opt/lib"));
    }

    void aFolderWithTooLongAPathIsRefused()
    {
        const QTemporaryDir given;
        QString error;
        QVERIFY(!RunFolder::create(given.filePath(QString(100, QLatin1Char('x'))), error));
        QVERIFY(error.contains(QStringLiteral("too long")));
    }

private:
    static void addRows()
    {
        QTest::addColumn<QString>("name");
        const QStringList names = MachineDescription::names();
        for (const QString& name : names) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
};

BRISORA_TEST_MAIN(MachineFaceTest, QCoreApplication)

#include "test_macsim_machineface.moc"
