#include <QCoreApplication>
#include <QRegularExpression>

#include "macsim/model/keytable.h"
#include "macsim/model/loadprofile.h"
#include "macsim/model/smcvalue.h"
#include "tests/macsim/macbench.h"
#include "tests/support/testenvironment.h"

using namespace macsim;

class ValuesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbersAreEncoded_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<double>("number");
        QTest::addColumn<QByteArray>("hex");
        const auto row = [](const char* type, double number, const char* hex) {
            QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(QLatin1String(type)).arg(number)))
                << QByteArray(type) << number << QByteArray(hex);
        };
        row("fpe2", 2000, "1f40");
        row("fpe2", 2000.75, "1f43");
        row("fpe2", -5, "0000");
        row("fpe2", 99999, "ffff");
        row("sp78", 45.5, "2d80");
        row("sp78", -127, "8100");
        row("sp78", -0.5, "ff80");
        row("sp78", 200, "7fff");
        row("sp78", -200, "8000");
        row("flt ", 2000, "0000fa44");
        row("ui8 ", 2, "02");
        row("ui8 ", 300, "ff");
        row("ui16", 258, "0102");
        row("ui32", 1234, "000004d2");
        row("hex_", 1, "");
    }
    void numbersAreEncoded()
    {
        QFETCH(QByteArray, type);
        QFETCH(double, number);
        QFETCH(QByteArray, hex);
        QCOMPARE(smcvalue::encode(type, number).toHex(), hex);
    }

    void bytesAreDecoded_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("hex");
        QTest::addColumn<double>("number");
        QTest::newRow("fpe2") << QByteArray("fpe2") << QByteArray("1f43") << 2000.75;
        QTest::newRow("sp78") << QByteArray("sp78") << QByteArray("8100") << -127.0;
        QTest::newRow("flt") << QByteArray("flt ") << QByteArray("0000fa44") << 2000.0;
        QTest::newRow("ui32") << QByteArray("ui32") << QByteArray("000004d2") << 1234.0;
    }
    void bytesAreDecoded()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, hex);
        QFETCH(double, number);
        QCOMPARE(smcvalue::decode(type, QByteArray::fromHex(hex)).value_or(-1), number);
        QVERIFY(!smcvalue::decode(type, QByteArray::fromHex(hex + "00")));
        QVERIFY(!smcvalue::decode("hex_", QByteArray::fromHex(hex)));
    }

    void shortKeysAreFilledUp()
    {
        QCOMPARE(smcvalue::keyFromText(QStringLiteral("FS!")), QByteArray("FS! "));
        QCOMPARE(smcvalue::keyFromText(QStringLiteral("F0Ac")), QByteArray("F0Ac"));
        QVERIFY(!smcvalue::keyFromText(QString()));
        QVERIFY(!smcvalue::keyFromText(QStringLiteral("F0Acx")));
        QVERIFY(!smcvalue::keyFromText(QString(QChar(0x20AC))));
    }

    void namesBecomePrintable()
    {
        QCOMPARE(smcvalue::printable("FS! "), QStringLiteral("FS! "));
        QCOMPARE(smcvalue::printable(QByteArray("a\"\0\n", 4)), QStringLiteral("a\\x22\\x00\\x0a"));
    }

    void theTableIsSortedByBytes()
    {
        std::vector<KeyEntry> entries(3);
        entries[0].name = "TC0p";
        entries[1].name = "TC0P";
        entries[2].name = "#KEY";
        KeyTable table(entries);
        QCOMPARE(table.at(0)->name, QByteArray("#KEY"));
        QCOMPARE(table.at(1)->name, QByteArray("TC0P"));
        QCOMPARE(table.at(2)->name, QByteArray("TC0p"));
        QVERIFY(table.at(3) == nullptr);
        QVERIFY(table.find("TC0q") == nullptr);
        table.setVanished(*table.find("TC0P"), true);
        QVERIFY(table.find("TC0P") == nullptr);
        QVERIFY(table.findAny("TC0P") != nullptr);
        QCOMPARE(table.at(1)->name, QByteArray("TC0p"));
        QCOMPARE(table.size(), 2U);
    }

    void loadsFollowTheirProfile_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("load");
        const auto row = [](const char* profile, double seconds, double load) {
            QTest::newRow(
                qPrintable(QStringLiteral("%1 at %2").arg(QLatin1String(profile)).arg(seconds)))
                << QString::fromLatin1(profile) << seconds << load;
        };
        row("idle", 0, 0.03);
        row("light", 100, 0.25);
        row("heavy", 0, 1.0);
        row("step", 0, 0.03);
        row("step", 9.9, 0.03);
        row("step", 10, 1.0);
        row("step", 1000, 1.0);
        row("wave", 0, 0.1);
        row("wave", 30, 0.5);
        row("wave", 60, 0.9);
        row("wave", 90, 0.5);
        row("wave", 150, 0.5);
        row("ramp", 150, 0.515);
        row("ramp", 300, 1.0);
        row("ramp", 999, 1.0);
        row("40", 5, 0.4);
        row("40%", 5, 0.4);
        row("0", 5, 0.0);
        row("100", 5, 1.0);
    }
    void loadsFollowTheirProfile()
    {
        QFETCH(QString, profile);
        QFETCH(double, seconds);
        QFETCH(double, load);
        QVERIFY(qAbs(LoadProfile::fromText(profile).value().at(seconds) - load) < 1e-9);
    }

    void otherLoadsAreRefused()
    {
        for (const char* text : { "", "busy", "-1", "101", "nan", "%", "4x" }) {
            QVERIFY2(!LoadProfile::fromText(QLatin1String(text)), text);
        }
    }

    void everyTraceLineHasTheFormat()
    {
        MacBench bench;
        bench.clock.advance(std::chrono::milliseconds(12345));
        bench.read("FNum", 1);
        bench.trace.error(QStringLiteral("two\nlines"));
        bench.trace.event(QStringLiteral("load heavy"));
        bench.trace.write("FS! ", QByteArray::fromHex("0003"), "ok");
        bench.trace.index(17, "F0Ac", "ok");
        QCOMPARE(bench.lines.first().section(QLatin1Char(' '), 0, 0), QStringLiteral("12.346"));
        QCOMPARE(bench.events(),
                 QStringList(
                     { QStringLiteral("read \"FNum\" 02 ok"), QStringLiteral("error \"two lines\""),
                       QStringLiteral("event load heavy"), QStringLiteral("write \"FS! \" 0003 ok"),
                       QStringLiteral("index 17 \"F0Ac\" ok") }));
        const QRegularExpression form(
            QStringLiteral("^\\d+\\.\\d{3} ((read|write|info) \"[^\"]{4,}\" \\S+ [a-z-]+"
                           "|index \\d+ (\"[^\"]{4,}\"|-) [a-z-]+|error \".*\"|event .+)$"));
        for (const QString& line : bench.lines) {
            QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
        }
    }
};

BRISORA_TEST_MAIN(ValuesTest, QCoreApplication)

#include "test_macsim_values.moc"
