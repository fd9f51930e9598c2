#include "core/log/log.h"

#include <cstdio>
#include <memory>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>

#include "core/log/log_file.h"

namespace core::log {

bool initLogger(const std::wstring& path)
{
    if (path.empty() || spdlog::get(loggerName)) {
        return true;
    }

    const LogFile file(QString::fromStdWString(path));
    if (!file.isUsable()) {
        std::fprintf(stderr, "Brisora runs without a log: %s\n", qPrintable(file.errorText()));
        return false;
    }
    try {
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(file.sinkName(), true);
        auto logger = std::make_shared<spdlog::logger>(loggerName, std::move(sink));
        logger->set_level(spdlog::level::trace);
        logger->set_formatter(std::make_unique<spdlog::pattern_formatter>(
            "[%Y-%m-%d %H:%M:%S:%e] [thread %t] [%s#%#] %v", spdlog::pattern_time_type::local,
            "\r\n"));
        spdlog::register_logger(std::move(logger));
    } catch (const spdlog::spdlog_ex& error) {
        std::fprintf(stderr, "Brisora runs without a log: %s\n", error.what());
        return false;
    }
    return true;
}

bool isStarted() { return spdlog::get(loggerName) != nullptr; }

void flush()
{
    if (const auto logger = spdlog::get(loggerName)) {
        logger->flush();
    }
}

QString singleLine(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar character : text) {
        if (character == QLatin1Char('\n')) {
            result += QLatin1String("\\n");
        } else if (character == QLatin1Char('\r')) {
            result += QLatin1String("\\r");
        } else if (character.category() == QChar::Other_Control || character == QChar::LineSeparator
                   || character == QChar::ParagraphSeparator) {
            result += QLatin1String("\\u")
                + QString::number(character.unicode(), 16).rightJustified(4, QLatin1Char('0'));
        } else {
            result += character;
        }
    }
    return result;
}

} // namespace core::log
