#include "app/ui/windowplace.h"

#include <algorithm>

#include <QHeaderView>
#include <QLayout>
#include <QMainWindow>
#include <QScreen>
#include <QSplitter>
#include <QTableView>

#include "app/settingskeys.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/widgethelpers.h"

namespace {

// Pixels.
constexpr int sensorsPaneWidth = 240;
constexpr int roomBelowSensors = 10;

} // namespace

WindowPlace::WindowPlace(QMainWindow& window, QSplitter& panes, QSettingsCache& settings)
    : m_window(window)
    , m_panes(panes)
    , m_settings(settings)
{
}

void WindowPlace::restorePanes()
{
    QList<int> sizes;
    const QStringList stored = m_settings.getStringList(SettingsKeys::windowSplitterPosition);
    for (const QString& size : stored) {
        sizes.append(size.toInt());
    }
    if (sizes.size() != 2) {
        sizes = { m_window.width() - sensorsPaneWidth, sensorsPaneWidth };
    }
    // Until they are laid out, the panes share a size that has nothing to do with the
    // window's.
    m_window.layout()->activate();
    m_window.centralWidget()->layout()->activate();
    m_panes.setSizes(sizes);
}

void WindowPlace::savePanes()
{
    QStringList sizes;
    const QList<int> current = m_panes.sizes();
    for (const int size : current) {
        sizes.append(QString::number(size));
    }
    m_settings.setStringList(SettingsKeys::windowSplitterPosition, sizes);
}

void WindowPlace::showFirst(const QTableView& sensors)
{
    // Invisible until it has its size.
    m_window.setWindowOpacity(0.0);
    m_window.show();
    const int base = m_window.height() - sensors.height();
    const int needed = sensors.model()->rowCount() * sensors.rowHeight(0) + roomBelowSensors
        + sensors.horizontalHeader()->height() + base;
    const int frame = m_window.frameGeometry().height() - m_window.height();
    const auto* const screen = m_window.screen();
    const int room = screen != nullptr ? screen->availableSize().height() - frame : needed;
    m_window.resize(m_window.width(), std::max(m_window.height(), std::min(needed, room)));
    centerOnScreen(&m_window);
    m_window.setWindowOpacity(1.0);
    m_window.show();
}
