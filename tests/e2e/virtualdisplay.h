#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include "tests/support/processgroup.h"

// A display of the test's own, on which boxes can be found and answered as a
// person would. It is gone with this object.
class VirtualDisplay {
public:
    // What has to be installed for it and isn't; empty when all is there.
    [[nodiscard]] static QString missingProgram();

    [[nodiscard]] bool start();
    // As the variable DISPLAY has it.
    [[nodiscard]] QString name() const { return m_name; }

    // The number of a visible window of the program with this title, or an empty text. Without
    // waiting.
    [[nodiscard]] QString findWindow(const QString& title) const;
    // Presses the default button of the box in front.
    [[nodiscard]] bool acceptBox() const;
    // Presses the left button of the mouse at a place of the display, and keys as
    // the window tool names them ("Down", "Return", "ctrl+a"); types a text.
    [[nodiscard]] bool click(const QPoint& place) const;
    [[nodiscard]] bool pressKeys(const QStringList& keys) const;
    [[nodiscard]] bool type(const QString& text) const;
    // A picture of the window, which the file's ending gives its format.
    [[nodiscard]] bool saveScreenshot(const QString& window, const QString& file) const;

private:
    [[nodiscard]] bool runTool(const QString& program, const QStringList& arguments,
                               QString& output) const;

    ProcessGroup m_server;
    QString m_name;
};
