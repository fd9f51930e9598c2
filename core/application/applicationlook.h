#pragma once

#include <QPalette>
#include <QString>

class QApplication;

// The application's look: as the system has it, or a dark one of its own. GUI
// thread.
class ApplicationLook {
public:
    // Keeps the palette, the style sheet and the style that the application has
    // now: they are the light look. Where the system has a style of its own that
    // style is taken instead. The application must outlive this object.
    explicit ApplicationLook(QApplication& application);

    void apply(bool dark);

    [[nodiscard]] static QPalette darkPalette();

private:
    QApplication& m_application;
    const QPalette m_lightPalette;
    const QString m_lightStyleSheet;
    const QString m_lightStyle;
    bool m_isDark = false;
};

// The style of the light look: empty where the one of the start stays.
[[nodiscard]] QString systemLightStyle();
