#include "app/ui/dialogs/rateschedule.h"

#include <utility>

#include "app/settingskeys.h"
#include "core/settings/qsettingscache.h"

namespace {

constexpr qint64 requestInterval = 604800; // seconds

} // namespace

RateSchedule::RateSchedule(QSettingsCache& settings, std::function<QDateTime()> now)
    : m_settings(settings)
    , m_now(std::move(now))
{
}

void RateSchedule::ensureScheduled()
{
    if (!nextDate().isValid()) {
        scheduleRate();
    }
}

void RateSchedule::scheduleRate()
{
    m_settings.setDateTime(SettingsKeys::rateNextDate, m_now().addSecs(requestInterval));
}

void RateSchedule::skipRate() { m_settings.setInt(SettingsKeys::rateSkip, 1); }

bool RateSchedule::takeDueRequest()
{
    if (m_settings.getInt(SettingsKeys::rateSkip, -1) == 1) {
        return false;
    }
    const QDateTime next = nextDate();
    if (next.isValid() && next > m_now()) {
        return false;
    }
    scheduleRate();
    return next.isValid();
}

void RateSchedule::askWhenDue(const std::function<Answer()>& ask,
                              const std::function<void()>& rateApp)
{
    if (!takeDueRequest()) {
        return;
    }
    const Answer answer = ask();
    if (answer.dontAskAgain) {
        skipRate();
    }
    if (answer.rate) {
        rateApp();
    }
}

QDateTime RateSchedule::nextDate() const
{
    return m_settings.getDateTime(SettingsKeys::rateNextDate);
}
