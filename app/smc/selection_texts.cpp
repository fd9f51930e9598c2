#include "app/smc/selection_texts.h"

#include "build_config.h"

namespace SMC {

namespace {

QString readMoreLink(const QString& site, const QString& path)
{
    if (site.isEmpty()) {
        return {};
    }
    return QStringLiteral("<a href=\"%1%2\">Read more</a>").arg(site, path);
}

} // namespace

QString selectionTitle()
{
    return QStringLiteral("%1 %2.%3.%4")
        .arg(QLatin1String(BuildConfig::productName), QString::number(BuildConfig::versionMajor),
             QString::number(BuildConfig::versionMinor),
             QString::number(BuildConfig::versionPatch));
}

QString bootCampText(const QString& webSite)
{
    return QStringLiteral("It seems that you're running Boot Camp version older than 6.0, it's "
                          "required to upgrade to 6.0 or later. Older versions can cause BSOD on "
                          "Windows 10 1903+. Press Help to use temporary alternative way to start "
                          "the app. <br><br>")
        + readMoreLink(webSite, QStringLiteral("/blog/bootcamp-and-windows-10-1903-may-update"));
}

QString blockingSoftwareText(const QString& product, int issue, const QString& trackerSite)
{
    const QString path = QStringLiteral("/orvane/brisora/issues/%1").arg(issue);
    return QStringLiteral("It seems that you have <b>%1</b> app installed which may be blocking "
                          "Brisora from running.<br><br>")
               .arg(product)
        + readMoreLink(trackerSite, path);
}

} // namespace SMC
