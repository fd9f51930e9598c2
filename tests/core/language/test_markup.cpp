#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QRegularExpression>

#include "core/language/markup.h"
#include "tests/support/testenvironment.h"

namespace {

// The markup as regular expressions say it.
QString byExpressions(QString text)
{
    static const QRegularExpression link(QStringLiteral(R"(\[(.+?)\]\((.+?)\))"),
                                         QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression bold(QStringLiteral(R"(\*\*(.+?)\*\*)"),
                                         QRegularExpression::DotMatchesEverythingOption);
    text.replace(QLatin1Char('\n'), QLatin1String("%newline%"));
    text.replace(link, QStringLiteral(R"(<a href="\2">\1</a>)"));
    text.replace(bold, QStringLiteral(R"(<b>\1</b>)"));
    text.replace(QLatin1String("%newline%"), QLatin1String("<br>"));
    return text;
}

} // namespace

class TestMarkup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void markupBecomesHtml_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("html");
        const auto row = [](const char* name, const char* text, const char* html) {
            QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(html);
        };
        row("plain", "plain", "plain");
        row("empty", "", "");
        row("a link", "see [here](https://a.example/x)",
            "see <a href=\"https://a.example/x\">here</a>");
        row("two links stay two", "[a](b) and [c](d)",
            "<a href=\"b\">a</a> and <a href=\"d\">c</a>");
        row("bold", "a **b** c", "a <b>b</b> c");
        row("two bold words stay two", "**a** b **c**", "<b>a</b> b <b>c</b>");
        row("line feed", "a\nb\n", "a<br>b<br>");
        row("the stand-in of a line feed", "a%newline%b", "a<br>b");
        row("a link over two lines", "[a\nb](c)", "<a href=\"c\">a<br>b</a>");
        row("bold over two lines", "**a\nb**", "<b>a<br>b</b>");
        row("a bold link", "**[a](b)**", "<b><a href=\"b\">a</a></b>");
        row("a link in bold text", "[**a**](b)", "<a href=\"b\"><b>a</b></a>");
        row("a link from the first bracket", "[x] [a](b)", "<a href=\"b\">x] [a</a>");
        row("no text", "[](b)", "[](b)");
        row("no address", "[a]()", "[a]()");
        row("no end", "[a](b", "[a](b");
        row("no address at all", "[a] b", "[a] b");
        row("stars alone", "****", "****");
        row("five stars", "*****", "<b>*</b>");
        row("open bold", "**a", "**a");
        row("HTML stays", "<i>a</i> & b", "<i>a</i> & b");
        row("not Latin", "**\u0444\u044b** [\u65e5](b)",
            "<b>\u0444\u044b</b> <a href=\"b\">\u65e5</a>");
    }
    void markupBecomesHtml()
    {
        QFETCH(QString, text);
        QFETCH(QString, html);
        QCOMPARE(markupToHtml(text), html);
        convertMarkup(text);
        QCOMPARE(text, html);
    }

    void anyTextIsConvertedAsTheExpressionsSay()
    {
        QRandomGenerator generator(7);
        const QString characters = QStringLiteral("[]()**\na ");
        for (int round = 0; round < 20000; ++round) {
            QString text;
            const int length = generator.bounded(24);
            for (int i = 0; i < length; ++i) {
                text += characters.at(generator.bounded(characters.size()));
            }
            QCOMPARE(markupToHtml(text), byExpressions(text));
        }
    }

    void hostileTextTakesLinearTime()
    {
        // By expressions, these take minutes.
        QElapsedTimer timer;
        timer.start();
        for (const char* piece : { "[", "[a](", "](", "**", "*", "[**](" }) {
            const QString text = QString::fromLatin1(piece).repeated(200000);
            QVERIFY(markupToHtml(text).size() >= text.size());
        }
        QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    }
};

BRISORA_TEST_MAIN(TestMarkup, QCoreApplication)

#include "test_markup.moc"
