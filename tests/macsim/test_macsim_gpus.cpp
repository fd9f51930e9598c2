#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>

#include "macsim/model/machinestate.h"
#include "macsim/portrecord.h"
#include "macsim/run/gpurecords.h"
#include "macsim/run/machineface.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

namespace {

const QString nvidiaMachine = QStringLiteral("MacBookPro11,3");
const QString amdMachine = QStringLiteral("iMac12,2");
const QString machineWithoutGpus = QStringLiteral("Xserve3,1");

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

QString nameByRecords(GpuRecords& records, quint16 gpu)
{
    QString name;
    for (int position = 0; position < 256; ++position) {
        const quint8 character
            = records.answer(portrecord::gpuName, gpu, static_cast<quint8>(position));
        if (character == 0) {
            break;
        }
        name += QLatin1Char(static_cast<char>(character));
    }
    return name;
}

} // namespace

class MacsimGpusTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aGpusTemperatureFollowsTheLoad();
    void failingDriversTellNothing();
    void theStateTellsTheGpus();
    void theRecordsTellNvidiasGpusOnly();
    void theRecordsKnowNoOtherGpus();
    void theFilesTellEveryGpu();
    void theTemperatureFileChanges();
    void aSecondRunInTheSameFolderFindsItsFiles();
};

void MacsimGpusTest::aGpusTemperatureFollowsTheLoad()
{
    MacBench bench(nvidiaMachine);
    const double atRest = bench.mac.gpuTemperature(1).value();
    QCOMPARE(atRest, bench.temperature(QStringLiteral("gpu")) + 1.0);

    QVERIFY(bench.ask({ QStringLiteral("load"), QStringLiteral("100") }));
    bench.passSeconds(60);

    QVERIFY(bench.mac.gpuTemperature(1).value() > atRest + 10.0);
}

void MacsimGpusTest::failingDriversTellNothing()
{
    MacBench bench(nvidiaMachine);
    GpuRecords records(bench.mac);

    QVERIFY(bench.ask({ QStringLiteral("fault"), QStringLiteral("gpus") }));
    QVERIFY(!bench.mac.gpuTemperature(1).has_value());
    QCOMPARE(records.answer(portrecord::gpuTemperature, 0, 0), quint8 { 0 });
    QCOMPARE(records.answer(portrecord::gpuCount, 0, 0), quint8 { 1 });

    QVERIFY(bench.ask({ QStringLiteral("fault"), QStringLiteral("none") }));
    QVERIFY(bench.mac.gpuTemperature(1).has_value());
}

void MacsimGpusTest::theStateTellsTheGpus()
{
    MacBench bench(nvidiaMachine);
    const auto gpus = [&bench] {
        return machineState(bench.mac, bench.controller)[QStringLiteral("gpus")].toArray();
    };
    QCOMPARE(gpus().size(), 2);
    QCOMPARE(gpus().at(1)[QStringLiteral("name")].toString(),
             QStringLiteral("NVIDIA GeForce GT 750M"));
    QVERIFY(gpus().at(1)[QStringLiteral("temperature")].toDouble() > 30.0);

    bench.mac.setGpuDriversFailing(true);

    QVERIFY(gpus().at(1)[QStringLiteral("temperature")].isNull());
}

void MacsimGpusTest::theRecordsTellNvidiasGpusOnly()
{
    MacBench bench(nvidiaMachine);
    GpuRecords records(bench.mac);

    QCOMPARE(records.answer(portrecord::gpuCount, 0, 0), quint8 { 1 });
    QCOMPARE(nameByRecords(records, 0), QStringLiteral("NVIDIA GeForce GT 750M"));
    QCOMPARE(static_cast<int>(records.answer(portrecord::gpuTemperature, 0, 0)),
             qRound(bench.mac.gpuTemperature(1).value()));
}

void MacsimGpusTest::theRecordsKnowNoOtherGpus()
{
    MacBench bench(amdMachine);
    GpuRecords records(bench.mac);

    QCOMPARE(records.answer(portrecord::gpuCount, 0, 0), quint8 { 0 });
    QCOMPARE(records.answer(portrecord::gpuTemperature, 0, 0), quint8 { 0 });
    QCOMPARE(records.answer(portrecord::gpuName, 0xFFFF, 0xFF), quint8 { 0 });
    QCOMPARE(records.answer(0xFF, 0, 0), quint8 { 0 });
}

void MacsimGpusTest::theFilesTellEveryGpu()
{
    const MacBench bench(nvidiaMachine);
    const QTemporaryDir root;
    const MachineFace face(bench.mac.description(), root.path());

    QVERIFY(face.create());

    QVERIFY(!face.hasTemperatureFile(0));
    QVERIFY(!face.hasTemperatureFile(1));
    const QString device = root.filePath(QStringLiteral("sys/bus/pci/devices/0000:01:00.0/"));
    QCOMPARE(contents(device + QStringLiteral("class")), QByteArray("0x030000\n"));
    QCOMPARE(contents(device + QStringLiteral("vendor")), QByteArray("0x10de\n"));
    QCOMPARE(contents(device + QStringLiteral("device")), QByteArray("0x0fe9\n"));
    QCOMPARE(contents(root.filePath(QStringLiteral("sys/class/drm/card1/device/vendor"))),
             QByteArray("0x10de\n"));
    QCOMPARE(contents(root.filePath(QStringLiteral("sys/class/drm/card0/device/vendor"))),
             QByteArray("0x8086\n"));
    QVERIFY(!QFileInfo::exists(device + QStringLiteral("hwmon")));

    const MacBench other(machineWithoutGpus);
    const QTemporaryDir otherRoot;
    QVERIFY(MachineFace(other.mac.description(), otherRoot.path()).create());
    QVERIFY(!QFileInfo::exists(otherRoot.filePath(QStringLiteral("sys/class/drm"))));
}

void MacsimGpusTest::theTemperatureFileChanges()
{
    const MacBench bench(amdMachine);
    const QTemporaryDir root;
    const MachineFace face(bench.mac.description(), root.path());
    QVERIFY(face.create());
    QVERIFY(face.hasTemperatureFile(0));
    const QString file
        = root.filePath(QStringLiteral("sys/class/drm/card0/device/hwmon/hwmon0/temp1_input"));
    QVERIFY(QFile::exists(file));

    QVERIFY(face.setGpuTemperature(0, 57.1234));
    QCOMPARE(contents(file), QByteArray("57123\n"));
    QVERIFY(face.setGpuTemperature(0, std::nullopt));
    QVERIFY(!QFile::exists(file));
    QVERIFY(face.setGpuTemperature(0, std::nullopt));
    QVERIFY(face.setGpuTemperature(0, 60.0));
    QCOMPARE(contents(file), QByteArray("60000\n"));
    QVERIFY(
        !MachineFace(bench.mac.description(), QStringLiteral("/proc")).setGpuTemperature(0, 60.0));
}

void MacsimGpusTest::aSecondRunInTheSameFolderFindsItsFiles()
{
    const MacBench bench(amdMachine);
    const QTemporaryDir root;
    const MachineFace face(bench.mac.description(), root.path());
    QVERIFY(face.create());
    QVERIFY(face.create());
    QCOMPARE(contents(root.filePath(QStringLiteral("sys/class/drm/card0/device/vendor"))),
             QByteArray("0x1002\n"));
}

BRISORA_TEST_MAIN(MacsimGpusTest, QCoreApplication)

#include "test_macsim_gpus.moc"
