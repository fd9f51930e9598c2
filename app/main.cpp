#include <QProcess>

#include "app/app.h"
#include "app/commandlinehelp.h"
#include "app/librarysearch.h"
#include "resources/resources.h"

int main(int argc, char* argv[])
{
    leaveOutCurrentFolder();
    if (handleHelpSwitches(argc, argv)) {
        return 0;
    }

    initResources();
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
    QApplicationEx::setKitAttribute(QApplicationEx::FollowDarkModeAtStart);
    QApplicationEx::setKitAttribute(QApplicationEx::KeepFollowingDarkMode);

    QBrisoraApp application(argc, argv);
    const auto code = application.initialize();
    switch (code) {
    case QBrisoraApp::Success:
        application.showMainWindow();
        return QBrisoraApp::exec();
    case QBrisoraApp::Restart:
        QProcess::startDetached(QBrisoraApp::applicationFilePath(), {});
        return code;
    case QBrisoraApp::NoController:
        application.showControllerError();
        return code;
    default:
        return code;
    }
}
