#include <memory>
#include <optional>

#include <QtTest>

#include "app/platform/appplatformwin.h"
#include "app/settingskeys.h"
#include "app/smc/options.h"
#include "app/sysinfo/sysinfo.h"
#include "core/application_flags.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/fakeautostartcalls.h"
#include "tests/support/fakemachineidentity.h"
#include "tests/support/fakewindowscalls.h"
#include "tests/support/logcapture.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/testenvironment.h"

namespace {

const QString toolPath = QStringLiteral("C:\\Program Files\\Brisora\\AppleSMC.exe");
const QString tool = QLatin1Char('"') + toolPath + QLatin1Char('"');
const QString waitOfTheInstall = QStringLiteral("wait 10000");
const QString waitForEver = QStringLiteral("wait 4294967295");
const QString title = QStringLiteral("Brisora 1.5.9");

// A platform on a machine of the given model.
struct Machine {
    explicit Machine(const QString& model)
        : identity(model)
        , systemInfo(identity)
    {
    }

    AppPlatformWin& platform()
    {
        if (!m_platform) {
            m_platform.emplace(
                PlatformHost {
                    .identity = identity,
                    .systemInfo = systemInfo,
                    .settings = settings,
                    .arguments = QStringList { QStringLiteral("Brisora.exe") } + switches,
                    .executablePath = QStringLiteral("C:\\Program Files\\Brisora\\Brisora.exe"),
                    .productTitle = title,
                    .isStartMinimized = [this] { return minimized; },
                    .createMainWindow = [this] { ++windowCount; } },
                std::make_unique<FakeWindowsCalls>(windows),
                std::make_unique<FakeAutostartCalls>(autostart));
        }
        return *m_platform;
    }
    void end() { m_platform.reset(); }

    [[nodiscard]] QStringList commandLines() const
    {
        QStringList lines;
        for (const auto& start : windows.starts) {
            lines.append(start.commandLine);
        }
        return lines;
    }
    [[nodiscard]] QStringList waits() const
    {
        return windows.calls.filter(QStringLiteral("wait "));
    }

    FakeMachineIdentity identity;
    SystemInfo systemInfo;
    QSettingsCache settings { QStringLiteral("Orvane Software"), QStringLiteral("Brisora") };
    QStringList switches;
    bool minimized = false;
    int windowCount = 0;
    FakeWindowsCalls::Record windows;
    FakeAutostartCalls::Record autostart;

private:
    std::optional<AppPlatformWin> m_platform;
};

} // namespace

class AppPlatformWinTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        SMC::Options::clear();
        core::flags::clear(core::flags::noSupport);
        QSettings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora")).clear();
    }

    void aVirtualMachineIsRefusedWithOneBox_data()
    {
        QTest::addColumn<QStringList>("switches");
        QTest::newRow("plain") << QStringList();
        QTest::newRow("skipcheck is for foreign hardware only")
            << QStringList { QStringLiteral("/skipcheck") };
        QTest::newRow("init") << QStringList { QStringLiteral("/init") };
    }

    void aVirtualMachineIsRefusedWithOneBox()
    {
        QFETCH(QStringList, switches);
        Machine machine(QStringLiteral("MacBookPro16,1"));
        machine.identity.management.manufacturer = QStringLiteral("VMware, Inc.");
        machine.switches = switches;
        QString text;
        ModalBoxDriver driver([&text](QMessageBox& box) { text = box.text(); });

        QVERIFY(!machine.platform().startCheck());

        QCOMPARE(driver.boxCount(), 1);
        QCOMPARE(text, QStringLiteral("<b>Virtual machine detected</b>"));
        QCOMPARE(machine.windows.boxes.size(), 0);
        QCOMPARE(machine.commandLines(), QStringList());
        QCOMPARE(machine.windows.comInitialized, 0);
        QVERIFY(!SMC::Options::isSet(SMC::Option::UseMMIO));
    }

    void aVirtualMachineIsRefusedSilentlyOnceTheBoxIsHidden()
    {
        Machine machine(QStringLiteral("MacBookPro11,3"));
        machine.identity.management.manufacturer = QStringLiteral("Parallels");
        machine.settings.setInt(SettingsKeys::noVmWarning, 1);
        ModalBoxDriver driver([](QMessageBox&) {});

        QVERIFY(!machine.platform().startCheck());

        QCOMPARE(driver.boxCount(), 0);
        QCOMPARE(machine.windows.boxes.size(), 0);
    }

    void foreignHardwareIsRefused()
    {
        Machine machine((QString()));

        QVERIFY(!machine.platform().startCheck());

        QCOMPARE(machine.windows.boxes.size(), 1);
        QCOMPARE(machine.windows.boxes[0].title, title);
        QCOMPARE(
            machine.windows.boxes[0].text,
            QStringLiteral("Unsupported hardware detected. The program is able to run on Apple "
                           "hardware only."));
        QCOMPARE(machine.windows.comInitialized, 0);
    }

    void skipcheckGoesOnWithoutAModel()
    {
        Machine machine((QString()));
        machine.switches = QStringList { QStringLiteral("/skipcheck") };

        QVERIFY(machine.platform().startCheck());

        QCOMPARE(machine.windows.boxes.size(), 0);
        QCOMPARE(machine.commandLines(), QStringList());
        QCOMPARE(machine.windows.comInitialized, 1);
    }

    void theToolFollowsModelAndSwitch_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("init");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("switches"); // of the tool; empty when it isn't started

        const struct {
            const char* model;
            const char* tested;
            const char* installed;
        } machines[] = {
            { "MacBook10,1", "", "" },
            { "MacBookAir7,2", "", "" },
            { "MacBookAir8,1", " /is_installed", " /install" },
            { "MacBookPro14,3", "", "" },
            { "MacBookPro15,1", " /is_installed", " /install" },
            { "Macmini7,1", "", "" },
            { "Macmini8,1", " /is_installed", " /install" },
            { "iMac19,1", "", "" },
            { "iMac20,1", " /is_installed", " /install" },
            { "iMacPro1,1", " /alt /is_installed", " /alt /install" },
            { "iMacPro1,2", " /is_installed", " /install" },
            { "MacPro6,1", "", "" },
            { "MacPro7,1", " /alt /is_installed", " /alt /install" },
            { "MacPro8,1", " /is_installed", " /install" },
            { "Xserve3,1", "", "" },
            { "ADP3,2", "", "" },
        };
        for (const auto& machine : machines) {
            const auto row
                = [&machine](const char* form) { return QByteArray(machine.model) + form; };
            const QString model = QLatin1String(machine.model);
            QTest::newRow(row(" starts"))
                << model << false << true << QString(QLatin1String(machine.tested));
            QTest::newRow(row(" installs"))
                << model << true << false << QString(QLatin1String(machine.installed));
        }
    }

    void theToolFollowsModelAndSwitch()
    {
        QFETCH(QString, model);
        QFETCH(bool, init);
        QFETCH(QString, switches);
        Machine machine(model);
        if (init) {
            machine.switches = QStringList { QStringLiteral("/init") };
        }

        QTEST(machine.platform().startCheck(), "accepted");

        const auto& starts = machine.windows.starts;
        QCOMPARE(machine.commandLines(),
                 switches.isEmpty() ? QStringList() : QStringList { tool + switches });
        if (!starts.isEmpty()) {
            QCOMPARE(starts[0].program, toolPath);
            QCOMPARE(starts[0].creationFlags, 0U);
            QCOMPARE(machine.waits(), QStringList { init ? waitOfTheInstall : waitForEver });
            QCOMPARE(machine.windows.calls.contains(QStringLiteral("exit code")), !init);
        }
        QCOMPARE(machine.windows.boxes.size(), 0);
        QCOMPARE(machine.windows.comInitialized, 1);
    }

    void switchesAreCaseSensitive()
    {
        Machine machine(QStringLiteral("MacBookPro15,1"));
        machine.switches = QStringList { QStringLiteral("/INIT"), QStringLiteral("/Inpout32") };

        QVERIFY(machine.platform().startCheck());

        QCOMPARE(machine.commandLines(), QStringList { tool + QLatin1String(" /is_installed") });
        QVERIFY(!SMC::Options::isSet(SMC::Option::ForceInpOut32));

        Machine foreign((QString()));
        foreign.switches = QStringList { QStringLiteral("/SkipCheck") };
        QVERIFY(!foreign.platform().startCheck());
    }

    void optionsFollowTheCommandLine()
    {
        Machine plain(QStringLiteral("MacBookPro11,3"));
        QVERIFY(plain.platform().startCheck());
        QVERIFY(!SMC::Options::isSet(SMC::Option::ExtraDelay));
        QVERIFY(!SMC::Options::isSet(SMC::Option::ForceInpOut32));

        Machine machine(QStringLiteral("MacBookPro11,3"));
        machine.switches = QStringList { QStringLiteral("/inpout32") };
        machine.minimized = true;
        QVERIFY(machine.platform().startCheck());
        QCOMPARE(SMC::Options::value(SMC::Option::ExtraDelay), std::string("2000"));
        QVERIFY(SMC::Options::isSet(SMC::Option::ForceInpOut32));
    }

    void optionsFollowTheModel()
    {
        Machine before(QStringLiteral("MacBookPro11,3"));
        QVERIFY(before.platform().startCheck());
        QVERIFY(!SMC::Options::isSet(SMC::Option::UseMMIO));

        Machine plugAndPlay(QStringLiteral("MacBookPro15,1"));
        QVERIFY(plugAndPlay.platform().startCheck());
        QVERIFY(SMC::Options::isSet(SMC::Option::UseMMIO));
        QVERIFY(!SMC::Options::isSet(SMC::Option::NonPnpDriver));

        Machine alternative(QStringLiteral("MacPro7,1"));
        QVERIFY(alternative.platform().startCheck());
        QVERIFY(SMC::Options::isSet(SMC::Option::NonPnpDriver));
    }

    void onlyAFailedWaitOfTheInstallIsTold_data()
    {
        QTest::addColumn<bool>("canCreate");
        QTest::addColumn<int>("waitResult");
        QTest::addColumn<bool>("told");
        QTest::newRow("not created") << false << -1 << false;
        QTest::newRow("ended") << true << 0 << false;
        QTest::newRow("timed out") << true << 258 << false;
        QTest::newRow("failed") << true << -1 << true;
    }

    void onlyAFailedWaitOfTheInstallIsTold()
    {
        QFETCH(bool, canCreate);
        QFETCH(int, waitResult);
        QFETCH(bool, told);
        Machine machine(QStringLiteral("MacBookPro15,1"));
        machine.switches = QStringList { QStringLiteral("/init") };
        machine.windows.canCreate = canCreate;
        machine.windows.waitResult = waitResult;

        QVERIFY(!machine.platform().startCheck());

        QCOMPARE(machine.windows.boxes.size(), told ? 1 : 0);
        if (told) {
            QCOMPARE(machine.windows.boxes[0].title, QStringLiteral("MacBookPro15,1"));
            QCOMPARE(machine.windows.boxes[0].text,
                     QStringLiteral("AppleSMC.sys installation timeout! Please contact support for "
                                    "assistance."));
        }
    }

    void onlyAFailedWaitOfTheTestIsTold_data()
    {
        QTest::addColumn<bool>("canCreate");
        QTest::addColumn<int>("waitResult");
        QTest::addColumn<unsigned>("exitCode");
        QTest::addColumn<bool>("told");
        QTest::newRow("not created") << false << -1 << 0U << false;
        QTest::newRow("ended, installed") << true << 0 << 1U << false;
        QTest::newRow("ended, not installed") << true << 0 << 0U << false;
        QTest::newRow("failed") << true << -1 << 0U << true;
        QTest::newRow("failed, with an exit code") << true << -1 << 1U << false;
    }

    void onlyAFailedWaitOfTheTestIsTold()
    {
        QFETCH(bool, canCreate);
        QFETCH(int, waitResult);
        QFETCH(unsigned, exitCode);
        QFETCH(bool, told);
        Machine machine(QStringLiteral("iMacPro1,1"));
        machine.windows.canCreate = canCreate;
        machine.windows.waitResult = waitResult;
        machine.windows.exitCode = exitCode;

        QVERIFY(machine.platform().startCheck());

        QCOMPARE(machine.windows.boxes.size(), told ? 1 : 0);
        if (told) {
            QCOMPARE(machine.windows.boxes[0].title, title);
            QCOMPARE(machine.windows.boxes[0].text,
                     QStringLiteral("AppleSMC.sys driver doesn't seem to be installed. Please "
                                    "reinstall the app or contact support for assistance."));
        }
    }

    void comIsGivenBackIfItWasTaken_data()
    {
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("givenBack");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("taken") << 0 << 1 << QStringList();
        QTest::newRow("taken before") << 1 << 1 << QStringList();
        QTest::newRow("taken in another mode") << int(0x80010106U) << 0 << QStringList();
        QTest::newRow("failed") << int(0x8007000EU) << 0
                                << QStringList { QStringLiteral(
                                       "warning: COM can't be initialized: 0x8007000e") };
    }

    void comIsGivenBackIfItWasTaken()
    {
        QFETCH(int, result);
        QFETCH(int, givenBack);
        Machine machine(QStringLiteral("MacBookPro11,3"));
        const LogCapture log;
        machine.windows.comResult = result;

        QVERIFY(machine.platform().startCheck());
        QCOMPARE(machine.windows.comUninitialized, 0);
        machine.end();

        QCOMPARE(machine.windows.comInitialized, 1);
        QCOMPARE(machine.windows.comUninitialized, givenBack);
        QTEST(log.lines(), "lines");
    }

    void comIsLeftAloneWithoutAStartCheck()
    {
        Machine machine(QStringLiteral("MacBookPro11,3"));
        machine.platform().createMainWindow();
        machine.end();
        QCOMPARE(machine.windows.comInitialized, 0);
        QCOMPARE(machine.windows.comUninitialized, 0);
    }

    void theFirstStartSwitchesTheAutostartOn_data()
    {
        QTest::addColumn<bool>("first");
        QTest::newRow("first") << true;
        QTest::newRow("later") << false;
    }
    void theFirstStartSwitchesTheAutostartOn()
    {
        QFETCH(bool, first);
        Machine machine(QStringLiteral("MacBookPro11,3"));
        if (first) {
            core::flags::set(core::flags::firstStart);
        }
        QVERIFY(machine.platform().startCheck());
        core::flags::clear(core::flags::firstStart);
        QCOMPARE(machine.platform().isAutostart(), first);
    }

    void uninstallRemovesTheAutostart()
    {
        Machine machine(QStringLiteral("MacBookPro11,3"));
        machine.platform().setAutostart(true);
        QVERIFY(machine.platform().isAutostart());
        QVERIFY(machine.platform().uninstall());
        QVERIFY(!machine.platform().isAutostart());
        // The scheduler needs it.
        QCOMPARE(machine.windows.comInitialized, 1);
    }

    void uninstallRemovesSettingsAndDriver_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QStringList>("commandLines");
        QTest::newRow("no driver") << "MacBookPro11,3" << QStringList();
        QTest::newRow("no Mac") << QString() << QStringList();
        QTest::newRow("driver") << "MacBookPro15,1"
                                << QStringList { tool + QLatin1String(" /uninstall") };
        QTest::newRow("other driver of an iMacPro")
            << "iMacPro1,1" << QStringList { tool + QLatin1String(" /uninstall /alt") };
        QTest::newRow("other driver of a MacPro")
            << "MacPro7,1" << QStringList { tool + QLatin1String(" /uninstall /alt") };
    }

    void uninstallRemovesSettingsAndDriver()
    {
        QFETCH(QString, model);
        Machine machine(model);
        machine.settings.setInt(SettingsKeys::noVmWarning, 1);

        QVERIFY(machine.platform().uninstall());

        QCOMPARE(machine.settings.getInt(SettingsKeys::noVmWarning, -1), -1);
        QVERIFY(QSettings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"))
                    .allKeys()
                    .isEmpty());
        QTEST(machine.commandLines(), "commandLines");
        QCOMPARE(machine.waits(),
                 machine.windows.starts.isEmpty() ? QStringList() : QStringList { waitForEver });
        QCOMPARE(machine.windows.boxes.size(), 0);
    }

    void uninstallTakesAnyResultOfTheTool()
    {
        Machine machine(QStringLiteral("MacBookPro15,1"));
        machine.windows.waitResult = -1;
        machine.windows.exitCode = 0;

        QVERIFY(machine.platform().uninstall());

        QCOMPARE(machine.windows.starts.size(), 1);
        QCOMPARE(machine.windows.boxes.size(), 0);
    }

    void theWindowIsTheApplications()
    {
        Machine machine(QStringLiteral("MacBookPro11,3"));
        QVERIFY(machine.platform().startCheck());
        QCOMPARE(machine.windowCount, 0);
        machine.platform().createMainWindow();
        QCOMPARE(machine.windowCount, 1);
    }

    void theLogLiesBesideTheExecutable()
    {
        Machine machine(QStringLiteral("MacBookPro11,3"));
        QCOMPARE(machine.platform().logFilePath(),
                 QStringLiteral("C:\\Program Files\\Brisora\\Brisora.exe.log"));
    }

    void writeAccessFollowsTheFlag()
    {
        Machine machine(QStringLiteral("MacBookPro11,3"));
        QVERIFY(machine.platform().hasWriteAccess());
        core::flags::set(core::flags::noSupport);
        QVERIFY(!machine.platform().hasWriteAccess());
    }
};

BRISORA_TEST_MAIN(AppPlatformWinTest, QApplication)
#include "test_appplatformwin.moc"
