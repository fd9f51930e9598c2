#include <QApplication>
#include <QStyle>
#include <QtTest>

#include "core/application/applicationlook.h"
#include "tests/support/testenvironment.h"

class ApplicationLookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDarkPaletteHasItsColours_data();
    void theDarkPaletteHasItsColours();
    void darkAndBack();
    void styleAndPaletteComeBack();
    void lightFromTheStartChangesNothing();
};

void ApplicationLookTest::theDarkPaletteHasItsColours_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("role");
    QTest::addColumn<QColor>("colour");
    const struct {
        const char* name;
        QPalette::ColorRole role;
        QColor active;
        QColor disabled;
    } rows[] = {
        { "Window", QPalette::Window, QColor(45, 45, 45), QColor(45, 45, 45) },
        { "AlternateBase", QPalette::AlternateBase, QColor(45, 45, 45), QColor(45, 45, 45) },
        { "Button", QPalette::Button, QColor(45, 45, 45), QColor(45, 45, 45) },
        { "Base", QPalette::Base, QColor(18, 18, 18), QColor(18, 18, 18) },
        { "WindowText", QPalette::WindowText, Qt::white, QColor(127, 127, 127) },
        { "ToolTipBase", QPalette::ToolTipBase, Qt::white, Qt::white },
        { "ToolTipText", QPalette::ToolTipText, Qt::white, Qt::white },
        { "Text", QPalette::Text, Qt::white, QColor(127, 127, 127) },
        { "ButtonText", QPalette::ButtonText, Qt::white, QColor(127, 127, 127) },
        { "BrightText", QPalette::BrightText, Qt::red, Qt::red },
        { "Link", QPalette::Link, QColor(42, 130, 218), QColor(42, 130, 218) },
        { "Highlight", QPalette::Highlight, QColor(42, 130, 218), QColor(42, 130, 218) },
        { "HighlightedText", QPalette::HighlightedText, Qt::black, QColor(127, 127, 127) },
        { "PlaceholderText", QPalette::PlaceholderText, QColor(127, 127, 127),
          QColor(127, 127, 127) },
    };
    for (const auto& row : rows) {
        QTest::newRow(row.name) << int(QPalette::Active) << int(row.role) << row.active;
        QTest::newRow(QByteArray(row.name) + " disabled")
            << int(QPalette::Disabled) << int(row.role) << row.disabled;
    }
    // The second picture of a disabled text, which makes it look engraved.
    QTest::newRow("Light disabled")
        << int(QPalette::Disabled) << int(QPalette::Light) << QColor(Qt::transparent);
}

void ApplicationLookTest::theDarkPaletteHasItsColours()
{
    QFETCH(int, group);
    QFETCH(int, role);
    const auto palette = ApplicationLook::darkPalette();
    QTEST(palette.color(static_cast<QPalette::ColorGroup>(group),
                        static_cast<QPalette::ColorRole>(role)),
          "colour");
}

void ApplicationLookTest::darkAndBack()
{
    QPalette own = QApplication::palette();
    own.setColor(QPalette::Window, Qt::yellow);
    QApplication::setPalette(own);
    const QString sheet = QStringLiteral("QLabel { color: red; }");
    qApp->setStyleSheet(sheet);
    ApplicationLook look(*qApp);

    look.apply(true);

    QCOMPARE(QApplication::palette().color(QPalette::Base), QColor(18, 18, 18));
    QVERIFY2(qApp->styleSheet().startsWith(QLatin1String("QToolTip { color: #ffffff;")),
             qPrintable(qApp->styleSheet()));

    look.apply(false);

    QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(Qt::yellow));
    QCOMPARE(qApp->styleSheet(), sheet);

    look.apply(true);
    QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(45, 45, 45));
    look.apply(false);
    qApp->setStyleSheet(QString());
}

void ApplicationLookTest::styleAndPaletteComeBack()
{
    QApplication::setStyle(QStringLiteral("Windows"));
    ApplicationLook look(*qApp);
    look.apply(false);
    const QString lightStyle = QApplication::style()->objectName();
    const QPalette lightPalette = QApplication::palette();

    look.apply(true);
    QCOMPARE(QApplication::palette(), ApplicationLook::darkPalette());
    // The sheet wraps the style, which then has no name.
    qApp->setStyleSheet(QString());
    QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));

    look.apply(false);
    QCOMPARE(QApplication::style()->objectName(), lightStyle);
    QCOMPARE(QApplication::palette(), lightPalette);
}

void ApplicationLookTest::lightFromTheStartChangesNothing()
{
    ApplicationLook(*qApp).apply(false);
    const QStyle* const style = QApplication::style();
    QPalette own = QApplication::palette();
    own.setColor(QPalette::Window, Qt::green);
    ApplicationLook look(*qApp);
    QApplication::setPalette(own);

    look.apply(false);

    QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(Qt::green));
    QCOMPARE(QApplication::style(), style);
}

BRISORA_TEST_MAIN(ApplicationLookTest, QApplication)
#include "test_applicationlook.moc"
