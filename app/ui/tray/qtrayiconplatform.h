#pragma once

#include <cstdint>

#include <QObject>
#include <QString>

class QMenu;

// What setIcon() is told besides the value; bits.
enum TrayIconFlag : std::uint32_t {
    TrayIconAlways = 1,
    TrayIconReading = 4, // the value is a sensor's reading, to be shown
    TrayIconPrecise = 16, // the user wants one decimal digit; the pictures have no room for it
};

// The icon in the system's tray. GUI thread only.
class QTrayIconPlatform : public QObject {
    Q_OBJECT

public:
    virtual void setVisible(bool visible) = 0;
    // Flags are those of TrayIconFlag, the value is in degrees Celsius.
    virtual void setIcon(std::uint32_t flags, double value) = 0;
    virtual void setToolTip(const QString& toolTip) = 0;
    // The menu that the user opens on the icon, told once. It must live as long as
    // the icon is visible.
    virtual void setContextMenu(QMenu* menu) = 0;

Q_SIGNALS:
    // The user has activated the icon.
    void activated();
    // The system had lost the icon. It is there again, but neither picture nor tool
    // tip are.
    void iconRestored();
};
