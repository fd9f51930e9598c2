#include <QCoreApplication>
#include <QSignalSpy>

#include "app/smc/options.h"
#include "app/smc/platform_win.h"
#include "app/smc/platform_win_inpout32.h"
#include "app/smc/platform_win_sys.h"
#include "app/smc/platform_win_sys_mmio.h"
#include "app/smc/selection_texts.h"
#include "build_config.h"
#include "tests/smc/selectionworld.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

using SMC::Option;

class TestPlatformWin : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { SMC::Options::clear(); }

    void halComesFirst();
    void portsFollowAFailedHal();
    void mmioHasNoFallback_data();
    void mmioHasNoFallback();
    void forcedPortsHaveNoFallback();
    void oldDriverIsWarnedAbout_data();
    void oldDriverIsWarnedAbout();
    void warningHasItsText();
    void abortTriesNothing();
    void helpUsesThePortsOnly();
    void ignoreGoesOnWithTheDriver();
    void ignoreKeepsTheForcedPorts();
    void blockingSoftwareIsNamed_data();
    void blockingSoftwareIsNamed();
    void everythingIsPassedOn();
    void withoutATransportNothingWorks();
    void disconnectOfTheTransportIsPassedOn();
    void linksAreLeftOutWithoutASite();
    void productTextCannotFillAnotherPlace();
    void theSystemsOwnTransportsAreMade();
};

void TestPlatformWin::halComesFirst()
{
    const LogCapture log;
    World world;
    world.opening = { Transport::HAL };
    QVERIFY(makeSelector(world)->open());
    QCOMPARE(world.events, words("HAL"));
    QCOMPARE(log.lines(), words("info: Using HAL"));
}

void TestPlatformWin::portsFollowAFailedHal()
{
    const LogCapture log;
    World world;
    world.opening = { Transport::InpOut32 };
    world.softwareKeys = QStringList { vanguardKey };
    QVERIFY(makeSelector(world)->open());
    QCOMPARE(world.events, words("HAL, InpOut32"));
    QCOMPARE(log.lines(), words("info: Using HAL, info: PlatformWin::open trying inpout32"));
}

void TestPlatformWin::mmioHasNoFallback_data()
{
    QTest::addColumn<bool>("opens");
    QTest::newRow("opens") << true;
    QTest::newRow("fails") << false;
}

void TestPlatformWin::mmioHasNoFallback()
{
    QFETCH(bool, opens);
    SMC::Options::set(Option::UseMMIO);
    SMC::Options::set(Option::ForceInpOut32);
    const LogCapture log;
    World world;
    world.setOldDriver();
    world.opening = { Transport::HAL, Transport::InpOut32 };
    if (opens) {
        world.opening << Transport::MMIO;
    }
    QCOMPARE(makeSelector(world)->open(), opens);
    QCOMPARE(world.events, opens ? words("MMIO") : words("MMIO") + bothKeys);
    QCOMPARE(log.lines(), words("info: PlatformWin::open trying MMIO"));
}

void TestPlatformWin::forcedPortsHaveNoFallback()
{
    SMC::Options::set(Option::ForceInpOut32);
    const LogCapture log;
    World world;
    world.opening = { Transport::HAL };
    QVERIFY(!makeSelector(world)->open());
    QCOMPARE(world.events, words("InpOut32") + bothKeys);
    QCOMPARE(log.lines(), words("info: Force trying InpOut32"));
}

void TestPlatformWin::oldDriverIsWarnedAbout_data()
{
    QTest::addColumn<QString>("releaseId");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<int>("year"); // 0: unreadable
    QTest::addColumn<int>("size"); // 0: unreadable
    QTest::addColumn<bool>("warned");
    const QString release = QStringLiteral("1903");
    QTest::newRow("release 1903") << release << true << 2012 << 30000 << true;
    QTest::newRow("release 2009") << QStringLiteral("2009") << true << 2012 << 30000 << true;
    QTest::newRow("release 1809") << QStringLiteral("1809") << true << 2012 << 30000 << false;
    QTest::newRow("release 1902") << QStringLiteral("1902") << true << 2012 << 30000 << false;
    QTest::newRow("release unknown") << QString() << true << 2012 << 30000 << false;
    QTest::newRow("release no number") << QStringLiteral("vNext") << true << 2012 << 30000 << false;
    QTest::newRow("no driver") << release << false << 2012 << 30000 << false;
    QTest::newRow("signed in 2011") << release << true << 2011 << 30000 << true;
    QTest::newRow("signed in 2013") << release << true << 2013 << 30000 << false;
    QTest::newRow("signature unreadable") << release << true << 0 << 30000 << false;
    QTest::newRow("22872 bytes") << release << true << 2012 << 22872 << false;
    QTest::newRow("22871 bytes") << release << true << 2012 << 22871 << true;
    QTest::newRow("size unreadable") << release << true << 2012 << 0 << false;
}

void TestPlatformWin::oldDriverIsWarnedAbout()
{
    QFETCH(QString, releaseId);
    QFETCH(bool, exists);
    QFETCH(int, year);
    QFETCH(int, size);
    QFETCH(bool, warned);
    World world;
    world.releaseId = releaseId;
    world.halDriverExists = exists;
    if (year != 0) {
        world.signingYear = year;
    }
    if (size != 0) {
        world.size = static_cast<std::uint64_t>(size);
    }
    world.opening = { Transport::HAL };
    QVERIFY(makeSelector(world)->open());
    QCOMPARE(world.events, warned ? words("ask, HAL") : words("HAL"));
}

void TestPlatformWin::warningHasItsText()
{
    World world;
    world.setOldDriver();
    world.answer = Answer::Abort;
    QVERIFY(!makeSelector(world)->open());
    QCOMPARE(world.title, QStringLiteral("Brisora 1.5.9"));
    QCOMPARE(world.text,
             QStringLiteral(
                 "It seems that you're running Boot Camp version older than 6.0, it's required to "
                 "upgrade to 6.0 or later. Older versions can cause BSOD on Windows 10 1903+. "
                 "Press Help to use temporary alternative way to start the app. <br><br>"
                 "<a href=\"%1/blog/bootcamp-and-windows-10-1903-may-update\">Read more</a>")
                 .arg(QLatin1String(BuildConfig::webSite)));
}

void TestPlatformWin::abortTriesNothing()
{
    const LogCapture log;
    World world;
    world.setOldDriver();
    world.answer = Answer::Abort;
    world.opening = { Transport::HAL, Transport::InpOut32 };
    world.softwareKeys = QStringList { vanguardKey };
    const auto selector = makeSelector(world);
    QVERIFY(!selector->open());
    QCOMPARE(world.events, words("ask"));
    QCOMPARE(log.lines(), QStringList());
    selector->close();
}

void TestPlatformWin::helpUsesThePortsOnly()
{
    World world;
    world.setOldDriver();
    world.answer = Answer::Help;
    world.opening = { Transport::HAL };
    QVERIFY(!makeSelector(world)->open());
    QCOMPARE(world.events, words("ask, InpOut32") + bothKeys);
}

void TestPlatformWin::ignoreGoesOnWithTheDriver()
{
    World world;
    world.setOldDriver();
    world.answer = Answer::Ignore;
    world.opening = { Transport::InpOut32 };
    QVERIFY(makeSelector(world)->open());
    QCOMPARE(world.events, words("ask, HAL, InpOut32"));
}

void TestPlatformWin::ignoreKeepsTheForcedPorts()
{
    SMC::Options::set(Option::ForceInpOut32);
    World world;
    world.setOldDriver();
    world.answer = Answer::Ignore;
    world.opening = { Transport::InpOut32 };
    QVERIFY(makeSelector(world)->open());
    QCOMPARE(world.events, words("ask, InpOut32"));
}

void TestPlatformWin::blockingSoftwareIsNamed_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QString>("product");
    QTest::addColumn<int>("issue");
    const QStringList tried = words("HAL, InpOut32");
    const QStringList told = words("tell");
    QTest::newRow("none") << QStringList() << tried + bothKeys << QString() << 0;
    QTest::newRow("first") << QStringList { vanguardKey } << tried + bothKeys.mid(0, 1) + told
                           << QStringLiteral("Riot Vanguard Anti-Cheat") << 325;
    QTest::newRow("second") << QStringList { faceitKey } << tried + bothKeys + told
                            << QStringLiteral("FACEIT Anti-Cheat") << 350;
    QTest::newRow("both") << QStringList { vanguardKey, faceitKey }
                          << tried + bothKeys.mid(0, 1) + told
                          << QStringLiteral("Riot Vanguard Anti-Cheat") << 325;
}

void TestPlatformWin::blockingSoftwareIsNamed()
{
    QFETCH(QString, product);
    QFETCH(int, issue);
    QFETCH(QStringList, keys);
    World world;
    world.softwareKeys = keys;
    QVERIFY(!makeSelector(world)->open());
    QTEST(world.events, "events");
    if (issue == 0) {
        QCOMPARE(world.text, QString());
        return;
    }
    QCOMPARE(world.title, QStringLiteral("Brisora 1.5.9"));
    QCOMPARE(world.text,
             QStringLiteral("It seems that you have <b>%1</b> app installed which may be blocking "
                            "Brisora from running.<br><br>"
                            "<a href=\"%2/orvane/brisora/issues/%3\">Read more</a>")
                 .arg(product, QLatin1String(BuildConfig::trackerSite), QString::number(issue)));
}

void TestPlatformWin::everythingIsPassedOn()
{
    World world;
    world.opening = { Transport::HAL };
    const auto selector = makeSelector(world);
    QVERIFY(selector->open());
    FakeSmcPlatform& transport = *world.lastTransport;
    transport.setKey("F0Md", "ui8 ", { 5 });

    std::string key;
    QVERIFY(selector->getKeyByIndex(0, key));
    QCOMPARE(key, std::string("F0Md"));
    SMC::KeyInfo info;
    QVERIFY(selector->getKeyInfo("F0Md", info));
    QCOMPARE(static_cast<int>(info.length), 1);
    std::uint8_t value = 0;
    QVERIFY(selector->readKey("F0Md", &value, 1));
    QCOMPARE(static_cast<int>(value), 5);
    value = 1;
    QVERIFY(selector->writeKey("F0Md", &value, 1));
    QVERIFY(transport.keyValue("F0Md") == std::vector<std::uint8_t>({ 1 }));
    QVERIFY(!selector->readKey("NONE", &value, 1));
    transport.setInvertedWrites(true);
    QVERIFY(!selector->writeKey("F0Md", &value, 1));
    selector->close();
    QVERIFY(!transport.isOpen());
}

void TestPlatformWin::withoutATransportNothingWorks()
{
    World world;
    const auto selector = makeSelector(world);
    std::string key;
    SMC::KeyInfo info;
    std::uint8_t value = 0;
    QVERIFY(!selector->getKeyByIndex(0, key));
    QVERIFY(!selector->getKeyInfo("FNum", info));
    QVERIFY(!selector->readKey("FNum", &value, 1));
    QVERIFY(!selector->writeKey("F0Md", &value, 1));
    selector->close();
    QCOMPARE(world.events, QStringList());
}

void TestPlatformWin::disconnectOfTheTransportIsPassedOn()
{
    World world;
    world.opening = { Transport::InpOut32 };
    const auto selector = makeSelector(world);
    QVERIFY(selector->open());
    QSignalSpy disconnects(selector.get(), &SMC::Platform::error_unexpected_disconnect);
    Q_EMIT world.lastTransport->error_unexpected_disconnect();
    QCOMPARE(disconnects.count(), 1);
}

void TestPlatformWin::linksAreLeftOutWithoutASite()
{
    QVERIFY(SMC::bootCampText(QString()).endsWith(QStringLiteral("the app. <br><br>")));
    QVERIFY(SMC::blockingSoftwareText(QStringLiteral("X"), 1, QString())
                .endsWith(QStringLiteral("running.<br><br>")));
}

void TestPlatformWin::productTextCannotFillAnotherPlace()
{
    const QString text
        = SMC::blockingSoftwareText(QStringLiteral("%1 %2"), 7, QStringLiteral("https://%2"));
    QVERIFY(text.contains(QStringLiteral("<b>%1 %2</b>")));
    QVERIFY(text.contains(QStringLiteral("\"https://%2/orvane/brisora/issues/7\"")));
}

void TestPlatformWin::theSystemsOwnTransportsAreMade()
{
    const auto mmio = SMC::makeTransport(Transport::MMIO);
    const auto hal = SMC::makeTransport(Transport::HAL);
    const auto ports = SMC::makeTransport(Transport::InpOut32);
    QVERIFY(dynamic_cast<SMC::PlatformWinProviderMMIO*>(mmio.get()) != nullptr);
    QVERIFY(dynamic_cast<SMC::PlatformWinProviderMacHAL*>(hal.get()) != nullptr);
    QVERIFY(dynamic_cast<SMC::PlatformWinProviderInpOut32*>(ports.get()) != nullptr);
}

BRISORA_TEST_MAIN(TestPlatformWin, QCoreApplication)

#include "test_platform_win.moc"
