#include "core/widgets/revealfile.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include "core/log/log.h"

void revealFile(const QString& path, bool fallback)
{
    const QFileInfo file(path);
    const bool exists = file.exists();
    if (exists && showInFileManager(path)) {
        return;
    }
    if ((exists || fallback)
        && !QDesktopServices::openUrl(QUrl::fromLocalFile(file.absolutePath()))) {
        LOG_WARN("No program opens the folder {}", core::log::singleLine(file.absolutePath()));
    }
}
