#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>
#include <QtTest>

#include "app/ui/dialogs/fixedsize.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/textfit.h"

class FixedSizeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aWindowIsAsBigAsItsContents_data();
    void aWindowIsAsBigAsItsContents();
};

void FixedSizeTest::aWindowIsAsBigAsItsContents_data()
{
    QTest::addColumn<int>("words");
    QTest::addColumn<bool>("wrapped");

    QTest::newRow("a word") << 1 << false;
    QTest::newRow("a paragraph") << 60 << true;
    // Twice the height of the screen, of which a window gets two thirds by itself.
    const int lines = 2 * QGuiApplication::primaryScreen()->size().height()
        / QApplication::fontMetrics().height();
    QTest::newRow("more than the screen shows") << 10 * lines << true;
}

void FixedSizeTest::aWindowIsAsBigAsItsContents()
{
    QFETCH(int, words);
    QFETCH(bool, wrapped);
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const label = new QLabel(QStringLiteral("unabridged ").repeated(words), &window);
    label->setWordWrap(wrapped);
    layout->addWidget(label);

    fixSize(&window);
    window.show();

    QCOMPARE(window.minimumSize(), window.maximumSize());
    QCOMPARE(cutText(window), QString());
    QVERIFY(window.height() <= label->height() + layout->contentsMargins().top()
                + layout->contentsMargins().bottom());
}

BRISORA_TEST_MAIN(FixedSizeTest, QApplication)
#include "test_fixedsize.moc"
