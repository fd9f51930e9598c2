#include "core/log/log_file.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace core::log {

namespace {

// The temporary folder belongs to everybody: neither a link nor what somebody
// else has put there is used.
bool isPlainFileOfThisUser(int descriptor)
{
    struct stat status { };
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && status.st_uid == ::geteuid() && status.st_nlink == 1;
}

} // namespace

LogFile::LogFile(const QString& path)
    : m_path(path)
{
    m_descriptor = ::open(QFile::encodeName(path).constData(),
                          O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (m_descriptor < 0) {
        m_errorText = QStringLiteral("Failed opening file %1 for writing: %2")
                          .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
    } else if (!isPlainFileOfThisUser(m_descriptor)) {
        m_errorText = QStringLiteral("%1 is not a plain file of this user").arg(path);
    } else {
        m_usable = true;
    }
}

LogFile::~LogFile()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

spdlog::filename_t LogFile::sinkName() const
{
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}

QByteArray readLogFile(const QString& path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(),
                                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    QFile file;
    if (descriptor < 0
        || !file.open(descriptor, QIODevice::ReadOnly | QIODevice::Text,
                      QFileDevice::AutoCloseHandle)
        || !isPlainFileOfThisUser(descriptor)) {
        return {};
    }
    return file.readAll();
}

} // namespace core::log
