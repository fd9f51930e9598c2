#include "core/application/qapplicationex.h"

#include <set>
#include <utility>

#include <QDir>

#include "core/language/languagestrings.h"
#include "core/settings/qsettingscache.h"

namespace {

std::set<QApplicationEx::KitAttribute>& kitAttributes()
{
    static std::set<QApplicationEx::KitAttribute> attributes;
    return attributes;
}

} // namespace

void QApplicationEx::setKitAttribute(KitAttribute attribute, bool on)
{
    if (on) {
        kitAttributes().insert(attribute);
    } else {
        kitAttributes().erase(attribute);
    }
}

bool QApplicationEx::testKitAttribute(KitAttribute attribute)
{
    return kitAttributes().count(attribute) != 0;
}

QApplicationEx::QApplicationEx(int& argc, char** argv, const QString& applicationName)
    : QApplication(argc, argv)
    , m_fileVersion(std::make_unique<core::FileVersion>(core::readFileVersion()))
{
    setApplicationName(applicationName);
    const auto& numbers = m_fileVersion->numbers;
    setApplicationVersion(
        QStringLiteral("%2.%3.%4").arg(numbers[0]).arg(numbers[1]).arg(numbers[2]));
    // Windows hide and come back; the end of the program is always explicit.
    setQuitOnLastWindowClosed(false);
}

QApplicationEx::~QApplicationEx()
{
    m_fileVersion.reset();
    LanguageStrings::setActive(nullptr);
    m_language.reset();
    m_settings.reset();
}

void QApplicationEx::setSettings(std::unique_ptr<QSettingsCache> settings)
{
    m_settings = std::move(settings);
}

void QApplicationEx::setDefaultLanguage(const QString& resourcePath)
{
    const QString folder = QDir(applicationDirPath()).filePath(QStringLiteral("languages"));
    m_language = std::make_unique<LanguageStrings>(resourcePath, folder);
    LanguageStrings::setActive(m_language.get());
}
