#include <cerrno>

#include <QCoreApplication>

#include "smcd/portcontroller.h"
#include "tests/smc/fakeportdriver.h"
#include "tests/smcd/fakecontroller.h"
#include "tests/support/testenvironment.h"

namespace {

// A port controller and its driver, which belongs to it.
struct Bench {
    std::unique_ptr<FakePortDriver> made = std::make_unique<FakePortDriver>();
    FakePortDriver* driver = made.get();
    std::unique_ptr<smcd::Controller> controller;
    std::string reason;

    void open() { controller = smcd::PortController::open(std::move(made), reason); }
};

constexpr std::uint8_t reads = 0x05; // the status of a controller that gives bytes
constexpr std::uint8_t takes = 0x04; // and of one that takes them

} // namespace

class PortControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDriverThatIsReadyIsUsed()
    {
        Bench bench;
        bench.driver->ready = { 0, 1 }; // the first question gets it ready
        bench.open();
        QVERIFY(bench.controller);
    }

    void aDriverThatRefusesIsNot_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("not there") << 0;
        QTest::newRow("not ready") << 1;
        QTest::newRow("without reads") << 2;
        QTest::newRow("without writes") << 3;
        QTest::newRow("without a question") << 4;
    }
    void aDriverThatRefusesIsNot()
    {
        QFETCH(int, fault);
        Bench bench;
        bench.driver->loads = fault != 0;
        bench.driver->ready = { fault == 1 ? 0U : 1U };
        bench.driver->hasInp32 = fault != 2;
        bench.driver->hasOut32 = fault != 3;
        bench.driver->hasIsInpOutDriverOpen = fault != 4;
        bench.driver->reason = "the reason";
        bench.open();
        QVERIFY(!bench.controller);
        QCOMPARE(bench.reason, std::string("the reason"));
    }

    void keysGoThroughThePorts()
    {
        Bench bench;
        bench.driver->ready = { 1, 1, 1, 1 };
        bench.open();
        bench.driver->statuses = { reads };
        bench.driver->values = { 0x12, 0x34 };
        Value value(2);
        QCOMPARE(bench.controller->readKey(keyOf("F0Ac"), value), 0U);
        QCOMPARE(value, (Value { 0x12, 0x34 }));
        QCOMPARE(bench.driver->callsOf(QStringLiteral("out")),
                 (QStringList { QStringLiteral("out 304 10"), QStringLiteral("out 300 46"),
                                QStringLiteral("out 300 30"), QStringLiteral("out 300 41"),
                                QStringLiteral("out 300 63"), QStringLiteral("out 300 02") }));

        bench.driver->calls.clear();
        bench.driver->statuses = { takes };
        QCOMPARE(bench.controller->writeKey(keyOf("F0Md"), Value { 1 }), 0U);
        QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).first(),
                 QStringLiteral("out 304 11"));
        QCOMPARE(bench.driver->callsOf(QStringLiteral("out")).last(), QStringLiteral("out 300 01"));
    }

    void infosAndNamesAreReadFromTheReply()
    {
        Bench bench;
        bench.driver->ready = { 1, 1, 1 };
        bench.open();
        bench.driver->statuses = { reads };
        bench.driver->values = { 4, 'f', 'l', 't', ' ', 0xD4, 'F', 'N', 'u', 'm' };
        smcd::KeyInfo info;
        QCOMPARE(bench.controller->keyInfo(keyOf("F0Tg"), info), 0U);
        QCOMPARE(info.length, std::uint8_t(4));
        QCOMPARE(std::string(info.type.begin(), info.type.end()), std::string("flt "));
        QCOMPARE(info.attributes, std::uint8_t(0xD4));
        smcd::Key key {};
        QCOMPARE(bench.controller->keyByIndex(7, key), 0U);
        QCOMPARE(key, keyOf("FNum"));
    }

    void aSilentControllerIsAnError()
    {
        Bench bench;
        bench.driver->ready = { 1, 1 };
        bench.open();
        bench.driver->statuses = { 0 };
        Value value(2);
        QCOMPARE(bench.controller->readKey(keyOf("F0Ac"), value), std::uint32_t(EIO));
    }

    void portsThatAreTakenMeanwhileAreLeftAlone()
    {
        Bench bench;
        bench.open();
        bench.driver->ready = { 0 };
        bench.driver->calls.clear();
        QCOMPARE(bench.controller->writeKey(keyOf("F0Md"), Value { 1 }), std::uint32_t(ENODEV));
        QCOMPARE(bench.driver->callsOf(QStringLiteral("out")), QStringList());
    }
};

BRISORA_TEST_MAIN(PortControllerTest, QCoreApplication)

#include "test_smcd_portcontroller.moc"
