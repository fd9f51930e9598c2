#include <array>
#include <cerrno>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "app/sensors/drives/atapassthrough.h"
#include "app/sensors/drives/drivecalls.h"
#include "tests/support/testenvironment.h"

class TestDriveCalls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFileThatIsNotThereIsNotOpened();
    void aFileThatIsNoDriveTakesNoCommand();
    void aClosedDescriptorTakesNoCommand();
    void filesAreReadAsFarAsTheyFit_data();
    void filesAreReadAsFarAsTheyFit();
    void whatCanNotBeReadIsEmpty();

private:
    QByteArray fileWith(const QByteArray& contents)
    {
        QFile file(m_folder.filePath(QStringLiteral("file")));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size()) {
            qFatal("The file can't be written");
        }
        return QFile::encodeName(file.fileName());
    }

    QTemporaryDir m_folder;
    const std::shared_ptr<DriveCalls> m_calls = makeDriveCalls();
};

void TestDriveCalls::aFileThatIsNotThereIsNotOpened()
{
    const auto opened = m_calls->open("/nowhere/at/all");
    QCOMPARE(opened.descriptor, -1);
    QCOMPARE(opened.error, ENOENT);
}

void TestDriveCalls::aFileThatIsNoDriveTakesNoCommand()
{
    const auto opened = m_calls->open(fileWith("contents"));
    QVERIFY(opened.descriptor >= 0);
    QCOMPARE(opened.error, 0);

    const auto outcome
        = m_calls->execute(opened.descriptor, AtaPassThrough::asking(AtaCommands::checkPowerMode));

    QCOMPARE(outcome.error, ENOTTY);
    QCOMPARE(outcome.senseSize, std::size_t(0));
    m_calls->close(opened.descriptor);
}

void TestDriveCalls::aClosedDescriptorTakesNoCommand()
{
    const auto opened = m_calls->open(fileWith("contents"));
    m_calls->close(opened.descriptor);

    QCOMPARE(
        m_calls->execute(opened.descriptor, AtaPassThrough::plain(AtaCommands::smartEnable)).error,
        EBADF);
}

void TestDriveCalls::filesAreReadAsFarAsTheyFit_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("short") << QByteArray("38850\n") << QByteArray("38850\n");
    QTest::newRow("long") << QByteArray("0123456789") << QByteArray("01234567");
}

void TestDriveCalls::filesAreReadAsFarAsTheyFit()
{
    QFETCH(QByteArray, contents);
    std::array<char, 8> buffer {};

    const auto read = m_calls->readFile(fileWith(contents), buffer);

    QTEST(QByteArray(read.data(), static_cast<int>(read.size())), "expected");
}

void TestDriveCalls::whatCanNotBeReadIsEmpty()
{
    std::array<char, 8> buffer {};
    QVERIFY(m_calls->readFile("/nowhere/at/all", buffer).empty());
    QVERIFY(m_calls->readFile(QFile::encodeName(m_folder.path()), buffer).empty());
}

BRISORA_TEST_MAIN(TestDriveCalls, QCoreApplication)

#include "test_drivecalls_linux.moc"
