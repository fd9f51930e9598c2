#include <cerrno>

#include <QCoreApplication>

#include "smcd/service.h"
#include "tests/smcd/fakecontroller.h"
#include "tests/support/testenvironment.h"

using namespace smcd;

namespace {

namespace code = protocol::code;

// A note that a test can look at and spoil.
class FakeNote final : public ForcedFans {
public:
    std::optional<ControlBits> read() override { return bits; }
    bool write(const ControlBits& now) override
    {
        if (isWritable) {
            bits = now;
        }
        return isWritable;
    }

    std::optional<ControlBits> bits = ControlBits();
    bool isWritable = true;
};

Value terminated(const char* key)
{
    const Key name = keyOf(key);
    Value record(name.begin(), name.end());
    record.push_back(0);
    return record;
}

Value halWrite(const char* key, const Value& value)
{
    Value record = terminated(key);
    record.insert(record.end(), value.begin(), value.end());
    return record;
}

// The service over a controller of the test's, which is within reach.
struct Bench {
    FakeController controller;
    FakeNote note;
    bool isReachable = true;
    int ways = 0;
    std::vector<std::string> journal;
    Service service { [this](std::string& reason) -> std::unique_ptr<Controller> {
                         reason = "out of reach";
                         ways += isReachable ? 1 : 0;
                         return isReachable ? std::make_unique<ControllerRef>(controller) : nullptr;
                     },
                      note, [this](const std::string& line) { journal.push_back(line); } };

    protocol::Reply ask(ClientId client, std::uint32_t wanted, const Value& record = {},
                        std::size_t room = 32)
    {
        const protocol::Packet reply
            = service.answer(client, protocol::requestPacket(wanted, room, record));
        return protocol::parseReply(reply, room).value_or(protocol::Reply { EPROTO, {} });
    }

    // The error number of a write.
    std::uint32_t write(ClientId client, const char* key, const Value& value)
    {
        return ask(client, code::halWrite, halWrite(key, value)).error;
    }
};

struct MaskBench : Bench {
    MaskBench() { addMaskFans(controller); }
};

struct ModeBench : Bench {
    ModeBench() { addModeFans(controller); }
};

using Lines = std::vector<std::string>;

} // namespace

class ServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void openingTellsTheVersion()
    {
        MaskBench bench;
        const protocol::Reply reply = bench.ask(1, code::open);
        QCOMPARE(reply.error, 0U);
        QCOMPARE(reply.data, (Value { 1, 0, 0, 0 }));
    }

    void openingFailsWithoutAController()
    {
        MaskBench bench;
        bench.isReachable = false;
        QCOMPARE(bench.ask(1, code::open).error, std::uint32_t(ENODEV));
        QCOMPARE(bench.ask(1, code::open).error, std::uint32_t(ENODEV));
        QCOMPARE(bench.journal, (Lines { "There is no way to the controller: out of reach" }));
        bench.isReachable = true;
        QCOMPARE(bench.ask(1, code::open).error, 0U);
    }

    void aControllerThatVanishesIsLookedForAgain()
    {
        MaskBench bench;
        QCOMPARE(bench.ask(1, code::open).error, 0U);
        bench.controller.fail(ENODEV);
        QCOMPARE(bench.ask(1, code::mmioKeyInfo, { 'F', 'N', 'u', 'm' }).error,
                 std::uint32_t(ENODEV));
        bench.controller.fail(0);
        QCOMPARE(bench.ask(1, code::mmioRead, { 'F', 'N', 'u', 'm' }).error, 0U);
        QCOMPARE(bench.ways, 2);
    }

    void keysAreReadInTheirOwnLength()
    {
        MaskBench bench;
        QCOMPARE(bench.ask(1, code::mmioRead, { 'F', '0', 'M', 'n' }).data, (Value { 0x1F, 0x42 }));
        QCOMPARE(bench.ask(1, code::halRead, terminated("F0Mn"), 1).data, (Value { 0x1F }));
        QCOMPARE(bench.ask(1, code::halRead, terminated("F0Mn"), 0).error, 0U);
        QCOMPARE(bench.ask(1, code::halRead, terminated("ZZZZ"), 2).error, std::uint32_t(ENOENT));
        bench.controller.set("WIDE", Value(33));
        QCOMPARE(bench.ask(1, code::halRead, terminated("WIDE")).error, std::uint32_t(EIO));
    }

    void lengthsAreAskedForOnce()
    {
        MaskBench bench;
        for (int count = 0; count < 5; ++count) {
            QCOMPARE(bench.ask(1, code::halRead, terminated("F0Mn")).error, 0U);
        }
        QCOMPARE(bench.controller.infoRequests(), 1);
    }

    void infosAndNamesComeFromTheController()
    {
        MaskBench bench;
        QCOMPARE(bench.ask(1, code::mmioKeyInfo, { 'F', 'S', '!', ' ' }).data,
                 (Value { 2, 'u', 'i', '1', '6', 0 }));
        QCOMPARE(bench.ask(1, code::halKeyInfo, terminated("ZZZZ")).data, Value(12));
        QCOMPARE(bench.ask(1, code::mmioKeyByIndex, { 0, 0, 0, 0 }).data,
                 (Value { 'F', '0', 'M', 'n' }));
        QCOMPARE(bench.ask(1, code::mmioKeyByIndex, { 0, 1, 0, 0 }).error, std::uint32_t(ENOENT));
    }

    void aRefusedWriteDoesNotReachTheController()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "F0Mn", { 0, 0 }), std::uint32_t(EACCES));
        QCOMPARE(bench.write(1, "F0Tg", { 0xFF, 0xFF }), std::uint32_t(ERANGE));
        QCOMPARE(bench.write(1, "FS! ", { 0, 0x84 }), std::uint32_t(ERANGE));
        QCOMPARE(bench.controller.writes(), Lines());
        QVERIFY(bench.note.bits->none());
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), 0U);
        QCOMPARE(bench.controller.writes(), (Lines { "FS!  0001" }));
    }

    void theMasksFansAreGivenBackWithTheirClient()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 3 }), 0U);
        QCOMPARE(bench.note.bits, std::optional(ControlBits(3)));
        bench.service.left(1);
        QVERIFY(bench.service.owes());
        bench.service.giveBack();
        QVERIFY(!bench.service.owes());
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 0 }));
        QVERIFY(bench.note.bits->none());
    }

    void theModesFansAreGivenBackWithTheirClient()
    {
        ModeBench bench;
        QCOMPARE(bench.write(1, "F1Md", { 1 }), 0U);
        bench.service.left(1);
        bench.service.giveBack();
        QCOMPARE(bench.controller.writes(), (Lines { "F1Md 01", "F1Md 00" }));
        QVERIFY(!bench.service.owes());
    }

    void whoHasForcedNothingLeavesNothingBehind()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), 0U);
        QCOMPARE(bench.write(2, "F0Tg", { 0x2E, 0xE0 }), 0U);
        bench.service.left(2);
        QVERIFY(!bench.service.owes());
        QCOMPARE(bench.write(1, "FS! ", { 0, 0 }), 0U);
        bench.service.left(1);
        QVERIFY(!bench.service.owes());
    }

    void aFanThatAnotherOneHoldsStaysForced()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 3 }), 0U);
        QCOMPARE(bench.write(2, "FS! ", { 0, 1 }), 0U);
        QCOMPARE(bench.write(1, "FS! ", { 0, 3 }), 0U);
        bench.service.left(1);
        bench.service.giveBack();
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 1 }));
        bench.service.left(2);
        bench.service.giveBack();
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 0 }));
    }

    void keptFansStay()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 3 }), 0U);
        QCOMPARE(bench.ask(1, code::keepFans).error, 0U);
        QVERIFY(bench.note.bits->none()); // also after a kill
        bench.service.left(1);
        QVERIFY(!bench.service.owes());
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 3 }));
    }

    void theLastWordsOfAClientCount()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), 0U);
        QCOMPARE(bench.write(2, "FS! ", { 0, 3 }), 0U);
        bench.service.hearLast(2, protocol::requestPacket(code::keepFans, 0, {}));
        bench.service.hearLast(
            1, protocol::requestPacket(code::halWrite, 0, halWrite("FS! ", { 0, 3 })));
        bench.service.left(2);
        bench.service.left(1);
        bench.service.giveBack();
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 2 }));
        QCOMPARE(bench.controller.writes().size(), std::size_t(3));
    }

    void nothingIsForcedWithoutANote()
    {
        MaskBench bench;
        bench.note.isWritable = false;
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), std::uint32_t(EIO));
        QCOMPARE(bench.controller.writes(), Lines());
        QCOMPARE(bench.write(1, "F0Tg", { 0x2E, 0xE0 }), std::uint32_t(EIO));
        bench.note.isWritable = true;
        QCOMPARE(bench.write(1, "F0Tg", { 0x2E, 0xE0 }), 0U);
    }

    void aWriteThatFailsIsTakenForDone()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 0 }), 0U); // lengths and fans are known now
        bench.controller.fail(EIO);
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), std::uint32_t(EIO));
        bench.service.left(1);
        QVERIFY(bench.service.owes());
    }

    void theFansAreGivenBackOnceTheControllerAnswersAgain()
    {
        MaskBench bench;
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), 0U);
        bench.controller.fail(EIO);
        bench.service.left(1);
        bench.service.giveBack();
        QVERIFY(bench.service.owes());
        QCOMPARE(bench.note.bits, std::optional(ControlBits(1)));
        bench.controller.fail(0);
        bench.service.giveBack();
        QVERIFY(!bench.service.owes());
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 0 }));
    }

    void whatAPredecessorHasLeftIsGivenBack()
    {
        MaskBench bench;
        bench.controller.set("FS! ", { 0, 3 }, "ui16");
        bench.note.bits = ControlBits(1); // the other one was kept
        bench.service.start();
        bench.service.giveBack();
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 2 }));
        QVERIFY(bench.note.bits->none());
    }

    void aNoteThatIsNotUnderstoodMeansAllFans_data()
    {
        QTest::addColumn<bool>("hasMask");
        QTest::newRow("mask") << true;
        QTest::newRow("modes") << false;
    }
    void aNoteThatIsNotUnderstoodMeansAllFans()
    {
        QFETCH(bool, hasMask);
        Bench bench;
        hasMask ? addMaskFans(bench.controller) : addModeFans(bench.controller);
        bench.controller.set(hasMask ? "FS! " : "F1Md", hasMask ? Value { 0, 3 } : Value { 1 });
        bench.note.bits.reset();
        bench.service.start();
        bench.service.giveBack();
        QCOMPARE(bench.controller.value(hasMask ? "FS! " : "F1Md"), hasMask ? Value(2) : Value(1));
        QVERIFY(!bench.service.owes());
    }

    void nothingIsDoneAfterAnOrderlyPredecessor()
    {
        MaskBench bench;
        bench.controller.set("FS! ", { 0, 3 }, "ui16");
        bench.service.start();
        QVERIFY(!bench.service.owes());
        bench.service.giveBack();
        QCOMPARE(bench.controller.writes(), Lines());
    }

    void aFanThatIsForcedAgainIsNotGivenBack()
    {
        MaskBench bench;
        bench.note.bits = ControlBits(3);
        bench.controller.set("FS! ", { 0, 3 }, "ui16");
        bench.service.start();
        QCOMPARE(bench.write(1, "FS! ", { 0, 1 }), 0U);
        bench.service.giveBack();
        QCOMPARE(bench.controller.value("FS! "), (Value { 0, 1 }));
    }

    void allAreGivenBackAtTheEnd()
    {
        ModeBench bench;
        QCOMPARE(bench.write(1, "F0Md", { 1 }), 0U);
        QCOMPARE(bench.write(2, "F1Md", { 1 }), 0U);
        QCOMPARE(bench.ask(2, code::keepFans).error, 0U);
        bench.service.leaveAll();
        bench.service.giveBack();
        QCOMPARE(bench.controller.value("F0Md"), Value { 0 });
        QCOMPARE(bench.controller.value("F1Md"), Value { 1 });
    }

    void nonsenseIsAnswered()
    {
        MaskBench bench;
        QCOMPARE(bench.service.answer(1, Value(3)), protocol::replyPacket({ EINVAL, {} }));
        QCOMPARE(bench.service.answer(1, Value(100)), protocol::replyPacket({ EMSGSIZE, {} }));
        QCOMPARE(bench.service.answer(1, Value(20, 0xFF)), protocol::replyPacket({ ENOTTY, {} }));
    }
};

BRISORA_TEST_MAIN(ServiceTest, QCoreApplication)

#include "test_smcd_service.moc"
