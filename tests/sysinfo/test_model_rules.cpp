#include <QCoreApplication>
#include <QMetaType>

#include "app/sysinfo/sysinfo.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/testenvironment.h"

Q_DECLARE_METATYPE(ModelFamily)

namespace {

SystemInfo machine(const QString& model)
{
    FakeMachineIdentity identity(model);
    return SystemInfo(identity);
}

using Predicate = bool (SystemInfo::*)() const;

} // namespace

Q_DECLARE_METATYPE(Predicate)

class TestModelRules : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nameGivesFamilyAndNumber_data();
    void nameGivesFamilyAndNumber();
    void foreignNameIsRefused_data();
    void foreignNameIsRefused();
    void familyOfForeignNameStaysAsItWas();
    void rulePicksModels_data();
    void rulePicksModels();
    void predicateHolds_data();
    void predicateHolds();
};

void TestModelRules::nameGivesFamilyAndNumber_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<ModelFamily>("family");
    QTest::addColumn<int>("number");

    QTest::newRow("MacBook") << "MacBook8,1" << ModelFamily::MacBook << 81;
    QTest::newRow("MacBookAir") << "MacBookAir10,1" << ModelFamily::MacBookAir << 101;
    QTest::newRow("MacBookPro") << "MacBookPro15,1" << ModelFamily::MacBookPro << 151;
    QTest::newRow("iMac") << "iMac7,1" << ModelFamily::iMac << 71;
    QTest::newRow("iMacPro") << "iMacPro1,1" << ModelFamily::iMacPro << 11;
    QTest::newRow("Macmini") << "Macmini8,1" << ModelFamily::Macmini << 81;
    QTest::newRow("MacPro") << "MacPro7,1" << ModelFamily::MacPro << 71;
    QTest::newRow("Xserve") << "Xserve3,1" << ModelFamily::Xserve << 31;
    QTest::newRow("ADP") << "ADP3,2" << ModelFamily::ADP << 32;
    QTest::newRow("plus sign") << "MacBookPro13,2+" << ModelFamily::MacBookPro << 132;
    QTest::newRow("model and revision are joined")
        << "MacBookPro9,2" << ModelFamily::MacBookPro << 92;
    QTest::newRow("greatest number") << "iMac6553,5" << ModelFamily::iMac << 65535;
}

void TestModelRules::nameGivesFamilyAndNumber()
{
    QFETCH(QString, name);
    ModelFamily family = ModelFamily::Undefined;
    std::uint16_t number = 0;

    QVERIFY(SystemInfo::parseModelName(name, family, number));

    QTEST(family, "family");
    QTEST(static_cast<int>(number), "number");
}

void TestModelRules::foreignNameIsRefused_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("empty") << "";
    QTest::newRow("no digits") << "MacBook";
    QTest::newRow("number 0") << "MacBook0,0";
    QTest::newRow("number beyond 16 bits") << "iMac6553,6";
    QTest::newRow("other maker's") << "PowerBook5,1";
    QTest::newRow("other case") << "macbookpro15,1";
    QTest::newRow("prefix within") << "My iMac7,1";
}

void TestModelRules::foreignNameIsRefused()
{
    QFETCH(QString, name);
    ModelFamily family = ModelFamily::Undefined;
    std::uint16_t number = 0;

    QVERIFY(!SystemInfo::parseModelName(name, family, number));
}

void TestModelRules::familyOfForeignNameStaysAsItWas()
{
    ModelFamily family = ModelFamily::Undefined;
    std::uint16_t number = 0;
    QVERIFY(!SystemInfo::parseModelName(QStringLiteral("PowerBook5,1"), family, number));
    QCOMPARE(family, ModelFamily::Undefined);

    QVERIFY(!SystemInfo::parseModelName(QStringLiteral("MacBook"), family, number));
    QCOMPARE(family, ModelFamily::MacBook);
    QCOMPARE(number, std::uint16_t(0));
}

void TestModelRules::rulePicksModels_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<bool>("matches");

    const auto row = [](const char* name, const char* model, const char* rule, bool matches) {
        QTest::newRow(name) << QString::fromLatin1(model) << QByteArray(rule) << matches;
    };
    row("all, on an unknown machine", "", "all", true);
    row("all in another case", "iMac7,1", "All", false);
    row("all in a list is a name", "iMac7,1", "all;iMac8,1", false);
    row("exact", "MacBookPro16,2", "MacBookPro16,2;iMac20,1", true);
    row("exact, second", "iMac20,1", "MacBookPro16,2;iMac20,1", true);
    row("exact, beginning only", "iMac20,1", "iMac20,11", false);
    row("exact, no later model", "MacBookPro16,3", "MacBookPro16,2;iMac20,1", false);
    row("exact, other case", "Macmini3,1", "MacMini3,1", false);
    row("blanks count", "iMac20,1", "MacBookPro16,2; iMac20,1", false);
    row("plus, same model", "MacBookPro15,1", "MacBookPro15,1+", true);
    row("plus, later model", "MacBookPro16,2", "MacBookPro15,1+", true);
    row("plus, earlier model", "MacBookPro14,3", "MacBookPro15,1+", false);
    row("plus, other family", "MacBookAir9,1", "MacBookPro15,1+", false);
    row("plus, joined digits", "MacBookPro9,2", "MacBookPro13,2+", false);
    row("plus, MacBook10,1", "MacBook10,1", "MacBook8,1+", true);
    row("plus, MacBookAir10,1", "MacBookAir10,1", "MacBookAir6,1+", true);
    row("plus, MacBookAir6,2", "MacBookAir6,2", "MacBookAir6,2+", true);
    row("plus, MacBookAir5,2", "MacBookAir5,2", "MacBookAir6,2+", false);
    row("plus in the second piece", "iMac20,1", "MacBook8,1;iMac19,1+", true);
    row("plus without a number", "iMac20,1", "iMac+", false);
    row("plus of no family, unknown machine", "", "Foo1,1+", false);
    row("empty rule", "iMac20,1", "", false);
}

void TestModelRules::rulePicksModels()
{
    QFETCH(QString, model);
    QFETCH(QByteArray, rule);
    QTEST(machine(model).isModelMatch(rule.constData()), "matches");
}

void TestModelRules::predicateHolds_data()
{
    QTest::addColumn<Predicate>("predicate");
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("holds");

    const auto rows = [](const char* name, Predicate predicate, bool holds,
                         const QStringList& models) {
        for (const QString& model : models) {
            QTest::newRow(qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(name), model)))
                << predicate << model << holds;
        }
    };
    const auto list
        = [](const char* models) { return QString::fromLatin1(models).split(QLatin1Char(' ')); };

    rows("needs the driver", &SystemInfo::needsMmioDriver, true,
         list("iMacPro1,1 MacBookPro15,1 MacBookPro16,2 MacBookAir8,1 MacBookAir9,1 Macmini8,1 "
              "Macmini9,1 MacPro7,1 iMac20,1 iMac20,2"));
    rows("needs the driver", &SystemInfo::needsMmioDriver, false,
         list("MacBookPro14,3 MacBookAir7,2 Macmini7,1 MacPro6,1 iMac19,2 MacBook99,9 Xserve3,1 "
              "ADP3,2 MacBookPro Foo99,9"));
    rows("passive", &SystemInfo::isPassive, true,
         list("MacBook8,1 MacBook9,1 MacBook10,1 MacBookAir10,1 MacBookAir10,2"));
    rows("passive", &SystemInfo::isPassive, false,
         list("MacBook7,1 MacBook8,2 MacBook8,0 MacBook9,2 MacBook9,0 MacBook10,0 MacBook10,2 "
              "MacBookAir10,0 MacBookAir9,1 "
              "MacBookPro8,1 iMac10,1"));
    rows("external GPU", &SystemInfo::isEGpuCapable, true,
         list("iMac12,1 iMac20,1 MacBookPro8,1 Macmini5,1 MacPro6,1 iMacPro1,1"));
    rows("external GPU", &SystemInfo::isEGpuCapable, false,
         list("iMac12,0 iMac11,3 MacBookPro8,0 MacBookPro7,1 Macmini5,0 Macmini4,1 MacPro6,0 "
              "MacPro5,1 MacBook99,9 "
              "MacBookAir99,9 Xserve99,9 ADP99,9"));
    rows("log-off", &SystemInfo::isLogoutSensitiveIMac, true,
         list("iMac10,1 iMac11,1 iMac12,2 iMac13,2 iMac14,2 iMac15,1 iMac17,1 iMac18,3 iMac19,2"));
    rows("log-off", &SystemInfo::isLogoutSensitiveIMac, false,
         list("iMac10,0 iMac9,1 iMac12,3 iMac13,1 iMac13,3 iMac14,1 iMac14,3 iMac15,0 iMac15,2 "
              "iMac16,1 iMac17,0 iMac17,2 iMac18,2 iMac18,4 iMac19,1 iMac19,3 MacBookPro10,1 "
              "iMacPro10,1"));
}

void TestModelRules::predicateHolds()
{
    QFETCH(Predicate, predicate);
    QFETCH(QString, model);
    const SystemInfo info = machine(model);
    QTEST((info.*predicate)(), "holds");
}

BRISORA_TEST_MAIN(TestModelRules, QCoreApplication)
#include "test_model_rules.moc"
