#pragma once

#include <QMessageBox>

// A message box whose standard buttons speak the interface's language, and that
// never ends the program when it closes, hidden main window or not.
class QMessageBoxLocalized : public QMessageBox {
    Q_OBJECT

public:
    explicit QMessageBoxLocalized(QWidget* parent = nullptr);

    int exec() override;

    // Boxes with an icon, run modally. The result is the pressed button.
    static StandardButton critical(QWidget* parent, const QString& title, const QString& text,
                                   StandardButtons buttons = Ok,
                                   StandardButton defaultButton = NoButton);
    static StandardButton warning(QWidget* parent, const QString& title, const QString& text,
                                  StandardButtons buttons = Ok,
                                  StandardButton defaultButton = NoButton);
};
