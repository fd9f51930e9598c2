#include <QDir>
#include <QFile>
#include <QtTest>

#include "app/platform/autostartlinux.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class AutostartLinuxTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void anEntryStartsTheProgramAtLogon();
    void paths_data();
    void paths();
    void disablingRemovesTheEntry();
    void anEntryThatIsSwitchedOffDoesNotCount_data();
    void anEntryThatIsSwitchedOffDoesNotCount();
    void aFolderThatCannotBeMadeIsLogged();

private:
    [[nodiscard]] QString file() const
    {
        return m_folder->filePath(QStringLiteral("autostart/brisora.desktop"));
    }
    [[nodiscard]] QByteArray content() const
    {
        QFile entry(file());
        return entry.open(QIODevice::ReadOnly) ? entry.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void AutostartLinuxTest::anEntryStartsTheProgramAtLogon()
{
    AutostartLinux autostart(m_folder->path(), QStringLiteral("/usr/bin/brisora"));
    QVERIFY(!autostart.isEnabled());

    autostart.setEnabled(true);
    autostart.setEnabled(true);

    QVERIFY(autostart.isEnabled());
    QCOMPARE(content(),
             QByteArray("[Desktop Entry]\nType=Application\nName=Brisora\n"
                        "Exec=\"/usr/bin/brisora\" /minimized\nTerminal=false\n"));
    QCOMPARE(QDir(m_folder->filePath(QStringLiteral("autostart"))).entryList(QDir::Files).size(),
             1);
}

void AutostartLinuxTest::paths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char* name, const char* path, const char* line) {
        QTest::newRow(name) << QString::fromUtf8(path) << QByteArray(line);
    };
    row("a blank", "/opt/My Tools/brisora", R"(Exec="/opt/My Tools/brisora" /minimized)");
    row("a percent sign", "/opt/100%/brisora", R"(Exec="/opt/100%%/brisora" /minimized)");
    row("a quote", R"(/opt/"x"/b)", R"(Exec="/opt/\\"x\\"/b" /minimized)");
    row("a dollar and a back quote", "/opt/$a`b", R"(Exec="/opt/\\$a\\`b" /minimized)");
    row("a backslash", R"(/opt/a\b)", R"(Exec="/opt/a\\\\b" /minimized)");
    row("an umlaut", "/opt/Lüfter", "Exec=\"/opt/Lüfter\" /minimized");
}

void AutostartLinuxTest::paths()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, line);
    const QList<QByteArray> lines = AutostartLinux::entry(path).split('\n');
    QCOMPARE(lines.value(3), line);
}

void AutostartLinuxTest::disablingRemovesTheEntry()
{
    AutostartLinux autostart(m_folder->path(), QStringLiteral("/usr/bin/brisora"));
    autostart.setEnabled(true);

    autostart.setEnabled(false);

    QVERIFY(!autostart.isEnabled());
    QVERIFY(!QFile::exists(file()));
    const LogCapture log;
    autostart.setEnabled(false);
    QCOMPARE(log.lines(), QStringList());
}

void AutostartLinuxTest::anEntryThatIsSwitchedOffDoesNotCount_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("hidden") << QByteArray("Hidden=true") << false;
    QTest::newRow("hidden, with blanks") << QByteArray("Hidden = True") << false;
    QTest::newRow("switched off by a desktop")
        << QByteArray("X-GNOME-Autostart-enabled=false") << false;
    QTest::newRow("not hidden") << QByteArray("Hidden=false") << true;
    QTest::newRow("a remark") << QByteArray("#Hidden=true") << true;
}

void AutostartLinuxTest::anEntryThatIsSwitchedOffDoesNotCount()
{
    QFETCH(QByteArray, line);
    AutostartLinux autostart(m_folder->path(), QStringLiteral("/usr/bin/brisora"));
    autostart.setEnabled(true);
    QFile entry(file());
    QVERIFY(entry.open(QIODevice::Append));
    entry.write(line + "\n");
    entry.close();

    QTEST(autostart.isEnabled(), "enabled");

    // Switching it on means on.
    autostart.setEnabled(true);
    QVERIFY(autostart.isEnabled());
}

void AutostartLinuxTest::aFolderThatCannotBeMadeIsLogged()
{
    QFile inTheWay(m_folder->filePath(QStringLiteral("autostart")));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    AutostartLinux autostart(m_folder->path(), QStringLiteral("/usr/bin/brisora"));
    const LogCapture log;

    autostart.setEnabled(true);

    QVERIFY(!autostart.isEnabled());
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines().constFirst().startsWith(
                 QLatin1String("warning: The start at logon can't be switched on: ")),
             qPrintable(log.lines().constFirst()));
}

BRISORA_TEST_MAIN(AutostartLinuxTest, QCoreApplication)
#include "test_autostartlinux.moc"
