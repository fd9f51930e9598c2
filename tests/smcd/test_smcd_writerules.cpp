#include <limits>

#include <QCoreApplication>

#include "smcd/writerules.h"
#include "tests/smcd/fakecontroller.h"
#include "tests/support/testenvironment.h"

using namespace smcd;

namespace {

Value single(float number)
{
    Value bytes(4);
    std::memcpy(bytes.data(), &number, bytes.size());
    return bytes;
}

Value bytesOf(const QByteArray& digits)
{
    const QByteArray bytes = QByteArray::fromHex(digits);
    return { bytes.begin(), bytes.end() };
}

} // namespace

class WriteRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesAreJudged_data()
    {
        QTest::addColumn<bool>("hasMask");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("digits");
        QTest::addColumn<quint32>("error");
        const auto mask = [](const char* name, const char* key, const char* digits, int error) {
            QTest::newRow(name) << true << QByteArray(key) << QByteArray(digits) << quint32(error);
        };
        const auto mode = [](const char* name, const char* key, const char* digits, int error) {
            QTest::newRow(name) << false << QByteArray(key) << QByteArray(digits) << quint32(error);
        };
        mask("no bit", "FS! ", "0000", 0);
        mask("both fans", "FS! ", "0003", 0);
        mask("a fan that isn't there", "FS! ", "0004", ERANGE);
        mask("a high byte", "FS! ", "0100", ERANGE);
        mask("a mask of one byte", "FS! ", "03", EINVAL);
        mask("a mask of three bytes", "FS! ", "000300", EINVAL);
        mask("no such mode", "F0Md", "01", ENOENT);
        mask("a target within", "F0Tg", "2EE0", 0); // 3000
        mask("the lowest, cut", "F0Tg", "1F40", 0); // 2000 of 2000.5
        mask("below the lowest", "F0Tg", "1F3F", ERANGE);
        mask("the highest", "F1Tg", "6031", 0);
        mask("above the highest", "F1Tg", "6032", ERANGE);
        mask("zero", "F0Tg", "0000", ERANGE);
        mask("a target of four bytes", "F0Tg", "00803B45", EINVAL);
        mask("a target of a fan that isn't there", "F2Tg", "2EE0", ENOENT);
        for (const char* key : { "F0Mn", "F0Mx", "F0Ac", "F0Sf", "FNum", "#KEY", "LKSB", "TC0P",
                                 "FS!!", "fs! ", "F0md", "F:Md", "FATg", "NTOK" }) {
            mask(key, key, "0000", EACCES);
        }
        mode("manual", "F0Md", "01", 0);
        mode("automatic", "F1Md", "00", 0);
        mode("a mode that is none", "F0Md", "02", ERANGE);
        mode("a mode of two bytes", "F0Md", "0001", EINVAL);
        mode("a mode of a fan that isn't there", "F2Md", "01", ENOENT);
        mode("no such mask", "FS! ", "0001", ENOENT);
        mode("a single within", "F0Tg", "0080BB44", 0); // 1500
        mode("a single of two bytes", "F0Tg", "2EE0", EINVAL);
    }
    void writesAreJudged()
    {
        QFETCH(bool, hasMask);
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, digits);
        QFETCH(quint32, error);
        FakeController controller;
        hasMask ? addMaskFans(controller) : addModeFans(controller);
        KeyReader reader(controller);
        WriteRules rules(reader);
        WriteEffect effect;
        QCOMPARE(rules.check(keyOf(key.constData()), bytesOf(digits), effect), error);
    }

    void singlesAreJudgedByTheFansLimits_data()
    {
        QTest::addColumn<float>("speed");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("lowest") << 1100.0F << true;
        QTest::newRow("highest") << 2500.0F << true;
        QTest::newRow("below") << 1099.9F << false;
        QTest::newRow("above") << 2500.5F << false;
        QTest::newRow("negative") << -1500.0F << false;
        QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << false;
        QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << false;
    }
    void singlesAreJudgedByTheFansLimits()
    {
        QFETCH(float, speed);
        QFETCH(bool, isTaken);
        FakeController controller;
        addModeFans(controller);
        KeyReader reader(controller);
        WriteRules rules(reader);
        WriteEffect effect;
        QCOMPARE(rules.check(keyOf("F0Tg"), single(speed), effect),
                 isTaken ? 0U : static_cast<std::uint32_t>(ERANGE));
    }

    void limitsThatAreNoneLetNothingThrough_data()
    {
        QTest::addColumn<QByteArray>("limit");
        QTest::newRow("no number") << QByteArray::fromHex("0000C07F");
        QTest::newRow("infinite") << QByteArray::fromHex("0000807F");
        QTest::newRow("negative") << QByteArray::fromHex("000080BF");
        QTest::newRow("three bytes") << QByteArray::fromHex("000000");
    }
    void limitsThatAreNoneLetNothingThrough()
    {
        QFETCH(QByteArray, limit);
        FakeController controller;
        addModeFans(controller);
        controller.set("F0Mx", { limit.begin(), limit.end() });
        KeyReader reader(controller);
        WriteRules rules(reader);
        WriteEffect effect;
        QCOMPARE(rules.check(keyOf("F0Tg"), single(1500), effect), static_cast<std::uint32_t>(EIO));
        QCOMPARE(rules.check(keyOf("F1Tg"), single(1500), effect), 0U);
    }

    void limitsAreReadInTheirOwnEncoding()
    {
        FakeController controller;
        addMaskFans(controller);
        controller.set("F0Mx", single(3000), "flt ");
        KeyReader reader(controller);
        WriteRules rules(reader);
        WriteEffect effect;
        QCOMPARE(rules.check(keyOf("F0Tg"), { { 0x2E, 0xE0 } }, effect), 0U); // 3000
        QCOMPARE(rules.check(keyOf("F0Tg"), { { 0x2E, 0xE4 } }, effect),
                 static_cast<std::uint32_t>(ERANGE));
    }

    void theEffectNamesTheBits()
    {
        FakeController controller;
        addMaskFans(controller);
        addModeFans(controller);
        KeyReader reader(controller);
        WriteRules rules(reader);
        WriteEffect mask;
        QCOMPARE(rules.check(keyOf("FS! "), { { 0, 2 } }, mask), 0U);
        QCOMPARE(mask.sets, ControlBits(0x02));
        QCOMPARE(mask.clears, ControlBits(0xFD));
        WriteEffect manual;
        QCOMPARE(rules.check(keyOf("F1Md"), { { 1 } }, manual), 0U);
        QCOMPARE(manual.sets, ControlBits().set(modePlace(1)));
        QVERIFY(manual.clears.none());
        WriteEffect target;
        QCOMPARE(rules.check(keyOf("F1Tg"), single(1500), target), 0U);
        QVERIFY(target.sets.none() && target.clears.none());
    }

    void anUnreadableControllerLetsNothingThrough()
    {
        FakeController controller;
        addMaskFans(controller);
        controller.fail(EIO);
        KeyReader reader(controller);
        WriteRules rules(reader);
        WriteEffect effect;
        QCOMPARE(rules.check(keyOf("FS! "), { { 0, 1 } }, effect), static_cast<std::uint32_t>(EIO));
    }
};

BRISORA_TEST_MAIN(WriteRulesTest, QCoreApplication)

#include "test_smcd_writerules.moc"
