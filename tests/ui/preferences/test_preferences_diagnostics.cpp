#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QPushButton>
#include <QtTest>

#include "tests/support/openedaddresses.h"
#include "tests/support/testenvironment.h"
#include "tests/ui/preferences/diagnosticsbench.h"

class PreferencesDiagnosticsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itsTextsComeFromTheLanguage();
    void theBoxStartsAsTheSettingSays_data();
    void theBoxStartsAsTheSettingSays();
    void theBoxIsWrittenAtOnce();
    void theReportIsCopied();
    void withoutALogTheLinkOpensNothing();
};

void PreferencesDiagnosticsTest::itsTextsComeFromTheLanguage()
{
    DiagnosticsBench bench;
    auto& page = bench.make();
    QCOMPARE(page.getTitle(), QStringLiteral("Diagnostics"));
    QCOMPARE(bench.find<QCheckBox>("checkLog")->text(),
             QStringLiteral("Enable log (restart required)"));
    QCOMPARE(bench.find<QLabel>("labelBrowseLog")->text(),
             QStringLiteral("<a href='browse'>Browse</a>"));
    QCOMPARE(bench.find<QPushButton>("buttonCopy")->text(),
             QStringLiteral(" Copy technical info "));

    bench.texts.translate("<PreferencesWindow><tabDiagnostics>Befund</tabDiagnostics>"
                          "<browseLog>Zeigen</browseLog></PreferencesWindow>");
    page.updateLayout();

    QCOMPARE(page.getTitle(), QStringLiteral("Befund"));
    QCOMPARE(bench.find<QLabel>("labelBrowseLog")->text(),
             QStringLiteral("<a href='browse'>Zeigen</a>"));
}

void PreferencesDiagnosticsTest::theBoxStartsAsTheSettingSays_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("isStored");
    QTest::addColumn<bool>("checked");
    QTest::newRow("off") << 0 << true << false;
    QTest::newRow("on") << 1 << true << true;
    QTest::newRow("another number") << 2 << true << false;
    QTest::newRow("nothing stored") << 0 << false << false;
}

void PreferencesDiagnosticsTest::theBoxStartsAsTheSettingSays()
{
    QFETCH(int, value);
    QFETCH(bool, isStored);
    DiagnosticsBench bench;
    if (isStored) {
        bench.settings.setInt(SettingsKeys::enableLog, value);
    }

    bench.make();

    QTEST(bench.find<QCheckBox>("checkLog")->isChecked(), "checked");
}

void PreferencesDiagnosticsTest::theBoxIsWrittenAtOnce()
{
    DiagnosticsBench bench;
    bench.make();
    auto* const box = bench.find<QCheckBox>("checkLog");
    box->setChecked(true);
    QCOMPARE(bench.settings.getInt(SettingsKeys::enableLog, -1), 1);
    box->setChecked(false);
    QCOMPARE(bench.settings.getInt(SettingsKeys::enableLog, -1), 0);
}

void PreferencesDiagnosticsTest::theReportIsCopied()
{
    DiagnosticsBench bench;
    bench.make();
    bench.find<QPushButton>("buttonCopy")->click();
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("the report"));
}

void PreferencesDiagnosticsTest::withoutALogTheLinkOpensNothing()
{
    const OpenedAddresses opened;
    DiagnosticsBench bench;
    bench.make();

    Q_EMIT bench.find<QLabel>("labelBrowseLog")->linkActivated(QStringLiteral("browse"));

    QCOMPARE(opened.addresses, QVector<QUrl>());
}

BRISORA_TEST_MAIN(PreferencesDiagnosticsTest, QApplication)

#include "test_preferences_diagnostics.moc"
