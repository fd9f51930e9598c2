#include <QLabel>
#include <QtTest>

#include "core/widgets/qvboxlayoutmacworkaround.h"
#include "tests/support/testenvironment.h"

class VBoxLayoutMacWorkaroundTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void widgetsLieBelowEachOther();
};

void VBoxLayoutMacWorkaroundTest::widgetsLieBelowEachOther()
{
    QVBoxLayoutMacWorkaround column;
    auto* const first = new QLabel(QStringLiteral("first"));
    auto* const second = new QLabel(QStringLiteral("second"));

    column.addWidget(first);
    column.addWidget(second);
    column.resize(200, 100);
    column.show();

    QVERIFY(first->parentWidget() == &column);
    QVERIFY(second->parentWidget() == &column);
    QCOMPARE(first->pos(), QPoint(0, 0));
    QCOMPARE(first->width(), 200);
    QCOMPARE(second->x(), 0);
    QVERIFY(second->y() > first->geometry().bottom());
    QCOMPARE(second->geometry().bottomRight(), column.rect().bottomRight());
}

BRISORA_TEST_MAIN(VBoxLayoutMacWorkaroundTest, QApplication)

#include "test_qvboxlayoutmacworkaround.moc"
