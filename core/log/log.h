#pragma once

#include <string>

#include <QString>
#include <spdlog/spdlog.h>

// Logging: one spdlog logger, "SimpleLogger", that writes to one file.
//
// LOG_INFO, LOG_WARN and LOG_ERR take an fmt format and its arguments and may be
// used from any thread and at any time: without a logger they do nothing.
// QString arguments are written as UTF-8. Text that comes from hardware or from
// a file goes through core::log::singleLine, so that it can't forge a line.

namespace core::log {

inline constexpr char loggerName[] = "SimpleLogger";

// Creates the logger over the file, which is truncated. Does nothing when the
// logger exists already or the path is empty. When the file can't be opened, or
// is a link of another user, the reason goes to standard error, false comes
// back, and the program runs without a log.
bool initLogger(const std::wstring& path);

// Whether there is a logger.
[[nodiscard]] bool isStarted();

// Writes out what stands in the buffer. Without a logger it does nothing.
void flush();

// The text with line breaks and other control characters written as escapes.
[[nodiscard]] QString singleLine(const QString& text);

} // namespace core::log

template <> struct fmt::formatter<QString> : fmt::formatter<std::string> {
    template <typename Context> auto format(const QString& text, Context& context) const
    {
        return fmt::formatter<std::string>::format(text.toStdString(), context);
    }
};

#define BRISORA_LOG_AT(logLevel, ...)                                                              \
    do {                                                                                           \
        if (const auto brisoraLogger = spdlog::get(core::log::loggerName)) {                       \
            brisoraLogger->log(spdlog::source_loc { __FILE_NAME__, __LINE__, "" }, logLevel,       \
                               __VA_ARGS__);                                                       \
        }                                                                                          \
    } while (false)

#define LOG_INFO(...) BRISORA_LOG_AT(spdlog::level::info, __VA_ARGS__)
#define LOG_WARN(...) BRISORA_LOG_AT(spdlog::level::warn, __VA_ARGS__)
#define LOG_ERR(...) BRISORA_LOG_AT(spdlog::level::err, __VA_ARGS__)
