#pragma once

#include <functional>

#include <QDateTime>

class QSettingsCache;

// When the user is asked to rate the product: every 7 days at the most, until he
// has rated or declined for good. GUI thread only.
class RateSchedule {
public:
    struct Answer {
        bool rate = false;
        bool dontAskAgain = false;
    };

    // The settings must outlive the schedule; now gives the present local time.
    RateSchedule(QSettingsCache& settings, std::function<QDateTime()> now);

    // Puts the first request off to 7 days from now, unless there is a date already.
    void ensureScheduled();
    // Puts the next request off to 7 days from now.
    void scheduleRate();
    // Ends the requests.
    void skipRate();

    // Whether the user is to be asked now. If so, the next request is put off
    // already; a date that is missing or unreadable starts the schedule anew.
    [[nodiscard]] bool takeDueRequest();

    // Asks if the user is to be asked now, and does what he answers: ask shows the
    // request and returns the answer, rateApp opens the page for it.
    void askWhenDue(const std::function<Answer()>& ask, const std::function<void()>& rateApp);

private:
    [[nodiscard]] QDateTime nextDate() const;

    QSettingsCache& m_settings;
    const std::function<QDateTime()> m_now;
};
