#include <QSettings>
#include <QtTest>

#include "core/system/darkmode.h"
#include "tests/support/testenvironment.h"

class DarkModeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThemeDecides_data()
    {
        QTest::addColumn<QVariant>("light");
        QTest::addColumn<bool>("dark");
        QTest::newRow("not told") << QVariant() << false;
        QTest::newRow("light") << QVariant(1) << false;
        QTest::newRow("dark") << QVariant(0) << true;
    }
    void theThemeDecides()
    {
        QFETCH(QVariant, light);
        QSettings theme(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\"
                                       "CurrentVersion\\Themes\\Personalize"),
                        QSettings::NativeFormat);
        theme.remove(QStringLiteral("AppsUseLightTheme"));
        if (light.isValid()) {
            theme.setValue(QStringLiteral("AppsUseLightTheme"), light);
        }
        theme.sync();
        QTEST(isDarkModeEnabled(), "dark");
    }
};

BRISORA_TEST_MAIN(DarkModeTest, QCoreApplication)
#include "test_darkmode_windows.moc"
