#include "app/ui/fancontrolmainwindow.h"

#include <utility>

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>

#include "app/fancontrol/fancontrol.h"
#include "app/fancontrol/fanprofilelist.h"
#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/settingskeys.h"
#include "app/ui/foregroundwindow.h"
#include "core/application_flags.h"
#include "core/language/languagestrings.h"
#include "core/log/log.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/qmessageboxlocalized.h"
#include "core/widgets/widgethelpers.h"
#include "core/widgets/windowicon.h"
#include "ui_fancontrolmainwindow.h"

namespace {

constexpr int sensorsPaneWidth = 240; // pixels, unless the user has moved the splitter

enum FanColumn { FanNameColumn, FanRpmColumn, FanControlColumn, FanColumnCount };
enum SensorColumn { SensorNameColumn, SensorValueColumn, SensorColumnCount };

QString text(const char* key) { return LanguageStrings::text(QLatin1String(key)); }

QString speedText(std::uint16_t rpm)
{
    return rpm == FanSpeeds::unread ? QStringLiteral("\u2013") : QString::number(rpm);
}

void setUpTable(QTableWidget* table, int columns, int stretchedColumn)
{
    table->setColumnCount(columns);
    table->verticalHeader()->hide();
    auto* header = table->horizontalHeader();
    header->setSectionsClickable(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(stretchedColumn, QHeaderView::Stretch);
}

// Cells are only touched when their text changes, so that nothing else is
// painted again.
void setCell(QTableWidget* table, int row, int column, const QString& cellText)
{
    auto* item = table->item(row, column);
    if (item == nullptr) {
        table->setItem(row, column, new QTableWidgetItem(cellText));
    } else if (item->text() != cellText) {
        item->setText(cellText);
    }
}

void closeActiveModalWidget()
{
    if (auto* modal = QApplication::activeModalWidget()) {
        modal->close();
    }
}

} // namespace

QFanControlMainWindow::QFanControlMainWindow(QFanControl& fanControl, QSettingsCache& settings,
                                             const Texts& texts, std::function<QString()> readLog)
    : QMainWindowEx(settings)
    , m_fanControl(fanControl)
    , m_texts(texts)
    , m_readLog(std::move(readLog))
    , m_ui(std::make_unique<Ui::BrisoraClass>())
{
    m_ui->setupUi(this);
    setUpTable(m_ui->tableFans, FanColumnCount, FanControlColumn);
    setUpTable(m_ui->tableSensors, SensorColumnCount, SensorNameColumn);
    connectEngine();

    setWindowTitle(QStringLiteral("%1 (%2)").arg(m_texts.productTitle, m_texts.machineName));
    QIcon icon = ::windowIcon();
    icon.addFile(QStringLiteral(":/Resources/icon_128@2x.png"), QSize(256, 256));
    setWindowIcon(icon);
    setWindowFlags((windowFlags() & ~Qt::WindowMaximizeButtonHint) | Qt::CustomizeWindowHint);
    adjustSize();
    m_ui->labelSensorsHeader->setMinimumHeight(m_ui->labelActivePreset->sizeHint().height());
    restorePlace();
    m_ui->tableFans->setAccessibleDescription(QStringLiteral("Fans table"));
    m_ui->tableSensors->setAccessibleDescription(QStringLiteral("Sensors table"));
    translate();

    m_fanControl.initialLoad(true);
}

QFanControlMainWindow::~QFanControlMainWindow() = default;

void QFanControlMainWindow::connectEngine()
{
    connect(&m_fanControl, &QFanControl::initFinished, this,
            &QFanControlMainWindow::slotInitFinished);
    connect(&m_fanControl, &QFanControl::fanUpdate, this, &QFanControlMainWindow::slotFanUpdate);
    connect(&m_fanControl, &QFanControl::sensor_update, this,
            &QFanControlMainWindow::slotSensorUpdate);
    connect(&m_fanControl, &QFanControl::sensorsReloadBegin, this,
            &QFanControlMainWindow::slotSensorsReloadBegin);
    connect(&m_fanControl, &QFanControl::sensorsReloadEnd, this,
            &QFanControlMainWindow::slotSensorsReloadEnd);
    connect(m_fanControl.profiles(), &QFanProfileList::profilesChanged, this,
            &QFanControlMainWindow::showActivePreset);
}

void QFanControlMainWindow::translate()
{
    m_ui->labelSensorsHeader->setText(text("MainWindow/staticSensorsListHeader"));
    m_ui->tableFans->setHorizontalHeaderLabels({ text("MainWindow/listColumnFan"),
                                                 text("MainWindow/listColumnRPM"),
                                                 text("MainWindow/listColumnControl") });
    m_ui->tableSensors->setHorizontalHeaderLabels(
        { text("MainWindow/listColumnSensor"), text("MainWindow/listColumnSensorValue") });
    showActivePreset();
}

void QFanControlMainWindow::restorePlace()
{
    if (!restoreWindow()) {
        centerOnScreen(this);
    }
    QList<int> sizes;
    const QStringList stored = settings().getStringList(SettingsKeys::windowSplitterPosition);
    for (const QString& size : stored) {
        sizes.append(size.toInt());
    }
    if (sizes.size() != 2) {
        sizes = { width() - sensorsPaneWidth, sensorsPaneWidth };
    }
    m_ui->splitter->setSizes(sizes);
}

void QFanControlMainWindow::savePlace()
{
    saveWindow();
    QStringList sizes;
    const QList<int> current = m_ui->splitter->sizes();
    for (const int size : current) {
        sizes.append(QString::number(size));
    }
    settings().setStringList(SettingsKeys::windowSplitterPosition, sizes);
}

void QFanControlMainWindow::slotInitFinished(uint8_t failed)
{
    // The load may end while the window closes for good.
    if (m_exiting) {
        return;
    }
    if (failed != 0) {
        QMessageBoxLocalized::critical(
            isVisible() ? this : nullptr, QStringLiteral("Crash"),
            QStringLiteral("Initial thread crashed, please contact support for assistance. "
                           "Technical information is copied to the clipboard."));
        slotCopyTechInfo();
        slotExit();
        return;
    }
    fillFans();
    fillSensors();
    m_fanControl.startThreads();
    if (core::flags::isSet(core::flags::firstStart)) {
        firstShow();
    }
}

void QFanControlMainWindow::fillFans()
{
    const int count = m_fanControl.fanCount();
    m_ui->tableFans->setRowCount(count);
    for (int fan = 0; fan < count; ++fan) {
        const auto id = static_cast<uint8_t>(fan);
        setCell(m_ui->tableFans, fan, FanNameColumn, m_fanControl.getFans()[id].name());
        slotFanUpdate(id);
    }
}

void QFanControlMainWindow::fillSensors()
{
    const auto sensors = m_fanControl.sensorProvider()->getSensors();
    m_sensorRows.clear();
    m_ui->tableSensors->setRowCount(static_cast<int>(sensors.size()));
    int row = 0;
    for (const auto* sensor : sensors) {
        m_sensorRows.insert(sensor->id(), row);
        setCell(m_ui->tableSensors, row, SensorNameColumn, sensor->displayName());
        slotSensorUpdate(sensor->id(), sensor->value());
        ++row;
    }
}

void QFanControlMainWindow::slotFanUpdate(uint8_t fan)
{
    if (fan >= m_ui->tableFans->rowCount()) {
        return;
    }
    const FanSpeeds speeds = m_fanControl.getFans()[fan].speeds();
    setCell(m_ui->tableFans, fan, FanRpmColumn,
            QStringLiteral("%1 / %2 / %3")
                .arg(speedText(speeds.min), speedText(speeds.current), speedText(speeds.max)));
    setCell(m_ui->tableFans, fan, FanControlColumn,
            m_fanControl.getFanMode(fan).displayText(false));
}

void QFanControlMainWindow::slotSensorUpdate(uint32_t id, double value)
{
    const auto row = m_sensorRows.constFind(id);
    if (row == m_sensorRows.constEnd()) {
        return;
    }
    const int digits = settings().getInt(SettingsKeys::preciseTemperature) != 0 ? 1 : 0;
    // 0 stands for a sensor that has not been read yet.
    const QString reading
        = value > 0.0 ? QString::number(value, 'f', digits) : QStringLiteral("\u2013");
    setCell(m_ui->tableSensors, *row, SensorValueColumn, reading);
}

void QFanControlMainWindow::slotSensorsReloadBegin()
{
    m_ui->tableSensors->blockSignals(true);
    m_sensorRows.clear();
    m_ui->tableSensors->setRowCount(0);
}

void QFanControlMainWindow::slotSensorsReloadEnd()
{
    const QString traySensor = settings().getString(SettingsKeys::traySensor);
    if (!traySensor.isEmpty()
        && m_fanControl.sensorProvider()->getSensorByKey(traySensor) == nullptr) {
        settings().setString(SettingsKeys::traySensor, QString());
    }
    fillSensors();
    m_ui->tableSensors->blockSignals(false);
}

QString QFanControlMainWindow::activePresetName() const
{
    const auto* const profiles = m_fanControl.profiles();
    if (profiles->isActiveAutomatic()) {
        return text("Presets/presetAutomatic");
    }
    if (profiles->isActiveFullBlast()) {
        return text("Presets/presetFullBlast");
    }
    return profiles->isActiveCustom() ? profiles->activeProfile().name()
                                      : text("Presets/presetCurrentUnsaved");
}

void QFanControlMainWindow::showActivePreset()
{
    m_ui->labelActivePreset->setText(text("Presets/activePresetLabel") + QLatin1Char(' ')
                                     + activePresetName());
    for (int fan = 0; fan < m_ui->tableFans->rowCount(); ++fan) {
        slotFanUpdate(static_cast<uint8_t>(fan));
    }
}

void QFanControlMainWindow::firstShow()
{
    // Invisible until it has the size at which every sensor can be seen.
    setWindowOpacity(0.0);
    show();
    const auto* sensors = m_ui->tableSensors;
    const int base = height() - sensors->height();
    const int needed = sensors->rowCount() * sensors->rowHeight(0) + 10
        + sensors->horizontalHeader()->height() + base;
    if (needed > height()) {
        resize(width(), needed);
    }
    centerOnScreen(this);
    setWindowOpacity(1.0);
    show();
}

void QFanControlMainWindow::slotRestore()
{
    if (m_exiting) {
        return;
    }
    closeActiveModalWidget();
    if (isVisible()) {
        return;
    }
    showNormal();
    bringToForeground(this);
}

void QFanControlMainWindow::slotExit()
{
    if (m_exiting) {
        return;
    }
    m_exiting = true;
    try {
        realClose();
    } catch (...) {
        // The next try runs it again.
        m_exiting = false;
        throw;
    }
}

void QFanControlMainWindow::slotCopyTechInfo()
{
    if (auto* clipboard = QApplication::clipboard()) {
        clipboard->setText(m_fanControl.getTechInfo() + QStringLiteral("\nLog:\n\n") + m_readLog());
    }
}

void QFanControlMainWindow::closeForTermination()
{
    m_terminating = true;
    closeActiveModalWidget();
    // A task that is parked for the machine's sleep must not hold the end up.
    m_fanControl.requestStop();
    slotExit();
}

void QFanControlMainWindow::onClose()
{
    savePlace();
    hide();
    const bool stopped = m_fanControl.stopAndWaitForFinished();
    // At the end of a session the system may leave no time after this.
    core::log::flush();
    if (!stopped && !m_terminating) {
        QMessageBoxLocalized::warning(
            nullptr, m_texts.productTitle,
            QStringLiteral("Unable to terminate the app in the right way, \nplease contact "
                           "support for assistance and resolving the problem."));
    }
}

void QFanControlMainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange && isMinimized()) {
        hide();
        event->ignore();
        return;
    }
    QMainWindowEx::changeEvent(event);
}

void QFanControlMainWindow::showEvent(QShowEvent* event)
{
    m_shown = true;
    QMainWindowEx::showEvent(event);
}

void QFanControlMainWindow::hideEvent(QHideEvent* event)
{
    m_shown = false;
    QMainWindowEx::hideEvent(event);
}
