#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "core/log/log.h"
#include "tests/support/testenvironment.h"

namespace {

const QRegularExpression
    linePattern(QStringLiteral(R"(^\[(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d:\d{3})\] \[thread (\d+)\] )"
                               R"(\[([^#\]]+)#(\d+)\] (.*)$)"));

} // namespace

class TestLog : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;

    QByteArray content() const
    {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // The lines of the log, which must each end as lines of this log do.
    QStringList lines() const
    {
        core::log::flush();
        QString text = QString::fromUtf8(content());
        if (!text.endsWith(QLatin1String("\r\n"))) {
            return { QStringLiteral("cut: ") + text };
        }
        text.chop(2);
        return text.split(QStringLiteral("\r\n"));
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_path = m_folder->filePath(QStringLiteral("Brisora.log"));
    }

    void cleanup() { spdlog::drop(core::log::loggerName); }

    void aLineHasTimeThreadPlaceAndText()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        const QDateTime before = QDateTime::currentDateTime();
        LOG_INFO("Fan {}: {}", 1, "Left side");
        const int logLine = __LINE__ - 1;
        const auto match = linePattern.match(lines().value(0));
        QVERIFY2(match.hasMatch(), content().constData());
        const QDateTime time
            = QDateTime::fromString(match.captured(1), QStringLiteral("yyyy-MM-dd hh:mm:ss:zzz"));
        QVERIFY(time.isValid());
        QVERIFY(qAbs(before.msecsTo(time)) < 60000);
        QCOMPARE(match.captured(3), QStringLiteral("test_log.cpp"));
        QCOMPARE(match.captured(4).toInt(), logLine);
        QCOMPARE(match.captured(5), QStringLiteral("Fan 1: Left side"));
    }

    // On every system, byte by byte: no line end is made longer or shorter.
    void linesEndWithCarriageReturnAndLineFeed()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("one");
        LOG_WARN("two");
        LOG_ERR("three");
        core::log::flush();

        const QByteArray bytes = content();

        QVERIFY2(bytes.endsWith("] three\r\n"), bytes.constData());
        QCOMPARE(bytes.count("\r\n"), 3);
        QCOMPARE(bytes.count('\r'), 3);
        QCOMPARE(bytes.count('\n'), 3);
    }

    void everyLevelIsWrittenAndNotNamed()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("one");
        LOG_WARN("two");
        LOG_ERR("three");
        QStringList texts;
        for (const QString& line : lines()) {
            texts += linePattern.match(line).captured(5);
        }
        QCOMPARE(
            texts,
            QStringList({ QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three") }));
        QCOMPARE(spdlog::get(core::log::loggerName)->level(), spdlog::level::trace);
    }

    void textsOfQtAreWrittenAsUtf8()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("{} and {}", QStringLiteral("Lüfter"), QString());
        QCOMPARE(linePattern.match(lines().value(0)).captured(5), QStringLiteral("Lüfter and "));
        QVERIFY(content().contains("L\xC3\xBC"
                                   "fter"));
    }

    void foreignPlaceholdersStay()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_WARN("Unexpected profile string: %1");
        QCOMPARE(linePattern.match(lines().value(0)).captured(5),
                 QStringLiteral("Unexpected profile string: %1"));
    }

    void theFormerLogIsTruncated()
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(10000, 'x'));
        file.close();
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        QCOMPARE(content(), QByteArray());
        LOG_INFO("new");
        QCOMPARE(lines().size(), 1);
    }

    void linesAreKeptUntilAFlush()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_ERR("text");
        QCOMPARE(content(), QByteArray());
        core::log::flush();
        QVERIFY(content().endsWith("text\r\n"));
    }

    void linesAreCompleteWhenTheLoggerEnds()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("text");
        spdlog::drop(core::log::loggerName);
        QVERIFY(content().endsWith("text\r\n"));
    }

    void withoutALoggerNothingHappens()
    {
        LOG_INFO("lost {}", 1);
        LOG_WARN("lost");
        LOG_ERR("lost");
        core::log::flush();
        QVERIFY(spdlog::get(core::log::loggerName) == nullptr);
        QVERIFY(!QFile::exists(m_path));
    }

    void anEmptyPathMakesNoLogger()
    {
        QVERIFY(core::log::initLogger(std::wstring()));
        QVERIFY(spdlog::get(core::log::loggerName) == nullptr);
    }

    void aSecondLoggerIsNotMade()
    {
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("first");
        const QString other = m_folder->filePath(QStringLiteral("other.log"));
        QVERIFY(core::log::initLogger(other.toStdWString()));
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        QVERIFY(!QFile::exists(other));
        QCOMPARE(lines().size(), 1);
    }

    void aPathMayHaveAnyLetters()
    {
        m_path = m_folder->filePath(QStringLiteral("Протокол 日本.log"));
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        LOG_INFO("text");
        QCOMPARE(lines().size(), 1);
    }

    void aFileThatCannotBeOpenedMeansNoLog_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("in a missing folder") << QStringLiteral("missing/Brisora.log");
        QTest::newRow("a folder") << QString();
    }
    void aFileThatCannotBeOpenedMeansNoLog()
    {
        QFETCH(QString, name);
        QVERIFY(!core::log::initLogger(m_folder->filePath(name).toStdWString()));
        QVERIFY(spdlog::get(core::log::loggerName) == nullptr);
        LOG_ERR("lost");
    }

    void linesOfManyThreadsStayWhole()
    {
        constexpr int threadCount = 4;
        constexpr int lineCount = 500;
        QVERIFY(core::log::initLogger(m_path.toStdWString()));
        std::vector<std::thread> threads;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([thread] {
                for (int line = 0; line < lineCount; ++line) {
                    LOG_INFO("{} {}", thread, line);
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        QMap<QString, QString> threadOfId;
        const QStringList written = lines();
        QCOMPARE(written.size(), threadCount * lineCount);
        for (const QString& line : written) {
            const auto match = linePattern.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            threadOfId.insert(match.captured(2), match.captured(5).section(QLatin1Char(' '), 0, 0));
        }
        QCOMPARE(threadOfId.size(), threadCount);
    }

    void foreignTextCannotForgeALine_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        QTest::newRow("plain") << QStringLiteral("Fan ü") << QStringLiteral("Fan ü");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("breaks") << QStringLiteral("a\r\nb") << QStringLiteral("a\\r\\nb");
        QTest::newRow("control characters")
            << QStringLiteral("a\u001b[0mb\u0007") << QStringLiteral("a\\u001b[0mb\\u0007");
        QTest::newRow("zero") << QString(QChar(u'\0')) << QStringLiteral("\\u0000");
        QTest::newRow("other separators")
            << QStringLiteral("\u2028\u2029\u0085") << QStringLiteral("\\u2028\\u2029\\u0085");
    }
    void foreignTextCannotForgeALine()
    {
        QFETCH(QString, text);
        QFETCH(QString, line);
        QCOMPARE(core::log::singleLine(text), line);
    }
};

BRISORA_TEST_MAIN(TestLog, QCoreApplication)

#include "test_log.moc"
