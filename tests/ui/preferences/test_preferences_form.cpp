#include <algorithm>

#include <QApplication>
#include <QComboBox>
#include <QToolBar>
#include <QtTest>

#include "core/language/languagestrings.h"
#include "core/widgets/qlanguagecombobox.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/dialogs/textfit.h"
#include "tests/ui/preferences/preferencesbench.h"

namespace {

// Pixels.
constexpr int barLeft = 4;
constexpr int pageLeft = 40;

// How far the widget's right edge is from the dialog's; pixels.
int roomAtTheRight(const QWidget& dialog, const QWidget& widget)
{
    return dialog.width() - widget.geometry().right() - 1;
}

// What is cut on the page that is shown, and of the bar; empty when nothing is.
QString cut(const PreferencesBench& bench)
{
    const auto& dialog = *bench.dialog;
    for (int page = 0; page < 3; ++page) {
        const auto* const button = bench.button(page);
        const QRect place(button->mapTo(&dialog, QPoint(0, 0)), button->size());
        if (!button->isVisible() || !dialog.rect().contains(place)) {
            return button->text();
        }
    }
    const auto* const page = bench.visiblePage();
    if (!dialog.rect().contains(page->geometry())) {
        return page->getTitle();
    }
    for (const auto* const combo : page->findChildren<QComboBox*>()) {
        if (combo->isVisible() && combo->width() < combo->sizeHint().width()) {
            return combo->objectName();
        }
    }
    return cutText(dialog);
}

// What Tab reaches until it is back, by object name, or by text where there is none.
QStringList tabStops(QWidget* first)
{
    QStringList stops;
    first->setFocus();
    do {
        auto* const focused = QApplication::focusWidget();
        const auto* const button = qobject_cast<QToolButton*>(focused);
        const QString stop = button != nullptr ? button->text() : focused->objectName();
        // Tab goes to a label and then to the link in it.
        if (stops.isEmpty() || stops.last() != stop) {
            stops.append(stop);
        }
        QTest::keyClick(focused, Qt::Key_Tab);
    } while (QApplication::focusWidget() != first && stops.size() < 20);
    return stops;
}

// Each text of the dialog's, longer than any language has it.
QByteArray longTexts()
{
    QByteArray elements;
    for (const char* key :
         { "TabGeneral", "tabTrayIcon", "tabSensors", "staticLanguage", "checkSystemStart",
           "checkUpdatesOnStartup", "checkFahrenheit", "checkPrecise", "labelSensors",
           "checkExternalGPU", "checkSATADrives", "checkNVMeDrives", "staticSensor",
           "comboOptionNone", "staticCelsiusOnlyOnWindows" }) {
        elements += QByteArray("<") + key + '>' + QByteArray("lengthy ").repeated(12) + key + "</"
            + key + '>';
    }
    return InterfaceTexts::fileContent("<PreferencesWindow>" + elements + "</PreferencesWindow>");
}

} // namespace

// What the dialog looks like, and what the keyboard does in it.
class PreferencesFormTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QApplication::setLayoutDirection(Qt::LeftToRight); }

    void itOpensOnTheFirstPageAndThenOnTheLastOne();
    void pagesAndDialogFit_data();
    void pagesAndDialogFit();
    void aClickOnAButtonGrowsTheDialogSmoothly();
    void ctrlWCloses();
    void aLanguageOfLongTextsGrowsTheDialogSmoothly_data();
    void aLanguageOfLongTextsGrowsTheDialogSmoothly();
    void theLanguageKeepsTheFocusWhenItIsChosenByKeyboard();
    void tabGoesThroughThePageAndThenTheBar_data();
    void tabGoesThroughThePageAndThenTheBar();
    void fromRightToLeftPageAndBarStandAtTheRight_data();
    void fromRightToLeftPageAndBarStandAtTheRight();
    void anotherDirectionMovesPageAndBar();
    void theTraySensorsBoxGrowsWithItsNames();
};

void PreferencesFormTest::itOpensOnTheFirstPageAndThenOnTheLastOne()
{
    PreferencesBench bench;
    bench.make();
    QCOMPARE(bench.dialog->currentPage(), 0);
    QCOMPARE(bench.dialog->windowTitle(), QStringLiteral("Preferences: General"));
    QVERIFY(bench.button(0)->isChecked());

    bench.button(1)->click();
    QCOMPARE(bench.dialog->windowTitle(), QStringLiteral("Preferences: T\u00B0 Sensors"));
    QCOMPARE(bench.lastPage, 1);

    bench.make();
    QCOMPARE(bench.dialog->currentPage(), 1);
    QVERIFY(bench.button(1)->isChecked());
    QVERIFY(!bench.button(0)->isChecked());
}

void PreferencesFormTest::pagesAndDialogFit_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("page");
    for (const char* language : { "English", "German" }) {
        for (int page = 0; page < 3; ++page) {
            QTest::addRow("%s %d", language, page) << QString(QLatin1String(language)) << page;
        }
    }
}

void PreferencesFormTest::pagesAndDialogFit()
{
    QFETCH(QString, language);
    QFETCH(int, page);
    PreferencesBench bench;
    bench.texts.load(language);
    bench.parameters.sensors = { sensor("A sensor with a long name", "TC0P") };
    auto& dialog = bench.make();
    dialog.setCurrentPage(page, false);
    dialog.show();

    const auto* const bar = dialog.findChild<QToolBar*>();
    QCOMPARE(bar->pos(), QPoint(barLeft, 0));
    const auto* const shown = bench.visiblePage();
    QCOMPARE(shown->pos(), QPoint(40, bar->height()));
    QCOMPARE(dialog.width(), qMax(bar->width(), shown->width() + 60));
    QCOMPARE(dialog.height(), shown->height() + bar->height());
    // Nothing is cut.
    const auto widgets = shown->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const auto* widget : widgets) {
        if (!widget->isHidden()) {
            QVERIFY2(widget->width() >= widget->minimumSizeHint().width()
                         && shown->rect().contains(widget->geometry()),
                     qPrintable(widget->objectName()));
        }
    }
}

void PreferencesFormTest::aClickOnAButtonGrowsTheDialogSmoothly()
{
    PreferencesBench bench;
    auto& dialog = bench.make();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QSize before = dialog.size();

    bench.button(1)->click();

    QCOMPARE(dialog.size(), before);
    const auto* const bar = dialog.findChild<QToolBar*>();
    QTRY_COMPARE(dialog.height(), bench.visiblePage()->height() + bar->height());
    QVERIFY(dialog.size() != before);
}

void PreferencesFormTest::ctrlWCloses()
{
    PreferencesBench bench;
    auto& dialog = bench.make();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(&dialog, Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!dialog.isVisible());
}

void PreferencesFormTest::aLanguageOfLongTextsGrowsTheDialogSmoothly_data()
{
    QTest::addColumn<int>("page");
    QTest::newRow("general") << 0;
    QTest::newRow("sensors") << 1;
    QTest::newRow("tray icon") << 2;
}

void PreferencesFormTest::aLanguageOfLongTextsGrowsTheDialogSmoothly()
{
    QFETCH(int, page);
    PreferencesBench bench;
    bench.texts.addFile(QStringLiteral("Long"), longTexts());
    bench.parameters.sensors = { sensor("CPU", "TC0P") };
    auto& dialog = bench.make();
    dialog.setCurrentPage(page, false);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const QSize before = dialog.size();

    auto* const languages = bench.find<QLanguageComboBox>("comboLanguage");
    languages->setCurrentIndex(languages->findData(QStringLiteral("Long")));

    QCOMPARE(dialog.size(), before);
    const auto* const bar = dialog.findChild<QToolBar*>();
    const auto* const shown = bench.visiblePage();
    const QSize wanted(std::max(bar->width(), shown->width() + 60),
                       shown->height() + bar->height());
    QVERIFY(wanted.width() > before.width());
    QTRY_COMPARE(dialog.size(), wanted);
    QCOMPARE(cut(bench), QString());

    // The other pages follow when they are shown.
    for (int other = 0; other < 3; ++other) {
        dialog.setCurrentPage(other, false);
        QCOMPARE(cut(bench), QString());
    }
}

void PreferencesFormTest::theLanguageKeepsTheFocusWhenItIsChosenByKeyboard()
{
    PreferencesBench bench;
    auto& dialog = bench.make();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto* const languages = bench.find<QLanguageComboBox>("comboLanguage");
    languages->setFocus();

    QTest::keyClick(languages, Qt::Key_Down);

    QCOMPARE(bench.texts.strings().getLanguageName(), QStringLiteral("German"));
    QCOMPARE(QApplication::focusWidget(), languages);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    QCOMPARE(bench.texts.strings().getLanguageName(), QStringLiteral("English"));
    QCOMPARE(QApplication::focusWidget(), languages);
}

void PreferencesFormTest::tabGoesThroughThePageAndThenTheBar_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QStringList>("controls");
    QTest::newRow("general") << 0
                             << QStringList { QStringLiteral("checkAutostart"),
                                              QStringLiteral("checkUpdates"),
                                              QStringLiteral("comboLanguage"),
                                              QStringLiteral("labelTranslate") };
    QTest::newRow("sensors") << 1
                             << QStringList { QStringLiteral("checkDrivesSmart"),
                                              QStringLiteral("checkDrivesNVMe"),
                                              QStringLiteral("checkFahrenheit"),
                                              QStringLiteral("checkPrecise") };
    QTest::newRow("tray icon") << 2 << QStringList { QStringLiteral("comboSensor") };
}

void PreferencesFormTest::tabGoesThroughThePageAndThenTheBar()
{
    QFETCH(int, page);
    QFETCH(QStringList, controls);
    PreferencesBench bench;
    bench.host.isUpdateCheckOn = [] { return true; };
    bench.host.setUpdateCheckOn = [](bool) {};
    bench.lastPage = page;
    auto& dialog = bench.make();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));

    const QStringList bar { QStringLiteral("General"), QString::fromUtf8("T° Sensors"),
                            QStringLiteral("Tray icon") };
    QCOMPARE(tabStops(dialog.findChild<QWidget*>(controls.first())).join(QLatin1Char(' ')),
             (controls + bar).join(QLatin1Char(' ')));
}

void PreferencesFormTest::fromRightToLeftPageAndBarStandAtTheRight_data()
{
    aLanguageOfLongTextsGrowsTheDialogSmoothly_data();
}

void PreferencesFormTest::fromRightToLeftPageAndBarStandAtTheRight()
{
    QFETCH(int, page);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    PreferencesBench bench;
    auto& dialog = bench.make();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const auto* const bar = dialog.findChild<QToolBar*>();

    bench.button(page)->click();

    // While it grows as well as at the end.
    QCOMPARE(roomAtTheRight(dialog, *bench.visiblePage()), pageLeft);
    QCOMPARE(roomAtTheRight(dialog, *bar), barLeft);
    QTRY_COMPARE(dialog.width(), std::max(bar->width(), bench.visiblePage()->width() + 60));
    QCOMPARE(roomAtTheRight(dialog, *bench.visiblePage()), pageLeft);
    QCOMPARE(roomAtTheRight(dialog, *bar), barLeft);
    // The first button is the one at the right.
    QVERIFY(bench.button(0)->x() > bench.button(1)->x());
}

void PreferencesFormTest::anotherDirectionMovesPageAndBar()
{
    PreferencesBench bench;
    bench.texts.addFile(QStringLiteral("Arabic"), InterfaceTexts::fileContent({}));
    bench.host.loadLanguage = [&bench](const QString& name) {
        bench.texts.load(name);
        QApplication::setLayoutDirection(name == QLatin1String("Arabic.xml") ? Qt::RightToLeft
                                                                             : Qt::LeftToRight);
    };
    auto& dialog = bench.make();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const auto* const bar = dialog.findChild<QToolBar*>();
    const auto* const page = bench.visiblePage();
    auto* const languages = bench.find<QLanguageComboBox>("comboLanguage");
    const auto choose = [languages](const char* name) {
        languages->setCurrentIndex(languages->findData(QLatin1String(name)));
    };

    choose("Arabic");
    QCOMPARE(roomAtTheRight(dialog, *page), pageLeft);
    QCOMPARE(roomAtTheRight(dialog, *bar), barLeft);

    choose("English");
    QCOMPARE(page->x(), pageLeft);
    QCOMPARE(bar->x(), barLeft);
}

void PreferencesFormTest::theTraySensorsBoxGrowsWithItsNames()
{
    PreferencesBench bench;
    bench.parameters.sensors = { sensor("CPU", "TC0P") };
    auto& dialog = bench.make();
    dialog.setCurrentPage(2, false);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const auto* const combo = bench.find<QComboBox>("comboSensor");
    const int before = combo->width();

    const char* const name = "The memory's proximity at the left of the second processor";
    bench.parameters.sensors = { sensor(name, "TC0P") };
    dialog.setCurrentPage(2, false);

    QVERIFY(combo->width() > before);
    QVERIFY(combo->width() > combo->fontMetrics().horizontalAdvance(QLatin1String(name)));
    QCOMPARE(cut(bench), QString());
}

BRISORA_TEST_MAIN(PreferencesFormTest, QApplication)

#include "test_preferences_form.moc"
