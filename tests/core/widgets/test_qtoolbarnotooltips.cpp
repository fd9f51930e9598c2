#include <QAction>
#include <QHelpEvent>
#include <QToolButton>
#include <QToolTip>
#include <QtTest>

#include "core/widgets/qcocoabutton.h"
#include "core/widgets/qtoolbarnotooltips.h"
#include "tests/core/widgets/eventwitness.h"
#include "tests/support/testenvironment.h"

namespace {

void sendTip(QWidget* widget)
{
    QHelpEvent tip(QEvent::ToolTip, widget->rect().center(), QPoint());
    QCoreApplication::sendEvent(widget, &tip);
}

bool isTipSeen(EventWitness* witness)
{
    sendTip(witness);
    return witness->seen.contains(QEvent::ToolTip);
}

} // namespace

class ToolBarNoTooltipsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QToolTip::hideText(); }

    void aPlainBarShowsTips();
    void noTipReachesAButton();
    void noTipReachesAWidgetOfTheBar_data();
    void noTipReachesAWidgetOfTheBar();
    void otherEventsPass();
    void aWidgetOutsideKeepsItsTips();
};

void ToolBarNoTooltipsTest::aPlainBarShowsTips()
{
    QToolBar bar;
    auto* const action = bar.addAction(QStringLiteral("General"));
    bar.show();
    sendTip(bar.widgetForAction(action));
    QCOMPARE(QToolTip::text(), QStringLiteral("General"));
}

void ToolBarNoTooltipsTest::noTipReachesAButton()
{
    QToolBarNoTooltips bar;
    auto* const action = bar.addAction(QStringLiteral("General"));
    auto* const inner = new QCocoaButton(&bar);
    inner->setToolTip(QStringLiteral("inner"));
    bar.addWidget(inner);
    bar.show();

    sendTip(bar.widgetForAction(action));
    QCOMPARE(QToolTip::text(), QString());
    sendTip(inner->findChild<QToolButton*>());
    QCOMPARE(QToolTip::text(), QString());
}

void ToolBarNoTooltipsTest::noTipReachesAWidgetOfTheBar_data()
{
    QTest::addColumn<bool>("deep");
    QTest::addColumn<bool>("builtBefore");
    QTest::newRow("in the bar") << false << false;
    QTest::newRow("in the bar, built before") << false << true;
    QTest::newRow("deeper") << true << false;
    QTest::newRow("deeper, built before") << true << true;
}

void ToolBarNoTooltipsTest::noTipReachesAWidgetOfTheBar()
{
    QFETCH(bool, deep);
    QFETCH(bool, builtBefore);
    QToolBarNoTooltips bar;
    auto* const outer = new EventWitness;
    const auto addOuter = [&] { bar.addWidget(outer); };
    if (!builtBefore) {
        addOuter();
    }
    auto* const middle = new QWidget(outer);
    auto* const inner = new EventWitness(middle);
    if (builtBefore) {
        addOuter();
    }

    QVERIFY(!isTipSeen(deep ? inner : outer));
}

void ToolBarNoTooltipsTest::otherEventsPass()
{
    QToolBarNoTooltips bar;
    auto* const witness = new EventWitness(&bar);
    bar.addWidget(witness);
    witness->seen.clear();

    QEvent what(QEvent::WhatsThis);
    QCoreApplication::sendEvent(witness, &what);
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(witness, &enter);

    QCOMPARE(witness->seen, QVector<QEvent::Type>({ QEvent::WhatsThis, QEvent::Enter }));
}

void ToolBarNoTooltipsTest::aWidgetOutsideKeepsItsTips()
{
    QWidget window;
    auto* const witness = new EventWitness(&window);
    QToolBarNoTooltips bar(&window);
    bar.addAction(QStringLiteral("General"));

    QVERIFY(isTipSeen(witness));
}

BRISORA_TEST_MAIN(ToolBarNoTooltipsTest, QApplication)

#include "test_qtoolbarnotooltips.moc"
