#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "smcd/forcedfans.h"
#include "tests/support/testenvironment.h"

using smcd::ControlBits;
using smcd::ForcedFansFile;

class ForcedFansTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void whatWasWrittenIsRead_data()
    {
        QTest::addColumn<quint32>("bits");
        QTest::newRow("mask") << 0x83U;
        QTest::newRow("modes") << 0x20100U;
        QTest::newRow("all") << 0x3FFFFU;
    }
    void whatWasWrittenIsRead()
    {
        QFETCH(quint32, bits);
        QVERIFY(note().write(ControlBits(bits)));
        QCOMPARE(note().read(), std::optional(ControlBits(bits)));
    }

    void thereIsNoFileWithoutAForcedFan()
    {
        QCOMPARE(note().read(), std::optional(ControlBits()));
        QVERIFY(note().write(ControlBits(1)));
        QVERIFY(QFile::exists(path()));
        QVERIFY(note().write(ControlBits()));
        QVERIFY(!QFile::exists(path()));
        QVERIFY(note().write(ControlBits()));
    }

    void aFileThatIsNoneIsNotUnderstood_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("one number") << QByteArray("3\n");
        QTest::newRow("words") << QByteArray("fan fan\n");
        QTest::newRow("too many fans") << QByteArray("100 0\n");
        QTest::newRow("too many modes") << QByteArray("0 400\n");
        QTest::newRow("too large") << QByteArray("FFFFFFFFFFFFFFFFFFFF 0\n");
        QTest::newRow("negative") << QByteArray("-1 0\n");
    }
    void aFileThatIsNoneIsNotUnderstood()
    {
        QFETCH(QByteArray, text);
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        QVERIFY(!note().read());
    }

    void aFolderThatIsGoneIsAFailure()
    {
        m_folder->remove();
        QVERIFY(!note().write(ControlBits(1)));
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    [[nodiscard]] QString path() const { return m_folder->filePath(QStringLiteral("note")); }
    [[nodiscard]] ForcedFansFile note() const { return ForcedFansFile(path().toStdString()); }
};

BRISORA_TEST_MAIN(ForcedFansTest, QCoreApplication)

#include "test_smcd_forcedfans.moc"
