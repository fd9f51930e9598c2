#pragma once

#include <QString>

// The maker's pages on the web, opened in the user's browser. An address that a
// build leaves empty opens nothing; what would open it is left out or disabled.
namespace ProductPages {

[[nodiscard]] bool hasHomePage();
[[nodiscard]] bool hasRatingPage();
[[nodiscard]] bool hasSocialPage();
[[nodiscard]] bool hasTranslationPage();

void openHomePage();
void openRatingPage();
void openSocialPage();
void openTranslationPage();

} // namespace ProductPages
