#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <QtTest>

#include "core/widgets/widgethelpers.h"
#include "tests/support/testenvironment.h"

class WidgetHelpersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pixelsFollowTheDpi_data();
    void pixelsFollowTheDpi();
    void pixelsFollowTheDesktop();
    void aButtonIsPadded_data();
    void aButtonIsPadded();
    void aWidgetIsCentred_data();
    void aWidgetIsCentred();
};

void WidgetHelpersTest::pixelsFollowTheDpi_data()
{
    QTest::addColumn<int>("pixels");
    QTest::addColumn<double>("dpi");
    QTest::addColumn<int>("result");
    const auto row = [](const char* name, int pixels, double dpi, int result) {
        QTest::newRow(name) << pixels << dpi << result;
    };
    row("as at 96", 32, 96.0, 32);
    row("one and a half", 32, 144.0, 48);
    row("double", 36, 192.0, 72);
    row("cut", 7, 144.0, 10);
    row("cut just below", 31, 95.0, 30);
    row("cut toward zero", -7, 144.0, -10);
    row("nothing", 0, 144.0, 0);
    row("a little below 96", 32, 95.99, 32);
    row("a little above 96", 3200, 96.25, 3200);
}

void WidgetHelpersTest::pixelsFollowTheDpi()
{
    QFETCH(int, pixels);
    QFETCH(double, dpi);
    QTEST(scaledAt(pixels, dpi), "result");
}

void WidgetHelpersTest::pixelsFollowTheDesktop()
{
    QCOMPARE(QGuiApplication::primaryScreen()->logicalDotsPerInchX(), 144.0);
    QCOMPARE(scaled(7), 10);
    QCOMPARE(scaled(32), 48);
}

void WidgetHelpersTest::aButtonIsPadded_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("padded");
    QTest::newRow("a text") << QStringLiteral("About...") << QStringLiteral(" About... ");
    QTest::newRow("none") << QString() << QStringLiteral("  ");
    QTest::newRow("a place holder") << QStringLiteral("%1 & %2") << QStringLiteral(" %1 & %2 ");
}

void WidgetHelpersTest::aButtonIsPadded()
{
    QFETCH(QString, text);
    QPushButton push(text);
    QToolButton tool;
    tool.setText(text);

    padButton(&push);
    padButton(&tool);

    QTEST(push.text(), "padded");
    QTEST(tool.text(), "padded");
}

void WidgetHelpersTest::aWidgetIsCentred_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("shown");
    QTest::newRow("hidden") << QSize(300, 200) << false;
    QTest::newRow("shown") << QSize(300, 200) << true;
    QTest::newRow("odd size") << QSize(301, 199) << true;
    QTest::newRow("larger than the screen") << QSize(3000, 2000) << false;
}

void WidgetHelpersTest::aWidgetIsCentred()
{
    QFETCH(QSize, size);
    QFETCH(bool, shown);
    QWidget widget;
    widget.resize(size);
    widget.move(10, 10);
    widget.setVisible(shown);

    centerOnScreen(&widget);

    QCOMPARE(widget.frameGeometry().center(),
             QGuiApplication::primaryScreen()->geometry().center());
    QCOMPARE(widget.size(), size);
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    qputenv("QT_FONT_DPI", "144");
    QApplication application(argc, argv);
    WidgetHelpersTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_widgethelpers.moc"
