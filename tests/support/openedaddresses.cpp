#include "tests/support/openedaddresses.h"

#include <QDesktopServices>
#include <QStringList>

namespace {

const QStringList schemes { QStringLiteral("file"), QStringLiteral("https") };

} // namespace

OpenedAddresses::OpenedAddresses()
{
    for (const QString& scheme : schemes) {
        QDesktopServices::setUrlHandler(scheme, this, "take");
    }
}

OpenedAddresses::~OpenedAddresses()
{
    for (const QString& scheme : schemes) {
        QDesktopServices::unsetUrlHandler(scheme);
    }
}
