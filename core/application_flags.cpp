#include "core/application_flags.h"

#include <QCoreApplication>
#include <QVariant>

namespace core::flags {

bool isSet(const char* name)
{
    const auto* application = QCoreApplication::instance();
    return application != nullptr && application->property(name).isValid();
}

void set(const char* name)
{
    if (auto* application = QCoreApplication::instance()) {
        application->setProperty(name, QStringLiteral("yes"));
    }
}

void clear(const char* name)
{
    if (auto* application = QCoreApplication::instance()) {
        application->setProperty(name, QVariant());
    }
}

} // namespace core::flags
