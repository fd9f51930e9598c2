#pragma once

#include <cstdint>
#include <functional>

#include <QDateTime>

#include "core/widgets/notabkeywidget.h"
#include "core/widgets/qtableviewaltcolor.h"
#include "core/widgets/seasonaldecoration.h"

class QSettingsCache;
class QTableViewSensorsModel;
class TemperatureSensorProvider;

// The table of the sensors with their latest values, in the scale and with the
// precision that the user has chosen.
class QTableViewSensors : public Widgets::NoTabKeyWidget<QTableViewAltColor> {
    Q_OBJECT

public:
    // The functions tell the date, for the decoration, and the present date and time.
    explicit QTableViewSensors(QWidget* parent = nullptr,
                               SeasonalDecoration::Today today = &QDate::currentDate,
                               std::function<QDateTime()> now = &QDateTime::currentDateTimeUtc);

    // The preferences of the temperatures are read from these at every use; they must
    // outlive the table. To be called before the others.
    void setSettings(QSettingsCache& settings);

    // Shows the provider's visible sensors in place of what was there; nothing of the
    // provider is kept. Values are blank until their first update.
    void load(const TemperatureSensorProvider& provider);
    // A new value of a sensor in degrees Celsius. Without effect for an unknown one.
    void update(std::uint32_t id, double value);
    using QTableView::update;
    void clear();

public Q_SLOTS:
    // To be called after a change of language, scale or precision.
    void slotUpdatePreferences();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void recomputeColumns();

    QTableViewSensorsModel* const m_model; // child
    SeasonalDecoration m_decoration;
};
