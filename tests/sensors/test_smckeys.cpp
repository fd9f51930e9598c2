#include <QCoreApplication>

#include "app/sensors/smckeys.h"
#include "tests/support/testenvironment.h"

class TestSmcKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyTheFourthLettersCaseIsFree_data();
    void onlyTheFourthLettersCaseIsFree();
    void oneSpellingOfTwinsStays_data();
    void oneSpellingOfTwinsStays();
};

void TestSmcKeys::onlyTheFourthLettersCaseIsFree_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("isEqual");

    QTest::newRow("same") << "TC0P"
                          << "TC0P" << true;
    QTest::newRow("fourth letter") << "TC0P"
                                   << "TC0p" << true;
    QTest::newRow("fourth letter, other way") << "TC0p"
                                              << "TC0P" << true;
    QTest::newRow("first letter") << "TC0P"
                                  << "tC0P" << false;
    QTest::newRow("second letter") << "TC0P"
                                   << "Tc0P" << false;
    QTest::newRow("third letter") << "TCGC"
                                  << "TCgC" << false;
    QTest::newRow("third and fourth letter") << "TCGC"
                                             << "TCgc" << false;
    QTest::newRow("other fourth letter") << "TC0P"
                                         << "TC0D" << false;
    QTest::newRow("three characters") << "TC0"
                                      << "TC0" << false;
    QTest::newRow("five characters") << "TC0PX"
                                     << "TC0PX" << false;
    QTest::newRow("second shorter") << "TC0P"
                                    << "TC0" << false;
    QTest::newRow("second longer") << "TC0P"
                                   << "TC0PX" << false;
    QTest::newRow("empty") << ""
                           << "" << false;
    QTest::newRow("blank at the end") << "FS! "
                                      << "FS! " << true;
}

void TestSmcKeys::onlyTheFourthLettersCaseIsFree()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QTEST(isSmcKeyEqual(first, second), "isEqual");
}

void TestSmcKeys::oneSpellingOfTwinsStays_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char* name, const char* keys, const char* expected) {
        const auto list = [](const char* text) {
            return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        };
        QTest::newRow(name) << list(keys) << list(expected);
    };
    row("none", "", "");
    row("no twins", "TA0P TC0P TC0D", "TA0P TC0P TC0D");
    row("lower case stays", "TC0P TC0p", "TC0p");
    row("lower case stays, other order", "TC0p TC0P", "TC0p");
    row("TG0D: upper case stays", "TG0D TG0d", "TG0D");
    row("TG0D: upper case stays, other order", "TG0d TG0D", "TG0D");
    row("TG1D", "TG1D TG1d", "TG1D");
    row("TH0A", "TH0A TH0a", "TH0A");
    row("TH1A", "TH1A TH1a", "TH1A");
    row("TH1B", "TH1B TH1b", "TH1B");
    row("TG2D is like all others", "TG2D TG2d", "TG2d");
    row("order of the rest stays", "TA0P TC0P TB0T TC0p TW0P", "TA0P TB0T TC0p TW0P");
    row("several pairs", "TC0P TC0p TG0D TG0d TM0S TM0s", "TC0p TG0D TM0s");
    row("prefixes with other case are no twins", "Tc0P TC0P", "Tc0P TC0P");
    row("one spelling alone", "TG0d", "TG0d");
    row("the same key twice is no pair", "TC0P TC0P", "TC0P TC0P");
}

void TestSmcKeys::oneSpellingOfTwinsStays()
{
    QFETCH(QStringList, keys);
    QTEST(withoutSpellingTwins(keys), "expected");
}

BRISORA_TEST_MAIN(TestSmcKeys, QCoreApplication)
#include "test_smckeys.moc"
