#include <QtTest>

#include "core/widgets/windowicon.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

class WindowIconTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theIconHasItsFourSizes();
    void theIconIsMadeOnce();
};

void WindowIconTest::theIconHasItsFourSizes()
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

void WindowIconTest::theIconIsMadeOnce()
{
    QCOMPARE(windowIcon().cacheKey(), windowIcon().cacheKey());
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    initResources();
    QApplication application(argc, argv);
    WindowIconTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_windowicon.moc"
