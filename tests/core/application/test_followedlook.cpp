#include <QtTest>

#include "core/application/applicationlook.h"
#include "core/application/qapplicationex.h"
#include "tests/core/application/userslook.h"
#include "tests/support/testenvironment.h"

// The application's look while the user changes the system's.
class FollowedLookTest : public QObject {
    Q_OBJECT

public:
    explicit FollowedLookTest(UsersLook& usersLook)
        : m_usersLook(usersLook)
    {
    }

private Q_SLOTS:
    void theLookFollowsTheUsersChoice();

private:
    UsersLook& m_usersLook;
};

void FollowedLookTest::theLookFollowsTheUsersChoice()
{
    const QColor dark = ApplicationLook::darkPalette().color(QPalette::Base);
    const QColor light = QApplication::palette().color(QPalette::Base);
    QVERIFY(light != dark);

    m_usersLook.setDark(true);
    QTRY_COMPARE(QApplication::palette().color(QPalette::Base), dark);

    m_usersLook.setDark(false);
    QTRY_COMPARE(QApplication::palette().color(QPalette::Base), light);

    m_usersLook.setDark(true);
    QTRY_COMPARE(QApplication::palette().color(QPalette::Base), dark);
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    UsersLook usersLook;
    QApplicationEx::setKitAttribute(QApplicationEx::FollowDarkModeAtStart);
    QApplicationEx::setKitAttribute(QApplicationEx::KeepFollowingDarkMode);
    QApplicationEx application(argc, argv, QStringLiteral("Brisora"));
    FollowedLookTest test(usersLook);
    return QTest::qExec(&test, argc, argv);
}
#include "test_followedlook.moc"
