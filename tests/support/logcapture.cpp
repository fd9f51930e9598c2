#include "tests/support/logcapture.h"

#include <algorithm>
#include <mutex>
#include <sstream>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>

#include "core/log/log.h"

class LogCapture::Sink final : public spdlog::sinks::base_sink<std::mutex> {
public:
    QStringList lines()
    {
        const std::lock_guard lock(mutex_);
        return linesOf(m_stream.str());
    }

    QStringList take()
    {
        const std::lock_guard lock(mutex_);
        const QStringList result = linesOf(m_stream.str());
        m_stream.str({});
        return result;
    }

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        spdlog::memory_buf_t formatted;
        formatter_->format(message, formatted);
        m_stream << fmt::to_string(formatted);
    }

    void flush_() override { }

private:
    static QStringList linesOf(const std::string& text)
    {
        return QString::fromStdString(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    std::ostringstream m_stream;
};

LogCapture::LogCapture()
    : m_sink(std::make_shared<Sink>())
{
    spdlog::drop(core::log::loggerName);
    auto logger = std::make_shared<spdlog::logger>(core::log::loggerName, m_sink);
    logger->set_level(spdlog::level::trace);
    logger->set_formatter(std::make_unique<spdlog::pattern_formatter>(
        "%l: %v", spdlog::pattern_time_type::local, "\n"));
    spdlog::register_logger(std::move(logger));
}

LogCapture::~LogCapture() { spdlog::drop(core::log::loggerName); }

QStringList LogCapture::lines() const { return m_sink->lines(); }

QStringList LogCapture::take() { return m_sink->take(); }

int LogCapture::count(const QString& line) const
{
    const QStringList all = lines();
    return static_cast<int>(std::count(all.begin(), all.end(), line));
}

void LogCapture::clear() { static_cast<void>(take()); }
