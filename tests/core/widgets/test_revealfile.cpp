#include <QDir>
#include <QtTest>

#include "core/widgets/revealfile.h"
#include "tests/support/openedaddresses.h"
#include "tests/support/testenvironment.h"

class RevealFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFileThatIsNotThereGivesItsFolder_data();
    void aFileThatIsNotThereGivesItsFolder();
};

void RevealFileTest::aFileThatIsNotThereGivesItsFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("fallback");
    QTest::newRow("with fallback") << QStringLiteral("logs") << true;
    QTest::newRow("without fallback") << QStringLiteral("logs") << false;
    QTest::newRow("an unusual folder") << QString::fromUtf8("Größe & 100% #1") << true;
}

void RevealFileTest::aFileThatIsNotThereGivesItsFolder()
{
    QFETCH(QString, folder);
    QFETCH(bool, fallback);
    QTemporaryDir parent;
    QVERIFY(QDir(parent.path()).mkdir(folder));
    const QString path = parent.filePath(folder);
    const OpenedAddresses opened;

    revealFile(path + QStringLiteral("/Brisora.log"), fallback);

    if (fallback) {
        QCOMPARE(opened.addresses.size(), 1);
        QCOMPARE(QDir(opened.addresses[0].toLocalFile()), QDir(path));
    } else {
        QVERIFY(opened.addresses.isEmpty());
    }
}

BRISORA_TEST_MAIN(RevealFileTest, QApplication)

#include "test_revealfile.moc"
