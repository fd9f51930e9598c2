#pragma once

#include <cstdint>
#include <vector>

#include <QAbstractTableModel>
#include <QIcon>
#include <QString>

#include "app/fancontrol/fancontrolmode.h"

// The fans of the machine: a row per fan, whose number is the fan's id, and columns
// for its name, its speeds and its control. The cells of the last two are widgets of
// the view; the model has no texts for them.
class QTableViewFansModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { FanColumn, RpmColumn, ControlColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    // A fan without an icon has no data.
    void addRow(const QString& name, const QIcon& icon);
    // RPM; 65535 or below 0 for a speed that is not known. Without effect for a fan
    // that isn't there.
    void updateRow(std::uint8_t fan, std::int32_t min, std::int32_t current, std::int32_t max,
                   const FanControlMode& mode);
    void clear();
    // All texts are to be read again, as after a change of the interface's language.
    void refresh();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index,
                                int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    // Before the new mode is stored.
    void modeChanged(uint8_t fan);

private:
    struct Row {
        QString name;
        std::int32_t min = -1; // RPM
        std::int32_t max = -1;
        std::int32_t current = -1;
        QIcon icon;
        FanControlMode mode;
    };

    std::vector<Row> m_rows;
};
