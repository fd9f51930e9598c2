#include "core/application/applicationlook.h"

#include <QApplication>
#include <QStyle>

namespace {

// With each colour as its own: one that a palette leaves to the system would be taken
// from the palette before it.
QPalette complete(const QPalette& palette)
{
    QPalette result = palette;
    for (const auto group : { QPalette::Active, QPalette::Disabled, QPalette::Inactive }) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto colorRole = static_cast<QPalette::ColorRole>(role);
            // Without a change nothing is noted.
            result.setBrush(group, colorRole, Qt::transparent);
            result.setBrush(group, colorRole, palette.brush(group, colorRole));
        }
    }
    return result;
}

} // namespace

ApplicationLook::ApplicationLook(QApplication& application)
    : m_application(application)
    , m_lightPalette(complete(QApplication::palette()))
    , m_lightStyleSheet(application.styleSheet())
    , m_lightStyle(systemLightStyle().isEmpty() ? QApplication::style()->objectName()
                                                : systemLightStyle())
{
}

void ApplicationLook::apply(bool dark)
{
    // A look that is set is no longer the system's to change.
    if (!dark && !m_isDark
        && QApplication::style()->objectName().compare(m_lightStyle, Qt::CaseInsensitive) == 0) {
        return;
    }
    m_isDark = dark;
    // The sheet goes first: with one, the style is wrapped and has no name.
    m_application.setStyleSheet(QString());
    QApplication::setStyle(dark ? QStringLiteral("Fusion") : m_lightStyle);
    QApplication::setPalette(dark ? darkPalette() : m_lightPalette);
    m_application.setStyleSheet(
        dark ? QStringLiteral(
            "QToolTip { color: #ffffff; background-color: #2a82da; border: 1px solid white; }")
             : m_lightStyleSheet);
}

QPalette ApplicationLook::darkPalette()
{
    const QColor surface(45, 45, 45);
    const QColor faded(127, 127, 127);
    const QColor accent(42, 130, 218);

    QPalette palette;
    for (const auto role : { QPalette::Window, QPalette::AlternateBase, QPalette::Button }) {
        palette.setColor(role, surface);
    }
    palette.setColor(QPalette::Base, QColor(18, 18, 18));
    for (const auto role : { QPalette::WindowText, QPalette::ToolTipBase, QPalette::ToolTipText,
                             QPalette::Text, QPalette::ButtonText }) {
        palette.setColor(role, Qt::white);
    }
    palette.setColor(QPalette::BrightText, Qt::red);
    for (const auto role : { QPalette::Link, QPalette::Highlight }) {
        palette.setColor(role, accent);
    }
    palette.setColor(QPalette::HighlightedText, Qt::black);
    // Check boxes write their texts as windows do.
    for (const auto role : { QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                             QPalette::HighlightedText }) {
        palette.setColor(QPalette::Disabled, role, faded);
    }
    palette.setColor(QPalette::PlaceholderText, faded);
    // The style draws disabled texts a second time in this colour, as engraved.
    palette.setColor(QPalette::Disabled, QPalette::Light, Qt::transparent);
    return palette;
}
