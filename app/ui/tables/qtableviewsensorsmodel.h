#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <QAbstractTableModel>
#include <QDateTime>
#include <QFont>
#include <QIcon>
#include <QString>

#include "app/ui/temperaturescale.h"

class TemperatureSensorProvider;

// The sensors of the machine: a row per sensor, with columns for its name and its
// value, and a disabled row that separates the drives from what comes before them. A
// value that has had no update for more than five seconds is grey.
class QTableViewSensorsModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { SensorColumn, ValueColumn, ColumnCount };
    // Tells the present date and time.
    using Now = std::function<QDateTime()>;

    static constexpr std::int32_t separatorId = -1;

    explicit QTableViewSensorsModel(QObject* parent = nullptr,
                                    Now now = &QDateTime::currentDateTimeUtc);

    // Scale and precision of the values are read from these, at every use; they must
    // outlive the model. To be called before the model has sensors.
    void setSettings(QSettingsCache& settings);
    void setSeparatorFont(const QFont& font);

    // A row with the id of a sensor or of the separator. A transparent icon takes the
    // place of a null one.
    void addRow(std::int32_t id, const QString& name, const QIcon& icon);
    // Shows the provider's visible sensors in place of what was there, with a
    // separator before the first drive. Nothing of the provider is kept.
    void load(const TemperatureSensorProvider& provider);
    // A new value of a sensor, in degrees Celsius: 0 for one without a reading, below
    // 0 for one that has not been read. Without effect for an unknown sensor. Tells
    // of the cells that look different now, also of those that have turned grey.
    void update(std::uint32_t id, double value);
    void clear();
    // All texts are to be read again, as after a change of the preferences.
    void refresh();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index,
                                int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Row {
        std::int32_t id = separatorId;
        QString name = QStringLiteral("invalid");
        double value = -1.0; // degrees Celsius
        QIcon icon;
        QDateTime lastUpdate; // invalid before the first one
        bool isToldStale = false; // views have been told that it is grey

        [[nodiscard]] bool isSeparator() const { return id == separatorId; }
        [[nodiscard]] bool isStale(const QDateTime& now) const;
    };

    [[nodiscard]] QVariant separatorData(int column, int role) const;
    [[nodiscard]] QVariant sensorData(const Row& row, int column, int role) const;
    [[nodiscard]] QString valueText(double value) const;
    void tellOfStaleRows(const QDateTime& now);
    void tellOfValue(std::size_t row);

    std::vector<Row> m_rows;
    QFont m_separatorFont;
    QSettingsCache* m_settings = nullptr;
    std::optional<TemperatureScale> m_scale; // empty without settings
    const Now m_now;
};
