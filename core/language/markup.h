#pragma once

#include <QString>

// The light markup of texts as HTML: [text](address) becomes a link, **text**
// bold, a line feed a line break. Each mark ends at the first possible place, so
// that two links in one text stay two. Nothing is escaped: HTML in a text stays
// HTML.
[[nodiscard]] QString markupToHtml(const QString& text);

// The same, in place.
void convertMarkup(QString& text);
