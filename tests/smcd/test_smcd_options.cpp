#include <QCoreApplication>

#include "smcd/options.h"
#include "smcd/peer.h"
#include "tests/support/testenvironment.h"

using namespace smcd;

class OptionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSystemsSocketAndGroupAreTheDefault()
    {
        std::string error;
        const auto options = Options::parse({}, error);
        QVERIFY(options);
        QVERIFY(!options->isForeground);
        QCOMPARE(options->group, std::string("brisora"));
    }

    void optionsAreTaken()
    {
        const char* const arguments[] = { "--foreground", "--group", "wheel" };
        std::string error;
        const auto options = Options::parse(arguments, error);
        QVERIFY(options);
        QVERIFY(options->isForeground);
        QCOMPARE(options->group, std::string("wheel"));
    }

    void whatIsNoOptionIsRefused_data()
    {
        QTest::addColumn<QByteArray>("argument");
        QTest::newRow("unknown") << QByteArray("--daemon");
        QTest::newRow("incomplete") << QByteArray("--group");
        QTest::newRow("word") << QByteArray("start");
    }
    void whatIsNoOptionIsRefused()
    {
        QFETCH(QByteArray, argument);
        const char* const arguments[] = { argument.constData() };
        std::string error;
        QVERIFY(!Options::parse(arguments, error));
        QVERIFY(error.find(argument.constData()) != std::string::npos);
    }

    void rootAndTheGroupAreServed_data()
    {
        QTest::addColumn<int>("user");
        QTest::addColumn<int>("group"); // -1: there is none
        QTest::addColumn<bool>("served");
        QTest::newRow("root") << 0 << 500 << true;
        QTest::newRow("root without a group") << 0 << -1 << true;
        QTest::newRow("member") << 1000 << 27 << true;
        QTest::newRow("stranger") << 1000 << 500 << false;
        QTest::newRow("no group") << 1000 << -1 << false;
    }
    void rootAndTheGroupAreServed()
    {
        QFETCH(int, user);
        QFETCH(int, group);
        QFETCH(bool, served);
        const Peer peer { static_cast<std::uint32_t>(user), { 27, 1000 } };
        const auto wanted
            = group < 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(group));
        QCOMPARE(isServed(peer, wanted), served);
    }
};

BRISORA_TEST_MAIN(OptionsTest, QCoreApplication)

#include "test_smcd_options.moc"
