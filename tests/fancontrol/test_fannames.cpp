#include <QCoreApplication>
#include <QTest>

#include "app/fancontrol/fannames.h"
#include "app/sysinfo/sysinfo.h"
#include "resources/resources.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/testenvironment.h"

class TestFanNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void modelsHaveTheirNames_data();
    void modelsHaveTheirNames();
    void textsAreParsed_data();
    void textsAreParsed();
};

void TestFanNames::initTestCase() { initResources(); }

void TestFanNames::modelsHaveTheirNames_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("names");
    const auto rows
        = [](std::initializer_list<const char*> models, std::initializer_list<const char*> names) {
              QStringList list;
              for (const char* const name : names) {
                  list.append(QString::fromLatin1(name));
              }
              for (const char* const model : models) {
                  QTest::newRow(model) << QString::fromLatin1(model) << list;
              }
          };
    rows({ "iMacPro1,1" }, { "Dual-fan cooler" });
    rows({ "MacBookPro15,1", "MacBookPro15,2", "MacBookPro15,3", "MacBookPro16,1", "MacBookPro16,2",
           "MacBookPro16,4" },
         { "Left side", "Right side" });
    rows({ "MacBookPro15,4", "MacBookPro16,3", "MacBookPro17,1" }, { "Right side" });
    rows(
        { "MacBookAir8,1", "MacBookAir8,2", "MacBookAir9,1", "Macmini8,1", "Macmini9,1", "ADP3,2" },
        { "Exhaust" });
    rows({ "MacPro7,1" }, { "Exhaust", "Intake 1", "Intake 2", "Intake 3" });
    rows({ "iMac20,1", "iMac20,2" }, { "Main" });
    rows({ "MacBookPro11,3", "MacBookPro14,1", "MacPro6,1", "iMac19,1", "Macmini7,1" }, {});
}

void TestFanNames::modelsHaveTheirNames()
{
    QFETCH(QString, model);
    FakeMachineIdentity identity(model);
    QTEST(loadFanNames(SystemInfo(identity)), "names");
}

void TestFanNames::textsAreParsed_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QStringList>("names");
    const auto row = [](const char* name, const char* xml, const QStringList& names) {
        QTest::newRow(name) << QByteArray(xml) << names;
    };
    const QString left = QStringLiteral("Left");
    const QString right = QStringLiteral("Right");

    row("nothing", "", {});
    row("no XML", "fans", {});
    row("cut short", "<fanInfo><modelMatch models=\"all\"><fan0>Left</fan0>", {});
    row("other root", "<fans><modelMatch models=\"all\"><fan0>Left</fan0></modelMatch></fans>", {});
    row("no rule", "<fanInfo></fanInfo>", {});
    row("all", "<fanInfo><modelMatch models=\"all\"><fan0>Left</fan0></modelMatch></fanInfo>",
        { left });
    row("a rule without models is passed over",
        "<fanInfo><modelMatch><fan0>Left</fan0></modelMatch>"
        "<modelMatch models=\"all\"><fan0>Right</fan0></modelMatch></fanInfo>",
        { right });
    row("a rule for other models is passed over",
        "<fanInfo><modelMatch models=\"iMac20,1\"><fan0>Left</fan0></modelMatch>"
        "<modelMatch models=\"iMac20,2;MacBookPro11,3\"><fan0>Right</fan0></modelMatch></fanInfo>",
        { right });
    row("later models of the family",
        "<fanInfo><modelMatch models=\"MacBookPro11,1+\"><fan0>Left</fan0></modelMatch></fanInfo>",
        { left });
    row("only the first rule that matches counts",
        "<fanInfo><modelMatch models=\"all\"><fan0>Left</fan0></modelMatch>"
        "<modelMatch models=\"all\"><fan0>Right</fan0><fan1>Left</fan1></modelMatch></fanInfo>",
        { left });
    row("a matching rule without names ends the search",
        "<fanInfo><modelMatch models=\"all\"/>"
        "<modelMatch models=\"all\"><fan0>Right</fan0></modelMatch></fanInfo>",
        {});
    row("absent fans leave no gap",
        "<fanInfo><modelMatch models=\"all\"><fan1>Left</fan1><fan3>Right</fan3>"
        "</modelMatch></fanInfo>",
        { left, right });
    row("a fan without a text keeps its place",
        "<fanInfo><modelMatch models=\"all\"><fan0/><fan1>Right</fan1></modelMatch></fanInfo>",
        { QString(), right });
    row("by number, not in file order; no fifth fan",
        "<fanInfo><modelMatch models=\"all\"><fan4>x</fan4><fan1>Right</fan1><fan0>Left</fan0>"
        "</modelMatch></fanInfo>",
        { left, right });
    row("other elements are passed over",
        "<fanInfo><rule models=\"all\"><fan0>Right</fan0></rule>"
        "<modelMatch models=\"all\"><fan0>Left</fan0></modelMatch></fanInfo>",
        { left });
    row("a text in UTF-8",
        "<fanInfo><modelMatch models=\"all\"><fan0>L\xC3\xBC</fan0></modelMatch></fanInfo>",
        { QStringLiteral("L\u00FC") });
}

void TestFanNames::textsAreParsed()
{
    QFETCH(QByteArray, xml);
    FakeMachineIdentity identity(QStringLiteral("MacBookPro11,3"));
    QTEST(parseFanNames(xml, SystemInfo(identity)), "names");
}

BRISORA_TEST_MAIN(TestFanNames, QCoreApplication)

#include "test_fannames.moc"
