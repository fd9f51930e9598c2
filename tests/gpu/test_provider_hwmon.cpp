#include <memory>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "app/gpu/drmfiles.h"
#include "app/gpu/provider_hwmon.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

QString text(const char* value) { return QString::fromUtf8(value); }

} // namespace

class TestProviderHwmon : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void cardsAreToldFromTheirConnectors_data();
    void cardsAreToldFromTheirConnectors();
    void amdIsKnownByItsNumber_data();
    void amdIsKnownByItsNumber();

    void machineWithoutCardsHasNoGpus();
    void cardsOfAmdBecomeGpus();
    void cardWithoutATemperatureIsLeftOut();
    void firstChipWithATemperatureCounts();
    void gpuWithoutANameHasItsNumbers();
    void temperatureFollowsTheFile();
    void lostTemperatureIsZero();
    void gpuThatSleepsIsNotRead();
    void endlessFileIsReadInPart();
    void clearedListIsFilledAnew();

private:
    void write(const QString& path, const QByteArray& contents);
    void addCard(const char* card, const char* vendor, const char* device,
                 const char* temperature = nullptr);
    GPU::ProviderHwmon makeProvider()
    {
        return GPU::ProviderHwmon({ m_root->filePath(QStringLiteral("none")),
                                    m_root->filePath(QStringLiteral("pci.ids")) });
    }

    std::unique_ptr<QTemporaryDir> m_root;
};

void TestProviderHwmon::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    QVERIFY(m_root->isValid());
    qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root->path()));
}

void TestProviderHwmon::cleanup()
{
    qunsetenv("BRISORA_SYSROOT");
    m_root.reset();
}

void TestProviderHwmon::write(const QString& path, const QByteArray& contents)
{
    const QString fullPath = m_root->path() + QLatin1Char('/') + path;
    QVERIFY(QDir().mkpath(QFileInfo(fullPath).path()));
    QFile file(fullPath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), qint64(contents.size()));
}

void TestProviderHwmon::addCard(const char* card, const char* vendor, const char* device,
                                const char* temperature)
{
    const QString folder = QStringLiteral("sys/class/drm/%1/device/").arg(text(card));
    write(folder + QStringLiteral("vendor"), QByteArray(vendor) + '\n');
    write(folder + QStringLiteral("device"), QByteArray(device) + '\n');
    if (temperature != nullptr) {
        write(folder + QStringLiteral("hwmon/hwmon3/temp1_input"), QByteArray(temperature) + '\n');
    }
}

void TestProviderHwmon::cardsAreToldFromTheirConnectors_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QStringList>("cards");
    const auto list
        = [](const char* names) { return text(names).split(QLatin1Char(' '), Qt::SkipEmptyParts); };
    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("connectors") << list("card0 card0-DP-1 card0-eDP-1 renderD128 version")
                                << list("card0");
    QTest::newRow("by number") << list("card10 card2 card1") << list("card1 card2 card10");
    QTest::newRow("no numbers") << list("card card-1 cardA card+1 card01 card1x") << QStringList();
    QTest::newRow("beyond any number") << list("card99999999999") << QStringList();
    QTest::newRow("other names") << list("xcard0 Card0 cart0") << QStringList();
}

void TestProviderHwmon::cardsAreToldFromTheirConnectors()
{
    QFETCH(QStringList, entries);
    QTEST(DrmFiles::cards(entries), "cards");
}

void TestProviderHwmon::amdIsKnownByItsNumber_data()
{
    QTest::addColumn<QByteArray>("vendor");
    QTest::addColumn<bool>("isAmd");
    QTest::newRow("AMD") << QByteArray("0x1002\n") << true;
    QTest::newRow("without a line's end") << QByteArray("0x1002") << true;
    QTest::newRow("upper case") << QByteArray("0X1002\n") << true;
    QTest::newRow("NVIDIA") << QByteArray("0x10de\n") << false;
    QTest::newRow("longer") << QByteArray("0x10020\n") << false;
    QTest::newRow("decimal") << QByteArray("1002\n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("zeros") << QByteArray(8, '\0') << false;
}

void TestProviderHwmon::amdIsKnownByItsNumber()
{
    QFETCH(QByteArray, vendor);
    QTEST(DrmFiles::isAmd(vendor), "isAmd");
}

void TestProviderHwmon::machineWithoutCardsHasNoGpus()
{
    GPU::ProviderHwmon provider = makeProvider();
    QVERIFY(!provider.discoverGPUs());
    QCOMPARE(provider.getCount(), 0);
}

void TestProviderHwmon::cardsOfAmdBecomeGpus()
{
    addCard("card1", "0x1002", "0x6821", "51000");
    addCard("card0", "0x8086", "0x0d26", "40000");
    addCard("card2", "0x1002", "0x67df", "62500");
    write(QStringLiteral("pci.ids"),
          "1002  AMD\n\t67df  Ellesmere [Radeon RX 480]\n\t6821  Venus XT [Radeon R9 M370X]\n");
    GPU::ProviderHwmon provider = makeProvider();
    const LogCapture log;

    QVERIFY(provider.discoverGPUs());

    QCOMPARE(provider.getCount(), 2);
    QCOMPARE(provider.getGpu(0)->name, text("AMD Radeon R9 M370X"));
    QCOMPARE(provider.getGpu(1)->name, text("AMD Radeon RX 480"));
    QCOMPARE(provider.getGpu(0)->provider, &provider);
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 51.0);
    QCOMPARE(provider.getTemperature(provider.getGpu(1)), 62.5);
    QCOMPARE(log.lines().first(),
             QStringLiteral("info: card1: AMD Radeon R9 M370X, %1/sys/class/drm/card1/device/hwmon/"
                            "hwmon3/temp1_input")
                 .arg(m_root->path()));
}

void TestProviderHwmon::cardWithoutATemperatureIsLeftOut()
{
    addCard("card0", "0x1002", "0x6821");
    write(QStringLiteral("sys/class/drm/card0/device/hwmon/hwmon3/name"), "amdgpu\n");
    GPU::ProviderHwmon provider = makeProvider();

    QVERIFY(!provider.discoverGPUs());
}

void TestProviderHwmon::firstChipWithATemperatureCounts()
{
    addCard("card0", "0x1002", "0x6821", "51000");
    const QString chips = QStringLiteral("sys/class/drm/card0/device/hwmon/");
    write(chips + QStringLiteral("hwmon1/name"), "amdgpu\n");
    write(chips + QStringLiteral("hwmon4/temp1_input"), "70000\n");
    GPU::ProviderHwmon provider = makeProvider();

    QVERIFY(provider.discoverGPUs());

    QCOMPARE(provider.getCount(), 1);
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 51.0);
}

void TestProviderHwmon::gpuWithoutANameHasItsNumbers()
{
    addCard("card0", "0x1002", "0x6821", "51000");
    GPU::ProviderHwmon provider = makeProvider();

    QVERIFY(provider.discoverGPUs());

    QCOMPARE(provider.getGpu(0)->name, text("AMD 1002:6821"));
}

void TestProviderHwmon::temperatureFollowsTheFile()
{
    addCard("card0", "0x1002", "0x6821", "51000");
    GPU::ProviderHwmon provider = makeProvider();
    QVERIFY(provider.discoverGPUs());
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 51.0);

    addCard("card0", "0x1002", "0x6821", "52500");
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 52.5);

    addCard("card0", "0x1002", "0x6821", "N/A");
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 0.0);
}

void TestProviderHwmon::lostTemperatureIsZero()
{
    addCard("card0", "0x1002", "0x6821", "51000");
    GPU::ProviderHwmon provider = makeProvider();
    QVERIFY(provider.discoverGPUs());

    QVERIFY(QFile::remove(
        m_root->filePath(QStringLiteral("sys/class/drm/card0/device/hwmon/hwmon3/temp1_input"))));

    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 0.0);
    QCOMPARE(provider.getTemperature(nullptr), 0.0);
}

void TestProviderHwmon::gpuThatSleepsIsNotRead()
{
    addCard("card0", "0x1002", "0x6821", "51000");
    const QString status = QStringLiteral("sys/class/drm/card0/device/power/runtime_status");
    write(status, "active\n");
    GPU::ProviderHwmon provider = makeProvider();
    QVERIFY(provider.discoverGPUs());
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 51.0);

    write(status, "suspended\n");
    addCard("card0", "0x1002", "0x6821", "60000");
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 51.0);

    write(status, "active\n");
    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 60.0);
}

void TestProviderHwmon::endlessFileIsReadInPart()
{
    addCard("card0", "0x1002", "0x6821", QByteArray(1000000, '1').constData());
    GPU::ProviderHwmon provider = makeProvider();
    QVERIFY(provider.discoverGPUs());

    QCOMPARE(provider.getTemperature(provider.getGpu(0)), 0.0);
}

void TestProviderHwmon::clearedListIsFilledAnew()
{
    addCard("card0", "0x1002", "0x6821", "51000");
    GPU::ProviderHwmon provider = makeProvider();
    QVERIFY(provider.discoverGPUs());

    provider.clear();
    QCOMPARE(provider.getCount(), 0);
    addCard("card1", "0x1002", "0x67df", "62500");
    QVERIFY(provider.discoverGPUs());

    QCOMPARE(provider.getCount(), 2);
}

BRISORA_TEST_MAIN(TestProviderHwmon, QCoreApplication)
#include "test_provider_hwmon.moc"
