#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include "core/widgets/qcocoabutton.h"
#include "tests/support/testenvironment.h"

class CocoaButtonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void outsideAToolBarItIsAPushButton();
    void inAToolBarItIsAToolButton();
    void aClickIsRepeated();
    void theInnerButtonShowsWhatIsSet();
    void theSizeIsTheInnerButtons();
    void aTextCanBeginAtTheLeft();
    void aPushButtonOpensItsMenu();
    void aToolButtonTakesNoMenu();
    void theKeyboardReachesTheInnerButton();
};

void CocoaButtonTest::outsideAToolBarItIsAPushButton()
{
    QWidget window;
    const QCocoaButton plain;
    const QCocoaButton child(&window);
    const QCocoaButtonActionMenu menuButton(&window);
    QVERIFY(plain.findChild<QPushButton*>() != nullptr);
    QVERIFY(child.findChild<QPushButton*>() != nullptr);
    QVERIFY(menuButton.findChild<QPushButton*>() != nullptr);
}

void CocoaButtonTest::inAToolBarItIsAToolButton()
{
    QToolBar bar;
    const QCocoaButton button(&bar);
    QVERIFY(button.findChild<QPushButton*>() == nullptr);
    QVERIFY(button.findChild<QToolButton*>() != nullptr);
}

void CocoaButtonTest::aClickIsRepeated()
{
    QCocoaButton button;
    auto* const inner = button.findChild<QPushButton*>();
    const QSignalSpy spy(&button, &QCocoaButton::clicked);

    inner->click();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toBool(), false);

    inner->setCheckable(true);
    inner->click();
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy[1][0].toBool(), true);
    // Both forms can be connected to.
    QVERIFY(button.metaObject()->indexOfSignal("clicked()") >= 0);
    QVERIFY(button.metaObject()->indexOfSignal("clicked(bool)") >= 0);
}

void CocoaButtonTest::theInnerButtonShowsWhatIsSet()
{
    QCocoaButton button;
    auto* const inner = button.findChild<QPushButton*>();
    QPixmap pixmap(8, 8);
    pixmap.fill(Qt::red);
    const QIcon icon(pixmap);

    button.setText(QStringLiteral("About..."));
    button.setIcon(icon);
    button.setIconPosition(QCocoaButton::IconAboveText);
    button.setToolTip(QStringLiteral("tip"));
    button.setAccessibleName(QStringLiteral("name"));
    inner->setCheckable(true);
    button.setChecked(true);

    QCOMPARE(inner->text(), QStringLiteral("About..."));
    QCOMPARE(button.text(), inner->text());
    QCOMPARE(inner->icon().cacheKey(), icon.cacheKey());
    QCOMPARE(inner->toolTip(), QStringLiteral("tip"));
    QCOMPARE(inner->accessibleName(), QStringLiteral("name"));
    QVERIFY(inner->isChecked());
    button.setChecked(false);
    QVERIFY(!inner->isChecked());
}

void CocoaButtonTest::theSizeIsTheInnerButtons()
{
    QCocoaButton button;
    auto* const inner = button.findChild<QPushButton*>();
    const QSize before = button.sizeHint();
    QCOMPARE(before, inner->sizeHint());

    button.setText(QString(50, QLatin1Char('W')));
    QCOMPARE(button.sizeHint(), inner->sizeHint());
    QVERIFY(button.sizeHint().width() > before.width());
    QCOMPARE(button.sizePolicy(), inner->sizePolicy());

    button.resize(button.sizeHint());
    button.show();
    QCOMPARE(inner->geometry(), button.rect());
}

void CocoaButtonTest::aTextCanBeginAtTheLeft()
{
    QCocoaButton button;
    auto* const inner = button.findChild<QPushButton*>();
    QCOMPARE(inner->styleSheet(), QString());

    button.setTextAlignment(static_cast<QCocoaButton::TextAlignment>(1));
    QCOMPARE(inner->styleSheet(), QStringLiteral("QPushButton { text-align: left; }"));

    button.setTextAlignment(QCocoaButton::StyleAlignment);
    QCOMPARE(inner->styleSheet(), QString());
}

void CocoaButtonTest::aPushButtonOpensItsMenu()
{
    QMenu menu;
    QCocoaButtonActionMenu button;
    const QSignalSpy clicked(&button, &QCocoaButton::clicked);
    int opened = 0;
    connect(&menu, &QMenu::aboutToShow, &menu, [&menu, &opened] {
        ++opened;
        QTimer::singleShot(0, &menu, &QMenu::close);
    });
    menu.addAction(QStringLiteral("entry"));

    button.setMenu(&menu);
    button.show();
    QTest::mouseClick(button.findChild<QPushButton*>(), Qt::LeftButton);

    QCOMPARE(opened, 1);
    QVERIFY(menu.parent() == nullptr);
    QCOMPARE(clicked.count(), 0);
}

void CocoaButtonTest::aToolButtonTakesNoMenu()
{
    QToolBar bar;
    QMenu menu;
    QCocoaButtonActionMenu button(&bar);
    const QSignalSpy clicked(&button, &QCocoaButton::clicked);

    button.setMenu(&menu);

    auto* const inner = button.findChild<QToolButton*>();
    QVERIFY(inner->menu() == nullptr);
    inner->click();
    QCOMPARE(clicked.count(), 1);
}

void CocoaButtonTest::theKeyboardReachesTheInnerButton()
{
    QWidget window;
    auto* const row = new QHBoxLayout(&window);
    auto* const first = new QCocoaButton(&window);
    auto* const second = new QCocoaButton(&window);
    row->addWidget(first);
    row->addWidget(second);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QSignalSpy clicked(second, &QCocoaButton::clicked);

    first->setFocus();
    QVERIFY(first->findChild<QPushButton*>()->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(second->findChild<QPushButton*>()->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);

    QCOMPARE(clicked.count(), 1);
}

BRISORA_TEST_MAIN(CocoaButtonTest, QApplication)

#include "test_qcocoabutton.moc"
