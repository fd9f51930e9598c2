#pragma once

#include <QTableView>

// A table with alternating row colours that go on below the last row, down to the
// bottom. All rows have the vertical header's default section size as their height.
class QTableViewAltColor : public QTableView {
    Q_OBJECT

public:
    explicit QTableViewAltColor(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintStripes(const QRect& area);
};
