#pragma once

class QMainWindow;
class QSettingsCache;
class QSplitter;
class QTableView;

// How the main window divides its room between fans and sensors, and how much it
// takes when it is shown for the first time ever. GUI thread only.
class WindowPlace {
public:
    // All must outlive the place.
    WindowPlace(QMainWindow& window, QSplitter& panes, QSettingsCache& settings);

    // The window has its own size by now. Without stored sizes the sensors get a
    // width of their own and the fans the rest.
    void restorePanes();
    void savePanes();

    // Shows the window for the first time, in the middle of its screen and so high
    // that each of these rows can be seen, if the screen has the room.
    void showFirst(const QTableView& sensors);

private:
    QMainWindow& m_window;
    QSplitter& m_panes;
    QSettingsCache& m_settings;
};
