#include "app/ui/tables/qtableviewfansmodel.h"

#include "app/ui/tables/knownspeed.h"
#include "app/ui/texts.h"

void QTableViewFansModel::addRow(const QString& name, const QIcon& icon)
{
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_rows.push_back({ .name = name, .icon = icon, .mode = {} });
    endInsertRows();
}

void QTableViewFansModel::updateRow(std::uint8_t fan, std::int32_t min, std::int32_t current,
                                    std::int32_t max, const FanControlMode& mode)
{
    if (fan >= m_rows.size()) {
        return;
    }
    Row& row = m_rows[fan];
    const bool isModeNew = !(row.mode == mode);
    if (!isModeNew && row.min == min && row.current == current && row.max == max) {
        return;
    }
    row.min = min;
    row.max = max;
    row.current = current;
    if (isModeNew) {
        Q_EMIT modeChanged(fan);
        row.mode = mode;
    }
    Q_EMIT dataChanged(index(fan, RpmColumn), index(fan, ControlColumn));
}

void QTableViewFansModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

void QTableViewFansModel::refresh()
{
    Q_EMIT layoutAboutToBeChanged();
    Q_EMIT layoutChanged();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}

int QTableViewFansModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int QTableViewFansModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant QTableViewFansModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    if (row.icon.isNull()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == FanColumn ? row.name : QVariant();
    case Qt::DecorationRole:
        return index.column() == FanColumn ? row.icon : QVariant();
    case Qt::ToolTipRole:
        // Two limits that are not known yet are not equal ones.
        if (index.column() == RpmColumn && row.max == row.min && isKnownSpeed(row.max)) {
            return uiText("FanControlDialog/statusWarning").arg(row.max);
        }
        return {};
    case Qt::TextAlignmentRole:
        return static_cast<int>(index.column() == FanColumn ? Qt::AlignLeft | Qt::AlignVCenter
                                                            : Qt::AlignCenter);
    default:
        return {};
    }
}

QVariant QTableViewFansModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case FanColumn:
        return uiText("MainWindow/listColumnFan");
    case RpmColumn:
        return uiText("MainWindow/listColumnRPM");
    case ControlColumn:
        return uiText("MainWindow/listColumnControl");
    default:
        return {};
    }
}

Qt::ItemFlags QTableViewFansModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled : Qt::NoItemFlags;
}
