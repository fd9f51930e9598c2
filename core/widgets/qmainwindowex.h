#pragma once

#include <memory>

#include <QMainWindow>

class QSettingsCache;
class SessionEnd;

// A main window that persists its place, may hide instead of close, and closes
// for real exactly once, after which the program ends.
class QMainWindowEx : public QMainWindow {
    Q_OBJECT

public:
    // The settings must outlive the window.
    explicit QMainWindowEx(QSettingsCache& settings, QWidget* parent = nullptr);
    ~QMainWindowEx() override;

    // Closes for real, whatever closeToTray says: from the program's own exit, the
    // end of the session, or the end of the event loop. Only the first call has
    // an effect.
    void realClose();

protected:
    // Whether a plain close hides the window and lets the program run on.
    [[nodiscard]] virtual bool closeToTray() const { return false; }
    // The last thing before the program ends; runs once, also for a window that
    // is hidden.
    virtual void onClose() { }
    virtual void hideToTray() { hide(); }

    void closeEvent(QCloseEvent* event) override;

    void saveWindow();
    // False when there was nothing to restore, or it could not be restored.
    [[nodiscard]] bool restoreWindow();

    [[nodiscard]] QSettingsCache& settings() const { return m_settings; }

private:
    void closeOnce();

    bool m_quitRequested = false;
    bool m_closed = false;
    const std::shared_ptr<SessionEnd> m_sessionEnd;
    QSettingsCache& m_settings;
};
