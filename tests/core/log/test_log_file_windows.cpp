#include <windows.h>

#include <QFile>
#include <QtTest>

#include "core/log/log.h"
#include "core/log/log_file.h"
#include "tests/support/testenvironment.h"

using core::log::LogFile;

class LogFileTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;

    static bool link(const QString& link, const QString& target)
    {
        return CreateHardLinkW(link.toStdWString().c_str(), target.toStdWString().c_str(), nullptr)
            != 0;
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_path = m_folder->filePath(QStringLiteral("Brisöra.log"));
    }

    void cleanup() { spdlog::drop(core::log::loggerName); }

    void aFileIsMadeAndNamedToTheSink()
    {
        const LogFile file(m_path);
        QVERIFY(file.isUsable());
        QVERIFY(file.errorText().isEmpty());
        QVERIFY(QFile::exists(m_path));
        QCOMPARE(QString::fromStdWString(file.sinkName()), m_path);
    }

    void aFileThatCannotBeOpenedIsTold_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("a folder that is not there") << QStringLiteral("none/Brisora.log");
        QTest::newRow("a folder itself") << QStringLiteral(".");
        QTest::newRow("a name that the system forbids") << QStringLiteral("a<b>.log");
    }
    void aFileThatCannotBeOpenedIsTold()
    {
        QFETCH(QString, name);
        const LogFile file(m_folder->filePath(name));
        QVERIFY(!file.isUsable());
        QVERIFY2(file.errorText().contains(name), qPrintable(file.errorText()));
        QVERIFY(core::log::readLogFile(m_folder->filePath(name)).isEmpty());
    }

    void aLinkToAnotherFileIsNotUsed()
    {
        const QString other = m_folder->filePath(QStringLiteral("other.txt"));
        QFile file(other);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("precious"), 8);
        file.close();
        QVERIFY(link(m_path, other));

        const LogFile log(m_path);

        QVERIFY(!log.isUsable());
        QVERIFY(log.errorText().contains(m_path));
        QVERIFY(core::log::readLogFile(m_path).isEmpty());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("precious"));
    }

    // A second start uses the same path, and ends again.
    void twoProcessesMayHaveItOpen()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("first");
        core::log::flush();
        QVERIFY(core::log::readLogFile(m_path).endsWith("first\n"));

        const LogFile second(m_path);

        QVERIFY(second.isUsable());
    }

    void aClaimedFileKeepsItsName()
    {
        const LogFile file(m_path);
        QVERIFY(file.isUsable());
        QVERIFY(!QFile::rename(m_path, m_path + QStringLiteral(".old")));
        QVERIFY(!QFile::remove(m_path));
    }
};

BRISORA_TEST_MAIN(LogFileTest, QCoreApplication)
#include "test_log_file_windows.moc"
