#include "core/widgets/qmainwindowex.h"

#include <QCloseEvent>
#include <QGuiApplication>

#include "core/latin1.h"
#include "core/settings/qsettingscache.h"
#include "core/system/sessionend.h"

namespace {

constexpr QLatin1String geometryKey = core::latin1("WindowGeometry");
constexpr QLatin1String stateKey = core::latin1("WindowState");

} // namespace

QMainWindowEx::QMainWindowEx(QSettingsCache& settings, QWidget* parent)
    : QMainWindow(parent)
    , m_sessionEnd(SessionEnd::shared())
    , m_settings(settings)
{
    // A close that only hides the window must not stop the end of the session.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    connect(m_sessionEnd.get(), &SessionEnd::ending, this, &QMainWindowEx::realClose);
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            &QMainWindowEx::realClose);
}

QMainWindowEx::~QMainWindowEx() = default;

void QMainWindowEx::realClose()
{
    m_quitRequested = true;
    // Before the event, so that an exception does not travel through Qt.
    closeOnce();
    close();
}

void QMainWindowEx::closeEvent(QCloseEvent* event)
{
    if (closeToTray() && !m_quitRequested) {
        hideToTray();
        event->ignore();
        return;
    }
    m_quitRequested = true;
    closeOnce();
    event->accept();
}

void QMainWindowEx::saveWindow()
{
    m_settings.setByteArray(geometryKey, saveGeometry());
    m_settings.setByteArray(stateKey, saveState());
}

bool QMainWindowEx::restoreWindow()
{
    const QByteArray geometry = m_settings.getByteArray(geometryKey);
    const QByteArray state = m_settings.getByteArray(stateKey);
    return restoreGeometry(geometry) && restoreState(state);
}

void QMainWindowEx::closeOnce()
{
    if (m_closed) {
        return;
    }
    m_closed = true;
    try {
        onClose();
    } catch (...) {
        // A later close runs it again.
        m_closed = false;
        throw;
    }
    QCoreApplication::quit();
}
