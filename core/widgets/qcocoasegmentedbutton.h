#pragma once

#include <memory>

#include <QString>
#include <QWidget>

class QCocoaSegmentedButtonPrivate;
class QToolButton;

// A row of joined buttons, the segments, counted from 0. A segment that isn't
// there is ignored by every operation.
class QCocoaSegmentedButton : public QWidget {
    Q_OBJECT

public:
    enum SelectionKind {
        SelectOne = 0, // at most one is checked
        SelectAny = 1, // each is checked by itself
        SelectNone = 2, // they are only clicked
    };
    // How the segments are drawn.
    enum SegmentStyle { Joined = 0, Flat = 1 };

    explicit QCocoaSegmentedButton(QWidget* parent = nullptr);
    ~QCocoaSegmentedButton() override;

    // Replaces all segments; not while one of them reports a click.
    void setSegmentCount(int count);
    [[nodiscard]] int segmentCount() const;
    void setSelectionKind(SelectionKind kind);
    void setSegmentStyle(SegmentStyle style);

    void setSegmentChecked(int segment, bool checked);
    [[nodiscard]] bool isSegmentChecked(int segment) const;
    // Pixels.
    void setSegmentWidth(int segment, int width);
    void setSegmentToolTip(int segment, const QString& toolTip);
    // A text that is wider than the segment is cut and ends in "...". The whole
    // text stays the segment's accessible name.
    void setSegmentText(int segment, const QString& text);
    [[nodiscard]] QString segmentText(int segment) const;

Q_SIGNALS:
    void clicked(int segment, bool checked = false);

private:
    [[nodiscard]] QToolButton* segmentButton(int segment) const;

    const std::unique_ptr<QCocoaSegmentedButtonPrivate> m_private;
};
