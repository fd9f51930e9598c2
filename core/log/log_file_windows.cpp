#include "core/log/log_file.h"

#include <windows.h>
#include <io.h>

#include <QFile>

namespace core::log {

namespace {

constexpr DWORD readAndWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;

// The file itself, not what a link in its place leads to.
HANDLE openFile(const QString& path, DWORD access, DWORD sharing, DWORD disposition)
{
    return CreateFileW(path.toStdWString().c_str(), access, sharing, nullptr, disposition,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

// Owns the handle; -1 for one that is not valid.
int descriptorOf(HANDLE handle)
{
    if (handle == INVALID_HANDLE_VALUE) {
        return -1;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), 0);
    if (descriptor < 0) {
        CloseHandle(handle);
    }
    return descriptor;
}

bool isPlainFile(HANDLE handle)
{
    BY_HANDLE_FILE_INFORMATION information {};
    return GetFileType(handle) == FILE_TYPE_DISK
        && GetFileInformationByHandle(handle, &information) != 0
        && (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0
        && information.nNumberOfLinks == 1;
}

} // namespace

LogFile::LogFile(const QString& path)
    : m_path(path)
{
    const HANDLE handle = openFile(path, GENERIC_WRITE, readAndWrite, OPEN_ALWAYS);
    const auto error = static_cast<int>(GetLastError());
    m_descriptor = descriptorOf(handle);
    if (m_descriptor < 0) {
        m_errorText = QStringLiteral("Failed opening file %1 for writing: %2")
                          .arg(path, qt_error_string(error));
        return;
    }
    m_usable = isPlainFile(handle);
    if (!m_usable) {
        m_errorText = QStringLiteral("%1 is not a plain file").arg(path);
    }
}

LogFile::~LogFile()
{
    if (m_descriptor >= 0) {
        _close(m_descriptor);
    }
}

// As long as the file is claimed nothing else can be put under its name.
spdlog::filename_t LogFile::sinkName() const { return m_path.toStdWString(); }

QByteArray readLogFile(const QString& path)
{
    const HANDLE handle
        = openFile(path, GENERIC_READ, readAndWrite | FILE_SHARE_DELETE, OPEN_EXISTING);
    const int descriptor = descriptorOf(handle);
    QFile file;
    if (descriptor < 0
        || !file.open(descriptor, QIODevice::ReadOnly | QIODevice::Text,
                      QFileDevice::AutoCloseHandle)
        || !isPlainFile(handle)) {
        return {};
    }
    return file.readAll();
}

} // namespace core::log
