#include <memory>

#include <QtTest>

#include "app/ui/productpages.h"
#include "build_config.h"
#include "tests/support/modalboxdriver.h"
#include "tests/support/openedaddresses.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/mainwindowbench.h"
#include "tests/ui/userhand.h"

namespace {

const QString ratingPage = QLatin1String(BuildConfig::ratingPage);

} // namespace

// The ways to the maker's pages.
class MainWindowPagesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_process = std::make_unique<WindowProcess>(); }
    void cleanup() { WindowProcess::takeQuitRequest(); }

    void theTrayOpensThePages_data();
    void theTrayOpensThePages();
    void theRatingIsAskedForAtARestoreOnly();
    void theRatingsAnswerOpensThePage();
    void thePageOfTheTranslationsIsToldWhoSendsItsUser();

private:
    std::unique_ptr<WindowProcess> m_process;
};

void MainWindowPagesTest::theTrayOpensThePages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("page");
    QTest::addColumn<bool>("hasRated");
    QTest::newRow("site") << QStringLiteral("Website")
                          << QLatin1String(BuildConfig::webSite)
            + QStringLiteral("?source=fancontrol_win")
                          << false;
    QTest::newRow("social") << QStringLiteral("Follow @OrvaneSoftware")
                            << QString(QLatin1String(BuildConfig::socialPage)) << false;
    QTest::newRow("rating") << QStringLiteral("Rate on MacUpdate") << ratingPage << true;
}

void MainWindowPagesTest::theTrayOpensThePages()
{
    QFETCH(QString, text);
    QFETCH(QString, page);
    QFETCH(bool, hasRated);
    const OpenedAddresses opened;
    WindowBench bench;
    bench.makeLoaded();

    auto* const command = entry(bench.tray.menu, { QStringLiteral("More"), text });
    QVERIFY(command != nullptr);
    command->trigger();

    QTRY_COMPARE(opened.addresses, QVector<QUrl> { QUrl(page) });
    // Who has been there is not asked to go there.
    QCOMPARE(bench.machine.settings.getInt(SettingsKeys::rateSkip, -1) == 1, hasRated);
}

void MainWindowPagesTest::theRatingIsAskedForAtARestoreOnly()
{
    const OpenedAddresses opened;
    WindowBench bench;
    auto& window = bench.make();
    const QDateTime firstDate = bench.now.addDays(7);
    QCOMPARE(bench.machine.settings.getDateTime(SettingsKeys::rateNextDate), firstDate);
    ModalBoxDriver driver([](QMessageBox& box) {
        QVERIFY2(box.text().contains(QStringLiteral("Rate the app on MacUpdate")),
                 qPrintable(box.text()));
        for (auto* const button : box.buttons()) {
            if (box.buttonRole(button) == QMessageBox::RejectRole) {
                button->click();
            }
        }
    });

    // Not at a start, nor before it is due.
    window.show();
    window.hide();
    window.slotRestore();
    QCOMPARE(driver.boxCount(), 0);

    bench.now = firstDate;
    window.slotRestore(); // visible already
    QCOMPARE(driver.boxCount(), 0);
    window.hide();
    window.slotRestore();
    QCOMPARE(driver.boxCount(), 1);
    QCOMPARE(bench.machine.settings.getDateTime(SettingsKeys::rateNextDate), firstDate.addDays(7));

    window.slotRateApp();
    QCOMPARE(opened.addresses, QVector<QUrl> { QUrl(ratingPage) });
    bench.now = firstDate.addDays(30);
    window.hide();
    window.slotRestore();
    QCOMPARE(driver.boxCount(), 1);
}

void MainWindowPagesTest::theRatingsAnswerOpensThePage()
{
    const OpenedAddresses opened;
    WindowBench bench;
    auto& window = bench.make();
    ModalBoxDriver driver([](QMessageBox& box) {
        for (auto* const button : box.buttons()) {
            if (box.buttonRole(button) == QMessageBox::AcceptRole) {
                button->click();
            }
        }
    });
    bench.now = bench.now.addDays(7);

    window.slotRestore();

    QCOMPARE(driver.boxCount(), 1);
    QCOMPARE(opened.addresses, QVector<QUrl> { QUrl(ratingPage) });
    QCOMPARE(bench.machine.settings.getInt(SettingsKeys::rateSkip, -1), 1);
}

void MainWindowPagesTest::thePageOfTheTranslationsIsToldWhoSendsItsUser()
{
    const OpenedAddresses opened;
    QVERIFY(ProductPages::hasTranslationPage());

    ProductPages::openTranslationPage();

    QCOMPARE(opened.addresses,
             QVector<QUrl> { QUrl(QLatin1String(BuildConfig::translationPage)
                                  + QStringLiteral("?source=fancontrol_win")) });
}

BRISORA_TEST_MAIN(MainWindowPagesTest, QApplication)

#include "test_mainwindow_pages.moc"
