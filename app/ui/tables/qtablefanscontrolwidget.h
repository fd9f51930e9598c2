#pragma once

#include <cstdint>

#include <QString>
#include <QWidget>

#include "app/fancontrol/fancontrolmode.h"

class QCocoaFansSegmentedButton;

// The cell with a fan's control: one segment for automatic control, one that tells
// what else the fan does, or offers it. Which of them is selected follows the modes
// that are shown and, at once, the user's clicks, whatever comes of them.
class QTableFansControlWidget : public QWidget {
    Q_OBJECT

public:
    // The button stays hidden until the first mode is shown.
    explicit QTableFansControlWidget(std::uint8_t fan, QWidget* parent = nullptr);

    // An invalid mode changes nothing. The mode that was shown last is only shown
    // again with force.
    void showMode(const FanControlMode& mode, bool force = false);
    // Takes the selection back to the mode that was shown last.
    void showLastMode() { showMode(m_mode, true); }
    // To be called after a change of the interface's language.
    void translate();

    // Pixels at which the texts of an automatic fan fit, in this font.
    [[nodiscard]] static int widthForButtons(const QFontMetrics& metrics);

    // What was shown last: the mode, and the whole text of its segment.
    [[nodiscard]] const FanControlMode& mode() const { return m_mode; }
    [[nodiscard]] const QString& text() const { return m_text; }

Q_SIGNALS:
    void fanManualModeClicked(uint8_t fan);
    void fanAutoModeClicked(uint8_t fan);

protected:
    void resizeEvent(QResizeEvent* event) override;

protected Q_SLOTS:
    void slotClicked(int segment);

private:
    void setSegment(int segment, const QString& text, const QString& toolTip);

    FanControlMode m_mode;
    QCocoaFansSegmentedButton* m_button; // child
    const std::uint8_t m_fan;
    QString m_text;
};
