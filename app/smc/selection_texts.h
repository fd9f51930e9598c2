#pragma once

#include <QString>

// The texts of the messages about transports, in markup. They are fixed: no
// language file has them.
namespace SMC {

// The product's name and version.
[[nodiscard]] QString selectionTitle();
// The warning about an old driver. Without a web site (an empty address) the
// link to the article is left out.
[[nodiscard]] QString bootCampText(const QString& webSite);
// The message about software that keeps the program from the controller. Without
// a tracker the link to the issue is left out.
[[nodiscard]] QString blockingSoftwareText(const QString& product, int issue,
                                           const QString& trackerSite);

} // namespace SMC
