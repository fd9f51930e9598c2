#pragma once

#include <exception>
#include <string>
#include <utility>

namespace WindowsTasks {

// A failure of the system's task scheduler; what() is UTF-8.
class TaskException : public std::exception {
public:
    explicit TaskException(std::string text)
        : m_text(std::move(text))
    {
    }

    [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

private:
    const std::string m_text;
};

} // namespace WindowsTasks
