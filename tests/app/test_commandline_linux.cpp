#include <cstdio>
#include <cstring>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "app/app.h"
#include "app/settingskeys.h"
#include "app/smc/options.h"
#include "app/ui/fancontrolmainwindow.h"
#include "core/application_flags.h"
#include "resources/resources.h"
#include "tests/support/testenvironment.h"

namespace {

// With this argument the program is the application, with the arguments that follow
// as its command line, and tells what it has taken from them.
constexpr const char* applicationArgument = "--application";

constexpr int patience = 20000; // milliseconds

const char* placeOf(const QFanControlMainWindow& window)
{
    return window.isShown() ? "shown" : "away";
}

int runApplication(int argc, char* argv[])
{
    initResources();
    QBrisoraApp application(argc, argv);
    // There is no controller, and none is looked for.
    core::flags::set(core::flags::noSupport);
    const auto code = application.initialize();
    if (code != QBrisoraApp::Success) {
        return code;
    }
    application.showMainWindow();
    auto& window = *application.mainWindow();
    std::printf("start: %s\n", placeOf(window));
    if (core::flags::isSet(core::flags::firstStart)) {
        static_cast<void>(QTest::qWaitFor([&window] { return window.isShown(); }, patience));
        std::printf("loaded: %s\n", placeOf(window));
    }
    std::printf("delay: %s\n", SMC::Options::value(SMC::Option::ExtraDelay).c_str());
    std::printf("log: %s\n", core::flags::isSet(core::flags::logFile) ? "beside" : "temporary");
    window.closeForTermination();
    return code;
}

void writeFile(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), qint64 { contents.size() });
}

// A machine on which the program starts.
void makeMachine(const QString& root)
{
    const QDir folder(root + QStringLiteral("/sys/class/dmi/id"));
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    writeFile(folder.filePath(QStringLiteral("sys_vendor")), "Apple Inc.\n");
    writeFile(folder.filePath(QStringLiteral("product_name")), "MacBookPro11,3\n");
}

} // namespace

// What the program takes from its command line.
class CommandLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSwitchesTakeEffect_data();
    void theSwitchesTakeEffect();
};

void CommandLineTest::theSwitchesTakeEffect_data()
{
    QTest::addColumn<bool>("isFirstRun");
    QTest::addColumn<QString>("switches");
    QTest::addColumn<QString>("told");
    const auto row = [](const char* name, bool isFirstRun, const char* switches, const char* told) {
        QTest::newRow(name) << isFirstRun << QString(QLatin1String(switches))
                            << QString(QLatin1String(told));
    };
    const char* const usual = "start: shown, delay: , log: temporary";
    row("none", false, "", usual);
    row("minimised", false, "/minimized", "start: away, delay: 2000, log: temporary");
    row("log", false, "/log", "start: shown, delay: , log: beside");
    row("several", false, "/what /log /minimized", "start: away, delay: 2000, log: beside");
    row("unknown", false, "/what -minimized minimized /minimized:1 --log", usual);
    row("upper case", false, "/MINIMIZED /Log /UNINSTALL /Init", usual);
    row("first run", true, "", "start: away, loaded: shown, delay: , log: temporary");
    row("first run, minimised", true, "/minimized",
        "start: away, loaded: shown, delay: 2000, log: temporary");
}

void CommandLineTest::theSwitchesTakeEffect()
{
    QFETCH(bool, isFirstRun);
    QFETCH(QString, switches);
    const QTemporaryDir root;
    makeMachine(root.path());
    QSettings settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
    settings.clear();
    if (!isFirstRun) {
        settings.setValue(SettingsKeys::appFirstRun, 0);
    }
    settings.sync();
    QProcess program;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("BRISORA_SYSROOT"), root.path());
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);

    program.start(QCoreApplication::applicationFilePath(),
                  QStringList { QLatin1String(applicationArgument) }
                      + switches.split(QLatin1Char(' '), Qt::SkipEmptyParts));

    QVERIFY(program.waitForFinished(patience));
    QFile::remove(QCoreApplication::applicationFilePath() + QLatin1String(".log"));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), int { QBrisoraApp::Success });
    QTEST(QString::fromUtf8(program.readAllStandardOutput())
              .trimmed()
              .replace(QLatin1Char('\n'), QLatin1String(", ")),
          "told");
}

int main(int argc, char* argv[])
{
    if (argc > 1 && std::strcmp(argv[1], applicationArgument) == 0) {
        return runApplication(argc - 1, argv + 1);
    }
    const TestEnvironment environment;
    QCoreApplication application(argc, argv);
    CommandLineTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_commandline_linux.moc"
