#include <QApplication>

#include "build_config.h"
#include "core/application/file_version.h"
#include "core/widgets/windowicon.h"
#include "tests/support/testenvironment.h"

// What the program's file carries: tests are linked with the same resources.
class ProgramResourcesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFilesVersionIsTheBuilds()
    {
        const auto numbers = core::readFileVersion().numbers;
        QCOMPARE(numbers[0], BuildConfig::versionMajor);
        QCOMPARE(numbers[1], BuildConfig::versionMinor);
        QCOMPARE(numbers[2], BuildConfig::versionPatch);
        QCOMPARE(numbers[3], BuildConfig::versionBuild);
    }

    void theIconHasItsFourSizes()
    {
        const QIcon icon = windowIcon();
        QCOMPARE(icon.availableSizes().size(), 4);
        for (const int size : { 16, 32, 64, 128 }) {
            QVERIFY(icon.availableSizes().contains(QSize(size, size)));
            // Not a blank one: some pixels are opaque, some are not.
            const QImage image = icon.pixmap(size).toImage();
            QCOMPARE(image.size(), QSize(size, size));
            QCOMPARE(image.pixelColor(size / 2, size / 2).alpha(), 255);
            QVERIFY(image.pixelColor(0, 0).alpha() < 255);
        }
    }
};

BRISORA_TEST_MAIN(ProgramResourcesTest, QApplication)
#include "test_program_resources_windows.moc"
