#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include "core/widgets/qwidgethider.h"
#include "tests/core/widgets/eventwitness.h"
#include "tests/support/testenvironment.h"

namespace {

// Shows and hides itself in its own way.
class Custom : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    Q_INVOKABLE void setVisibleCustom(bool visible) { calls.append(visible); }

    QVector<bool> calls;
};

// A button between two others, with the keyboard.
class Row {
public:
    Row()
        : before(new QPushButton(QStringLiteral("before"), &window))
        , button(new QPushButton(QStringLiteral("button"), &window))
        , after(new QPushButton(QStringLiteral("after"), &window))
    {
        auto* const row = new QHBoxLayout(&window);
        for (auto* const each : { before, button, after }) {
            row->addWidget(each);
        }
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window)) {
            qFatal("The window gets no keyboard");
        }
    }

    // Whether anything can be seen in the button's place.
    [[nodiscard]] bool isButtonSeen()
    {
        const QImage image = window.grab(button->geometry()).toImage();
        const QRgb background = window.palette().color(QPalette::Window).rgb();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) != background) {
                    return true;
                }
            }
        }
        return false;
    }

    QWidget window;
    QPushButton* const before;
    QPushButton* const button;
    QPushButton* const after;
};

} // namespace

class WidgetHiderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aHiddenWidgetKeepsItsPlace();
    void aHiddenWidgetIsNotSeen();
    void theChangeIsPaintedAtOnce();
    void aHiddenWidgetDoesNotReact();
    void aHiddenWidgetLosesTheFocus();
    void aShownWidgetReactsAgain();
    void hidingTwiceIsUndoneByShowingOnce();
    void showingWhatIsShownChangesLittle();
    void whatTakesNoFocusDoesNotGetIt_data();
    void whatTakesNoFocusDoesNotGetIt();
    void widgetsInsideAreHiddenToo();
    void theHiderSwallowsWhatAUserDoes_data();
    void theHiderSwallowsWhatAUserDoes();
    void aWidgetMayHideItselfInItsOwnWay();
    void aPropertyWithoutTheMethodIsNoOwnWay();
    void aMethodWithoutThePropertyIsNoOwnWay();
};

void WidgetHiderTest::aHiddenWidgetKeepsItsPlace()
{
    Row row;
    const QRect places[]
        = { row.before->geometry(), row.button->geometry(), row.after->geometry() };

    setWidgetVisible(row.button, false);
    row.window.layout()->activate();

    QVERIFY(row.button->isVisible());
    QCOMPARE(row.before->geometry(), places[0]);
    QCOMPARE(row.button->geometry(), places[1]);
    QCOMPARE(row.after->geometry(), places[2]);
}

void WidgetHiderTest::aHiddenWidgetIsNotSeen()
{
    Row row;
    QVERIFY(row.isButtonSeen());
    setWidgetVisible(row.button, false);
    QVERIFY(!row.isButtonSeen());
    setWidgetVisible(row.button, true);
    QVERIFY(row.isButtonSeen());
}

void WidgetHiderTest::theChangeIsPaintedAtOnce()
{
    EventWitness window;
    auto* const child = new EventWitness(&window);
    window.show();
    QTRY_VERIFY(child->seen.contains(QEvent::Paint));
    QCoreApplication::processEvents();

    // What lies below takes the place of the hidden one.
    window.seen.clear();
    setWidgetVisible(child, false);
    QTRY_VERIFY(window.seen.contains(QEvent::Paint));

    child->seen.clear();
    setWidgetVisible(child, true);
    QTRY_VERIFY(child->seen.contains(QEvent::Paint));
}

void WidgetHiderTest::aHiddenWidgetDoesNotReact()
{
    Row row;
    const QSignalSpy clicked(row.button, &QPushButton::clicked);
    const QSignalSpy neighbour(row.after, &QPushButton::clicked);
    setWidgetVisible(row.button, false);

    QTest::mouseClick(row.button, Qt::LeftButton);
    QTest::keyClick(row.button, Qt::Key_Space);
    QTest::mouseClick(row.after, Qt::LeftButton);

    QCOMPARE(clicked.count(), 0);
    QCOMPARE(neighbour.count(), 1);
}

void WidgetHiderTest::aHiddenWidgetLosesTheFocus()
{
    Row row;
    row.button->setFocus();
    QVERIFY(row.button->hasFocus());

    setWidgetVisible(row.button, false);
    QVERIFY(!row.button->hasFocus());
    QCOMPARE(row.button->focusPolicy(), Qt::NoFocus);

    // Tab walks past it.
    row.before->setFocus();
    QTest::keyClick(row.before, Qt::Key_Tab);
    QVERIFY(row.after->hasFocus());
}

void WidgetHiderTest::aShownWidgetReactsAgain()
{
    Row row;
    const QSignalSpy clicked(row.button, &QPushButton::clicked);
    setWidgetVisible(row.button, false);

    setWidgetVisible(row.button, true);

    QTest::mouseClick(row.button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(row.button->focusPolicy(), Qt::StrongFocus);
    row.before->setFocus();
    QTest::keyClick(row.before, Qt::Key_Tab);
    QVERIFY(row.button->hasFocus());
}

void WidgetHiderTest::hidingTwiceIsUndoneByShowingOnce()
{
    Row row;
    setWidgetVisible(row.button, false);
    setWidgetVisible(row.button, false);
    setWidgetVisible(row.button, true);
    QVERIFY(row.isButtonSeen());
    QCOMPARE(row.button->focusPolicy(), Qt::StrongFocus);
}

void WidgetHiderTest::showingWhatIsShownChangesLittle()
{
    Row row;
    row.button->setFocusPolicy(Qt::TabFocus);
    row.button->setFocus();
    setWidgetVisible(row.button, true);
    QVERIFY(row.isButtonSeen());
    QVERIFY(row.button->hasFocus());
    QCOMPARE(row.button->focusPolicy(), Qt::StrongFocus);
}

void WidgetHiderTest::whatTakesNoFocusDoesNotGetIt_data()
{
    QTest::addColumn<bool>("tookItOnce");
    QTest::newRow("never") << false;
    QTest::newRow("no more") << true;
}

void WidgetHiderTest::whatTakesNoFocusDoesNotGetIt()
{
    QFETCH(bool, tookItOnce);
    QLabel label;
    if (tookItOnce) {
        label.setFocusPolicy(Qt::TabFocus);
        setWidgetVisible(&label, false);
        setWidgetVisible(&label, true);
        QCOMPARE(label.focusPolicy(), Qt::StrongFocus);
        label.setFocusPolicy(Qt::NoFocus);
    }

    setWidgetVisible(&label, false);
    setWidgetVisible(&label, true);

    QCOMPARE(label.focusPolicy(), Qt::NoFocus);
}

void WidgetHiderTest::widgetsInsideAreHiddenToo()
{
    QWidget window;
    auto* const outer = new QWidget(&window);
    auto* const middle = new QWidget(outer);
    auto* const edit = new QLineEdit(middle);
    auto* const witness = new EventWitness(middle);
    const auto isClicked = [witness] {
        witness->seen.clear();
        QTest::mouseClick(witness, Qt::LeftButton);
        return witness->seen.contains(QEvent::MouseButtonPress);
    };
    window.show();
    QVERIFY(isClicked());

    setWidgetVisible(outer, false);
    QVERIFY(!isClicked());
    QCOMPARE(edit->focusPolicy(), Qt::NoFocus);

    setWidgetVisible(outer, true);
    QVERIFY(isClicked());
    QCOMPARE(edit->focusPolicy(), Qt::StrongFocus);
}

void WidgetHiderTest::theHiderSwallowsWhatAUserDoes_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("swallowed");
    const auto row = [](const char* name, QEvent::Type type, bool swallowed) {
        QTest::newRow(name) << int(type) << swallowed;
    };
    row("timer", QEvent::Timer, false);
    row("press", QEvent::MouseButtonPress, true);
    row("release", QEvent::MouseButtonRelease, true);
    row("double click", QEvent::MouseButtonDblClick, true);
    row("move of the mouse", QEvent::MouseMove, true);
    row("key press", QEvent::KeyPress, true);
    row("key release", QEvent::KeyRelease, true);
    row("focus in", QEvent::FocusIn, true);
    row("focus out", QEvent::FocusOut, true);
    row("enter", QEvent::Enter, true);
    row("leave", QEvent::Leave, true);
    row("paint", QEvent::Paint, true);
    row("move", QEvent::Move, false);
    row("resize", QEvent::Resize, false);
    row("tool tip", QEvent::ToolTip, false);
}

void WidgetHiderTest::theHiderSwallowsWhatAUserDoes()
{
    QFETCH(int, type);
    QWidgetHider hider;
    QObject watched;
    QEvent event(static_cast<QEvent::Type>(type));
    QTEST(hider.eventFilter(&watched, &event), "swallowed");
}

void WidgetHiderTest::aWidgetMayHideItselfInItsOwnWay()
{
    QWidget window;
    auto* const custom = new Custom(&window);
    auto* const inside = new QLineEdit(custom);
    custom->setFocusPolicy(Qt::TabFocus);
    custom->setProperty("setVisibleCustom", true);

    setWidgetVisible(custom, false);
    QVERIFY(custom->calls.isEmpty()); // queued
    QCoreApplication::processEvents();
    QCOMPARE(custom->calls, QVector<bool>({ false }));

    setWidgetVisible(custom, true);
    QCoreApplication::processEvents();
    QCOMPARE(custom->calls, QVector<bool>({ false, true }));
    // Nothing else happens.
    QCOMPARE(custom->focusPolicy(), Qt::TabFocus);
    QCOMPARE(inside->focusPolicy(), Qt::StrongFocus);
}

void WidgetHiderTest::aPropertyWithoutTheMethodIsNoOwnWay()
{
    Row row;
    row.button->setProperty("setVisibleCustom", true);
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("No such method.*setVisibleCustom")));

    setWidgetVisible(row.button, false);

    QVERIFY(!row.isButtonSeen());
}

void WidgetHiderTest::aMethodWithoutThePropertyIsNoOwnWay()
{
    Custom custom;
    custom.setFocusPolicy(Qt::TabFocus);

    setWidgetVisible(&custom, false);
    QCoreApplication::processEvents();

    QVERIFY(custom.calls.isEmpty());
    QCOMPARE(custom.focusPolicy(), Qt::NoFocus);
}

BRISORA_TEST_MAIN(WidgetHiderTest, QApplication)

#include "test_qwidgethider.moc"
