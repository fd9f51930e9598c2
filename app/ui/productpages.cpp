#include "app/ui/productpages.h"

#include <QDesktopServices>
#include <QUrl>

#include "build_config.h"
#include "core/log/log.h"

namespace {

bool isSet(const char* address) { return *address != '\0'; }

void openPage(const QString& address)
{
    if (!QDesktopServices::openUrl(QUrl(address))) {
        LOG_WARN("No program opens {}", address);
    }
}

void open(const char* address)
{
    if (isSet(address)) {
        openPage(QLatin1String(address));
    }
}

// Tells the site which of the maker's programs sends its user.
void openWithSource(const char* address)
{
    if (isSet(address)) {
        openPage(QStringLiteral("%1?source=%2")
                     .arg(QLatin1String(address), QLatin1String("fancontrol_win")));
    }
}

} // namespace

bool ProductPages::hasHomePage() { return isSet(BuildConfig::webSite); }

bool ProductPages::hasRatingPage() { return isSet(BuildConfig::ratingPage); }

bool ProductPages::hasSocialPage() { return isSet(BuildConfig::socialPage); }

bool ProductPages::hasTranslationPage() { return isSet(BuildConfig::translationPage); }

void ProductPages::openHomePage() { openWithSource(BuildConfig::webSite); }

void ProductPages::openRatingPage() { open(BuildConfig::ratingPage); }

void ProductPages::openSocialPage() { open(BuildConfig::socialPage); }

void ProductPages::openTranslationPage() { openWithSource(BuildConfig::translationPage); }
