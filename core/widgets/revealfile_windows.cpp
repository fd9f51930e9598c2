#include "core/widgets/revealfile.h"

#include <QDir>
#include <QProcess>

bool showInFileManager(const QString& path)
{
    // The program reads its command line by rules of its own, with the quotes inside
    // of the argument.
    QProcess explorer;
    explorer.setProgram(QStringLiteral("explorer"));
    explorer.setNativeArguments(
        QStringLiteral("/select,\"%1\"").arg(QDir::toNativeSeparators(path)));
    return explorer.startDetached();
}
