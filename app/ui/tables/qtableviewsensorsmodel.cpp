#include "app/ui/tables/qtableviewsensorsmodel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <QColor>
#include <QPixmap>

#include "app/sensors/tempsensorabstract.h"
#include "app/sensors/tempsensorprovider.h"
#include "app/settingskeys.h"
#include "app/ui/texts.h"
#include "app/ui/typeicons.h"
#include "core/settings/qsettingscache.h"
#include "core/widgets/widgethelpers.h"

namespace {

constexpr qint64 staleAfter = 5000; // milliseconds
const QColor staleColor(128, 128, 128, 255);

} // namespace

bool QTableViewSensorsModel::Row::isStale(const QDateTime& now) const
{
    return lastUpdate.isValid() && lastUpdate.msecsTo(now) > staleAfter;
}

QTableViewSensorsModel::QTableViewSensorsModel(QObject* parent, Now now)
    : QAbstractTableModel(parent)
    , m_now(std::move(now))
{
}

void QTableViewSensorsModel::setSettings(QSettingsCache& settings)
{
    m_settings = &settings;
    m_scale.emplace(settings);
}

void QTableViewSensorsModel::setSeparatorFont(const QFont& font) { m_separatorFont = font; }

void QTableViewSensorsModel::addRow(std::int32_t id, const QString& name, const QIcon& icon)
{
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_rows.push_back({ .id = id,
                       .name = name,
                       .icon = icon.isNull() ? transparentIcon(16) : icon,
                       .lastUpdate = {} });
    endInsertRows();
}

void QTableViewSensorsModel::load(const TemperatureSensorProvider& provider)
{
    clear();
    bool isSeparated = false;
    const auto sensors = provider.getSensors();
    for (const auto* const sensor : sensors) {
        if (isDriveType(sensor->type()) && !isSeparated) {
            addRow(separatorId, QStringLiteral("separator"), {});
            isSeparated = true;
        }
        addRow(static_cast<std::int32_t>(sensor->id()), sensor->displayName(),
               sensorIcon(sensor->type()));
    }
    refresh();
}

void QTableViewSensorsModel::update(std::uint32_t id, double value)
{
    const auto row = std::find_if(m_rows.begin(), m_rows.end(), [id](const Row& candidate) {
        return !candidate.isSeparator() && static_cast<std::uint32_t>(candidate.id) == id;
    });
    if (row == m_rows.end()) {
        return;
    }
    const QDateTime now = m_now();
    // Whatever has painted a stale value has painted it grey, told or not.
    const bool wasGrey = row->isToldStale || row->isStale(now);
    const bool isTextNew = valueText(row->value) != valueText(value);
    row->value = value;
    row->lastUpdate = now;
    row->isToldStale = false;
    if (wasGrey || isTextNew) {
        tellOfValue(static_cast<std::size_t>(row - m_rows.begin()));
    }
    tellOfStaleRows(now);
}

void QTableViewSensorsModel::tellOfStaleRows(const QDateTime& now)
{
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        if (!m_rows[row].isToldStale && m_rows[row].isStale(now)) {
            m_rows[row].isToldStale = true;
            tellOfValue(row);
        }
    }
}

void QTableViewSensorsModel::tellOfValue(std::size_t row)
{
    const QModelIndex cell = index(static_cast<int>(row), ValueColumn);
    Q_EMIT dataChanged(cell, cell);
}

void QTableViewSensorsModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

void QTableViewSensorsModel::refresh()
{
    Q_EMIT layoutAboutToBeChanged();
    Q_EMIT layoutChanged();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}

int QTableViewSensorsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int QTableViewSensorsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant QTableViewSensorsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return static_cast<int>(index.column() == SensorColumn ? Qt::AlignLeft | Qt::AlignVCenter
                                                               : Qt::AlignCenter);
    }
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    return row.isSeparator() ? separatorData(index.column(), role)
                             : sensorData(row, index.column(), role);
}

QVariant QTableViewSensorsModel::separatorData(int column, int role) const
{
    // Of the icons' size, so that the text stands below the sensors' names.
    if (role == Qt::DecorationRole) {
        QPixmap pixmap(scaled(16), scaled(16));
        pixmap.fill(Qt::transparent);
        return pixmap;
    }
    if (column != SensorColumn) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return uiText("MainWindow/listSeparatorDrives");
    case Qt::FontRole:
        return m_separatorFont;
    default:
        return {};
    }
}

QVariant QTableViewSensorsModel::sensorData(const Row& row, int column, int role) const
{
    if (column == ValueColumn) {
        switch (role) {
        case Qt::DisplayRole:
            return valueText(row.value);
        case Qt::ForegroundRole:
            return row.isStale(m_now()) ? staleColor : QVariant();
        default:
            return {};
        }
    }
    switch (role) {
    case Qt::DisplayRole:
        return row.name;
    case Qt::DecorationRole:
        return row.icon;
    default:
        return {};
    }
}

QString QTableViewSensorsModel::valueText(double value) const
{
    if (value == 0.0) {
        return QStringLiteral("-");
    }
    if (!std::isfinite(value) || value < 0.0) {
        return {};
    }
    const double shown = m_scale ? m_scale->toDisplayScale(value) : value;
    return m_settings != nullptr && m_settings->getInt(SettingsKeys::preciseTemperature) != 0
        ? QString::number(shown, 'f', 1)
        : QString::number(std::round(shown), 'g', 6);
}

QVariant QTableViewSensorsModel::headerData(int section, Qt::Orientation orientation,
                                            int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case SensorColumn:
        return uiText("MainWindow/listColumnSensor");
    case ValueColumn:
        return m_scale ? uiText("MainWindow/listColumnSensorValue") + QLatin1Char(' ')
                + m_scale->temperatureUnit()
                       : uiText("MainWindow/listColumnSensorValue");
    default:
        return {};
    }
}

Qt::ItemFlags QTableViewSensorsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || index.row() >= rowCount()
        || m_rows[static_cast<std::size_t>(index.row())].isSeparator()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled;
}
