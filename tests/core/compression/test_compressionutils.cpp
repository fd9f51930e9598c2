#include <QCoreApplication>
#include <QRandomGenerator>

#include "core/compression/compressionutils.h"
#include "tests/support/gzipped.h"
#include "tests/support/testenvironment.h"

using CompressionUtils::detectKind;
using CompressionUtils::detectKindByName;
using CompressionUtils::gunzip;
using CompressionUtils::Kind;

namespace {

QByteArray noise(int size)
{
    QRandomGenerator generator(42);
    QByteArray result(size, 0);
    for (char& byte : result) {
        byte = static_cast<char>(generator.bounded(256));
    }
    return result;
}

} // namespace

class TestCompressionUtils : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void gunzipGivesWhatWasPacked_data()
    {
        QTest::addColumn<QByteArray>("packed");
        QTest::addColumn<QByteArray>("expected");
        const QByteArray text("<a>text</a>");
        const QByteArray large = noise(300000) + QByteArray(400000, 'x');
        QTest::newRow("a text") << gzipped(text) << text;
        QTest::newRow("nothing") << gzipped({}) << QByteArray();
        QTest::newRow("more than a block") << gzipped(large) << large;
        QTest::newRow("two members") << gzipped(text) + gzipped(large) << text + large;
        QTest::newRow("an empty member between")
            << gzipped(text) + gzipped({}) + gzipped(text) << text + text;
        QTest::newRow("trailing zeros") << gzipped(text) + QByteArray(512, 0) << text;
        QTest::newRow("trailing rubbish") << gzipped(text) + QByteArray("rubbish") << text;
        QTest::newRow("one trailing byte") << gzipped(text) + QByteArray("\x1F", 1) << text;
    }
    void gunzipGivesWhatWasPacked()
    {
        QFETCH(QByteArray, packed);
        QFETCH(QByteArray, expected);
        QCOMPARE(gunzip(packed), expected);
    }

    void damagedDataIsEmpty_data()
    {
        QTest::addColumn<QByteArray>("packed");
        const QByteArray whole = gzipped(noise(1000));
        QTest::newRow("no data") << QByteArray();
        QTest::newRow("no gzip") << QByteArray("plain text");
        QTest::newRow("one byte") << QByteArray("\x1F");
        QTest::newRow("magic alone") << QByteArray("\x1F\x8B");
        QTest::newRow("header alone") << whole.left(10);
        QTest::newRow("cut in the middle") << whole.left(500);
        QTest::newRow("cut before the length") << whole.chopped(4);
        QTest::newRow("cut by one byte") << whole.chopped(1);
        QByteArray badSum = whole;
        badSum[badSum.size() - 8] = static_cast<char>(badSum[badSum.size() - 8] ^ 1);
        QTest::newRow("wrong checksum") << badSum;
        QByteArray badLength = whole;
        badLength[badLength.size() - 1] = 1;
        QTest::newRow("wrong length") << badLength;
        QByteArray badMethod = whole;
        badMethod[2] = 7;
        QTest::newRow("unknown method") << badMethod;
        QTest::newRow("a second member that is cut") << whole + whole.left(200);
        QTest::newRow("a second member of rubbish") << whole + QByteArray("\x1F\x8B rubbish");
    }
    void damagedDataIsEmpty()
    {
        QFETCH(QByteArray, packed);
        QCOMPARE(gunzip(packed), QByteArray());
    }

    void everyCutOfAFileIsEmpty()
    {
        const QByteArray whole = gzipped(QByteArray("some text, some text, some more text"));
        for (int length = 0; length < whole.size(); ++length) {
            QCOMPARE(gunzip(whole.left(length)), QByteArray());
        }
    }

    void everyFlippedBitIsHarmless()
    {
        const QByteArray text("some text, some text, some more text");
        const QByteArray whole = gzipped(text);
        int unharmed = 0;
        for (int bit = 0; bit < whole.size() * 8; ++bit) {
            QByteArray damaged = whole;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
            const QByteArray result = gunzip(damaged);
            // Time stamp and system of the header don't matter to the content.
            QVERIFY(result.isEmpty() || result == text);
            unharmed += result == text ? 1 : 0;
        }
        QVERIFY(unharmed < 100);
    }

    void dataOverTheLimitIsEmpty_data()
    {
        QTest::addColumn<qint64>("limit");
        QTest::addColumn<int>("size");
        QTest::newRow("just as much as allowed") << qint64(200000) << 200000;
        QTest::newRow("one byte more") << qint64(199999) << 0;
        QTest::newRow("nothing allowed") << qint64(0) << 0;
        QTest::newRow("a negative limit") << qint64(-1) << 0;
        QTest::newRow("an absurd limit") << std::numeric_limits<qint64>::max() << 200000;
    }
    void dataOverTheLimitIsEmpty()
    {
        QFETCH(qint64, limit);
        QFETCH(int, size);
        QCOMPARE(gunzip(gzipped(QByteArray(200000, 'x')), limit).size(), size);
    }

    void theLimitHoldsForAllMembersTogether()
    {
        const QByteArray member = gzipped(QByteArray(1000, 'x'));
        QCOMPARE(gunzip(member + member, 2000).size(), 2000);
        QCOMPARE(gunzip(member + member, 1999).size(), 0);
    }

    void theKindIsToldByContent_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("kind");
        QTest::newRow("gzip") << QByteArray("\x1F\x8B\x08") << 0;
        QTest::newRow("bzip2") << QByteArray("BZh9") << 2;
        QTest::newRow("pbzx") << QByteArray("pbzx....") << 5;
        QTest::newRow("xz has no content of its own") << QByteArray("\xFD"
                                                                    "7zXZ")
                                                      << 7;
        QTest::newRow("half of gzip") << QByteArray("\x1F") << 7;
        QTest::newRow("half of bzip2") << QByteArray("BZ") << 7;
        QTest::newRow("half of pbzx") << QByteArray("pbz") << 7;
        QTest::newRow("text") << QByteArray("<xml/>") << 7;
        QTest::newRow("empty") << QByteArray() << 7;
    }
    void theKindIsToldByContent()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, kind);
        QCOMPARE(static_cast<int>(detectKind(content)), kind);
    }

    void theKindIsToldByName_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<int>("kind");
        const auto row = [](const char* name, int kind) {
            QTest::newRow(name) << QString::fromLatin1(name) << kind;
        };
        row("feed.xml.gz", 1);
        row("a.bz2", 2);
        row("a.bz", 2);
        row("a.bzip2", 2);
        row("a.tbz", 2);
        row("a.tbz2", 2);
        row("a.xz", 4);
        row("a.txz", 4);
        row("a.pbzx", 5);
        row("/folder.gz/A.GZ", 1);
        row("/folder.gz/plain", 7);
        row("a.gz.xml", 7);
        row("gz", 7);
        row("", 7);
    }
    void theKindIsToldByName()
    {
        QFETCH(QString, fileName);
        QFETCH(int, kind);
        QCOMPARE(static_cast<int>(detectKindByName(fileName)), kind);
    }
};

BRISORA_TEST_MAIN(TestCompressionUtils, QCoreApplication)

#include "test_compressionutils.moc"
