#include "core/application/qapplicationex.h"

#include <set>
#include <utility>

#include <QDir>

#include "core/application/applicationlook.h"
#include "core/language/languagestrings.h"
#include "core/settings/qsettingscache.h"
#include "core/system/darkmode.h"
#include "core/system/qsystemnotification.h"

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
    if (testKitAttribute(FollowDarkModeAtStart)) {
        m_look = std::make_unique<ApplicationLook>(*this);
        if (testKitAttribute(KeepFollowingDarkMode)) {
            m_notification = std::make_unique<QSystemNotification>();
            connect(m_notification.get(), &QSystemNotification::darkModeChanged, this,
                    [this] { m_look->apply(isDarkModeEnabled()); });
        }
        // Last, so that no change slips in before it is followed.
        m_look->apply(isDarkModeEnabled());
    }
}

QApplicationEx::~QApplicationEx()
{
    m_notification.reset();
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

void QApplicationEx::loadLanguage(const QString& name)
{
    m_language->load(name);
    setLayoutDirection(LanguageStrings::isRightToLeft(m_language->getLanguageName())
                           ? Qt::RightToLeft
                           : Qt::LeftToRight);
}
