#include <QtTest>

#include "core/system/powersupplies.h"
#include "tests/support/testenvironment.h"

using Supplies = std::vector<PowerSupply>;
Q_DECLARE_METATYPE(Supplies)

namespace {

PowerSupply mains(const char* online)
{
    return { QStringLiteral("Mains"), {}, QLatin1String(online), {} };
}
PowerSupply battery(const char* status)
{
    return { QStringLiteral("Battery"), QStringLiteral("System"), {}, QLatin1String(status) };
}

} // namespace

class PowerSuppliesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSourceFollowsTheSupplies_data();
    void theSourceFollowsTheSupplies();
};

void PowerSuppliesTest::theSourceFollowsTheSupplies_data()
{
    using namespace System;
    QTest::addColumn<Supplies>("supplies");
    QTest::addColumn<PowerSource>("source");
    QTest::newRow("nothing is known") << Supplies {} << PowerSourceUnknown;
    QTest::newRow("mains on") << Supplies { mains("1") } << PowerSourceAC;
    QTest::newRow("mains off") << Supplies { mains("0") } << PowerSourceBattery;
    QTest::newRow("mains that doesn't tell") << Supplies { mains("") } << PowerSourceUnknown;
    QTest::newRow("mains on beside a battery that is used all the same")
        << Supplies { battery("Discharging"), mains("1") } << PowerSourceAC;
    QTest::newRow("one of two mains on") << Supplies { mains("0"), mains("1") } << PowerSourceAC;
    QTest::newRow("a charger at a USB port, fixed voltage")
        << Supplies { { QStringLiteral("USB"), {}, QStringLiteral("1"), {} } } << PowerSourceAC;
    QTest::newRow("a charger at a USB port, programmable voltage")
        << Supplies { { QStringLiteral("USB_PD"), {}, QStringLiteral("2"), {} } } << PowerSourceAC;
    QTest::newRow("a battery alone, discharging")
        << Supplies { battery("Discharging") } << PowerSourceBattery;
    QTest::newRow("a battery alone, charging") << Supplies { battery("Charging") } << PowerSourceAC;
    QTest::newRow("a battery alone, full") << Supplies { battery("Full") } << PowerSourceAC;
    QTest::newRow("a battery alone, held below full")
        << Supplies { battery("Not charging") } << PowerSourceAC;
    QTest::newRow("a battery alone, unknown")
        << Supplies { battery("Unknown") } << PowerSourceUnknown;
    QTest::newRow("a mouse's battery doesn't count") << Supplies {
        { QStringLiteral("Battery"), QStringLiteral("Device"), {}, QStringLiteral("Discharging") }
    } << PowerSourceUnknown;
    QTest::newRow("another kind of supply")
        << Supplies { { QStringLiteral("UPS"), {}, QStringLiteral("1"), {} } }
        << PowerSourceUnknown;
}

void PowerSuppliesTest::theSourceFollowsTheSupplies()
{
    QFETCH(Supplies, supplies);
    QTEST(powerSourceOf(supplies), "source");
}

BRISORA_TEST_MAIN(PowerSuppliesTest, QCoreApplication)
#include "test_powersupplies.moc"
