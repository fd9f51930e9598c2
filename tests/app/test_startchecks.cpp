#include <QCheckBox>
#include <QtTest>

#include "app/platform/startchecks.h"
#include "app/settingskeys.h"
#include "app/smc/options.h"
#include "app/sysinfo/sysinfo.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/windowicon.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"

class StartChecksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void virtualMachinesAreTold_data();
    void virtualMachinesAreTold();
    void theWarningSaysWhyAndRemembersTheBox();
    void aBoxThatIsUncheckedAgainKeepsTheChoice();
    void aBoxThatIsLeftAloneStoresNothing();
    void aHiddenWarningIsNotShown();
    void commandLineSetsOptions();
    void driverOptionsFollowTheModel_data();
    void driverOptionsFollowTheModel();
};

void StartChecksTest::cleanup()
{
    SMC::Options::clear();
    QSettings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora")).clear();
}

void StartChecksTest::virtualMachinesAreTold_data()
{
    QTest::addColumn<QString>("manufacturer");
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("expected");

    QTest::newRow("a Mac") << "Apple Inc."
                           << "MacBookPro11,3" << false;
    QTest::newRow("Parallels") << "Parallels Software International Inc."
                               << "Mac" << true;
    QTest::newRow("VMware") << "VMware, Inc."
                            << "VMware7,1" << true;
    QTest::newRow("VMware as a model of Apple") << "Apple Inc."
                                                << "VMware7,1" << true;
    QTest::newRow("other case") << "vmware, inc."
                                << "parallels" << false;
}

void StartChecksTest::virtualMachinesAreTold()
{
    QFETCH(QString, manufacturer);
    QFETCH(QString, model);
    FakeMachineIdentity identity(model);
    identity.management.manufacturer = manufacturer;
    const SystemInfo systemInfo(identity);

    QTEST(StartChecks::isVirtualMachine(identity, systemInfo), "expected");
}

void StartChecksTest::theWarningSaysWhyAndRemembersTheBox()
{
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    ModalBoxDriver driver([](QMessageBox& box) {
        QCOMPARE(box.icon(), QMessageBox::Warning);
        QCOMPARE(box.text(), QStringLiteral("<b>Virtual machine detected</b>"));
        QCOMPARE(box.informativeText(),
                 QStringLiteral("Unable to start Brisora in a virtual machine."));
        QCOMPARE(box.windowIcon().cacheKey(), windowIcon().cacheKey());
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(box.buttons().size(), 1);
        QVERIFY(!box.checkBox()->isChecked());
        QCOMPARE(box.checkBox()->text(), QStringLiteral("Don't display this warning again"));
        box.checkBox()->setChecked(true);
    });

    StartChecks::warnOfVirtualMachine(settings);

    QCOMPARE(driver.boxCount(), 1);
    QCOMPARE(settings.getInt(SettingsKeys::noVmWarning, -1), 1);
}

void StartChecksTest::aBoxThatIsUncheckedAgainKeepsTheChoice()
{
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    ModalBoxDriver driver([](QMessageBox& box) {
        box.checkBox()->setChecked(true);
        box.checkBox()->setChecked(false);
    });

    StartChecks::warnOfVirtualMachine(settings);

    QCOMPARE(settings.getInt(SettingsKeys::noVmWarning, -1), 1);
}

void StartChecksTest::aBoxThatIsLeftAloneStoresNothing()
{
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    ModalBoxDriver driver([](QMessageBox&) {});

    StartChecks::warnOfVirtualMachine(settings);
    StartChecks::warnOfVirtualMachine(settings);

    QCOMPARE(driver.boxCount(), 2);
    QCOMPARE(settings.getInt(SettingsKeys::noVmWarning, -1), -1);
    QVERIFY(!QSettings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"))
                 .contains(SettingsKeys::noVmWarning));
}

void StartChecksTest::aHiddenWarningIsNotShown()
{
    QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    settings.setInt(SettingsKeys::noVmWarning, 1);
    ModalBoxDriver driver([](QMessageBox&) {});

    StartChecks::warnOfVirtualMachine(settings);

    QCOMPARE(driver.boxCount(), 0);
}

void StartChecksTest::commandLineSetsOptions()
{
    StartChecks::applyCommandLineOptions({ QStringLiteral("brisora") }, false);
    QVERIFY(!SMC::Options::isSet(SMC::Option::ExtraDelay));
    QVERIFY(!SMC::Options::isSet(SMC::Option::ForceInpOut32));

    StartChecks::applyCommandLineOptions({ QStringLiteral("/Inpout32") }, false);
    QVERIFY(!SMC::Options::isSet(SMC::Option::ForceInpOut32));

    StartChecks::applyCommandLineOptions({ QStringLiteral("/inpout32") }, true);
    QCOMPARE(SMC::Options::value(SMC::Option::ExtraDelay), std::string("2000"));
    QVERIFY(SMC::Options::isSet(SMC::Option::ForceInpOut32));
}

void StartChecksTest::driverOptionsFollowTheModel_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("alternative");

    QTest::newRow("MacBookPro") << "MacBookPro16,1" << false;
    QTest::newRow("iMacPro") << "iMacPro1,1" << true;
    QTest::newRow("iMacPro of another number") << "iMacPro2,1" << false;
    QTest::newRow("MacPro before 71") << "MacPro6,1" << false;
    QTest::newRow("MacPro") << "MacPro7,1" << true;
    QTest::newRow("MacPro after 71") << "MacPro8,1" << false;
    QTest::newRow("iMac") << "iMac20,1" << false;
}

void StartChecksTest::driverOptionsFollowTheModel()
{
    QFETCH(QString, model);
    FakeMachineIdentity identity(model);

    StartChecks::applyDriverOptions(SystemInfo(identity));

    QVERIFY(SMC::Options::isSet(SMC::Option::UseMMIO));
    QTEST(SMC::Options::isSet(SMC::Option::NonPnpDriver), "alternative");
}

BRISORA_TEST_MAIN(StartChecksTest, QApplication)
#include "test_startchecks.moc"
