#include <QDir>
#include <QtTest>

#include "core/widgets/revealfile.h"
#include "tests/support/openedaddresses.h"
#include "tests/support/testenvironment.h"

// A program "explorer" lies beside this one and notes how it was started; the
// system looks there first.
class RevealFileSystemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFileManagerShowsTheFile_data();
    void theFileManagerShowsTheFile();

private:
    QTemporaryDir m_folder;
};

void RevealFileSystemTest::theFileManagerShowsTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a name") << QStringLiteral("Brisora.log");
    QTest::newRow("with blanks and a comma") << QStringLiteral("My log, the 1st %1.txt");
    QTest::newRow("foreign letters") << QString::fromUtf8("Größe ☃.txt");
}

void RevealFileSystemTest::theFileManagerShowsTheFile()
{
    QFETCH(QString, name);
    const OpenedAddresses opened;
    const QTemporaryDir noted;
    const QString record = noted.filePath(QStringLiteral("command line"));
    qputenv("BRISORA_TEST_COMMAND_LINE", QDir::toNativeSeparators(record).toLocal8Bit());
    QFile file(m_folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    revealFile(file.fileName(), true);

    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 20000);
    QFile written(record);
    QVERIFY(written.open(QIODevice::ReadOnly));
    const QByteArray bytes = written.readAll();
    const QString commandLine
        = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()),
                             bytes.size() / static_cast<int>(sizeof(char16_t)));
    // More than one blank may stand before the arguments.
    const QString program = QStringLiteral("explorer ");
    QVERIFY2(commandLine.startsWith(program), qPrintable(commandLine));
    QCOMPARE(commandLine.mid(program.size()).trimmed(),
             QStringLiteral("/select,\"%1\"").arg(QDir::toNativeSeparators(file.fileName())));
    QVERIFY(opened.addresses.isEmpty());
}

BRISORA_TEST_MAIN(RevealFileSystemTest, QApplication)

#include "test_revealfile_windows.moc"
