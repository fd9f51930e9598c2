#include <array>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryFile>
#include <QtTest>

#include "app/sensors/drives/storagecalls.h"
#include "app/sensors/tempsensordisk.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr std::uint32_t genericRead = 0x80000000;
constexpr std::uint32_t shareAll = 7;
constexpr std::uint32_t openExisting = 3;

} // namespace

class TestStorageCalls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSystemDriveIsFixed();
    void aFileThatIsNotThereIsNotOpened();
    void aFileTakesNoControlCode();
    void aClosedHandleTakesNoControlCode();
    void theWholeWalkEndsInTheLog();

private:
    const std::shared_ptr<StorageCalls> m_calls = makeStorageCalls();
};

void TestStorageCalls::theSystemDriveIsFixed()
{
    const QString root = QDir::rootPath().replace(QLatin1Char('/'), QLatin1Char('\\'));
    const int index = root.at(0).toUpper().unicode() - 'A';

    QVERIFY(((m_calls->getLogicalDrives() >> index) & 1U) != 0);
    QCOMPARE(m_calls->getDriveType(root), 3U);
    QCOMPARE(m_calls->getDriveType(QStringLiteral("?:\\")), 1U);
}

void TestStorageCalls::aFileThatIsNotThereIsNotOpened()
{
    QVERIFY(m_calls->createFile(QDir::tempPath() + QStringLiteral("/nothing here"), genericRead,
                                shareAll, openExisting, 0)
            == nullptr);
    QCOMPARE(m_calls->lastError(), 2U);
}

void TestStorageCalls::aFileTakesNoControlCode()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    auto* const handle = m_calls->createFile(QDir::toNativeSeparators(file.fileName()), genericRead,
                                             shareAll, openExisting, 0);
    QVERIFY(handle != nullptr);
    const std::array<std::uint8_t, 33> request {};
    std::array<std::uint8_t, 528> reply {};

    QVERIFY(!m_calls->deviceIoControl(handle, 0x0007C088, request, reply));
    QVERIFY(m_calls->lastError() != 0);
    m_calls->closeHandle(handle);
}

void TestStorageCalls::aClosedHandleTakesNoControlCode()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    auto* const handle = m_calls->createFile(QDir::toNativeSeparators(file.fileName()), genericRead,
                                             shareAll, openExisting, 0);
    m_calls->closeHandle(handle);
    std::array<std::uint8_t, 32> reply {};

    QVERIFY(!m_calls->deviceIoControl(handle, 0x00560000, {}, reply));
    QCOMPARE(m_calls->lastError(), 6U);
}

// The drives here are nobody's business; that the calls come back is.
void TestStorageCalls::theWholeWalkEndsInTheLog()
{
    const LogCapture log;

    const auto sensors = TempSensorDisk::loadAvailableSensors(false, true);

    QVERIFY(sensors.empty());
    const QStringList lines = log.lines();
    QCOMPARE(lines.at(0), QStringLiteral("info: Loading available SMART drives"));
    QVERIFY(lines.at(1).startsWith(QLatin1String("info: GetLogicalDrives returned ")));
    QVERIFY(lines.contains(QStringLiteral("info: Drive is fixed")));
}

BRISORA_TEST_MAIN(TestStorageCalls, QCoreApplication)

#include "test_storagecalls_windows.moc"
