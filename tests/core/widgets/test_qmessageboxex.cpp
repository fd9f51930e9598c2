#include <QLabel>
#include <QtTest>

#include "core/widgets/qmessageboxex.h"
#include "tests/support/testenvironment.h"

namespace {

// Qt's own names.
QLabel* textLabel(const QMessageBox& box)
{
    return box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
}

QLabel* informativeLabel(const QMessageBox& box)
{
    return box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
}

} // namespace

class MessageBoxExTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMainTextIsBold_data();
    void theMainTextIsBold();
    void aPlainFormatStillGetsABoldText();
    void theMainTextCanStayAsItIs();
    void aBoxThatIsShownAgainIsBoldOnce();
    void aNewTextIsBoldAtTheNextShow_data();
    void aNewTextIsBoldAtTheNextShow();
    void labelsCanBeKeptFromWrapping();
    void otherwiseLabelsKeepTheirWidths();
    void aWiderLabelStaysAsWide();
    void labelWidthsCanBeLimited();
    void limitsWithoutALabelDoNothing();
};

void MessageBoxExTest::theMainTextIsBold_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* name, const char* text, const char* shown) {
        QTest::newRow(name) << QString::fromLatin1(text) << QString::fromLatin1(shown);
    };
    row("a text", "Create a new preset", "<b>Create a new preset</b>");
    row("none", "", "");
    row("place holders", "%1 of %2", "<b>%1 of %2</b>");
    row("no markup", "1 < 2 & 4 > 3", "<b>1 &lt; 2 &amp; 4 &gt; 3</b>");
    row("lines", "first\nsecond", "<b>first<br>second</b>");
    row("markup", "see <a href=\"x\">here</a>", "<b>see <a href=\"x\">here</a></b>");
}

void MessageBoxExTest::theMainTextIsBold()
{
    QFETCH(QString, text);
    QMessageBoxEx box(nullptr, true, false);
    box.setText(text);
    box.setInformativeText(QStringLiteral("more"));

    box.show();

    QTEST(textLabel(box)->text(), "shown");
    QCOMPARE(informativeLabel(box)->text(), QStringLiteral("more"));
}

void MessageBoxExTest::aPlainFormatStillGetsABoldText()
{
    QMessageBoxEx box;
    box.setTextFormat(Qt::PlainText);
    box.setText(QStringLiteral("<i>x</i>"));

    box.show();

    QCOMPARE(textLabel(box)->text(), QStringLiteral("<b>&lt;i&gt;x&lt;/i&gt;</b>"));
    QVERIFY(textLabel(box)->textFormat() != Qt::PlainText);
}

void MessageBoxExTest::theMainTextCanStayAsItIs()
{
    QMessageBoxEx box(nullptr, false, false);
    box.setText(QStringLiteral("1 < 2"));

    box.show();

    QCOMPARE(textLabel(box)->text(), QStringLiteral("1 < 2"));
}

void MessageBoxExTest::aBoxThatIsShownAgainIsBoldOnce()
{
    QMessageBoxEx box;
    box.setText(QStringLiteral("text"));
    box.show();
    box.hide();
    box.show();
    QCOMPARE(textLabel(box)->text(), QStringLiteral("<b>text</b>"));
}

void MessageBoxExTest::aNewTextIsBoldAtTheNextShow_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("another") << QStringLiteral("other") << QStringLiteral("<b>other</b>");
    QTest::newRow("none") << QString() << QString();
}

void MessageBoxExTest::aNewTextIsBoldAtTheNextShow()
{
    QFETCH(QString, text);
    QMessageBoxEx box;
    box.setText(QStringLiteral("text"));
    box.show();
    box.hide();
    box.setText(text);
    box.show();
    QTEST(textLabel(box)->text(), "shown");
}

void MessageBoxExTest::labelsCanBeKeptFromWrapping()
{
    const QString longLine = QStringLiteral("word ").repeated(60) + QStringLiteral("end");
    QMessageBoxEx box(nullptr, true, true);
    box.setText(QStringLiteral("main text"));
    box.setInformativeText(longLine + QStringLiteral("\nshort"));

    box.show();

    QFont bold = box.font();
    bold.setBold(true);
    QVERIFY(textLabel(box)->minimumWidth()
            >= QFontMetrics(bold).horizontalAdvance(QStringLiteral("main text")));
    auto* const label = informativeLabel(box);
    const int lineWidth = label->fontMetrics().horizontalAdvance(longLine);
    QVERIFY(label->minimumWidth() >= lineWidth);
    // The lines count by themselves.
    QVERIFY(label->minimumWidth()
            < lineWidth + label->fontMetrics().horizontalAdvance(QStringLiteral("short")));
    QTRY_VERIFY(label->width() >= lineWidth);
    QVERIFY(label->wordWrap()); // as Qt wants it
}

void MessageBoxExTest::otherwiseLabelsKeepTheirWidths()
{
    QMessageBoxEx box(nullptr, true, false);
    box.setText(QStringLiteral("main text"));
    box.setInformativeText(QString(90, QLatin1Char('W')));
    const int before = textLabel(box)->minimumWidth();

    box.show();

    QCOMPARE(textLabel(box)->minimumWidth(), before);
    QCOMPARE(informativeLabel(box)->minimumWidth(), 0);
}

void MessageBoxExTest::aWiderLabelStaysAsWide()
{
    QMessageBoxEx box(nullptr, true, true);
    box.setText(QStringLiteral("main text"));
    box.setTextMinimumWidth(444);

    box.show();

    QCOMPARE(textLabel(box)->minimumWidth(), 444);
}

void MessageBoxExTest::labelWidthsCanBeLimited()
{
    QMessageBoxEx box;
    box.setText(QStringLiteral("main text"));
    box.setInformativeText(QStringLiteral("more"));

    box.setTextMinimumWidth(333);
    box.setInformativeTextMaximumWidth(222);

    QCOMPARE(textLabel(box)->minimumWidth(), 333);
    QCOMPARE(informativeLabel(box)->maximumWidth(), 222);
}

void MessageBoxExTest::limitsWithoutALabelDoNothing()
{
    QMessageBoxEx box;
    box.setInformativeTextMaximumWidth(222);
    box.setInformativeText(QStringLiteral("more"));
    QVERIFY(informativeLabel(box)->maximumWidth() != 222);
}

BRISORA_TEST_MAIN(MessageBoxExTest, QApplication)

#include "test_qmessageboxex.moc"
