#pragma once

#include <cstdint>
#include <vector>

#include "app/fancontrol/fancontrolmode.h"
#include "core/widgets/notabkeywidget.h"
#include "core/widgets/qtableviewaltcolor.h"
#include "core/widgets/seasonaldecoration.h"

class FanRecord;
class QFanControl;
class QFanProfileList;
class QLabel;
class QTableFansControlWidget;
class QTableFansRPMWidget;
class QTableViewFansModel;

// The table of the fans. It only shows what it is told and says what was clicked;
// whoever shows it drives the engine. Empty until initialize().
class QTableViewFans : public Widgets::NoTabKeyWidget<QTableViewAltColor> {
    Q_OBJECT

public:
    // The function tells the date, for the decoration.
    explicit QTableViewFans(QWidget* parent = nullptr,
                            SeasonalDecoration::Today today = &QDate::currentDate);

    // Makes the rows for the fans that the engine has now; to be called once it has
    // loaded them. Without fans a message tells so: another one for a passive
    // machine, which has none by its make. Nothing of the engine is kept.
    void initialize(const QFanControl& fanControl, bool isPassive);

    // What is new about a fan: its speeds in RPM, 65535 or below 0 where unknown.
    // Changes the model's row only; the cells have operations of their own.
    void updateRow(std::uint8_t fan, std::int32_t min, std::int32_t current, std::int32_t max,
                   const FanControlMode& mode);
    // The cells of a fan; null without such a row. Owned by the table.
    [[nodiscard]] QTableFansControlWidget* getControlCell(int fan) const;
    [[nodiscard]] QTableFansRPMWidget* getRpmCell(int fan) const;

    // The fan whose dialog is open: its control cell is left alone. -1 for none.
    [[nodiscard]] std::int32_t fanUnderDialog() const { return m_fanUnderDialog; }
    void setFanUnderDialog(std::int32_t fan) { m_fanUnderDialog = fan; }

    // Fits the columns to the texts of the header, and to the names and speeds of the
    // fans where these are wider.
    void recomputeColumns();
    // To be called after a change of the interface's language: all texts of the
    // table are read again, and the columns recomputed.
    void translate();

    // Wide enough for the names of the fans and for what stands on their buttons.
    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void fanManualModeClicked(uint8_t fan);
    void fanAutoModeClicked(uint8_t fan);

public Q_SLOTS:
    // Shows each fan's mode in the active preset.
    void slotProfilesChanged(QFanProfileList* profiles);

    // Paints the cells in question only.
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QVector<int>& roles = {}) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    void makeCells(const std::vector<FanRecord>& fans);
    // What the names, and the header over the speeds, need: in pixels.
    [[nodiscard]] int nameWidth() const;
    [[nodiscard]] int headerWidth() const;
    void showOverlay();
    void placeOverlay();
    [[nodiscard]] QString overlayText() const;

    const int m_rowHeight; // pixels
    std::int32_t m_fanUnderDialog = -1;
    QLabel* m_overlay = nullptr; // child; null until needed
    bool m_isPassive = false;
    QTableViewFansModel* const m_model; // child
    SeasonalDecoration m_decoration;
};
