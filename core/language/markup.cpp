#include "core/language/markup.h"

namespace {

// The shortest match of "[text](address)" from each bracket on, found by
// searching instead of by a regular expression: texts also come from the
// network, and this takes linear time whatever they hold.
void convertLinks(QString& text)
{
    QString result;
    int done = 0;
    for (;;) {
        // Text and address have at least one character each.
        const int open = text.indexOf(QLatin1Char('['), done);
        const int middle = open < 0 ? -1 : text.indexOf(QLatin1String("]("), open + 2);
        const int close = middle < 0 ? -1 : text.indexOf(QLatin1Char(')'), middle + 3);
        if (close < 0) {
            break;
        }
        result += text.midRef(done, open - done) + QLatin1String("<a href=\"")
            + text.midRef(middle + 2, close - middle - 2) + QLatin1String("\">")
            + text.midRef(open + 1, middle - open - 1) + QLatin1String("</a>");
        done = close + 1;
    }
    text = result + text.midRef(done);
}

void convertBold(QString& text)
{
    const QLatin1String mark("**");
    QString result;
    int done = 0;
    for (;;) {
        const int open = text.indexOf(mark, done);
        const int close = open < 0 ? -1 : text.indexOf(mark, open + 3);
        if (close < 0) {
            break;
        }
        result += text.midRef(done, open - done) + QLatin1String("<b>")
            + text.midRef(open + 2, close - open - 2) + QLatin1String("</b>");
        done = close + 2;
    }
    text = result + text.midRef(done);
}

} // namespace

QString markupToHtml(const QString& text)
{
    QString result = text;
    convertMarkup(result);
    return result;
}

void convertMarkup(QString& text)
{
    // The stand-in for line feeds is part of the markup: a text may write it.
    const QLatin1String newLine("%newline%");
    text.replace(QLatin1Char('\n'), newLine);
    convertLinks(text);
    convertBold(text);
    text.replace(newLine, QLatin1String("<br>"));
}
