#include <QApplication>
#include <QHeaderView>
#include <QItemDelegate>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QVBoxLayout>
#include <QtTest>

#include "core/widgets/nodrawfocusdelegate.h"
#include "core/widgets/notabkeywidget.h"
#include "core/widgets/qtableviewaltcolor.h"
#include "core/widgets/seasonaldecoration.h"
#include "tests/support/testenvironment.h"

namespace {

constexpr int stripeHeight = 20;
const QColor base(Qt::white);
const QColor other(Qt::green);

class StripedTable final : public QTableViewAltColor {
public:
    explicit StripedTable(int rowCount)
        : m_model(rowCount, 2)
    {
        QPalette colors = palette();
        colors.setColor(QPalette::Base, base);
        colors.setColor(QPalette::AlternateBase, other);
        setPalette(colors);
        setFrameShape(QFrame::NoFrame);
        setShowGrid(false);
        horizontalHeader()->hide();
        verticalHeader()->hide();
        verticalHeader()->setMinimumSectionSize(0);
        verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        verticalHeader()->setDefaultSectionSize(stripeHeight);
        setModel(&m_model);
        resize(300, 10 * stripeHeight);
    }

    // The colour in the middle of the row that is, or would be, there.
    [[nodiscard]] static QColor colorOf(const QPixmap& picture, int row)
    {
        return picture.toImage().pixelColor(5, row * stripeHeight + stripeHeight / 2);
    }

    // As if there were rows above, with room below all the same.
    void updateGeometries() override
    {
        QTableViewAltColor::updateGeometries();
        if (isScrolled) {
            verticalScrollBar()->setRange(0, 1);
            verticalScrollBar()->setValue(1);
        }
    }

    bool isScrolled = false;

private:
    QStandardItemModel m_model;
};

// A table between two other widgets that take the focus.
class FocusWindow final : public QWidget {
public:
    FocusWindow()
        : m_model(4, 1)
    {
        table.setModel(&m_model);
        auto* const layout = new QVBoxLayout(this);
        layout->addWidget(&before);
        layout->addWidget(&table);
        layout->addWidget(&after);
        for (auto* const widget :
             { static_cast<QWidget*>(&before), static_cast<QWidget*>(&after) }) {
            widget->setFocusPolicy(Qt::StrongFocus);
        }
        show();
        activateWindow();
    }

    QLineEdit before;
    Widgets::NoTabKeyWidget<QTableView> table;
    QLineEdit after;

private:
    QStandardItemModel m_model;
};

// What a delegate paints for a cell with or without the focus.
QImage paintedBy(const QAbstractItemDelegate& delegate, QStyle::State focus)
{
    QStandardItemModel model(1, 1);
    model.setData(model.index(0, 0), QStringLiteral("text"));
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 80, 30);
    option.state = QStyle::State_Enabled | QStyle::State_Active | focus;
    option.palette = QApplication::palette();
    QImage image(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    delegate.paint(&painter, option, model.index(0, 0));
    return image;
}

constexpr QStyle::State focused = QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;

// A white surface that is decorated.
class DecoratedSurface final : public QWidget {
public:
    DecoratedSurface(const QString& picture, SeasonalDecoration::Today today)
        : m_decoration(picture, std::move(today))
    {
        resize(100, 60);
    }

    [[nodiscard]] QColor colorAt(int x, int y) { return grab().toImage().pixelColor(x, y); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter(this).fillRect(rect(), Qt::white);
        m_decoration.paint(this, rect());
    }

private:
    SeasonalDecoration m_decoration;
};

} // namespace

class TableKitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void stripesGoOnBelowTheLastRow_data();
    void stripesGoOnBelowTheLastRow();
    void aPartIsPaintedLikeTheWhole();
    void aScrolledTableHasNoStripesBelow();
    void stripesNeedNoModelAndNoHeight();
    void tabLeavesTheTable();
    void otherKeysMoveInTheTable();
    void noFocusRectangleIsPainted();
    void theSeasonIsTheEndOfDecember_data();
    void theSeasonIsTheEndOfDecember();
    void thePictureIsFaintAndInTheMiddle();
    void theDateIsTakenOnce();
    void aMissingPictureIsNotShown();

private:
    QTemporaryDir m_folder;
    QString m_picture; // 20 by 10 pixels, black
};

void TableKitTest::initTestCase()
{
    m_picture = m_folder.filePath(QStringLiteral("picture.png"));
    QPixmap pixmap(20, 10);
    pixmap.fill(Qt::black);
    QVERIFY(pixmap.save(m_picture));
}

void TableKitTest::stripesGoOnBelowTheLastRow_data()
{
    QTest::addColumn<int>("rows");
    QTest::newRow("no row") << 0;
    QTest::newRow("one row") << 1;
    QTest::newRow("an even number") << 4;
    QTest::newRow("an odd number") << 5;
    QTest::newRow("a full table") << 10;
}

void TableKitTest::stripesGoOnBelowTheLastRow()
{
    QFETCH(int, rows);
    StripedTable table(rows);

    const QPixmap picture = table.grab();

    for (int row = 0; row < 10; ++row) {
        QCOMPARE(StripedTable::colorOf(picture, row), row % 2 == 0 ? base : other);
    }
}

void TableKitTest::aPartIsPaintedLikeTheWhole()
{
    StripedTable table(3);
    const QPixmap whole = table.grab();
    QPixmap part(table.size());
    part.fill(Qt::red);

    table.render(&part, QPoint(0, 6 * stripeHeight),
                 QRegion(0, 6 * stripeHeight, 300, 2 * stripeHeight));

    QCOMPARE(StripedTable::colorOf(part, 5), QColor(Qt::red));
    QCOMPARE(StripedTable::colorOf(part, 6), StripedTable::colorOf(whole, 6));
    QCOMPARE(StripedTable::colorOf(part, 7), StripedTable::colorOf(whole, 7));
    QCOMPARE(StripedTable::colorOf(part, 7), other);
}

void TableKitTest::aScrolledTableHasNoStripesBelow()
{
    StripedTable table(2);
    QCOMPARE(StripedTable::colorOf(table.grab(), 3), other);
    table.isScrolled = true;
    table.updateGeometries();

    const QPixmap picture = table.grab();

    for (int row = 2; row < 10; ++row) {
        QCOMPARE(StripedTable::colorOf(picture, row), base);
    }
}

void TableKitTest::stripesNeedNoModelAndNoHeight()
{
    StripedTable table(0);
    table.setModel(nullptr);
    QCOMPARE(StripedTable::colorOf(table.grab(), 3), other);

    table.verticalHeader()->setDefaultSectionSize(0);
    QCOMPARE(StripedTable::colorOf(table.grab(), 3), base);
}

void TableKitTest::tabLeavesTheTable()
{
    FocusWindow window;
    QVERIFY(QTest::qWaitForWindowActive(&window));
    window.table.setCurrentIndex(window.table.model()->index(1, 0));
    window.table.setFocus();
    QVERIFY(window.table.hasFocus());

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(window.after.hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(window.table.hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(window.before.hasFocus());
    QCOMPARE(window.table.currentIndex().row(), 1);
}

void TableKitTest::otherKeysMoveInTheTable()
{
    FocusWindow window;
    QVERIFY(QTest::qWaitForWindowActive(&window));
    window.table.setCurrentIndex(window.table.model()->index(1, 0));
    window.table.setFocus();

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);

    QVERIFY(window.table.hasFocus());
    QCOMPARE(window.table.currentIndex().row(), 2);
}

void TableKitTest::noFocusRectangleIsPainted()
{
    const QItemDelegate plain;
    QVERIFY(paintedBy(plain, focused) != paintedBy(plain, QStyle::State_None));

    const Widgets::NoDrawFocusDelegate<QItemDelegate> delegate;
    QCOMPARE(paintedBy(delegate, focused), paintedBy(plain, QStyle::State_None));
}

void TableKitTest::theSeasonIsTheEndOfDecember_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("23 December") << QDate(2026, 12, 23) << false;
    QTest::newRow("24 December") << QDate(2026, 12, 24) << true;
    QTest::newRow("31 December") << QDate(2026, 12, 31) << true;
    QTest::newRow("1 January") << QDate(2027, 1, 1) << false;
    QTest::newRow("26 November") << QDate(2026, 11, 26) << false;
    QTest::newRow("no date") << QDate() << false;
}

void TableKitTest::theSeasonIsTheEndOfDecember()
{
    QFETCH(QDate, today);
    QFETCH(bool, isShown);
    DecoratedSurface surface(m_picture, [today] { return today; });
    QCOMPARE(surface.colorAt(50, 30) != QColor(Qt::white), isShown);
}

void TableKitTest::thePictureIsFaintAndInTheMiddle()
{
    DecoratedSurface surface(m_picture, [] { return QDate(2026, 12, 24); });
    const QImage image = surface.grab().toImage();
    QRect changed;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::white)) {
                changed |= QRect(x, y, 1, 1);
            }
        }
    }
    QCOMPARE(changed.size(), QSize(20, 10));
    QVERIFY(qAbs(changed.left() - 40) <= 1);
    QVERIFY(qAbs(changed.top() - 25) <= 1);
    // A twentieth of black over white.
    QVERIFY(qAbs(image.pixelColor(50, 30).lightness() - 242) <= 3);
}

void TableKitTest::theDateIsTakenOnce()
{
    QDate today(2026, 12, 23);
    int questions = 0;
    const auto ask = [&today, &questions] {
        ++questions;
        return today;
    };
    DecoratedSurface early(m_picture, ask);
    QCOMPARE(questions, 0);
    QCOMPARE(early.colorAt(50, 30), QColor(Qt::white));
    QCOMPARE(questions, 1);

    today = QDate(2026, 12, 24);
    QCOMPARE(early.colorAt(50, 30), QColor(Qt::white));
    QCOMPARE(questions, 1);

    DecoratedSurface late(m_picture, ask);
    QVERIFY(late.colorAt(50, 30) != QColor(Qt::white));
    today = QDate(2027, 1, 1);
    QVERIFY(late.colorAt(50, 30) != QColor(Qt::white));
    QCOMPARE(questions, 2);
}

void TableKitTest::aMissingPictureIsNotShown()
{
    DecoratedSurface surface(m_folder.filePath(QStringLiteral("none.png")),
                             [] { return QDate(2026, 12, 24); });
    QCOMPARE(surface.colorAt(50, 30), QColor(Qt::white));
}

BRISORA_TEST_MAIN(TableKitTest, QApplication)

#include "test_tablekit.moc"
