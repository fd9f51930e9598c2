#include <QtTest>

#include "core/settings/qsettingscache.h"
#include "tests/support/testenvironment.h"

// Where the settings lie.
class SettingsStorageTest : public QObject {
    Q_OBJECT

private:
    const QString m_key = QStringLiteral("Key");

    static QString path()
    {
        return qEnvironmentVariable("XDG_CONFIG_HOME")
            + QStringLiteral("/Orvane Software/Brisora.conf");
    }

private Q_SLOTS:
    void settingsLieInTheUsersConfigurationFolder()
    {
        QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
        settings.setInt(m_key, 1);
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("Key=1"));
    }

    void theirFileGoesWithThem()
    {
        QSettingsCache settings(QStringLiteral("Orvane Software"), QStringLiteral("Brisora"));
        settings.setInt(m_key, 1);
        QVERIFY(QFile::exists(path()));
        settings.removeStorage();
        QVERIFY(!QFile::exists(path()));
    }
};

BRISORA_TEST_MAIN(SettingsStorageTest, QCoreApplication)
#include "test_settings_storage_linux.moc"
