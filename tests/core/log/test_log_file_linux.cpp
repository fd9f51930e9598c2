#include <cstdio>
#include <filesystem>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "core/log/log.h"
#include "core/log/log_file.h"
#include "tests/support/testenvironment.h"

namespace {

// What is written to standard error while this object lives.
class StandardErrorCapture {
public:
    explicit StandardErrorCapture(const QString& path)
        : m_path(path)
        , m_original(::dup(STDERR_FILENO))
    {
        const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT, 0600);
        std::fflush(stderr);
        ::dup2(file, STDERR_FILENO);
        ::close(file);
    }
    StandardErrorCapture(const StandardErrorCapture&) = delete;
    StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;
    ~StandardErrorCapture()
    {
        std::fflush(stderr);
        ::dup2(m_original, STDERR_FILENO);
        ::close(m_original);
    }

    [[nodiscard]] QString text() const
    {
        std::fflush(stderr);
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
    }

private:
    const QString m_path;
    const int m_original;
};

const QByteArray foreignContent("not a log");

} // namespace

class TestLogFile : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QString m_target;

    QByteArray targetContent() const
    {
        QFile file(m_target);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void verifyRefused()
    {
        const StandardErrorCapture errors(m_folder->filePath(QStringLiteral("stderr")));
        const bool started = core::log::initLogger(m_path.toStdWString());
        const QString text = errors.text();
        QVERIFY(!started);
        QVERIFY2(text.startsWith(QLatin1String("Brisora runs without a log: ")), qPrintable(text));
        QVERIFY2(text.contains(m_path), qPrintable(text));
        QCOMPARE(text.count(QLatin1Char('\n')), 1);
        QVERIFY(spdlog::get(core::log::loggerName) == nullptr);
        LOG_INFO("lost");
        QCOMPARE(targetContent(), foreignContent);
    }

    static constexpr uid_t nobody = 65534;

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_path = m_folder->filePath(QStringLiteral("Brisora.log"));
        m_target = m_folder->filePath(QStringLiteral("target"));
        QFile file(m_target);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(foreignContent), qint64(foreignContent.size()));
    }

    void cleanup() { spdlog::drop(core::log::loggerName); }

    void aLinkIsNotFollowed()
    {
        QVERIFY(QFile::link(m_target, m_path));
        verifyRefused();
    }

    void aLinkToNothingCreatesNothing()
    {
        const QString nowhere = m_folder->filePath(QStringLiteral("nowhere"));
        QVERIFY(QFile::link(nowhere, m_path));
        verifyRefused();
        QVERIFY(!QFile::exists(nowhere));
    }

    void aSecondNameOfAFileIsNotWritten()
    {
        std::filesystem::create_hard_link(m_target.toStdString(), m_path.toStdString());
        verifyRefused();
    }

    void aPipeIsNotWritten()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
        verifyRefused();
    }

    void aFileOfAnotherUserIsNotWritten()
    {
        QVERIFY(QFile::rename(m_target, m_path));
        m_target = m_path;
        if (::chown(QFile::encodeName(m_path).constData(), nobody, nobody) != 0) {
            QSKIP("Only root can give a file to another user");
        }
        verifyRefused();
    }

    void aMissingFolderIsTold()
    {
        m_path = m_folder->filePath(QStringLiteral("missing/Brisora.log"));
        verifyRefused();
    }

    void aLogIsForItsUserAlone()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        struct stat status { };
        QCOMPARE(::stat(QFile::encodeName(m_path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0600));
    }

    void aLogIsReadWithPlainLineEnds()
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("L\xC3\xBC"
                   "fter\r\nsecond\r\n");
        file.close();
        QCOMPARE(core::log::readLogFile(m_path),
                 QByteArray("L\xC3\xBC"
                            "fter\nsecond\n"));
    }

    void whatIsNoPlainFileIsNotRead_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : { "nothing", "folder", "link", "second name", "pipe" }) {
            QTest::newRow(kind) << QString::fromLatin1(kind);
        }
    }
    void whatIsNoPlainFileIsNotRead()
    {
        QFETCH(QString, kind);
        QCOMPARE(core::log::readLogFile(m_target), foreignContent);
        if (kind == QLatin1String("folder")) {
            QVERIFY(std::filesystem::create_directory(m_path.toStdString()));
        } else if (kind == QLatin1String("link")) {
            QVERIFY(QFile::link(m_target, m_path));
        } else if (kind == QLatin1String("second name")) {
            std::filesystem::create_hard_link(m_target.toStdString(), m_path.toStdString());
        } else if (kind == QLatin1String("pipe")) {
            QCOMPARE(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
        }
        QCOMPARE(core::log::readLogFile(m_path), QByteArray());
    }

    void aFileOfAnotherUserIsNotRead()
    {
        if (::chown(QFile::encodeName(m_target).constData(), nobody, nobody) != 0) {
            QSKIP("Only root can give a file to another user");
        }
        QCOMPARE(core::log::readLogFile(m_target), QByteArray());
    }

    void startingALogSaysNothing()
    {
        const StandardErrorCapture errors(m_folder->filePath(QStringLiteral("stderr")));
        const bool started = core::log::initLogger(m_path.toStdWString());
        LOG_INFO("text");
        const QString text = errors.text();
        QVERIFY(started);
        QCOMPARE(text, QString());
    }
};

BRISORA_TEST_MAIN(TestLogFile, QCoreApplication)

#include "test_log_file_linux.moc"
