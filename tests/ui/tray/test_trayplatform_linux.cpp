#include <QApplication>
#include <QTest>

#include "app/ui/tray/qtrayiconlinux.h"
#include "app/ui/tray/trayplatform.h"
#include "tests/support/testenvironment.h"

class TrayPlatformTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutADesktopThereIsNoTray() { QVERIFY(!isTrayAvailable()); }

    void theIconIsTheDesktops()
    {
        const auto platform = makeTrayPlatform();
        QVERIFY(qobject_cast<QTrayIconLinux*>(platform.get()) != nullptr);
    }
};

BRISORA_TEST_MAIN(TrayPlatformTest, QApplication)
#include "test_trayplatform_linux.moc"
