#include <QHBoxLayout>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>

#include "core/widgets/qcocoasegmentedbutton.h"
#include "tests/support/testenvironment.h"

namespace {

QList<QToolButton*> segmentsOf(const QCocoaSegmentedButton& row)
{
    return row.findChildren<QToolButton*>();
}

} // namespace

class CocoaSegmentedButtonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void segmentsLieSideBySide();
    void segmentsCanBeReplaced();
    void aClickTellsItsSegment();
    void theSelectionFollowsItsKind_data();
    void theSelectionFollowsItsKind();
    void theKindHoldsForLaterSegments();
    void theStyleHoldsForAllSegments();
    void aSegmentThatIsNotThereIsIgnored_data();
    void aSegmentThatIsNotThereIsIgnored();
    void aSegmentHasItsWidthAndToolTip();
    void aTextThatFitsIsNotChanged();
    void aTextThatDoesNotFitIsCut_data();
    void aTextThatDoesNotFitIsCut();
    void noCharacterIsCutInHalf();
    void aTextIsShownToTheLetter_data();
    void aTextIsShownToTheLetter();
    void aTextFollowsTheFont();
    void segmentsAreReachedByTab();
};

void CocoaSegmentedButtonTest::segmentsLieSideBySide()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(3);
    row.resize(row.sizeHint());
    row.show();

    const QList<QToolButton*> segments = segmentsOf(row);
    QCOMPARE(row.segmentCount(), 3);
    QCOMPARE(segments.size(), 3);
    QCOMPARE(segments[0]->x(), 0);
    QCOMPARE(segments[1]->x(), segments[0]->geometry().right() + 1);
    QCOMPARE(segments[2]->x(), segments[1]->geometry().right() + 1);
    QCOMPARE(segments[2]->geometry().right(), row.rect().right());
    QCOMPARE(segments[0]->height(), row.height());
}

void CocoaSegmentedButtonTest::segmentsCanBeReplaced()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(3);
    row.setSegmentText(0, QStringLiteral("a"));

    row.setSegmentCount(2);
    QCOMPARE(row.segmentCount(), 2);
    QCOMPARE(segmentsOf(row).size(), 2);
    QCOMPARE(row.segmentText(0), QString());

    row.setSegmentCount(0);
    QCOMPARE(segmentsOf(row).size(), 0);
}

void CocoaSegmentedButtonTest::aClickTellsItsSegment()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(2);
    row.setSelectionKind(QCocoaSegmentedButton::SelectAny);
    row.show();
    const QSignalSpy spy(&row, &QCocoaSegmentedButton::clicked);

    QTest::mouseClick(segmentsOf(row)[1], Qt::LeftButton);
    QTest::mouseClick(segmentsOf(row)[1], Qt::LeftButton);
    QTest::mouseClick(segmentsOf(row)[0], Qt::LeftButton);

    QCOMPARE(spy.count(), 3);
    QCOMPARE(spy[0], QVariantList({ 1, true }));
    QCOMPARE(spy[1], QVariantList({ 1, false }));
    QCOMPARE(spy[2], QVariantList({ 0, true }));
    QVERIFY(row.metaObject()->indexOfSignal("clicked(int)") >= 0);
    QVERIFY(row.metaObject()->indexOfSignal("clicked(int,bool)") >= 0);
}

void CocoaSegmentedButtonTest::theSelectionFollowsItsKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("firstStays"); // once the second is clicked
    QTest::addColumn<bool>("second");
    QTest::newRow("one at most") << 0 << false << true;
    QTest::newRow("each by itself") << 1 << true << true;
    QTest::newRow("none") << 2 << false << false;
}

void CocoaSegmentedButtonTest::theSelectionFollowsItsKind()
{
    QFETCH(int, kind);
    QCocoaSegmentedButton row;
    row.setSegmentCount(2);
    row.setSelectionKind(static_cast<QCocoaSegmentedButton::SelectionKind>(kind));

    segmentsOf(row)[0]->click();
    segmentsOf(row)[1]->click();
    QTEST(row.isSegmentChecked(0), "firstStays");
    QTEST(row.isSegmentChecked(1), "second");

    row.setSegmentChecked(0, true);
    QCOMPARE(row.isSegmentChecked(0), kind != 2);
    QCOMPARE(row.isSegmentChecked(1), kind == 1);
    row.setSegmentChecked(0, false);
    // Of those of which one is selected the last one can't be taken back.
    QCOMPARE(row.isSegmentChecked(0), kind == 0);
}

void CocoaSegmentedButtonTest::theKindHoldsForLaterSegments()
{
    QCocoaSegmentedButton row;
    row.setSelectionKind(QCocoaSegmentedButton::SelectOne);
    row.setSegmentCount(2);

    row.setSegmentChecked(0, true);
    row.setSegmentChecked(1, true);

    QVERIFY(!row.isSegmentChecked(0));
    QVERIFY(row.isSegmentChecked(1));
}

void CocoaSegmentedButtonTest::theStyleHoldsForAllSegments()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(1);
    QVERIFY(!segmentsOf(row)[0]->autoRaise());

    row.setSegmentStyle(QCocoaSegmentedButton::Flat);
    QVERIFY(segmentsOf(row)[0]->autoRaise());

    row.setSegmentCount(2);
    QVERIFY(segmentsOf(row)[1]->autoRaise());
}

void CocoaSegmentedButtonTest::aSegmentThatIsNotThereIsIgnored_data()
{
    QTest::addColumn<int>("segment");
    QTest::newRow("below") << -1;
    QTest::newRow("above") << 2;
}

void CocoaSegmentedButtonTest::aSegmentThatIsNotThereIsIgnored()
{
    QFETCH(int, segment);
    QCocoaSegmentedButton row;
    row.setSegmentCount(2);
    row.setSelectionKind(QCocoaSegmentedButton::SelectAny);

    row.setSegmentChecked(segment, true);
    row.setSegmentWidth(segment, 50);
    row.setSegmentToolTip(segment, QStringLiteral("tip"));
    row.setSegmentText(segment, QStringLiteral("text"));

    QVERIFY(!row.isSegmentChecked(segment));
    QCOMPARE(row.segmentText(segment), QString());
    for (const auto* const button : segmentsOf(row)) {
        QVERIFY(!button->isChecked());
        QCOMPARE(button->text(), QString());
        QCOMPARE(button->toolTip(), QString());
    }
}

void CocoaSegmentedButtonTest::aSegmentHasItsWidthAndToolTip()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(2);
    row.setSegmentWidth(0, 77);
    row.setSegmentWidth(1, -5);
    row.setSegmentToolTip(0, QStringLiteral("Specify a custom controlling mode"));

    QCOMPARE(segmentsOf(row)[0]->width(), 77);
    QCOMPARE(segmentsOf(row)[0]->sizeHint().expandedTo(QSize(77, 0)).width(), 77);
    QCOMPARE(segmentsOf(row)[1]->width(), 0);
    QCOMPARE(segmentsOf(row)[0]->toolTip(), QStringLiteral("Specify a custom controlling mode"));
    row.resize(500, 30);
    row.show();
    QCOMPARE(segmentsOf(row)[0]->width(), 77);
}

void CocoaSegmentedButtonTest::aTextThatFitsIsNotChanged()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(1);
    const QString text = QStringLiteral("Based on CPU core 1");
    const int width = segmentsOf(row)[0]->fontMetrics().horizontalAdvance(text);

    row.setSegmentWidth(0, width);
    row.setSegmentText(0, text);
    QCOMPARE(segmentsOf(row)[0]->text(), text);
    QCOMPARE(row.segmentText(0), text);

    row.setSegmentWidth(0, width - 1);
    row.setSegmentText(0, text);
    QVERIFY(row.segmentText(0) != text);
}

void CocoaSegmentedButtonTest::aTextThatDoesNotFitIsCut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("room"); // in letters "W"
    QTest::newRow("long") << QString(80, QLatin1Char('W')) << 10;
    QTest::newRow("very long") << QString(3000, QLatin1Char('W')) << 20;
    QTest::newRow("short") << QStringLiteral("WW") << 1;
    QTest::newRow("one letter") << QStringLiteral("W") << 0;
    QTest::newRow("room for three") << QStringLiteral("WWWW") << 3;
    QTest::newRow("no room") << QStringLiteral("WWWWWW") << 0;
}

void CocoaSegmentedButtonTest::aTextThatDoesNotFitIsCut()
{
    QFETCH(QString, text);
    QFETCH(int, room);
    QCocoaSegmentedButton row;
    row.setSegmentCount(1);
    auto* const segment = segmentsOf(row)[0];
    row.setSegmentWidth(0,
                        segment->fontMetrics().horizontalAdvance(QString(room, QLatin1Char('W'))));

    row.setSegmentText(0, text);

    // The last three letters that have room make place.
    QCOMPARE(segment->text(), QString(qMax(room - 3, 0), QLatin1Char('W')) + QStringLiteral("..."));
    QCOMPARE(segment->accessibleName(), text);
}

void CocoaSegmentedButtonTest::noCharacterIsCutInHalf()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(1);
    const QString text = QString::fromUtf8("a🌀🌀🌀🌀🌀🌀🌀🌀");
    const int whole = segmentsOf(row)[0]->fontMetrics().horizontalAdvance(text);
    for (int width = 0; width < whole; ++width) {
        row.setSegmentWidth(0, width);
        row.setSegmentText(0, text);
        const QString shown = row.segmentText(0);
        QVERIFY(shown.endsWith(QLatin1String("...")));
        // Half a character doesn't survive the way there and back.
        QCOMPARE(QString::fromUtf8(shown.toUtf8()), shown);
    }
}

void CocoaSegmentedButtonTest::aTextIsShownToTheLetter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("ampersand") << QStringLiteral("A & B") << QStringLiteral("A && B");
    QTest::newRow("place holder") << QStringLiteral("%1 %2") << QStringLiteral("%1 %2");
    QTest::newRow("none") << QString() << QString();
}

void CocoaSegmentedButtonTest::aTextIsShownToTheLetter()
{
    QFETCH(QString, text);
    QCocoaSegmentedButton row;
    row.setSegmentCount(1);
    row.setSegmentWidth(0, 200);

    row.setSegmentText(0, text);

    QTEST(segmentsOf(row)[0]->text(), "shown");
    QCOMPARE(row.segmentText(0), text);
    QCOMPARE(segmentsOf(row)[0]->accessibleName(), text);
}

void CocoaSegmentedButtonTest::aTextFollowsTheFont()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(1);
    const QString text = QStringLiteral("Based on CPU");
    row.setSegmentWidth(0, segmentsOf(row)[0]->fontMetrics().horizontalAdvance(text) + 5);
    row.setSegmentText(0, text);
    QCOMPARE(row.segmentText(0), text);

    QFont font = row.font();
    font.setPointSize(font.pointSize() * 2);
    row.setFont(font);
    row.setSegmentText(0, text);

    QVERIFY(row.segmentText(0).endsWith(QLatin1String("...")));
}

void CocoaSegmentedButtonTest::segmentsAreReachedByTab()
{
    QCocoaSegmentedButton row;
    row.setSegmentCount(2);
    row.show();
    row.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&row));
    const QSignalSpy spy(&row, &QCocoaSegmentedButton::clicked);

    segmentsOf(row)[0]->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(segmentsOf(row)[1]->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);

    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toInt(), 1);
}

BRISORA_TEST_MAIN(CocoaSegmentedButtonTest, QApplication)

#include "test_qcocoasegmentedbutton.moc"
