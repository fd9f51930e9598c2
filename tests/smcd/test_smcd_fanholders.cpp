#include <QCoreApplication>

#include "smcd/fanholders.h"
#include "tests/support/testenvironment.h"

using smcd::ControlBits;
using smcd::FanHolders;

class FanHoldersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFansOfTheLastHolderAreOwed()
    {
        FanHolders holders;
        holders.hold(1, ControlBits(0b011));
        holders.hold(2, ControlBits(0b110));
        holders.leave(1);
        QCOMPARE(holders.owed(), ControlBits(0b001));
        holders.leave(2);
        QCOMPARE(holders.owed(), ControlBits(0b111));
    }

    void whoeverClearsAFanEndsAllHolds()
    {
        FanHolders holders;
        holders.hold(1, ControlBits(0b11));
        holders.hold(2, ControlBits(0b01));
        holders.clear(ControlBits(0b01));
        holders.leave(2);
        QVERIFY(holders.owed().none());
        holders.leave(1);
        QCOMPARE(holders.owed(), ControlBits(0b10));
    }

    void keptFansAreNotOwed()
    {
        FanHolders holders;
        holders.hold(1, ControlBits(0b11));
        QCOMPARE(holders.atRisk(), ControlBits(0b11));
        holders.keep(1);
        QVERIFY(holders.atRisk().none());
        holders.leave(1);
        QVERIFY(holders.owed().none());
    }

    void keptFansOfAnotherHolderAreOwed()
    {
        FanHolders holders;
        holders.hold(1, ControlBits(0b01));
        holders.hold(2, ControlBits(0b01));
        holders.keep(1);
        holders.leave(1);
        QCOMPARE(holders.atRisk(), ControlBits(0b01));
        holders.leave(2);
        QCOMPARE(holders.owed(), ControlBits(0b01));
    }

    void theNextWriteTakesTheWishBack()
    {
        FanHolders holders;
        holders.hold(1, ControlBits(0b01));
        holders.keep(1);
        holders.hold(1, ControlBits());
        holders.leave(1);
        QCOMPARE(holders.owed(), ControlBits(0b01));
    }

    void aFanThatIsHeldAgainIsNoLongerOwed()
    {
        FanHolders holders;
        holders.owe(ControlBits(0b11));
        holders.hold(1, ControlBits(0b01));
        QCOMPARE(holders.owed(), ControlBits(0b10));
        QCOMPARE(holders.atRisk(), ControlBits(0b11));
    }

    void allLeaveAtTheEndButThoseWhoKeep()
    {
        FanHolders holders;
        holders.hold(1, ControlBits(0b01));
        holders.hold(2, ControlBits(0b10));
        holders.keep(2);
        holders.leaveAll();
        QCOMPARE(holders.owed(), ControlBits(0b01));
    }

    void aStrangerOwesNothing()
    {
        FanHolders holders;
        holders.leave(7);
        QVERIFY(holders.atRisk().none());
    }
};

BRISORA_TEST_MAIN(FanHoldersTest, QCoreApplication)

#include "test_smcd_fanholders.moc"
