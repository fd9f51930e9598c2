#include <memory>
#include <string>

#include <windows.h>

#include <QCoreApplication>
#include <QtTest>

#include "core/settings/qsettingscache.h"
#include "tests/support/testenvironment.h"

namespace {

const QString organization = QStringLiteral("Orvane Software Tests");
const QString application = QStringLiteral("Brisora %1").arg(GetCurrentProcessId());
const QString neighbour = application + QStringLiteral(" Neighbour");

std::wstring keyOf(const QString& name)
{
    return QStringLiteral("Software\\%1\\%2").arg(organization, name).toStdWString();
}

bool keyExists(const QString& name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, keyOf(name).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(key);
    return true;
}

} // namespace

class TestSettingsStorage : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QSettingsCache> m_settings;
    std::unique_ptr<QSettingsCache> m_neighbour;

private Q_SLOTS:
    void init()
    {
        m_settings = std::make_unique<QSettingsCache>(organization, application);
        m_neighbour = std::make_unique<QSettingsCache>(organization, neighbour);
        m_settings->setInt(QStringLiteral("Key"), 1);
        m_settings->setInt(QStringLiteral("Group/Deep/Key"), 2);
        m_neighbour->setInt(QStringLiteral("Key"), 3);
        QVERIFY(keyExists(application));
        QVERIFY(keyExists(neighbour));
    }

    void cleanup()
    {
        m_settings.reset();
        m_neighbour.reset();
        for (const auto& name : { application, neighbour }) {
            RegDeleteTreeW(HKEY_CURRENT_USER, keyOf(name).c_str());
        }
        // Only once nothing lies in it: other runs have their keys there.
        RegDeleteKeyW(HKEY_CURRENT_USER,
                      QStringLiteral("Software\\%1").arg(organization).toStdWString().c_str());
    }

    void theKeyGoesWithAllThatIsInIt()
    {
        m_settings->removeStorage();
        QVERIFY(!keyExists(application));
        m_settings.reset();
        QVERIFY(!keyExists(application));
    }

    void nothingIsReadAfterwards()
    {
        m_settings->removeStorage();
        QCOMPARE(m_settings->getInt(QStringLiteral("Key"), -1), -1);
        QCOMPARE(m_settings->getInt(QStringLiteral("Group/Deep/Key"), -1), -1);
    }

    void theKeyMayBeGivenByItsPath()
    {
        QSettingsCache settings(std::make_unique<QSettings>(
            QStringLiteral("HKEY_CURRENT_USER\\Software\\%1\\%2").arg(organization, neighbour),
            QSettings::NativeFormat));
        m_neighbour.reset();
        QCOMPARE(settings.getInt(QStringLiteral("Key"), -1), 3);
        settings.removeStorage();
        QVERIFY(!keyExists(neighbour));
        QVERIFY(keyExists(application));
    }

    void theKeysBesideItStay()
    {
        m_settings->removeStorage();
        QCOMPARE(QSettings(organization, neighbour).value(QStringLiteral("Key")).toInt(), 3);
    }

    void removingNothingDoesNoHarm()
    {
        m_settings->removeStorage();
        m_settings->removeStorage();
        QVERIFY(!keyExists(application));
        QVERIFY(keyExists(neighbour));
    }

    void whatIsWrittenAfterwardsStartsANewStorage()
    {
        m_settings->removeStorage();
        m_settings->setInt(QStringLiteral("Later"), 4);
        m_settings.reset();
        QSettings stored(organization, application);
        QCOMPARE(stored.value(QStringLiteral("Later")).toInt(), 4);
        QVERIFY(!stored.contains(QStringLiteral("Key")));
    }

    void anotherUserOfTheKeyDoesNotHoldItUp()
    {
        QSettings other(organization, application);
        QCOMPARE(other.value(QStringLiteral("Key")).toInt(), 1);
        m_settings->removeStorage();
        QVERIFY(!keyExists(application));
    }
};

BRISORA_TEST_MAIN(TestSettingsStorage, QCoreApplication)

#include "test_settings_storage_windows.moc"
