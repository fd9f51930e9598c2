#include <QApplication>
#include <QImage>
#include <QtTest>

#include "app/ui/typeicons.h"
#include "core/widgets/widgethelpers.h"
#include "tests/support/testenvironment.h"

Q_DECLARE_METATYPE(FanLocation)
Q_DECLARE_METATYPE(SensorType)

namespace {

QList<QSize> sizesOf(const QIcon& icon) { return icon.availableSizes(); }

QList<QSize> sizesOf(const QString& picture)
{
    return sizesOf(QIcon(QStringLiteral(":/Resources/%1.png").arg(picture)));
}

bool isTransparent(const QIcon& icon)
{
    const QImage image = icon.pixmap(icon.availableSizes().value(0)).toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() != 0) {
                return false;
            }
        }
    }
    return !image.isNull();
}

} // namespace

// Each picture of this test has a size that no other has.
class TypeIconsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFanHasThePictureOfItsPlace_data();
    void aFanHasThePictureOfItsPlace();
    void aSensorHasThePictureOfItsType_data();
    void aSensorHasThePictureOfItsType();
    void aTypeWithoutAPictureKeepsThePlace();
    void aTransparentIconHasItsSize();
};

void TypeIconsTest::aFanHasThePictureOfItsPlace_data()
{
    QTest::addColumn<FanLocation>("location");
    QTest::addColumn<QString>("picture");
    QTest::newRow("disc") << FanLocationOdd << QStringLiteral("disc");
    QTest::newRow("drive") << FanLocationHdd << QStringLiteral("drive");
    QTest::newRow("processor") << FanLocationCpu << QStringLiteral("processor");
    QTest::newRow("other") << FanLocationOther << QStringLiteral("fan");
}

void TypeIconsTest::aFanHasThePictureOfItsPlace()
{
    QFETCH(FanLocation, location);
    QFETCH(QString, picture);
    QCOMPARE(sizesOf(picture).size(), 1);
    QCOMPARE(sizesOf(fanIcon(location, false)), sizesOf(picture));
    const QString big = picture + QStringLiteral("_big");
    QCOMPARE(sizesOf(big).size(), 1);
    QCOMPARE(sizesOf(fanIcon(location, true)), sizesOf(big));
}

void TypeIconsTest::aSensorHasThePictureOfItsType_data()
{
    QTest::addColumn<SensorType>("type");
    QTest::addColumn<QString>("picture");
    QTest::newRow("0") << SensorType(0) << QStringLiteral("disc");
    QTest::newRow("1") << SensorType(1) << QStringLiteral("processor");
    QTest::newRow("2") << SensorType(2) << QStringLiteral("drive");
    QTest::newRow("3") << SensorType(3) << QStringLiteral("drive_ssd");
    QTest::newRow("4") << SensorType(4) << QStringLiteral("drive_nvme");
    QTest::newRow("5") << SensorType(5) << QStringLiteral("airport");
    QTest::newRow("6") << SensorType(6) << QStringLiteral("power-supply");
    QTest::newRow("7") << SensorType(7) << QStringLiteral("gpu");
}

void TypeIconsTest::aSensorHasThePictureOfItsType()
{
    QFETCH(SensorType, type);
    QFETCH(QString, picture);
    QCOMPARE(sizesOf(picture).size(), 1);
    QCOMPARE(sizesOf(sensorIcon(type)), sizesOf(picture));
}

void TypeIconsTest::aTypeWithoutAPictureKeepsThePlace()
{
    for (const auto type : { SensorType::other, SensorType(9) }) {
        const QIcon icon = sensorIcon(type);
        QCOMPARE(sizesOf(icon), QList<QSize>({ QSize(scaled(16), scaled(16)) }));
        QVERIFY(isTransparent(icon));
    }
    QVERIFY(!isTransparent(sensorIcon(SensorType::cpu)));
}

void TypeIconsTest::aTransparentIconHasItsSize()
{
    const QIcon icon = transparentIcon(23);
    QCOMPARE(sizesOf(icon), QList<QSize>({ QSize(23, 23) }));
    QVERIFY(isTransparent(icon));
}

BRISORA_TEST_MAIN(TypeIconsTest, QApplication)

#include "test_typeicons.moc"
